#include <QDir>

#include <limits>

#include <gtest/gtest.h>

#include "conf_fixture.h"
#include "scan/scanner_list.h"
#include "suite/base/osw_util.h"

using Errors = std::vector<std::string>;

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
    EXPECT_EQ(entry_of_ScannerList(list_.get(), -1), nullptr);
}

TEST_F(ConfTest, CrLfLinesTabsAndTrimmedRestOfLineValues) {
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
}

TEST_F(ConfTest, KeywordsAreCaseSensitive) {
    read(block("Bogus-Color", "DefaultThreshold: 12\nNAME: other\nodd%2%1:\n"));
    const std::string p = path();
    EXPECT_EQ(errors(), (Errors{"Unknown keyword 'DefaultThreshold:' in file '" + p + "'.\n",
                                "Unknown keyword 'NAME:' in file '" + p + "'.\n",
                                "Unknown keyword 'odd%2%1:' in file '" + p + "'.\n"}));
    EXPECT_EQ(name_of_ScannerEntry(only()), "S");
}

TEST_F(ConfTest, RefusedModelLosesItsWholeBlockSilently) {
    read("host: station1\nname: Old\ndevice: x\nmodel: Fujitsu_M9999\ndefaultContrast: 999\nnonsense: 1\n"
         "host: station1\nname: New\ndevice: fieldchart\nmodel: Bogus-Color\n");
    EXPECT_EQ(errors(), Errors{"Model Fujitsu_M9999 Is Not A Supported Scanner."});
    EXPECT_EQ(name_of_ScannerEntry(only()), "New");
}

TEST_F(ConfTest, FloatChecksKeepOrReplaceTheValue) {
    // Numbers read as the C library reads them: a hexadecimal float, and
    // infinity for a value beyond the range.
    read(block("Bogus-Color", "defaultGamma: 0\npegPitch: -2\npegSideCleanSize: 0\nSide1CleanSize: 0x1.8p0\n"
                              "oppositeSideCleanSize: 1e999\nSide3CleanSize: -1\nxScaleAdjustment: 0\n"
                              "yScaleAdjustment: 1.01\nleftOffset: -0.5\n"));
    const std::string p = path();
    EXPECT_EQ(errors(), (Errors{"Config file " + p + ": defaultGamma should be > 0.0.\n",
                                "Config file " + p + ": pegPitch should be > 0.0.\n",
                                "Config file " + p + ": Side0CleanSize should be > 0.0.\n",
                                "Config file " + p + ": Side3CleanSize should be > 0.0.\n",
                                "Config file " + p + ": xscale should be > 0.0.\n",
                                "Config file " + p + ": leftOffset should be > 0.0.\n"}));
    ScannerEntry *e = only();
    EXPECT_FLOAT_EQ(defaultGamma_of_ScannerEntry(e), 0.0000000001f);
    EXPECT_FLOAT_EQ(pegPitch_of_ScannerEntry(e), -2.0f);  // reported, kept
    EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 0), 0.0f);
    EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 1), 1.5f);
    EXPECT_EQ(cleanSize_of_ScannerEntry(e, 2), std::numeric_limits<float>::infinity());
    EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 3), -1.0f);
    EXPECT_DOUBLE_EQ(xScaleAdjustment_of_ScannerEntry(e), 1.0);
    EXPECT_DOUBLE_EQ(yScaleAdjustment_of_ScannerEntry(e), 1.01);
    EXPECT_FLOAT_EQ(leftOffset_of_ScannerEntry(e), -0.5f);
    EXPECT_FLOAT_EQ(device_of_ScannerEntry(e)->leftOffset, -0.5f);
}

TEST_F(ConfTest, CleanSizeAliasesWriteTheSameSide) {
    read(block("Bogus-Color", "Side0CleanSize: 2\nSide2CleanSize: 4\n", "A") +
         block("Bogus-Color", "pegSideCleanSize: 2\noppositeSideCleanSize: 4\n", "B"));
    EXPECT_TRUE(errors().empty());
    for (int i = 0; i < 2; ++i) {
        ScannerEntry *e = entry_of_ScannerList(list_.get(), i);
        EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 0), 2.0f);
        EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 2), 4.0f);
        EXPECT_FLOAT_EQ(cleanSize_of_ScannerEntry(e, 1), 0.0f);
    }
}

