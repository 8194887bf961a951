#pragma once
// The file encodings behind CELIO_Manager. Each backend reports a failure by
// returning false after setting the thread's last error.
#include <QDateTime>
#include <QList>
#include <QString>

#include "suite/cel/cel_pixmap.h"
#include "suite/cel/celio_manager.h"

namespace celio {

void setLastError(const QString &text);

// How a format name asks for the pixels to be stored. Every choice is lossless
// for the pictures a scan produces.
struct TiffWritePolicy {
    bool bilevelAsG4 = true;   // a Matte8 of only 0 and 255 goes to 1 bit, CCITT G4
    bool colourAlpha = true;   // colour keeps an alpha channel that isn't 0 throughout
};

// The policy of a format name; false for a name the writer doesn't know.
bool policyForFormatName(const QString &name, TiffWritePolicy &policy);

// `dpi` goes to the resolution tags when above 0.
bool writeTiff(const CEL_Pixmap &pixmap, const QString &path, const TiffWritePolicy &policy,
               const QString &comment, const QDateTime &date, double dpi);

// What a reader hands back besides the pixels.
struct ReadResult {
    CEL_RepresentationPtr rep;
    QString comment;
    QDateTime date;  // invalid when the file stores none
    CELIO_FileInfo info;
};

// `fileSize` bounds what a decoder may plausibly produce: a picture that
// would need far more memory than the file's bytes could decode to is refused
// before anything of its size is allocated.
bool readTiff(const QString &path, qint64 fileSize, ReadResult &out);
bool readQtImage(const QString &path, qint64 fileSize, ReadResult &out);

// The most memory one picture may take, whatever its file: a full sheet at
// 1200 dpi in colour needs about half of it, and QImage stops here too.
constexpr qint64 kMaxImageBytes = qint64(1) << 31;

// Refuses pictures whose pixel block couldn't sensibly be held in memory.
bool sizeIsSane(qint64 width, qint64 height, int bytesPerPixel);
// The last error for a refused size: beyond kMaxImageBytes (`tooLarge`), or
// more than the file's bytes could decode to.
void setSizeError(const QString &path, qint64 width, qint64 height, bool tooLarge);

}  // namespace celio
