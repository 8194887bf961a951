#include "scan/devices.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <initializer_list>

#include "scan/drivers/Dev_bogus.h"
#include "scan/scanner_device.h"
#include "scan/scanner_list.h"
#include "suite/base/assertion.h"
#include "suite/base/msg_scope.h"

namespace {

bool g_fi6770_mode = false;

// What a family offers, apart from its parameter sets and operations.
struct FamilyCaps {
    int32_t default_depth;
    bool bw, bw_feeder, grey, grey_feeder, colour, colour_feeder;
    int32_t min_resolution, max_resolution, default_resolution;
    std::initializer_list<int32_t> steps;
    int32_t optical_dpi_limit;
    bool flags_ab;  // flag_a and flag_b together
};

void apply_caps(ScanDeviceInfo *dev, const FamilyCaps &c) {
    dev->default_depth = c.default_depth;
    dev->bw_supported = c.bw;
    dev->bw_feeder = c.bw_feeder;
    dev->grey_supported = c.grey;
    dev->grey_feeder = c.grey_feeder;
    dev->colour_supported = c.colour;
    dev->colour_feeder = c.colour_feeder;
    dev->min_resolution = c.min_resolution;
    dev->max_resolution = c.max_resolution;
    dev->default_resolution = c.default_resolution;
    dev->resolution_steps.fill(false);
    for (int32_t dpi : c.steps) {
        const int i = resolution_step_index(dpi);
        if (i >= 0) dev->resolution_steps[static_cast<std::size_t>(i)] = true;
    }
    dev->optical_dpi_limit = c.optical_dpi_limit;
    dev->flag_a = c.flags_ab ? 1 : 0;
    dev->flag_b = c.flags_ab ? 1 : 0;
}

constexpr std::initializer_list<int32_t> kAllSteps = {72, 100, 150, 200, 240, 300, 400, 600};

// Which defaults of the file a family checks, and what replaces a bad one.
struct Limits {
    bool threshold = true;
    bool points = false;  // black and white point
    bool gamma = false;
    bool contrast = false;
    int32_t black_point = 20;
    int32_t white_point = 235;
    float gamma_default = 1.0f;
};

void limit(int32_t &value, int32_t lo, int32_t hi, int32_t fallback) {
    if (value < lo || value > hi) value = fallback;
}

// A value outside its limits, the -1 of "not stated" too, becomes the default.
void apply_limits(ScanDeviceInfo *dev, const Limits &l) {
    if (l.threshold) limit(dev->default_threshold, 0, 255, 100);
    if (l.points) {
        limit(dev->default_black_point, 0, 255, l.black_point);
        limit(dev->default_white_point, 0, 255, l.white_point);
    }
    if (l.gamma && (dev->default_gamma < 0.01f || dev->default_gamma > 3.0f)) dev->default_gamma = l.gamma_default;
    // Contrast has only an upper bound; "not stated" stays for the driver.
    if (l.contrast && dev->default_contrast > 255) dev->default_contrast = 0;
}

void threshold(ScanDeviceInfo *dev, Standard_parameters *p) {
    init_threshold_of_Standard_parameters(p, 0, 255, dev->default_threshold);
}

void points(ScanDeviceInfo *dev, Standard_parameters *p) {
    init_black_point_of_Standard_parameters(p, 0, 255, dev->default_black_point);
    init_white_point_of_Standard_parameters(p, 0, 255, dev->default_white_point);
}

void gamma(ScanDeviceInfo *dev, Standard_parameters *p) {
    init_gamma_of_Standard_parameters(p, 0.01f, 3.0f, dev->default_gamma);
}

void drop_colours(ScanDeviceInfo *dev, Standard_parameters *p) { init_rgbDrop_of_Standard_parameters(p, dev->rgbDropList); }

constexpr const char *kSpeedLabel = QT_TRANSLATE_NOOP("Scan", "Milliseconds/Line");

void speed(Standard_parameters *p, int32_t min, int32_t max, int32_t value, bool has_normal, int32_t normal,
           bool has_fast, int32_t fast, bool has_custom) {
    init_speed_of_Standard_parameters(p, min, max, value, kSpeedLabel, has_normal, normal, has_fast, fast,
                                      has_custom);
}

// Sharp and Umax: a gamma for colour only when no gamma file is named at all and
// no file happens to be called "(None)".
bool no_gamma_file_sharp(const ScanDeviceInfo *dev) {
    return dev->gamma_file == QLatin1String("(None)") && !QFile::exists(dev->gamma_file);
}

// Epson: only whether the named file exists.
bool no_gamma_file_epson(const ScanDeviceInfo *dev) { return !QFile::exists(dev->gamma_file); }

void setup_fujitsu_m(ScanDeviceInfo *dev) {
    apply_caps(dev, {DEPTH_GREY, true, true, true, true, false, false, 200, 400, 300, {200, 240, 300, 400}, 400, false});
    apply_limits(dev, {.threshold = true, .points = true, .contrast = true});
    threshold(dev, &dev->bw_parameters);
    points(dev, &dev->grey_parameters);
    // setup1, set_window, autoload, eject and read come with the Fujitsu driver.
    dev->ops.setup2 = nop_drawing_of_ScanDeviceInfo;
    dev->ops.unload = nop_of_ScanDeviceInfo;
    dev->ops.initiate = nop_of_ScanDeviceInfo;
}

void setup_fujitsu_fi(ScanDeviceInfo *dev) {
    apply_caps(dev, {DEPTH_GREY, true, true, true, true, true, true, 100, 400, 300, {200, 240, 300, 400}, 400, false});
    dev->max_scan_inches_y = 16.899;
    dev->flag_c = 1;
    if (dev->model == QLatin1String("Fujitsu_fi6770")) g_fi6770_mode = true;
    apply_limits(dev, {.threshold = true,
                       .points = true,
                       .gamma = true,
                       .contrast = true,
                       .black_point = 25,
                       .white_point = 220,
                       .gamma_default = 0.65f});
    threshold(dev, &dev->bw_parameters);
    drop_colours(dev, &dev->bw_parameters);
    points(dev, &dev->grey_parameters);
    gamma(dev, &dev->grey_parameters);
    drop_colours(dev, &dev->grey_parameters);
    gamma(dev, &dev->colour_parameters);
    // reserve, setup1, set_window, setup2, autoload, eject and read come with the
    // Fujitsu driver.
    dev->ops.unload = nop_of_ScanDeviceInfo;
    dev->ops.initiate = nop_of_ScanDeviceInfo;
}

// Sharp and Umax share their parameter sets.
void sharp_umax_parameters(ScanDeviceInfo *dev) {
    apply_caps(dev, {DEPTH_COLOUR, true, false, true, false, true, false, 72, 600, 150, kAllSteps, 600, true});
    apply_limits(dev, {.threshold = true, .points = true, .gamma = true});
    threshold(dev, &dev->bw_parameters);
    speed(&dev->bw_parameters, 5, 300, 35, true, 70, true, 35, true);
    points(dev, &dev->grey_parameters);
    gamma(dev, &dev->grey_parameters);
    speed(&dev->grey_parameters, 5, 300, 35, true, 70, true, 35, true);
    if (no_gamma_file_sharp(dev)) gamma(dev, &dev->colour_parameters);
    speed(&dev->colour_parameters, 5, 300, 35, true, 70, true, 35, true);
}

void setup_sharp(ScanDeviceInfo *dev) {
    sharp_umax_parameters(dev);
    // set_window, setup2, initiate and read come with the Sharp driver.
    dev->ops.setup1 = nop_drawing_of_ScanDeviceInfo;
    dev->ops.autoload = nop_of_ScanDeviceInfo;
    dev->ops.unload = nop_of_ScanDeviceInfo;
    dev->ops.eject = nop_of_ScanDeviceInfo;
}

void setup_umax(ScanDeviceInfo *dev) {
    sharp_umax_parameters(dev);
    // reserve, set_window, setup2, initiate and read come with the Umax driver.
    dev->ops.setup1 = nop_drawing_of_ScanDeviceInfo;
    dev->ops.autoload = nop_of_ScanDeviceInfo;
    dev->ops.unload = nop_of_ScanDeviceInfo;
    dev->ops.eject = nop_of_ScanDeviceInfo;
}

void setup_microtek(ScanDeviceInfo *dev) {
    apply_caps(dev, {DEPTH_COLOUR, true, false, true, false, true, false, 72, 600, 150, kAllSteps, 600, true});
    apply_limits(dev, {.threshold = true, .points = true, .gamma = true});
    threshold(dev, &dev->bw_parameters);
    points(dev, &dev->grey_parameters);
    gamma(dev, &dev->grey_parameters);
    gamma(dev, &dev->colour_parameters);
    // set_window, setup2 and read come with the Microtek driver.
    dev->ops.setup1 = nop_drawing_of_ScanDeviceInfo;
    dev->ops.autoload = nop_of_ScanDeviceInfo;
    dev->ops.unload = nop_of_ScanDeviceInfo;
    dev->ops.eject = nop_of_ScanDeviceInfo;
    dev->ops.initiate = nop_of_ScanDeviceInfo;
}

// Ricoh scanners have no eject of their own: a null entry says so to the menu.
void ricoh_bw_grey_parameters(ScanDeviceInfo *dev) {
    apply_limits(dev, {.threshold = true, .points = true});
    threshold(dev, &dev->bw_parameters);
    points(dev, &dev->grey_parameters);
    dev->ops.eject = nullptr;
}

void setup_ricoh_is410(ScanDeviceInfo *dev) {
    apply_caps(dev,
               {DEPTH_BW, true, true, true, false, false, false, 100, 400, 300, {100, 150, 200, 240, 300, 400}, 400, false});
    ricoh_bw_grey_parameters(dev);
    // set_window, setup2, autoload, unload, initiate and read come with the Ricoh driver.
    dev->ops.setup1 = nop_drawing_of_ScanDeviceInfo;
}

void setup_ricoh_is420(ScanDeviceInfo *dev) {
    apply_caps(dev,
               {DEPTH_BW, true, true, true, true, false, false, 100, 400, 300, {100, 150, 200, 240, 300, 400}, 400, false});
    ricoh_bw_grey_parameters(dev);
    // setup1, set_window, setup2, autoload, unload and read come with the Ricoh driver.
    dev->ops.ready = nop_of_ScanDeviceInfo;
    dev->ops.initiate = nop_of_ScanDeviceInfo;
}

// IS330 and IS760 learn from an inquiry at setup whether they scan colour; that
// inquiry comes with their driver, so until then they stay black and white and grey.
void setup_ricoh_is330_is760(ScanDeviceInfo *dev, bool is330) {
    if (is330)
        apply_caps(dev, {DEPTH_BW, true, true, true, true, false, false, 100, 600, 300,
                         {100, 150, 200, 240, 300, 400, 600}, 600, false});
    else
        apply_caps(dev, {DEPTH_BW, true, true, true, true, false, false, 100, 400, 300,
                         {100, 150, 200, 240, 300, 400}, 400, false});
    ricoh_bw_grey_parameters(dev);
    if (dev->colour_supported) {
        apply_limits(dev, {.threshold = false, .gamma = true});
        gamma(dev, &dev->grey_parameters);
        gamma(dev, &dev->colour_parameters);
    }
    // setup1, set_window, autoload, unload and read (and setup2 for colour) come
    // with the Ricoh driver.
    dev->ops.ready = nop_of_ScanDeviceInfo;
    dev->ops.initiate = nop_of_ScanDeviceInfo;
}

void setup_bogus_bw(ScanDeviceInfo *dev) {
    apply_caps(dev, {DEPTH_BW, true, true, true, true, false, false, 72, 300, 72, kAllSteps, 300, false});
    apply_limits(dev, {.threshold = true, .points = true, .gamma = true});
    threshold(dev, &dev->bw_parameters);
    drop_colours(dev, &dev->bw_parameters);
    speed(&dev->bw_parameters, 5, 35000, 10, false, 0, true, 2000, true);
    // The grey set stays empty; the colour set has a gamma although colour is off.
    gamma(dev, &dev->colour_parameters);
    install_Dev_bogus_ops(dev);
}

void setup_bogus_colour(ScanDeviceInfo *dev) {
    apply_caps(dev, {DEPTH_COLOUR, true, true, true, true, true, true, 72, 200, 72,
                     {72, 100, 150, 200, 300, 400, 600}, 200, false});
    apply_limits(dev, {.threshold = true, .points = true, .gamma = true});
    threshold(dev, &dev->bw_parameters);
    drop_colours(dev, &dev->bw_parameters);
    speed(&dev->bw_parameters, 5, 35000, 10, true, 15000, true, 2000, true);
    points(dev, &dev->grey_parameters);
    drop_colours(dev, &dev->grey_parameters);
    speed(&dev->grey_parameters, 5, 35000, 10, true, 15000, true, 2000, false);
    gamma(dev, &dev->colour_parameters);
    speed(&dev->colour_parameters, 5, 35000, 10, true, 15000, false, 0, true);
    install_Dev_bogus_ops(dev);
}

// Epson scanners report their feeder at setup; that question comes with their
// driver, so until then no depth is offered with the feeder.
void setup_epson(ScanDeviceInfo *dev, bool gt15000) {
    apply_caps(dev, {DEPTH_COLOUR, true, false, true, false, true, false, 72, 600, 150, kAllSteps, 600, true});
    apply_limits(dev, {.threshold = true, .points = true, .gamma = true});
    threshold(dev, &dev->bw_parameters);
    points(dev, &dev->grey_parameters);
    const bool no_file = no_gamma_file_epson(dev);
    if (!gt15000 || no_file) gamma(dev, &dev->grey_parameters);
    if (no_file) gamma(dev, &dev->colour_parameters);
    // reserve, ready, inquire, set_window, setup2, autoload, unload (the eject),
    // eject, read and release come with the Epson driver.
    dev->ops.setup1 = nop_drawing_of_ScanDeviceInfo;
    dev->ops.initiate = nop_of_ScanDeviceInfo;
}

bool is_one_of(const QString &model, std::initializer_list<const char *> names) {
    return std::any_of(names.begin(), names.end(), [&](const char *n) { return model == QLatin1String(n); });
}

}  // namespace

