// scanctl db and scanctl queue end to end on an embedded database: a
// production is made, exposed and shown; wrong names and values are refused
// with the right status; queue entries go through take, done and fail.
#include <QtCore>

#include "scanctl_db_fixture.h"

namespace {

class ScanctlDb : public ScanctlDbTest {
protected:
    void SetUp() override { useBackend(ScanctlBackend::SQLite); }
};

TEST_F(ScanctlDb, AProductionIsMadeExposedAndShownWithItsScanCounts) {
    const ProcessResult init = scanctl({"db", "init"});
    ASSERT_EQ(init.status, 0) << init.err.toStdString();
    EXPECT_TRUE(init.out.contains(connection_)) << init.out.toStdString();
    ASSERT_NO_FATAL_FAILURE(makeProduction());
    EXPECT_TRUE(QFileInfo(dir_.filePath("scenes/S/E")).isDir()) << "the element's folder is made";

    ProcessResult r = scanctl({"db", "expose", "J", "S", "E", "1:10 12 7b"});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    // The list may also come as separate words; names already exposed stay where they are.
    r = scanctl({"db", "expose", "J", "S", "E", "12:10", "13"});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.startsWith("2 drawings newly exposed")) << r.out.toStdString();

    // Two scans of 7b and one of 3, as the station records them.
    {
        std::unique_ptr<SqlDbAccess> db = openDirectly();
        ASSERT_TRUE(db);
        const auto scene = db->findScene(db->findJob("J")->id, "S");
        const qint64 element = db->findElement(scene->id, "E")->id;
        db->dba_ProcessedCels(&*scene, "E", element, {"7b", "3"}, 1, 0);
        db->dba_ProcessedCels(&*scene, "E", element, {"7b"}, 1, 0);
    }
    const ProcessResult shown = scanctl({"db", "show", "J", "S", "E"});
    EXPECT_TRUE(shown.out.contains("drawings: 14 exposed, 2 scanned"));
    QStringList lines;
    for (const QString &line : shown.out.split('\n'))
        if (line.startsWith(QLatin1String("    "))) lines << line.simplified();
    EXPECT_EQ(lines.join(" | ").toStdString(), "1 0 scans | 2 0 scans | 3 1 scans | 4 0 scans | 5 0 scans | 6 0 scans | "
                                                "7 0 scans | 8 0 scans | 9 0 scans | 10 0 scans | 12 0 scans | "
                                                "7b 2 scans | 11 0 scans | 13 0 scans");

    const ProcessResult tree = scanctl({"db", "show"});
    ASSERT_EQ(tree.status, 0);
    EXPECT_TRUE(tree.out.contains(QStringLiteral("job J\n  scene S  %1\n    element E  bw, vectorize, field 12, pf 24, "
                                                 "pixel shape 1\n")
                                      .arg(QDir(dir_.filePath("scenes/S")).absolutePath())))
        << tree.out.toStdString();
}

