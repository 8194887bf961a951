#pragma once
// The one place that knows the bytes of image files. Scan files are TIFF
// files written here; reading also takes images made by other programs.
#include <QDateTime>
#include <QList>
#include <QString>

#include "suite/cel/cel_cel.h"
#include "suite/cel/cel_context.h"
#include "suite/cel/cel_representation.h"

// What a read found in the file itself, for tools that describe files.
struct CELIO_FileInfo {
    QString container;    // "TIFF", "PNG", "JPEG", "BMP", ...
    QString compression;  // "CCITT G4", "Deflate", "none", ... (TIFF only)
    QString photometric;  // "min-is-black", "min-is-white", "RGB", "palette", ...
    int bitsPerSample = 0;
    int samplesPerPixel = 0;
    bool hasAlpha = false;
};

class CELIO_Manager {
public:
    static CELIO_Manager &getInstance();

    // Writes the cel's first pixel representation to `path` in the format
    // named `formatName` (see TUPixmapFormatList), with `comment` stored so
    // that it reads back unchanged, the current date and the cel's dpi. True
    // on success.
    bool write(const CEL_Cel *cel, const QString &path, const QString &extension,
               const QString &formatName, const QString &comment);

    // Reads the image at `path` into one representation appended to `reps`
    // (RGBA8, RGBA16, Matte8 or Matte16), the stored comment into `comment`
    // (empty when there is none) and the stored date into `date` (the file's
    // modification time when it has none). False, with nothing appended, on a
    // file that can't be read; never a crash. `info` may be null.
    bool read(const QString &path, QDateTime &date, const CEL_Context &context,
              QList<CEL_RepresentationPtr> &reps, QString *comment, CELIO_FileInfo *info = nullptr);

    // Why the last read or write of this thread failed, in plain words.
    QString lastError() const;

private:
    CELIO_Manager() = default;
};
