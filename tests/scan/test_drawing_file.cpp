// The drawing record, and saving and loading drawings: round trips of every kind with scan
// information, file names, side files, and failed saves that must lose nothing.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>
#include <tiffio.h>

#include "scan/drawing.h"
#include "scan/parameters.h"
#include "scan/pixmap_pixmap.h"
#include "scan/vector_scaninfo.h"
#include "suite/base/osw_util.h"
#include "suite/cel/celio_manager.h"
#include "support/file_size_limit.h"
#include "support/message_capture.h"

namespace {

// Every pixel a little different, so that a lost or shifted byte shows.
LMV_pixmap *patterned_pixmap(int32_t kind, int32_t width, int32_t height, uint32_t seed = 1) {
    LMV_pixmap *p = create_pixmap(kind, width, height);
    const CEL_PixmapPtr leaf = best_of_pixmap(p);
    std::mt19937 random(seed);
    auto *bytes = static_cast<uint8_t *>(const_cast<void *>(leaf->rawData()));  // ours, freshly made
    for (size_t i = 0; i < leaf->pixelCount() * leaf->bytesPerPixel(); ++i) bytes[i] = uint8_t(random());
    if (kind == PIXMAP_RGBA8)  // scanned colour has no alpha
        for (size_t i = 0; i < leaf->pixelCount(); ++i) rgba8_data_of_pixmap(p)[i].a = 0;
    return p;
}

QByteArray pixel_bytes(const LMV_pixmap *p) {
    const CEL_PixmapPtr leaf = best_of_pixmap(p);
    return QByteArray(static_cast<const char *>(leaf->rawData()), qsizetype(leaf->pixelCount() * leaf->bytesPerPixel()));
}

QByteArray file_bytes(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

const char *const kScanInfo =
    "Version: 3 Scan Host: localhost Scanner Name: Test_Scanner Threshold: -1 Black point: 12 White point: 240 "
    "Gamma: 1.5 Speed: 35 Peg Side: Top Pegged: Yes Paper Size: 12 Pages: 1 DPI: 150 Rotation Angle: 0.0125 "
    "Rotation Center X: 600.5 Rotation Center Y: 450.25 ";

class DrawingFile : public ::testing::Test {
protected:
    // A drawing BG-0001 as the scan loop leaves it before the save.
    Drawing *scanned(LMV_pixmap *pixmap, int32_t format = 2, const QString &folder = {}) {
        Drawing *d = create_Drawing(QStringLiteral("BG"), QStringLiteral("0001"), folder.isEmpty() ? dir_.path() : folder);
        set_file_format_of_Drawing(d, format);
        EXPECT_EQ(LMV_scaninfo_from_str(scaninfo_of_Drawing(d), kScanInfo), 0);
        set_pixmap_of_Drawing(d, pixmap);
        drawings_.push_back(d);
        return d;
    }
    void TearDown() override {
        for (Drawing *d : drawings_) destroy_Drawing(&d);
    }
    QString file(const QString &name = QStringLiteral("BG-0001.tif")) const { return dir_.filePath(name); }
    QStringList entries() const { return QDir(dir_.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden); }

    QTemporaryDir dir_;
    std::vector<Drawing *> drawings_;
};

}  // namespace

// Pixels and scan information come back; the file is opaque for other programs (alpha 0 would be
// a transparent sheet) and carries the scan's resolution (without tags they take 72 dpi).
TEST_F(DrawingFile, RoundTripsOfEveryKind) {
    struct Case {
        int32_t kind, format, celType, samples;  // samples 0: not checked
    };
    for (const Case c : {Case{PIXMAP_MATTE8, 2, CEL_TYPE_MATTE8, 1}, Case{PIXMAP_RGBA8, 2, CEL_TYPE_RGBA8, 3},
                         Case{PIXMAP_RGBA8, 4, CEL_TYPE_RGBA8, 3}, Case{PIXMAP_RGBA8, 24, CEL_TYPE_RGBA8, 3},
                         Case{PIXMAP_MATTE16, 24, CEL_TYPE_MATTE16, 0}, Case{PIXMAP_RGBA16, 24, CEL_TYPE_RGBA16, 0}}) {
        SCOPED_TRACE(testing::Message() << c.kind << " as " << c.format);
        LMV_pixmap *pixmap = patterned_pixmap(c.kind, 37, 23);  // odd sizes catch row stride slips
        const QByteArray pixels = pixel_bytes(pixmap);
        Drawing *d = scanned(pixmap, c.format);
        ASSERT_EQ(save_Drawing(d), 0) << CELIO_Manager::getInstance().lastError().toStdString();
        EXPECT_EQ(saved_of_Drawing(d), 1);
        EXPECT_EQ(entries(), QStringList{QStringLiteral("BG-0001.tif")});

        TIFF *tif = TIFFOpen(QFile::encodeName(file()).constData(), "r");
        ASSERT_NE(tif, nullptr);
        float x = 0, y = 0;
        uint16_t unit = 0;
        TIFFGetField(tif, TIFFTAG_XRESOLUTION, &x);
        TIFFGetField(tif, TIFFTAG_YRESOLUTION, &y);
        TIFFGetField(tif, TIFFTAG_RESOLUTIONUNIT, &unit);
        TIFFClose(tif);
        EXPECT_EQ(std::tuple(x, y, unit), std::tuple(150.0f, 150.0f, uint16_t(RESUNIT_INCH)));

        QString text;
        CELIO_FileInfo info;
        Drawing *back = load_Drawing(file(), text, &info);
        ASSERT_NE(back, nullptr);
        drawings_.push_back(back);
        EXPECT_EQ(text.toStdString(), kScanInfo);
        if (c.samples) {
            EXPECT_EQ(info.samplesPerPixel, c.samples);
            EXPECT_FALSE(info.hasAlpha);
        }
        const LMV_pixmap *loaded = pixmap_of_Drawing(back);
        EXPECT_EQ(std::pair(width_of_pixmap(loaded), height_of_pixmap(loaded)), std::pair(37, 23));
        EXPECT_EQ(best_of_pixmap(loaded)->type(), c.celType);
        EXPECT_EQ(pixel_bytes(loaded), pixels);  // alpha 0 included
    }
}

TEST_F(DrawingFile, SideFileOnRequestThroughTheRemapTable) {
    Drawing *d = scanned(patterned_pixmap(PIXMAP_MATTE8, 8, 8), 2, QStringLiteral("/studio/scans"));
    oswRemapPath::setTable(QStringLiteral("/studio/scans=%1").arg(dir_.path()));
    const int plain = save_Drawing(d);
    const QStringList plainEntries = entries();
    set_write_scaninfo_file_of_Drawing(d, 1);
    const int withSide = save_Drawing(d);
    oswRemapPath::setTable(QString());
    EXPECT_EQ(std::pair(plain, withSide), std::pair(0, 0));
    EXPECT_EQ(plainEntries, QStringList{QStringLiteral("BG-0001.tif")}) << "no side file unless asked for";
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("BG-0001.si"), QStringLiteral("BG-0001.tif")}));
    // The same line as the file's comment, without a line end.
    const QByteArray side = file_bytes(file(QStringLiteral("BG-0001.si")));
    EXPECT_EQ(side.toStdString(), LMV_scaninfo_to_str(scaninfo_of_Drawing(d)));
}

