#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <tuple>

#include "conf_fixture.h"
#include "scan/devices.h"
#include "scan/scanner_list.h"

using Errors = std::vector<std::string>;

namespace {

// Which groups a parameter set has: T threshold, B black and white point,
// G gamma, S speed, D drop colours.
std::string groups(const Standard_parameters &p) {
    std::string s;
    if (p.has_threshold) s += 'T';
    if (p.has_black_point && p.has_white_point) s += 'B';
    if (p.has_gamma) s += 'G';
    if (p.has_speed) s += 'S';
    if (p.has_rgbDrop) s += 'D';
    return s;
}

std::string offered_steps(const ScanDeviceInfo *dev) {
    std::string s;
    for (std::size_t i = 0; i < kResolutionSteps.size(); ++i)
        if (dev->resolution_steps[i]) s += std::to_string(kResolutionSteps[i]) + " ";
    return s;
}

}  // namespace

TEST(ModelTable, SupportedNamesAreExact) {
    for (const char *m : {"Plugin-Color", "Fujitsu_M3096G", "Fujitsu_M4097D", "Fujitsu_fi4750C", "Fujitsu_fi5750C",
                          "Fujitsu_fi6770", "Sharp_JX-610", "Ricoh_IS410", "Ricoh_IS420", "Ricoh_IS430", "Ricoh_IS450",
                          "Ricoh_IS330", "Ricoh_IS760", "Bogus-B&W", "Bogus-Color", "Microtek_9600XL", "Umax_Mirage",
                          "Epson_836XL", "Epson_GT-15000", "Sane", "Epson_1640XL", "TWAIN"})
        EXPECT_TRUE(supported_model_of_devices(QString::fromLatin1(m))) << m;
    for (const char *m : {"", "twain", "Bogus-Colour", "Fujitsu_M3096G ", "Epson"})
        EXPECT_FALSE(supported_model_of_devices(QString::fromLatin1(m))) << m;
}

// Sane is a known name without a setup: the scanner stays in the list with a
// fresh device.
TEST_F(ConfTest, SaneStaysInTheListWithAFreshDevice) {
    read(block("Sane"));
    EXPECT_EQ(errors(), Errors{"Device Sane Not Supported."});
    const ScanDeviceInfo *dev = device_of_ScannerEntry(only());
    EXPECT_EQ(dev->model, "Sane");
    EXPECT_EQ(groups(dev->bw_parameters), "");
    EXPECT_EQ(dev->default_threshold, -1);
    EXPECT_EQ(offered_steps(dev), "300 ");
    EXPECT_FALSE(setup_model_of_devices(nullptr));
}

TEST_F(ConfTest, PluginColorIsTheGenericRecordAt300Only) {
    read(block("Plugin-Color", "defaultResolution: 150\n", "S%2"));  // a name never taken for a value
    const ScanDeviceInfo *dev = device_of_ScannerEntry(only());
    const ScannerOps fresh;
    EXPECT_TRUE(dev->ops.reserve == fresh.reserve && dev->ops.read == fresh.read && dev->ops.release == fresh.release);
    EXPECT_EQ(offered_steps(dev), "300 ");
    EXPECT_EQ(groups(dev->bw_parameters) + groups(dev->grey_parameters) + groups(dev->colour_parameters), "");
    EXPECT_EQ(defaultResolution_of_ScannerEntry(only()), 300);
    EXPECT_EQ(logs(), Errors{"Invalid Resolution for model S%2: 150 changed to 300."});
}

TEST_F(ConfTest, OutOfRangeDefaultsAreReplacedSilentlyBySetup) {
    read(block("Fujitsu_M3096G", "defaultThreshold: 300\ndefaultBlackPoint: -5\ndefaultWhitePoint: 200\n"));
    EXPECT_TRUE(errors().empty());
    ScanDeviceInfo *dev = device_of_ScannerEntry(only());
    EXPECT_EQ(dev->default_threshold, 100);
    EXPECT_EQ(dev->bw_parameters.threshold_default, 100);
    EXPECT_EQ(dev->default_black_point, 20);
    EXPECT_EQ(dev->default_white_point, 200);
    EXPECT_EQ(dev->grey_parameters.white_point_current, 200);
}

TEST(ModelTable, FujitsuFiHasItsOwnDefaultsAndContrastLimit) {
    reset_fi6770_mode_of_devices();
    ScanDeviceInfo fi;
    fi.model = QStringLiteral("Fujitsu_fi5750C");
    fi.default_gamma = 3.5f;
    fi.default_contrast = 300;
    ASSERT_TRUE(setup_model_of_devices(&fi));
    EXPECT_EQ(std::tuple(fi.default_black_point, fi.default_white_point, fi.default_contrast, fi.flag_c),
              std::tuple(25, 220, 0, 1));
    EXPECT_FLOAT_EQ(fi.colour_parameters.gamma_default, 0.65f);
    EXPECT_EQ(offered_steps(&fi), "200 240 300 400 ");
    EXPECT_FALSE(fi6770_mode_of_devices());

    ScanDeviceInfo m;
    m.model = QStringLiteral("Fujitsu_M4097D");
    m.default_gamma = 3.5f;  // no gamma on this family: left alone
    ASSERT_TRUE(setup_model_of_devices(&m));
    EXPECT_FLOAT_EQ(m.default_gamma, 3.5f);
    EXPECT_EQ(m.flag_c, 0);

    ScanDeviceInfo f6770;
    f6770.model = QStringLiteral("Fujitsu_fi6770");
    ASSERT_TRUE(setup_model_of_devices(&f6770));
    EXPECT_TRUE(fi6770_mode_of_devices());
    reset_fi6770_mode_of_devices();
}

