#include "scan/scsi_bytes.h"

#include "suite/base/assertion.h"

namespace {
constexpr int32_t kMaxBytes = 4;
}

void put_bytes_big_endian(uint8_t *buffer, int32_t count, uint32_t value)
{
    LMV_ASSERT_VOID(count >= 0 && count <= kMaxBytes);
    for (int32_t k = count - 1; k >= 0; --k) {
        buffer[k] = uint8_t(value);
        value >>= 8;
    }
}

uint32_t get_bytes_big_endian(const uint8_t *buffer, int32_t count)
{
    LMV_ASSERT_RET(count >= 0 && count <= kMaxBytes, 0);
    uint32_t value = 0;
    for (int32_t k = 0; k < count; ++k)
        value = (value << 8) | buffer[k];
    return value;
}

uint32_t get_bytes_little_endian(const uint8_t *buffer, int32_t count)
{
    LMV_ASSERT_RET(count >= 0 && count <= kMaxBytes, 0);
    uint32_t value = 0;
    for (int32_t k = count - 1; k >= 0; --k)
        value = (value << 8) | buffer[k];
    return value;
}
