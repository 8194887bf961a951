// Reading Scan.conf into the scanner list: lines, keywords, checks of values,
// what the list offers once read, and what each model family offers.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <tuple>

#include "scan/devices.h"
#include "scan/scanner_list.h"
#include "suite/base/osw_util.h"
#include "support/message_capture.h"

using Errors = std::vector<std::string>;

// Reads a Scan.conf written from a string, for the host "station1", and keeps
// the messages that the read produced.
class ConfTest : public ::testing::Test {
protected:
    void read(const std::string &text, bool keepTwain = true) {
        QFile f(path_);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(text.data(), static_cast<qint64>(text.size()));
        f.close();
        capture_.clear();
        list_ = read_ScannerList(path_, keepTwain, QStringLiteral("station1"));
    }
    ScannerEntry *only() {
        EXPECT_EQ(count_of_ScannerList(list_.get()), 1);
        return entry(0);
    }
    ScannerEntry *entry(int i) { return entry_of_ScannerList(list_.get(), i); }
    std::string path() const { return path_.toStdString(); }
    Errors errors() const { return capture_.errors(); }
    Errors logs() const { return capture_.texts('I'); }

    QTemporaryDir dir_;
    QString path_ = dir_.filePath(QStringLiteral("Scan.conf"));
    MessageCapture capture_;
    std::unique_ptr<ScannerList> list_;
};

namespace {

// host:, name:, device: and model: of one scanner of station1.
std::string block(const std::string &model, const std::string &more = {}, const std::string &name = "S") {
    return "host: station1\nname: " + name + "\ndevice: sim:" + model + "\nmodel: " + model + "\n" + more;
}

}  // namespace

TEST_F(ConfTest, OnlyBlocksOfThisHostAreKeptAndOthersMayHoldNonsense) {
    read("name: before any host\nbogus: line\n"
         "host: otherbox\nname: X\nmodel: NoSuchModel\nwhatever: 12\ndefaultContrast: 999\n"
         "host: STATION1.studio.example\nname: Mine\ndevice: fieldchart\nmodel: Bogus-Color\n"
         "host: station1\nname: Second\ndevice: fieldchart\nmodel: Bogus-B&W\n");
    EXPECT_TRUE(errors().empty());
    ASSERT_EQ(count_of_ScannerList(list_.get()), 2);
    EXPECT_EQ(name_of_ScannerEntry(entry(0)), "Mine");
    EXPECT_EQ(name_of_ScannerEntry(entry(1)), "Second");
    EXPECT_EQ(entry(2), nullptr);

    // Without a host given, the machine's own name, in any case.
    QString me;
    ASSERT_TRUE(oswUtil::getShortMachineName(me));
    read("host: " + me.toUpper().toStdString() + "\nname: T\ndevice: fieldchart\nmodel: Bogus-Color\n");
    EXPECT_EQ(count_of_ScannerList(list_.get()), 0);  // as station1: not ours
    list_ = read_ScannerList(path_, true);
    EXPECT_EQ(host_of_ScannerList(list_.get()), me);
    EXPECT_EQ(count_of_ScannerList(list_.get()), 1);
}

// Comments start in the first column.
TEST_F(ConfTest, CommentsCrLfLinesTabsTrimmedValuesAndLongLines) {
    read("# studio scanners\n\n   \n\t\r\n#host: station1\nhost:\tstation1\r\nname:\t Big Scanner \t\r\ndevice: fieldchart\r\nmodel: Bogus-Color  \r\n"
         "descr:   Desk  by the window\r\ndefaultPegSide:\tTop\r\n");
    EXPECT_TRUE(errors().empty());
    ScannerEntry *e = only();
    EXPECT_EQ(name_of_ScannerEntry(e), "Big_Scanner");
    EXPECT_EQ(deviceName_of_ScannerEntry(e), "fieldchart");
    EXPECT_EQ(model_of_ScannerEntry(e), "Bogus-Color");
    EXPECT_EQ(descr_of_ScannerEntry(e), "Desk  by the window");
    EXPECT_EQ(defaultPegSide_of_ScannerEntry(e), PEG_TOP);
    EXPECT_EQ(device_of_ScannerEntry(e)->name, "Big_Scanner");  // copied at completion

    // Lines are read in pieces of 4999 bytes: the rest is a line of its own.
    read(block("Bogus-Color", "descr: " + std::string(4992, 'x') + "defaultThreshold: 7\n"));
    EXPECT_TRUE(errors().empty());
    EXPECT_EQ(descr_of_ScannerEntry(only()).size(), 4992);
    EXPECT_EQ(defaultThreshold_of_ScannerEntry(only()), 7);
}

