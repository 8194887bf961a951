#pragma once
// The station's command line: what each option sets, and the usage text.
#include <QString>

class PR_Preference;

// What the command line decided, read during start-up.
struct StartOptions {
    bool openDrawingsAtStart = true;  // -M clears it
    bool debug = false;
    bool scsiDebug = false;
    bool fakeTranslation = false;
    bool requireAdministrator = false;
    bool allowPrivilegeUpgrade = true;  // -preventPrivilegeUpgrade clears it
    bool indirectLaunch = false;
    QString language;
    QString scannerName;  // kept; nothing reads it later
};

// The process-wide options of this run.
StartOptions &startOptions();

// Reads argv[1..] into `options`. 1 to go on; 0 when the program should leave
// with exit code 0 (help, version, or an unknown parameter after the usage).
// Without a language on the command line, the language comes from `prefs`
// when there are preferences. The default language is set in either case.
int ParseArguments(int argc, char **argv, StartOptions &options, const PR_Preference *prefs);

// The version, then the usage, one console warning a line.
void PrintUsage();
