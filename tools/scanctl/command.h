#pragma once
// The commands of scanctl. Each is a function from its arguments (the words
// after the command's name) to the exit status.
#include <QStringList>

#include <span>
#include <string_view>

struct ScanctlCommand {
    std::string_view name;
    std::string_view synopsis;  // the arguments, as --help shows them
    std::string_view summary;
    int (*run)(const QStringList &args);
};

// Every command, in the order that --help lists them.
std::span<const ScanctlCommand> scanctl_commands();

int run_scanners_command(const QStringList &args);
int run_info_command(const QStringList &args);
int run_scan_command(const QStringList &args);
int run_register_command(const QStringList &args);
int run_db_command(const QStringList &args);
int run_queue_command(const QStringList &args);
int run_options_command(const QStringList &args);
