// Reads the input as a Scan.conf for the host "fuzzhost".
#include <QString>

#include <cstdint>

#include "fuzz_scratch_file.h"
#include "scan/scanner_list.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (!fuzz_write_scratch(data, size)) return 0;

    auto list = read_ScannerList(QString::fromStdString(fuzz_scratch_path()), (size & 1) != 0, QStringLiteral("fuzzhost"));
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
