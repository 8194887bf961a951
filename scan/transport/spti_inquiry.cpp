#include "scan/transport/spti_inquiry.h"

#include <cstring>

namespace {

constexpr uint8_t kPeripheralScanner = 6;

bool read_u32(std::span<const uint8_t> bytes, std::size_t offset, uint32_t &value) {
    if (offset > bytes.size() || bytes.size() - offset < 4) return false;
    value = uint32_t(bytes[offset]) | uint32_t(bytes[offset + 1]) << 8 | uint32_t(bytes[offset + 2]) << 16 |
            uint32_t(bytes[offset + 3]) << 24;
    return true;
}

}  // namespace

SptiInquiryResult spti_find_scanner(std::span<const uint8_t> answer, uint8_t target, uint8_t lun) {
    using namespace spti_inquiry_offset;
    if (answer.empty() || answer[0] == 0) return SptiInquiryResult::NoBus;
    const std::size_t busCount = answer[0];
    for (std::size_t bus = 0; bus < busCount; ++bus) {
        uint32_t offset = 0;
        if (!read_u32(answer, buses + bus * bus_size + bus_first_record, offset)) break;
        // A chain can hold no more records than the buffer has room for; this
        // also ends a chain that loops.
        for (std::size_t hops = 0; offset != 0 && hops < answer.size() / record_inquiry; ++hops) {
            if (offset > answer.size() || answer.size() - offset <= record_inquiry) break;
            const uint8_t *record = answer.data() + offset;
            if ((record[record_inquiry] & 0x1f) == kPeripheralScanner && record[record_target] == target &&
                record[record_lun] == lun)
                return SptiInquiryResult::Found;
            if (!read_u32(answer, offset + record_next, offset)) break;
        }
    }
    return SptiInquiryResult::NotFound;
}
