// The vectorize queue shared by many processes, on an embedded database and
// on a PostgreSQL server: stations adding at once lose nothing and double
// nothing, workers taking at once never get the same entry, and the entry of
// a worker that was killed goes to another once its lease runs out.
#include <QElapsedTimer>
#include <QHash>
#include <QSet>
#include <QThread>

#include <csignal>

#include "scanctl_db_fixture.h"

namespace {

class ScanctlQueueProcesses : public ScanctlDbTest, public ::testing::WithParamInterface<ScanctlBackend> {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(useBackend(GetParam()));
        if (IsSkipped()) return;
        ASSERT_NO_FATAL_FAILURE(makeProduction());
    }

    static bool finish(QProcess &p, int timeoutMs = 60000) {
        return p.waitForFinished(timeoutMs) && p.exitStatus() == QProcess::NormalExit;
    }

    // The ids at the start of each line that take printed.
    static QList<qint64> takenIds(const QString &out) {
        QList<qint64> ids;
        for (const QString &line : out.split('\n', Qt::SkipEmptyParts)) ids << line.section(' ', 0, 0).toLongLong();
        return ids;
    }
};

TEST_P(ScanctlQueueProcesses, FourStationsAddAndThreeWorkersTakeEachEntryOnce) {
    constexpr int kStations = 4, kPerStation = 500, kWorkers = 3;
    std::vector<std::unique_ptr<QProcess>> stations;
    for (int s = 0; s < kStations; ++s) {
        const QString drawings = QStringLiteral("%1:%2").arg(s * kPerStation + 1).arg((s + 1) * kPerStation);
        stations.push_back(start({"queue", "add", "--job", "J", "--scene", "S", "--element", "E", "--drawings", drawings}));
    }
    for (auto &p : stations) {
        ASSERT_TRUE(finish(*p)) << "a station did not end";
        EXPECT_EQ(p->exitCode(), 0) << p->readAllStandardError().toStdString();
    }
    std::unique_ptr<SqlDbAccess> db = openDirectly();
    ASSERT_TRUE(db);
    std::vector<dba_queueEntry_struct> entries = db->queueEntries();
    ASSERT_EQ(entries.size(), std::size_t(kStations * kPerStation));
    QSet<QString> drawings;
    QSet<qint64> ids;
    for (const dba_queueEntry_struct &e : entries) {
        drawings.insert(e.drawing);
        ids.insert(e.id);
    }
    EXPECT_EQ(ids.size(), kStations * kPerStation);
    for (int n = 1; n <= kStations * kPerStation; ++n) EXPECT_TRUE(drawings.contains(QString::number(n))) << n;

    std::vector<std::unique_ptr<QProcess>> workers;
    for (int w = 0; w < kWorkers; ++w)
        workers.push_back(start({"queue", "take", "--worker", QStringLiteral("w%1").arg(w), "--lease", "600",
                                 "--until-empty"}));
    QHash<qint64, QString> takenBy;
    for (int w = 0; w < kWorkers; ++w) {
        QProcess &p = *workers[w];
        ASSERT_TRUE(finish(p)) << "a worker did not end";
        // A worker that came late may find nothing left (3).
        EXPECT_TRUE(p.exitCode() == 0 || p.exitCode() == 3) << p.readAllStandardError().toStdString();
        const QString name = QStringLiteral("w%1").arg(w);
        for (qint64 id : takenIds(QString::fromUtf8(p.readAllStandardOutput()))) {
            EXPECT_FALSE(takenBy.contains(id)) << "entry " << id << " taken by " << takenBy.value(id).toStdString()
                                               << " and " << name.toStdString();
            takenBy.insert(id, name);
        }
    }
    EXPECT_EQ(takenBy.size(), kStations * kPerStation);
    // What the workers said they took is what the database recorded.
    for (const dba_queueEntry_struct &e : db->queueEntries()) {
        EXPECT_EQ(e.state, dba_queueState::Taken) << e.id;
        EXPECT_EQ(e.worker, takenBy.value(e.id)) << e.id;
    }
}

TEST_P(ScanctlQueueProcesses, TheEntryOfAKilledWorkerGoesToAnotherWhenItsLeaseRunsOut) {
    ASSERT_EQ(scanctl({"queue", "add", "--job", "J", "--scene", "S", "--element", "E", "--drawings", "1:2"}).status, 0);
    // The doomed worker holds entry 1 with a one-second lease, renewed while its program runs.
    std::unique_ptr<QProcess> doomed =
        start({"queue", "work", "--worker", "doomed", "--lease", "1", "--", "/bin/sleep", "60"});
    ASSERT_TRUE(doomed->waitForReadyRead(20000)) << doomed->readAllStandardError().toStdString();
    const QString line = QString::fromUtf8(doomed->readLine());
    ASSERT_TRUE(line.startsWith("taken: 1  taken")) << line.toStdString();

    // Longer than the lease: the living worker keeps its entry.
    QThread::msleep(1600);
    ProcessResult r = scanctl({"queue", "take", "--worker", "other", "--lease", "60", "--until-empty"});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(takenIds(r.out), QList<qint64>{2});

    ::kill(pid_t(doomed->processId()), SIGKILL);
    doomed->waitForFinished(5000);
    QElapsedTimer waited;
    waited.start();
    QList<qint64> rescued;
    while (rescued.isEmpty() && waited.elapsed() < 10000) {
        r = scanctl({"queue", "take", "--worker", "rescuer"});
        if (r.status == 0) rescued = takenIds(r.out);
        else EXPECT_EQ(r.status, 3) << r.err.toStdString();
        if (rescued.isEmpty()) QThread::msleep(200);
    }
    EXPECT_EQ(rescued, QList<qint64>{1});
    EXPECT_LT(waited.elapsed(), 5000) << "the lease should free the entry about a second after the kill";
    r = scanctl({"queue", "done", "1", "--worker", "doomed"});
    EXPECT_EQ(r.status, 2) << "the dead worker's late word is refused";
    EXPECT_EQ(scanctl({"queue", "done", "1", "--worker", "rescuer"}).status, 0);
}

INSTANTIATE_TEST_SUITE_P(Backends, ScanctlQueueProcesses,
                         ::testing::Values(ScanctlBackend::SQLite, ScanctlBackend::PostgreSQL), scanctlBackendName);

}  // namespace
