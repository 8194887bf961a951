#include "suite/base/pending_report.h"

#include <QCoreApplication>

void MSG_PendingReport::add(char severity, const QString &text) {
    if (texts_.isEmpty() || severity == 'E')
        severity_ = severity == 'T' ? 'W' : severity;
    else if (severity == 'T' && severity_ == 'I')
        severity_ = 'W';
    texts_.append(text);
}

QStringList MSG_PendingReport::take() {
    QStringList out;
    out.swap(texts_);
    severity_ = 'I';
    return out;
}

QString MSG_PendingReport::heading(char severity, qsizetype count) {
    const bool several = count > 1;
    switch (severity) {
    case 'E':
        return several ? QCoreApplication::translate("TUUIMessage", "The following errors occurred:\n")
                       : QCoreApplication::translate("TUUIMessage", "The following error occurred:\n");
    case 'W':
        return several ? QCoreApplication::translate("TUUIMessage", "The following warnings occurred:\n")
                       : QCoreApplication::translate("TUUIMessage", "The following warning occurred:\n");
    default:
        return QCoreApplication::translate("TUUIMessage", "Information:\n");
    }
}

QString MSG_PendingReport::body(const QStringList &texts) {
    if (texts.size() == 1) return texts.front();
    QString out;
    for (qsizetype i = 0; i < texts.size(); ++i) {
        if (i == kMaxLines) {
            out += QStringLiteral("...");
            break;
        }
        out += QStringLiteral(" - ") + texts[i] + QLatin1Char('\n');
    }
    return out;
}
