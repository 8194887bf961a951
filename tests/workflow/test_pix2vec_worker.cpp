// pix2vec --worker on drawings scanned into an element by scanctl scan: the
// entries become drawing files beside their scans and vectorized cels, a
// drawing that can't be done fails its entry and the worker goes on, and
// two workers on one server share the queue.
#include <QtCore>

#include "scan_conf_file.h"
#include "scanctl_db_fixture.h"

namespace {

class Pix2vecWorker : public ScanctlDbTest {
protected:
    void start(ScanctlBackend backend, const QString &drawings) {
        ASSERT_NO_FATAL_FAILURE(useBackend(backend));
        if (IsSkipped()) return;
        ASSERT_NO_FATAL_FAILURE(makeProduction());
        const QString conf = writeScanConf(dir_.path(), scannerBlock("Test", "Bogus-Color"));
        const ProcessResult r = scanctl({"scan", "--db", connection_, "--conf", conf, "--dpi", "72", "--feed", "pegged-many", "--job", "J",
                                         "--scene", "S", "--element", "E", "--drawings", drawings},
                                        120000);
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
    }
    QStringList workerArgs(const QString &name) const {
        return {"--worker", name, "--db", connection_, "--lease", "5", "--until-empty", "--svg"};
    }
    ProcessResult worker(const QString &name) const {
        return run_program(QStringLiteral(PIX2VEC_PATH), workerArgs(name), dir_.path(), 120000);
    }
    QString element(const QString &file) const { return dir_.filePath(QStringLiteral("scenes/S/E/")) + file; }
    // The stage of each cel of E by drawing.
    QMap<QString, int> stages() const {
        QMap<QString, int> stage;
        std::unique_ptr<SqlDbAccess> db = openDirectly();
        for (const dba_cel_struct &cel : db->cels(db->queueEntries().at(0).elementId))
            stage[cel.drawingName()] = cel.processedStage;
        return stage;
    }
};

TEST_F(Pix2vecWorker, EmptiesTheQueueFailingWhatItCannotDoAndGoingOn) {
    ASSERT_NO_FATAL_FAILURE(start(ScanctlBackend::SQLite, "1:3"));
    QFile broken(element("E-3.tif"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly | QIODevice::Truncate) && broken.write("not a picture") > 0);
    broken.close();
    ASSERT_EQ(scanctl({"queue", "add", "--job", "J", "--scene", "S", "--element", "E", "--drawings", "2", "--options",
                       "-fit_errorl 2 -bogus 3"})
                  .status,
              0);
    const ProcessResult parser = run_program(QStringLiteral(SCANCTL_PATH), {"options", "-fit_errorl 2 -bogus 3"});
    ASSERT_EQ(parser.status, 2);

    const ProcessResult r = worker("w");
    EXPECT_EQ(r.status, 2) << "an entry failed" << r.err.toStdString();
    const QStringList lines = r.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 4) << r.out.toStdString() << r.err.toStdString();
    for (int i : {0, 1}) {
        const QString stem = element(QStringLiteral("E-%1.").arg(i + 1));
        EXPECT_TRUE(lines[i].startsWith(QStringLiteral("done: %1 J/S/E %1: ").arg(i + 1))) << lines[i].toStdString();
        EXPECT_TRUE(lines[i].endsWith(QStringLiteral(" -> %1kwg %1svg").arg(stem))) << lines[i].toStdString();
        EXPECT_TRUE(lines[i].contains(QRegularExpression(" [1-9][0-9]* strokes in [0-9]+\\.[0-9] s -> ")));
        const ProcessResult info = run_program(QStringLiteral(PIX2VEC_PATH), {"--info", stem + "kwg"});
        EXPECT_EQ(info.status, 0) << info.err.toStdString();
        EXPECT_TRUE(QFileInfo(stem + "svg").size() > 0);
    }
    const QString unreadable = QStringLiteral("Cannot load drawing file \"%1\".").arg(element("E-3.tif"));
    EXPECT_TRUE(lines[2].startsWith(QStringLiteral("failed: 3 J/S/E 3: ") + unreadable)) << lines[2].toStdString();
    EXPECT_EQ(lines[3], QStringLiteral("failed: 4 J/S/E 2: ") + parser.err.trimmed());

    std::unique_ptr<SqlDbAccess> db = openDirectly();
    ASSERT_TRUE(db);
    QStringList states;
    for (const dba_queueEntry_struct &e : db->queueEntries())
        states << dba_queueStateName(e.state) + ' ' + e.message.section(' ', 0, 2);
    EXPECT_EQ(states, QStringList({"done ", "done ", "failed Cannot load drawing", "failed Incorrect Usage (\"-bogus\")"}));
    // The failed drawing keeps its scan's stage.
    EXPECT_EQ(stages(), (QMap<QString, int>{{"1", DBA_CEL_VECTORIZED}, {"2", DBA_CEL_VECTORIZED}, {"3", DBA_CEL_SCANNED}}));
    EXPECT_EQ(worker("w").status, 3) << "nothing left to take";
}

TEST_F(Pix2vecWorker, WrongWordsAreUsageErrors) {
    const QList<QStringList> cases = {
        {"--worker"}, {"--worker", "w", "--lease", "1"}, {"--worker", "w", "extra"}, {"--worker", "w", "--bogus"}};
    for (const QStringList &args : cases) {
        const ProcessResult r = run_program(QStringLiteral(PIX2VEC_PATH), args, dir_.path());
        EXPECT_EQ(r.status, 1) << args.join(' ').toStdString();
        EXPECT_TRUE(r.err.startsWith("pix2vec --worker: ")) << r.err.toStdString();
    }
}

TEST_F(Pix2vecWorker, TwoWorkersOnOneServerDoEachEntryOnce) {
    ASSERT_NO_FATAL_FAILURE(start(ScanctlBackend::PostgreSQL, "1:6"));
    if (IsSkipped()) return;
    std::vector<std::unique_ptr<QProcess>> workers;
    for (const char *name : {"a", "b"}) {
        workers.push_back(std::make_unique<QProcess>());
        workers.back()->start(QStringLiteral(PIX2VEC_PATH), workerArgs(name));
    }
    QStringList done;
    for (auto &w : workers) {
        ASSERT_TRUE(finish(*w, 120000));
        EXPECT_TRUE(w->exitCode() == 0 || w->exitCode() == 3) << w->readAllStandardError().toStdString();
        for (const QString &line : QString::fromUtf8(w->readAllStandardOutput()).split('\n', Qt::SkipEmptyParts))
            done << line.section(' ', 0, 1);
    }
    done.sort();
    EXPECT_EQ(done, QStringList({"done: 1", "done: 2", "done: 3", "done: 4", "done: 5", "done: 6"}));
    std::unique_ptr<SqlDbAccess> db = openDirectly();
    ASSERT_TRUE(db);
    for (const dba_queueEntry_struct &e : db->queueEntries())
        EXPECT_EQ(e.state, dba_queueState::Done) << "entry " << e.id << ": " << e.message.toStdString();
    EXPECT_EQ(stages().values(), QList<int>(6, DBA_CEL_VECTORIZED));
}

}  // namespace
