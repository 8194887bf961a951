#pragma once
// The six primitives through which every SCSI driver speaks to its device.
// Each writes the transport status (ScsiState) through `status` and returns
// whether the request was taken.
#include <QString>

#include <cstdint>

#include "scan/transport/scsi_handle.h"

// Opens the device named by a device string:
//   "sim:NAME"       a simulated target registered under NAME (sim_target.h),
//   "sc0;d0;l0"      ASPI adapter, target, lun (Windows builds only),
//   "a0;p0;t0;l0"    SPTI adapter, path, target, lun (Windows builds only).
// On success *handle owns a new handle, to be given back to LMV_scsi_close.
bool LMV_scsi_open(const QString &device, ScsiHandle **handle);

// Data from the device.
bool LMV_scsi_read(ScsiHandle *handle, const uint8_t *command, int commandLength, int timeoutMs, uint8_t *buffer,
                   int length, int32_t *status);
// Data to the device.
bool LMV_scsi_write(ScsiHandle *handle, const uint8_t *command, int commandLength, int timeoutMs,
                    const uint8_t *buffer, int length, int32_t *status);
// A command without data.
bool LMV_scsi_set(ScsiHandle *handle, const uint8_t *command, int commandLength, int timeoutMs, int32_t *status);
// TEST UNIT READY: six zero bytes, one second.
bool LMV_scsi_unit_ready(ScsiHandle *handle, int32_t *status);
// Closes the device and frees the handle. A null handle is accepted.
bool LMV_scsi_close(ScsiHandle *handle);

// The -scsidebug switch: command and data dumps of the Windows transports.
// Returns the previous value.
bool LMV_scsi_set_debug(bool on);
bool LMV_scsi_debug();
