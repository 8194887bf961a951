#include "suite/base/lmv_trace.h"

#include <QCoreApplication>
#include <QRegularExpression>

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

// What a format takes from the argument list: each conversion with its length
// modifier, and a '*' for each width or precision read from the arguments.
QStringList argumentShape(const QString &format) {
    static const QRegularExpression conversion(
        QStringLiteral("%([-+ #0']*)(\\*|\\d+)?(?:\\.(\\*|\\d*))?(hh|h|ll|l|L|j|z|t)?([diouxXeEfFgGaAcspn%])"));
    QStringList shape;
    qsizetype percents = 0;  // '%' signs that belong to a known conversion
    for (auto it = conversion.globalMatch(format); it.hasNext();) {
        const auto m = it.next();
        percents += m.captured(0).count(QLatin1Char('%'));
        if (m.captured(5) == QLatin1String("%")) continue;
        if (m.captured(2) == QLatin1String("*")) shape << QStringLiteral("*");
        if (m.captured(3) == QLatin1String("*")) shape << QStringLiteral("*");
        shape << m.captured(4) + m.captured(5);
    }
    // Any other '%' (a positional argument, say) is a conversion we cannot check.
    if (format.count(QLatin1Char('%')) != percents) shape << QStringLiteral("?");
    return shape;
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
    // A translation is used only when it takes the same arguments as the source:
    // a faulty translation file must not read past the arguments.
    const QString translatedFormat = QCoreApplication::translate("Scan", format);
    const QString sourceFormat = QString::fromUtf8(format);
    const bool usable = translatedFormat != sourceFormat &&
                        argumentShape(translatedFormat) == argumentShape(sourceFormat);
    const QString text = usable ? formatMessage(translatedFormat.toUtf8().constData(), copy) : source;
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
