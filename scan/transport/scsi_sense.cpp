#include "scan/transport/scsi_sense.h"

#include "scan/scan_status.h"
#include "suite/base/lmv_trace.h"

int32_t convert_scsistatus_to_lmvstatus(uint8_t scsiStatus, std::span<const uint8_t> sense) {
    if (scsiStatus == 0) return SCSI_GOOD;
    const int key = sense.size() > 2 ? (sense[2] & 0x0f) : -1;
    switch (key) {
    case kSenseKeyNotReady: return SCSI_NOT_READY;
    case kSenseKeyMediumError: return SCSI_MEDIUM_ERROR;
    case kSenseKeyUnitAttention: return SCSI_UNIT_ATTENTION;
    default:
        LMV_trace("convert_scsistatus_to_lmvstatus: Unknown status code (%d)", scsiStatus);
        return SCSI_FAILURE;
    }
}
