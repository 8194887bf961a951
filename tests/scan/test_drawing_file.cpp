// Saving and loading drawings: round trips of every pixel kind with their scan
// information, file names, side files, and failed saves that must lose nothing.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <random>
#include <sys/resource.h>
#include <tiffio.h>
#include <unistd.h>

#include "scan/drawing.h"
#include "scan/pixmap_pixmap.h"
#include "scan/vector_scaninfo.h"
#include "suite/base/osw_util.h"
#include "suite/cel/celio_manager.h"
#include "support/message_capture.h"

namespace {

// Every pixel a little different, so that a lost or shifted byte shows.
template <class Pixel>
void fill_pattern(Pixel *data, size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    auto *bytes = reinterpret_cast<uint8_t *>(data);
    for (size_t i = 0; i < count * sizeof(Pixel); ++i) bytes[i] = uint8_t(random());
}

LMV_pixmap *patterned_pixmap(int32_t kind, int32_t width, int32_t height, uint32_t seed = 1) {
    LMV_pixmap *p = create_pixmap(kind, width, height);
    const size_t n = size_t(width) * size_t(height);
    switch (kind) {
    case PIXMAP_RGBA8: {
        CEL_RGBA8Pixel *px = rgba8_data_of_pixmap(p);
        fill_pattern(px, n, seed);
        for (size_t i = 0; i < n; ++i) px[i].a = 0;  // scanned colour has no alpha
        break;
    }
    case PIXMAP_RGBA16: fill_pattern(rgba16_data_of_pixmap(p), n, seed); break;
    case PIXMAP_MATTE16: fill_pattern(matte16_data_of_pixmap(p), n, seed); break;
    case PIXMAP_MATTE8: fill_pattern(matte8_data_of_pixmap(p), n, seed); break;
    }
    return p;
}

QByteArray pixel_bytes(const LMV_pixmap *p) {
    const CEL_PixmapPtr leaf = best_of_pixmap(p);
    if (!leaf) return {};
    return QByteArray(static_cast<const char *>(leaf->rawData()), qsizetype(leaf->pixelCount() * leaf->bytesPerPixel()));
}

QByteArray file_bytes(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// A drawing as the scan loop leaves it before the save.
Drawing *scanned_drawing(const QString &dir, LMV_pixmap *pixmap, int32_t format) {
    Drawing *d = create_Drawing(QStringLiteral("BG"), QStringLiteral("0001"), dir);
    set_file_format_of_Drawing(d, format);
    set_scan_host_of_Drawing(d, QStringLiteral("localhost"));
    set_scanner_name_of_Drawing(d, QStringLiteral("Test_Scanner"));
    set_peg_side_of_Drawing(d, 2);
    set_pegged_of_Drawing(d, true);
    set_paper_size_of_Drawing(d, 12.0f);
    set_dpi_of_Drawing(d, 150.0f);
    set_pages_of_Drawing(d, 1.0f);
    set_threshold_of_Drawing(d, -1);
    set_black_point_of_Drawing(d, 12);
    set_white_point_of_Drawing(d, 240);
    set_gamma_of_Drawing(d, 1.5f);
    set_speed_of_Drawing(d, 35);
    rotation_of_Drawing(d, 0.0125f, 600.5f, 450.25f);
    set_pixmap_of_Drawing(d, pixmap);
    return d;
}

class DrawingFile : public ::testing::Test {
protected:
    QString file(const QString &name) const { return dir_.filePath(name); }
    QStringList entries() const { return QDir(dir_.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden); }
    QTemporaryDir dir_;
};

struct RoundTrip {
    int32_t kind;
    int32_t format;
    int celType;
};

class DrawingRoundTrip : public DrawingFile, public ::testing::WithParamInterface<RoundTrip> {};

}  // namespace

TEST_P(DrawingRoundTrip, PixelsAndScanInformationComeBack) {
    const RoundTrip t = GetParam();
    LMV_pixmap *pixmap = patterned_pixmap(t.kind, 37, 23);  // odd sizes catch row stride slips
    const QByteArray pixels = pixel_bytes(pixmap);
    Drawing *d = scanned_drawing(dir_.path(), pixmap, t.format);
    ASSERT_EQ(save_Drawing(d), 0) << CELIO_Manager::getInstance().lastError().toStdString();
    EXPECT_EQ(saved_of_Drawing(d), 1);
    const std::string written = LMV_scaninfo_to_str(scaninfo_of_Drawing(d));
    EXPECT_EQ(entries(), QStringList{QStringLiteral("BG-0001.tif")});

    QString text;
    Drawing *back = load_Drawing(file(QStringLiteral("BG-0001.tif")), text);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(text.toStdString(), written);
    ASSERT_EQ(LMV_scaninfo_from_str(scaninfo_of_Drawing(back), text.toUtf8().constData()), 0);
    const LMV_scaninfo *in = scaninfo_of_Drawing(back);
    EXPECT_EQ(in->version, 3);
    EXPECT_EQ(in->scanner_name, "Test_Scanner");
    EXPECT_EQ(in->black_point, 12);
    EXPECT_EQ(in->white_point, 240);
    EXPECT_EQ(in->gamma, 1.5f);
    EXPECT_EQ(in->speed, 35);
    EXPECT_EQ(in->peg_side, 2);
    EXPECT_EQ(in->pegged, 1);
    EXPECT_EQ(in->dpi, 150.0f);
    EXPECT_EQ(in->rotation_center_y, 450.25f);

    const LMV_pixmap *loaded = pixmap_of_Drawing(back);
    EXPECT_EQ(width_of_pixmap(loaded), 37);
    EXPECT_EQ(height_of_pixmap(loaded), 23);
    EXPECT_EQ(best_of_pixmap(loaded)->type(), t.celType);
    EXPECT_EQ(pixel_bytes(loaded), pixels);
    destroy_Drawing(&back);
    destroy_Drawing(&d);
}

INSTANTIATE_TEST_SUITE_P(AllKinds, DrawingRoundTrip,
                         ::testing::Values(RoundTrip{PIXMAP_MATTE8, 2, CEL_TYPE_MATTE8},
                                           RoundTrip{PIXMAP_RGBA8, 4, CEL_TYPE_RGBA8},
                                           RoundTrip{PIXMAP_MATTE16, 24, CEL_TYPE_MATTE16},
                                           RoundTrip{PIXMAP_RGBA16, 24, CEL_TYPE_RGBA16}));

TEST_F(DrawingFile, ScanIsWrittenOpaqueAtItsResolution) {
    // Other programs show alpha 0 as a transparent sheet and take a file
    // without resolution tags for 72 dpi.
    struct Case {
        int32_t kind, format, samples;
    };
    for (const Case c : {Case{PIXMAP_RGBA8, 2, 3}, Case{PIXMAP_RGBA8, 4, 3}, Case{PIXMAP_RGBA8, 24, 3},
                         Case{PIXMAP_MATTE8, 2, 1}}) {
        SCOPED_TRACE(c.format);
        LMV_pixmap *pixmap = patterned_pixmap(c.kind, 16, 9);
        const QByteArray pixels = pixel_bytes(pixmap);
        Drawing *d = scanned_drawing(dir_.path(), pixmap, c.format);
        ASSERT_EQ(save_Drawing(d), 0);
        const QString path = file(QStringLiteral("BG-0001.tif"));
        TIFF *tif = TIFFOpen(QFile::encodeName(path).constData(), "r");
        ASSERT_NE(tif, nullptr);
        float x = 0, y = 0;
        uint16_t unit = 0;
        TIFFGetField(tif, TIFFTAG_XRESOLUTION, &x);
        TIFFGetField(tif, TIFFTAG_YRESOLUTION, &y);
        TIFFGetField(tif, TIFFTAG_RESOLUTIONUNIT, &unit);
        TIFFClose(tif);
        EXPECT_EQ(x, 150.0f);
        EXPECT_EQ(y, 150.0f);
        EXPECT_EQ(unit, RESUNIT_INCH);

        QString text;
        CELIO_FileInfo info;
        Drawing *back = load_Drawing(path, text, &info);
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(info.samplesPerPixel, c.samples);
        EXPECT_FALSE(info.hasAlpha);
        EXPECT_EQ(pixel_bytes(pixmap_of_Drawing(back)), pixels);  // alpha 0 included
        destroy_Drawing(&back);
        destroy_Drawing(&d);
    }
}

TEST_F(DrawingFile, SideFileHoldsTheSameLineWithoutLineEnd) {
    Drawing *d = scanned_drawing(dir_.path(), patterned_pixmap(PIXMAP_MATTE8, 8, 8), 2);
    ASSERT_EQ(save_Drawing(d), 0);
    EXPECT_FALSE(QFile::exists(file(QStringLiteral("BG-0001.si"))));  // not asked for

    set_write_scaninfo_file_of_Drawing(d, 1);
    ASSERT_EQ(save_Drawing(d), 0);
    const QByteArray side = file_bytes(file(QStringLiteral("BG-0001.si")));
    EXPECT_EQ(side.toStdString(), LMV_scaninfo_to_str(scaninfo_of_Drawing(d)));
    EXPECT_TRUE(side.endsWith(' '));
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("BG-0001.si"), QStringLiteral("BG-0001.tif")}));
    destroy_Drawing(&d);
}

