#pragma once
// Runs `write` with the files this process writes capped at `bytes`, as a
// full disk would stop it (root too): a write past the cap fails instead of
// raising SIGXFSZ. For tests of saves that fail half way.
#include <csignal>
#include <sys/resource.h>

template <class Write>
auto with_file_size_limit(rlim_t bytes, Write write) {
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved;
    limited.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limited);
    const auto result = write();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);
    return result;
}
