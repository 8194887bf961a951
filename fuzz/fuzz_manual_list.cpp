// Reads the input as the numbers field of a manual list and checks what the
// parser promises: an error leaves no names, no range gives more than 1000.
#include <QString>

#include <cstdint>
#include <cstdlib>

#include "workflow/manual_list_syntax.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const ManualListParse parsed = parse_manual_list(text);
    if (!parsed.ok && (!parsed.names.isEmpty() || parsed.error.isEmpty())) std::abort();
    const qsizetype parts = text.count(QLatin1Char(' ')) + 1;
    if (parsed.ok && parsed.names.size() > parts * 1000) std::abort();
    return 0;
}