TEST_F(ScanctlDb, WrongNamesAreRefusedAndWrongWordsAreUsageErrors) {
    ASSERT_NO_FATAL_FAILURE(makeProduction());
    const QStringList element{"--scan-type", "colour", "--vectorize", "none", "--field", "16"};
    struct Case {
        QStringList args;
        int status;
        const char *says;
    };
    const QList<Case> cases = {
        {{"db", "create-job", "J"}, 2, "job 'J' already exists"},
        {{"db", "create-scene", "J", "S", "--path", dir_.path()}, 2, "scene 'S' already exists"},
        {QStringList{"db", "create-element", "J", "S", "E"} + element, 2, "element 'E' already exists"},
        {QStringList{"db", "create-element", "K", "S", "F"} + element, 2, "no job 'K'"},
        {QStringList{"db", "create-element", "J", "T", "F"} + element, 2, "no scene 'T' in job 'J'"},
        {{"db", "expose", "J", "S", "X", "1"}, 2, "no element 'X'"},
        {{"db", "show", "J", "S", "E", "--env", "elsewhere"}, 2, "no job 'J'"},
        {{"db", "show", "--db", "mysql://host/db"}, 2, "unknown kind of database address"},
        {{"db", "create-element", "J", "S", "F", "--scan-type", "sepia", "--vectorize", "none", "--field", "12"}, 1,
         "'sepia' is not one of colour|grey|bw"},
        {{"db", "create-element", "J", "S", "F", "--scan-type", "bw", "--vectorize", "none", "--field", "14"}, 1, "--field"},
        {QStringList{"db", "create-element", "J", "S", "F", "--pixel-shape", "2"} + element, 1, "--pixel-shape"},
        {{"db", "create-element", "J", "S", "F", "--scan-type", "bw", "--field", "12"}, 1, "needs --vectorize"},
        {QStringList{"db", "create-element", "J", "S", "a/b"} + element, 1, "not an element name"},
        {{"db", "create-scene", "J", "T"}, 1, "needs --path"},
        {{"db", "expose", "J", "S", "E", "1:3 a:3"}, 1, "a:3 is not an integer"},
        {{"db", "create-job"}, 1, "wrong number of arguments"},
        {{"db", "rename", "J"}, 1, "unknown subcommand 'rename'"},
        {{"db", "show", "--verbose"}, 1, "unknown option '--verbose'"},
        {{"queue", "take"}, 1, "--worker NAME is required"},
        {{"queue", "take", "--worker", "w", "--lease", "0"}, 1, "--lease"},
        {{"queue", "take", "--worker", "w", "--lease", "1"}, 1, "too short to be renewed in time"},
        {{"queue", "list", "--state", "lost"}, 1, "'lost' is not a state"},
        {{"queue", "show", "12"}, 2, "no entry 12"},
        {{"queue", "show", "twelve"}, 1, "not an entry id"},
        {{"queue", "add", "--job", "J", "--scene", "S", "--element", "Plain", "--drawings", "1"}, 2,
         "needs no vectorization"},
    };
    ASSERT_EQ(scanctl(QStringList{"db", "create-element", "J", "S", "Plain"} + element).status, 0);
    for (const Case &c : cases) {
        const ProcessResult r = scanctl(c.args);
        EXPECT_EQ(r.status, c.status) << c.args.join(' ').toStdString() << ": " << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(QString::fromUtf8(c.says))) << c.args.join(' ').toStdString() << ": "
                                                                 << r.err.toStdString();
    }
    // A list with an error exposes nothing of what came before it.
    EXPECT_TRUE(scanctl({"db", "show", "J", "S", "E"}).out.contains("drawings: 0 exposed"));
    EXPECT_FALSE(QFileInfo::exists(dir_.filePath("scenes/S/F")));
}

TEST_F(ScanctlDb, QueueEntriesAreTakenAndFinishedByTheirWorker) {
    ASSERT_NO_FATAL_FAILURE(makeProduction("pix2vec"));
    ProcessResult r = scanctl({"queue", "add", "--job", "J", "--scene", "S", "--element", "E", "--drawings", "1:3",
                               "--options", "-no_color_art "});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    r = scanctl({"queue", "list"});
    EXPECT_EQ(r.out, "1  waiting  J/S/E  1  pix2vec\n2  waiting  J/S/E  2  pix2vec\n3  waiting  J/S/E  3  pix2vec\n");

    r = scanctl({"queue", "take", "--worker", "a"});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, "1  taken  J/S/E  1  pix2vec  a\n");
    r = scanctl({"queue", "take", "--worker", "b", "--count", "5"});
    EXPECT_EQ(r.out, "2  taken  J/S/E  2  pix2vec  b\n3  taken  J/S/E  3  pix2vec  b\n");
    EXPECT_EQ(scanctl({"queue", "take", "--worker", "b"}).status, 3) << "nothing is free while leases run";
    // (A lapsed lease handing an entry over is the worker processes' test.)
    r = scanctl({"queue", "done", "3", "--worker", "a"});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.err.contains("entry 3 is held by b, not a")) << r.err.toStdString();
    EXPECT_EQ(scanctl({"queue", "done", "1", "--worker", "a"}).status, 0);
    EXPECT_EQ(scanctl({"queue", "fail", "2", "no line art found"}).status, 0);
    EXPECT_EQ(scanctl({"queue", "done", "2"}).status, 2) << "a failed entry stays failed";

    r = scanctl({"queue", "show", "2"});
    EXPECT_TRUE(r.out.contains("  state:        failed\n")) << r.out.toStdString();
    EXPECT_TRUE(r.out.contains("  message:      no line art found\n"));
    EXPECT_TRUE(r.out.contains("  options:      -no_color_art \n"));
    EXPECT_TRUE(r.out.contains("  process:      pix2vec (4)\n"));
    EXPECT_EQ(scanctl({"queue", "list", "--state", "done"}).out, "1  done  J/S/E  1  pix2vec  a\n");
}

