// The vectorize queue shared by many processes, on an embedded database and
// on a PostgreSQL server: stations adding at once lose nothing and double
// nothing, a living worker's entry runs once whatever the locks and the
// server do, and the entry of a worker that was killed goes to another once
// its lease runs out.
#include <QtCore>

#include <csignal>

#include "scanctl_db_fixture.h"

namespace {

class QueueWorkers : public ScanctlDbTest {
protected:
    void start(ScanctlBackend backend) {
        ASSERT_NO_FATAL_FAILURE(useBackend(backend));
        if (!IsSkipped()) {
            ASSERT_NO_FATAL_FAILURE(makeProduction());
        }
    }
    ProcessResult add(const QString &drawings) {
        return scanctl({"queue", "add", "--job", "J", "--scene", "S", "--element", "E", "--drawings", drawings});
    }
    // The program of the workers: it notes the entry it runs for.
    QStringList noteRun(const QString &more = QString()) const {
        return {"/bin/sh", "-c", QStringLiteral("echo \"$SCAN_QUEUE_ID\" >> '%1'%2").arg(dir_.filePath("runs"), more)};
    }
    void expectEachEntryRanOnceAndDone(int entries) {
        QFile f(dir_.filePath("runs"));
        QHash<qint64, int> count;
        if (f.open(QIODevice::ReadOnly))
            for (const QByteArray &line : f.readAll().split('\n'))
                if (!line.isEmpty()) ++count[line.toLongLong()];
        EXPECT_EQ(count.size(), entries);
        for (auto it = count.begin(); it != count.end(); ++it) EXPECT_EQ(it.value(), 1) << "entry " << it.key();
        std::unique_ptr<SqlDbAccess> db = openDirectly();
        ASSERT_TRUE(db);
        EXPECT_EQ(db->queueEntries().size(), std::size_t(entries));
        for (const dba_queueEntry_struct &e : db->queueEntries())
            EXPECT_EQ(e.state, dba_queueState::Done) << "entry " << e.id;
    }
    std::unique_ptr<QProcess> startWorker(const QString &name, const QStringList &program, int lease = 2) const {
        return ScanctlDbTest::start(QStringList{"queue", "work", "--worker", name, "--lease", QString::number(lease),
                                                "--until-empty", "--"} +
                                    program);
    }
    // The ids at the start of each line that take printed.
    static QList<qint64> takenIds(const QString &out) {
        QList<qint64> ids;
        for (const QString &line : out.split('\n', Qt::SkipEmptyParts)) ids << line.section(' ', 0, 0).toLongLong();
        return ids;
    }
};

class QueueProcesses : public QueueWorkers, public ::testing::WithParamInterface<ScanctlBackend> {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(start(GetParam())); }
};

// Four stations add at once, keeping a SQLite file's write lock busy, while
// six workers run short programs under a two-second lease: no entry is lost
// or doubled, and waiting for the lock to record an outcome must not let the
// lease lapse and hand the entry to another.
TEST_P(QueueProcesses, StationsAddWhileWorkersRunEachEntryOnce) {
    if (IsSkipped()) return;
    constexpr int kFirst = 50, kStations = 4, kPerStation = 100, kWorkers = 6;
    ASSERT_EQ(add(QStringLiteral("1:%1").arg(kFirst)).status, 0);
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int s = 0; s < kStations; ++s)
        processes.push_back(ScanctlDbTest::start(
            {"queue", "add", "--job", "J", "--scene", "S", "--element", "E", "--drawings",
             QStringLiteral("%1:%2").arg(kFirst + s * kPerStation + 1).arg(kFirst + (s + 1) * kPerStation)}));
    for (int w = 0; w < kWorkers; ++w) processes.push_back(startWorker(QStringLiteral("w%1").arg(w), noteRun()));
    for (auto &p : processes) {
        ASSERT_TRUE(finish(*p)) << "a process did not end";
        // A worker that came late may find nothing left (3).
        EXPECT_TRUE(p->exitCode() == 0 || p->exitCode() == 3) << p->readAllStandardError().toStdString();
        EXPECT_FALSE(p->readAllStandardOutput().contains("no longer ours"));
    }
    // Workers that found the queue empty before the stations ended leave the rest.
    std::unique_ptr<QProcess> rest = startWorker(QStringLiteral("rest"), noteRun());
    ASSERT_TRUE(finish(*rest));
    expectEachEntryRanOnceAndDone(kFirst + kStations * kPerStation);
}