TEST_F(DrawingFile, PathsGoThroughTheRemapTable) {
    oswRemapPath::setTable(QStringLiteral("/studio/scans=%1").arg(dir_.path()));
    Drawing *d = scanned_drawing(QStringLiteral("/studio/scans"), patterned_pixmap(PIXMAP_MATTE8, 8, 8), 2);
    set_write_scaninfo_file_of_Drawing(d, 1);
    const int result = save_Drawing(d);
    oswRemapPath::setTable(QString());
    EXPECT_EQ(result, 0);
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("BG-0001.si"), QStringLiteral("BG-0001.tif")}));
    destroy_Drawing(&d);
}

TEST_F(DrawingFile, FolderThatIsAFilePassesOverTheSideFileAndFailsTheSave) {
    const QString notFolder = file(QStringLiteral("plain"));
    QFile(notFolder).open(QIODevice::WriteOnly);
    Drawing *d = scanned_drawing(notFolder, patterned_pixmap(PIXMAP_MATTE8, 8, 8), 2);
    set_write_scaninfo_file_of_Drawing(d, 1);
    MessageCapture messages;
    EXPECT_EQ(save_Drawing(d), 1);
    EXPECT_EQ(saved_of_Drawing(d), 0);
    EXPECT_TRUE(messages.errors().empty());  // the caller reports the failed save, not the record
    for (const auto &line : messages.lines()) EXPECT_EQ(line.second.find("Unable to delete"), std::string::npos);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("plain")});
    destroy_Drawing(&d);
}