TEST_F(ScanctlDb, AWorkerRunsItsProgramForEachEntryAndRecordsTheOutcome) {
    ASSERT_NO_FATAL_FAILURE(makeProduction());
    ASSERT_EQ(scanctl({"queue", "add", "--job", "J", "--scene", "S", "--element", "E", "--drawings", "1 2b 3"}).status, 0);
    // The program sees the entry; drawing 2b fails with a reason.
    const QString script = QStringLiteral(
        "echo \"$SCAN_QUEUE_ID:$SCAN_JOB/$SCAN_SCENE/$SCAN_ELEMENT:$SCAN_DRAWING:$SCAN_PROCESS:$SCAN_ELEMENT_DIR\";"
        "[ \"$SCAN_DRAWING\" != 2b ] || { echo 'cannot read the scan' >&2; exit 5; }");
    const ProcessResult r =
        scanctl({"queue", "work", "--worker", "w", "--until-empty", "--", "/bin/sh", "-c", script});
    EXPECT_EQ(r.status, 2) << "one entry failed";
    const QString folder = QDir(dir_.filePath("scenes/S/E")).absolutePath();
    for (const char *drawing : {"1", "2b", "3"})
        EXPECT_TRUE(r.out.contains(QStringLiteral(":J/S/E:%1:vectorize:%2\n").arg(drawing, folder))) << r.out.toStdString();
    EXPECT_EQ(scanctl({"queue", "list"}).out, "1  done  J/S/E  1  vectorize  w\n2  failed  J/S/E  2b  vectorize  w\n"
                                              "3  done  J/S/E  3  vectorize  w\n");
    EXPECT_TRUE(scanctl({"queue", "show", "2"}).out.contains("sh exited with status 5: cannot read the scan"));
    EXPECT_EQ(scanctl({"queue", "work", "--worker", "w", "--", "/bin/true"}).status, 3);
}


// A query that fails is an error that names the database and what was being
// read, with status 2: never an empty or shortened listing. Each command is
// run with the table it reads renamed away, then (SQLite) with a damaged page
// under a listing, and (PostgreSQL) with the server stopped.
class ScanctlReadFailures : public ScanctlDbTest, public ::testing::WithParamInterface<ScanctlBackend> {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(useBackend(GetParam()));
        if (IsSkipped()) return;
        ASSERT_NO_FATAL_FAILURE(makeProduction());
        ASSERT_EQ(scanctl({"db", "expose", "J", "S", "E", "1:3"}).status, 0);
        ASSERT_EQ(scanctl({"queue", "add", "--job", "J", "--scene", "S", "--element", "E", "--drawings", "1"}).status, 0);
    }

    // The command fails with 2, prints nothing on standard output, and says
    // what it read from which database.
    void expectReadFailure(const QStringList &args, const QString &what) {
        const ProcessResult r = scanctl(args);
        const std::string command = args.join(' ').toStdString();
        EXPECT_EQ(r.status, 2) << command << ": " << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << command << ": " << r.out.toStdString();
        EXPECT_TRUE(r.err.contains(what)) << command << ": " << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(described())) << command << ": " << r.err.toStdString();
    }

    // Overwrites the last leaf page of a table, as a failing disk would.
    void damageLastPageOf(const QString &table) {
        ASSERT_FALSE(QFile::exists(connection_ + QStringLiteral("-wal"))) << "the log is not yet in the file";
        int root = 0;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("pages"));
            db.setDatabaseName(connection_);
            ASSERT_TRUE(db.open());
            QSqlQuery q(db);
            ASSERT_TRUE(q.exec(QStringLiteral("SELECT rootpage FROM sqlite_master WHERE name = '%1'").arg(table)) &&
                        q.next());
            root = q.value(0).toInt();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("pages"));
        QFile file(connection_);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        const QByteArray header = file.read(100);
        const auto be = [](const QByteArray &b, qsizetype at, int n) {
            quint32 v = 0;
            for (int i = 0; i < n; ++i) v = v << 8 | quint8(b[at + i]);
            return v;
        };
        const qint64 pageSize = be(header, 16, 2) == 1 ? 65536 : be(header, 16, 2);
        ASSERT_TRUE(file.seek((root - 1) * pageSize));
        const QByteArray rootPage = file.read(12);
        ASSERT_EQ(quint8(rootPage[0]), 0x05) << "the table fits one page; it needs more rows";
        const quint32 last = be(rootPage, 8, 4);  // the right-most child
        ASSERT_TRUE(file.seek((last - 1) * pageSize));
        file.write(QByteArray(pageSize, '\xff'));
    }
};

