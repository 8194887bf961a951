// The queue worker: takes entries one at a time and runs a program for
// each, with the entry in its environment.
//
// An entry runs once while its worker lives. The lease is renewed at every
// third of it while the program runs and until its outcome is recorded; a
// wait for another session's lock is cut at a quarter of the lease and tried
// again, so that no single wait can outlast it; and the worker counts its
// lease from when a renewal began, never from when it was answered. A lost
// connection is opened again with back-off, and the entry is given up only
// when the database says another worker holds it. The program leads a
// process group of its own, which ends with it and with its worker.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcessEnvironment>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <functional>

#include "tools/queue_worker/open_database.h"
#include "tools/queue_worker/process_group.h"
#include "tools/queue_worker/queue_entry_text.h"
#include "tools/queue_worker/queue_worker.h"

namespace {

constexpr int kMinLeaseSeconds = 2;
constexpr int kMaxLeaseSeconds = 7 * 24 * 3600;
constexpr int kFirstBackOffMs = 250;
constexpr int kLastBackOffMs = 5000;

// How a call to the database ended once it was tried as often as it takes.
enum class Answer { Ok, NotHeld, Failed };

class Worker {
public:
    Worker(SqlDbAccess &db, const QueueWorkerSettings &s, QueueEntryProgram &program)
        : db_(db), s_(s), program_(program), command_(program.command()), out_(stdout) {
        clock_.start();
        db_.setLockWait(leaseMs() / 4);
    }

    int run() {
        if (!guard_.ok())
            return report_failure(program_.group(), QStringLiteral("can't start the guard of the programs' processes"),
                                  kDbStatusRefused);
        int taken = 0, unfinished = 0;
        do {
            std::optional<dba_queueEntry_struct> e;
            const Answer a = call([&] {
                e = db_.takeQueueEntry(s_.worker, s_.leaseSeconds);
                return e || db_.lastError().isEmpty();
            });
            if (a != Answer::Ok) return failed(QStringLiteral("can't take an entry from %1").arg(db_.description()));
            if (!e) break;
            ++taken;
            leaseFrom_ = attemptStart_;
            program_.taken(out_, *e);
            out_.flush();
            const std::optional<bool> done = work(*e);
            if (!done) return kDbStatusRefused;
            unfinished += !*done;
        } while (s_.untilEmpty);
        if (taken == 0) return report_failure(program_.group(), QStringLiteral("nothing to take"), kDbStatusQueueEmpty);
        return unfinished == 0 ? kDbStatusOk : kDbStatusRefused;
    }

private:
    // The worker's news on standard error.
    void note(const QString &text) const {
        std::fprintf(stderr, "%s %s: %s\n", QCoreApplication::applicationName().toLocal8Bit().constData(),
                     program_.group(), text.toLocal8Bit().constData());
    }

    int leaseMs() const { return s_.leaseSeconds * 1000; }

    // Tries `attempt` (true when answered) until it is answered: again at
    // once when another session held the lock too long, after reopening the
    // connection when it was lost.
    Answer call(const std::function<bool()> &attempt) {
        int backOff = kFirstBackOffMs;
        bool lost = false;
        for (;;) {
            attemptStart_ = clock_.elapsed();
            if (attempt()) {
                if (lost) note(QStringLiteral("reconnected to %1").arg(db_.description()));
                return Answer::Ok;
            }
            switch (db_.lastFailure()) {
            case SqlDbAccess::Failure::Busy: continue;
            case SqlDbAccess::Failure::NotHeld: return Answer::NotHeld;
            case SqlDbAccess::Failure::None:
            case SqlDbAccess::Failure::Other: return Answer::Failed;
            case SqlDbAccess::Failure::ConnectionLost:
                if (!lost)
                    note(QStringLiteral("connection lost to %1 (%2); reconnecting")
                             .arg(db_.description(), db_.lastError().trimmed()));
                lost = true;
                QThread::msleep(backOff);
                backOff = std::min(2 * backOff, kLastBackOffMs);
                db_.reconnect();  // a failure shows at the next attempt
                continue;
            }
        }
    }

    // Reports a database failure that ends the worker.
    int failed(const QString &what) {
        return report_failure(program_.group(), QStringLiteral("%1: %2").arg(what, db_.lastError()), kDbStatusRefused);
    }

    // Renews the lease when a third of it has gone since the last renewal began.
    Answer keepLease(const dba_queueEntry_struct &e) {
        if (clock_.elapsed() < leaseFrom_ + leaseMs() / 3) return Answer::Ok;
        const Answer a = call([&] { return db_.renewQueueLease(e.id, s_.worker, s_.leaseSeconds) == 0; });
        if (a == Answer::Ok) leaseFrom_ = attemptStart_;
        return a;
    }

