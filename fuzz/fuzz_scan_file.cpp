// Reads the input as an image file: TIFF through libtiff, anything else
// through Qt's image readers.
#include <QDateTime>
#include <QList>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

#include "suite/base/tumessage.h"
#include "suite/cel/cel_pixmap.h"
#include "suite/cel/celio_manager.h"

namespace {

// One scratch file for the whole run: the reader takes a path.
const std::string &scratch_path() {
    static const std::string path = [] {
        char name[] = "/tmp/fuzz_scan_file_XXXXXX";
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
        TUMessage::instance()->setSilent(true);  // warnings traced per input only slow the run
        return true;
    }();
    (void)silenced;

    std::FILE *f = std::fopen(scratch_path().c_str(), "wb");
    if (!f) return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);

    QDateTime date;
    QList<CEL_RepresentationPtr> reps;
    QString comment;
    CELIO_FileInfo info;
    const bool ok = CELIO_Manager::getInstance().read(QString::fromStdString(scratch_path()), date, CEL_Context(), reps,
                                                      &comment, &info);
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
