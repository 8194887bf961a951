// The station's command line: the option table, the usage text, the elevation
// decision and the relaunch command.
#include <QtCore>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/elevated_relaunch.h"
#include "app/start_options.h"
#include "suite/base/osw_lang.h"
#include "suite/base/osw_util.h"
#include "suite/base/pr_preference.h"

namespace {

struct Parsed {
    int result;
    StartOptions options;
    std::string console;  // what went to standard error
};

Parsed parse(std::vector<std::string> args, const PR_Preference *prefs = nullptr) {
    args.insert(args.begin(), "/opt/station/bin/Scan");
    std::vector<char *> argv;
    for (auto &a : args) argv.push_back(a.data());
    Parsed p{};
    testing::internal::CaptureStderr();
    p.result = ParseArguments(static_cast<int>(argv.size()), argv.data(), p.options, prefs);
    p.console = testing::internal::GetCapturedStderr();
    return p;
}

TEST(ParseArguments, SwitchesSetTheirOptionsAndGoOn) {
    const Parsed p = parse({"-M", "-debug", "-scsidebug", "-requireAdministrator", "-preventPrivilegeUpgrade",
                            "-indirect", "-s", "Fujitsu", "-psn_0_123"});
    EXPECT_EQ(p.result, 1);
    EXPECT_FALSE(p.options.openDrawingsAtStart || p.options.allowPrivilegeUpgrade);
    EXPECT_TRUE(p.options.debug && p.options.scsiDebug && p.options.requireAdministrator && p.options.indirectLaunch);
    EXPECT_EQ(p.options.scannerName, "Fujitsu");
    EXPECT_EQ(p.console, "");
    const Parsed none = parse({});
    EXPECT_EQ(none.result, 1);
    EXPECT_TRUE(none.options.openDrawingsAtStart && none.options.allowPrivilegeUpgrade);
    EXPECT_FALSE(none.options.debug);
}

// Help and version leave at once; options compare case-sensitively, and an
// option whose value is missing is unknown: the usage follows its name.
TEST(ParseArguments, HelpVersionAndUnknownArgumentsLeave) {
    const std::string usage =
        "Scan [Options]\nAvailable Options:\n  -s\tscanner_name\n  -M\t (No \"Open Drawing\" at start)\n  -debug\n"
        "  -scsidebug\n  -? -h -help --help\n  -v -version --version\nRefer to the documentation for more details.\n";
    enum Kind { Help, Version, Unknown };
    const std::pair<const char *, Kind> cases[] = {
        {"-help", Help},     {"--help", Help},      {"-h", Help},      {"-?", Help},          {"-version", Version},
        {"--version", Version}, {"-v", Version},    {"-s", Unknown},   {"-PSN_1", Unknown},   {"-Debug", Unknown},
        {"scan.conf", Unknown}, {"-lang", Unknown}, {"-langdir", Unknown}, {"-fakeTranslation", Unknown}};
    for (const auto &[form, kind] : cases) {
        SCOPED_TRACE(form);
        const Parsed p = kind == Unknown ? parse({"-M", form}) : parse({"-debug", form, "-bogus"});
        EXPECT_EQ(p.result, 0);
        if (kind == Version) {
            EXPECT_NE(p.console.find("Scan version "), std::string::npos);
        }
        EXPECT_EQ(p.console.find(usage) != std::string::npos, kind != Version);
        const std::string unknown = kind == Unknown ? "Unknown parameter: " + std::string(form) + ".\n" : "Unknown";
        EXPECT_EQ(p.console.find(unknown), kind == Unknown ? 0 : std::string::npos);
    }
}

TEST(ParseArguments, LanguageFromTheCommandLineBeforeThePreference) {
    QTemporaryDir dir;
    const auto prefs = PR_Preference::createPreference(dir.filePath("prefs.ini"));
    prefs->setString(OSW_Lang::preferenceKey(), "de");
    EXPECT_EQ(parse({"-lang", "fr"}, prefs.get()).options.language, "fr");
    EXPECT_EQ(OSW_Lang::defaultLanguage(), "fr");
    EXPECT_EQ(parse({}, prefs.get()).options.language, "de");
    EXPECT_EQ(OSW_Lang::defaultLanguage(), "de");
    EXPECT_EQ(parse({}, nullptr).options.language, "");
    EXPECT_EQ(OSW_Lang::defaultLanguage(), "");
    const Parsed fake = parse({"-fakeTranslation", "xx"});
    EXPECT_TRUE(fake.options.fakeTranslation);
    EXPECT_EQ(fake.options.language, "xx");
    ASSERT_EQ(parse({"-langdir", "/opt/lang"}).result, 1);
    EXPECT_EQ(BAPP_SharedSpecialFolders_instance().languageFolder(), "/opt/lang");
}

TEST(ElevatedRelaunch, DecidedByScsiScannersOrByRequest) {
    StartOptions o;
    EXPECT_TRUE(wantsElevatedRelaunch(o, 1, true));
    EXPECT_FALSE(wantsElevatedRelaunch(o, 0, true));
    EXPECT_FALSE(wantsElevatedRelaunch(o, 2, false));  // no separate rights: nothing to gain
    o.allowPrivilegeUpgrade = false;
    EXPECT_FALSE(wantsElevatedRelaunch(o, 1, true));
    o.requireAdministrator = true;
    EXPECT_TRUE(wantsElevatedRelaunch(o, 0, false));
    EXPECT_FALSE(oswUtil::isVistaOrAbove());
}

// The command carries the arguments but the request; pkexec gets the display
// and an absolute program path, the only kind it accepts.
TEST(ElevatedRelaunch, RelaunchCommands) {
    const BAPP_Arguments args{"-requireAdministrator", "-debug", "", "my scan.conf", "-s", "Fujitsu"};
    const RelaunchCommand direct = relaunchCommand("C:/Scan/Scan.exe", args, false);
    EXPECT_EQ(direct.program, "C:/Scan/Scan.exe");
    EXPECT_EQ(direct.parameters, " -preventPrivilegeUpgrade -debug \"my scan.conf\" -s \"Fujitsu\"");
    const RelaunchCommand indirect = relaunchCommand("C:/Scan/Scan.exe", {"-M"}, true);
    EXPECT_EQ(indirect.program, "wstart.exe");
    EXPECT_EQ(indirect.parameters, "C:/Scan/Scan.exe -preventPrivilegeUpgrade -M");

    EXPECT_EQ(pkexecArguments("/opt/bin/Scan", {"-requireAdministrator", "-s", "my scanner", ""}, ":0",
                              "/home/op/.Xauthority", ""),
              (QStringList{"env", "DISPLAY=:0", "XAUTHORITY=/home/op/.Xauthority", "/opt/bin/Scan",
                           "-preventPrivilegeUpgrade", "-s", "my scanner"}));
    EXPECT_EQ(pkexecArguments("bin/Scan", {}, "", "", "wayland-0"),
              (QStringList{"env", "WAYLAND_DISPLAY=wayland-0", QDir::current().absoluteFilePath("bin/Scan"),
                           "-preventPrivilegeUpgrade"}));
}

}  // namespace
