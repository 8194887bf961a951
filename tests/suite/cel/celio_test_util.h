#pragma once
// Helpers of the image file tests: a scratch folder, pictures with varied
// pixels, and a read that gathers everything CELIO_Manager returns.
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "suite/cel/cel_cel.h"
#include "suite/cel/cel_pixmap.h"
#include "suite/cel/celio_manager.h"

namespace celio_test {

struct ReadBack {
    bool ok = false;
    int appended = 0;
    CEL_RepresentationPtr rep;
    QString comment;
    QDateTime date;
    CELIO_FileInfo info;
};

inline ReadBack readFile(const QString &path)
{
    ReadBack r;
    QList<CEL_RepresentationPtr> reps;
    r.ok = CELIO_Manager::getInstance().read(path, r.date, CEL_Context(), reps, &r.comment, &r.info);
    r.appended = int(reps.size());
    if (!reps.isEmpty())
        r.rep = reps.first();
    return r;
}

inline bool writeLeaf(const CEL_RepresentationPtr &leaf, const QString &path, const QString &format,
                      const QString &comment = {}, double dpi = 0)
{
    auto cel = CEL_Cel::create(0);
    cel->setRepresentation(leaf);
    cel->setDpi(dpi);
    return CELIO_Manager::getInstance().write(cel.get(), path, QStringLiteral("tif"), format, comment);
}

// Pixels that exercise every byte: a seeded noise over the whole block.
template <class Leaf>
UT_SharePtr<Leaf> noiseLeaf(int width, int height, unsigned seed = 7)
{
    auto leaf = UT_makeShared<Leaf>(width, height);
    std::mt19937 rng(seed);
    auto *bytes = reinterpret_cast<uint8_t *>(leaf->data());
    for (size_t i = 0, n = leaf->pixelCount() * sizeof(typename Leaf::Pixel); i < n; ++i)
        bytes[i] = uint8_t(rng());
    return leaf;
}

// A black-and-white drawing: white paper with black strokes.
inline UT_SharePtr<CEL_PixmapMatte8> bilevelLeaf(int width, int height)
{
    auto leaf = UT_makeShared<CEL_PixmapMatte8>(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            leaf->at(x, y) = ((x / 3 + y / 5) % 7 == 0 || x == width - 1) ? 0 : 255;
    return leaf;
}

inline bool setModified(const QString &path, const QDateTime &time)
{
    QFile f(path);
    return f.open(QIODevice::ReadWrite) && f.setFileTime(time, QFileDevice::FileModificationTime);
}

template <class Leaf>
bool samePixels(const Leaf &a, const CEL_RepresentationPtr &b)
{
    const auto *other = dynamic_cast<const Leaf *>(b.get());
    return other && other->width() == a.width() && other->height() == a.height() &&
           std::memcmp(a.data(), other->data(), a.pixelCount() * sizeof(typename Leaf::Pixel)) == 0;
}

class ScratchDir : public ::testing::Test {
protected:
    QString file(const QString &name) const { return dir_.filePath(name); }
    QTemporaryDir dir_;
};

}  // namespace celio_test
