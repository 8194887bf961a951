#pragma once
// The dump of command blocks, data and sense bytes in SCSI traces.
#include <cstdint>
#include <span>
#include <string>

// Lines of 16 bytes: "%04x: " with the line's offset, "%02x " per byte (three
// blanks past the end), then the bytes as characters ("." when not printable,
// a blank past the end), then a newline.
std::string scsi_hex_dump(std::span<const uint8_t> bytes);

// Writes the dump line by line to the trace, even when debug mode is off.
void trace_scsi_hex_dump(std::span<const uint8_t> bytes);
