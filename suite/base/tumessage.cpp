// Minimal console implementation; the log file comes next.
#include "suite/base/tumessage.h"

#include <QEvent>

#include <cstdio>
#include <map>

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
}

TUMessage::~TUMessage() = default;

TUMessage *TUMessage::instance() {
    if (!slot()) {
        Settings s;
        s.console = true;
        slot() = std::make_unique<TUMessage>(s);
    }
    return slot().get();
}

void TUMessage::setInstance(std::unique_ptr<TUMessage> message) { slot() = std::move(message); }
std::unique_ptr<TUMessage> TUMessage::takeInstance() { return std::move(slot()); }

void TUMessage::warning(const MSG_Text &text) {
    write(TypeWarning, text);
    report('W', {text.text()}, false);
}
void TUMessage::fatalError(const MSG_Text &text) {
    write(TypeFatal, text);
    report('E', {text.text()}, false);
}
void TUMessage::error(const MSG_Text &text) {
    write(TypeError, text);
    report('E', {text.text()}, false);
}
void TUMessage::information(const MSG_Text &text) {
    write(TypeInformation, text);
    report('I', {text.text()}, false);
}
void TUMessage::trace(const MSG_Text &text) { write(TypeInformation, text); }
void TUMessage::traceLater(const MSG_Text &text) { write(TypeTrace, text); }
void TUMessage::debug(const MSG_Text &text) {
    if (d->debug) write(TypeDebug, text);
}
void TUMessage::setDebugMode(bool on) { d->debug = on; }
bool TUMessage::getDebugMode() const { return d->debug; }
bool TUMessage::isDebugMode() const { return d->debug; }
void TUMessage::setDirectMode(bool on) { d->direct = on; }
bool TUMessage::isDirectMode() const { return d->direct; }
void TUMessage::setSilent(bool on) { d->silent = on; }
void TUMessage::setTimeLogging(bool on) { d->timeLogging = on; }
bool TUMessage::isTimeLogging() const { return d->timeLogging; }
void TUMessage::suspendReport(bool on) { d->suspended = on; }
bool TUMessage::isReportSuspended() const { return d->suspended; }
void TUMessage::closeAndRemoveLog() {}
void TUMessage::catchErrorCode(bool on) { d->catchCodes = on; }
int TUMessage::getErrorCode() const { return d->errorCode; }
QString TUMessage::readLog() const { return {}; }
void TUMessage::closeViews() { d->views.clear(); }
bool TUMessage::openLog() { return false; }
void TUMessage::baseWriteLog(char type, const QString &text, const QString &) {
    const QString line = d->direct ? text : QStringLiteral("%1 %2").arg(getMsgTypeText(type), text);
    for (auto &[id, view] : d->views) view(type, text, line);
    emit lineWritten(line);
}
void TUMessage::write(char type, const MSG_Text &text) { baseWriteLog(type, text.source(), text.text()); }
bool TUMessage::okToUseFile(const QString &, const QString &) { return true; }
void TUMessage::flush() {}
QString TUMessage::getMsgTypeText(char type) const { return QString(QChar::fromLatin1(type)); }
void TUMessage::updateErrorCode(int code) {
    if (d->catchCodes) d->errorCode = code;
}

void TUMessage::dispatch(const MSG_Text &text, int action, int errorCode) {
    updateErrorCode(errorCode);
    switch (action) {
    case 2: error(text); break;
    case 3: fatalError(text); break;
    case 5: trace(text); break;
    case 6: debug(text); break;
    default: trace(text); break;
    }
}

int TUMessage::attachView(View view) {
    const int id = d->nextView++;
    d->views.emplace(id, std::move(view));
    return id;
}
void TUMessage::detachView(int id) { d->views.erase(id); }
bool TUMessage::isLogOpen() const { return false; }
QString TUMessage::logPath() const { return {}; }
QString TUMessage::translatedLogPath() const { return {}; }
QString TUMessage::lockPath() const { return {}; }

bool TUMessage::report(char, const QStringList &pending, bool) {
    if (d->silent) return false;
    for (const QString &t : pending) std::fprintf(stderr, "%s\n", t.toLocal8Bit().constData());
    return false;
}

void TUMessage::customEvent(QEvent *) {}