TEST_F(ConfTest, ForceAllResolutionsWidensAFujitsuM) {
    read(block("Fujitsu_M3096G", "forceAllResolutions:\ndefaultResolution: 600\n"));
    const ScanDeviceInfo *dev = device_of_ScannerEntry(only());
    EXPECT_EQ(dev->max_resolution, 600);
    EXPECT_EQ(dev->min_resolution, 72);
    EXPECT_EQ(dev->optical_dpi_limit, 600);
    EXPECT_EQ(offered_steps(dev), "72 100 150 200 240 300 400 600 ");
    EXPECT_EQ(defaultResolution_of_ScannerEntry(only()), 600);
    EXPECT_TRUE(logs().empty());
}

TEST_F(ConfTest, ResolutionCheckMovesUpToAnOfferedStep) {
    read(block("Fujitsu_M3096G", "defaultResolution: 250\n", "Fuji") + block("Ricoh_IS410", "defaultResolution: 250\n", "Ricoh") +
         block("Sharp_JX-610", "defaultResolution: 1000\n", "Sharp") +
         block("Fujitsu_fi4750C", "defaultResolution: 120\n", "Fi") +  // 150 is not offered
         block("Bogus-Color", "defaultResolution: 220\n", "Bogus") +     // above its highest
         block("Ricoh_IS420", "defaultResolution: 72\n", "Low") + block("Sharp_JX-610", "defaultResolution: 73\n", "Up"));
    EXPECT_TRUE(errors().empty());
    auto res = [&](int i) { return defaultResolution_of_ScannerEntry(entry_of_ScannerList(list_.get(), i)); };
    EXPECT_EQ(res(0), 300);
    EXPECT_EQ(res(1), 300);
    EXPECT_EQ(res(2), 600);
    EXPECT_EQ(res(3), 120);
    EXPECT_EQ(res(4), 200);
    EXPECT_EQ(res(5), 100);
    EXPECT_EQ(res(6), 100);
    EXPECT_EQ(logs(), (Errors{"Invalid Resolution for model Fuji: 250 changed to 300.",
                              "Invalid Resolution for model Ricoh: 250 changed to 300.",
                              "Invalid Resolution for model Sharp: 1000 changed to 600.",
                              "Invalid Resolution for model Bogus: 220 changed to 200.",
                              "Invalid Resolution for model Low: 72 changed to 100.",
                              "Invalid Resolution for model Up: 73 changed to 100."}));
}

TEST_F(ConfTest, ParameterSetsPerFamily) {
    struct Row {
        const char *model;
        const char *bw, *grey, *colour;
    };
    const Row rows[] = {
        {"Fujitsu_M3096G", "T", "B", ""},       {"Fujitsu_fi4750C", "TD", "BGD", "G"},
        {"Sharp_JX-610", "TS", "BGS", "GS"},    {"Umax_Mirage", "TS", "BGS", "GS"},
        {"Microtek_9600XL", "T", "BG", "G"},    {"Ricoh_IS410", "T", "B", ""},
        {"Ricoh_IS450", "T", "B", ""},          {"Ricoh_IS330", "T", "B", ""},
        {"Epson_836XL", "T", "BG", "G"},        {"Epson_GT-15000", "T", "BG", "G"},
        {"Bogus-B&W", "TSD", "", "G"},          {"Bogus-Color", "TSD", "BSD", "GS"},
    };
    std::string conf;
    for (const Row &r : rows) conf += block(r.model, "rgbDropList: Red, 1, 2, 3, 4, 5, 6\n", r.model);
    read(conf);
    ASSERT_EQ(count_of_ScannerList(list_.get()), static_cast<int32_t>(std::size(rows)));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const ScanDeviceInfo *dev = device_of_ScannerEntry(entry_of_ScannerList(list_.get(), static_cast<int32_t>(i)));
        EXPECT_EQ(groups(dev->bw_parameters), rows[i].bw) << rows[i].model;
        EXPECT_EQ(groups(dev->grey_parameters), rows[i].grey) << rows[i].model;
        EXPECT_EQ(groups(dev->colour_parameters), rows[i].colour) << rows[i].model;
    }
}