// Keywords and enumerated values are exact words (" #" is the keyword "#"); a refused
// value keeps what was there, a refused model loses its block; a name loses blanks, not tabs.
TEST_F(ConfTest, UnknownWordsAndModels) {
    read(block("Bogus-Color", " # not a comment\nDefaultThreshold: 12\nNAME: other\nodd%2%1:\ndefaultPegSide: bottom\n"
                              "defaultPegSide: Left\nregistrationStrictness: Loose\nregistrationStrictness: strict\n",
               "Test # one\ttab") +
         "host: station1\nname: Old\ndevice: x\nmodel: Fujitsu_M9999\ndefaultContrast: 999\nnonsense: 1\n" +
         block("Bogus-Color", "defaultPegSide: top\n", "New"));
    const std::string p = path();
    EXPECT_EQ(errors(), (Errors{"Unknown keyword '#' in file '" + p + "'.\n",
                                "Unknown keyword 'DefaultThreshold:' in file '" + p + "'.\n",
                                "Unknown keyword 'NAME:' in file '" + p + "'.\n",
                                "Unknown keyword 'odd%2%1:' in file '" + p + "'.\n",
                                "Unknown defaultPegSide value 'bottom'\n",
                                "Unknown registrationStrictness value 'strict'\n",
                                "Model Fujitsu_M9999 Is Not A Supported Scanner.",
                                "Unknown defaultPegSide value 'top'\n"}));
    ASSERT_EQ(count_of_ScannerList(list_.get()), 2);
    ScannerEntry *first = entry(0), *second = entry(1);
    EXPECT_EQ(name_of_ScannerEntry(first), "Test_#_one\ttab");
    EXPECT_EQ(defaultPegSide_of_ScannerEntry(first), PEG_LEFT);
    EXPECT_EQ(registrationStrictness_of_ScannerEntry(first), REGISTRATION_LOOSE);
    EXPECT_EQ(name_of_ScannerEntry(second), "New");
    EXPECT_EQ(defaultPegSide_of_ScannerEntry(second), PEG_BOTTOM);  // the fresh bottom
    EXPECT_EQ(registrationStrictness_of_ScannerEntry(second), REGISTRATION_NOT_STATED);
}

TEST_F(ConfTest, FloatChecksKeepOrReplaceTheValue) {
    // Numbers read as the C library reads them: a hexadecimal float, and
    // infinity for a value beyond the range.
    read(block("Bogus-Color", "defaultGamma: 0\npegPitch: -2\npegSideCleanSize: 0\nSide1CleanSize: 0x1.8p0\n"
                              "oppositeSideCleanSize: 1e999\nSide3CleanSize: -1\nxScaleAdjustment: 0\n"
                              "yScaleAdjustment: 1.01\nleftOffset: -0.5\n") +
         block("Bogus-Color", "Side0CleanSize: 2\nSide2CleanSize: 4\n", "Aliases"));
    Errors want;
    for (const char *key : {"defaultGamma", "pegPitch", "Side0CleanSize", "Side3CleanSize", "xscale", "leftOffset"})
        want.push_back("Config file " + path() + ": " + key + " should be > 0.0.\n");
    EXPECT_EQ(errors(), want);
    ScannerEntry *e = entry(0);
    EXPECT_FLOAT_EQ(defaultGamma_of_ScannerEntry(e), 0.0000000001f);
    EXPECT_FLOAT_EQ(pegPitch_of_ScannerEntry(e), -2.0f);  // reported, kept
    EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 0), 0.0f);
    EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 1), 1.5f);
    EXPECT_EQ(cleanSize_of_ScannerEntry(e, 2), std::numeric_limits<float>::infinity());
    EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 3), -1.0f);
    EXPECT_DOUBLE_EQ(xScaleAdjustment_of_ScannerEntry(e), 1.0);
    EXPECT_DOUBLE_EQ(yScaleAdjustment_of_ScannerEntry(e), 1.01);
    EXPECT_FLOAT_EQ(device_of_ScannerEntry(e)->leftOffset, -0.5f);
    ScannerEntry *aliases = entry(1);
    EXPECT_EQ(std::pair(cleanSize_of_ScannerEntry(aliases, 0), cleanSize_of_ScannerEntry(aliases, 2)),
              std::pair(2.0f, 4.0f));
}

