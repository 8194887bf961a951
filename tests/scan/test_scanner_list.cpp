// Reading Scan.conf into the scanner list: lines, keywords, checks of values,
// and what the list offers once read.
#include <QDir>

#include <limits>

#include <gtest/gtest.h>

#include "conf_fixture.h"
#include "scan/scanner_list.h"
#include "suite/base/osw_util.h"

TEST_F(ConfTest, CommentsAndBlankLinesAloneGiveAnEmptyListAndNoMessage) {
    read("# studio scanners\n\n   \n\t\r\n#host: station1\n");
    EXPECT_EQ(count_of_ScannerList(list_.get()), 0);
    EXPECT_EQ(host_of_ScannerList(list_.get()), "station1");
    EXPECT_TRUE(capture_.lines().empty());

    // Only in the first column: " #" is a line whose first token "#" is an
    // unknown keyword. A name keeps a tab but loses its blanks.
    read(block("Bogus-Color", " # not a comment\n", "Test # one\ttab"));
    EXPECT_EQ(errors(), Errors{"Unknown keyword '#' in file '" + path() + "'.\n"});
    EXPECT_EQ(name_of_ScannerEntry(only()), "Test_#_one\ttab");
}

TEST_F(ConfTest, OnlyBlocksOfThisHostAreKeptAndOthersMayHoldNonsense) {
    read("name: before any host\nbogus: line\n"
         "host: otherbox\nname: X\nmodel: NoSuchModel\nwhatever: 12\ndefaultContrast: 999\n"
         "host: STATION1.studio.example\nname: Mine\ndevice: fieldchart\nmodel: Bogus-Color\n"
         "host: station1\nname: Second\ndevice: fieldchart\nmodel: Bogus-B&W\n");
    EXPECT_TRUE(errors().empty());
    ASSERT_EQ(count_of_ScannerList(list_.get()), 2);
    EXPECT_EQ(name_of_ScannerEntry(entry_of_ScannerList(list_.get(), 0)), "Mine");
    EXPECT_EQ(name_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1)), "Second");
    EXPECT_EQ(entry_of_ScannerList(list_.get(), 2), nullptr);

    // Without a host given, the machine's own name, in any case.
    QString me;
    ASSERT_TRUE(oswUtil::getShortMachineName(me));
    read("host: " + me.toUpper().toStdString() + "\nname: T\ndevice: fieldchart\nmodel: Bogus-Color\n");
    EXPECT_EQ(count_of_ScannerList(list_.get()), 0);  // as station1: not ours
    list_ = read_ScannerList(path_, true);
    EXPECT_EQ(host_of_ScannerList(list_.get()), me);
    EXPECT_EQ(count_of_ScannerList(list_.get()), 1);
}

TEST_F(ConfTest, CrLfLinesTabsTrimmedValuesAndLongLines) {
    read("host:\tstation1\r\nname:\t Big Scanner \t\r\ndevice: fieldchart\r\nmodel: Bogus-Color  \r\n"
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

// Keywords are exact words; a refused model loses its whole block, whatever
// it holds; an enumerated value is an exact word too and a refused one keeps
// what was there.
TEST_F(ConfTest, UnknownWordsAndModels) {
    read(block("Bogus-Color", "DefaultThreshold: 12\nNAME: other\nodd%2%1:\ndefaultPegSide: bottom\n"
                              "defaultPegSide: Left\nregistrationStrictness: Loose\nregistrationStrictness: strict\n") +
         "host: station1\nname: Old\ndevice: x\nmodel: Fujitsu_M9999\ndefaultContrast: 999\nnonsense: 1\n" +
         block("Bogus-Color", "defaultPegSide: top\n", "New"));
    const std::string p = path();
    EXPECT_EQ(errors(), (Errors{"Unknown keyword 'DefaultThreshold:' in file '" + p + "'.\n",
                                "Unknown keyword 'NAME:' in file '" + p + "'.\n",
                                "Unknown keyword 'odd%2%1:' in file '" + p + "'.\n",
                                "Unknown defaultPegSide value 'bottom'\n",
                                "Unknown registrationStrictness value 'strict'\n",
                                "Model Fujitsu_M9999 Is Not A Supported Scanner.",
                                "Unknown defaultPegSide value 'top'\n"}));
    ASSERT_EQ(count_of_ScannerList(list_.get()), 2);
    ScannerEntry *first = entry_of_ScannerList(list_.get(), 0), *second = entry_of_ScannerList(list_.get(), 1);
    EXPECT_EQ(name_of_ScannerEntry(first), "S");
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
    const std::string p = path();
    EXPECT_EQ(errors(), (Errors{"Config file " + p + ": defaultGamma should be > 0.0.\n",
                                "Config file " + p + ": pegPitch should be > 0.0.\n",
                                "Config file " + p + ": Side0CleanSize should be > 0.0.\n",
                                "Config file " + p + ": Side3CleanSize should be > 0.0.\n",
                                "Config file " + p + ": xscale should be > 0.0.\n",
                                "Config file " + p + ": leftOffset should be > 0.0.\n"}));
    ScannerEntry *e = entry_of_ScannerList(list_.get(), 0);
    EXPECT_FLOAT_EQ(defaultGamma_of_ScannerEntry(e), 0.0000000001f);
    EXPECT_FLOAT_EQ(pegPitch_of_ScannerEntry(e), -2.0f);  // reported, kept
    EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 0), 0.0f);
    EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 1), 1.5f);
    EXPECT_EQ(cleanSize_of_ScannerEntry(e, 2), std::numeric_limits<float>::infinity());
    EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 3), -1.0f);
    EXPECT_DOUBLE_EQ(xScaleAdjustment_of_ScannerEntry(e), 1.0);
    EXPECT_DOUBLE_EQ(yScaleAdjustment_of_ScannerEntry(e), 1.01);
    EXPECT_FLOAT_EQ(device_of_ScannerEntry(e)->leftOffset, -0.5f);
    ScannerEntry *aliases = entry_of_ScannerList(list_.get(), 1);
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
    ScannerEntry *a = entry_of_ScannerList(list_.get(), 0), *b = entry_of_ScannerList(list_.get(), 1);
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
    EXPECT_EQ(WaitBetweenDrawings_of_ScannerEntry(entry_of_ScannerList(list_.get(), 2)), 0);
}

