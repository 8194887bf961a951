#include "suite/cel/celio_manager.h"

#include <QFile>
#include <QFileInfo>

#include "suite/cel/celio_backends.h"

namespace celio {
namespace {

thread_local QString lastErrorText;

// No side of a picture the station handles comes near this; a header that
// claims more is damaged or hostile.
constexpr qint64 kMaxSide = qint64(1) << 20;

bool looksLikeTiff(const QString &path)
{
    QFile f(path);
    char magic[4] = {};
    if (!f.open(QIODevice::ReadOnly) || f.read(magic, 4) != 4)
        return false;
    const bool little = magic[0] == 'I' && magic[1] == 'I' && (magic[2] == 42 || magic[2] == 43) && magic[3] == 0;
    const bool big = magic[0] == 'M' && magic[1] == 'M' && magic[2] == 0 && (magic[3] == 42 || magic[3] == 43);
    return little || big;
}

}  // namespace

void setLastError(const QString &text)
{
    lastErrorText = text;
}

void setSizeError(const QString &path, qint64 width, qint64 height, bool tooLarge)
{
    const QString text = tooLarge ? QStringLiteral("Cannot read %1: a picture of %2 x %3 pixels is too large.")
                                  : QStringLiteral("Cannot read %1: the file is too small for a picture of %2 x %3 pixels.");
    setLastError(text.arg(path, QString::number(width), QString::number(height)));
}

bool sizeIsSane(qint64 width, qint64 height, int bytesPerPixel)
{
    return width > 0 && height > 0 && width <= kMaxSide && height <= kMaxSide && bytesPerPixel > 0 &&
           bytesPerPixel <= 8 && width * height * bytesPerPixel <= kMaxImageBytes;
}

}  // namespace celio

CELIO_Manager &CELIO_Manager::getInstance()
{
    static CELIO_Manager instance;
    return instance;
}

bool CELIO_Manager::write(const CEL_Cel *cel, const QString &path, const QString &extension,
                          const QString &formatName, const QString &comment)
{
    // Every format this writer knows is a TIFF; the extension only names the file.
    Q_UNUSED(extension);
    celio::setLastError({});
    if (!cel || cel->representations().isEmpty()) {
        celio::setLastError(QStringLiteral("There is no picture to write to %1.").arg(path));
        return false;
    }
    const auto *pixmap = dynamic_cast<const CEL_Pixmap *>(cel->representations().first().get());
    if (!pixmap) {
        celio::setLastError(QStringLiteral("The picture for %1 has no pixels.").arg(path));
        return false;
    }
    celio::TiffWritePolicy policy;
    if (!celio::policyForFormatName(formatName, policy)) {
        celio::setLastError(QStringLiteral("Unknown file format \"%1\" for %2.").arg(formatName, path));
        return false;
    }
    return celio::writeTiff(*pixmap, path, policy, comment, QDateTime::currentDateTime(), cel->dpi());
}

bool CELIO_Manager::read(const QString &path, QDateTime &date, const CEL_Context &context,
                         QList<CEL_RepresentationPtr> &reps, QString *comment, CELIO_FileInfo *info)
{
    // Whole images at their own size are all the station reads.
    Q_UNUSED(context);
    celio::setLastError({});
    const QFileInfo file(path);
    if (!file.exists()) {
        celio::setLastError(QStringLiteral("Cannot read %1: there is no such file.").arg(path));
        return false;
    }
    if (file.isDir()) {
        celio::setLastError(QStringLiteral("Cannot read %1: it is a folder.").arg(path));
        return false;
    }
    if (file.size() == 0) {
        celio::setLastError(QStringLiteral("Cannot read %1: the file is empty.").arg(path));
        return false;
    }

    celio::ReadResult result;
    const bool ok = celio::looksLikeTiff(path) ? celio::readTiff(path, file.size(), result) : celio::readQtImage(path, file.size(), result);
    if (!ok || !result.rep)
        return false;
    reps.append(result.rep);
    date = result.date.isValid() ? result.date : file.lastModified();
    if (comment)
        *comment = result.comment;
    if (info)
        *info = result.info;
    return true;
}

QString CELIO_Manager::lastError() const
{
    return celio::lastErrorText;
}
