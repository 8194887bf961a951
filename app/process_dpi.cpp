#include "app/process_dpi.h"

#include <QLibrary>

bool declareNotDpiAware(QLibrary &user32) {
    user32.setFileName(QStringLiteral("user32.dll"));
    using SetAwareness = long (*)(int);
    const auto set = reinterpret_cast<SetAwareness>(user32.resolve("SetProcessDpiAwarenessInternal"));
    if (!set) return false;
    set(0);  // not DPI aware
    return true;
}