TEST_F(DrawingFile, FolderThatIsAFilePassesOverTheSideFileAndFailsTheSave) {
    const QString notFolder = file(QStringLiteral("plain"));
    QFile(notFolder).open(QIODevice::WriteOnly);
    Drawing *d = scanned(patterned_pixmap(PIXMAP_MATTE8, 8, 8), 2, notFolder);
    set_write_scaninfo_file_of_Drawing(d, 1);
    MessageCapture messages;
    EXPECT_EQ(save_Drawing(d), 1);
    EXPECT_EQ(saved_of_Drawing(d), 0);
    EXPECT_TRUE(messages.lines().empty()) << "the caller reports the failed save; nothing to delete";
    EXPECT_EQ(entries(), QStringList{QStringLiteral("plain")});
}

TEST_F(DrawingFile, TargetThatCannotBeReplacedIsReportedAndKept) {
    ASSERT_TRUE(QDir().mkdir(file()));
    MessageCapture messages;
    EXPECT_EQ(save_Drawing(scanned(patterned_pixmap(PIXMAP_MATTE8, 8, 8))), 1);
    EXPECT_TRUE(messages.contains("Unable to delete file: " + file().toStdString()));
    EXPECT_TRUE(QFileInfo(file()).isDir());
    EXPECT_EQ(entries(), QStringList{QStringLiteral("BG-0001.tif")});  // no temporary left behind
}

