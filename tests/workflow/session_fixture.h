#pragma once
// A session on the scripted window: a Scan.conf for this machine written from
// a string, a scratch folder as the current directory (where the test scanner
// keeps its feeder count), and no real waits in the device code.
#include <QtCore>

#include <gtest/gtest.h>

#include <string>

#include "scan/scanner_device.h"
#include "scan_conf_file.h"
#include "support/message_capture.h"
#include "workflow/config.h"
#include "workflow/drawing_list.h"
#include "workflow/scripted_window.h"

class SessionTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        oldCwd_ = QDir::currentPath();
        QDir::setCurrent(dir_.path());
        oldSleep_ = set_sleep_function_of_ScanDevice([](int) {});
        window_.manualPath = dir_.path();
        window_.manualPrefix = QStringLiteral("T");
    }
    void TearDown() override {
        if (config_) ScanConfigDestroy(config_);
        set_sleep_function_of_ScanDevice(oldSleep_);
        QDir::setCurrent(oldCwd_);
    }

    // Starts the session on a Scan.conf of these blocks.
    ScanConfig *start(const std::string &conf) {
        return config_ = ScanConfigCreate(writeScanConf(dir_.path(), conf), &window_);
    }

    void list(const QStringList &names) { build_manual_list(config_, names); }
    QString rowText(int row) const { return window_.list.rowText(row); }
    void writeFile(const QString &name, const QByteArray &bytes) {
        QFile f(dir_.filePath(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes);
    }
    bool exists(const QString &name) const { return QFile::exists(dir_.filePath(name)); }

    QTemporaryDir dir_;
    QString oldCwd_;
    ScanSleepFunction oldSleep_ = nullptr;
    MessageCapture capture_;
    ScriptedScanWindow window_;
    ScanConfig *config_ = nullptr;
};
