#pragma once
// Failed expectations show a QString as its text.
#include <QString>

#include <ostream>

inline void PrintTo(const QString &text, std::ostream *os) { *os << '"' << text.toStdString() << '"'; }