TEST_F(ConfTest, IntegerRangeChecksReadThroughToTheModel) {
    read(block("Bogus-Color", "defaultContrast: -1\ndefaultBrightness: 256\ndefaultGammaMode: FF\n"
                              "defaultResolution: -1\nWaitBetweenDrawings: 3E8\n", "A") +
         block("Bogus-Color", "defaultContrast: 0\ndefaultBrightness: 255\ndefaultGammaMode: 100\n"
                              "defaultResolution: 0\nWaitBetweenDrawings: 3E9\n", "B") +
         block("Bogus-Color", "WaitBetweenDrawings: -1\n", "C"));
    const std::string p = path(), wait = "Config file " + p + ": WaitBetweenDrawings should be >= 0 or less than 1000. \n";
    EXPECT_EQ(errors(), (Errors{"Config file " + p + ": defaultContrast should be > 0 or less than 255.\n",
                                "Config file " + p + ": defaultBrightness should be > 0 or less than 255.\n",
                                "Config file " + p + ": defaultGammaMode should be > 0 or less than 255.\n",
                                "Config file " + p + ": defaultResolution should be > 0.\n", wait, wait}));
    ScannerEntry *a = entry(0), *b = entry(1);
    EXPECT_EQ(std::tuple(defaultContrast_of_ScannerEntry(a), defaultBrightness_of_ScannerEntry(a),
                         defaultGammaMode_of_ScannerEntry(a), device_of_ScannerEntry(a)->default_gamma_mode,
                         WaitBetweenDrawings_of_ScannerEntry(a)),
              std::tuple(0, 0, 0xFF, 0xFF, 1000));  // the setter writes through
    // -1 took the record's fresh 300 at the merge, above this model's highest.
    EXPECT_EQ(defaultResolution_of_ScannerEntry(a), 200);
    EXPECT_EQ(std::tuple(defaultContrast_of_ScannerEntry(b), defaultBrightness_of_ScannerEntry(b),
                         defaultGammaMode_of_ScannerEntry(b), device_of_ScannerEntry(b)->default_gamma_mode,
                         WaitBetweenDrawings_of_ScannerEntry(b)),
              std::tuple(0, 255, 0, 0, 0));  // 0x100 refused
    EXPECT_EQ(WaitBetweenDrawings_of_ScannerEntry(entry(2)), 0);
}

TEST_F(ConfTest, MissingFieldsAreAllReportedAndTheRecordStaysUnfinished) {
    read("host: station1\ndescr: nothing else\nhost: station1\nname: N\ndefaultThreshold: 300\n");
    const std::string missing = "In file '" + path() + "', missing ";
    EXPECT_EQ(errors(), (Errors{missing + "name.\n", missing + "device.\n", missing + "model.\n",
                                missing + "device.\n", missing + "model.\n"}));
    ASSERT_EQ(count_of_ScannerList(list_.get()), 2);
    const ScanDeviceInfo *dev = device_of_ScannerEntry(entry(1));
    EXPECT_EQ(dev->name, "(None Selected)");  // nothing was copied
    EXPECT_EQ(dev->default_threshold, -1);
}

