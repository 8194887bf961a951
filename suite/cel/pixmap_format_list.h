#pragma once
// The pixmap formats that an element can be stored in: a number, the file
// extension and the format name that the file writer honours.
#include <QList>
#include <QString>

struct TUPixmapFormat {
    int number;
    const char *extension;
    const char *name;
    const char *description;
};

class TUPixmapFormatList {
public:
    // `assetType` 7 is pixmap assets, the only type the station asks for.
    explicit TUPixmapFormatList(int assetType);

    // Empty for a number not in the list.
    QString fileExtentionFromFormat(int format) const;
    QString pixmapNameFromFormat(int format) const;
    const QList<TUPixmapFormat> &formats() const { return formats_; }

private:
    const TUPixmapFormat *find(int format) const;
    QList<TUPixmapFormat> formats_;
};
