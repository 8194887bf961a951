#pragma once
// A program that a queue worker runs leads a process group of its own, so
// that it and everything it starts end together. A guard process ends that
// group when the worker dies, however it dies: SIGKILL reaches no handler,
// so the guard, forked at the start, waits on a pipe instead, and when the
// worker's end of the pipe closes it kills the group it was last told of.
#include <functional>

#include <sys/types.h>

class ProcessGroupGuard {
public:
    // Forks the guard.
    ProcessGroupGuard();
    // Lets the guard go; it ends the group it watches, if any.
    ~ProcessGroupGuard();
    ProcessGroupGuard(const ProcessGroupGuard &) = delete;
    ProcessGroupGuard &operator=(const ProcessGroupGuard &) = delete;

    // False when the guard could not be started.
    bool ok() const { return pipe_ >= 0; }
    // For QProcess::setChildProcessModifier: the child leads a new process
    // group, is killed when the thread that started it dies, and tells the
    // guard of its group itself, before it runs anything: the worker could be
    // killed before it learns the child's id.
    std::function<void()> childSetUp() const;
    // The program has ended, or never started: there is no group to end.
    void forget();

private:
    int pipe_ = -1;  // the writing end
    pid_t guard_ = -1;
};

// Kills every process of the group; nothing happens when none is left.
void kill_process_group(pid_t group);
