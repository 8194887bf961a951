#pragma once
// The words of a command split into its positional arguments, its options
// with a value ("--lease 30") and its flags ("--until-empty"). Every word
// after "--" is kept apart as it stands.
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

struct CommandWords {
    QStringList positional;
    QHash<QString, QString> values;
    QSet<QString> flags;
    QStringList rest;  // the words after "--"
    bool help = false;

    bool has(const QString &option) const { return values.contains(option) || flags.contains(option); }
    QString value(const QString &option, const QString &fallback = QString()) const {
        return values.value(option, fallback);
    }
};

// Options not named in `valueOptions` or `flagOptions` are refused, as is a
// value option at the end with no value; nothing, with `error`, then.
std::optional<CommandWords> split_command_words(const QStringList &args, const QStringList &valueOptions,
                                                const QStringList &flagOptions, QString &error);

// A whole number from `low` to `high`, or nothing.
std::optional<int> int_in_range(const QString &text, int low, int high);
