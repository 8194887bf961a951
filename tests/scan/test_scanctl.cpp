// The built scanctl: scanners on the sample studio file, info and register on files of the station
// and of other programs, and the exit status of every command.
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "scan/drawing.h"
#include "scan/pixmap_pixmap.h"
#include "scan/vector_scaninfo.h"
#include "suite/cel/celio_manager.h"
#include "support/run_program.h"

namespace {

ProcessResult scanctl(const QStringList &args) { return run_program(QStringLiteral(SCANCTL_PATH), args); }

class Scanctl : public ::testing::Test {
protected:
    QString file(const QString &name) const { return dir_.filePath(name); }
    void write(const QString &path, const QByteArray &bytes) {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    QTemporaryDir dir_;
};

}  // namespace

TEST_F(Scanctl, ScannersShowsTheStationsScannersAndTheReadersMessages) {
    QFile sample(QStringLiteral(SAMPLES_DIR "/Scan.conf"));
    ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
    const QString conf = file(QStringLiteral("Scan.conf"));
    write(conf, sample.readAll().replace("@HOST@", "studio-a"));
    const ProcessResult r = scanctl({QStringLiteral("scanners"), QStringLiteral("--host"), QStringLiteral("STUDIO-A"), conf});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.err, QString()) << "the sample reads cleanly";
    const QString &out = r.out;
    EXPECT_TRUE(out.startsWith(QStringLiteral("3 scanners for host 'STUDIO-A'\n")));
    for (const char *text : {"Scanner Name:\tTest_Scanner\nDevice:\t\tfieldchart\nScanner Model:\tBogus-Color\n"
                             "Description:\tField chart test scanner # the sign here is text",
                             "  resolutions: 72 100 150 200 300 400 600 (lowest 72, highest 200",
                             "    threshold 0..255, default 100\n",
                             "speed 5..35000 Milliseconds/Line, default 10; presets: fast 2000 custom",
                             "  default peg side: Top\n", "Scanner Name:\tTWAIN\nDevice:\t\tsc0;d0;l0\n", "    ready      nop\n"})
        EXPECT_TRUE(out.contains(QString::fromUtf8(text))) << text;
    EXPECT_FALSE(out.contains(QStringLiteral("Ink_Feeder")));

    // Every host once, with the reader's messages.
    const ProcessResult all = scanctl({QStringLiteral("scanners"), QStringLiteral("--all-hosts"), conf});
    ASSERT_EQ(all.status, 0);
    EXPECT_EQ(all.out.count(QStringLiteral("=== host ")), 3);
    EXPECT_TRUE(all.out.contains(QStringLiteral("=== host paint01 ===\n2 scanners for host 'paint01'")));
    EXPECT_TRUE(all.out.contains(QStringLiteral("1 scanner for host 'layout02'")));
    EXPECT_TRUE(all.err.contains(QStringLiteral("Unknown keyword 'something:' in file '%1'.\n").arg(conf)));
}

