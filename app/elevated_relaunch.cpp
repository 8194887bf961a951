#include "app/elevated_relaunch.h"

#include <QDir>
#include <QProcess>

#ifdef Q_OS_WIN
#include <windows.h>
#include <shellapi.h>
#endif

namespace {

constexpr const char *kPreventUpgrade = "-preventPrivilegeUpgrade";

bool passedOn(const QString &entry) { return !entry.isEmpty() && entry != QLatin1String("-requireAdministrator"); }

}  // namespace

bool wantsElevatedRelaunch(const StartOptions &o, int scsiScanners, bool separatesRights) {
    return (scsiScanners > 0 && o.allowPrivilegeUpgrade && separatesRights) || o.requireAdministrator;
}

RelaunchCommand relaunchCommand(const QString &programPath, const BAPP_Arguments &arguments, bool indirect) {
    RelaunchCommand c{programPath, QString()};
    if (indirect) {
        c.program = QStringLiteral("wstart.exe");
        c.parameters = programPath;
    }
    c.parameters += QLatin1Char(' ') + QLatin1String(kPreventUpgrade);
    for (const QString &entry : arguments) {
        if (!passedOn(entry)) continue;
        if (entry.startsWith(QLatin1Char('-')))
            c.parameters += QLatin1Char(' ') + entry;
        else
            c.parameters += QStringLiteral(" \"") + entry + QLatin1Char('"');
    }
    return c;
}

QStringList pkexecArguments(const QString &programPath, const BAPP_Arguments &arguments, const QString &display,
                            const QString &xauthority, const QString &waylandDisplay) {
    // pkexec wants an absolute program path.
    QStringList out{QStringLiteral("env")};
    if (!display.isEmpty()) out << QStringLiteral("DISPLAY=") + display;
    if (!xauthority.isEmpty()) out << QStringLiteral("XAUTHORITY=") + xauthority;
    if (!waylandDisplay.isEmpty()) out << QStringLiteral("WAYLAND_DISPLAY=") + waylandDisplay;
    out << QDir::current().absoluteFilePath(programPath) << QLatin1String(kPreventUpgrade);
    for (const QString &entry : arguments)
        if (passedOn(entry)) out << entry;
    return out;
}

void ElevatedRelaunch(const QString &programPath, const BAPP_Arguments &arguments, bool indirect) {
#ifdef Q_OS_WIN
    const RelaunchCommand c = relaunchCommand(programPath, arguments, indirect);
    ShellExecuteW(nullptr, L"runas", reinterpret_cast<LPCWSTR>(c.program.utf16()),
                  reinterpret_cast<LPCWSTR>(c.parameters.utf16()), nullptr, SW_SHOWNORMAL);
#else
    // There is no separate launcher here: pkexec starts the program itself.
    QProcess::startDetached(QStringLiteral("pkexec"),
                            pkexecArguments(programPath, arguments, qEnvironmentVariable("DISPLAY"),
                                            qEnvironmentVariable("XAUTHORITY"),
                                            qEnvironmentVariable("WAYLAND_DISPLAY")));
#endif
}