// A save that fails, before writing or half way (the file size limit stops
// it, for root too), leaves the previous file exactly as it was.
TEST_F(DrawingFile, FailedSavesKeepThePreviousFile) {
    Drawing *d = scanned(patterned_pixmap(PIXMAP_MATTE8, 400, 300, 1));
    ASSERT_EQ(save_Drawing(d), 0);
    const QByteArray before = file_bytes(file());
    ASSERT_GT(before.size(), 100000);  // noise doesn't compress

    set_pixmap_of_Drawing(d, patterned_pixmap(PIXMAP_MATTE8, 400, 300, 2));
    set_file_format_of_Drawing(d, 999);
    EXPECT_EQ(save_Drawing(d), 1) << "unknown format";
    set_file_format_of_Drawing(d, 2);
    EXPECT_EQ(with_file_size_limit(32768, [&] { return save_Drawing(d); }), 1);
    EXPECT_EQ(file_bytes(file()), before);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("BG-0001.tif")});
}

TEST_F(DrawingFile, PixmapWithoutPixelsWritesNothingAndIsNotReported) {
    Drawing *d = scanned(create_pixmap(PIXMAP_NONE, 0, 0));
    MessageCapture messages;
    EXPECT_EQ(save_Drawing(d), 0);
    EXPECT_EQ(saved_of_Drawing(d), 0);
    EXPECT_TRUE(messages.errors().empty());
    EXPECT_TRUE(entries().isEmpty());
}

// The name of a loaded record is the last two fields of the file name, which
// may be outside ASCII.
TEST_F(DrawingFile, LoadedRecordTakesItsNameFromTheLastTwoFields) {
    Drawing *d = create_Drawing(QStringLiteral("Décor"), QStringLiteral("scène-12"), dir_.path());
    drawings_.push_back(d);
    set_file_format_of_Drawing(d, 2);
    set_pixmap_of_Drawing(d, patterned_pixmap(PIXMAP_MATTE8, 5, 4));
    ASSERT_EQ(save_Drawing(d), 0);
    const QString path = file(QStringLiteral("Décor-scène-12.tif"));
    EXPECT_EQ(entries(), QStringList{QFileInfo(path).fileName()});
    const QByteArray before = file_bytes(path);

    QString text;
    Drawing *back = load_Drawing(path, text);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(name_of_Drawing(back), QStringLiteral("scène-12"));
    EXPECT_EQ(path_of_Drawing(back), path);
    EXPECT_EQ(id_of_Drawing(&back), id_of_Drawing(&d) + 1);  // a load counts as a new record
    // Its path is a file and its element empty: saving it again can't land on the original.
    set_file_format_of_Drawing(back, 2);
    EXPECT_EQ(save_Drawing(back), 1);
    EXPECT_EQ(file_bytes(path), before);
    destroy_Drawing(&back);

    ASSERT_TRUE(QFile::rename(path, file(QStringLiteral("single.tif"))));
    back = load_Drawing(file(QStringLiteral("single.tif")), text);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(name_of_Drawing(back), QStringLiteral("single"));
    EXPECT_EQ(id_of_Drawing(&back), id_of_Drawing(&d) + 2) << "a destroyed record frees no number";
    destroy_Drawing(&back);
}