bool supported_model_of_devices(const QString &model) {
    return is_one_of(model, {"Plugin-Color", "Fujitsu_M3096G", "Fujitsu_M4097D", "Fujitsu_fi4750C",
                             "Fujitsu_fi5750C", "Fujitsu_fi6770", "Sharp_JX-610", "Ricoh_IS410", "Ricoh_IS420",
                             "Ricoh_IS430", "Ricoh_IS450", "Ricoh_IS330", "Ricoh_IS760", "Bogus-B&W", "Bogus-Color",
                             "Microtek_9600XL", "Umax_Mirage", "Epson_836XL", "Epson_GT-15000", "Sane",
                             "Epson_1640XL", "TWAIN"});
}

bool setup_model_of_devices(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, false);
    const QString &m = dev->model;
    if (is_one_of(m, {"Fujitsu_M3096G", "Fujitsu_M4097D"}))
        setup_fujitsu_m(dev);
    else if (is_one_of(m, {"Fujitsu_fi4750C", "Fujitsu_fi5750C", "Fujitsu_fi6770"}))
        setup_fujitsu_fi(dev);
    else if (m == QLatin1String("Sharp_JX-610"))
        setup_sharp(dev);
    else if (m == QLatin1String("Ricoh_IS410"))
        setup_ricoh_is410(dev);
    else if (is_one_of(m, {"Ricoh_IS420", "Ricoh_IS430", "Ricoh_IS450"}))
        setup_ricoh_is420(dev);
    else if (m == QLatin1String("Ricoh_IS330"))
        setup_ricoh_is330_is760(dev, true);
    else if (m == QLatin1String("Ricoh_IS760"))
        setup_ricoh_is330_is760(dev, false);
    else if (m == QLatin1String("Bogus-B&W"))
        setup_bogus_bw(dev);
    else if (m == QLatin1String("Bogus-Color"))
        setup_bogus_colour(dev);
    else if (m == QLatin1String("Microtek_9600XL"))
        setup_microtek(dev);
    else if (m == QLatin1String("Umax_Mirage"))
        setup_umax(dev);
    else if (is_one_of(m, {"Epson_836XL", "Epson_1640XL"}))
        setup_epson(dev, false);
    else if (m == QLatin1String("Epson_GT-15000"))
        setup_epson(dev, true);
    else if (m == QLatin1String("TWAIN")) {
        // Its resolutions are widened by forceAllResolutions; the helper program
        // does the rest.
    } else if (m == QLatin1String("Plugin-Color")) {
        // Nothing to set: the generic record, 300 dpi only.
    } else {
        MSG_Scope(MSG_Text("Scan", "Device %1 Not Supported.").arg(m), MSG_ACTION_ERROR);
        return false;
    }
    return true;
}

