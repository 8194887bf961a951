#pragma once
// Reads a Scan.conf written from a string, for the host "station1", and keeps the
// messages that the read produced.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "scan/scanner_list.h"
#include "support/message_capture.h"

using Errors = std::vector<std::string>;

class ConfTest : public ::testing::Test {
protected:
    // Writes `text` byte for byte and reads it.
    ScannerList *read(const std::string &text, bool keepTwain = true, const QString &host = QStringLiteral("station1")) {
        path_ = dir_.filePath(QStringLiteral("Scan.conf"));
        QFile f(path_);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(text.data(), static_cast<qint64>(text.size()));
        f.close();
        capture_.clear();
        list_ = read_ScannerList(path_, keepTwain, host);
        return list_.get();
    }

    ScannerEntry *only() {
        EXPECT_EQ(count_of_ScannerList(list_.get()), 1);
        return entry_of_ScannerList(list_.get(), 0);
    }

    std::string path() const { return path_.toStdString(); }
    std::vector<std::string> errors() const { return capture_.errors(); }
    std::vector<std::string> logs() const { return capture_.texts('I'); }

    QTemporaryDir dir_;
    QString path_;
    MessageCapture capture_;
    std::unique_ptr<ScannerList> list_;
};

// host:, name:, device: and model: of one scanner of station1.
inline std::string block(const std::string &model, const std::string &more = {}, const std::string &name = "S") {
    return "host: station1\nname: " + name + "\ndevice: sim:" + model + "\nmodel: " + model + "\n" + more;
}
