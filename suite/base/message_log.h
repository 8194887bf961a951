#pragma once
// The log file of the message object: the first free number of the user's logs,
// its lock file, its header, and an optional second log that carries the
// translated texts.
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <functional>
#include <memory>

#include "suite/base/log_lock.h"

class MessageLog {
public:
    struct Identity {
        QString folder;
        QString appName;   // blanks are removed for the file name
        QString userName;
        QString version;   // may span lines
        bool debug = false;
        bool append = false;      // a reused number is appended to, not truncated
        bool translated = false;  // also keep the log of translated texts
    };
    // Asked for each number in turn: may this lock and log be used?
    using OkToUse = std::function<bool(const QString &lockPath, const QString &logPath)>;

    static constexpr int kMaxNumber = 9999;

    MessageLog() = default;
    ~MessageLog();
    MessageLog(const MessageLog &) = delete;
    MessageLog &operator=(const MessageLog &) = delete;

    // "<folder>/<app>_<user>_"; a number and ".log" or ".lock" follow.
    static QString baseName(const QString &folder, const QString &appName, const QString &userName);
    static QString numbered(const QString &base, int n, const char *suffix);
    // The version text on one line: blank lines dropped, line ends as ", ".
    static QString versionLine(const QString &version);

    // Takes the first number from 1 to kMaxNumber that `ok` allows and whose lock
    // and log both open. False when none does; lastTriedLog() names the last try.
    bool open(const Identity &id, const OkToUse &ok);
    bool isOpen() const { return log_ != nullptr; }

    // Appends a line to the log and, when there is one, `translatedLine` to the
    // translated log. Each line is flushed.
    void writeLine(const QString &line, const QString &translatedLine);
    void flush();
    // The whole log as written so far.
    QString read() const;
    // Closes both logs and releases the lock; the logs stay on disk.
    void close();
    // Closes and deletes both logs and the lock.
    void closeAndRemove();

    QString logPath() const { return logPath_; }
    QString translatedLogPath() const { return translatedPath_; }
    QString lockPath() const { return lock_.path(); }
    QString lastTriedLog() const { return lastTried_; }

private:
    struct Stream {
        QFile file;
        QTextStream out;
        bool open(const QString &path, bool append);
        void put(const QString &text);
    };
    void writeHeader(Stream &s, const Identity &id) const;

    LogLock lock_;
    std::unique_ptr<Stream> log_;
    std::unique_ptr<Stream> translated_;
    QString logPath_;
    QString translatedPath_;
    QString lastTried_;
};
