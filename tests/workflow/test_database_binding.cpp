// The session bound to an element of the production database: building the
// binding and its list, and the step after each saved drawing (cel marks, the
// vectorize queue, its option line and its failures), on a database in memory.
#include "session_fixture.h"

#include <tuple>

#include "fake_db_access.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_list.h"
#include "workflow/dbinfo.h"
#include "workflow/scan_procs.h"
#include "workflow/vectorize_queue_state.h"

namespace {

class BindingTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        vectorize_queue_state() = VectorizeQueueState{};
        wasDebug_ = TUMessage::instance()->isDebugMode();
        TUMessage::instance()->setDebugMode(true);  // the step's traces are debug lines
        db_.scene.path = dir_.path();
        window_.databaseAccess = &db_;
        window_.manualList = false;
    }
    void TearDown() override {
        TUMessage::instance()->setDebugMode(wasDebug_);
        vectorize_queue_state() = VectorizeQueueState{};
        SessionTest::TearDown();
    }

    // The colour test scanner at 72 dpi, pegged many, bound to the element
    // with a list of `names`; `more` adds lines to the scanner's block.
    ScanConfig *bound(const QStringList &names, const std::string &more = {}) {
        ScanConfig *c = start(scannerBlock("Test", "Bogus-Color", more));
        set_dpi_of_ScanConfig(c, 72);
        set_feed_of_ScanConfig(c, FEED_PEGGED_MANY);
        set_optical_of_ScanConfig(c, false);
        QDir(dir_.path()).mkdir(QStringLiteral("E"));
        EXPECT_TRUE(bind_element_of_ScanConfig(c, db_.element.id, names));
        return c;
    }
    // The step for the current row, as SaveScan runs it.
    int32_t update() { return UpdateDrawingDatabase(config_); }
    void moveTo(int row) { window_.list.setCurrentRow(row); }
    bool traced(const std::string &text) const {
        const auto t = capture_.texts('D');
        return std::find(t.begin(), t.end(), text) != t.end();
    }

    FakeDbAccess db_;
    bool wasDebug_ = false;
};

// Without its folder the element is not bound and the old list stays; with
// it the list is built in the selector's order, in database mode.
TEST_F(BindingTest, BindingAnElementBuildsItsListInDatabaseMode) {
    ScanConfig *c = start(scannerBlock("Test", "Bogus-Color"));
    list({"9"});
    EXPECT_FALSE(bind_element_of_ScanConfig(c, db_.element.id, {"1", "2"}));
    EXPECT_FALSE(binding_of_ScanConfig(c)->open || database_of_ScanConfig(c));
    EXPECT_TRUE(capture_.contains(("The directory \n " + dir_.path() + "/E \n was not found\n\n You may need to "
                                   "notify a System Administrator\n to correct this problem.")
                                      .toStdString()));
    EXPECT_EQ(rowText(0), "9") << "the old list stays";

    ASSERT_TRUE(QDir(dir_.path()).mkdir(QStringLiteral("E")));
    ASSERT_TRUE(bind_element_of_ScanConfig(c, db_.element.id, {"3", "1", "2a"}));
    const DatabaseBinding *b = binding_of_ScanConfig(c);
    EXPECT_TRUE(b->open);
    EXPECT_EQ(name_of_DatabaseBinding(b), "E");
    EXPECT_EQ(path_of_DatabaseBinding(b), dir_.path() + "/E");
    EXPECT_EQ(pf_of_DatabaseBinding(b), 4);
    EXPECT_TRUE(needs_vectorization_of_DatabaseBinding(b));
    EXPECT_TRUE(database_of_ScanConfig(c));
    EXPECT_EQ(pixel_shape_of_ScanConfig(c), 3) << "from the open job";
    EXPECT_EQ(depth_of_ScanConfig(c), DEPTH_COLOUR) << "a colour element";
    EXPECT_DOUBLE_EQ(field_of_ScanConfig(c), 16.0) << "the element's field chart";
    EXPECT_EQ(window_.title, "Scan: Studio -> Job -> scene S1 -> element E");
    ASSERT_EQ(window_.list.rowCount(), 3);
    EXPECT_EQ(rowText(0), "3");
    EXPECT_EQ(rowText(2), "2a");
}

TEST_F(BindingTest, AnElementWithoutVectorizationIsMarkedButNeverQueued) {
    db_.element.needsVectorization = LMV_VECTORIZE_NONE;
    bound({"1", "2"});
    moveTo(1);
    EXPECT_EQ(update(), SCAN_DONE);
    ASSERT_EQ(db_.processed.size(), 1u);
    const FakeDbAccess::ProcessedCall &p = db_.processed[0];
    EXPECT_EQ(std::tie(p.scene, p.elementName, p.elementId, p.cels, p.stage, p.status),
              std::tuple(&db_.scene, "E", 4001, QStringList{"2"}, 1, 0));
    EXPECT_TRUE(db_.opened.isEmpty());
    EXPECT_TRUE(db_.added.empty());
    EXPECT_TRUE(traced("Vectorize not needed."));

    // A closed binding does nothing at all.
    ScanConfigDestroy(config_);
    start(scannerBlock("Test", "Bogus-Color"));
    list({"1"});
    ASSERT_FALSE(binding_of_ScanConfig(config_)->open);
    EXPECT_EQ(update(), SCAN_DONE);
    EXPECT_EQ(db_.processed.size(), 1u);
}