TEST_F(ConfTest, RangeChecksReadThroughToTheModel) {
    read(block("Bogus-Color", "defaultContrast: -1\ndefaultBrightness: 256\ndefaultGammaMode: FF\n"
                              "defaultResolution: -1\n", "A") +
         block("Bogus-Color", "defaultContrast: 0\ndefaultBrightness: 255\ndefaultGammaMode: 100\n"
                              "defaultResolution: 0\n", "B"));
    const std::string p = path();
    EXPECT_EQ(errors(), (Errors{"Config file " + p + ": defaultContrast should be > 0 or less than 255.\n",
                                "Config file " + p + ": defaultBrightness should be > 0 or less than 255.\n",
                                "Config file " + p + ": defaultGammaMode should be > 0 or less than 255.\n",
                                "Config file " + p + ": defaultResolution should be > 0.\n"}));
    ScannerEntry *a = entry_of_ScannerList(list_.get(), 0);
    EXPECT_EQ(defaultContrast_of_ScannerEntry(a), 0);
    EXPECT_EQ(defaultBrightness_of_ScannerEntry(a), 0);
    EXPECT_EQ(defaultGammaMode_of_ScannerEntry(a), 0xFF);
    EXPECT_EQ(device_of_ScannerEntry(a)->default_gamma_mode, 0xFF);  // the setter writes through
    // -1 took the record's fresh 300 at the merge, above this model's highest.
    EXPECT_EQ(defaultResolution_of_ScannerEntry(a), 200);
    ScannerEntry *b = entry_of_ScannerList(list_.get(), 1);
    EXPECT_EQ(defaultContrast_of_ScannerEntry(b), 0);
    EXPECT_EQ(defaultBrightness_of_ScannerEntry(b), 255);
    EXPECT_EQ(defaultGammaMode_of_ScannerEntry(b), 0);  // 0x100 refused
    EXPECT_EQ(device_of_ScannerEntry(b)->default_gamma_mode, 0);
}

TEST_F(ConfTest, WaitBetweenDrawingsIsHexadecimalUpTo1000) {
    read(block("Bogus-Color", "WaitBetweenDrawings: 3E8\n", "A") + block("Bogus-Color", "WaitBetweenDrawings: 3E9\n", "B") +
         block("Bogus-Color", "WaitBetweenDrawings: 1000\n", "C") + block("Bogus-Color", "WaitBetweenDrawings: -1\n", "D"));
    const std::string msg = "Config file " + path() + ": WaitBetweenDrawings should be >= 0 or less than 1000. \n";
    EXPECT_EQ(errors(), (Errors{msg, msg, msg}));
    EXPECT_EQ(WaitBetweenDrawings_of_ScannerEntry(entry_of_ScannerList(list_.get(), 0)), 1000);
    for (int i = 1; i < 4; ++i) EXPECT_EQ(WaitBetweenDrawings_of_ScannerEntry(entry_of_ScannerList(list_.get(), i)), 0);
}

TEST_F(ConfTest, EnumeratedValuesAreExactWords) {
    read(block("Bogus-Color", "defaultPegSide: bottom\ndefaultPegSide: Left\ndefaultPegSide: top\n"
                              "registrationStrictness: Loose\nregistrationStrictness: strict\n"));
    EXPECT_EQ(errors(), (Errors{"Unknown defaultPegSide value 'bottom'\n", "Unknown defaultPegSide value 'top'\n",
                                "Unknown registrationStrictness value 'strict'\n"}));
    EXPECT_EQ(defaultPegSide_of_ScannerEntry(only()), PEG_LEFT);
    EXPECT_EQ(registrationStrictness_of_ScannerEntry(only()), REGISTRATION_LOOSE);
    // A refused word keeps what was there: the fresh bottom, and no strictness stated.
    read(block("Bogus-Color", "defaultPegSide: bottom\n"));
    EXPECT_EQ(defaultPegSide_of_ScannerEntry(only()), PEG_BOTTOM);
    EXPECT_EQ(registrationStrictness_of_ScannerEntry(only()), REGISTRATION_NOT_STATED);
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

TEST_F(ConfTest, TwainBlockNeedsOnlyItsModel) {
    read("host: station1\nmodel: TWAIN\n");
    EXPECT_TRUE(errors().empty());
    ScannerEntry *e = only();
    EXPECT_EQ(name_of_ScannerEntry(e), "TWAIN");
    EXPECT_EQ(deviceName_of_ScannerEntry(e), "sc0;d0;l0");
    EXPECT_TRUE(forceAllResolutions_of_ScannerEntry(e));
    const ScanDeviceInfo *dev = device_of_ScannerEntry(e);
    EXPECT_EQ(dev->min_resolution, 72);
    EXPECT_EQ(dev->max_resolution, 600);
    EXPECT_EQ(defaultResolution_of_ScannerEntry(e), 300);
    for (bool step : dev->resolution_steps) EXPECT_TRUE(step);
}

TEST_F(ConfTest, MissingFieldsAreAllReportedAndTheRecordStaysUnfinished) {
    read("host: station1\ndescr: nothing else\nhost: station1\nname: N\ndefaultThreshold: 300\n");
    const std::string p = path();
    EXPECT_EQ(errors(), (Errors{"In file '" + p + "', missing name.\n", "In file '" + p + "', missing device.\n",
                                "In file '" + p + "', missing model.\n", "In file '" + p + "', missing device.\n",
                                "In file '" + p + "', missing model.\n"}));
    ASSERT_EQ(count_of_ScannerList(list_.get()), 2);
    const ScanDeviceInfo *dev = device_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1));
    EXPECT_EQ(dev->name, "(None Selected)");  // nothing was copied
    EXPECT_EQ(dev->default_threshold, -1);
}

