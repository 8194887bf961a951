// Test runner: a QCoreApplication exists for every test, and the log goes to a
// throwaway folder.
#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    QTemporaryDir logs;
    qputenv("SCAN_LOG_DIR", logs.path().toLocal8Bit());
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
