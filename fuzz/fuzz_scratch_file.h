#pragma once
// For fuzz targets whose parser takes a path: one scratch file for the whole
// run, rewritten with each input and removed at exit.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

#include "suite/base/tumessage.h"

inline const std::string &fuzz_scratch_path() {
    static const std::string path = [] {
        char name[] = "/tmp/fuzz_scratch_XXXXXX";
        const int fd = mkstemp(name);
        if (fd < 0) std::abort();
        close(fd);
        std::atexit([] { unlink(fuzz_scratch_path().c_str()); });
        return std::string(name);
    }();
    return path;
}

// Puts the input in the scratch file; false if it can't be written. Reports
// are silenced on the first call: written to standard error they only slow the run.
inline bool fuzz_write_scratch(const uint8_t *data, size_t size) {
    static const bool silenced = [] {
        TUMessage::instance()->setSilent(true);
        return true;
    }();
    (void)silenced;
    std::FILE *f = std::fopen(fuzz_scratch_path().c_str(), "wb");
    if (!f) return false;
    const bool ok = std::fwrite(data, 1, size, f) == size;
    return std::fclose(f) == 0 && ok;
}
