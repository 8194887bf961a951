#include "scan/scanner_device.h"

#include <QThread>

#include <array>
#include <cstring>

#include "scan/transport/scsi_transport.h"
#include "suite/base/assertion.h"
#include "suite/base/lmv_trace.h"
#include "suite/base/msg_scope.h"

namespace {

constexpr ScanStatus kBrokenRecord{SCSI_GOOD, STATUS_INTERNAL_ERROR};
constexpr int kReserveTimeoutMs = 9500;
constexpr int kInquiryTimeoutMs = 10000;
constexpr int kInquiryLength = 36;
constexpr int kInquiryNameOffset = 8;
constexpr int kInquiryNameLength = 28;  // vendor, product, revision
constexpr int kReserveRetryPauseMs = 1000;
// Not a status any of our transports gives, but a driver may hand it on; it
// means the handle is of no further use.
constexpr int32_t kScsiHandleLost = 2;

void default_sleep(int milliseconds) { QThread::msleep(static_cast<unsigned long>(milliseconds)); }
ScanSleepFunction g_sleep = default_sleep;

QByteArray utf8(const QString &s) { return s.toUtf8(); }

// What an accessor gives for a null record.
template <typename T>
T neutral() {
    return T{};
}

// One RESERVE UNIT; a refused request is told to the operator.
int32_t send_reserve_unit(ScanDeviceInfo *dev) {
    static constexpr std::array<uint8_t, 6> kReserveUnit = {0x16, 0, 0, 0, 0, 0};
    int32_t scsi = SCSI_GOOD;
    if (!LMV_scsi_set(dev->scsi, kReserveUnit.data(), kReserveUnit.size(), kReserveTimeoutMs, &scsi)) {
        LMV_error("Reserve_Scan_Device: request was invalid\n");
        dev->reserved = false;
    }
    return scsi;
}

// An operator message of the "Scan" context; like the printf reports, it
// drops the line end that the texts carry.
void report_error(const MSG_Text &text) {
    const auto chop = [](QString s) {
        if (s.endsWith(QLatin1Char('\n'))) s.chop(1);
        return s;
    };
    MSG_Scope(MSG_Text::translated(chop(text.text()), chop(text.source())), MSG_ACTION_ERROR);
}

void close_handle(ScanDeviceInfo *dev) {
    LMV_scsi_close(dev->scsi);
    dev->scsi = nullptr;
    dev->opened = false;
}

// The shape every checked wrapper shares: check, trace, forward, trace.
template <typename Op, typename... Args>
ScanStatus forward(ScanDeviceInfo *dev, Op ScannerOps::*slot, const char *before, const char *after,
                   Args... args) {
    LMV_ASSERT_RET(dev != nullptr, kBrokenRecord);
    Op op = dev->ops.*slot;
    LMV_ASSERT_RET(op != nullptr, kBrokenRecord);
    if (before) LMV_trace("%s", before);
    const ScanStatus status = op(dev, args...);
    if (after && !status.failed()) LMV_trace("%s", after);
    return status;
}

}  // namespace

ScanDeviceInfo::ScanDeviceInfo() = default;

ScanDeviceInfo::~ScanDeviceInfo() {
    if (scsi) LMV_scsi_close(scsi);
}

// ---- generic operations ----

ScanStatus generic_reserve_of_ScanDeviceInfo(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, kBrokenRecord);
    if (dev->opened) return {};
    if (!LMV_scsi_open(dev->device, &dev->scsi)) {
        report_error(MSG_Text("Scan", "Failed to initialize scanner %1 model %2 connected to %3\n")
                         .arg(dev->name, dev->model, dev->device));
        dev->opened = false;
        return {SCSI_FAILURE, STATUS_OPEN_FAILED};
    }
    dev->opened = true;
    int32_t scsi = send_reserve_unit(dev);
    // A unit attention after power-on or a bus reset clears with the next command.
    if (scsi == SCSI_UNIT_ATTENTION || scsi == SCSI_FAILURE) {
        sleep_of_ScanDevice(kReserveRetryPauseMs);
        scsi = send_reserve_unit(dev);
    }
    if (scsi != SCSI_GOOD) {
        const ScanStatus status{scsi, STATUS_DEVICE_ERROR};
        LMV_error("ReserveScanner: command error %d/%d\n", status.scsi, status.code);
        if (scsi == kScsiHandleLost) close_handle(dev);
        dev->reserved = false;
        return status;
    }
    dev->reserved = true;
    return {};
}

