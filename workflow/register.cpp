#include "workflow/register.h"

#include <QtGlobal>

#include <cmath>
#include <utility>

#include "scan/drawing.h"
#include "scan/optical_registration.h"
#include "scan/pixmap_rotate.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_list.h"
#include "suite/base/assertion.h"
#include "suite/base/lmv_trace.h"
#include "workflow/config.h"
#include "workflow/dbinfo.h"
#include "workflow/scan_window.h"

namespace {

// Distance in inches from the centre peg to the middle of the field.
double peg_distance(double field) {
    const int f = static_cast<int>(field);
    if (f == 16) return 6.75;
    if (f == 12) return 5.25;
    return f * 4.0 / 3.0 + 1.0;
}

}  // namespace

int RegisterScan(ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, 0);
    Drawing *drawing = config->drawing;
    LMV_ASSERT_RET(drawing != nullptr, 0);
    LMV_pixmap *pixmap = pixmap_of_Drawing(drawing);
    LMV_ASSERT_RET(pixmap != nullptr, 0);
    return config->optical ? OpticalRegisterScan(config, drawing, pixmap)
                           : MechanicalRegisterScan(config, drawing, pixmap);
}

// The sheet lies on the scanner's peg bar, so the pegs are where the field
// and the peg side put them: no turn, only a position.
int MechanicalRegisterScan(ScanConfig *config, Drawing *drawing, LMV_pixmap *pixmap) {
    LMV_ASSERT_RET(config != nullptr && drawing != nullptr && pixmap != nullptr, 0);
    const double field = config->field;
    const double dpi = config->dpi;
    const double distance = peg_distance(field);
    const double middle = field * dpi * 0.5;
    const int32_t width = width_of_pixmap(pixmap);
    const int32_t height = height_of_pixmap(pixmap);
    const double half_width = std::floor(width / 2.0);
    const double half_height = std::floor(height / 2.0);
    double x = 0.0, y = 0.0;
    int result = 1;
    switch (config->peg_side) {
    case PEG_LEFT:
        x = -(dpi * distance - half_width);
        y = middle;
        break;
    case PEG_TOP:
        x = middle;
        y = -(dpi * distance - half_height);
        break;
    case PEG_RIGHT:
        x = dpi * distance - half_width + width;
        y = middle;
        break;
    case PEG_BOTTOM:
        x = middle;
        y = dpi * distance - half_height + height;
        break;
    default:
        LMV_assertion_msg(__FILE__, __LINE__, "peg side of the session");
        result = 0;
    }
    LMV_trace("Found registration: %g radians; (%g, %g) pixels.\n", 0.0, x, y);
    rotation_of_Drawing(drawing, 0.0f, static_cast<float>(x), static_cast<float>(y));
    return result;
}

// The sheet lies loose: find its peg holes, turn the picture square on them
// and cut it to the field, unless the vectorizer will cut it itself.
int OpticalRegisterScan(ScanConfig *config, Drawing *drawing, LMV_pixmap *pixmap) {
    LMV_ASSERT_RET(config != nullptr && drawing != nullptr && pixmap != nullptr, 0);
    const CEL_PixmapPtr view = best_of_pixmap(pixmap);
    LMV_ASSERT_RET(view, 0);
    const int32_t peg_side = peg_side_of_Drawing(drawing);
    const int threshold_level = threshold_of_Drawing(drawing);
    const double threshold = threshold_level >= 1 ? threshold_level / 255.0 : 0.5;
    const int dpi = static_cast<int>(dpi_of_Drawing(drawing));
    float x = 0.0f, y = 0.0f, angle = 0.0f;
    const int result = optical_registration(view, &x, &y, &angle, threshold, dpi, registration_side_of_peg_side(peg_side), 1.0,
                                            8.0, 2.0, 1)
                           ? 1
                           : 0;
    const int32_t width = width_of_pixmap(pixmap), height = height_of_pixmap(pixmap);
    LMV_trace("Found registration: %g radians; (%g, %g) pixels\n\tImage: (%d, %d)\n", double(angle), double(x),
              double(y), width, height);
    rotation_of_Drawing(drawing, angle, x, y);
    if (result != 1) return result;

    const bool vectorizer_cuts = config->database ? needs_vectorization_of_DatabaseBinding(config->binding)
                                                  : scan_depth_of_Drawing(drawing) == DEPTH_BW;
    if (!config->pancel && vectorizer_cuts) return result;

    LMV_trace("xres:%d yres:%d\n", width, height);
    const bool field12 = config->field == 12.0;
    set_window_xres_inches_of_Drawing(drawing, field12 ? 9.0 : 12.0);
    set_window_yres_inches_of_Drawing(drawing, field12 ? 12.0 : 16.0);
    int wp = static_cast<int>(window_xres_inches_of_Drawing(drawing) * dpi);
    int hp = static_cast<int>(window_yres_inches_of_Drawing(drawing) * dpi);
    if (peg_side == PEG_TOP || peg_side == PEG_BOTTOM) std::swap(wp, hp);

    rotate_LMV_pixmap(pixmap, rotation_angle_from_radians(angle), &x, &y, 0, width - 1, 0, height - 1, nullptr);

    // The peg strip of three quarters of an inch goes, unless asked to stay.
    const int m = qEnvironmentVariableIsSet("LMV_SCAN_KEEP_PEGS") ? 0 : static_cast<int>(dpi * -2.0 * 0.375);
    switch (peg_side) {
    case PEG_LEFT: x = float(x - m + wp * 0.5); break;
    case PEG_TOP: y = float(y - m + hp * 0.5); break;
    case PEG_RIGHT: x = float(x + m - wp * 0.5); break;
    default: y = float(y + m - hp * 0.5); break;
    }
    scale_pixmap(pixmap, wp * 0.5 - x, hp * 0.5 - y, wp, hp, 1.0, 1.0);
    config->main_interface->showDrawing(drawing, true);
    return result;
}