TEST_P(ScanctlReadFailures, AFailedReadIsAnErrorNamingTheDatabaseAndWhatWasRead) {
    // The drawings are read before the scanners: no Scan.conf is needed.
    const QStringList scan{"scan", "--db", connection_, "--conf", dir_.filePath("none.conf"), "--job", "J", "--scene",
                           "S", "--element", "E", "--unscanned"};
    struct Case {
        const char *table;
        QStringList args;
        const char *what;
    };
    const QList<Case> cases = {
        {"queue_entries", {"queue", "list"}, "the vectorize queue"},
        {"queue_entries", {"queue", "list", "--state", "waiting"}, "the vectorize queue"},
        {"queue_entries", {"queue", "show", "1"}, "queue entry 1"},
        {"queue_entries", {"queue", "done", "1"}, "queue entry 1"},
        {"queue_entries", {"queue", "take", "--worker", "w"}, "can't take an entry"},
        {"queue_entries", {"queue", "work", "--worker", "w", "--", "/bin/true"}, "can't take an entry"},
        {"jobs", {"db", "show"}, "the jobs of environment default"},
        {"jobs", {"db", "create-job", "K"}, "job 'K'"},
        {"scenes", {"db", "show", "J"}, "the scenes of job J"},
        {"elements", {"db", "show", "J", "S"}, "the elements of scene S"},
        {"cels", {"db", "show", "J", "S", "E"}, "the cels of element E"},
        {"exposures", {"db", "show", "J", "S", "E"}, "the drawings of element E"},
        {"cels", scan, "the drawings of element 'E'"},
    };
    for (const Case &c : cases) {
        const QString table = QString::fromLatin1(c.table);
        ASSERT_TRUE(rawSql(QStringLiteral("ALTER TABLE %1 RENAME TO hidden_%1").arg(table)));
        expectReadFailure(c.args, QString::fromLatin1(c.what));
        ASSERT_TRUE(rawSql(QStringLiteral("ALTER TABLE hidden_%1 RENAME TO %1").arg(table)));
    }

    if (GetParam() == ScanctlBackend::SQLite) {
        // Enough entries for several pages; the first still read well, the
        // last page is damaged.
        ASSERT_TRUE(rawSql(QStringLiteral(
            "WITH RECURSIVE n(i) AS (SELECT 2 UNION ALL SELECT i + 1 FROM n WHERE i < 300) "
            "INSERT INTO queue_entries (environment_id, active, job_name, scene_name, element_name, element_id, "
            "drawing, options, scene_id, process, scene_version, state, created_at) "
            "SELECT (SELECT id FROM environments WHERE name = 'default'), 1, 'J', 'S', 'E', 1, i, "
            "hex(zeroblob(150)), 1, 2, 1, 'waiting', 0 FROM n")));
        ASSERT_NO_FATAL_FAILURE(damageLastPageOf(QStringLiteral("queue_entries")));
        expectReadFailure({"queue", "list"}, QStringLiteral("the vectorize queue"));
        expectReadFailure({"queue", "show", "300"}, QStringLiteral("queue entry 300"));
        return;
    }
    PgTestServer &server = PgTestServer::instance();
    ASSERT_TRUE(server.halt()) << server.error().toStdString();
    for (const Case &c : cases) {
        const ProcessResult r = scanctl(c.args);
        EXPECT_EQ(r.status, 2) << c.args.join(' ').toStdString() << ": " << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(described())) << r.err.toStdString();
    }
    ASSERT_TRUE(server.resume()) << server.error().toStdString();
}

INSTANTIATE_TEST_SUITE_P(Backends, ScanctlReadFailures,
                         ::testing::Values(ScanctlBackend::SQLite, ScanctlBackend::PostgreSQL), scanctlBackendName);

}  // namespace
