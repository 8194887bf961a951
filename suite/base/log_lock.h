#pragma once
// The lock file beside a log. While a process holds the lock it keeps the file
// open under an exclusive flock, so a lock left behind by a crashed process can
// be told apart from a live one: only the live one refuses the flock.
#include <QString>
#include <QStringList>

class LogLock {
public:
    LogLock() = default;
    ~LogLock();
    LogLock(const LogLock &) = delete;
    LogLock &operator=(const LogLock &) = delete;

    // Creates (or takes over) the lock file and writes `lines`, one a line.
    // False when another holder has it or the file cannot be written.
    bool acquire(const QString &path, const QStringList &lines);
    // Releases the lock and removes its file.
    void release();
    bool isHeld() const { return fd_ >= 0; }
    const QString &path() const { return path_; }

    // True when some open file (in this or another process) holds the lock at
    // `path`. A missing file or a stale one is not held.
    static bool isLive(const QString &path);

private:
    int fd_ = -1;
    QString path_;
};
