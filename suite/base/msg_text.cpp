#include "suite/base/msg_text.h"

#include <QCoreApplication>

MSG_Text::MSG_Text(const char *context, const char *source)
    : text_(QCoreApplication::translate(context, source)), source_(QString::fromUtf8(source)) {}

MSG_Text MSG_Text::untranslated(const QString &text) {
    MSG_Text t;
    t.text_ = text;
    t.source_ = text;
    return t;
}

MSG_Text MSG_Text::translated(const QString &text, const QString &source) {
    MSG_Text t;
    t.text_ = text;
    t.source_ = source;
    return t;
}

MSG_Text &MSG_Text::arg(const QString &a) {
    text_ = text_.arg(a);
    source_ = source_.arg(a);
    return *this;
}

MSG_Text &MSG_Text::arg(long long a) {
    text_ = text_.arg(a);
    source_ = source_.arg(a);
    return *this;
}

MSG_Text &MSG_Text::arg(double a) {
    text_ = text_.arg(a);
    source_ = source_.arg(a);
    return *this;
}
