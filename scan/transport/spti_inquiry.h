#pragma once
// Finding a scanner in the answer of IOCTL_SCSI_GET_INQUIRY_DATA: the adapter's
// buses, each with a chain of inquiry records linked by offsets.
#include <cstdint>
#include <span>

inline constexpr std::size_t kSptiInquiryBufferSize = 8192;

// Layout of the answer (offsets in bytes):
//   adapter: number of buses (1), padding (3), then 8 bytes per bus:
//   bus:     logical units (1), initiator id (1), padding (2), offset of the first record (4)
//   record:  path (1), target (1), lun (1), claimed (1), inquiry length (4),
//            offset of the next record (4, 0 ends), inquiry data
namespace spti_inquiry_offset {
inline constexpr std::size_t buses = 4, bus_size = 8, bus_first_record = 4;
inline constexpr std::size_t record_target = 1, record_lun = 2, record_next = 8, record_inquiry = 12;
}

enum class SptiInquiryResult { Found, NoBus, NotFound };

// Looks for a scanner (peripheral type 6) at target and lun, on any bus; the
// path is not compared. Offsets that leave the buffer or loop end the walk.
SptiInquiryResult spti_find_scanner(std::span<const uint8_t> answer, uint8_t target, uint8_t lun);
