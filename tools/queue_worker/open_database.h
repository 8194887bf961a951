#pragma once
// What the database commands of scanctl and pix2vec share: the exit
// statuses, the options every one of them takes, opening the session and
// finding a job, scene and element by their names. Messages are signed with
// the program's name (QCoreApplication::applicationName()).
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

#include "suite/db/sql_db_access.h"
#include "tools/queue_worker/command_words.h"

enum DbCommandStatus {
    kDbStatusOk = 0,
    kDbStatusUsage = 1,       // wrong words or values
    kDbStatusRefused = 2,     // the database can't be opened or refuses: unknown names, duplicates
    kDbStatusQueueEmpty = 3,  // queue take / work: nothing to take
};

// "--db URL" and "--env NAME".
QStringList database_value_options();

// Opens the program's session on --db, else $SCAN_DB, else the embedded database, and
// selects the environment of --env when given. Nothing, with `error`, when
// the database can't be opened.
std::unique_ptr<SqlDbAccess> open_command_database(const CommandWords &words, QString &error);

// A job, a scene of it and an element of that, as far as `names` goes.
struct ProductionPath {
    std::optional<dba_job_struct> job;
    std::optional<dba_scene_struct> scene;
    std::optional<LMV_element_data> element;
};

enum class Lookup { Found, Missing, Failed };

// Looks up names[0] as a job of the environment, names[1] as a scene of it
// and names[2] as an element of that scene (as many as are given). Missing,
// with `error` naming the first one missing; Failed, with `error` saying
// what could not be read (and db.lastError() why).
Lookup find_production(SqlDbAccess &db, const QStringList &names, ProductionPath &found, QString &error);

// "can't read WHAT from DATABASE: REASON"; the reason is db.lastError()
// unless given.
QString read_failure(const SqlDbAccess &db, const QString &what, const QString &reason = QString());

// What a listing call of `db` answered, or nothing with `error` saying what
// could not be read: an empty answer is only believed without an error.
template <class T>
std::optional<T> checked(const SqlDbAccess &db, T rows, const QString &what, QString &error) {
    if (db.lastError().isEmpty()) return rows;
    error = read_failure(db, what);
    return std::nullopt;
}

// The folder of an element: its scene's folder and the element's path.
QString element_folder(const dba_scene_struct &scene, const LMV_element_data &element);

// Prints "PROGRAM GROUP: TEXT" on standard error and gives back `status`.
int report_failure(const char *group, const QString &text, int status);
