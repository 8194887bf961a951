// Reads the input as a scan information line and, when it reads, writes it
// back and reads that again.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "scan/vector_scaninfo.h"
#include "suite/base/tumessage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const bool silenced = [] {
        TUMessage::instance()->setSilent(true);  // reports on standard error only slow the run
        return true;
    }();
    (void)silenced;

    const std::string text(reinterpret_cast<const char *>(data), size);  // NUL-terminated copy
    LMV_scaninfo *info = create_LMV_scaninfo();
    if (LMV_scaninfo_from_str(info, text.c_str()) == 0) {
        const std::string line = LMV_scaninfo_to_str(info);
        // A written line always reads back.
        if (!line.empty() && LMV_scaninfo_from_str(info, line.c_str()) != 0)
            std::abort();
    }
    destroy_LMV_scaninfo(info);
    return 0;
}
