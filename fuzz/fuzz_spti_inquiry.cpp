// The adapter's inquiry answer is walked by offsets the driver supplies.
#include <cstddef>
#include <cstdint>
#include <span>

#include "scan/transport/spti_inquiry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 2) return 0;
    spti_find_scanner(std::span(data + 2, size - 2), data[0], data[1]);
    return 0;
}
