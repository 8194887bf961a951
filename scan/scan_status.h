#pragma once
// The result of every device operation and of the transport.
#include <cstdint>

// What the transport said.
enum ScsiState : int32_t {
    SCSI_GOOD = 0,
    SCSI_FAILURE = 3,
    SCSI_MEDIUM_ERROR = 6,  // paper missing or misfed
    SCSI_NOT_READY = 7,
    SCSI_UNIT_ATTENTION = 8,
    SCSI_NOT_READY_YET = 9,
};

// What it means to the caller. A call failed when `code` is not 0.
enum ScanStatusCode : int32_t {
    STATUS_SUCCESS = 0,
    STATUS_TRY_AGAIN = 4,
    STATUS_DEVICE_ERROR = 5,
    STATUS_NO_MORE_PAPER = 6,
    STATUS_BUSY = 8,
    STATUS_INTERNAL_ERROR = 10,
    STATUS_OPEN_FAILED = 14,
    STATUS_FEEDER_FAILURE = 15,
};

struct ScanStatus {
    int32_t scsi = SCSI_GOOD;
    int32_t code = STATUS_SUCCESS;

    bool failed() const { return code != STATUS_SUCCESS; }
    friend bool operator==(const ScanStatus &, const ScanStatus &) = default;
};

inline ScanStatus scan_status(int32_t scsi, int32_t code) { return ScanStatus{scsi, code}; }
