// Opening a session: the schema is made once, kept on reopening, and a
// database that can't be reached or made fails the open with -1.
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>

#include "db_backend_fixture.h"
#include "suite/db/dba_path.h"

class DbSessionTest : public DbBackendTest {};

TEST_P(DbSessionTest, SchemaIsMadeOnceAndReopeningKeepsTheData) {
    const int version = db_->schemaVersion();
    EXPECT_GE(version, 1);
    const LMV_element_data element = makeElement();
    auto again = open();
    ASSERT_TRUE(again);
    EXPECT_EQ(again->schemaVersion(), version);
    EXPECT_EQ(again->jobs().size(), 1u);
    EXPECT_EQ(again->DBA_elementNameFromID(element.id), QStringLiteral("E"));
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
    EXPECT_EQ(db_->jobName(), QStringLiteral("J"));
    EXPECT_EQ(db_->sceneName(), QStringLiteral("S"));
    ASSERT_NE(db_->openScene(), nullptr);
    EXPECT_EQ(db_->openScene()->path, QStringLiteral("/studio/j/s"));
    EXPECT_EQ(db_->selectedElementId(), element.id);
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

    SqlDbAccess bogus(QStringLiteral("oracle://x@y/z"));
    EXPECT_EQ(bogus.dba_Open2dDatabaseSession(), -1);
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
