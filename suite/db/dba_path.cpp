#include "suite/db/dba_path.h"

#include <QDir>
#include <QMutex>

namespace {
// Sessions may open in several threads.
QMutex rootMutex;
QString &rootSlot() {
    static QString root;
    return root;
}
}  // namespace

QString DBA_Path::getScenePath(const QString &storedPath) {
    if (storedPath.isEmpty()) return QString();
    QString path = storedPath;
    if (path == QLatin1String("~") || path.startsWith(QLatin1String("~/")))
        path = QDir::homePath() + path.mid(1);
    if (QDir::isRelativePath(path)) {
        const QString root = DBA_Path::root();
        const QString base = root.isEmpty() ? QDir::currentPath() : root;
        path = base + QLatin1Char('/') + path;
    }
    return QDir::cleanPath(path);
}

void DBA_Path::setRoot(const QString &root) {
    QMutexLocker lock(&rootMutex);
    rootSlot() = root;
}

QString DBA_Path::root() {
    QMutexLocker lock(&rootMutex);
    return rootSlot();
}
