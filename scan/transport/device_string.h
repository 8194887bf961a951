#pragma once
// The bus address in a device string of the Windows transports. Parts are
// separated by ";" and each has a fixed length, so every number is one digit:
//   ASPI "sc0;d0;l0"      adapter, target, lun
//   SPTI "a0;p0;t0;l0"    adapter, path, target, lun
#include <cstdint>
#include <optional>
#include <string_view>

struct ScsiAddress {
    bool spti = false;
    uint8_t adapter = 0;
    uint8_t path = 0;
    uint8_t target = 0;
    uint8_t lun = 0;
};

// The address, or nothing for a string of neither form.
std::optional<ScsiAddress> parse_scsi_device_string(std::string_view device);

// Whether the string is an SPTI address (the session keeps this answer: SPTI
// needs an elevated process).
bool LMV_scsi_is_spti(std::string_view device);