ScanStatus generic_ready_of_ScanDeviceInfo(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, kBrokenRecord);
    int32_t scsi = SCSI_GOOD;
    const bool taken = LMV_scsi_unit_ready(dev->scsi, &scsi);
    if (taken && scsi == SCSI_GOOD) return {};
    LMV_trace("LMV_scsi_unit_ready: irt=%d status= %d\n", taken ? 1 : 0, scsi);
    return {scsi, scsi == SCSI_NOT_READY_YET ? STATUS_TRY_AGAIN : STATUS_DEVICE_ERROR};
}

ScanStatus generic_inquire_of_ScanDeviceInfo(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, kBrokenRecord);
    if (!dev->opened) return {};
    static constexpr std::array<uint8_t, 6> kInquiry = {0x12, 0, 0, 0, kInquiryLength, 0};
    std::array<uint8_t, kInquiryLength> reply{};
    int32_t scsi = SCSI_GOOD;
    const bool taken =
        LMV_scsi_read(dev->scsi, kInquiry.data(), kInquiry.size(), kInquiryTimeoutMs, reply.data(), kInquiryLength, &scsi);
    if (!taken || scsi != SCSI_GOOD) {
        report_error(MSG_Text("Scan", "ScannerInquire: status %1/%2 returned\n").arg(QString::number(taken ? 1 : 0), QString::number(scsi)));
        if (scsi != SCSI_GOOD) return {scsi, STATUS_DEVICE_ERROR};
    }
    const char *name = reinterpret_cast<const char *>(reply.data() + kInquiryNameOffset);
    dev->inqName = QString::fromLatin1(name, static_cast<qsizetype>(strnlen(name, kInquiryNameLength)));
    LMV_trace("inqName=%s\n", dev->inqName.toLatin1().constData());
    return {};
}

ScanStatus generic_release_of_ScanDeviceInfo(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, kBrokenRecord);
    ScanStatus status;
    if (dev->reserved) {
        static constexpr std::array<uint8_t, 6> kReleaseUnit = {0x17, 0, 0, 0, 0, 0};
        int32_t scsi = SCSI_GOOD;
        const bool taken = LMV_scsi_set(dev->scsi, kReleaseUnit.data(), kReleaseUnit.size(), kReserveTimeoutMs, &scsi);
        if (!taken || scsi != SCSI_GOOD) status = {scsi, STATUS_DEVICE_ERROR};
        dev->reserved = false;
    }
    if (dev->opened) close_handle(dev);
    return status;
}

ScanStatus nop_of_ScanDeviceInfo(ScanDeviceInfo *) { return {}; }
ScanStatus nop_drawing_of_ScanDeviceInfo(ScanDeviceInfo *, Drawing *) { return {}; }
bool may_stop_true_of_ScanDeviceInfo(ScanDeviceInfo *) { return true; }

// ---- wrappers ----

ScanStatus reserve_ScanDevice(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, kBrokenRecord);
    LMV_ASSERT_RET(dev->ops.reserve != nullptr, kBrokenRecord);
    LMV_trace("Reserving scanner for %s named %s\n", utf8(dev->model).constData(), utf8(dev->name).constData());
    const ScanStatus status = dev->ops.reserve(dev);
    if (!status.failed()) LMV_trace("\tScanner reserved.\n");
    return status;
}

ScanStatus ready_ScanDevice(ScanDeviceInfo *dev) {
    return forward(dev, &ScannerOps::ready, "Checking scanner ready...\n", "\tScanner is ready.\n");
}

ScanStatus inquire_ScanDevice(ScanDeviceInfo *dev) {
    return forward(dev, &ScannerOps::inquire, "Inquiring to scanner...\n", "\tScanner inquiry succeeded.\n");
}

ScanStatus setup1_ScanDevice(ScanDeviceInfo *dev, Drawing *drawing) {
    return forward(dev, &ScannerOps::setup1, "Scanner setup #1...\n", "\tSetup #1 is complete.\n", drawing);
}

ScanStatus set_window_ScanDevice(ScanDeviceInfo *dev, Drawing *drawing) {
    return forward(dev, &ScannerOps::set_window, "Setting window...\n", "\tWindow set.\n", drawing);
}

ScanStatus setup2_ScanDevice(ScanDeviceInfo *dev, Drawing *drawing) {
    return forward(dev, &ScannerOps::setup2, "Scanner setup #2...\n", "\tSetup #2 is complete.\n", drawing);
}

ScanStatus autoload_ScanDevice(ScanDeviceInfo *dev) {
    return forward(dev, &ScannerOps::autoload, "Autoloading scanner...\n", "\tAutoload succeeded.\n");
}

ScanStatus eject_ScanDevice(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, kBrokenRecord);
    if (!dev->ops.eject) return {};
    return forward(dev, &ScannerOps::eject, "Ejecting scanner...\n", "\tScanner ejected.\n");
}