// Stated defaults reach the device, unstated ones read through from the model; only models that
// take a gamma file get it; drop colours add up, a drop-out colour is replaced.
TEST_F(ConfTest, DefaultsMergeWithTheDeviceBothWays) {
    read(block("Sharp_JX-610", "defaultGamma: 2.5\ndefaultBlackPoint: 30\n", "Sharp") +
         block("Epson_836XL", "gammaFile: /studio/g.txt\n", "A") + block("Bogus-Color", "gammaFile: /studio/g.txt\n", "B") +
         block("Fujitsu_fi4750C", "rgbDropList: Red, 0, 100, 0, 100, 0, 100\nrgbDropList: Blue,  1, 2 \r\n"
                                  "dropOutColor: red\ndropOutColor: green\nforceAllResolutions: whatever\n"));
    EXPECT_TRUE(errors().empty());
    ScannerEntry *e = entry(0);
    ScanDeviceInfo *dev = device_of_ScannerEntry(e);
    EXPECT_FLOAT_EQ(dev->default_gamma, 2.5f);
    EXPECT_EQ(std::tuple(dev->default_black_point, defaultBlackPoint_of_ScannerEntry(e),
                         dev->grey_parameters.black_point_default),
              std::tuple(30, 30, 30));
    EXPECT_EQ(e->defaultWhitePoint, -1);
    EXPECT_EQ(defaultWhitePoint_of_ScannerEntry(e), 235);
    EXPECT_EQ(dev->gamma_file, "(None)");
    EXPECT_EQ(device_of_ScannerEntry(entry(1))->gamma_file, "/studio/g.txt");
    EXPECT_EQ(device_of_ScannerEntry(entry(2))->gamma_file, "(None)");
    EXPECT_EQ(gammaFile_of_ScannerEntry(entry(2)), "/studio/g.txt");

    e = entry(3);
    dev = device_of_ScannerEntry(e);
    EXPECT_EQ(rgbDropList_of_ScannerEntry(e), (QStringList{"Red, 0, 100, 0, 100, 0, 100", "Blue,  1, 2 "}));
    EXPECT_EQ(dev->rgbDropList, rgbDropList_of_ScannerEntry(e));
    EXPECT_EQ(rgbDrop_of_Standard_parameters(&dev->bw_parameters), "0, 100, 0, 100, 0, 100");
    EXPECT_EQ(dropOutColor_of_ScannerEntry(e) + "/" + dev->dropOutColor, "green/green");
    EXPECT_TRUE(forceAllResolutions_of_ScannerEntry(e));
}

// A TWAIN block needs only its model; the list finds scanners by exact name
// and gives its TWAIN entry away.
TEST_F(ConfTest, FindByNameAndTakeTwain) {
    read(block("Bogus-Color", "", "Scan") + "host: station1\nmodel: TWAIN\n" + block("Bogus-B&W", "", "Scanner"));
    EXPECT_TRUE(errors().empty());
    ScannerEntry *twain = entry(1);
    EXPECT_EQ(name_of_ScannerEntry(twain), "TWAIN");
    EXPECT_EQ(deviceName_of_ScannerEntry(twain), "sc0;d0;l0");
    EXPECT_TRUE(forceAllResolutions_of_ScannerEntry(twain));
    const ScanDeviceInfo *dev = device_of_ScannerEntry(twain);
    EXPECT_EQ(std::tuple(dev->min_resolution, dev->max_resolution, defaultResolution_of_ScannerEntry(twain)),
              std::tuple(72, 600, 300));

    int32_t index = 7;
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "Scanner", &index), entry(2));
    EXPECT_EQ(index, 2);
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "scanner", &index), nullptr);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "Sca", &index), nullptr);

    std::unique_ptr<ScannerEntry> taken = take_TWAIN_of_ScannerList(list_.get());
    EXPECT_EQ(taken.get(), twain);
    EXPECT_EQ(count_of_ScannerList(list_.get()), 2);
    EXPECT_EQ(name_of_ScannerEntry(entry(1)), "Scanner");
    EXPECT_EQ(take_TWAIN_of_ScannerList(list_.get()), nullptr);

    read(block("Bogus-Color", "", "Scan") + "host: station1\nmodel: TWAIN\n", false);
    EXPECT_EQ(count_of_ScannerList(list_.get()), 1);
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "TWAIN", nullptr), nullptr);
}

TEST_F(ConfTest, BestScannerForAnElementScanType) {
    read(block("Fujitsu_M3096G", "", "Mono") + block("Bogus-Color", "", "Colour"));
    ScannerEntry *mono = entry(0), *colour = entry(1);
    for (auto [current, type, best] : {std::tuple(mono, SCANTYPE_BW, mono), {mono, SCANTYPE_GREY, mono},
                                       {mono, SCANTYPE_COLOUR, colour}, {colour, SCANTYPE_COLOUR, colour},
                                       {mono, SCANTYPE_NEVER, nullptr}, {mono, SCANTYPE_NONE, nullptr},
                                       {nullptr, SCANTYPE_BW, nullptr}})
        EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), current, type), best) << type;
    read(block("Fujitsu_M3096G", "", "Mono"));
    EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), only(), SCANTYPE_COLOUR), nullptr);
}

