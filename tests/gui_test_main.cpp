// Test runner for window tests: a QApplication on the offscreen platform
// (unless a platform is set), and the log in a throwaway folder.
#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    QTemporaryDir logs;
    qputenv("SCAN_LOG_DIR", logs.path().toLocal8Bit());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
