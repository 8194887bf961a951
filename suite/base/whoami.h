#pragma once
// The program's own name and version, as the log header and the console tell them.
#include <QString>

namespace whoami {
// The name the program was started under; its file name becomes progName.
void setBinName(const QString &path);
QString progName();  // "Scan" until setBinName says otherwise
QString version();   // the station's version number
// "<name> version <version>" on the console.
void printVersionInfo();
}  // namespace whoami
