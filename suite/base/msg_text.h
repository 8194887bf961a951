#pragma once
// A message text: the translated text shown to the operator and the source text
// kept beside it, so that the log can carry both.
#include <QString>

class MSG_Text {
public:
    MSG_Text() = default;
    // Translates `source` in the translation context `context`.
    MSG_Text(const char *context, const char *source);
    // A text that is not translated (already formatted data, file contents).
    static MSG_Text untranslated(const QString &text);
    // A text translated elsewhere (a translated printf format, say).
    static MSG_Text translated(const QString &text, const QString &source);

    // Qt-style %1 substitution, applied to the translated and the source text alike.
    MSG_Text &arg(const QString &a);
    MSG_Text &arg(const char *a) { return arg(QString::fromUtf8(a)); }
    MSG_Text &arg(long long a);
    MSG_Text &arg(int a) { return arg(static_cast<long long>(a)); }
    MSG_Text &arg(double a);
    // Several values at once, as QString::arg takes them: a value that holds
    // "%1" or "%2" itself is never substituted again.
    template <typename... Rest>
    MSG_Text &arg(const QString &a, const QString &b, const Rest &...rest) {
        text_ = text_.arg(a, b, rest...);
        source_ = source_.arg(a, b, rest...);
        return *this;
    }

    const QString &text() const { return text_; }
    const QString &source() const { return source_; }
    bool isTranslated() const { return text_ != source_; }

private:
    QString text_;
    QString source_;
};
