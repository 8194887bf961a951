#pragma once
// The words of `scanctl scan`, read and checked before any scanner is touched.
#include <QString>
#include <QStringList>

#include <optional>

#include "workflow/scan_window.h"

struct ScanArguments {
    bool intoDatabase() const { return !job.isEmpty(); }

    QString conf;     // empty: the station's own Scan.conf
    QString scanner;  // empty: the first scanner
    std::optional<int> depth;    // ScanDepth
    std::optional<int> dpi;
    std::optional<double> field;
    std::optional<int> peg;      // PegSide
    std::optional<int> feed;     // FeedEntry
    std::optional<bool> optical;
    bool flip = false;
    bool scaninfoFiles = false;
    QString path;
    QString prefix;
    QString list;
    // Scanning into an element of the production database instead of a folder.
    QString db;        // empty: $SCAN_DB, else the embedded default
    QString job;
    QString scene;
    QString element;
    QString drawings;  // the drawings to scan, in the manual list's syntax
    bool unscanned = false;  // instead: the exposed drawings not scanned yet
    AutofeedAnswer onMisfeed = AutofeedAnswer::StopScanning;
    RegistrationAnswer onRegisterFailure = RegistrationAnswer::StopScanning;
    bool help = false;
};

// The arguments, or nothing with `error` saying what is wrong.
std::optional<ScanArguments> parse_scan_arguments(const QStringList &args, QString &error);

extern const char *const kScanUsage;

// "left", "top", "right" or "bottom" as a peg side.
std::optional<int> peg_side_of_word(const QString &word);
