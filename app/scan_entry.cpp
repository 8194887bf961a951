#include "app/scan_entry.h"

#include <QDir>
#include <QLibrary>
#include <QIcon>
#include <QPixmap>
#include <QThread>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "app/elevated_relaunch.h"
#include "app/process_dpi.h"
#include "app/scan_application.h"
#include "app/start_options.h"
#include "app/station_window.h"
#include "app/tuuimessage.h"
#include "scan/scanner_list.h"
#include "suite/base/msg_scope.h"
#include "suite/base/osw_lang.h"
#include "suite/base/osw_util.h"
#include "suite/base/pr_preference.h"
#include "suite/base/whoami.h"
#include "suite/db/tudbaccess.h"
#include "workflow/config.h"
#include "workflow/connect_database.h"

namespace {

// The arguments as the program keeps them: its own copies, null-terminated.
class NarrowArguments {
public:
    NarrowArguments(int argc, char **argv) {
        for (int i = 0; i < argc; ++i) copies_.emplace_back(argv[i], argv[i] + std::strlen(argv[i]) + 1);
        for (auto &c : copies_) pointers_.push_back(c.data());
        pointers_.push_back(nullptr);
    }
    int &argc() { return argc_ = static_cast<int>(copies_.size()); }
    char **argv() { return pointers_.data(); }

private:
    std::vector<std::vector<char>> copies_;
    std::vector<char *> pointers_;
    int argc_ = 0;
};

BAPP_Arguments parseArguments(int argc, char **argv) {
    BAPP_Arguments out;
    for (int i = 1; i < argc; ++i) out << QString::fromLocal8Bit(argv[i]);
    return out;
}

// The application icon from the installation's icon folder; a missing icon is
// no fault.
void loadWindowIcon() {
    const QString iconDir = oswUtil::LMVDir(false) + QStringLiteral("/resources/icons");
    const QString remembered = QDir::currentPath();
    if (!QDir::setCurrent(iconDir)) return;
    const QPixmap icon(QStringLiteral("scan.png"));
    if (!icon.isNull()) QGuiApplication::setWindowIcon(QIcon(icon));
    QDir::setCurrent(remembered);
}

Qt::HANDLE &mainThreadId() {
    static Qt::HANDLE id = nullptr;
    return id;
}

// Whether the platform that Qt would load finds a display server. Asked before
// the application object is made, since without one Qt cannot make it at all.
bool displayAvailable() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    const bool needsServer = platform.isEmpty() || platform.startsWith("xcb") || platform.startsWith("wayland");
    return !needsServer || !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return true;  // the desktop is the display
#endif
}

}  // namespace

int ConnectStationDatabase(std::unique_ptr<TUDbAccess> &database) {
    TUMessage::Settings s;
    s.appName = whoami::progName();
    s.version = whoami::version();
    s.debug = startOptions().debug;  // still false: the command line is read later
    TUMessage::setInstance(std::make_unique<TUUIMessage>(s, TUUIMessage::screenShowsBoxes()));
    return ConnectDatabase(database);
}

int ScanMain(int argc, char **argv) {
    QLibrary user32;
    declareNotDpiAware(user32);

    NarrowArguments narrow(argc, argv);
    const QString programPath = QString::fromLatin1(argc > 0 ? argv[0] : "");
    const BAPP_Arguments arguments = parseArguments(argc, argv);

    // Without a display the start goes on in the same order as far as it
    // can: what only prints (the database failure, help, version, an unknown
    // parameter) needs no screen.
    const bool display = displayAvailable();
    if (!display) qputenv("QT_QPA_PLATFORM", "offscreen");
    auto app = std::make_unique<TUKqScanApp>(narrow.argc(), narrow.argv());

    std::unique_ptr<TUDbAccess> database;
    if (!ConnectStationDatabase(database)) return 0;

    StartOptions &options = startOptions();
    if (!ParseArguments(argc, argv, options, localPrefs())) return 0;
    if (!display) {
        std::fprintf(stderr, "Scan: there is no display to open the station window on (DISPLAY or WAYLAND_DISPLAY).\n");
        return 1;
    }

    OSW_Lang::loadTranslators(options.fakeTranslation);
    whoami::printVersionInfo();
    mainThreadId() = QThread::currentThreadId();

    const std::unique_ptr<StationWindow> window = createStationWindow({database.get(), &options});
    if (!window) {
        std::fprintf(stderr, "The station window could not be created.\n");
        return 1;
    }

    app->setDarkStyle(true);
    app->loadStyleSheets();
    loadWindowIcon();
    app->setMainWidget(window->widget());

    const QString configPath = oswRemapPath::RemapPath2(oswUtil::LMVEtc() + QStringLiteral("/Scan.conf"));
    ScanConfig *config = ScanConfigCreate(configPath, window->scanWindow());
    if (!config) return 0;

    const int scsiScanners = count_of_ScannerList(scanner_list_of_ScanConfig(config));
    if (wantsElevatedRelaunch(options, scsiScanners, oswUtil::isVistaOrAbove())) {
        ElevatedRelaunch(programPath, arguments, options.indirectLaunch);
        std::exit(0);
    }

    std::unique_ptr<PR_Preference> prefs = PR_Preference::createPreference(QString());
    if (!prefs || prefs->getErrorCode() != 0) {
        if (prefs) MSG_Scope(MSG_Text::untranslated(prefs->getPrefErrorMessage()), MSG_ACTION_ERROR);
        return 1;  // the session record is left as it is
    }
    tuPref = prefs.get();

    window->startSession(config, options.openDrawingsAtStart);
    app->exec();

    ScanConfigDestroy(config);
    tuPref = nullptr;
    return 0;
}
