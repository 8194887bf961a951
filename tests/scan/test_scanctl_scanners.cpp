// Runs the built scanctl on the sample studio file.
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "support/run_program.h"

namespace {

ProcessResult scanctl(const QStringList &args) { return run_program(QStringLiteral(SCANCTL_PATH), args); }

class ScanctlScanners : public ::testing::Test {
protected:
    void SetUp() override {
        QFile sample(QStringLiteral(SAMPLES_DIR "/Scan.conf"));
        ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
        QByteArray text = sample.readAll();
        text.replace("@HOST@", "studio-a");
        path_ = dir_.filePath(QStringLiteral("Scan.conf"));
        QFile conf(path_);
        ASSERT_TRUE(conf.open(QIODevice::WriteOnly));
        conf.write(text);
    }
    QTemporaryDir dir_;
    QString path_;
};

}  // namespace

TEST_F(ScanctlScanners, ShowsTheStationsScannersAndTheReadersMessages) {
    const ProcessResult r = scanctl({QStringLiteral("scanners"), QStringLiteral("--host"), QStringLiteral("STUDIO-A"), path_});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.err, QString()) << "the sample reads cleanly";
    const QString &out = r.out;
    EXPECT_TRUE(out.startsWith(QStringLiteral("3 scanners for host 'STUDIO-A'\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("Scanner Name:\tTest_Scanner\nDevice:\t\tfieldchart\n"
                                            "Scanner Model:\tBogus-Color\n"
                                            "Description:\tField chart test scanner # the sign here is text")));
    EXPECT_TRUE(out.contains(QStringLiteral("  resolutions: 72 100 150 200 300 400 600 (lowest 72, highest 200")));
    EXPECT_TRUE(out.contains(QStringLiteral("    threshold 0..255, default 100\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("speed 5..35000 Milliseconds/Line, default 10; presets: fast 2000 custom")));
    EXPECT_TRUE(out.contains(QStringLiteral("  default peg side: Top\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("Scanner Name:\tTWAIN\nDevice:\t\tsc0;d0;l0\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("    ready      nop\n")));
    EXPECT_FALSE(out.contains(QStringLiteral("Ink_Feeder")));
}

TEST_F(ScanctlScanners, AllHostsReadsEveryHostOnce) {
    const ProcessResult r = scanctl({QStringLiteral("scanners"), QStringLiteral("--all-hosts"), path_});
    ASSERT_EQ(r.status, 0);
    EXPECT_EQ(r.out.count(QStringLiteral("=== host ")), 3);
    EXPECT_TRUE(r.out.contains(QStringLiteral("=== host paint01 ===\n2 scanners for host 'paint01'")));
    EXPECT_TRUE(r.out.contains(QStringLiteral("1 scanner for host 'layout02'")));
    EXPECT_TRUE(r.err.contains(QStringLiteral("Unknown keyword 'something:' in file '%1'.\n").arg(path_)));
    EXPECT_TRUE(r.err.contains(QStringLiteral("defaultBrightness should be > 0 or less than 255.\n")));
}

// One rule for every command: 1 when the words are wrong, 2 when what they
// ask is refused or fails.
TEST_F(ScanctlScanners, EveryCommandTellsUsageErrorsFromRefusals) {
    const QString missing = dir_.filePath(QStringLiteral("none.conf"));
    const QList<std::pair<QStringList, int>> cases = {
        {{}, 1},
        {{"frobnicate"}, 1},
        {{"scanners", "--colour"}, 1},
        {{"scanners", missing}, 2},
        {{"scanners", dir_.path()}, 2},
        {{"info"}, 1},
        {{"info", missing}, 2},
        {{"register"}, 1},
        {{"register", missing}, 2},
        {{"options"}, 1},
        {{"options", "--help", "nosuch"}, 1},
        {{"options", "-nosuch_option"}, 2},
        {{"scan", "--list", "1"}, 1},
        {{"db", "frobnicate"}, 1},
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