ScanStatus initiate_ScanDevice(ScanDeviceInfo *dev) {
    return forward(dev, &ScannerOps::initiate, "Initiating scan...\n", "\tScan initiated.\n");
}

ScanStatus read_ScanDevice(ScanDeviceInfo *dev, Drawing *drawing) {
    return forward(dev, &ScannerOps::read, "Reading scan data...\n", "\tScan data read.\n", drawing);
}

ScanStatus release_ScanDevice(ScanDeviceInfo *dev) {
    return forward(dev, &ScannerOps::release, "Releasing scanner...\n", "\tScanner released.\n");
}

bool may_stop_ScanDevice(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, true);
    LMV_ASSERT_RET(dev->ops.may_stop != nullptr, true);
    return dev->ops.may_stop(dev);
}

ScanStatus poll_ScanDevice(ScanDeviceInfo *dev) { return forward(dev, &ScannerOps::poll, nullptr, nullptr); }

ScanStatus abort_ScanDevice(ScanDeviceInfo *dev) { return forward(dev, &ScannerOps::abort, nullptr, nullptr); }

ScanSleepFunction set_sleep_function_of_ScanDevice(ScanSleepFunction sleep) {
    const ScanSleepFunction old = g_sleep;
    g_sleep = sleep ? sleep : default_sleep;
    return old;
}

void sleep_of_ScanDevice(int milliseconds) { g_sleep(milliseconds); }

// ---- accessors ----

#define SCAN_DEVICE_INFO_ACCESSOR(type, field)                                  \
    type field##_of_ScanDeviceInfo(const ScanDeviceInfo *dev) {                 \
        LMV_ASSERT_RET(dev != nullptr, neutral<type>());                               \
        return dev->field;                                                      \
    }                                                                           \
    void set_##field##_of_ScanDeviceInfo(ScanDeviceInfo *dev, type value) {     \
        LMV_ASSERT_VOID(dev != nullptr);                                        \
        dev->field = std::move(value);                                          \
    }
SCAN_DEVICE_INFO_FIELDS(SCAN_DEVICE_INFO_ACCESSOR)
#undef SCAN_DEVICE_INFO_ACCESSOR

ScannerOps *ops_of_ScanDeviceInfo(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, nullptr);
    return &dev->ops;
}

Standard_parameters *bw_parameters_of_ScanDeviceInfo(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, nullptr);
    return &dev->bw_parameters;
}

Standard_parameters *grey_parameters_of_ScanDeviceInfo(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, nullptr);
    return &dev->grey_parameters;
}

Standard_parameters *colour_parameters_of_ScanDeviceInfo(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, nullptr);
    return &dev->colour_parameters;
}

bool resolution_step_of_ScanDeviceInfo(const ScanDeviceInfo *dev, int index) {
    LMV_ASSERT_RET(dev != nullptr, false);
    LMV_ASSERT_RET(index >= 0 && index < static_cast<int>(kResolutionSteps.size()), false);
    return dev->resolution_steps[static_cast<std::size_t>(index)];
}

void set_resolution_step_of_ScanDeviceInfo(ScanDeviceInfo *dev, int index, bool offered) {
    LMV_ASSERT_VOID(dev != nullptr);
    LMV_ASSERT_VOID(index >= 0 && index < static_cast<int>(kResolutionSteps.size()));
    dev->resolution_steps[static_cast<std::size_t>(index)] = offered;
}

// ---- per depth ----

int resolution_step_index(int32_t dpi) {
    for (std::size_t i = 0; i < kResolutionSteps.size(); ++i)
        if (kResolutionSteps[i] == dpi) return static_cast<int>(i);
    return -1;
}

Standard_parameters *parameters_of_ScanDeviceInfo(ScanDeviceInfo *dev, int32_t depth) {
    if (!dev) return nullptr;
    switch (depth) {
    case DEPTH_BW: return &dev->bw_parameters;
    case DEPTH_GREY: return &dev->grey_parameters;
    case DEPTH_COLOUR: return &dev->colour_parameters;
    default: return nullptr;
    }
}

bool supported_of_ScanDeviceInfo(const ScanDeviceInfo *dev, int32_t depth) {
    if (!dev) return false;
    switch (depth) {
    case DEPTH_BW: return dev->bw_supported;
    case DEPTH_GREY: return dev->grey_supported;
    case DEPTH_COLOUR: return dev->colour_supported;
    default: return false;
    }
}

bool feeder_of_ScanDeviceInfo(const ScanDeviceInfo *dev, int32_t depth) {
    if (!dev) return false;
    switch (depth) {
    case DEPTH_BW: return dev->bw_feeder;
    case DEPTH_GREY: return dev->grey_feeder;
    case DEPTH_COLOUR: return dev->colour_feeder;
    default: return false;
    }
}
