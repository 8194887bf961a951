#pragma once
// Byte helpers for SCSI fields, for counts of 0 to 4 bytes; any other count
// is an internal assertion and does nothing (the readers return 0).
#include <cstdint>

// Writes the low `count` bytes of `value`, most significant first.
void put_bytes_big_endian(uint8_t *buffer, int32_t count, uint32_t value);
// Reads `count` bytes, the first one most significant.
uint32_t get_bytes_big_endian(const uint8_t *buffer, int32_t count);
// Reads `count` bytes, the first one least significant.
uint32_t get_bytes_little_endian(const uint8_t *buffer, int32_t count);
