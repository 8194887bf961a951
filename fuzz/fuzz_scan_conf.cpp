// Reads the input as a Scan.conf for the host "fuzzhost".
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

#include "scan/scanner_list.h"
#include "suite/base/tumessage.h"

namespace {

// One scratch file for the whole run: the reader takes a path.
const std::string &scratch_path() {
    static const std::string path = [] {
        char name[] = "/tmp/fuzz_scan_conf_XXXXXX";
        const int fd = mkstemp(name);
        if (fd < 0) std::abort();
        close(fd);
        std::atexit([] { unlink(scratch_path().c_str()); });
        return std::string(name);
    }();
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const bool silenced = [] {
        TUMessage::instance()->setSilent(true);  // reports on standard error only slow the run
        return true;
    }();
    (void)silenced;

    std::FILE *f = std::fopen(scratch_path().c_str(), "wb");
    if (!f) return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);

    auto list = read_ScannerList(QString::fromStdString(scratch_path()), (size & 1) != 0, QStringLiteral("fuzzhost"));
    // Touch what the session touches straight after a read.
    for (int32_t i = 0; i < count_of_ScannerList(list.get()); ++i) {
        ScannerEntry *e = entry_of_ScannerList(list.get(), i);
        (void)information_of_ScannerEntry(e);
        (void)defaultResolution_of_ScannerEntry(e);
        int32_t index = 0;
        (void)find_by_name_of_ScannerList(list.get(), name_of_ScannerEntry(e), &index);
    }
    (void)take_TWAIN_of_ScannerList(list.get());
    return 0;
}
