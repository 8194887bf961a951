#include "suite/base/tumessage.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMutexLocker>
#include <QRecursiveMutex>
#include <QThread>
#include <QTime>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <vector>

#include "suite/base/message_log.h"
#include "suite/base/osw_util.h"
#include "suite/base/pending_report.h"

// One write as it was asked for; kept whole while it waits for the main thread.
struct TUMessage::Record {
    char type;
    QString text;
    QString translated;
    bool direct;
    QTime time;
};

struct TUMessage::Impl {
    Settings settings;
    bool debug = false;
    bool direct = false;
    bool silent = false;
    bool timeLogging = false;
    bool suspended = false;
    bool catchCodes = false;
    int errorCode = 0;
    int nextView = 1;
    std::map<int, View> views;

    MessageLog log;
    bool openTried = false;

    // The record being written, so that a queued line keeps its own mode and time.
    const Record *current = nullptr;

    // Shared with other threads: the queue of their writes and the pending reports.
    QRecursiveMutex mutex;
    std::vector<Record> queue;
    bool eventPosted = false;
    MSG_PendingReport pending;
    bool reporting = false;  // main thread only
};

namespace {

std::unique_ptr<TUMessage> &slot() {
    static std::unique_ptr<TUMessage> s;
    return s;
}

}  // namespace

TUMessage::TUMessage(Settings settings) : d(std::make_unique<Impl>()) {
    d->settings = std::move(settings);
    d->debug = d->settings.debug;
    // Queued writes are drained by events, so the object lives on the main thread
    // even when a worker made it first.
    if (QCoreApplication *app = QCoreApplication::instance(); app && thread() != app->thread())
        moveToThread(app->thread());
}

TUMessage::~TUMessage() {
    if (onOwnThread()) drainQueue();
    d->log.close();
}

TUMessage *TUMessage::instance() {
    if (!slot()) {
        Settings s;
        s.console = true;
        slot() = std::make_unique<TUMessage>(s);
    }
    return slot().get();
}

void TUMessage::setInstance(std::unique_ptr<TUMessage> message) {
    slot() = std::move(message);
    TUMessage *m = slot().get();
    if (m && !m->d->settings.console && !m->d->openTried) m->openLog();
}

std::unique_ptr<TUMessage> TUMessage::takeInstance() { return std::move(slot()); }

// ---- reports ---------------------------------------------------------------

void TUMessage::warning(const MSG_Text &text) {
    write(TypeWarning, text);
    queueReport('W', text.text());
}

void TUMessage::fatalError(const MSG_Text &text) {
    write(TypeFatal, text);
    queueReport('E', text.text());
}

void TUMessage::error(const MSG_Text &text) {
    write(TypeError, text);
    queueReport('E', text.text());
}

void TUMessage::information(const MSG_Text &text) {
    write(TypeInformation, text);
    queueReport('I', text.text());
}

void TUMessage::trace(const MSG_Text &text) { write(TypeInformation, text); }

void TUMessage::traceLater(const MSG_Text &text) {
    enqueue({TypeTrace, text.source(), text.text(), d->direct, QTime::currentTime()});
}

void TUMessage::debug(const MSG_Text &text) {
    if (d->debug) write(TypeDebug, text);
}

void TUMessage::queueReport(char severity, const QString &text) {
    if (d->silent) return;
    {
        QMutexLocker lock(&d->mutex);
        d->pending.add(severity, text);
    }
    if (!d->suspended) showPendingReports();
}

void TUMessage::showPendingReports() {
    if (!onOwnThread() || d->reporting) return;
    // Reports raised while one is shown wait for it and come in the next round.
    for (;;) {
        char severity;
        QStringList texts;
        {
            QMutexLocker lock(&d->mutex);
            if (d->pending.isEmpty()) return;
            severity = d->pending.severity();
            texts = d->pending.take();
        }
        d->reporting = true;
        report(severity, texts, false);
        d->reporting = false;
    }
}

bool TUMessage::report(char severity, const QStringList &pending, bool) {
    const QString box = MSG_PendingReport::heading(severity, pending.size()) + MSG_PendingReport::body(pending);
    std::fprintf(stderr, "%s\n", box.toLocal8Bit().constData());
    std::fflush(stderr);
    return false;
}

void TUMessage::showFatalLogFailure(const QStringList &lines) {
    for (const QString &l : lines) std::fprintf(stderr, "%s\n", l.toLocal8Bit().constData());
    std::fflush(stderr);
}

// ---- modes -----------------------------------------------------------------

void TUMessage::setDebugMode(bool on) { d->debug = on; }
bool TUMessage::getDebugMode() const { return d->debug; }
bool TUMessage::isDebugMode() const { return d->debug; }
void TUMessage::setDirectMode(bool on) { d->direct = on; }
bool TUMessage::isDirectMode() const { return d->direct; }
void TUMessage::setSilent(bool on) { d->silent = on; }
void TUMessage::setTimeLogging(bool on) { d->timeLogging = on; }
bool TUMessage::isTimeLogging() const { return d->timeLogging; }

void TUMessage::suspendReport(bool on) {
    d->suspended = on;
    if (!on) showPendingReports();
}

bool TUMessage::isReportSuspended() const { return d->suspended; }