TEST_F(ConfTest, DropColoursAddOrReplaceAndReachTheDevice) {
    read(block("Fujitsu_fi4750C", "rgbDropList: Red, 0, 100, 0, 100, 0, 100\nrgbDropList: Blue,  1, 2 \r\n"
                                  "dropOutColor: red\ndropOutColor: green\nforceAllResolutions: whatever\n"));
    EXPECT_TRUE(errors().empty());
    ScannerEntry *e = only();
    EXPECT_EQ(rgbDropList_of_ScannerEntry(e), (QStringList{"Red, 0, 100, 0, 100, 0, 100", "Blue,  1, 2 "}));
    EXPECT_EQ(dropOutColor_of_ScannerEntry(e), "green");
    EXPECT_TRUE(forceAllResolutions_of_ScannerEntry(e));
    ScanDeviceInfo *dev = device_of_ScannerEntry(e);
    EXPECT_EQ(dev->dropOutColor, "green");
    EXPECT_EQ(dev->rgbDropList, rgbDropList_of_ScannerEntry(e));
    EXPECT_EQ(rgbDrop_of_Standard_parameters(&dev->bw_parameters), "0, 100, 0, 100, 0, 100");
}

TEST_F(ConfTest, MissingFieldsAreAllReportedAndTheRecordStaysUnfinished) {
    read("host: station1\ndescr: nothing else\nhost: station1\nname: N\ndefaultThreshold: 300\n");
    const std::string missing = "In file '" + path() + "', missing ";
    EXPECT_EQ(errors(), (Errors{missing + "name.\n", missing + "device.\n", missing + "model.\n",
                                missing + "device.\n", missing + "model.\n"}));
    ASSERT_EQ(count_of_ScannerList(list_.get()), 2);
    const ScanDeviceInfo *dev = device_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1));
    EXPECT_EQ(dev->name, "(None Selected)");  // nothing was copied
    EXPECT_EQ(dev->default_threshold, -1);
}

// Stated defaults reach the device; unstated ones read through from the
// model; the gamma file only reaches the models that take one.
TEST_F(ConfTest, DefaultsMergeWithTheDeviceBothWays) {
    read(block("Sharp_JX-610", "defaultGamma: 2.5\ndefaultBlackPoint: 30\n", "Sharp") +
         block("Epson_836XL", "gammaFile: /studio/g.txt\n", "A") + block("Bogus-Color", "gammaFile: /studio/g.txt\n", "B"));
    ScannerEntry *e = entry_of_ScannerList(list_.get(), 0);
    ScanDeviceInfo *dev = device_of_ScannerEntry(e);
    EXPECT_FLOAT_EQ(dev->default_gamma, 2.5f);
    EXPECT_EQ(std::tuple(dev->default_black_point, defaultBlackPoint_of_ScannerEntry(e),
                         dev->grey_parameters.black_point_default),
              std::tuple(30, 30, 30));
    EXPECT_EQ(e->defaultWhitePoint, -1);
    EXPECT_EQ(defaultWhitePoint_of_ScannerEntry(e), 235);
    EXPECT_EQ(dev->gamma_file, "(None)");
    EXPECT_EQ(device_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1))->gamma_file, "/studio/g.txt");
    EXPECT_EQ(device_of_ScannerEntry(entry_of_ScannerList(list_.get(), 2))->gamma_file, "(None)");
    EXPECT_EQ(gammaFile_of_ScannerEntry(entry_of_ScannerList(list_.get(), 2)), "/studio/g.txt");
}

