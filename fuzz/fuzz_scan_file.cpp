// Reads the input as an image file: TIFF through libtiff, anything else
// through Qt's image readers.
#include <QDateTime>
#include <QList>
#include <QString>

#include <cstdlib>

#include "fuzz_scratch_file.h"
#include "suite/cel/cel_pixmap.h"
#include "suite/cel/celio_manager.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (!fuzz_write_scratch(data, size)) return 0;

    QDateTime date;
    QList<CEL_RepresentationPtr> reps;
    QString comment;
    CELIO_FileInfo info;
    const bool ok = CELIO_Manager::getInstance().read(QString::fromStdString(fuzz_scratch_path()), date, CEL_Context(),
                                                      reps, &comment, &info);
    if (ok != (reps.size() == 1)) std::abort();
    if (ok) {
        // Touch the last pixel: the block must cover the size it claims.
        const auto *pixmap = dynamic_cast<const CEL_Pixmap *>(reps.first().get());
        if (!pixmap || pixmap->width() <= 0 || pixmap->height() <= 0) std::abort();
        const auto *bytes = static_cast<const volatile uint8_t *>(pixmap->rawData());
        (void)bytes[pixmap->pixelCount() * size_t(pixmap->bytesPerPixel()) - 1];
    }
    return 0;
}
