// The built Scan program, run as the operator would start it, with a
// production database that cannot be reached.
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "support/run_program.h"

namespace {

class ScanProgram : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(logs_.isValid());
        qputenv("SCAN_LOG_DIR", logs_.path().toLocal8Bit());
        qputenv("SCAN_DB", "postgresql://nobody@127.0.0.1:1/production");
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    ProcessResult scan(const QStringList &args) { return run_program(QStringLiteral(SCAN_PATH), args); }

    QTemporaryDir logs_;
};

constexpr const char *kNoDatabase = "Could not connect to the database, exiting application.";

TEST_F(ScanProgram, HelpNeedsTheDatabaseFirst) {
    const ProcessResult r = scan({"-help"});
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.err.contains(kNoDatabase)) << r.err.toStdString();
    EXPECT_FALSE(r.err.contains("Available Options:")) << r.err.toStdString();
}

TEST_F(ScanProgram, UnknownParameterIsReportedWithTheUsage) {
    // An embedded database of its own: the connection succeeds and the
    // command line is read.
    qputenv("SCAN_DB", logs_.filePath("production.db").toLocal8Bit());
    const ProcessResult r = scan({"-s"});
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.err.contains("Unknown parameter: -s.\n")) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains("Scan [Options]\nAvailable Options:\n")) << r.err.toStdString();
    EXPECT_FALSE(r.err.contains(kNoDatabase));
}

}  // namespace