// A TWAIN block needs only its model; the list finds scanners by exact name
// and gives its TWAIN entry away.
TEST_F(ConfTest, FindByNameAndTakeTwain) {
    read(block("Bogus-Color", "", "Scan") + "host: station1\nmodel: TWAIN\n" + block("Bogus-B&W", "", "Scanner"));
    EXPECT_TRUE(errors().empty());
    ScannerEntry *twain = entry_of_ScannerList(list_.get(), 1);
    EXPECT_EQ(name_of_ScannerEntry(twain), "TWAIN");
    EXPECT_EQ(deviceName_of_ScannerEntry(twain), "sc0;d0;l0");
    EXPECT_TRUE(forceAllResolutions_of_ScannerEntry(twain));
    const ScanDeviceInfo *dev = device_of_ScannerEntry(twain);
    EXPECT_EQ(std::tuple(dev->min_resolution, dev->max_resolution, defaultResolution_of_ScannerEntry(twain)),
              std::tuple(72, 600, 300));

    int32_t index = 7;
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "Scanner", &index), entry_of_ScannerList(list_.get(), 2));
    EXPECT_EQ(index, 2);
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "scanner", &index), nullptr);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "Sca", &index), nullptr);

    std::unique_ptr<ScannerEntry> taken = take_TWAIN_of_ScannerList(list_.get());
    EXPECT_EQ(taken.get(), twain);
    EXPECT_EQ(count_of_ScannerList(list_.get()), 2);
    EXPECT_EQ(name_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1)), "Scanner");
    EXPECT_EQ(take_TWAIN_of_ScannerList(list_.get()), nullptr);

    read(block("Bogus-Color", "", "Scan") + "host: station1\nmodel: TWAIN\n", false);
    EXPECT_EQ(count_of_ScannerList(list_.get()), 1);
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "TWAIN", nullptr), nullptr);
}

TEST_F(ConfTest, BestScannerForAnElementScanType) {
    read(block("Fujitsu_M3096G", "", "Mono") + block("Bogus-Color", "", "Colour"));
    ScannerEntry *mono = entry_of_ScannerList(list_.get(), 0), *colour = entry_of_ScannerList(list_.get(), 1);
    for (auto [current, type, best] : {std::tuple(mono, SCANTYPE_BW, mono), {mono, SCANTYPE_GREY, mono},
                                       {mono, SCANTYPE_COLOUR, colour}, {colour, SCANTYPE_COLOUR, colour},
                                       {mono, SCANTYPE_NEVER, nullptr}, {mono, SCANTYPE_NONE, nullptr},
                                       {nullptr, SCANTYPE_BW, nullptr}})
        EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), current, type), best) << type;
    read(block("Fujitsu_M3096G", "", "Mono"));
    EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), only(), SCANTYPE_COLOUR), nullptr);
}

TEST_F(ConfTest, InformationTextAndEject) {
    read(block("Bogus-Color", "descr: corner desk\n", "Test") + block("Ricoh_IS420", "", "Ricoh"));
    ScannerEntry *e = entry_of_ScannerList(list_.get(), 0);
    EXPECT_EQ(information_of_ScannerEntry(e),
              "Scanner Name:\tTest\nDevice:\t\tsim:Bogus-Color\nScanner Model:\tBogus-Color\nDescription:\tcorner desk");

    // The eject runs with the unload flag up, and the flag is put back.
    static bool seen = false;
    ScanDeviceInfo *dev = device_of_ScannerEntry(e);
    dev->ops.eject = [](ScanDeviceInfo *d) {
        seen = d->last_drawing;
        return scan_status(SCSI_MEDIUM_ERROR, STATUS_NO_MORE_PAPER);
    };
    EXPECT_EQ(eject_of_ScannerEntry(e), scan_status(SCSI_MEDIUM_ERROR, STATUS_NO_MORE_PAPER));
    EXPECT_TRUE(seen);
    EXPECT_FALSE(dev->last_drawing);
    EXPECT_EQ(eject_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1)), ScanStatus{}) << "a Ricoh has no eject";
}
