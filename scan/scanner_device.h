#pragma once
// One live scanner: what it can do, its present defaults, its open SCSI handle
// and the table of its driver's operations. The scan loop calls only the
// wrappers below, which check, trace and forward to the table.
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>

#include "scan/parameters.h"
#include "scan/scan_status.h"

struct Drawing;
struct ScsiHandle;
struct ScanDeviceInfo;

using ScanDeviceOp = ScanStatus (*)(ScanDeviceInfo *dev);
using ScanDrawingOp = ScanStatus (*)(ScanDeviceInfo *dev, Drawing *drawing);
using ScanMayStopOp = bool (*)(ScanDeviceInfo *dev);

// Generic operations of a fresh record, and the do-nothing ones.
ScanStatus generic_reserve_of_ScanDeviceInfo(ScanDeviceInfo *dev);
ScanStatus generic_ready_of_ScanDeviceInfo(ScanDeviceInfo *dev);
ScanStatus generic_inquire_of_ScanDeviceInfo(ScanDeviceInfo *dev);
ScanStatus generic_release_of_ScanDeviceInfo(ScanDeviceInfo *dev);
ScanStatus nop_of_ScanDeviceInfo(ScanDeviceInfo *dev);
ScanStatus nop_drawing_of_ScanDeviceInfo(ScanDeviceInfo *dev, Drawing *drawing);
bool may_stop_true_of_ScanDeviceInfo(ScanDeviceInfo *dev);

// Sixteen slots, in this order.
struct ScannerOps {
    ScanDeviceOp reserve = generic_reserve_of_ScanDeviceInfo;
    ScanDeviceOp ready = generic_ready_of_ScanDeviceInfo;
    ScanDeviceOp inquire = generic_inquire_of_ScanDeviceInfo;
    ScanDrawingOp setup1 = nop_drawing_of_ScanDeviceInfo;
    ScanDrawingOp set_window = nop_drawing_of_ScanDeviceInfo;
    ScanDrawingOp setup2 = nop_drawing_of_ScanDeviceInfo;
    ScanDeviceOp autoload = nop_of_ScanDeviceInfo;
    ScanDeviceOp unload = nop_of_ScanDeviceInfo;
    ScanDeviceOp eject = nop_of_ScanDeviceInfo;
    ScanDeviceOp initiate = nop_of_ScanDeviceInfo;
    ScanDrawingOp read = nop_drawing_of_ScanDeviceInfo;
    ScanDeviceOp release = generic_release_of_ScanDeviceInfo;
    ScanDeviceOp spare = nop_of_ScanDeviceInfo;
    ScanMayStopOp may_stop = may_stop_true_of_ScanDeviceInfo;
    ScanDeviceOp poll = nop_of_ScanDeviceInfo;
    ScanDeviceOp abort = nop_of_ScanDeviceInfo;
};

// The eight resolution steps, in dots per inch.
inline constexpr std::array<int32_t, 8> kResolutionSteps = {72, 100, 150, 200, 240, 300, 400, 600};
// Index of a step in kResolutionSteps, or -1.
int resolution_step_index(int32_t dpi);

// Registration strictness values.
enum RegistrationStrictness : int32_t {
    REGISTRATION_NOT_STATED = 2730,
    REGISTRATION_LOOSE = 2731,
    REGISTRATION_STRICT = 2732,
};

// Scan depths of a Drawing.
enum ScanDepth : int32_t { DEPTH_BW = 0, DEPTH_GREY = 1, DEPTH_COLOUR = 2 };

struct ScanDeviceInfo {
    ScanDeviceInfo();
    ~ScanDeviceInfo();  // closes an open handle
    ScanDeviceInfo(const ScanDeviceInfo &) = delete;
    ScanDeviceInfo &operator=(const ScanDeviceInfo &) = delete;

    QString name = QStringLiteral("(None Selected)");
    QString device = QStringLiteral("(None)");
    QString model = QStringLiteral("(None)");
    ScsiHandle *scsi = nullptr;  // owned between open and close
    bool opened = false;
    bool reserved = false;
    ScannerOps ops;

    bool bw_supported = true, bw_feeder = false;
    Standard_parameters bw_parameters;
    bool grey_supported = false, grey_feeder = false;
    Standard_parameters grey_parameters;
    bool colour_supported = false, colour_feeder = false;
    Standard_parameters colour_parameters;

    int32_t default_threshold = -1;
    int32_t default_contrast = -1;
    int32_t default_black_point = -1;
    int32_t default_white_point = -1;
    float default_gamma = -1.0f;
    int32_t registration_strictness = REGISTRATION_STRICT;
    int32_t default_depth = DEPTH_BW;
    int32_t min_resolution = 300, max_resolution = 300, default_resolution = 300;
    std::array<bool, 8> resolution_steps = {false, false, false, false, false, true, false, false};
    int32_t flag_a = 0, flag_b = 0;
    int32_t optical_capable = 1;
    int32_t optical_dpi_limit = 300;
    QString gamma_file = QStringLiteral("(None)");
    bool optical_reg = false;
    bool autofeeded = false;
    int32_t default_brightness = -1;
    int32_t default_gamma_mode = -1;
    bool last_drawing = false;  // also what the eject command sets to unload the sheet
    QString inqName;            // null until an inquiry answered
    QString dropOutColor;
    float leftOffset = 0.0f;
    double max_scan_inches_x = 100000000000000.0, max_scan_inches_y = 100000000000000.0;
    int32_t flag_c = 0;
    QStringList rgbDropList;
};

