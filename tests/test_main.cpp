// Test runner: a QCoreApplication exists for every test, and the log goes to a
// throwaway folder.
#include <csignal>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    // A script that starts the tests in the background hands them SIGINT and
    // SIGQUIT ignored, and every program a test starts would inherit that; the
    // tests that interrupt a worker expect what a terminal gives.
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGQUIT, SIG_DFL);
    QTemporaryDir logs;
    qputenv("SCAN_LOG_DIR", logs.path().toLocal8Bit());
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
