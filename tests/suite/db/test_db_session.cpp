// Connection strings and the choice of database; opening a session: the
// schema is made once, kept on reopening, and a database that can't be
// reached or made fails the open with -1; stored scene paths.
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <tuple>

#include "db_backend_fixture.h"
#include "suite/db/db_connection.h"
#include "suite/db/dba_path.h"

class DbSessionTest : public DbBackendTest {};

TEST_P(DbSessionTest, SchemaIsMadeOnceAndReopeningKeepsTheData) {
    const int version = db_->schemaVersion();
    EXPECT_GE(version, 1);
    const LMV_element_data element = makeElement();
    auto again = open();
    ASSERT_TRUE(again);
    EXPECT_EQ(std::tuple(again->schemaVersion(), again->jobs().size(), again->DBA_elementNameFromID(element.id)),
              std::tuple(version, 1u, QStringLiteral("E")));
}

TEST_P(DbSessionTest, SelectionStartsWithTheUserAndDefaultEnvironmentAndNarrowsDown) {
    EXPECT_FALSE(db_->userName().isEmpty());
    EXPECT_EQ(db_->envName(), QStringLiteral("default"));
    EXPECT_EQ(db_->openScene(), nullptr);
    const LMV_element_data element = makeElement();

    EXPECT_EQ(db_->selectScene(QStringLiteral("S")), -1);  // no job yet
    ASSERT_EQ(db_->selectJob(QStringLiteral("J")), 0);
    ASSERT_EQ(db_->selectScene(QStringLiteral("S")), 0);
    ASSERT_EQ(db_->selectElement(QStringLiteral("E")), 0);
    EXPECT_EQ(std::tuple(db_->jobName(), db_->sceneName(), db_->selectedElementId()),
              std::tuple(QStringLiteral("J"), QStringLiteral("S"), element.id));
    ASSERT_NE(db_->openScene(), nullptr);
    EXPECT_EQ(db_->openScene()->path, QStringLiteral("/studio/j/s"));
    EXPECT_EQ(db_->selectElement(QStringLiteral("nope")), -1);
    EXPECT_FALSE(db_->lastError().isEmpty());
    // Choosing the job again forgets scene and element; another environment forgets all.
    ASSERT_EQ(db_->selectJob(QStringLiteral("J")), 0);
    EXPECT_EQ(db_->openScene(), nullptr);
    EXPECT_EQ(db_->selectedElementId(), 0);
    ASSERT_EQ(db_->setEnvironment(QStringLiteral("other")), 0);
    EXPECT_EQ(db_->openJob(), nullptr);
    EXPECT_EQ(db_->selectJob(QStringLiteral("J")), -1);  // jobs belong to their environment
    EXPECT_TRUE(db_->jobs().empty());
}

TEST_P(DbSessionTest, SettingsFileChoosesUserAndEnvironment) {
    QTemporaryDir etc;
    const QByteArray saved = qgetenv("SCAN_ETC");
    qputenv("SCAN_ETC", etc.path().toLocal8Bit());
    EXPECT_EQ(db_->dba_read_config_file(), 0);  // no file: nothing changes
    EXPECT_EQ(db_->envName(), QStringLiteral("default"));
    QFile conf(etc.filePath(QStringLiteral("database.conf")));
    ASSERT_TRUE(conf.open(QIODevice::WriteOnly));
    conf.write("user=ann\nenvironment=night\n");
    conf.close();
    EXPECT_EQ(db_->dba_read_config_file(), 0);
    EXPECT_EQ(db_->userName(), QStringLiteral("ann"));
    EXPECT_EQ(db_->envName(), QStringLiteral("night"));
    qputenv("SCAN_ETC", saved);
    if (saved.isEmpty()) qunsetenv("SCAN_ETC");
}

DB_BACKEND_TESTS(DbSessionTest);

TEST(DbSessionOpen, UnreachableServerAndUnmakeableFileFail) {
    SqlDbAccess server(QStringLiteral("postgresql://nobody@127.0.0.1:1/none"));
    EXPECT_EQ(server.dba_Open2dDatabaseSession(), -1);
    EXPECT_FALSE(server.lastError().isEmpty());
    EXPECT_FALSE(server.isOpen());
    EXPECT_FALSE(server.findJob(QStringLiteral("J")));  // a closed session answers, and fails
    // A folder can't be made below a plain file, not even by root.
    QTemporaryDir dir;
    QFile plain(dir.filePath(QStringLiteral("plain")));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    plain.close();
    SqlDbAccess file(dir.filePath(QStringLiteral("plain/sub/production.db")));
    EXPECT_EQ(file.dba_Open2dDatabaseSession(), -1);
}

TEST(DbSessionOpen, MakesTheFileAndItsFolderAndRefusesANewerSchema) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a/b/production.db"));
    {
        SqlDbAccess db(path);
        ASSERT_EQ(db.dba_Open2dDatabaseSession(), 0) << db.lastError().toStdString();
        EXPECT_TRUE(QFile::exists(path));
        EXPECT_EQ(DBA_Path::root(), dir.filePath(QStringLiteral("a/b")));
    }
    {
        QSqlDatabase raw = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("raw"));
        raw.setDatabaseName(path);
        ASSERT_TRUE(raw.open());
        QSqlQuery(raw).exec(QStringLiteral("UPDATE schema_version SET version = 999"));
        raw.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("raw"));
    SqlDbAccess db(path);
    EXPECT_EQ(db.dba_Open2dDatabaseSession(), -1);
    EXPECT_TRUE(db.lastError().contains(QStringLiteral("newer"))) << db.lastError().toStdString();
}

TEST(DbConnection, ReadsPostgresAddressesAndSqliteFiles) {
    DbConnectionSettings s;
    ASSERT_TRUE(DbConnectionSettings::parse(QStringLiteral("postgresql://scan@dbhost:5433/studio"), s));
    EXPECT_EQ(std::tuple(s.kind, QStringList({s.user, s.host, s.database}), s.port),
              std::tuple(DbConnectionSettings::Kind::PostgreSQL, QStringList({"scan", "dbhost", "studio"}), 5433));
    // A socket folder; no database named is the user's own, as libpq does it.
    ASSERT_TRUE(DbConnectionSettings::parse(QStringLiteral("postgres://ann:secret@/?host=/run/pg%20sock"), s));
    EXPECT_EQ(std::tuple(QStringList({s.host, s.password, s.database}), s.port),
              std::tuple(QStringList({"/run/pg sock", "secret", "ann"}), 5432));
    EXPECT_FALSE(s.describe().contains(QStringLiteral("secret")));
    // Anything else is a SQLite file, unless it is another kind of address.
    ASSERT_TRUE(DbConnectionSettings::parse(QStringLiteral(" /data/prod.db "), s));
    EXPECT_EQ(std::tuple(s.kind, s.sqlitePath), std::tuple(DbConnectionSettings::Kind::SQLite, QStringLiteral("/data/prod.db")));
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
