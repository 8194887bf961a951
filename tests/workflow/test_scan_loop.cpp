// The scan loop on the test scanner: whole lists in each feed mode, the
// operator's answers, stops, previews, skips and failed saves.
#include "session_fixture.h"

#include <algorithm>

#include "scan/drawing.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_list.h"
#include "scan/vector_scaninfo.h"
#include "workflow/dbinfo.h"
#include "workflow/scan_procs.h"

namespace {

// Device operations that a test puts in place of the driver's, counting calls.
struct FakeOps {
    static inline int reads = 0, aborts = 0, polls = 0;
    static inline ScanDrawingOp realRead = nullptr;
    static ScanStatus busy(ScanDeviceInfo *) {
        ++polls;
        return scan_status(SCSI_GOOD, STATUS_BUSY);
    }
    static ScanStatus abort(ScanDeviceInfo *) {
        ++aborts;
        return {};
    }
    static ScanStatus read(ScanDeviceInfo *dev, Drawing *d) {
        ++reads;
        return realRead(dev, d);
    }
};

class LoopTest : public SessionTest {
protected:
    // The colour test scanner at a small resolution, pegged many, on a list.
    ScanConfig *startColour(const QStringList &names, int feed = FEED_PEGGED_MANY) {
        ScanConfig *c = start(scannerBlock("Test", "Bogus-Color"));
        set_dpi_of_ScanConfig(c, 72);
        set_feed_of_ScanConfig(c, feed);
        set_optical_of_ScanConfig(c, false);
        list(names);
        return c;
    }
    ScanDeviceInfo *device() { return device_of_ScannerEntry(scanner_of_ScanConfig(config_)); }
    QString summary72(const char *peg = "bottom") const {
        return QStringLiteral("Colour, 72dpi, 12.0F, %1").arg(peg);
    }
};

TEST_F(LoopTest, PeggedManyScansTheWholeListToFilesWithScanInformation) {
    ScanConfig *c = startColour({"1", "2", "7b"});
    set_create_scaninfo_of_ScanConfig(c, true);
    set_peg_side_of_ScanConfig(c, PEG_LEFT);
    ScanDrawingList(c);
    for (const char *name : {"1", "2", "7b"}) {
        EXPECT_TRUE(exists(QStringLiteral("T-%1.tif").arg(name))) << name;
        EXPECT_TRUE(exists(QStringLiteral("T-%1.si").arg(name))) << name;
    }
    EXPECT_EQ(rowText(2), "7b (Scanned) " + summary72("left"));
    EXPECT_EQ(current_row_of_DrawingList(drawing_list_of_ScanConfig(c)), 0) << "wraps after the last row";
    EXPECT_FALSE(window_.buttonEnabled(SessionButton::Save));
    EXPECT_EQ(window_.lastScanned, "Last Scanned: T-7b");
    EXPECT_EQ(interface_state_of_ScanConfig(c), INTERFACE_IDLE);
    // Each drawing's settings reach the log, debug mode or not.
    const std::vector<std::string> logged = capture_.texts('I');
    EXPECT_EQ(std::count(logged.begin(), logged.end(),
                         "OPTIONS Test <Bogus-Color>, Colour:2, 72 dpi, 12.0 field, OP:0, pegSide:1 pancelMode:0"),
              3);
}

TEST_F(LoopTest, PeggedScansOneDrawingPerPress) {
    ScanConfig *c = startColour({"1", "2"}, FEED_PEGGED);
    ScanDrawingList(c);
    EXPECT_TRUE(exists("T-1.tif"));
    EXPECT_FALSE(exists("T-2.tif"));
    EXPECT_EQ(current_row_of_DrawingList(drawing_list_of_ScanConfig(c)), 1);
    EXPECT_TRUE(device()->last_drawing) << "one drawing per press is the device's final page";
}

// Stop Immediately while the scanner works aborts it without reading.
TEST_F(LoopTest, StopImmediatelyWhileTheScannerWorksAbortsWithoutReading) {
    ScanConfig *c = startColour({"1", "2"});
    FakeOps::reads = FakeOps::aborts = FakeOps::polls = 0;
    FakeOps::realRead = device()->ops.read;
    device()->ops.poll = FakeOps::busy;
    device()->ops.abort = FakeOps::abort;
    device()->ops.read = FakeOps::read;
    window_.onProcessEvents = [c](int) {
        if (FakeOps::polls == 3 && FakeOps::aborts == 0) AskStopScanning(c);
    };
    ScanDrawingList(c);
    EXPECT_EQ(window_.stopAsked, 1);
    EXPECT_EQ(FakeOps::aborts, 1);
    EXPECT_EQ(FakeOps::reads, 0);
    EXPECT_EQ(rowText(0), "1");
    EXPECT_FALSE(exists("T-1.tif"));
    EXPECT_EQ(drawing_of_ScanConfig(c), nullptr);
}

TEST_F(LoopTest, PreviewNeitherSavesNorAdvancesUntilSave) {
    ScanConfig *c = startColour({"1", "2"});
    set_trial_of_ScanConfig(c, true);
    ScanDrawingList(c);
    EXPECT_NE(drawing_of_ScanConfig(c), nullptr);
    EXPECT_FALSE(exists("T-1.tif"));
    EXPECT_EQ(rowText(0), "1");
    EXPECT_EQ(current_row_of_DrawingList(drawing_list_of_ScanConfig(c)), 0);
    EXPECT_TRUE(window_.buttonEnabled(SessionButton::Save));

    EXPECT_EQ(SaveScan(c), SCAN_DONE);
    EXPECT_TRUE(exists("T-1.tif"));
    EXPECT_EQ(current_row_of_DrawingList(drawing_list_of_ScanConfig(c)), 1);
    capture_.clear();
    EXPECT_EQ(SaveScan(c), SCAN_INTERNAL) << "the drawing is saved already";
}

TEST_F(LoopTest, SaveIntoAMissingFolderReportsAndEndsTheList) {
    window_.manualPath = dir_.filePath("missing");
    ScanConfig *c = startColour({"1", "2"});
    ScanDrawingList(c);
    EXPECT_TRUE(capture_.contains("Error saving scan.\nCheck for a full disk and the permissions on the path."));
    EXPECT_EQ(rowText(0), "1");
    EXPECT_EQ(rowText(1), "2");
    EXPECT_TRUE(finish_of_ScanConfig(c));
    EXPECT_EQ(interface_state_of_ScanConfig(c), INTERFACE_IDLE);
}

TEST_F(LoopTest, MechanicalRegistrationPlacesThePegsBySide) {
    ScanConfig *c = startColour({"1"}, FEED_PEGGED);
    set_field_of_ScanConfig(c, 16.0);
    set_dpi_of_ScanConfig(c, 100);
    for (int side : {PEG_LEFT, PEG_TOP, PEG_RIGHT, PEG_BOTTOM}) {
        set_peg_side_of_ScanConfig(c, side);
        set_trial_of_ScanConfig(c, true);
        ScanDrawingList(c);
        Drawing *d = drawing_of_ScanConfig(c);
        ASSERT_NE(d, nullptr);
        const LMV_scaninfo *si = scaninfo_of_Drawing(d);
        const int w = width_of_pixmap(pixmap_of_Drawing(d)), h = height_of_pixmap(pixmap_of_Drawing(d));
        const double along = 100 * 6.75;  // field 16: the pegs 6.75 inches off the middle
        const double expected[5][2] = {
            {0, 0}, {-(along - w / 2), 800}, {800, -(along - h / 2)}, {along - w / 2 + w, 800}, {800, along - h / 2 + h}};
        EXPECT_FLOAT_EQ(si->rotation_center_x, float(expected[side][0])) << side;
        EXPECT_FLOAT_EQ(si->rotation_center_y, float(expected[side][1])) << side;
        EXPECT_EQ(si->rotation_angle, 0.0f);
    }
}

TEST_F(LoopTest, AnImageFromOutsideTakesTheSameRoadToItsFile) {
    ScanConfig *c = startColour({"1", "2"});
    EXPECT_EQ(addScanToDrawing(c, create_pixmap(PIXMAP_MATTE8, 144, 72), DEPTH_GREY, true), SCAN_DONE);
    Drawing *d = drawing_of_ScanConfig(c);
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(file_format_of_Drawing(d), 2) << "the image's depth chooses the file";
    EXPECT_EQ(scan_depth_of_Drawing(d), DEPTH_COLOUR) << "the session's depth is recorded";
    EXPECT_DOUBLE_EQ(window_xres_inches_of_Drawing(d), 2.0);
    EXPECT_EQ(threshold_of_Drawing(d), -1);
    EXPECT_TRUE(exists("T-1.tif"));
    EXPECT_EQ(rowText(0), "1 (Scanned) " + summary72());

    // An element this station cannot scan refuses every depth.
    c->database = true;
    c->binding->scan_type = SCANTYPE_NEVER;
    for (int depth : {DEPTH_BW, DEPTH_GREY, DEPTH_COLOUR})
        EXPECT_EQ(addScanToDrawing(c, create_pixmap(PIXMAP_RGBA8, 8, 8), depth, true), SCAN_WRONG_COLOUR_MODE);
    EXPECT_EQ(drawing_of_ScanConfig(c), d);
}

}  // namespace
