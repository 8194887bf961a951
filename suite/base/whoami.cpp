#include "suite/base/whoami.h"

#include <QFileInfo>

#include <cstdio>

namespace {
QString &binName() {
    static QString name = QStringLiteral("Scan");
    return name;
}
}  // namespace

void whoami::setBinName(const QString &path) {
    const QString name = QFileInfo(path).completeBaseName();
    if (!name.isEmpty()) binName() = name;
}

QString whoami::progName() { return binName(); }

QString whoami::version() { return QStringLiteral(SCAN_VERSION); }

void whoami::printVersionInfo() {
    std::fprintf(stderr, "%s version %s\n", qPrintable(progName()), qPrintable(version()));
    std::fflush(stderr);
}