TEST_F(DrawingFile, TargetThatCannotBeReplacedIsReportedAndKept) {
    const QString target = file(QStringLiteral("BG-0001.tif"));
    ASSERT_TRUE(QDir().mkdir(target));
    Drawing *d = scanned_drawing(dir_.path(), patterned_pixmap(PIXMAP_MATTE8, 8, 8), 2);
    MessageCapture messages;
    EXPECT_EQ(save_Drawing(d), 1);
    EXPECT_TRUE(messages.contains("Unable to delete file: " + target.toStdString()));
    EXPECT_TRUE(QFileInfo(target).isDir());
    EXPECT_EQ(entries(), QStringList{QStringLiteral("BG-0001.tif")});  // no temporary left behind
    destroy_Drawing(&d);
}

// A write that fails half way (the file size limit stops it, for root too)
// must leave the previous file exactly as it was.
TEST_F(DrawingFile, WriteFailingHalfWayKeepsThePreviousFile) {
    const QString target = file(QStringLiteral("BG-0001.tif"));
    Drawing *d = scanned_drawing(dir_.path(), patterned_pixmap(PIXMAP_MATTE8, 400, 300, 1), 2);
    ASSERT_EQ(save_Drawing(d), 0);
    const QByteArray before = file_bytes(target);
    ASSERT_GT(before.size(), 100000);  // noise doesn't compress

    set_pixmap_of_Drawing(d, patterned_pixmap(PIXMAP_MATTE8, 400, 300, 2));
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved;
    limited.rlim_cur = 32768;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const int result = save_Drawing(d);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);

    EXPECT_EQ(result, 1);
    EXPECT_EQ(file_bytes(target), before);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("BG-0001.tif")});
    destroy_Drawing(&d);
}

