#pragma once
// The vectorizer's reading of a scan information string: values are found by
// their key anywhere in the lower-cased text, so that both the scanner's line
// and the "FILE:" text of a plain image serve.
#include <QString>

class ScanInfoKeywords {
public:
    explicit ScanInfoKeywords(const QString &info);

    // A missing value, or one that does not parse, gives `fallback`.
    int intValue(const QString &key, int fallback) const;
    float floatValue(const QString &key, float fallback) const;
    // Lower-case and trimmed; empty counts as missing.
    QString textValue(const QString &key, const QString &fallback) const;

private:
    // The text after the key and one more character, up to the next blank.
    QString rawValue(const QString &key) const;

    QString text_;
};

// Truncation towards zero that stays defined for any input: NaN gives 0 and
// values outside int are clamped.
int truncatedToInt(double value);
