// Scan files written here read back exactly, with their comment and date.
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <tuple>
#include <type_traits>
#include <tiffio.h>
#include <vector>

#include "celio_test_util.h"
#include "suite/cel/pixmap_format_list.h"

using namespace celio_test;

namespace {

// A tag of the file's first picture; zero or empty when it has none.
template <class T>
T tagOf(const QString &path, uint32_t tag)
{
    T value{};
    TIFF *tif = TIFFOpen(QFile::encodeName(path).constData(), "r");
    const char *text = nullptr;
    if constexpr (std::is_same_v<T, QString>) {
        if (tif && TIFFGetField(tif, tag, &text))
            value = QString::fromLatin1(text);
    } else if (tif) {
        TIFFGetField(tif, tag, &value);
    }
    if (tif)
        TIFFClose(tif);
    return value;
}

// The picture as programs that know nothing of the station see it: libtiff's
// RGBA interface, on which viewers build, as packed A B G R from the top byte.
std::vector<uint32_t> seenElsewhere(const QString &path)
{
    std::vector<uint32_t> raster;
    TIFF *tif = TIFFOpen(QFile::encodeName(path).constData(), "r");
    uint32_t w = 0, h = 0;
    if (tif && TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &w) && TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &h)) {
        raster.resize(size_t(w) * h);
        if (!TIFFReadRGBAImageOriented(tif, w, h, raster.data(), ORIENTATION_TOPLEFT, 0))
            raster.clear();
    }
    if (tif)
        TIFFClose(tif);
    return raster;
}

template <class Leaf>
UT_SharePtr<Leaf> withoutAlpha(UT_SharePtr<Leaf> leaf)
{
    for (auto *p = leaf->data(); p != leaf->data() + leaf->pixelCount(); ++p)
        p->a = 0;
    return leaf;
}

template <class Leaf>
void expectRoundTrip(const QString &path, const QString &comment, int width, int height)
{
    SCOPED_TRACE(Leaf::kType);
    auto leaf = noiseLeaf<Leaf>(width, height, unsigned(Leaf::kType));
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(leaf), path, QStringLiteral("SCAN"), comment))
        << CELIO_Manager::getInstance().lastError().toStdString();
    const ReadBack r = readFile(path);
    ASSERT_TRUE(r.ok) << CELIO_Manager::getInstance().lastError().toStdString();
    EXPECT_TRUE(samePixels(*leaf, r.rep));
    EXPECT_EQ(std::tuple(r.appended, r.comment, r.info.container, r.info.compression),
              std::tuple(1, comment, QStringLiteral("TIFF"), QStringLiteral("Deflate")));
}

}  // namespace

TEST_F(ScratchDir, EveryKindComesBackExactlyWithItsComment)
{
    QString longComment;
    for (int i = 0; i < 2000; ++i)
        longComment += QStringLiteral("key%1=value %1;").arg(i);
    for (const QString &comment : {QString(), QStringLiteral("dpi=600 peg=Top"),
                                   QString::fromUtf8("Überprüfung — 線画 🎞 \"quoted\"\n\ttabs"),
                                   QStringLiteral("before") + QChar(0) + QStringLiteral("after"),
                                   QString(QChar(0)) + QStringLiteral("starts with NUL"), longComment}) {
        SCOPED_TRACE(comment.left(20).toStdString());
        // Sizes that are not multiples of anything, and one big enough for many strips.
        expectRoundTrip<CEL_PixmapMatte8>(file("m8.tif"), comment, 37, 23);
        expectRoundTrip<CEL_PixmapMatte16>(file("m16.tif"), comment, 301, 517);
        expectRoundTrip<CEL_PixmapRGBA8>(file("c8.tif"), comment, 1, 1);
        expectRoundTrip<CEL_PixmapRGBA16>(file("c16.tif"), comment, 301, 517);
    }
}

