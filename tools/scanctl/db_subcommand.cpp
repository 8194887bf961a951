#include "tools/scanctl/db_subcommand.h"

#include <cstdio>
#include <cstring>

#include "tools/queue_worker/open_database.h"

namespace {

int usage_error(const char *group, const char *usage, const QString &text) {
    std::fprintf(stderr, "scanctl %s: %s\n\n%s", group, text.toLocal8Bit().constData(), usage);
    return kDbStatusUsage;
}

}  // namespace

int run_db_subcommand(const char *group, const char *usage, std::span<const DbSubcommand> subcommands,
                      const QStringList &args) {
    if (args.isEmpty()) return usage_error(group, usage, QStringLiteral("a subcommand is required"));
    if (args[0] == QLatin1String("--help") || args[0] == QLatin1String("-h")) {
        std::fputs(usage, stdout);
        return kDbStatusOk;
    }
    const DbSubcommand *sub = nullptr;
    for (const DbSubcommand &s : subcommands)
        if (args[0] == QLatin1String(s.name)) sub = &s;
    if (!sub) return usage_error(group, usage, QStringLiteral("unknown subcommand '%1'").arg(args[0]));

    QString error;
    const std::optional<CommandWords> words =
        split_command_words(args.mid(1), sub->valueOptions + database_value_options(), sub->flags, error);
    if (!words) return usage_error(group, usage, QStringLiteral("%1: %2").arg(args[0], error));
    if (words->help) {
        std::fputs(usage, stdout);
        return kDbStatusOk;
    }
    const int n = int(words->positional.size());
    if (n < sub->minArgs || (sub->maxArgs >= 0 && n > sub->maxArgs))
        return usage_error(group, usage, QStringLiteral("%1: wrong number of arguments").arg(args[0]));

    std::unique_ptr<SqlDbAccess> db = open_command_database(*words, error);
    if (!db) return report_failure(group, error, kDbStatusRefused);
    return sub->run(*db, *words);
}