TEST_F(DrawingFile, UnreadableFilesAreReportedAndGiveNoRecord) {
    QFile f(file(QStringLiteral("BG-0002.tif")));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("II*\0 this is not really an image", 32);
    f.close();
    for (const QString &path : {f.fileName(), file(QStringLiteral("missing.tif"))}) {
        MessageCapture messages;
        QString text;
        EXPECT_EQ(load_Drawing(path, text), nullptr);
        EXPECT_EQ(messages.errors(), std::vector{"Cannot load file " + path.toStdString() + ", unsupported type."});
    }
}

TEST(Drawing, ParametersCopyOnlyThePresentGroups) {
    Standard_parameters p;
    ASSERT_TRUE(init_black_point_of_Standard_parameters(&p, 0, 255, 20));
    ASSERT_TRUE(init_white_point_of_Standard_parameters(&p, 0, 255, 235));
    ASSERT_TRUE(init_gamma_of_Standard_parameters(&p, 0.01f, 3.0f, 1.0f));
    set_white_point_of_Standard_parameters(&p, 200);
    Drawing *d = create_Drawing(QStringLiteral("A"), QStringLiteral("1"), QStringLiteral("."));
    set_threshold_of_Drawing(d, 77);
    set_speed_of_Drawing(d, 9);
    copy_parameters_to_Drawing(&p, d);
    const LMV_scaninfo *info = scaninfo_of_Drawing(d);
    EXPECT_EQ(info->black_point, 20);
    EXPECT_EQ(info->white_point, 200);  // the current value, not the default
    EXPECT_EQ(info->gamma, 1.0f);
    EXPECT_EQ(info->threshold, 77);  // no threshold group: left alone
    EXPECT_EQ(info->speed, 9);
    destroy_Drawing(&d);
    EXPECT_EQ(d, nullptr);
}

TEST(Drawing, PegSideNames) {
    for (auto [side, name] : {std::pair{1, "left"}, {2, "top"}, {3, "right"}, {4, "bottom"}, {0, ""}, {7, ""}, {-1, ""}}) {
        EXPECT_STREQ(peg_side_name(side), name);
        EXPECT_STREQ(last_peg_side_name, name);
    }
}

// The record holds one reference to its pixmap, and flips it so that the
// pegs stay on their side.
TEST(Drawing, PixmapIsHeldOnceAndFlippedWithThePegs) {
    // A small grey pixmap whose pixel (x, y) holds 10 * y + x.
    const auto numbered = [](int32_t width, int32_t height) {
        LMV_pixmap *p = create_pixmap(PIXMAP_MATTE8, width, height);
        for (int32_t i = 0; i < width * height; ++i) matte8_data_of_pixmap(p)[i] = uint8_t(10 * (i / width) + i % width);
        return p;
    };
    Drawing *d = create_Drawing(QStringLiteral("A"), QStringLiteral("1"), QStringLiteral("."));
    flip_Drawing(d);  // no pixmap: nothing to do
    LMV_pixmap *first = numbered(4, 3);
    const CEL_PixmapMatte8Ptr firstLeaf = matte8_of_pixmap(first);
    set_pixmap_of_Drawing(d, first);
    set_pixmap_of_Drawing(d, first);
    EXPECT_EQ(first->ref_count, 1);
    EXPECT_EQ(firstLeaf->refCount(), 2);  // ours and the pixmap's
    set_pixmap_of_Drawing(d, numbered(3, 2));
    EXPECT_EQ(firstLeaf->refCount(), 1);  // the first pixmap is gone

    const uint8_t *data = matte8_data_of_pixmap(pixmap_of_Drawing(d));
    set_peg_side_of_Drawing(d, 1);  // pegs on the left: upside down
    flip_Drawing(d);
    EXPECT_EQ((std::vector<uint8_t>(data, data + 6)), (std::vector<uint8_t>{10, 11, 12, 0, 1, 2}));
    flip_Drawing(d);
    set_peg_side_of_Drawing(d, 2);  // pegs on top: left to right
    flip_Drawing(d);
    EXPECT_EQ((std::vector<uint8_t>(data, data + 6)), (std::vector<uint8_t>{2, 1, 0, 12, 11, 10}));
    destroy_Drawing(&d);
}
