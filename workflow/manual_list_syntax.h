#pragma once
// The numbers of a manual list as the operator writes them: parts split at
// each blank, a part with ":" a range of integers ("-" ignored, bounds in
// either order, at most 1000 numbers), any other part a name as it stands.
#include <QString>
#include <QStringList>

struct ManualListParse {
    bool ok = false;
    QStringList names;  // in order, duplicates kept; empty on failure
    QString error;      // the operator's message on failure, translated
};

ManualListParse parse_manual_list(const QString &numbers);