// The eject runs with the unload flag up, and the flag is put back.
TEST_F(ConfTest, EjectRaisesTheUnloadFlag) {
    read(block("Bogus-Color") + block("Ricoh_IS420"));
    ScannerEntry *e = entry(0);
    static bool seen = false;
    ScanDeviceInfo *dev = device_of_ScannerEntry(e);
    dev->ops.eject = [](ScanDeviceInfo *d) {
        seen = d->last_drawing;
        return scan_status(SCSI_MEDIUM_ERROR, STATUS_NO_MORE_PAPER);
    };
    EXPECT_EQ(eject_of_ScannerEntry(e), scan_status(SCSI_MEDIUM_ERROR, STATUS_NO_MORE_PAPER));
    EXPECT_TRUE(seen);
    EXPECT_FALSE(dev->last_drawing);
    EXPECT_EQ(eject_of_ScannerEntry(entry(1)), ScanStatus{}) << "a Ricoh has no eject";
}

// ---- the model table ----

namespace {

// Which groups a parameter set has: T threshold, B black and white point,
// G gamma, S speed, D drop colours.
std::string groups(const Standard_parameters &p) {
    return std::string(p.has_threshold ? "T" : "") + (p.has_black_point && p.has_white_point ? "B" : "") +
           (p.has_gamma ? "G" : "") + (p.has_speed ? "S" : "") + (p.has_rgbDrop ? "D" : "");
}

// The groups of black and white, grey and colour, and the resolutions offered.
std::string profile(const ScanDeviceInfo *dev) {
    std::string s = groups(dev->bw_parameters) + "/" + groups(dev->grey_parameters) + "/" +
                    groups(dev->colour_parameters) + " ";
    for (std::size_t i = 0; i < kResolutionSteps.size(); ++i)
        if (dev->resolution_steps[i]) s += std::to_string(kResolutionSteps[i]) + " ";
    return s;
}

}  // namespace

TEST(ModelTable, SupportedNamesAreExact) {
    for (const char *m : {"TWAIN", "Sane", "Bogus-B&W"}) EXPECT_TRUE(supported_model_of_devices(QString::fromLatin1(m))) << m;
    for (const char *m : {"", "twain", "Bogus-Colour", "Fujitsu_M3096G ", "Epson"})
        EXPECT_FALSE(supported_model_of_devices(QString::fromLatin1(m))) << m;
    EXPECT_FALSE(setup_model_of_devices(nullptr));
}

// Each family's parameter groups and resolutions. Colour gamma: Sharp and Umax want no gamma
// file, Epson an absent one; the GT-15000 loses its grey gamma to an existing one.
TEST_F(ConfTest, ParameterSetsAndResolutionsPerFamily) {
    const QString existing = dir_.filePath(QStringLiteral("gamma.txt"));
    QFile(existing).open(QIODevice::WriteOnly);
    const std::string absent = "gammaFile: " + dir_.filePath(QStringLiteral("absent.txt")).toStdString() + "\n";
    const std::string present = "gammaFile: " + existing.toStdString() + "\n";
    const std::string drop = "rgbDropList: Red, 1, 2, 3, 4, 5, 6\n";
    const std::string all = "72 100 150 200 240 300 400 600 ";
    const std::tuple<const char *, std::string, std::string> rows[] = {
        {"Fujitsu_M3096G", drop, "T/B/ 200 240 300 400 "},
        {"Fujitsu_M4097D", "forceAllResolutions:\n", "T/B/ " + all},
        {"Fujitsu_fi4750C", drop, "TD/BGD/G 200 240 300 400 "},
        {"Sharp_JX-610", drop, "TS/BGS/GS " + all},
        {"Sharp_JX-610", absent, "TS/BGS/S " + all},
        {"Umax_Mirage", drop, "TS/BGS/GS " + all},
        {"Microtek_9600XL", drop, "T/BG/G " + all},
        {"Ricoh_IS410", drop, "T/B/ 100 150 200 240 300 400 "},
        {"Ricoh_IS330", drop, "T/B/ 100 150 200 240 300 400 600 "},
        {"Epson_836XL", absent, "T/BG/G " + all},
        {"Epson_836XL", present, "T/BG/ " + all},
        {"Epson_GT-15000", present, "T/B/ " + all},
        {"Bogus-B&W", drop, "TSD//G " + all},
        {"Bogus-Color", drop, "TSD/BSD/GS 72 100 150 200 300 400 600 "},
        {"Plugin-Color", "", "// 300 "},
        {"Sane", "", "// 300 "},  // a known name without a setup: a fresh device
    };
    std::string conf;
    for (const auto &[model, more, want] : rows) conf += block(model, more, model);
    read(conf);
    EXPECT_EQ(errors(), Errors{"Device Sane Not Supported."});
    ASSERT_EQ(count_of_ScannerList(list_.get()), static_cast<int32_t>(std::size(rows)));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const auto &[model, more, want] = rows[i];
        EXPECT_EQ(profile(device_of_ScannerEntry(entry(int32_t(i)))), want)
            << model << " " << more;
    }
    const ScanDeviceInfo *plugin = device_of_ScannerEntry(entry(int32_t(std::size(rows) - 2)));
    const ScannerOps fresh;
    EXPECT_TRUE(plugin->ops.reserve == fresh.reserve && plugin->ops.read == fresh.read);

    // A file that happens to be called "(None)" takes the colour gamma from Sharp and Umax.
    const QString old = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir_.path()));
    QFile(QStringLiteral("(None)")).open(QIODevice::WriteOnly);
    read(block("Umax_Mirage"));
    QDir::setCurrent(old);
    EXPECT_EQ(profile(device_of_ScannerEntry(only())), "TS/BGS/S " + all);
}

