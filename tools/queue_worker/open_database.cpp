#include "tools/queue_worker/open_database.h"

#include <QCoreApplication>
#include <QDir>

#include <cstdio>

#include "suite/db/dba_path.h"

QStringList database_value_options() { return {QStringLiteral("--db"), QStringLiteral("--env")}; }

std::unique_ptr<SqlDbAccess> open_command_database(const CommandWords &words, QString &error) {
    const QString connection = DbConnectionSettings::choose(words.value(QStringLiteral("--db")));
    DbConnectionSettings settings;
    if (!DbConnectionSettings::parse(connection, settings, &error)) return nullptr;
    auto db = std::make_unique<SqlDbAccess>(connection);
    db->dba_Initialize2dSystem(QCoreApplication::applicationName());
    if (db->dba_Open2dDatabaseSession() != 0) {
        error = QStringLiteral("can't open the database %1: %2").arg(settings.describe(), db->lastError());
        return nullptr;
    }
    // The station's defaults of user and environment, then --env over them.
    if (db->dba_read_config_file() != 0) {
        error = QStringLiteral("can't take the station's user and environment into %1: %2")
                    .arg(settings.describe(), db->lastError());
        return nullptr;
    }
    if (words.values.contains(QStringLiteral("--env")) &&
        db->setEnvironment(words.value(QStringLiteral("--env"))) != 0) {
        error = QStringLiteral("can't select the environment '%1': %2")
                    .arg(words.value(QStringLiteral("--env")), db->lastError());
        return nullptr;
    }
    return db;
}

Lookup find_production(SqlDbAccess &db, const QStringList &names, ProductionPath &found, QString &error) {
    // Each record in turn: found, or missing, or not read at all.
    const auto check = [&](bool have, const QString &what, const QString &missing) {
        if (have) return Lookup::Found;
        error = db.lastError().isEmpty() ? missing : read_failure(db, what);
        return db.lastError().isEmpty() ? Lookup::Missing : Lookup::Failed;
    };
    if (names.isEmpty()) return Lookup::Found;
    found.job = db.findJob(names[0]);
    Lookup l = check(found.job.has_value(), QStringLiteral("job '%1'").arg(names[0]),
                     QStringLiteral("no job '%1'").arg(names[0]));
    if (l != Lookup::Found || names.size() < 2) return l;
    found.scene = db.findScene(found.job->id, names[1]);
    l = check(found.scene.has_value(), QStringLiteral("scene '%1' of job '%2'").arg(names[1], names[0]),
              QStringLiteral("no scene '%1' in job '%2'").arg(names[1], names[0]));
    if (l != Lookup::Found || names.size() < 3) return l;
    found.element = db.findElement(found.scene->id, names[2]);
    return check(found.element.has_value(), QStringLiteral("element '%1' of scene '%2'").arg(names[2], names[1]),
                 QStringLiteral("no element '%1' in scene '%2' of job '%3'").arg(names[2], names[1], names[0]));
}

QString read_failure(const SqlDbAccess &db, const QString &what, const QString &reason) {
    return QStringLiteral("can't read %1 from %2: %3")
        .arg(what, db.description(), (reason.isEmpty() ? db.lastError() : reason).trimmed());
}

QString element_folder(const dba_scene_struct &scene, const LMV_element_data &element) {
    return QDir::cleanPath(DBA_Path::getScenePath(scene.path) + QLatin1Char('/') + element.path);
}

int report_failure(const char *group, const QString &text, int status) {
    std::fprintf(stderr, "%s %s: %s\n", QCoreApplication::applicationName().toLocal8Bit().constData(), group,
                 text.toLocal8Bit().constData());
    return status;
}
