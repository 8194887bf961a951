#pragma once
// Identity of the user and the machine, and the station's folders.
#include <QString>

namespace oswUtil {
// The login name of the user: $USER, else the name of the effective user id in
// the password database, else that id as a number.
QString getUserName();
// The short host name of this machine (up to the first dot). False on failure.
bool getShortMachineName(QString &name);
// Host names compare case-insensitively, each cut at its first dot.
bool isSameMachineName(const QString &a, const QString &b);
// The configuration directory that holds Scan.conf: $SCAN_ETC, else
// $XDG_CONFIG_HOME/scanstation (~/.config/scanstation).
QString LMVEtc();
// The installation directory: $SCAN_HOME, else the folder above the program's bin/.
QString LMVDir(bool create);
bool isVistaOrAbove();  // a Windows question; false everywhere else
}  // namespace oswUtil

// Per-user and shared folders of the suite.
class BAPP_SharedSpecialFolders {
public:
    // Where logs and lock files go: $SCAN_LOG_DIR, else $XDG_STATE_HOME/scanstation
    // (~/.local/state/scanstation). Made on demand.
    QString logFolder() const;
    // The application's shared data folder (default.vof and the like).
    QString appDataFolder() const;
    // Where the programs are.
    QString binFolder() const;
    // -langdir
    void setLanguageFolder(const QString &folder);
    QString languageFolder() const;
};
BAPP_SharedSpecialFolders &BAPP_SharedSpecialFolders_instance();

// Paths of a studio differ per machine: a table of prefix pairs remaps them.
// The table is read from $SCAN_PATH_REMAP: entries "from=to" separated by ";".
namespace oswRemapPath {
QString RemapPath(const QString &path);
QString RemapPath2(const QString &path);
void setTable(const QString &spec);  // replaces the table (tests, preferences)
}  // namespace oswRemapPath