    QProcessEnvironment entryEnvironment(const dba_queueEntry_struct &e, Answer &answer) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("SCAN_QUEUE_ID"), QString::number(e.id));
        env.insert(QStringLiteral("SCAN_JOB"), e.jobName);
        env.insert(QStringLiteral("SCAN_SCENE"), e.sceneName);
        env.insert(QStringLiteral("SCAN_ELEMENT"), e.elementName);
        env.insert(QStringLiteral("SCAN_DRAWING"), e.drawing);
        env.insert(QStringLiteral("SCAN_PROCESS"), queue_process_word(e.process));
        env.insert(QStringLiteral("SCAN_OPTIONS"), e.options);
        ProductionPath p;
        QString error;
        Lookup found = Lookup::Missing;
        answer = call([&] { return (found = find_production(db_, {e.jobName, e.sceneName, e.elementName}, p, error)) !=
                                   Lookup::Failed; });
        if (found == Lookup::Found) env.insert(QStringLiteral("SCAN_ELEMENT_DIR"), element_folder(*p.scene, *p.element));
        return env;
    }

    // Runs the program for the entry and records its outcome: whether it was
    // done, nothing when the database failed the worker.
    std::optional<bool> work(const dba_queueEntry_struct &e) {
        Answer a;
        QProcess p;
        p.setProcessEnvironment(entryEnvironment(e, a));
        if (a == Answer::Ok) a = keepLease(e);
        if (a != Answer::Ok) return lostOrFailed(e, a);
        if (program_.forwardsOutput()) p.setProcessChannelMode(QProcess::ForwardedOutputChannel);
        p.setChildProcessModifier(guard_.childSetUp());
        p.start(command_[0], command_.mid(1));
        if (!p.waitForStarted()) {
            guard_.forget();
            return record(e, QStringLiteral("can't start %1: %2").arg(command_[0], p.errorString()), {});
        }
        const pid_t group = pid_t(p.processId());
        for (;;) {
            const qint64 due = leaseFrom_ + leaseMs() / 3 - clock_.elapsed();
            if (p.waitForFinished(int(std::max<qint64>(1, due))) || p.state() == QProcess::NotRunning) break;
            if ((a = keepLease(e)) != Answer::Ok) break;
        }
        // What the program left running ends with it.
        kill_process_group(group);
        p.waitForFinished();
        guard_.forget();
        if (a != Answer::Ok) return lostOrFailed(e, a);
        const QByteArray output = program_.forwardsOutput() ? QByteArray() : p.readAllStandardOutput();
        if (p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0) {
            if ((a = keepLease(e)) == Answer::Ok) a = call([&] { return program_.recordDone(db_, e); });
            if (a != Answer::Ok) return lostOrFailed(e, a);
            return record(e, QString(), output);
        }
        const QStringList errors =
            QString::fromLocal8Bit(p.readAllStandardError()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        return record(e, program_.failure(p.exitStatus(), p.exitCode(), errors.isEmpty() ? QString() : errors.last()),
                      output);
    }

    // Records done (no message) or failed; the lease holds until it is recorded.
    std::optional<bool> record(const dba_queueEntry_struct &e, const QString &message, const QByteArray &output) {
        const Answer a = call([&] {
            return (message.isEmpty() ? db_.finishQueueEntry(e.id, s_.worker)
                                      : db_.failQueueEntry(e.id, message, s_.worker)) == 0;
        });
        if (a != Answer::Ok) return lostOrFailed(e, a);
        program_.finished(out_, e, message, output);
        out_.flush();
        return message.isEmpty();
    }

    std::optional<bool> lostOrFailed(const dba_queueEntry_struct &e, Answer a) {
        if (a == Answer::Failed) {
            failed(QStringLiteral("can't keep entry %1 in %2").arg(QString::number(e.id), db_.description()));
            return std::nullopt;
        }
        program_.finished(out_, e, QStringLiteral("entry %1 was no longer ours").arg(e.id), {});
        out_.flush();
        return false;
    }

    SqlDbAccess &db_;
    const QueueWorkerSettings &s_;
    QueueEntryProgram &program_;
    const QStringList &command_;
    QTextStream out_;
    ProcessGroupGuard guard_;
    QElapsedTimer clock_;
    qint64 attemptStart_ = 0;  // when the last call's last attempt began
    qint64 leaseFrom_ = 0;     // the lease runs at least a lease from here
};

}  // namespace

std::optional<QueueWorkerSettings> queue_worker_settings(const CommandWords &w, QString &error) {
    QueueWorkerSettings s;
    s.worker = w.value(QStringLiteral("--worker"));
    if (s.worker.isEmpty()) {
        error = QStringLiteral("--worker NAME is required");
        return std::nullopt;
    }
    if (w.values.contains(QStringLiteral("--lease"))) {
        const std::optional<int> lease = int_in_range(w.value(QStringLiteral("--lease")), 1, kMaxLeaseSeconds);
        if (!lease) {
            error = QStringLiteral("--lease: '%1' is not a number of seconds").arg(w.value(QStringLiteral("--lease")));
            return std::nullopt;
        }
        // A renewal every third of the lease, each waiting a quarter of it
        // for the lock at most: shorter leases leave no room for a retry.
        if (*lease < kMinLeaseSeconds) {
            error = QStringLiteral("--lease: %1 s is too short to be renewed in time; at least %2 s")
                        .arg(QString::number(*lease), QString::number(kMinLeaseSeconds));
            return std::nullopt;
        }
        s.leaseSeconds = *lease;
    }
    s.untilEmpty = w.flags.contains(QStringLiteral("--until-empty"));
    return s;
}

void QueueEntryProgram::taken(QTextStream &out, const dba_queueEntry_struct &e) {
    out << "taken: " << queue_entry_line(e) << "\n";
}

QString QueueEntryProgram::failure(QProcess::ExitStatus status, int exitCode, const QString &lastError) const {
    QString message = status == QProcess::NormalExit
                          ? QStringLiteral("%1 exited with status %2").arg(command_[0], QString::number(exitCode))
                          : QStringLiteral("%1 crashed").arg(command_[0]);
    if (!lastError.isEmpty()) message += QStringLiteral(": ") + lastError;
    return message;
}

bool QueueEntryProgram::recordDone(SqlDbAccess &, const dba_queueEntry_struct &) { return true; }

void QueueEntryProgram::finished(QTextStream &out, const dba_queueEntry_struct &e, const QString &message,
                                 const QByteArray &) {
    if (message.isEmpty()) out << "done: " << e.id << "\n";
    else out << "failed: " << e.id << ": " << message << "\n";
}

int run_queue_worker(SqlDbAccess &db, const QueueWorkerSettings &settings, QueueEntryProgram &program) {
    return Worker(db, settings, program).run();
}
