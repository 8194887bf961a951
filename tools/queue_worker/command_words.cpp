#include "tools/queue_worker/command_words.h"

std::optional<CommandWords> split_command_words(const QStringList &args, const QStringList &valueOptions,
                                                const QStringList &flagOptions, QString &error) {
    CommandWords words;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &word = args[i];
        if (word == QLatin1String("--")) {
            words.rest = args.mid(i + 1);
            break;
        }
        if (word == QLatin1String("--help") || word == QLatin1String("-h")) {
            words.help = true;
        } else if (valueOptions.contains(word)) {
            if (i + 1 >= args.size()) {
                error = QStringLiteral("%1 needs a value").arg(word);
                return std::nullopt;
            }
            words.values.insert(word, args[++i]);
        } else if (flagOptions.contains(word)) {
            words.flags.insert(word);
        } else if (word.startsWith(QLatin1String("--"))) {
            error = QStringLiteral("unknown option '%1'").arg(word);
            return std::nullopt;
        } else {
            words.positional << word;
        }
    }
    return words;
}

std::optional<int> int_in_range(const QString &text, int low, int high) {
    bool ok = false;
    const int n = text.toInt(&ok, 10);
    if (!ok || n < low || n > high) return std::nullopt;
    return n;
}