// Out-of-range defaults are replaced silently, by family.
TEST_F(ConfTest, SetupReplacesOutOfRangeDefaults) {
    reset_fi6770_mode_of_devices();
    const std::string bad = "defaultThreshold: 300\ndefaultBlackPoint: -5\ndefaultWhitePoint: 200\n"
                            "defaultGamma: 3.5\n";
    read(block("Fujitsu_M3096G", bad, "M") + block("Fujitsu_fi5750C", bad, "Fi") + block("Fujitsu_fi6770"));
    EXPECT_TRUE(errors().empty());
    const ScanDeviceInfo *m = device_of_ScannerEntry(entry(0));
    EXPECT_EQ(std::tuple(m->default_threshold, m->bw_parameters.threshold_default, m->default_black_point,
                         m->default_white_point, m->grey_parameters.white_point_current, m->flag_c),
              std::tuple(100, 100, 20, 200, 200, 0));
    EXPECT_FLOAT_EQ(m->default_gamma, 3.5f);  // no gamma on this family: left alone
    const ScanDeviceInfo *fi = device_of_ScannerEntry(entry(1));
    EXPECT_EQ(std::tuple(fi->default_black_point, fi->default_white_point, fi->flag_c), std::tuple(25, 200, 1));
    EXPECT_FLOAT_EQ(fi->colour_parameters.gamma_default, 0.65f);
    EXPECT_TRUE(fi6770_mode_of_devices());
    reset_fi6770_mode_of_devices();
    ScanDeviceInfo direct;  // the reader never lets such a contrast through
    direct.model = QStringLiteral("Fujitsu_fi5750C");
    direct.default_contrast = 300;
    ASSERT_TRUE(setup_model_of_devices(&direct));
    EXPECT_EQ(direct.default_contrast, 0);
    EXPECT_FALSE(fi6770_mode_of_devices());
}

TEST_F(ConfTest, ResolutionCheckMovesUpToAnOfferedStep) {
    const std::tuple<const char *, int, int> rows[] = {
        {"Fujitsu_M3096G", 250, 300}, {"Sharp_JX-610", 1000, 600},
        {"Fujitsu_fi4750C", 120, 120},  // 150 is not offered
        {"Bogus-Color", 220, 200},      // above its highest
        {"Ricoh_IS420", 72, 100},       {"Sharp_JX-610", 73, 100}, {"Plugin-Color", 150, 300},
    };
    std::string conf;
    Errors logged;
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const auto [model, asked, got] = rows[i];
        const std::string name = "S%" + std::to_string(i + 1);  // a name never taken for a value
        conf += block(model, "defaultResolution: " + std::to_string(asked) + "\n", name);
        if (asked != got)
            logged.push_back("Invalid Resolution for model " + name + ": " + std::to_string(asked) + " changed to " +
                             std::to_string(got) + ".");
    }
    read(conf + block("Fujitsu_M3096G", "forceAllResolutions:\ndefaultResolution: 600\n"));
    EXPECT_TRUE(errors().empty());
    EXPECT_EQ(logs(), logged);
    for (std::size_t i = 0; i <= std::size(rows); ++i)
        EXPECT_EQ(defaultResolution_of_ScannerEntry(entry(int32_t(i))),
                  i < std::size(rows) ? std::get<2>(rows[i]) : 600)
            << i;
}
