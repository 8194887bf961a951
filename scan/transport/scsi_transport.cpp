#include "scan/transport/scsi_transport.h"

#include <array>
#include <string>

#include "scan/scan_status.h"
#include "scan/transport/device_string.h"
#include "scan/transport/sim_target.h"
#include "scan/transport/windows_transport.h"
#include "suite/base/lmv_trace.h"

namespace {

bool g_scsiDebug = false;

constexpr std::string_view kSimPrefix = "sim:";

// A request the transport cannot even look at.
bool refuse(int32_t *status) {
    if (status) *status = SCSI_FAILURE;
    return false;
}

bool usable(const ScsiHandle *handle, const uint8_t *command, int commandLength, int32_t *status) {
    return handle && handle->backend && command && commandLength > 0 && status;
}

}  // namespace

bool LMV_scsi_open(const QString &device, ScsiHandle **handle) {
    if (!handle) return false;
    *handle = nullptr;
    const std::string text = device.toStdString();
    auto h = std::make_unique<ScsiHandle>();
    if (text.starts_with(kSimPrefix)) {
        if (!open_sim_scsi(text.substr(kSimPrefix.size()), *h)) {
            LMV_trace("LMV_scsi_open: no simulated device named %s\n", text.c_str() + kSimPrefix.size());
            return false;
        }
    } else if (const auto address = parse_scsi_device_string(text)) {
        h->spti = address->spti ? 1 : 0;
        h->adapter = address->adapter;
        h->path = address->path;
        h->target = address->target;
        h->lun = address->lun;
        if (!open_windows_scsi(*h)) return false;
    } else {
        LMV_trace("LMV_scsi_open: no transport for device %s\n", text.c_str());
        return false;
    }
    *handle = h.release();
    return true;
}

bool LMV_scsi_read(ScsiHandle *handle, const uint8_t *command, int commandLength, int timeoutMs, uint8_t *buffer,
                   int length, int32_t *status) {
    if (!usable(handle, command, commandLength, status) || length < 0 || (length > 0 && !buffer))
        return refuse(status);
    return handle->backend->read(*handle, {command, static_cast<std::size_t>(commandLength)}, timeoutMs,
                                 {buffer, static_cast<std::size_t>(length)}, status);
}

bool LMV_scsi_write(ScsiHandle *handle, const uint8_t *command, int commandLength, int timeoutMs,
                    const uint8_t *buffer, int length, int32_t *status) {
    if (!usable(handle, command, commandLength, status) || length < 0 || (length > 0 && !buffer))
        return refuse(status);
    return handle->backend->write(*handle, {command, static_cast<std::size_t>(commandLength)}, timeoutMs,
                                  {buffer, static_cast<std::size_t>(length)}, status);
}

bool LMV_scsi_set(ScsiHandle *handle, const uint8_t *command, int commandLength, int timeoutMs, int32_t *status) {
    if (!usable(handle, command, commandLength, status)) return refuse(status);
    return handle->backend->set(*handle, {command, static_cast<std::size_t>(commandLength)}, timeoutMs, status);
}

bool LMV_scsi_unit_ready(ScsiHandle *handle, int32_t *status) {
    static constexpr std::array<uint8_t, 6> kTestUnitReady{};
    return LMV_scsi_set(handle, kTestUnitReady.data(), kTestUnitReady.size(), 1000, status);
}

bool LMV_scsi_close(ScsiHandle *handle) {
    if (handle && handle->backend) handle->backend->close(*handle);
    delete handle;
    return true;
}

bool LMV_scsi_set_debug(bool on) {
    const bool old = g_scsiDebug;
    g_scsiDebug = on;
    return old;
}

bool LMV_scsi_debug() { return g_scsiDebug; }
