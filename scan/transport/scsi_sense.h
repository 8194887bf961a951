#pragma once
// The one status mapping every transport keeps: from the SCSI status byte and
// the sense data of a command to the transport status (ScsiState).
#include <cstdint>
#include <span>

inline constexpr uint8_t kSenseKeyNotReady = 2;
inline constexpr uint8_t kSenseKeyMediumError = 3;
inline constexpr uint8_t kSenseKeyUnitAttention = 6;

// SCSI status 0 is good whatever the sense says; otherwise the sense key (low
// four bits of sense byte 2) decides, and anything unknown is a failure.
int32_t convert_scsistatus_to_lmvstatus(uint8_t scsiStatus, std::span<const uint8_t> sense);
