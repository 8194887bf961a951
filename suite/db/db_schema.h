#pragma once
// The schema of the production database and its migration at open. Each step
// raises the schema version by one inside its own transaction, so a database
// is always at a whole version, and several processes opening one database at
// once apply each step exactly once.
#include <QString>

class DbSession;

// The version this program's schema has.
int dbSchemaLatestVersion();

// Brings the database up to the latest version. False, with `error`, when a
// step fails (that step is rolled back) or the database is newer than this program.
bool dbMigrateSchema(DbSession &session, QString *error);

// The version of the open database; 0 for an empty one, -1 on failure.
int dbSchemaVersion(DbSession &session);
