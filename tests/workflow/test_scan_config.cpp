// The session record: what a new session selects, how scanner, depth and feed
// choices follow the scanner's capabilities, and what the window is told.
#include "session_fixture.h"

#include "scan/scanner_list.h"

namespace {

using Feed = SelectionButton;

class ConfigTest : public SessionTest {
protected:
    // A colour feeder first, then a flatbed that has no feeder at any depth.
    ScanConfig *startTwo() {
        return start(scannerBlock("Colour", "Bogus-Color") + scannerBlock("Flat", "Epson_836XL", {}, "/dev/null"));
    }
};

// Without a scanner of this machine the session starts only if the operator
// goes on, and then scans nothing.
TEST_F(ConfigTest, NoScannerQuestionDecidesWhetherTheSessionStarts) {
    window_.noScannerAnswer = NoScannerAnswer::ExitScanProgram;
    EXPECT_EQ(start("host: otherhost\nname: Elsewhere\ndevice: fieldchart\nmodel: Bogus-Color\n"), nullptr);
    window_.noScannerAnswer = NoScannerAnswer::Continue;
    ASSERT_NE(start(""), nullptr);
    EXPECT_EQ(window_.noScannerAsked, 2);
    EXPECT_EQ(scanner_kind_of_ScanConfig(config_), SCANNER_NONE);
    EXPECT_EQ(scanner_name_of_ScanConfig(config_), "Unknown scanner");
    list({"1"});
    EXPECT_FALSE(window_.buttonEnabled(SessionButton::Scan));
}

// The selected scanner chosen again keeps the settings; a scanner without a
// feeder at the depth selects Pegged; a feeder scanner ends pan cel mode.
TEST_F(ConfigTest, ChoosingAScannerKeepsOrAdaptsTheSettings) {
    ScanConfig *c = startTwo();
    set_dpi_of_ScanConfig(c, 300);
    EXPECT_EQ(summary_of_ScanConfig(c), "Colour, 300dpi, 12.0F, bottom, O/R");
    set_dpi_of_ScanConfig(c, 600);
    set_peg_side_of_ScanConfig(c, PEG_TOP);
    set_feed_of_ScanConfig(c, FEED_PEGGED_MANY);
    select_scanner_of_ScanConfig(c, 0);
    EXPECT_EQ(dpi_of_ScanConfig(c), 600u);
    EXPECT_EQ(peg_side_of_ScanConfig(c), PEG_TOP);
    EXPECT_FALSE(autofeed_of_ScanConfig(c));
    EXPECT_EQ(window_.marked(Feed::Dpi), 7);
    EXPECT_EQ(window_.marked(Feed::Peg), PEG_TOP);

    set_feed_of_ScanConfig(c, FEED_AUTOFEED);
    select_scanner_of_ScanConfig(c, 1);
    EXPECT_FALSE(autofeed_of_ScanConfig(c) || optical_of_ScanConfig(c));
    EXPECT_TRUE(one_drawing_of_ScanConfig(c));
    EXPECT_EQ(window_.marked(Feed::Feed), FEED_PEGGED);
    EXPECT_FALSE(window_.entryEnabled(Feed::Feed, FEED_AUTOFEED));
    EXPECT_FALSE(window_.entryEnabled(Feed::Feed, FEED_AUTOFEED_ONE));
    EXPECT_FALSE(window_.boxChecked(SessionCheckBox::OpticalRegistration));

    set_depth_of_ScanConfig(c, DEPTH_BW);
    set_field_of_ScanConfig(c, 16.0);
    set_peg_side_of_ScanConfig(c, PEG_LEFT);
    set_feed_of_ScanConfig(c, FEED_PANCEL);
    set_dpi_of_ScanConfig(c, 150);
    EXPECT_EQ(summary_of_ScanConfig(c), "B&W, 150dpi, 16.0F, left, pancel");
    const int rebuilds = window_.pancelRebuilds;
    select_scanner_of_ScanConfig(c, 0);
    EXPECT_FALSE(pancel_of_ScanConfig(c));
    EXPECT_GT(window_.pancelRebuilds, rebuilds);
    EXPECT_TRUE(autofeed_of_ScanConfig(c));
    EXPECT_EQ(window_.marked(Feed::Feed), FEED_AUTOFEED);
}

TEST_F(ConfigTest, FeedEntriesWriteTheirFlagsAndBadFlagsAreRepaired) {
    ScanConfig *c = startTwo();
    struct Row {
        int entry;
        bool autofeed, one, pancel;
    };
    for (const Row &r : {Row{FEED_AUTOFEED_ONE, true, true, false}, Row{FEED_PEGGED, false, true, false},
                         Row{FEED_PEGGED_MANY, false, false, false}, Row{FEED_PANCEL, false, true, true},
                         Row{FEED_AUTOFEED, true, false, false}}) {
        SCOPED_TRACE(r.entry);
        set_feed_of_ScanConfig(c, r.entry);
        EXPECT_EQ(autofeed_of_ScanConfig(c), r.autofeed);
        EXPECT_EQ(optical_of_ScanConfig(c), r.autofeed);
        EXPECT_EQ(one_drawing_of_ScanConfig(c), r.one);
        EXPECT_EQ(pancel_of_ScanConfig(c), r.pancel);
        EXPECT_EQ(window_.marked(Feed::Feed), r.entry);
    }
    // Autofeed in pan cel mode has no entry: an assertion, then Pegged.
    c->pancel = true;
    capture_.clear();
    refresh_feed_of_ScanConfig(c);
    EXPECT_FALSE(capture_.lines().empty());
    EXPECT_FALSE(autofeed_of_ScanConfig(c) || optical_of_ScanConfig(c) || pancel_of_ScanConfig(c));
    EXPECT_TRUE(one_drawing_of_ScanConfig(c));
    EXPECT_EQ(window_.marked(Feed::Feed), FEED_PEGGED);
}

TEST_F(ConfigTest, InterfaceStatesEnableTheirControls) {
    ScanConfig *c = startTwo();
    list({"1", "2"});
    set_stop_of_ScanConfig(c, true);
    SetInterfaceState(c, INTERFACE_SCANNING);
    EXPECT_FALSE(stop_of_ScanConfig(c)) << "leaving idle clears a stop pressed before";
    EXPECT_FALSE(window_.buttonEnabled(SessionButton::Scan) || window_.buttonEnabled(SessionButton::Stop));
    EXPECT_FALSE(window_.menuBarEnabled || window_.selectionButtonsEnabled);

    SetInterfaceState(c, INTERFACE_PREVIEW_DONE);
    EXPECT_TRUE(window_.buttonEnabled(SessionButton::Preview) && window_.buttonEnabled(SessionButton::Save));
    EXPECT_FALSE(window_.menuBarEnabled);

    SetInterfaceState(c, INTERFACE_IDLE);
    EXPECT_TRUE(window_.menuBarEnabled && window_.selectionButtonsEnabled);
    EXPECT_FALSE(window_.buttonEnabled(SessionButton::Save));
    EXPECT_EQ(interface_state_of_ScanConfig(c), INTERFACE_IDLE);
}

// Pencil Test needs the operator's yes; optical registration forbidden by the
// environment disables its box outside vectorizing elements.
TEST_F(ConfigTest, PencilTestAndOpticalBoxes) {
    ScanConfig *c = startTwo();
    window_.pencilTestAnswer = false;
    window_.boxesChecked[SessionCheckBox::PencilTest] = true;
    set_pencil_test_of_ScanConfig(c, true);
    EXPECT_FALSE(pencil_test_of_ScanConfig(c));
    EXPECT_FALSE(window_.boxChecked(SessionCheckBox::PencilTest));
    window_.pencilTestAnswer = true;
    set_pencil_test_of_ScanConfig(c, true);
    EXPECT_TRUE(pencil_test_of_ScanConfig(c));
    set_pencil_test_of_ScanConfig(c, false);
    EXPECT_EQ(window_.pencilTestAsked, 2);

    window_.boxesEnabled[SessionCheckBox::OpticalRegistration] = true;
    refresh_feed_of_ScanConfig(c);
    EXPECT_TRUE(window_.boxEnabled(SessionCheckBox::OpticalRegistration)) << "left as it stands";
    EXPECT_FALSE(window_.boxEnabled(SessionCheckBox::PencilTest));
    qputenv("LMV_FORBID_OPTICAL", "1");
    refresh_feed_of_ScanConfig(c);
    qunsetenv("LMV_FORBID_OPTICAL");
    EXPECT_FALSE(window_.boxEnabled(SessionCheckBox::OpticalRegistration));
}

}  // namespace
