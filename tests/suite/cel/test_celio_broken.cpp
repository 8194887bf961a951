// Files that can't be read give false, an error text and nothing else: no
// crash, no appended picture, no libtiff chatter on standard error.
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

#include <tuple>
#include <sys/resource.h>
#include <tiffio.h>

#include "celio_test_util.h"

using namespace celio_test;

namespace {

// The smallest striped TIFF: one strip holding `payload`, whatever size the
// header claims.
QByteArray minimalTiff(uint32_t width, uint32_t height, uint16_t bps, uint16_t compression, const QByteArray &payload)
{
    QByteArray b;
    QDataStream out(&b, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out << quint16(0x4949) << quint16(42) << quint32(8) << quint16(8);
    const uint32_t dataOffset = 8 + 2 + 8 * 12 + 4;
    const std::tuple<uint16_t, uint16_t, uint32_t> entries[] = {  // tag, type (3 short, 4 long), value
        {256, 4, width}, {257, 4, height}, {258, 3, bps}, {259, 3, compression}, {262, 3, 1},
        {273, 4, dataOffset}, {278, 4, height}, {279, 4, uint32_t(payload.size())}};
    for (const auto &[tag, type, value] : entries) {
        out << tag << type << quint32(1);
        if (type == 3)
            out << quint16(value) << quint16(0);
        else
            out << quint32(value);
    }
    out << quint32(0);
    return b + payload;
}

class BrokenFile : public ScratchDir {
protected:
    QString put(const QString &name, const QByteArray &bytes)
    {
        QFile f(file(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        return file(name);
    }
    QByteArray bytesOf(const QString &path)
    {
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::ReadOnly));
        return f.readAll();
    }
    // Reads `path` into a list that already holds one picture and expects
    // the read to fail without touching it or any output.
    void expectRefused(const QString &path)
    {
        QList<CEL_RepresentationPtr> reps{CEL_RepresentationPtr(UT_makeShared<CEL_PixmapMatte8>(1, 1))};
        const QDateTime marker(QDate(1999, 1, 1), QTime(0, 0));
        QDateTime date = marker;
        QString comment = QStringLiteral("untouched");
        EXPECT_FALSE(CELIO_Manager::getInstance().read(path, date, CEL_Context(), reps, &comment));
        EXPECT_EQ(std::tuple(reps.size(), date, comment), std::tuple(1, marker, QStringLiteral("untouched")));
        EXPECT_FALSE(CELIO_Manager::getInstance().lastError().isEmpty());
    }
};

}  // namespace

TEST_F(BrokenFile, MissingEmptyFolderAndNoPictureAreRefusedWithDistinctReasons)
{
    expectRefused(file("missing.tif"));
    const QString missing = CELIO_Manager::getInstance().lastError();
    expectRefused(put("empty.tif", {}));
    const QString empty = CELIO_Manager::getInstance().lastError();
    ASSERT_TRUE(QDir(dir_.path()).mkdir("folder.tif"));
    expectRefused(file("folder.tif"));
    const QString folder = CELIO_Manager::getInstance().lastError();
    EXPECT_NE(missing, empty);
    EXPECT_NE(empty, folder);
    EXPECT_TRUE(folder.contains(file("folder.tif")));
    expectRefused(put("notes.txt", "just some text, no picture\n"));
    expectRefused(put("fake.png", QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(100, 'x')));
}

TEST_F(BrokenFile, DamagedOrTruncatedFilesAreRefusedQuietly)
{
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(noiseLeaf<CEL_PixmapRGBA8>(200, 150)), file("c.tif"), "SCAN", "info"));
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(bilevelLeaf(300, 200)), file("g4.tif"), QStringLiteral("SCAN"), QStringLiteral("info")));
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(noiseLeaf<CEL_PixmapMatte8>(200, 100)), file("t.tif"), "TIFF"));
    QImage png(64, 64, QImage::Format_RGB32);
    png.fill(Qt::red);
    ASSERT_TRUE(png.save(file("p.png")));

    testing::internal::CaptureStderr();
    // Compressed strips with damaged bytes in the middle.
    for (const QString name : {"c.tif", "t.tif"}) {
        QByteArray bytes = bytesOf(file(name));
        for (int k = 100; k < 140; ++k)
            bytes[k] = char(~bytes[k]);
        expectRefused(put("damaged.tif", bytes));
    }
    for (const QString name : {"c.tif", "g4.tif"}) {
        const QByteArray whole = bytesOf(file(name));
        ASSERT_TRUE(readFile(file(name)).ok);
        for (const qsizetype cut : {qsizetype(1), qsizetype(4), qsizetype(8), qsizetype(16), qsizetype(100), whole.size() / 3,
                                    whole.size() / 2, whole.size() - 100, whole.size() - 10, whole.size() - 1}) {
            SCOPED_TRACE(name.toStdString() + " cut to " + std::to_string(cut));
            expectRefused(put("cut.tif", whole.left(cut)));
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    const QByteArray wholePng = bytesOf(file("p.png"));
    expectRefused(put("cut.png", wholePng.left(wholePng.size() / 2)));
}

TEST_F(BrokenFile, AbsurdSizesAreRefusedBeforeAnyAllocation)
{
    // Each claims far more pixels than its few bytes could hold; a reader that
    // believed them would try to allocate gigabytes.
    const QByteArray few(64, '\0');
    const struct {
        uint32_t width, height;
        uint16_t bps, compression;
        const char *why;
    } cases[] = {{100000, 100000, 8, COMPRESSION_NONE, "too large"},       {4000000, 2, 8, COMPRESSION_NONE, ""},
                 {30000, 30000, 8, COMPRESSION_NONE, ""},                  {40000, 40000, 8, COMPRESSION_ADOBE_DEFLATE, ""},
                 {40000, 40000, 1, COMPRESSION_CCITTFAX4, "too small"}};
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << "x" << c.height << " compression " << c.compression);
        expectRefused(put("huge.tif", minimalTiff(c.width, c.height, c.bps, c.compression, few)));
        EXPECT_TRUE(CELIO_Manager::getInstance().lastError().contains(c.why));
    }
    // The same header with honest sizes reads.
    QByteArray pixels(6 * 4, '\x7f');
    const ReadBack r = readFile(put("honest.tif", minimalTiff(6, 4, 8, COMPRESSION_NONE, pixels)));
    ASSERT_TRUE(r.ok) << CELIO_Manager::getInstance().lastError().toStdString();
    EXPECT_EQ(dynamic_cast<const CEL_PixmapMatte8 *>(r.rep.get())->at(5, 3), 0x7f);
}

TEST_F(BrokenFile, PngChunkClaimingGigabytesIsRefusedBeforeAnyAllocation)
{
    // A text chunk right after the header that claims 1.7 GB; libpng would
    // allocate that much before noticing the file ends.
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::blue);
    ASSERT_TRUE(image.save(file("ok.png")));
    const QByteArray whole = bytesOf(file("ok.png"));
    constexpr qsizetype kAfterHeader = 8 + 12 + 13;
    const QByteArray claim("\x69\xa7\x00\x14tEXtDescription\0", 20);
    const QString path = put("claim.png", whole.left(kAfterHeader) + claim + whole.mid(kAfterHeader));

    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    expectRefused(path);
    getrusage(RUSAGE_SELF, &after);
    EXPECT_TRUE(CELIO_Manager::getInstance().lastError().contains("chunk")) << CELIO_Manager::getInstance().lastError().toStdString();
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 * 1024);  // kB
    EXPECT_TRUE(readFile(file("ok.png")).ok);
}
