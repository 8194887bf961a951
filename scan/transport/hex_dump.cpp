#include "scan/transport/hex_dump.h"

#include <cctype>
#include <cstdio>

#include "suite/base/lmv_trace.h"

namespace {

constexpr std::size_t kBytesPerLine = 16;

std::string dump_line(std::span<const uint8_t> bytes, std::size_t start) {
    char buf[8];
    std::string line;
    std::snprintf(buf, sizeof buf, "%04x: ", static_cast<unsigned>(start));
    line += buf;
    for (std::size_t i = start; i < start + kBytesPerLine; ++i) {
        if (i < bytes.size()) {
            std::snprintf(buf, sizeof buf, "%02x ", bytes[i]);
            line += buf;
        } else {
            line += "   ";
        }
    }
    for (std::size_t i = start; i < start + kBytesPerLine; ++i)
        line += i < bytes.size() ? (std::isprint(bytes[i]) ? static_cast<char>(bytes[i]) : '.') : ' ';
    line += '\n';
    return line;
}

}  // namespace

std::string scsi_hex_dump(std::span<const uint8_t> bytes) {
    std::string out;
    for (std::size_t start = 0; start < bytes.size(); start += kBytesPerLine) out += dump_line(bytes, start);
    return out;
}

void trace_scsi_hex_dump(std::span<const uint8_t> bytes) {
    for (std::size_t start = 0; start < bytes.size(); start += kBytesPerLine)
        LMV_direct_trace("%s", dump_line(bytes, start).c_str());
}
