#include "scan/transport/device_string.h"

#include <array>

namespace {

// One part: the exact prefix followed by exactly one digit.
bool parse_part(std::string_view part, std::string_view prefix, uint8_t &value) {
    if (part.size() != prefix.size() + 1 || !part.starts_with(prefix)) return false;
    const char digit = part.back();
    if (digit < '0' || digit > '9') return false;
    value = static_cast<uint8_t>(digit - '0');
    return true;
}

// Splits into exactly N parts on ";".
template <std::size_t N>
bool split_parts(std::string_view s, std::array<std::string_view, N> &parts) {
    for (std::size_t i = 0; i < N; ++i) {
        const std::size_t semi = s.find(';');
        const bool last = i + 1 == N;
        if (last != (semi == std::string_view::npos)) return false;
        parts[i] = s.substr(0, semi);
        if (!last) s.remove_prefix(semi + 1);
    }
    return true;
}

}  // namespace

std::optional<ScsiAddress> parse_scsi_device_string(std::string_view device) {
    ScsiAddress a;
    if (std::array<std::string_view, 3> p; split_parts(device, p)) {
        if (parse_part(p[0], "sc", a.adapter) && parse_part(p[1], "d", a.target) && parse_part(p[2], "l", a.lun))
            return a;
        return std::nullopt;
    }
    if (std::array<std::string_view, 4> p; split_parts(device, p)) {
        a.spti = true;
        if (parse_part(p[0], "a", a.adapter) && parse_part(p[1], "p", a.path) && parse_part(p[2], "t", a.target) &&
            parse_part(p[3], "l", a.lun))
            return a;
    }
    return std::nullopt;
}

bool LMV_scsi_is_spti(std::string_view device) {
    const auto a = parse_scsi_device_string(device);
    return a && a->spti;
}
