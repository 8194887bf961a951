// The built Scan program, run as the operator would start it, with a
// production database that cannot be reached.
#include <QtCore>

#include <gtest/gtest.h>

#include <map>

#include <pwd.h>
#include <unistd.h>

#include "support/run_program.h"

namespace {

class ScanProgram : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(logs_.isValid());
        for (const char *name : {"SCAN_LOG_DIR", "SCAN_DB", "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY", "USER"})
            if (qEnvironmentVariableIsSet(name)) saved_[name] = qgetenv(name);
        qputenv("SCAN_LOG_DIR", logs_.path().toLocal8Bit());
        qputenv("SCAN_DB", "postgresql://nobody@127.0.0.1:1/production");
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    void TearDown() override {
        for (const char *name : {"SCAN_LOG_DIR", "SCAN_DB", "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY", "USER"})
            qunsetenv(name);
        for (const auto &[name, value] : saved_) qputenv(name.c_str(), value);
    }
    ProcessResult scan(const QStringList &args) { return run_program(QStringLiteral(SCAN_PATH), args); }

    QTemporaryDir logs_;
    std::map<std::string, QByteArray> saved_;
};

constexpr const char *kNoDatabase = "Could not connect to the database, exiting application.";

TEST_F(ScanProgram, HelpNeedsTheDatabaseFirst) {
    const ProcessResult r = scan({"-help"});
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.err.contains(kNoDatabase)) << r.err.toStdString();
    EXPECT_FALSE(r.err.contains("Available Options:")) << r.err.toStdString();
}

TEST_F(ScanProgram, WithoutADisplayEverythingThatOnlyPrintsStillWorks) {
    qputenv("SCAN_DB", logs_.filePath("production.db").toLocal8Bit());
    for (const char *name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY", "USER"}) qunsetenv(name);
    struct Case {
        QStringList args;
        int status;
        const char *printed, *usage = "";
    };
    const Case cases[] = {
        {{"-help"}, 0, "Scan [Options]\nAvailable Options:\n"},
        {{"-v"}, 0, "Scan version "},
        {{"--version"}, 0, "Scan version "},
        {{"-bogus"}, 0, "Unknown parameter: -bogus.\n", "Scan [Options]\nAvailable Options:\n"},
        {{"-M"}, 1, "there is no display"},
    };
    for (const Case &c : cases) {
        const ProcessResult r = scan(c.args);
        EXPECT_EQ(r.status, c.status) << c.args.join(' ').toStdString() << ": " << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(c.printed) && r.err.contains(c.usage)) << r.err.toStdString();
    }
    // Without $USER the log is named after the user of the password database.
    const passwd *user = getpwuid(geteuid());
    ASSERT_NE(user, nullptr);
    EXPECT_TRUE(QDir(logs_.path()).exists(QStringLiteral("Scan_%1_0001.log").arg(QString::fromLocal8Bit(user->pw_name))))
        << QDir(logs_.path()).entryList().join(' ').toStdString();
}

}  // namespace