TEST_F(ScratchDir, MatteGoesToG4WhenTwoValuedAndTheFormatAllowsIt)
{
    // 13 pixels a row leaves three unused bits in each row's last byte;
    // 4001 x 700 spreads the picture over several strips; blank paper is
    // two-valued too, and tiny in G4; one grey level keeps the whole matte at
    // 8 bits; the general TIFF never goes to 1 bit.
    auto oneGrey = bilevelLeaf(64, 32);
    oneGrey->at(63, 31) = 128;
    auto blank = UT_makeShared<CEL_PixmapMatte8>(2000, 3000);
    std::memset(blank->data(), 255, blank->pixelCount());
    const struct {
        UT_SharePtr<CEL_PixmapMatte8> leaf;
        const char *format;
        uint16_t compression, bps;
    } cases[] = {{bilevelLeaf(13, 9), "SCAN", COMPRESSION_CCITTFAX4, 1},
                 {bilevelLeaf(4001, 700), "SCAN", COMPRESSION_CCITTFAX4, 1},
                 {blank, "SCAN", COMPRESSION_CCITTFAX4, 1},
                 {oneGrey, "SCAN", COMPRESSION_ADOBE_DEFLATE, 8},
                 {bilevelLeaf(40, 40), "TIFF", COMPRESSION_ADOBE_DEFLATE, 8}};
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.leaf->width() << "x" << c.leaf->height() << " " << c.format);
        const QString path = file("m.tif");
        ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(c.leaf), path, QString::fromLatin1(c.format), QStringLiteral("bw")));
        EXPECT_EQ(std::pair(tagOf<uint16_t>(path, TIFFTAG_COMPRESSION), tagOf<uint16_t>(path, TIFFTAG_BITSPERSAMPLE)),
                  std::pair(c.compression, c.bps));
        const ReadBack r = readFile(path);
        EXPECT_TRUE(samePixels(*c.leaf, r.rep));
        EXPECT_EQ(std::pair(r.comment, r.info.compression), std::pair(QStringLiteral("bw"), QString(c.bps == 1 ? "CCITT G4" : "Deflate")));
        EXPECT_TRUE(c.leaf != blank || QFileInfo(path).size() < 4096) << QFileInfo(path).size();
    }
}

TEST_F(ScratchDir, ColourScansOpenOpaqueElsewhereWithTheirResolution)
{
    // A scan's alpha is 0 everywhere; other programs must still see the sheet,
    // at the resolution it was scanned at, and the station its exact pixels.
    for (const QString format : {"SCAN", "SCAN32", "SCAN24", "TIFF"}) {
        SCOPED_TRACE(format.toStdString());
        auto c8 = withoutAlpha(noiseLeaf<CEL_PixmapRGBA8>(50, 20));
        ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(c8), file("c8.tif"), format, {}, 300));
        EXPECT_EQ(std::tuple(tagOf<float>(file("c8.tif"), TIFFTAG_XRESOLUTION), tagOf<float>(file("c8.tif"), TIFFTAG_YRESOLUTION),
                             tagOf<uint16_t>(file("c8.tif"), TIFFTAG_RESOLUTIONUNIT)),
                  std::tuple(300.0f, 300.0f, uint16_t(RESUNIT_INCH)));
        const std::vector<uint32_t> seen = seenElsewhere(file("c8.tif"));
        ASSERT_EQ(seen.size(), c8->pixelCount());
        for (size_t i = 0; i < seen.size(); ++i) {
            const CEL_RGBA8Pixel p = c8->data()[i];
            ASSERT_EQ(seen[i], 0xFF000000u | uint32_t(p.b) << 16 | uint32_t(p.g) << 8 | p.r) << i;
        }
        EXPECT_TRUE(samePixels(*c8, readFile(file("c8.tif")).rep));

        auto c16 = withoutAlpha(noiseLeaf<CEL_PixmapRGBA16>(20, 50));
        ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(c16), file("c16.tif"), format));
        const std::vector<uint32_t> seen16 = seenElsewhere(file("c16.tif"));
        ASSERT_EQ(seen16.size(), c16->pixelCount());
        EXPECT_TRUE(std::all_of(seen16.begin(), seen16.end(), [](uint32_t v) { return TIFFGetA(v) == 255; }));
        EXPECT_TRUE(samePixels(*c16, readFile(file("c16.tif")).rep));
        EXPECT_EQ(tagOf<float>(file("c16.tif"), TIFFTAG_XRESOLUTION), 0.0f);  // a cel of unknown dpi claims none
    }
    // An alpha of the picture's own: SCAN32 keeps it, SCAN24 drops it and
    // reads back with alpha 0, as scanned.
    auto alpha = noiseLeaf<CEL_PixmapRGBA8>(9, 9);
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(alpha), file("c32.tif"), QStringLiteral("SCAN32")));
    EXPECT_EQ(tagOf<uint16_t>(file("c32.tif"), TIFFTAG_SAMPLESPERPIXEL), 4);
    EXPECT_TRUE(samePixels(*alpha, readFile(file("c32.tif")).rep));
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(alpha), file("c24.tif"), QStringLiteral("SCAN24")));
    EXPECT_EQ(tagOf<uint16_t>(file("c24.tif"), TIFFTAG_SAMPLESPERPIXEL), 3);
    EXPECT_TRUE(samePixels(*withoutAlpha(alpha), readFile(file("c24.tif")).rep));
    EXPECT_FALSE(readFile(file("c24.tif")).info.hasAlpha);
}

