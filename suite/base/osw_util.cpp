#include "suite/base/osw_util.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <pwd.h>
#include <unistd.h>

#include <utility>
#include <vector>

namespace {

QString envOr(const char *name, const QString &fallback) {
    const QByteArray v = qgetenv(name);
    return v.isEmpty() ? fallback : QString::fromLocal8Bit(v);
}

QString xdgHome(const char *name, const char *fallbackBelowHome) {
    return envOr(name, QDir::homePath() + QLatin1Char('/') + QLatin1String(fallbackBelowHome));
}

QString cutAtDot(const QString &host) {
    const qsizetype dot = host.indexOf(QLatin1Char('.'));
    return dot < 0 ? host : host.left(dot);
}

}  // namespace

namespace oswUtil {

QString getUserName() {
    const QString user = envOr("USER", QString());
    if (!user.isEmpty()) return user;
    // A service or a container may start us without $USER or a login terminal.
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd *found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_name[0])
        return QString::fromLocal8Bit(found->pw_name);
    return QString::number(geteuid());
}

bool getShortMachineName(QString &name) {
    char buffer[255] = {};
    if (gethostname(buffer, sizeof buffer - 1) != 0) return false;
    name = cutAtDot(QString::fromLocal8Bit(buffer));
    return !name.isEmpty();
}

bool isSameMachineName(const QString &a, const QString &b) {
    return cutAtDot(a).compare(cutAtDot(b), Qt::CaseInsensitive) == 0;
}

QString LMVEtc() { return envOr("SCAN_ETC", xdgHome("XDG_CONFIG_HOME", ".config") + QStringLiteral("/scanstation")); }

QString LMVDir(bool create) {
    QString dir = envOr("SCAN_HOME", QString());
    if (dir.isEmpty()) {
        const QString app = QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QString();
        dir = app.isEmpty() ? QDir::currentPath() : QDir(app + QStringLiteral("/..")).absolutePath();
    }
    if (create) QDir().mkpath(dir);
    return dir;
}

bool isVistaOrAbove() { return false; }

}  // namespace oswUtil

QString BAPP_SharedSpecialFolders::logFolder() const {
    const QString dir = envOr("SCAN_LOG_DIR", xdgHome("XDG_STATE_HOME", ".local/state") + QStringLiteral("/scanstation"));
    QDir().mkpath(dir);
    return dir;
}

QString BAPP_SharedSpecialFolders::appDataFolder() const {
    return envOr("SCAN_DATA_DIR", xdgHome("XDG_DATA_HOME", ".local/share") + QStringLiteral("/scanstation"));
}

QString BAPP_SharedSpecialFolders::binFolder() const { return oswUtil::LMVDir(false) + QStringLiteral("/bin"); }

namespace {
QString &languageFolderSlot() {
    static QString folder;
    return folder;
}
}  // namespace

void BAPP_SharedSpecialFolders::setLanguageFolder(const QString &folder) { languageFolderSlot() = folder; }
QString BAPP_SharedSpecialFolders::languageFolder() const { return languageFolderSlot(); }

BAPP_SharedSpecialFolders &BAPP_SharedSpecialFolders_instance() {
    static BAPP_SharedSpecialFolders folders;
    return folders;
}

namespace oswRemapPath {
namespace {
using Table = std::vector<std::pair<QString, QString>>;

Table parse(const QString &spec) {
    Table t;
    for (const QString &entry : spec.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const qsizetype eq = entry.indexOf(QLatin1Char('='));
        if (eq > 0) t.emplace_back(entry.left(eq), entry.mid(eq + 1));
    }
    return t;
}

Table &table() {
    static Table t = parse(QString::fromLocal8Bit(qgetenv("SCAN_PATH_REMAP")));
    return t;
}
}  // namespace

QString RemapPath(const QString &path) {
    for (const auto &[from, to] : table())
        if (path.startsWith(from)) return to + path.mid(from.size());
    return path;
}

QString RemapPath2(const QString &path) { return RemapPath(path); }

void setTable(const QString &spec) { table() = parse(spec); }

}  // namespace oswRemapPath
