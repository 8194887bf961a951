#pragma once
// A command through the Windows SCSI pass-through: the request block that goes
// to IOCTL_SCSI_PASS_THROUGH_DIRECT and the reading of its answer. The block is
// packed here byte by byte at the offsets of the 64-bit layout, so the packing
// is the same (and tested) on every platform; only the ioctl is Windows.
#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "scan/transport/scsi_handle.h"

// Data directions of the pass-through.
enum class SptiDirection : uint8_t { Write = 0, Read = 1, None = 2 };

inline constexpr uint32_t kIoctlScsiGetInquiryData = 266252;
inline constexpr uint32_t kIoctlScsiGetCapabilities = 266256;
inline constexpr uint32_t kIoctlScsiPassThroughDirect = 315412;

inline constexpr std::size_t kSptiBlockLength = 56;  // SCSI_PASS_THROUGH_DIRECT
inline constexpr std::size_t kSptiSenseOffset = 60;
inline constexpr std::size_t kSptiSenseLength = 24;
inline constexpr std::size_t kSptiRequestSize = 96;  // the block, padding and sense room
// Some adapters refuse a one-byte transfer, so one byte travels as eight.
inline constexpr std::size_t kSptiShortTransfer = 8;

// Offsets inside the block.
namespace spti_offset {
inline constexpr std::size_t length = 0, scsi_status = 2, path = 3, target = 4, lun = 5, cdb_length = 6,
                             sense_length = 7, direction = 8, transfer_length = 12, timeout = 16, data_buffer = 24,
                             sense_offset = 32, cdb = 36;
}

class SptiRequest {
public:
    // `data` is the caller's buffer (empty for a command without data). It must
    // outlive the request.
    SptiRequest(const ScsiHandle &handle, std::span<const uint8_t> command, int timeoutMs, SptiDirection direction,
                std::span<uint8_t> data);
    SptiRequest(const SptiRequest &) = delete;
    SptiRequest &operator=(const SptiRequest &) = delete;

    // The ioctl's input and output buffer.
    std::span<uint8_t> block() { return block_; }
    std::span<const uint8_t> block() const { return block_; }
    // After the ioctl: copies a one-byte transfer back into the caller's buffer.
    void finish();

    uint8_t scsiStatus() const { return block_[spti_offset::scsi_status]; }
    std::span<const uint8_t> sense() const { return std::span(block_).subspan(kSptiSenseOffset, kSptiSenseLength); }

private:
    alignas(8) std::array<uint8_t, kSptiRequestSize> block_{};
    std::array<uint8_t, kSptiShortTransfer> shortBuffer_{};
    std::span<uint8_t> data_;
};

// Sends the block in and out; on failure fills the system's error text and number.
using SptiIoctl = std::function<bool(std::span<uint8_t> block, std::string &errorText, int &errorNumber)>;

// One command: pack, send, map the status. A failed ioctl traces its error and
// gives false with scsi 3; otherwise true with the status of the sense mapping.
bool spti_execute(const ScsiHandle &handle, std::span<const uint8_t> command, int timeoutMs, SptiDirection direction,
                  std::span<uint8_t> data, int32_t *status, const SptiIoctl &ioctl);
