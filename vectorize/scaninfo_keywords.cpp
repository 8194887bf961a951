#include "vectorize/scaninfo_keywords.h"

#include <cmath>
#include <limits>

ScanInfoKeywords::ScanInfoKeywords(const QString &info) : text_(info.toLower()) {}

QString ScanInfoKeywords::rawValue(const QString &key) const {
    const qsizetype at = text_.indexOf(key);
    if (at < 0) return {};
    const qsizetype start = at + key.size() + 1;
    if (start >= text_.size()) return {};
    const qsizetype blank = text_.indexOf(QLatin1Char(' '), start);
    return text_.mid(start, blank < 0 ? -1 : blank - start);
}

int ScanInfoKeywords::intValue(const QString &key, int fallback) const {
    bool ok = false;
    const int value = rawValue(key).toInt(&ok);
    return ok ? value : fallback;
}

float ScanInfoKeywords::floatValue(const QString &key, float fallback) const {
    bool ok = false;
    const float value = rawValue(key).toFloat(&ok);
    return ok ? value : fallback;
}

QString ScanInfoKeywords::textValue(const QString &key, const QString &fallback) const {
    const QString value = rawValue(key).trimmed();
    return value.isEmpty() ? fallback : value;
}

int truncatedToInt(double value) {
    if (std::isnan(value)) return 0;
    if (value >= double(std::numeric_limits<int>::max())) return std::numeric_limits<int>::max();
    if (value <= double(std::numeric_limits<int>::min())) return std::numeric_limits<int>::min();
    return int(value);
}
