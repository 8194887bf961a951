#include "scan/transport/spti_command.h"

#include <algorithm>
#include <cstring>

#include "scan/scan_status.h"
#include "scan/transport/scsi_sense.h"
#include "suite/base/lmv_trace.h"

namespace {

template <typename T>
void put(std::array<uint8_t, kSptiRequestSize> &block, std::size_t offset, T value) {
    std::memcpy(block.data() + offset, &value, sizeof value);  // the ioctl is little-endian, as is every host here
}

}  // namespace

SptiRequest::SptiRequest(const ScsiHandle &handle, std::span<const uint8_t> command, int timeoutMs,
                         SptiDirection direction, std::span<uint8_t> data)
    : data_(data) {
    std::span<uint8_t> transfer = data;
    if (data.size() == 1) {
        shortBuffer_[0] = data[0];
        transfer = shortBuffer_;
    }
    const std::size_t cdbLength = std::min<std::size_t>(command.size(), 16);
    put<uint16_t>(block_, spti_offset::length, kSptiBlockLength);
    block_[spti_offset::path] = handle.path;
    block_[spti_offset::target] = handle.target;
    block_[spti_offset::lun] = handle.lun;
    block_[spti_offset::cdb_length] = static_cast<uint8_t>(cdbLength);
    block_[spti_offset::sense_length] = kSptiSenseLength;
    block_[spti_offset::direction] = static_cast<uint8_t>(direction);
    put<uint32_t>(block_, spti_offset::transfer_length, static_cast<uint32_t>(transfer.size()));
    put<uint32_t>(block_, spti_offset::timeout, static_cast<uint32_t>(std::max(timeoutMs / 1000, 1)));
    put<uint64_t>(block_, spti_offset::data_buffer,
                  transfer.empty() ? 0 : static_cast<uint64_t>(reinterpret_cast<std::uintptr_t>(transfer.data())));
    put<uint32_t>(block_, spti_offset::sense_offset, kSptiSenseOffset);
    std::copy_n(command.begin(), cdbLength, block_.begin() + spti_offset::cdb);
}

void SptiRequest::finish() {
    if (data_.size() == 1) data_[0] = shortBuffer_[0];
}

bool spti_execute(const ScsiHandle &handle, std::span<const uint8_t> command, int timeoutMs, SptiDirection direction,
                  std::span<uint8_t> data, int32_t *status, const SptiIoctl &ioctl) {
    SptiRequest request(handle, command, timeoutMs, direction, data);
    std::string errorText;
    int errorNumber = 0;
    if (!ioctl(request.block(), errorText, errorNumber)) {
        LMV_trace("convert_winstatus_to_lmvstatus: Received error %s (%d)", errorText.c_str(), errorNumber);
        *status = SCSI_FAILURE;
        return false;
    }
    request.finish();
    *status = convert_scsistatus_to_lmvstatus(request.scsiStatus(), request.sense());
    return true;
}