// One rule for every command: 1 when the words are wrong, 2 when what they
// ask is refused or fails.
TEST_F(Scanctl, EveryCommandTellsUsageErrorsFromRefusals) {
    const QString missing = dir_.filePath(QStringLiteral("none.conf"));
    const QList<std::pair<QStringList, int>> cases = {
        {{}, 1}, {{"frobnicate"}, 1}, {{"scanners", "--colour"}, 1}, {{"scanners", missing}, 2},
        {{"scanners", dir_.path()}, 2}, {{"info"}, 1}, {{"info", missing}, 2}, {{"register"}, 1},
        {{"register", missing}, 2}, {{"options"}, 1}, {{"options", "--help", "nosuch"}, 1},
        {{"options", "-nosuch_option"}, 2}, {{"scan", "--list", "1"}, 1}, {{"db", "frobnicate"}, 1},
        {{"queue", "frobnicate"}, 1},
    };
    for (const auto &[args, status] : cases)
        EXPECT_EQ(scanctl(args).status, status) << args.join(' ').toStdString();

    // The reader says itself what it could not read.
    EXPECT_EQ(scanctl({QStringLiteral("scanners"), missing}).err, "Failed to open config file: " + missing + "\n");
    EXPECT_EQ(scanctl({QStringLiteral("scanners"), dir_.path()}).err,
              "Error detected while reading config file: " + dir_.path() + "\n");
    const ProcessResult help = scanctl({QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.contains(QStringLiteral("scanners [--host NAME] [--all-hosts] [FILE]")));
}

// The register command searches at the file's dpi cut as the station cuts it.
TEST_F(Scanctl, ShowsWhatTheStationSavedAndRegistersAtItsDpi) {
    LMV_pixmap *pixmap = create_pixmap(PIXMAP_MATTE8, 37, 23);
    std::fill_n(matte8_data_of_pixmap(pixmap), 37 * 23, uint8_t(255));
    Drawing *d = create_Drawing(QStringLiteral("BG"), QStringLiteral("0007"), dir_.path());
    set_file_format_of_Drawing(d, 2);
    const char *saved = "Version: 3 Scan Host: a Scanner Name: Test_Scanner Threshold: -1 Black point: 12 "
                        "White point: 240 Gamma: 1.5 Speed: 35 Peg Side: Bottom Pegged: Yes Paper Size: 12 Pages: 1 "
                        "DPI: 150.6 Rotation Angle: 0.0125 Rotation Center X: 600.5 Rotation Center Y: 450.25 ";
    ASSERT_EQ(LMV_scaninfo_from_str(scaninfo_of_Drawing(d), saved), 0);
    set_pixmap_of_Drawing(d, pixmap);
    ASSERT_EQ(save_Drawing(d), 0);
    destroy_Drawing(&d);
    const QString path = file(QStringLiteral("BG-0007.tif"));

    const ProcessResult r = scanctl({QStringLiteral("info"), path});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.isEmpty()) << r.err.toStdString();
    const QString &out = r.out;
    EXPECT_TRUE(out.startsWith(path + QStringLiteral("\n  size:    37 x 23 pixels, %1 bytes on disk\n"
                                                     "  pixels:  Matte8\n  format:  TIFF, ")
                                           .arg(QFileInfo(path).size())))
        << out.toStdString();
    for (const char *line : {"    version:           3\n", "    black point:       12\n", "    dpi:               150.6\n",
                             "    rotation centre:   600.5, 450.25\n"})
        EXPECT_TRUE(out.contains(QLatin1String(line))) << line;
    EXPECT_TRUE(out.contains(QStringLiteral("  scan information: %1\n").arg(QLatin1String(saved))));
    EXPECT_FALSE(out.contains(QStringLiteral("does not parse")));

    const ProcessResult reg = scanctl({QStringLiteral("register"), path});
    EXPECT_EQ(reg.status, 2) << "a blank sheet has no peg holes";
    EXPECT_TRUE(reg.out.contains(QStringLiteral("BG-0007.tif: peg side bottom, 150 dpi\n"))) << reg.out.toStdString();
}

TEST_F(Scanctl, CommentThatIsNotScanInformationIsShownAsAParseError) {
    LMV_pixmap *pixmap = create_pixmap(PIXMAP_MATTE8, 4, 4);
    const CEL_CelPtr cel = CEL_Cel::create(0);
    cel->setRepresentation(best_of_pixmap(pixmap));
    const QString path = file(QStringLiteral("odd.tif"));
    ASSERT_TRUE(CELIO_Manager::getInstance().write(cel.get(), path, QStringLiteral("tif"), QStringLiteral("TIFF"),
                                                   QStringLiteral("Version: 3 Scan Host: a")));
    release_pixmap(pixmap);

    const ProcessResult r = scanctl({QStringLiteral("info"), path});
    EXPECT_EQ(r.status, 0);  // the image reads; only its comment is odd
    EXPECT_TRUE(r.out.contains(QStringLiteral("  scan information: Version: 3 Scan Host: a\n"
                                              "  scan information does not parse (LMV_scaninfo_from_str(): parse error (2).)")))
        << r.out.toStdString();
    EXPECT_TRUE(r.out.contains(QStringLiteral("    scan host:         a\n")));
}

TEST_F(Scanctl, FileThatIsNotAnImageFailsButTheOthersAreShown) {
    const QString notes = file(QStringLiteral("notes.tif")), ppm = file(QStringLiteral("colour.ppm"));
    const QString missing = file(QStringLiteral("missing.tif"));
    write(notes, "these are notes, not pixels\n");
    write(ppm, QByteArray("P6\n4 3\n255\n") + QByteArray("\x40\x80\xc0").repeated(4 * 3));
    const ProcessResult r = scanctl({QStringLiteral("info"), notes, ppm, missing});
    EXPECT_EQ(r.status, 2);
    const QStringList lines = r.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2) << r.err.toStdString();
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("scanctl info: %1: ").arg(notes)));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("scanctl info: %1: ").arg(missing)));
    for (const QString &line : lines) EXPECT_GT(line.size(), line.indexOf(QStringLiteral(".tif: ")) + 6);  // a reason
    EXPECT_TRUE(r.out.contains(ppm + QStringLiteral("\n  size:    4 x 3 pixels"))) << r.out.toStdString();
    EXPECT_TRUE(r.out.contains(QStringLiteral("  pixels:  RGBA8\n")));
    EXPECT_TRUE(r.out.contains(QStringLiteral("  scan information: none\n")));
}