TEST_F(ConfTest, DefaultsMergeWithTheDeviceBothWays) {
    read(block("Sharp_JX-610", "defaultGamma: 2.5\ndefaultBlackPoint: 30\n"));
    ScannerEntry *e = only();
    ScanDeviceInfo *dev = device_of_ScannerEntry(e);
    EXPECT_FLOAT_EQ(dev->default_gamma, 2.5f);
    EXPECT_EQ(dev->default_black_point, 30);
    EXPECT_EQ(defaultBlackPoint_of_ScannerEntry(e), 30);
    EXPECT_EQ(dev->grey_parameters.black_point_default, 30);
    // Not stated: the model's default reads through.
    EXPECT_EQ(e->defaultWhitePoint, -1);
    EXPECT_EQ(defaultWhitePoint_of_ScannerEntry(e), 235);
    EXPECT_EQ(dev->gamma_file, "(None)");  // Sharp is one of the gamma file models
}

TEST_F(ConfTest, GammaFileIsGivenOnlyToItsModels) {
    read(block("Epson_836XL", "gammaFile: /studio/g.txt\n", "A") + block("Bogus-Color", "gammaFile: /studio/g.txt\n", "B"));
    EXPECT_EQ(device_of_ScannerEntry(entry_of_ScannerList(list_.get(), 0))->gamma_file, "/studio/g.txt");
    EXPECT_EQ(device_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1))->gamma_file, "(None)");
    EXPECT_EQ(gammaFile_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1)), "/studio/g.txt");
}

TEST_F(ConfTest, LongLinesAreReadInPiecesOf4999Bytes) {
    // The rest of an over-long line is read as a line of its own.
    read(block("Bogus-Color", "descr: " + std::string(4992, 'x') + "defaultThreshold: 7\n"));
    EXPECT_TRUE(errors().empty());
    EXPECT_EQ(descr_of_ScannerEntry(only()).size(), 4992);
    EXPECT_EQ(defaultThreshold_of_ScannerEntry(only()), 7);
}

TEST_F(ConfTest, UnreadableFilesAndHosts) {
    list_ = read_ScannerList(dir_.filePath("absent.conf"), true, QStringLiteral("station1"));
    EXPECT_EQ(capture_.errors(), Errors{"Failed to open config file: " + dir_.filePath("absent.conf").toStdString()});
    EXPECT_EQ(count_of_ScannerList(list_.get()), 0);
    EXPECT_EQ(host_of_ScannerList(list_.get()), "station1");

    // A directory opens but cannot be read.
    capture_.clear();
    list_ = read_ScannerList(dir_.path(), true, QStringLiteral("station1"));
    EXPECT_EQ(capture_.errors(), Errors{"Error detected while reading config file: " + dir_.path().toStdString()});
    EXPECT_EQ(count_of_ScannerList(list_.get()), 0);
}

TEST_F(ConfTest, TheMachinesOwnNameIsTheDefaultHost) {
    QString me;
    ASSERT_TRUE(oswUtil::getShortMachineName(me));
    const std::string text = "host: " + me.toUpper().toStdString() + "\nname: T\ndevice: fieldchart\nmodel: Bogus-Color\n";
    read(text);  // as station1: not ours
    EXPECT_EQ(count_of_ScannerList(list_.get()), 0);
    list_ = read_ScannerList(path_, true);
    EXPECT_EQ(host_of_ScannerList(list_.get()), me);
    EXPECT_EQ(count_of_ScannerList(list_.get()), 1);
}

TEST_F(ConfTest, FindByNameAndTakeTwain) {
    read(block("Bogus-Color", "", "Scan") + "host: station1\nmodel: TWAIN\n" + block("Bogus-B&W", "", "Scanner"));
    int32_t index = 7;
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "Scanner", &index), entry_of_ScannerList(list_.get(), 2));
    EXPECT_EQ(index, 2);
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "scanner", &index), nullptr);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(find_by_name_of_ScannerList(list_.get(), "Sca", &index), nullptr);

    ScannerEntry *twain = entry_of_ScannerList(list_.get(), 1);
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
    ScannerEntry *mono = entry_of_ScannerList(list_.get(), 0);
    ScannerEntry *colour = entry_of_ScannerList(list_.get(), 1);
    EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), mono, SCANTYPE_BW), mono);
    EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), mono, SCANTYPE_GREY), mono);
    EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), mono, SCANTYPE_COLOUR), colour);
    EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), colour, SCANTYPE_COLOUR), colour);
    EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), mono, SCANTYPE_NEVER), nullptr);
    EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), mono, SCANTYPE_NONE), nullptr);
    EXPECT_EQ(best_for_scan_type_of_ScannerList(list_.get(), nullptr, SCANTYPE_BW), nullptr);

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

    // A Ricoh has no eject: success.
    EXPECT_EQ(eject_of_ScannerEntry(entry_of_ScannerList(list_.get(), 1)), ScanStatus{});
}

TEST(ScannerEntry, NullRecords) {
    EXPECT_EQ(defaultThreshold_of_ScannerEntry(nullptr), -1);
    EXPECT_EQ(device_of_ScannerEntry(nullptr), nullptr);
    EXPECT_EQ(count_of_ScannerList(nullptr), 0);
    EXPECT_EQ(eject_of_ScannerEntry(nullptr).code, STATUS_INTERNAL_ERROR);
}
