#pragma once
// Paths stored in the database. A scene path may be absolute or relative to
// the database's root folder (for an embedded database, the folder that holds
// the database file), so that a whole production can move as one folder.
#include <QString>

class DBA_Path {
public:
    // The usable directory of a stored scene path: relative paths are taken
    // from the root; "~/" is the home folder; the result is cleaned.
    static QString getScenePath(const QString &storedPath);

    // The folder relative scene paths start from; the session sets it when it
    // opens. Empty means the current directory.
    static void setRoot(const QString &root);
    static QString root();
};