TEST_P(QueueProcesses, TheEntryOfAKilledWorkerGoesToAnotherWhenItsLeaseRunsOut) {
    if (IsSkipped()) return;
    ASSERT_EQ(add("1:2").status, 0);
    // The doomed worker holds entry 1 with the shortest lease, renewed while its program runs.
    std::unique_ptr<QProcess> doomed =
        ScanctlDbTest::start({"queue", "work", "--worker", "doomed", "--lease", "2", "--", "/bin/sleep", "60"});
    ASSERT_TRUE(doomed->waitForReadyRead(20000)) << doomed->readAllStandardError().toStdString();
    const QString line = QString::fromUtf8(doomed->readLine());
    ASSERT_TRUE(line.startsWith("taken: 1  taken")) << line.toStdString();

    // Longer than the lease: the living worker keeps its entry.
    QThread::msleep(2600);
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
    EXPECT_LT(waited.elapsed(), 5000) << "the lease should free the entry about two seconds after the kill";
    EXPECT_EQ(scanctl({"queue", "done", "1", "--worker", "doomed"}).status, 2) << "the dead worker's late word";
    EXPECT_EQ(scanctl({"queue", "done", "1", "--worker", "rescuer"}).status, 0);
}

INSTANTIATE_TEST_SUITE_P(Backends, QueueProcesses, ::testing::Values(ScanctlBackend::SQLite, ScanctlBackend::PostgreSQL),
                         scanctlBackendName);

// A program and what it starts end with a worker killed in any way.
TEST_F(QueueWorkers, KillingAWorkerEndsItsProgramsWholeProcessGroup) {
    ASSERT_NO_FATAL_FAILURE(start(ScanctlBackend::SQLite));
    for (int sig : {SIGKILL, SIGTERM, SIGINT}) {
        SCOPED_TRACE(sig);
        ASSERT_EQ(add("1").status, 0);
        const QString pidFile = dir_.filePath(QStringLiteral("grandchild%1").arg(sig));
        std::unique_ptr<QProcess> worker = startWorker(
            QStringLiteral("w"), {"/bin/sh", "-c", QStringLiteral("sleep 300 & echo $! > '%1'; wait").arg(pidFile)}, 60);
        QElapsedTimer waited;
        waited.start();
        pid_t grandchild = 0;
        while (grandchild == 0 && waited.elapsed() < 10000) {
            QThread::msleep(20);
            QFile f(pidFile);
            if (f.open(QIODevice::ReadOnly)) grandchild = f.readAll().trimmed().toInt();
        }
        ASSERT_GT(grandchild, 0) << worker->readAllStandardError().toStdString();
        ::kill(pid_t(worker->processId()), sig);
        ASSERT_TRUE(worker->waitForFinished(5000));
        // Gone, or a zombie that nobody reaps in a container.
        const auto alive = [grandchild] {
            QFile stat(QStringLiteral("/proc/%1/stat").arg(grandchild));
            return stat.open(QIODevice::ReadOnly) && QString::fromLatin1(stat.readAll()).section(' ', 2, 2) != "Z";
        };
        waited.restart();
        while (alive() && waited.elapsed() < 5000) QThread::msleep(20);
        EXPECT_FALSE(alive()) << "the program's child outlived its killed worker";
        if (alive()) ::kill(grandchild, SIGKILL);
    }
}

// The server goes away under a worker and comes back: the worker says so,
// reconnects and records its entry, which nobody else took.
TEST_F(QueueWorkers, AWorkerThatLosesItsServerReconnectsAndGoesOn) {
    ASSERT_NO_FATAL_FAILURE(start(ScanctlBackend::PostgreSQL));
    if (IsSkipped()) return;
    ASSERT_EQ(add("1:2").status, 0);
    std::unique_ptr<QProcess> worker =
        startWorker(QStringLiteral("w"), noteRun(QStringLiteral("; [ $SCAN_QUEUE_ID != 1 ] || sleep 3")));
    ASSERT_TRUE(worker->waitForReadyRead(20000)) << worker->readAllStandardError().toStdString();
    PgTestServer &server = PgTestServer::instance();
    ASSERT_TRUE(server.halt()) << server.error().toStdString();
    QThread::msleep(2500);  // longer than the lease: it lapses, but nobody takes the entry
    ASSERT_TRUE(server.resume()) << server.error().toStdString();
    ASSERT_TRUE(finish(*worker));
    const QString out = QString::fromUtf8(worker->readAllStandardOutput());
    const QString err = QString::fromUtf8(worker->readAllStandardError());
    EXPECT_EQ(worker->exitCode(), 0) << out.toStdString() << err.toStdString();
    EXPECT_TRUE(err.contains("connection lost")) << err.toStdString();
    EXPECT_FALSE(out.contains("no longer ours")) << out.toStdString();
    expectEachEntryRanOnceAndDone(2);
}

}  // namespace
