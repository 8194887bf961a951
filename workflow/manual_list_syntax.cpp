#include "workflow/manual_list_syntax.h"

#include <QCoreApplication>

#include <utility>

namespace {

// One range can flood the list; a mistyped bound should not add a million rows.
constexpr int kMaxRangeNames = 1000;

ManualListParse failure(const char *source, const QString &part) {
    ManualListParse result;
    result.error = QCoreApplication::translate("TUManualListDlg", source).arg(part);
    return result;
}

}  // namespace

ManualListParse parse_manual_list(const QString &numbers) {
    ManualListParse result;
    // Empty parts stay: two blanks in a row stand for a name of their own.
    const QStringList parts = numbers.split(QLatin1Char(' '), Qt::KeepEmptyParts);
    for (const QString &part : parts) {
        if (!part.contains(QLatin1Char(':'))) {
            result.names.append(part);
            continue;
        }
        // A "-" is read as decoration of a range ("1-5:9"), never as a sign.
        QString range = part;
        range.remove(QLatin1Char('-'));
        bool ok = false;
        int from = range.section(QLatin1Char(':'), 0, 0).toInt(&ok, 10);
        if (!ok) return failure("The \"From\" part of %1 is not an integer", part);
        int to = range.section(QLatin1Char(':'), 1).toInt(&ok, 10);
        if (!ok) return failure("The \"To\" part of %1 is not an integer", part);
        if (from > to) std::swap(from, to);
        // Counted in 64 bits so that a range ending at INT_MAX stops.
        for (long long n = from; n <= to && n - from < kMaxRangeNames; ++n)
            result.names.append(QString::number(n));
    }
    result.ok = true;
    return result;
}
