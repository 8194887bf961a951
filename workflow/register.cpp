#include "workflow/register.h"

#include <cmath>

#include "scan/drawing.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_list.h"
#include "suite/base/assertion.h"
#include "suite/base/lmv_trace.h"
#include "workflow/config.h"

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

// Finding the peg holes in the image is not built yet: every optical scan is
// refused, and the operator's registration question decides what happens.
int OpticalRegisterScan(ScanConfig *config, Drawing *drawing, LMV_pixmap *pixmap) {
    LMV_ASSERT_RET(config != nullptr && drawing != nullptr && pixmap != nullptr, 0);
    LMV_log("Optical registration is not available in this build.\n");
    return 0;
}
