#pragma once
// Shared helpers of the message tests: a message object logging into a
// throwaway folder that records what it reports, and a translator made in code.
#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QTemporaryDir>
#include <QTranslator>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "suite/base/tumessage.h"

// Records the reports instead of writing them to standard error.
class RecordingMessage : public TUMessage {
public:
    using TUMessage::TUMessage;
    struct Shown {
        char severity;
        QStringList texts;
    };
    std::vector<Shown> shown;

protected:
    bool report(char severity, const QStringList &pending, bool) override {
        shown.push_back({severity, pending});
        return false;
    }
};

inline TUMessage::Settings settingsIn(const QString &folder) {
    TUMessage::Settings s;
    s.appName = QStringLiteral("Scan Station");
    s.version = QStringLiteral("1.4\n\nbuild 77\n");
    s.userName = QStringLiteral("tester");
    s.logFolder = folder;
    return s;
}

inline QString readFile(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

// Lines of the log after its header.
inline QStringList bodyLines(const QString &log) {
    QStringList out = log.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    while (!out.isEmpty() && out.first().startsWith(QLatin1Char(' '))) out.removeFirst();
    return out;
}

// A translator from a table of (context, source) -> translation, installed while it lives.
class TableTranslator : public QTranslator {
public:
    explicit TableTranslator(QHash<QPair<QString, QString>, QString> table) : table_(std::move(table)) {
        QCoreApplication::installTranslator(this);
    }
    ~TableTranslator() override { QCoreApplication::removeTranslator(this); }
    QString translate(const char *context, const char *source, const char *, int) const override {
        return table_.value({QString::fromUtf8(context), QString::fromUtf8(source)});
    }
    bool isEmpty() const override { return false; }

private:
    QHash<QPair<QString, QString>, QString> table_;
};

// Installs `message` as the singleton for the life of the guard, then puts the
// previous one back.
class InstalledMessage {
public:
    explicit InstalledMessage(std::unique_ptr<TUMessage> message) : previous_(TUMessage::takeInstance()) {
        TUMessage::setInstance(std::move(message));
    }
    ~InstalledMessage() {
        TUMessage::takeInstance();
        TUMessage::setInstance(std::move(previous_));
    }
    TUMessage *get() const { return TUMessage::instance(); }

private:
    std::unique_ptr<TUMessage> previous_;
};
