// Connection strings, the choice of database, and stored scene paths.
#include <QDir>

#include <gtest/gtest.h>

#include "suite/db/db_connection.h"
#include "suite/db/dba_path.h"

TEST(DbConnection, ReadsPostgresAddressesAndSqliteFiles) {
    DbConnectionSettings s;
    ASSERT_TRUE(DbConnectionSettings::parse(QStringLiteral("postgresql://scan@dbhost:5433/studio"), s));
    EXPECT_EQ(s.kind, DbConnectionSettings::Kind::PostgreSQL);
    EXPECT_EQ(QStringList({s.user, s.host, s.database}), QStringList({"scan", "dbhost", "studio"}));
    EXPECT_EQ(s.port, 5433);

    // A socket folder; no database named is the user's own, as libpq does it.
    ASSERT_TRUE(DbConnectionSettings::parse(QStringLiteral("postgres://ann:secret@/?host=/run/pg%20sock"), s));
    EXPECT_EQ(QStringList({s.host, s.password, s.database}), QStringList({"/run/pg sock", "secret", "ann"}));
    EXPECT_EQ(s.port, 5432);
    EXPECT_FALSE(s.describe().contains(QStringLiteral("secret")));

    // Anything else is a SQLite file, unless it is another kind of address.
    ASSERT_TRUE(DbConnectionSettings::parse(QStringLiteral(" /data/prod.db "), s));
    EXPECT_EQ(s.kind, DbConnectionSettings::Kind::SQLite);
    EXPECT_EQ(s.sqlitePath, QStringLiteral("/data/prod.db"));
    QString error;
    EXPECT_FALSE(DbConnectionSettings::parse(QStringLiteral("mysql://x@y/z"), s, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(DbConnectionSettings::parse(QString(), s, &error));
}

TEST(DbConnection, ExplicitBeatsEnvironmentBeatsDefault) {
    const QByteArray saved = qgetenv("SCAN_DB");
    const QByteArray savedData = qgetenv("SCAN_DATA_DIR");
    qputenv("SCAN_DATA_DIR", "/somewhere/data");
    qunsetenv("SCAN_DB");
    EXPECT_EQ(DbConnectionSettings::choose(), QStringLiteral("/somewhere/data/production.db"));
    qputenv("SCAN_DB", "postgresql://a@b/c");
    EXPECT_EQ(DbConnectionSettings::choose(), QStringLiteral("postgresql://a@b/c"));
    EXPECT_EQ(DbConnectionSettings::choose(QStringLiteral("/x.db")), QStringLiteral("/x.db"));
    qputenv("SCAN_DB", saved);
    if (saved.isEmpty()) qunsetenv("SCAN_DB");
    qputenv("SCAN_DATA_DIR", savedData);
    if (savedData.isEmpty()) qunsetenv("SCAN_DATA_DIR");
}

TEST(DbaPath, RelativeScenePathsStartAtTheRoot) {
    const QString before = DBA_Path::root();
    DBA_Path::setRoot(QStringLiteral("/studio/prod"));
    EXPECT_EQ(DBA_Path::getScenePath(QStringLiteral("job1/sc01/")), QStringLiteral("/studio/prod/job1/sc01"));
    EXPECT_EQ(DBA_Path::getScenePath(QStringLiteral("/abs//sc01/../sc02")), QStringLiteral("/abs/sc02"));
    EXPECT_EQ(DBA_Path::getScenePath(QStringLiteral("~/sc")), QDir::homePath() + QStringLiteral("/sc"));
    EXPECT_EQ(DBA_Path::getScenePath(QString()), QString());
    DBA_Path::setRoot(before);
}
