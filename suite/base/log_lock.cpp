#include "suite/base/log_lock.h"

#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

bool writeAll(int fd, const QByteArray &bytes) {
    const char *p = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, p, static_cast<size_t>(left));
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        p += n;
        left -= n;
    }
    return true;
}

// A holder removes its file before letting go of it; whoever flocks the
// orphaned inode afterwards must not take it for the lock at `name`.
bool samePathAndFile(const QByteArray &name, int fd) {
    struct stat byName {}, byFd {};
    return ::stat(name.constData(), &byName) == 0 && ::fstat(fd, &byFd) == 0 && byName.st_dev == byFd.st_dev &&
           byName.st_ino == byFd.st_ino;
}

}  // namespace

LogLock::~LogLock() { release(); }

bool LogLock::acquire(const QString &path, const QStringList &lines) {
    release();
    const QByteArray name = QFile::encodeName(path);
    const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    // Truncate only once the lock is ours: a live holder's lines stay intact.
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0 || !samePathAndFile(name, fd) || ::ftruncate(fd, 0) != 0 ||
        !writeAll(fd, (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8())) {
        ::close(fd);
        return false;
    }
    fd_ = fd;
    path_ = path;
    return true;
}

void LogLock::release() {
    if (fd_ < 0) return;
    // Remove before closing so that no other process can take the name between.
    ::unlink(QFile::encodeName(path_).constData());
    ::close(fd_);
    fd_ = -1;
    path_.clear();
}

bool LogLock::isLive(const QString &path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool live = ::flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(fd);  // closing drops a probe lock we may have taken
    return live;
}
