#include "suite/base/message_log.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QStringConverter>

namespace {

QString now() { return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")); }

}  // namespace

MessageLog::~MessageLog() { close(); }

QString MessageLog::baseName(const QString &folder, const QString &appName, const QString &userName) {
    QString app = appName;
    app.remove(QRegularExpression(QStringLiteral("\\s")));
    return folder + QLatin1Char('/') + app + QLatin1Char('_') + userName + QLatin1Char('_');
}

QString MessageLog::numbered(const QString &base, int n, const char *suffix) {
    return base + QString::asprintf("%04d", n) + QLatin1String(suffix);
}

QString MessageLog::versionLine(const QString &version) {
    QStringList lines = version.split(QRegularExpression(QStringLiteral("\r\n|\n|\r")));
    lines.removeIf([](const QString &l) { return l.trimmed().isEmpty(); });
    return lines.join(QStringLiteral(", "));
}

bool MessageLog::Stream::open(const QString &path, bool append) {
    file.setFileName(path);
    if (!file.open(QIODevice::ReadWrite | (append ? QIODevice::Append : QIODevice::Truncate))) return false;
    out.setDevice(&file);
    out.setEncoding(QStringConverter::Utf8);
    return true;
}

void MessageLog::Stream::put(const QString &text) {
    out << text;
    out.flush();
    file.flush();
}

bool MessageLog::open(const Identity &id, const OkToUse &ok) {
    close();
    logPath_.clear();
    translatedPath_.clear();
    const QString base = baseName(id.folder, id.appName, id.userName);
    const QStringList lockLines{now(), QStringLiteral("Lock file for the log of ") + id.appName,
                                QStringLiteral("User: ") + id.userName};
    for (int n = 1; n <= kMaxNumber; ++n) {
        const QString lockPath = numbered(base, n, ".lock");
        const QString logPath = numbered(base, n, ".log");
        lastTried_ = logPath;
        if (!ok(lockPath, logPath) || !lock_.acquire(lockPath, lockLines)) continue;
        auto log = std::make_unique<Stream>();
        if (!log->open(logPath, id.append)) {
            lock_.release();
            continue;
        }
        std::unique_ptr<Stream> translated;
        if (id.translated) {
            translated = std::make_unique<Stream>();
            if (!translated->open(logPath + QLatin1Char('i'), id.append)) {
                lock_.release();
                continue;
            }
        }
        log_ = std::move(log);
        translated_ = std::move(translated);
        logPath_ = logPath;
        if (translated_) translatedPath_ = logPath + QLatin1Char('i');
        writeHeader(*log_, id);
        if (translated_) writeHeader(*translated_, id);
        return true;
    }
    return false;
}

void MessageLog::writeHeader(Stream &s, const Identity &id) const {
    QString h;
    h += QStringLiteral(" Date - Time : %1\n").arg(now());
    h += QStringLiteral(" Application : %1\n").arg(id.appName);
    h += QStringLiteral(" Version : %1\n").arg(versionLine(id.version));
    h += QStringLiteral(" O/S User name : %1\n").arg(id.userName);
    h += id.debug ? QStringLiteral(" Debug mode : ON\n") : QStringLiteral(" Debug mode : OFF\n");
    if (id.debug) h += QStringLiteral(" Log file : %1\n").arg(logPath_);
    s.put(h);
}

void MessageLog::writeLine(const QString &line, const QString &translatedLine) {
    if (log_) log_->put(line + QLatin1Char('\n'));
    if (translated_) translated_->put(translatedLine + QLatin1Char('\n'));
}

void MessageLog::flush() {
    if (log_) log_->put(QString());
    if (translated_) translated_->put(QString());
}

QString MessageLog::read() const {
    if (logPath_.isEmpty()) return {};
    QFile f(logPath_);
    if (!f.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(f.readAll());
}

void MessageLog::close() {
    log_.reset();
    translated_.reset();
    lock_.release();
}

void MessageLog::closeAndRemove() {
    close();
    if (!logPath_.isEmpty()) QFile::remove(logPath_);
    if (!translatedPath_.isEmpty()) QFile::remove(translatedPath_);
    logPath_.clear();
    translatedPath_.clear();
}
