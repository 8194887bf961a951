#include "suite/db/db_connection.h"

#include <QUrl>
#include <QUrlQuery>

#include "suite/base/osw_util.h"

namespace {
bool isPostgresUrl(const QString &text) {
    return text.startsWith(QLatin1String("postgresql://")) || text.startsWith(QLatin1String("postgres://"));
}
}  // namespace

bool DbConnectionSettings::parse(const QString &text, DbConnectionSettings &out, QString *error) {
    out = DbConnectionSettings();
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) {
        if (error) *error = QStringLiteral("empty database address");
        return false;
    }
    if (!isPostgresUrl(trimmed)) {
        if (trimmed.contains(QLatin1String("://"))) {
            if (error) *error = QStringLiteral("unknown kind of database address: %1").arg(trimmed);
            return false;
        }
        out.kind = Kind::SQLite;
        out.sqlitePath = trimmed;
        return true;
    }
    const QUrl url(trimmed, QUrl::StrictMode);
    if (!url.isValid()) {
        if (error) *error = QStringLiteral("bad database address: %1").arg(url.errorString());
        return false;
    }
    out.kind = Kind::PostgreSQL;
    out.user = url.userName();
    out.password = url.password();
    out.host = url.host();
    out.port = url.port(5432);
    out.database = url.path().mid(1);
    // A socket directory given as ?host=/dir wins over the host part, as libpq does it.
    const QUrlQuery query(url);
    if (query.hasQueryItem(QStringLiteral("host")))
        out.host = query.queryItemValue(QStringLiteral("host"), QUrl::FullyDecoded);
    if (query.hasQueryItem(QStringLiteral("port"))) out.port = query.queryItemValue(QStringLiteral("port")).toInt();
    if (out.database.isEmpty()) out.database = out.user.isEmpty() ? QStringLiteral("postgres") : out.user;
    return true;
}

QString DbConnectionSettings::defaultSqlitePath() {
    return BAPP_SharedSpecialFolders_instance().appDataFolder() + QStringLiteral("/production.db");
}

QString DbConnectionSettings::choose(const QString &explicitText) {
    if (!explicitText.isEmpty()) return explicitText;
    const QString fromEnv = qEnvironmentVariable("SCAN_DB");
    if (!fromEnv.isEmpty()) return fromEnv;
    return defaultSqlitePath();
}

QString DbConnectionSettings::describe() const {
    if (kind == Kind::SQLite) return sqlitePath;
    return QStringLiteral("postgresql://%1@%2:%3/%4").arg(user, host, QString::number(port), database);
}
