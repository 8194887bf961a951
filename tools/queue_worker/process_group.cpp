#include "tools/queue_worker/process_group.h"

#include <cerrno>
#include <csignal>
#include <initializer_list>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The guard: only calls that are safe after fork() in a program with threads.
[[noreturn]] void guard_main(int readEnd) {
    // Ctrl-C and a SIGTERM to the worker's group must not end the guard before
    // the worker: the group would outlive both.
    for (int sig : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) ::signal(sig, SIG_IGN);
    // Keep nothing of the worker open: neither its output (a reader waiting
    // for the end of it would wait for the guard) nor its database.
    const int null = ::open("/dev/null", O_RDWR);
    for (int fd = 0; fd <= 2; ++fd)
        if (null >= 0) ::dup2(null, fd);
    if (::dup2(readEnd, 3) < 0) ::_exit(1);
    ::close_range(4, ~0U, 0);
    pid_t group = 0;
    for (;;) {
        pid_t told;
        const ssize_t n = ::read(3, &told, sizeof told);
        if (n == sizeof told) {
            group = told;
        } else if (n == 0 || (n < 0 && errno != EINTR)) {
            if (group > 0) ::kill(-group, SIGKILL);
            ::_exit(0);
        }
    }
}

}  // namespace

ProcessGroupGuard::ProcessGroupGuard() {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0) return;
    guard_ = ::fork();
    if (guard_ == 0) guard_main(fds[0]);
    ::close(fds[0]);
    if (guard_ < 0) {
        ::close(fds[1]);
        return;
    }
    pipe_ = fds[1];
}

ProcessGroupGuard::~ProcessGroupGuard() {
    if (pipe_ < 0) return;
    ::close(pipe_);
    ::waitpid(guard_, nullptr, 0);
}

void ProcessGroupGuard::forget() {
    const pid_t none = 0;
    if (pipe_ >= 0) (void)!::write(pipe_, &none, sizeof none);
}

std::function<void()> ProcessGroupGuard::childSetUp() const {
    return [guard = pipe_] {
        ::setpgid(0, 0);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const pid_t self = ::getpid();
        if (guard >= 0) (void)!::write(guard, &self, sizeof self);
    };
}

void kill_process_group(pid_t group) {
    if (group > 0) ::kill(-group, SIGKILL);
}
