// Runs the built `scanctl info` on files written by the station, by libtiff's
// own tools, and on files that aren't images.
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "scan/drawing.h"
#include "support/run_program.h"
#include "scan/pixmap_pixmap.h"
#include "scan/vector_scaninfo.h"
#include "suite/cel/celio_manager.h"

namespace {

ProcessResult scanctl_info(const QStringList &files) { return run_program(QStringLiteral(SCANCTL_PATH), QStringList{"info"} + files); }

class ScanctlInfo : public ::testing::Test {
protected:
    QString file(const QString &name) const { return dir_.filePath(name); }
    void write(const QString &name, const QByteArray &bytes) {
        QFile f(file(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    QTemporaryDir dir_;
};

}  // namespace

TEST_F(ScanctlInfo, ShowsWhatTheStationSaved) {
    LMV_pixmap *pixmap = create_pixmap(PIXMAP_MATTE8, 37, 23);
    std::fill_n(matte8_data_of_pixmap(pixmap), 37 * 23, uint8_t(200));
    Drawing *d = create_Drawing(QStringLiteral("BG"), QStringLiteral("0007"), dir_.path());
    set_file_format_of_Drawing(d, 2);
    set_scanner_name_of_Drawing(d, QStringLiteral("Test_Scanner"));
    set_peg_side_of_Drawing(d, 4);
    set_pegged_of_Drawing(d, true);
    set_dpi_of_Drawing(d, 150.0f);
    set_paper_size_of_Drawing(d, 12.0f);
    set_black_point_of_Drawing(d, 12);
    rotation_of_Drawing(d, 0.0125f, 600.5f, 450.25f);
    set_pixmap_of_Drawing(d, pixmap);
    ASSERT_EQ(save_Drawing(d), 0);
    const QString saved = QString::fromStdString(LMV_scaninfo_to_str(scaninfo_of_Drawing(d)));
    destroy_Drawing(&d);
    const QString path = file(QStringLiteral("BG-0007.tif"));

    const ProcessResult r = scanctl_info({path});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.isEmpty()) << r.err.toStdString();
    const QString &out = r.out;
    EXPECT_TRUE(out.startsWith(path + QStringLiteral("\n  size:    37 x 23 pixels, %1 bytes on disk\n"
                                                     "  pixels:  Matte8\n  format:  TIFF, ")
                                           .arg(QFileInfo(path).size())))
        << out.toStdString();
    EXPECT_TRUE(out.contains(QStringLiteral("  scan information: ") + saved + QStringLiteral("\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("    version:           3\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("    scanner name:      Test_Scanner\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("    black point:       12\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("    peg side:          bottom\n    pegged:            yes\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("    paper size:        12\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("    dpi:               150\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("    rotation centre:   600.5, 450.25\n")));
    EXPECT_FALSE(out.contains(QStringLiteral("does not parse")));
}

TEST_F(ScanctlInfo, ReadsTiffsMadeByOtherPrograms) {
    const QString ppm2tiff = QStandardPaths::findExecutable(QStringLiteral("ppm2tiff"));
    if (ppm2tiff.isEmpty()) GTEST_SKIP() << "ppm2tiff is not installed";
    write(QStringLiteral("colour.ppm"), QByteArray("P6\n4 3\n255\n") + QByteArray(4 * 3 * 3, '\x40'));
    write(QStringLiteral("grey.pgm"), QByteArray("P5\n5 2\n255\n") + QByteArray(5 * 2, '\x80'));
    ASSERT_EQ(run_program(ppm2tiff, {file(QStringLiteral("colour.ppm")), file(QStringLiteral("colour.tif"))}).status, 0);
    ASSERT_EQ(run_program(ppm2tiff, {file(QStringLiteral("grey.pgm")), file(QStringLiteral("grey.tif"))}).status, 0);

    const ProcessResult r = scanctl_info({file(QStringLiteral("colour.tif")), file(QStringLiteral("grey.tif"))});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.contains(QStringLiteral("  size:    4 x 3 pixels")));
    EXPECT_TRUE(r.out.contains(QStringLiteral("  pixels:  RGBA8\n  format:  TIFF, ")));
    EXPECT_TRUE(r.out.contains(QStringLiteral("  size:    5 x 2 pixels")));
    EXPECT_TRUE(r.out.contains(QStringLiteral("  pixels:  Matte8\n")));
    EXPECT_EQ(r.out.count(QStringLiteral("  scan information: none\n")), 2);
}

TEST_F(ScanctlInfo, CommentThatIsNotScanInformationIsShownAsAParseError) {
    LMV_pixmap *pixmap = create_pixmap(PIXMAP_MATTE8, 4, 4);
    const CEL_CelPtr cel = CEL_Cel::create(0);
    cel->setRepresentation(best_of_pixmap(pixmap));
    const QString path = file(QStringLiteral("odd.tif"));
    ASSERT_TRUE(CELIO_Manager::getInstance().write(cel.get(), path, QStringLiteral("tif"), QStringLiteral("TIFF"),
                                                   QStringLiteral("Version: 3 Scan Host: a")));
    release_pixmap(pixmap);

    const ProcessResult r = scanctl_info({path});
    EXPECT_EQ(r.status, 0);  // the image reads; only its comment is odd
    EXPECT_TRUE(r.out.contains(QStringLiteral("  scan information: Version: 3 Scan Host: a\n"
                                              "  scan information does not parse (LMV_scaninfo_from_str(): parse error (2).)")))
        << r.out.toStdString();
    EXPECT_TRUE(r.out.contains(QStringLiteral("    scan host:         a\n")));
}

TEST_F(ScanctlInfo, FileThatIsNotAnImageFailsButTheOthersAreShown) {
    write(QStringLiteral("notes.tif"), "these are notes, not pixels\n");
    const QString ppm = file(QStringLiteral("tiny.pgm"));
    write(QStringLiteral("tiny.pgm"), QByteArray("P5\n2 2\n255\n") + QByteArray(4, '\x10'));
    const QString missing = file(QStringLiteral("missing.tif"));

    const ProcessResult r = scanctl_info({file(QStringLiteral("notes.tif")), ppm, missing});
    EXPECT_EQ(r.status, 2);
    const QStringList lines = r.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2) << r.err.toStdString();
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("scanctl info: %1: ").arg(file(QStringLiteral("notes.tif")))));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("scanctl info: %1: ").arg(missing)));
    for (const QString &line : lines) EXPECT_GT(line.size(), line.indexOf(QStringLiteral(".tif: ")) + 6);  // a reason
    EXPECT_TRUE(r.out.contains(ppm + QStringLiteral("\n  size:    2 x 2 pixels")));

    EXPECT_EQ(scanctl_info({}).status, 1);
}

TEST_F(ScanctlInfo, RegisterSearchesAtTheFilesDpiCutAsTheStationCutsIt) {
    LMV_pixmap *pixmap = create_pixmap(PIXMAP_MATTE8, 40, 30);
    std::fill_n(matte8_data_of_pixmap(pixmap), 40 * 30, uint8_t(255));
    Drawing *d = create_Drawing(QStringLiteral("R"), QStringLiteral("1"), dir_.path());
    set_file_format_of_Drawing(d, 2);
    set_peg_side_of_Drawing(d, 4);
    set_dpi_of_Drawing(d, 150.6f);
    set_pixmap_of_Drawing(d, pixmap);
    ASSERT_EQ(save_Drawing(d), 0);
    destroy_Drawing(&d);

    const ProcessResult r = run_program(QStringLiteral(SCANCTL_PATH), {"register", file(QStringLiteral("R-1.tif"))});
    EXPECT_EQ(r.status, 2) << "a blank sheet has no peg holes";
    EXPECT_TRUE(r.out.contains(QStringLiteral("R-1.tif: peg side bottom, 150 dpi\n"))) << r.out.toStdString();
}