TEST_F(ConfTest, SpeedPresetsOfTheFamilies) {
    read(block("Sharp_JX-610", "", "Sharp") + block("Bogus-B&W", "", "BW") + block("Bogus-Color", "", "Colour"));
    // Range and default; n normal, f fast, c custom.
    const auto speed = [](const Standard_parameters &p) {
        return std::to_string(p.speed_min) + ".." + std::to_string(p.speed_max) + " " + std::to_string(p.speed_default) +
               (p.has_normal ? " n" + std::to_string(p.normal) : "") + (p.has_fast ? " f" + std::to_string(p.fast) : "") +
               (p.has_custom ? " c" : "");
    };
    auto dev = [&](int i) { return device_of_ScannerEntry(entry_of_ScannerList(list_.get(), i)); };
    EXPECT_EQ(speed(dev(0)->grey_parameters), "5..300 35 n70 f35 c");
    EXPECT_EQ(dev(0)->grey_parameters.speed_label, "Milliseconds/Line");
    EXPECT_EQ(speed(dev(1)->bw_parameters), "5..35000 10 f2000 c");
    EXPECT_EQ(speed(dev(2)->grey_parameters), "5..35000 10 n15000 f2000");
    EXPECT_EQ(speed(dev(2)->colour_parameters), "5..35000 10 n15000 c");
}

// Sharp and Umax want no gamma file at all; Epson only an absent file.
TEST_F(ConfTest, ColourGammaDependsOnTheGammaFileByFamily) {
    const QString existing = dir_.filePath("gamma.txt");
    QFile(existing).open(QIODevice::WriteOnly);
    const std::string absent = dir_.filePath("absent.txt").toStdString();
    read(block("Sharp_JX-610", "gammaFile: " + absent + "\n", "SharpAbsent") +
         block("Epson_836XL", "gammaFile: " + absent + "\n", "EpsonAbsent") +
         block("Epson_836XL", "gammaFile: " + existing.toStdString() + "\n", "EpsonFile") +
         block("Epson_GT-15000", "gammaFile: " + existing.toStdString() + "\n", "GtFile") +
         block("Umax_Mirage", "", "UmaxNone"));
    auto dev = [&](int i) { return device_of_ScannerEntry(entry_of_ScannerList(list_.get(), i)); };
    EXPECT_FALSE(dev(0)->colour_parameters.has_gamma);
    EXPECT_TRUE(dev(1)->colour_parameters.has_gamma);
    EXPECT_FALSE(dev(2)->colour_parameters.has_gamma);
    EXPECT_TRUE(dev(2)->grey_parameters.has_gamma);
    EXPECT_FALSE(dev(3)->colour_parameters.has_gamma);
    EXPECT_FALSE(dev(3)->grey_parameters.has_gamma);
    EXPECT_TRUE(dev(4)->colour_parameters.has_gamma);

    // A file that happens to be called "(None)" takes the gamma from Sharp and Umax.
    const QString old = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir_.path()));
    QFile(QStringLiteral("(None)")).open(QIODevice::WriteOnly);
    read(block("Umax_Mirage"));
    QDir::setCurrent(old);
    EXPECT_FALSE(device_of_ScannerEntry(only())->colour_parameters.has_gamma);
}

TEST_F(ConfTest, CapabilitiesAndOperationsOfTheFamilies) {
    read(block("Ricoh_IS410", "", "R410") + block("Ricoh_IS420", "", "R420") + block("Bogus-Color", "", "Bogus") +
         block("Epson_1640XL", "", "Epson") + block("Ricoh_IS760", "", "R760"));
    auto dev = [&](int i) { return device_of_ScannerEntry(entry_of_ScannerList(list_.get(), i)); };
    const ScanDeviceInfo *r410 = dev(0);
    EXPECT_TRUE(r410->bw_feeder && r410->grey_supported && !r410->grey_feeder && !r410->colour_supported);
    EXPECT_EQ(r410->default_depth, DEPTH_BW);
    EXPECT_EQ(offered_steps(r410), "100 150 200 240 300 400 ");
    EXPECT_EQ(r410->ops.ready, generic_ready_of_ScanDeviceInfo);
    EXPECT_EQ(dev(1)->ops.ready, nop_of_ScanDeviceInfo);
    EXPECT_EQ(dev(1)->ops.eject, nullptr);
    const ScanDeviceInfo *bogus = dev(2);
    EXPECT_TRUE(bogus->colour_supported && bogus->colour_feeder);
    EXPECT_EQ(offered_steps(bogus), "72 100 150 200 300 400 600 ");
    EXPECT_EQ(bogus->optical_dpi_limit, 200);
    EXPECT_EQ(bogus->ops.release, nop_of_ScanDeviceInfo);
    EXPECT_EQ(std::tuple(dev(3)->flag_a, dev(3)->flag_b, dev(3)->default_resolution), std::tuple(1, 1, 150));
    EXPECT_EQ(dev(4)->max_resolution, 400);
    EXPECT_FALSE(dev(4)->colour_supported);  // until its inquiry says otherwise
}
