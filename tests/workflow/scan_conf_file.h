#pragma once
// A Scan.conf of this machine written from scanner blocks.
#include <QtCore>

#include <gtest/gtest.h>

#include <string>

#include "suite/base/osw_util.h"

// One scanner block of this machine.
inline std::string scannerBlock(const std::string &name, const std::string &model, const std::string &more = {},
                                const std::string &device = "fieldchart") {
    QString host;
    EXPECT_TRUE(oswUtil::getShortMachineName(host));
    return "host: " + host.toStdString() + "\nname: " + name + "\ndevice: " + device + "\nmodel: " + model + "\n" + more;
}

// Writes `conf` as Scan.conf in `dir` and returns its path.
inline QString writeScanConf(const QString &dir, const std::string &conf) {
    const QString path = QDir(dir).filePath(QStringLiteral("Scan.conf"));
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    EXPECT_EQ(f.write(conf.data(), qint64(conf.size())), qint64(conf.size()));
    return path;
}
