// Reads the input as a native drawing file; a drawing that reads is written,
// and what is written reads back and is written again to the same bytes.
#include <QtGlobal>

#include <cstdint>
#include <cstdlib>

#include "suite/graphic/gr_composite_drawing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const bool silenced = [] {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});  // qUncompress's warnings
        return true;
    }();
    (void)silenced;

    const auto drawing = GR_CompositeVectorDrawingObj::fromBytes(
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!drawing) return 0;
    const QByteArray written = drawing->toBytes();
    const auto back = GR_CompositeVectorDrawingObj::fromBytes(written);
    if (!back || back->toBytes() != written) std::abort();
    return 0;
}