TEST_F(ScratchDir, DateComesFromTheFileNotItsModificationTime)
{
    const QDateTime before = QDateTime::currentDateTime().addSecs(-2);
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(bilevelLeaf(8, 8)), file("d.tif"), QStringLiteral("SCAN")));
    ASSERT_TRUE(setModified(file("d.tif"), QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6))));
    EXPECT_EQ(tagOf<QString>(file("d.tif"), TIFFTAG_DATETIME).size(), 19);
    EXPECT_FALSE(tagOf<QString>(file("d.tif"), TIFFTAG_SOFTWARE).isEmpty());
    const ReadBack r = readFile(file("d.tif"));
    EXPECT_GE(r.date, before);
    EXPECT_LE(r.date, QDateTime::currentDateTime().addSecs(2));
}

TEST_F(ScratchDir, WriteReplacesAFileAtTheExactPathAndRefusesWhatItCannotStore)
{
    auto &io = CELIO_Manager::getInstance();
    const QString path = file("no-extension-given");
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(noiseLeaf<CEL_PixmapRGBA8>(300, 300)), path, QStringLiteral("SCAN")));
    auto small = noiseLeaf<CEL_PixmapMatte16>(3, 2);
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(small), path, QStringLiteral("SCAN")));
    EXPECT_TRUE(samePixels(*small, readFile(path).rep));
    EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files).size(), 1);

    auto leaf = CEL_RepresentationPtr(noiseLeaf<CEL_PixmapMatte8>(4, 4));
    EXPECT_FALSE(writeLeaf(leaf, file("x.tif"), QStringLiteral("NOSUCH")));
    EXPECT_TRUE(io.lastError().contains("NOSUCH"));
    EXPECT_FALSE(writeLeaf(leaf, file("x.tif"), QString()));
    EXPECT_FALSE(io.write(nullptr, file("x.tif"), "tif", "SCAN", {}));
    EXPECT_FALSE(io.write(CEL_Cel::create(0).get(), file("x.tif"), "tif", "SCAN", {}));
    EXPECT_FALSE(writeLeaf(CEL_RepresentationPtr(UT_makeShared<CEL_PixmapRGBA8>(0, 5)), file("x.tif"), "SCAN"));
    EXPECT_FALSE(QFile::exists(file("x.tif")));

    const QString missing = file("no/such/folder/x.tif");
    EXPECT_FALSE(writeLeaf(leaf, missing, QStringLiteral("SCAN")));
    EXPECT_TRUE(io.lastError().contains(missing));
    // A successful write clears the previous error.
    EXPECT_TRUE(writeLeaf(leaf, file("ok.tif"), QStringLiteral("SCAN")));
    EXPECT_TRUE(io.lastError().isEmpty());
}

TEST_F(ScratchDir, LastErrorBelongsToItsThread)
{
    EXPECT_FALSE(readFile(file("missing.tif")).ok);
    QString other = QStringLiteral("unset");
    std::thread([&] { other = CELIO_Manager::getInstance().lastError(); }).join();
    EXPECT_TRUE(other.isEmpty());
    EXPECT_FALSE(CELIO_Manager::getInstance().lastError().isEmpty());
}

// The closed list of pixmap formats the station stores scans in.
TEST(PixmapFormatList, TheWriterHonoursEveryListedFormatAndNoOtherNumberIsKnown)
{
    const TUPixmapFormatList list(7);
    // The numbers are what settings files store.
    EXPECT_EQ(QStringList({list.pixmapNameFromFormat(2), list.pixmapNameFromFormat(4), list.pixmapNameFromFormat(24)}),
              QStringList({"SCAN", "SCAN32", "TIFF"}));
    QTemporaryDir dir;
    auto cel = CEL_Cel::create(0);
    cel->setRepresentation(CEL_RepresentationPtr(UT_makeShared<CEL_PixmapRGBA8>(3, 3)));
    for (const TUPixmapFormat &f : list.formats()) {
        const QString path = dir.filePath(QStringLiteral("f%1.%2").arg(f.number).arg(list.fileExtentionFromFormat(f.number)));
        EXPECT_TRUE(CELIO_Manager::getInstance().write(cel.get(), path, f.extension, f.name, {})) << f.name;
    }
    for (int unknown : {-1, 0, 1, 3, 25, 1000}) {
        EXPECT_TRUE(list.fileExtentionFromFormat(unknown).isEmpty());
        EXPECT_TRUE(list.pixmapNameFromFormat(unknown).isEmpty());
    }
    EXPECT_TRUE(TUPixmapFormatList(3).formats().isEmpty());
}
