#include "suite/base/lmv_trace.h"

#include <QCoreApplication>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "suite/base/msg_scope.h"
#include "suite/base/tumessage.h"

namespace {

constexpr std::size_t kBufferSize = 2048;

QString formatMessage(const char *format, va_list args) {
    char buffer[kBufferSize];
    std::vsnprintf(buffer, sizeof buffer, format, args);
    std::size_t n = std::strlen(buffer);
    if (n > 0 && buffer[n - 1] == '\n') buffer[n - 1] = '\0';
    return QString::fromUtf8(buffer);
}

}  // namespace

void LMV_trace(const char *format, ...) {
    va_list args;
    va_start(args, format);
    QString text = formatMessage(format, args);
    va_end(args);
    MSG_Scope(MSG_Text::untranslated(text), MSG_ACTION_DEBUG);
}

void LMV_log(const char *format, ...) {
    va_list args;
    va_start(args, format);
    QString text = formatMessage(format, args);
    va_end(args);
    MSG_Scope(MSG_Text::untranslated(text), MSG_ACTION_LOG);
}

void LMV_error(const char *format, ...) {
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    QString source = formatMessage(format, args);
    va_end(args);
    // The translated format must keep the conversions of the source; a
    // translation is only used when it exists.
    QByteArray translatedFormat = QCoreApplication::translate("Scan", format).toUtf8();
    const QString text = translatedFormat == QByteArray(format) ? source
                                                          : formatMessage(translatedFormat.constData(), copy);
    va_end(copy);
    MSG_Scope(MSG_Text::translated(text, source), MSG_ACTION_ERROR);
}

void LMV_direct_trace(const char *format, ...) {
    va_list args;
    va_start(args, format);
    QString text = formatMessage(format, args);
    va_end(args);
    TUMessage *m = TUMessage::instance();
    const bool wasDirect = m->isDirectMode();
    const bool wasDebug = m->isDebugMode();
    m->setDirectMode(true);
    if (!wasDebug) m->setDebugMode(true);
    m->debug(MSG_Text::untranslated(text));
    if (!wasDebug) m->setDebugMode(false);
    m->setDirectMode(wasDirect);
}