void TUMessage::catchErrorCode(bool on) {
    d->catchCodes = on;
    if (on) d->errorCode = 0;
}

int TUMessage::getErrorCode() const { return d->errorCode; }

void TUMessage::updateErrorCode(int code) {
    if (d->catchCodes && code != 0) d->errorCode = code;
}

// ---- the log ---------------------------------------------------------------

bool TUMessage::openLog() {
    if (d->settings.console) return false;
    d->openTried = true;
    const QString terminate = QStringLiteral("The application will terminate.");
    MessageLog::Identity id;
    id.folder = d->settings.logFolder.isEmpty() ? BAPP_SharedSpecialFolders_instance().logFolder()
                                                : d->settings.logFolder;
    id.appName = d->settings.appName;
    id.userName = d->settings.userName.isEmpty() ? oswUtil::getUserName() : d->settings.userName;
    id.version = d->settings.version.isEmpty() ? QCoreApplication::applicationVersion() : d->settings.version;
    id.debug = d->debug;
    id.append = d->settings.appendLog;
    id.translated = QCoreApplication::translate(kContext, "The application will terminate.") != terminate;
    if (d->log.open(id, [this](const QString &lock, const QString &log) { return okToUseFile(lock, log); }))
        return true;

    showFatalLogFailure({QCoreApplication::translate(kContext, "FATAL ERROR: Unable to open log file:"),
                         d->log.lastTriedLog(),
                         QCoreApplication::translate(kContext, "The application will terminate.")});
    std::exit(1);
}

bool TUMessage::okToUseFile(const QString &lockPath, const QString &) { return !LogLock::isLive(lockPath); }

void TUMessage::closeAndRemoveLog() {
    if (onOwnThread()) drainQueue();
    d->log.closeAndRemove();
}

QString TUMessage::readLog() const { return d->log.read(); }
void TUMessage::flush() { d->log.flush(); }
bool TUMessage::isLogOpen() const { return d->log.isOpen(); }
QString TUMessage::logPath() const { return d->log.logPath(); }
QString TUMessage::translatedLogPath() const { return d->log.translatedLogPath(); }
QString TUMessage::lockPath() const { return d->log.lockPath(); }

QString TUMessage::getMsgTypeText(char type) const { return QString(QChar::fromLatin1(type)); }

void TUMessage::baseWriteLog(char type, const QString &text, const QString &translated) {
    const bool direct = d->current ? d->current->direct : d->direct;
    const QTime time = d->current ? d->current->time : QTime::currentTime();
    auto format = [&](const QString &t) {
        if (direct) return t;
        return getMsgTypeText(type) + QLatin1Char(' ') + time.toString(QStringLiteral("hh:mm:ss.zzz")) +
               QLatin1Char(' ') + t;
    };
    const QString line = format(text);
    d->log.writeLine(line, format(translated));

    // A view may detach itself (or another) while it is told.
    std::vector<int> ids;
    for (const auto &entry : d->views) ids.push_back(entry.first);
    for (int id : ids) {
        auto it = d->views.find(id);
        if (it != d->views.end()) {
            View view = it->second;
            view(type, text, line);
        }
    }
    emit lineWritten(line);
}

// ---- writing and the queue of other threads ---------------------------------

bool TUMessage::onOwnThread() const { return QThread::currentThread() == thread(); }

void TUMessage::write(char type, const MSG_Text &text) {
    Record record{type, text.source(), text.text(), d->direct, QTime::currentTime()};
    if (!onOwnThread()) {
        enqueue(std::move(record));
        return;
    }
    drainQueue();
    writeRecord(record);
}

void TUMessage::enqueue(Record record) {
    QMutexLocker lock(&d->mutex);
    d->queue.push_back(std::move(record));
    if (d->eventPosted) return;
    d->eventPosted = true;
    QCoreApplication::postEvent(this, new QEvent(static_cast<QEvent::Type>(kQueuedWriteEvent)));
}

void TUMessage::drainQueue() {
    std::vector<Record> records;
    {
        QMutexLocker lock(&d->mutex);
        records.swap(d->queue);
    }
    for (const Record &r : records) writeRecord(r);
}

void TUMessage::writeRecord(const Record &record) {
    if (!d->settings.console && !d->openTried) openLog();
    const Record *outer = d->current;
    d->current = &record;
    baseWriteLog(record.type, record.text, record.translated);
    d->current = outer;
}

void TUMessage::customEvent(QEvent *event) {
    if (event->type() != static_cast<QEvent::Type>(kQueuedWriteEvent)) {
        QObject::customEvent(event);
        return;
    }
    {
        QMutexLocker lock(&d->mutex);
        d->eventPosted = false;
    }
    drainQueue();
    if (!d->suspended) showPendingReports();
}

// ---- routing and views ------------------------------------------------------

void TUMessage::dispatch(const MSG_Text &text, int action, int errorCode) {
    updateErrorCode(errorCode);
    switch (action) {
    case 2: error(text); break;
    case 3: fatalError(text); break;
    case 6: debug(text); break;
    case 5:
    default: trace(text); break;
    }
}

int TUMessage::attachView(View view) {
    const int id = d->nextView++;
    d->views.emplace(id, std::move(view));
    return id;
}

void TUMessage::detachView(int id) { d->views.erase(id); }
void TUMessage::closeViews() { d->views.clear(); }
