#pragma once
// What a program of the suite says about itself in its about box.
#include <QString>

#include "suite/base/whoami.h"

struct WHO_AppInfo {
    QString name;
    QString version;
};

// The information of the program `name`, at the version of this build.
inline WHO_AppInfo app_info_of(const QString &name) { return WHO_AppInfo{name, whoami::version()}; }