// Parameter set of a scan depth (0, 1, 2); null for another value.
Standard_parameters *parameters_of_ScanDeviceInfo(ScanDeviceInfo *dev, int32_t depth);
bool supported_of_ScanDeviceInfo(const ScanDeviceInfo *dev, int32_t depth);
bool feeder_of_ScanDeviceInfo(const ScanDeviceInfo *dev, int32_t depth);

// Accessors. Each asserts a non-null record and otherwise returns a neutral
// value (empty text, false, 0, a null pointer); setters then do nothing.
#define SCAN_DEVICE_INFO_FIELDS(X) \
    X(QString, name) \
    X(QString, device) \
    X(QString, model) \
    X(ScsiHandle *, scsi) \
    X(bool, opened) \
    X(bool, reserved) \
    X(bool, bw_supported) \
    X(bool, bw_feeder) \
    X(bool, grey_supported) \
    X(bool, grey_feeder) \
    X(bool, colour_supported) \
    X(bool, colour_feeder) \
    X(int32_t, default_threshold) \
    X(int32_t, default_contrast) \
    X(int32_t, default_black_point) \
    X(int32_t, default_white_point) \
    X(float, default_gamma) \
    X(int32_t, registration_strictness) \
    X(int32_t, default_depth) \
    X(int32_t, min_resolution) \
    X(int32_t, max_resolution) \
    X(int32_t, default_resolution) \
    X(int32_t, flag_a) \
    X(int32_t, flag_b) \
    X(int32_t, optical_capable) \
    X(int32_t, optical_dpi_limit) \
    X(QString, gamma_file) \
    X(bool, optical_reg) \
    X(bool, autofeeded) \
    X(int32_t, default_brightness) \
    X(int32_t, default_gamma_mode) \
    X(bool, last_drawing) \
    X(QString, inqName) \
    X(QString, dropOutColor) \
    X(float, leftOffset) \
    X(double, max_scan_inches_x) \
    X(double, max_scan_inches_y) \
    X(int32_t, flag_c) \
    X(QStringList, rgbDropList)

#define SCAN_DEVICE_INFO_ACCESSOR(type, field)                            \
    type field##_of_ScanDeviceInfo(const ScanDeviceInfo *dev);            \
    void set_##field##_of_ScanDeviceInfo(ScanDeviceInfo *dev, type value);
SCAN_DEVICE_INFO_FIELDS(SCAN_DEVICE_INFO_ACCESSOR)
#undef SCAN_DEVICE_INFO_ACCESSOR

// The owned parts, by pointer (null for a null record).
ScannerOps *ops_of_ScanDeviceInfo(ScanDeviceInfo *dev);
Standard_parameters *bw_parameters_of_ScanDeviceInfo(ScanDeviceInfo *dev);
Standard_parameters *grey_parameters_of_ScanDeviceInfo(ScanDeviceInfo *dev);
Standard_parameters *colour_parameters_of_ScanDeviceInfo(ScanDeviceInfo *dev);
// One of the eight resolution steps, by index into kResolutionSteps.
bool resolution_step_of_ScanDeviceInfo(const ScanDeviceInfo *dev, int index);
void set_resolution_step_of_ScanDeviceInfo(ScanDeviceInfo *dev, int index, bool offered);

// The wrappers the scan loop calls: each checks the record and its table entry
// (a broken one is an internal assertion and scsi 0, code 10), traces, and
// forwards to the driver.
ScanStatus reserve_ScanDevice(ScanDeviceInfo *dev);
ScanStatus ready_ScanDevice(ScanDeviceInfo *dev);
ScanStatus inquire_ScanDevice(ScanDeviceInfo *dev);
ScanStatus setup1_ScanDevice(ScanDeviceInfo *dev, Drawing *drawing);
ScanStatus set_window_ScanDevice(ScanDeviceInfo *dev, Drawing *drawing);
ScanStatus setup2_ScanDevice(ScanDeviceInfo *dev, Drawing *drawing);
ScanStatus autoload_ScanDevice(ScanDeviceInfo *dev);
// A null eject entry means the model has no eject: success, no trace.
ScanStatus eject_ScanDevice(ScanDeviceInfo *dev);
ScanStatus initiate_ScanDevice(ScanDeviceInfo *dev);
ScanStatus read_ScanDevice(ScanDeviceInfo *dev, Drawing *drawing);
ScanStatus release_ScanDevice(ScanDeviceInfo *dev);
// Whether the window's stop control may stay enabled during the scan.
bool may_stop_ScanDevice(ScanDeviceInfo *dev);
ScanStatus poll_ScanDevice(ScanDeviceInfo *dev);
ScanStatus abort_ScanDevice(ScanDeviceInfo *dev);

// Every pause of the device code goes through this function, so that tests
// can take the time out of it. Returns the previous function.
using ScanSleepFunction = void (*)(int milliseconds);
ScanSleepFunction set_sleep_function_of_ScanDevice(ScanSleepFunction sleep);
void sleep_of_ScanDevice(int milliseconds);