void widen_resolutions_of_ScanDeviceInfo(ScanDeviceInfo *dev) {
    LMV_ASSERT_VOID(dev != nullptr);
    dev->min_resolution = 72;
    dev->max_resolution = 600;
    dev->resolution_steps.fill(true);
    dev->optical_dpi_limit = 600;
}

void check_resolution_of_ScannerEntry(ScannerEntry *entry) {
    LMV_ASSERT_VOID(entry != nullptr);
    const ScanDeviceInfo *dev = device_of_ScannerEntry(entry);
    LMV_ASSERT_VOID(dev != nullptr);
    const int32_t reported = defaultResolution_of_ScannerEntry(entry);
    int32_t r = std::max(reported, dev->min_resolution);
    r = std::min(r, dev->max_resolution);
    // Up to the next step when that step is offered; the first hit wins, even
    // above the model's highest resolution.
    int32_t below = 0;
    for (std::size_t i = 0; i < kResolutionSteps.size(); ++i) {
        const int32_t step = kResolutionSteps[i];
        if (dev->resolution_steps[i] && r > below && r < step) {
            r = step;
            break;
        }
        below = step;
    }
    if (r == reported) return;
    MSG_Scope(MSG_Text("scanDevices", "Invalid Resolution for model %1: %2 changed to %3.")
                  .arg(entry->name, QString::number(reported), QString::number(r)),
              MSG_ACTION_LOG);
    entry->defaultResolution = r;
}

bool fi6770_mode_of_devices() { return g_fi6770_mode; }
void reset_fi6770_mode_of_devices() { g_fi6770_mode = false; }
