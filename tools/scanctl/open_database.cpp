#include "tools/scanctl/open_database.h"

#include <QDir>

#include <cstdio>

#include "suite/db/dba_path.h"

QStringList database_value_options() { return {QStringLiteral("--db"), QStringLiteral("--env")}; }

std::unique_ptr<SqlDbAccess> open_scanctl_database(const CommandWords &words, QString &error) {
    const QString connection = DbConnectionSettings::choose(words.value(QStringLiteral("--db")));
    DbConnectionSettings settings;
    if (!DbConnectionSettings::parse(connection, settings, &error)) return nullptr;
    auto db = std::make_unique<SqlDbAccess>(connection);
    db->dba_Initialize2dSystem(QStringLiteral("scanctl"));
    if (db->dba_Open2dDatabaseSession() != 0) {
        error = QStringLiteral("can't open the database %1: %2").arg(settings.describe(), db->lastError());
        return nullptr;
    }
    // The station's defaults of user and environment, then --env over them.
    if (db->dba_read_config_file() != 0) {
        error = db->lastError();
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

bool find_production(TUDbAdmin &db, const QStringList &names, ProductionPath &found, QString &error) {
    if (names.isEmpty()) return true;
    found.job = db.findJob(names[0]);
    if (!found.job) {
        error = QStringLiteral("no job '%1'").arg(names[0]);
        return false;
    }
    if (names.size() < 2) return true;
    found.scene = db.findScene(found.job->id, names[1]);
    if (!found.scene) {
        error = QStringLiteral("no scene '%1' in job '%2'").arg(names[1], names[0]);
        return false;
    }
    if (names.size() < 3) return true;
    found.element = db.findElement(found.scene->id, names[2]);
    if (!found.element) {
        error = QStringLiteral("no element '%1' in scene '%2' of job '%3'").arg(names[2], names[1], names[0]);
        return false;
    }
    return true;
}

QString element_folder(const dba_scene_struct &scene, const LMV_element_data &element) {
    return QDir::cleanPath(DBA_Path::getScenePath(scene.path) + QLatin1Char('/') + element.path);
}

int report_failure(const char *group, const QString &text, int status) {
    std::fprintf(stderr, "scanctl %s: %s\n", group, text.toLocal8Bit().constData());
    return status;
}
