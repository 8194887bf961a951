// The model table: what each family offers once Scan.conf has been read.
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <tuple>

#include "conf_fixture.h"
#include "scan/devices.h"
#include "scan/scanner_list.h"

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

// Each family's parameter groups and resolutions. Sharp and Umax want no
// gamma file at all for colour gamma; Epson only an absent file, and the
// GT-15000 loses its grey gamma to an existing one.
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
        {"Ricoh_IS450", drop, "T/B/ 100 150 200 240 300 400 "},
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
        EXPECT_EQ(profile(device_of_ScannerEntry(entry_of_ScannerList(list_.get(), int32_t(i)))), want)
            << model << " " << more;
    }
    const ScanDeviceInfo *plugin = device_of_ScannerEntry(entry_of_ScannerList(list_.get(), int32_t(std::size(rows) - 2)));
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
    const ScanDeviceInfo *m = device_of_ScannerEntry(entry_of_ScannerList(list_.get(), 0));
    EXPECT_EQ(std::tuple(m->default_threshold, m->bw_parameters.threshold_default, m->default_black_point,
                         m->default_white_point, m->grey_parameters.white_point_current, m->flag_c),
              std::tuple(100, 100, 20, 200, 200, 0));
    EXPECT_FLOAT_EQ(m->default_gamma, 3.5f);  // no gamma on this family: left alone
    const ScanDeviceInfo *fi = device_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1));
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
        {"Fujitsu_M3096G", 250, 300}, {"Ricoh_IS410", 250, 300}, {"Sharp_JX-610", 1000, 600},
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
        EXPECT_EQ(defaultResolution_of_ScannerEntry(entry_of_ScannerList(list_.get(), int32_t(i))),
                  i < std::size(rows) ? std::get<2>(rows[i]) : 600)
            << i;
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
