#include "app/start_options.h"

#include <QtGlobal>

#include <cstring>

#include "suite/base/osw_lang.h"
#include "suite/base/osw_util.h"
#include "suite/base/pr_preference.h"
#include "suite/base/whoami.h"

StartOptions &startOptions() {
    static StartOptions options;
    return options;
}

namespace {

bool isOneOf(const char *arg, std::initializer_list<const char *> names) {
    for (const char *n : names)
        if (std::strcmp(arg, n) == 0) return true;
    return false;
}

// An option that takes the next argument as its value; false when that is
// missing, and the option then counts as unknown.
bool takeValue(const char *arg, const char *name, int &i, int argc, char **argv, QString &value) {
    if (std::strcmp(arg, name) != 0 || i + 1 >= argc) return false;
    value = QString::fromLatin1(argv[++i]);
    return true;
}

}  // namespace

int ParseArguments(int argc, char **argv, StartOptions &o, const PR_Preference *prefs) {
    whoami::setBinName(QString::fromUtf8(argc > 0 ? argv[0] : ""));
    for (int i = 1; i < argc; ++i) {
        const char *arg = argv[i];
        QString value;
        if (isOneOf(arg, {"-help", "--help", "-h", "-?"})) {
            PrintUsage();
            return 0;
        }
        if (isOneOf(arg, {"-version", "--version", "-v"})) {
            whoami::printVersionInfo();
            return 0;
        }
        if (std::strcmp(arg, "-M") == 0) o.openDrawingsAtStart = false;
        else if (std::strcmp(arg, "-debug") == 0) o.debug = true;
        else if (std::strcmp(arg, "-scsidebug") == 0) o.scsiDebug = true;
        else if (std::strcmp(arg, "-requireAdministrator") == 0) o.requireAdministrator = true;
        else if (std::strcmp(arg, "-preventPrivilegeUpgrade") == 0) o.allowPrivilegeUpgrade = false;
        else if (std::strcmp(arg, "-indirect") == 0) o.indirectLaunch = true;
        else if (takeValue(arg, "-s", i, argc, argv, value)) o.scannerName = value;
        else if (std::strncmp(arg, "-psn_", 5) == 0) continue;  // a desktop launcher's process serial number
        else if (takeValue(arg, "-lang", i, argc, argv, value)) o.language = value;
        else if (takeValue(arg, "-fakeTranslation", i, argc, argv, value)) {
            o.fakeTranslation = true;
            o.language = value;
        } else if (takeValue(arg, "-langdir", i, argc, argv, value))
            BAPP_SharedSpecialFolders_instance().setLanguageFolder(value);
        else {
            qWarning("Unknown parameter: %s.", arg);
            PrintUsage();
            return 0;
        }
    }
    if (o.language.isEmpty() && prefs) o.language = prefs->getString(OSW_Lang::preferenceKey(), QString());
    OSW_Lang::setDefaultLanguage(o.language);
    return 1;
}

void PrintUsage() {
    whoami::printVersionInfo();
    qWarning("Scan [Options]");
    qWarning("Available Options:");
    qWarning("  -s\tscanner_name");
    qWarning("  -M\t (No \"Open Drawing\" at start)");
    qWarning("  -debug");
    qWarning("  -scsidebug");
    qWarning("  -? -h -help --help");
    qWarning("  -v -version --version");
    qWarning("Refer to the documentation for more details.");
}
