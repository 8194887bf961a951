// Device strings come from Scan.conf, written by hand.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "scan/transport/device_string.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string_view s(reinterpret_cast<const char *>(data), size);
    const auto address = parse_scsi_device_string(s);
    if (address && (address->adapter > 9 || address->target > 9 || address->lun > 9 || address->path > 9))
        __builtin_trap();
    if (LMV_scsi_is_spti(s) && !(address && address->spti)) __builtin_trap();
    return 0;
}