TEST_F(DrawingFile, UnknownFormatFailsWithoutTouchingTheFolder) {
    Drawing *d = scanned_drawing(dir_.path(), patterned_pixmap(PIXMAP_MATTE8, 8, 8), 2);
    ASSERT_EQ(save_Drawing(d), 0);
    const QByteArray before = file_bytes(file(QStringLiteral("BG-0001.tif")));
    set_file_format_of_Drawing(d, 999);
    EXPECT_EQ(save_Drawing(d), 1);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("BG-0001.tif")});
    EXPECT_EQ(file_bytes(file(QStringLiteral("BG-0001.tif"))), before);
    destroy_Drawing(&d);
}

TEST_F(DrawingFile, PixmapWithoutPixelsWritesNothingAndIsNotReported) {
    Drawing *d = scanned_drawing(dir_.path(), create_pixmap(PIXMAP_NONE, 0, 0), 2);
    MessageCapture messages;
    EXPECT_EQ(save_Drawing(d), 0);
    EXPECT_EQ(saved_of_Drawing(d), 0);
    EXPECT_TRUE(messages.errors().empty());
    EXPECT_TRUE(entries().isEmpty());
    destroy_Drawing(&d);
}

TEST_F(DrawingFile, LoadedRecordTakesItsNameFromTheLastTwoFields) {
    Drawing *d = create_Drawing(QStringLiteral("a"), QStringLiteral("b-c"), dir_.path());
    set_file_format_of_Drawing(d, 2);
    set_pixmap_of_Drawing(d, patterned_pixmap(PIXMAP_MATTE8, 5, 4));
    ASSERT_EQ(save_Drawing(d), 0);
    const QString path = file(QStringLiteral("a-b-c.tif"));
    const QByteArray before = file_bytes(path);

    QString text;
    Drawing *back = load_Drawing(path, text);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(name_of_Drawing(back), QStringLiteral("b-c"));
    EXPECT_EQ(path_of_Drawing(back), path);
    EXPECT_EQ(id_of_Drawing(&back), id_of_Drawing(&d) + 1);  // a load counts as a new record
    // Its path is a file and its element empty: saving it again can't land on the original.
    set_file_format_of_Drawing(back, 2);
    EXPECT_EQ(save_Drawing(back), 1);
    EXPECT_EQ(file_bytes(path), before);
    destroy_Drawing(&back);
    destroy_Drawing(&d);

    ASSERT_TRUE(QFile::rename(path, file(QStringLiteral("single.tif"))));
    back = load_Drawing(file(QStringLiteral("single.tif")), text);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(name_of_Drawing(back), QStringLiteral("single"));
    destroy_Drawing(&back);
}

TEST_F(DrawingFile, UnreadableFilesAreReportedAndGiveNoRecord) {
    const QString notImage = file(QStringLiteral("BG-0002.tif"));
    QFile f(notImage);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("II*\0 this is not really an image", 32);
    f.close();
    for (const QString &path : {notImage, file(QStringLiteral("missing.tif"))}) {
        MessageCapture messages;
        QString text;
        EXPECT_EQ(load_Drawing(path, text), nullptr);
        ASSERT_EQ(messages.errors().size(), 1u);
        EXPECT_EQ(messages.errors()[0], "Cannot load file " + path.toStdString() + ", unsupported type.");
    }
}

TEST_F(DrawingFile, NamesOutsideAsciiSurviveTheSaveAndTheLoad) {
    Drawing *d = create_Drawing(QStringLiteral("Décor"), QStringLiteral("scène-12"), dir_.path());
    set_file_format_of_Drawing(d, 2);
    set_pixmap_of_Drawing(d, patterned_pixmap(PIXMAP_MATTE8, 5, 4));
    ASSERT_EQ(save_Drawing(d), 0);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("Décor-scène-12.tif")});
    QString text;
    Drawing *back = load_Drawing(file(QStringLiteral("Décor-scène-12.tif")), text);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(name_of_Drawing(back), QStringLiteral("scène-12"));
    destroy_Drawing(&back);
    destroy_Drawing(&d);
}