TEST_F(BindingTest, TheEntryCarriesTheDrawingAndItsSceneForVectorizeOrPix2vec) {
    bound({"1", "7b"});
    moveTo(1);
    EXPECT_EQ(update(), SCAN_DONE);
    ASSERT_EQ(db_.added.size(), 1u);
    const dba_queueEntry_struct &e = db_.added[0];
    EXPECT_EQ(std::tie(e.queue, e.active, e.jobName, e.sceneName, e.elementName, e.elementId, e.drawing),
              std::tuple(db_.addedTo[0], 1, "Job", "S1", "E", 4001, "7b"));
    EXPECT_EQ(std::tie(e.sceneId, e.scene, e.sceneVersion, e.process), std::tuple(31, &db_.scene, 5, DBA_PROCESS_VECTORIZE));
    EXPECT_EQ(e.options, "") << "no pencil test, no calibration, no style";
    EXPECT_TRUE(traced("Process 7b with Vectorize."));
    EXPECT_TRUE(traced("Placed 7b on the Vectorize queue."));

    // Any other vectorize kind goes to pix2vec.
    ScanConfigDestroy(config_);
    db_.element.needsVectorization = 3;
    bound({"1"});
    EXPECT_EQ(update(), SCAN_DONE);
    ASSERT_EQ(db_.added.size(), 2u);
    EXPECT_EQ(db_.added[1].process, DBA_PROCESS_PIX2VEC);
    EXPECT_TRUE(traced("Process 1 with Pix2vec."));
}

// The line names pencil test and a real calibration only, then the chosen
// style's line.
TEST_F(BindingTest, TheOptionLineOfAnEntry) {
    const struct Case { const char *adjust; bool pencil; const char *style, *options; } cases[] = {
        {"xScaleAdjustment: 1.0\nyScaleAdjustment: 1.0\n", false, "", ""},
        {"xScaleAdjustment: 1.000004\n", false, "", ""},  // within the tolerance
        {"xScaleAdjustment: 1.25\n", false, "", "-scanner_calibrate 1.25 1 "},
        {"yScaleAdjustment: 0.99998\n", false, "", "-scanner_calibrate 1 0.99998 "},
        {"xScaleAdjustment: 1.0123456789\n", true, "", "-no_color_art -scanner_calibrate 1.01235 1 "},
        {"xScaleAdjustment: 1.5\n", true, "-smooth 3 -gap 2", "-no_color_art -scanner_calibrate 1.5 1 -smooth 3 -gap 2"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.adjust);
        window_.styleLine = QString::fromUtf8(c.style);
        bound({"1"}, c.adjust)->pencil_test = c.pencil;
        db_.added.clear();
        EXPECT_EQ(update(), SCAN_DONE);
        ASSERT_EQ(db_.added.size(), 1u);
        EXPECT_EQ(db_.added[0].options.toStdString(), c.options);
        ScanConfigDestroy(config_);
        config_ = nullptr;
    }
}

// A queue that will not open fails the drawing after its cel is marked, and
// the next drawing tries again; once open, the queue stays open until the
// environment changes.
TEST_F(BindingTest, TheQueueOpensOncePerEnvironment) {
    db_.failOpen = true;
    ScanConfig *c = bound({"1", "2", "3"});
    EXPECT_EQ(update(), SCAN_QUEUE_FAILED);
    EXPECT_EQ(capture_.errors(), std::vector<std::string>{"Unable to open the vectorize queue."});
    EXPECT_TRUE(finish_of_ScanConfig(c));
    EXPECT_EQ(db_.processed.size(), 1u);

    db_.failOpen = false;
    EXPECT_EQ(update(), SCAN_DONE);
    moveTo(1);
    EXPECT_EQ(update(), SCAN_DONE);
    EXPECT_EQ(db_.opened, (QStringList{"Studio", "Studio"})) << "the second drawing reuses the queue";
    EXPECT_EQ(db_.closes, 0);
    ASSERT_EQ(db_.added.size(), 2u);
    EXPECT_EQ(db_.addedTo[0], db_.addedTo[1]);

    db_.environment = QStringLiteral("Other");
    moveTo(2);
    EXPECT_EQ(update(), SCAN_DONE);
    EXPECT_EQ(db_.closes, 1) << "the old queue closes first";
    EXPECT_EQ(db_.opened, (QStringList{"Studio", "Studio", "Other"}));
    EXPECT_EQ(vectorize_queue_state().environment, "Other");
    EXPECT_EQ(db_.added.back().drawing, "3");
}

TEST_F(BindingTest, AFailedAddEndsTheListWithTheFileSavedAndTheRowUnmarked) {
    db_.failAdd = true;
    ScanConfig *c = bound({"1", "2"});
    ScanDrawingList(c);
    EXPECT_TRUE(exists("E/E-1.tif")) << "the file stays";
    EXPECT_EQ(state_of_DrawingList(drawing_list_of_ScanConfig(c), 0), ROW_NONE);
    EXPECT_EQ(rowText(0), "1");
    EXPECT_FALSE(exists("E/E-2.tif")) << "the list ends";
    EXPECT_EQ(db_.closes, 1);
    EXPECT_EQ(vectorize_queue_state().queue, nullptr);
    EXPECT_EQ(capture_.errors(), (std::vector<std::string>{"Error adding 1 to the Vectorize queue.",
                                                            "Failed to add the drawing to the Vectorize queue."}));

    // With the queue fixed the next scan opens it again and marks its row.
    db_.failAdd = false;
    ScanDrawingList(c);
    EXPECT_EQ(db_.opened.size(), 2);
    EXPECT_EQ(state_of_DrawingList(drawing_list_of_ScanConfig(c), 0), ROW_SCANNED);
    ASSERT_EQ(db_.added.size(), 2u);
    EXPECT_EQ(db_.added[1].drawing, "2");
}

}  // namespace
