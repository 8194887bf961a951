// The production tree, exposures, the cel walk of the drawing selector and
// the record of processed cels.
#include <tuple>

#include "db_backend_fixture.h"
#include "suite/db/drawing_selection_data.h"

namespace {
QStringList rowNames(const std::vector<DrawingSelectorRow> &rows) {
    QStringList names;
    for (const auto &row : rows) names << row.name;
    return names;
}
}  // namespace

class DbProduction : public DbBackendTest {};

TEST_P(DbProduction, TreeHoldsWhatWasMadeAndRefusesDuplicates) {
    const LMV_element_data element = makeElement();
    ASSERT_GT(element.id, 0);
    const auto job = db_->findJob(QStringLiteral("J"));
    ASSERT_TRUE(job);
    EXPECT_FALSE(db_->createJob(QStringLiteral("J")));
    EXPECT_FALSE(db_->createJob(QString()));
    ASSERT_TRUE(db_->createJob(QStringLiteral("A"), 2));
    ASSERT_EQ(db_->jobs().size(), 2u);
    EXPECT_EQ(db_->jobs()[0].name, QStringLiteral("A"));  // by name
    EXPECT_EQ(db_->jobs()[0].pixelShape, 2);

    const auto scenes = db_->scenes(job->id);
    ASSERT_EQ(scenes.size(), 1u);
    EXPECT_EQ(std::tuple(scenes[0].jobName, scenes[0].version), std::tuple(QStringLiteral("J"), 1));
    EXPECT_FALSE(db_->createScene(job->id, QStringLiteral("S"), QStringLiteral("/x")));

    const auto elements = db_->elements(scenes[0].id);
    ASSERT_EQ(elements.size(), 1u);
    LMV_element_data e = elements[0];
    EXPECT_EQ(std::tuple(e.scanType, e.needsVectorization, TUDbAccess::field_chart_of_LMV_element_data(&e),
                         TUDbAccess::pf_of_LMV_element_data(&e), TUDbAccess::element_id_of_LMV_element_data(&e)),
              std::tuple(LMV_SCAN_BW, LMV_VECTORIZE, 16.0f, 24, element.id));
    EXPECT_EQ(db_->DBA_elementPathFromID(element.id), QStringLiteral("E"));
    EXPECT_FALSE(db_->DBA_elementFromID(element.id + 100));
    EXPECT_TRUE(db_->DBA_elementNameFromID(element.id + 100).isEmpty());

    EXPECT_FALSE(db_->createElement(scenes[0].id, e));  // the same name again
    e.name = QStringLiteral("odd");
    e.scanType = 7;
    EXPECT_FALSE(db_->createElement(scenes[0].id, e));
}

// Exposures keep their order, once each, and give each drawing a cel.
TEST_P(DbProduction, ExposuresKeepTheirOrderOnceAndGiveEachDrawingACel) {
    const LMV_element_data element = makeElement();
    ASSERT_TRUE(db_->createCel(element.id, QStringLiteral("2"), QString(), 0));
    EXPECT_EQ(db_->exposeDrawings(element.id, {"3", "1", "2", "3"}), 3);
    EXPECT_EQ(db_->exposeDrawings(element.id, {"1", "", "10"}), 1);
    const auto scene = db_->findScene(db_->findJob(QStringLiteral("J"))->id, QStringLiteral("S"));
    ASSERT_TRUE(scene);
    EXPECT_EQ(db_->dba_ExposedDrawings(&*scene, element.id), (QStringList{"3", "1", "2", "10"}));
    QStringList celNames;  // "2" had a cel already; the others got one each
    for (const auto &cel : db_->cels(element.id)) celNames << cel.drawingName();
    EXPECT_EQ(celNames, (QStringList{"2", "3", "1", "10"}));
    // The element of another scene exposes nothing here.
    dba_scene_struct other = *scene;
    other.id = scene->id + 1;
    EXPECT_TRUE(db_->dba_ExposedDrawings(&other, element.id).isEmpty());
    EXPECT_EQ(db_->exposeDrawings(element.id + 100, {"1"}), -1);
}

TEST_P(DbProduction, SelectorShowsExposedCelsWithSuffixesAndScanCounts) {
    const LMV_element_data element = makeElement();
    const auto scene = db_->findScene(db_->findJob(QStringLiteral("J"))->id, QStringLiteral("S"));
    ASSERT_TRUE(scene);
    // Cels without exposures: the selector shows nothing.
    ASSERT_TRUE(db_->createCel(element.id, QStringLiteral("1"), QString(), 0));
    ASSERT_TRUE(db_->createCel(element.id, QStringLiteral("5"), QStringLiteral("a"), 0));  // no versions: "5"
    ASSERT_TRUE(db_->createCel(element.id, QStringLiteral("7"), QStringLiteral("b"), 2));  // "7b"
    ASSERT_TRUE(db_->createCel(element.id, QStringLiteral("9"), QString(), 0));            // never exposed
    EXPECT_TRUE(drawingSelectorRows(*db_, &*scene, element.id).value().empty());

    ASSERT_GE(db_->exposeDrawings(element.id, {"1", "5", "5a", "7b", "12"}), 0);
    ASSERT_EQ(db_->dba_ProcessedCels(&*scene, QStringLiteral("E"), element.id, {"7b"}, 1, 0), 0);
    ASSERT_EQ(db_->dba_ProcessedCels(&*scene, QStringLiteral("E"), element.id, {"7b", "1"}, 1, 0), 0);

    const auto rows = drawingSelectorRows(*db_, &*scene, element.id).value();
    // "5a" is exposed but got a cel of its own named "5a"; "5" with suffix "a" and no versions is "5".
    EXPECT_EQ(rowNames(rows), (QStringList{"1", "5", "7b", "5a", "12"}));
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(std::tuple(rows[0].scanned, rows[1].scanned, rows[4].scanned, rows[2].scanCount), std::tuple(true, false, false, 2));
    // The walk left no lock behind: a write goes through.
    EXPECT_EQ(db_->exposeDrawings(element.id, {"13"}), 1);
}

TEST_P(DbProduction, ProcessedCelsCountsScansAndRecordsNewDrawingsAStageMarkDoesNot) {
    const LMV_element_data element = makeElement();
    ASSERT_EQ(db_->selectJob(QStringLiteral("J")), 0);
    ASSERT_EQ(db_->selectScene(QStringLiteral("S")), 0);
    const dba_scene_struct *scene = db_->openScene();
    ASSERT_NE(scene, nullptr);
    const qint64 version = scene->version;
    ASSERT_EQ(db_->exposeDrawings(element.id, {"1", "2"}), 2);

    ASSERT_EQ(db_->dba_ProcessedCels(scene, QStringLiteral("E"), element.id, {"1", "new"}, 1, 0), 0);
    ASSERT_EQ(db_->dba_ProcessedCels(scene, QStringLiteral("E"), element.id, {"1"}, 3, 2), 0);
    const auto cels = db_->cels(element.id);
    ASSERT_EQ(cels.size(), 3u);
    EXPECT_EQ(std::tuple(cels[0].scanCount, cels[0].processedStage, cels[0].processedStatus), std::tuple(2, 3, 2));
    EXPECT_EQ(cels[1].scanCount, 0);
    EXPECT_EQ(std::tuple(cels[2].name, cels[2].scanCount, cels[2].processedStage), std::tuple(QStringLiteral("new"), 1, 1));
    // A vectorized drawing is no new scan.
    ASSERT_EQ(db_->markCelStage(element.id, QStringLiteral("new"), DBA_CEL_VECTORIZED, 0), 0);
    ASSERT_EQ(db_->markCelStage(element.id, QStringLiteral("late"), DBA_CEL_VECTORIZED, 0), 0);
    EXPECT_EQ(db_->markCelStage(element.id + 100, QStringLiteral("1"), DBA_CEL_VECTORIZED, 0), -1);
    const auto marked = db_->cels(element.id);
    ASSERT_EQ(marked.size(), 4u);
    EXPECT_EQ(std::tuple(marked[2].scanCount, marked[2].processedStage), std::tuple(1, int(DBA_CEL_VECTORIZED)));
    EXPECT_EQ(std::tuple(marked[3].name, marked[3].scanCount, marked[3].processedStage),
              std::tuple(QStringLiteral("late"), 0, int(DBA_CEL_VECTORIZED)));
    // Each change of the scene's cels is a new scene version, seen by the open scene too.
    EXPECT_EQ(db_->openScene()->version, version + 4);
    // Another session sees the counts at once.
    auto other = open();
    ASSERT_TRUE(other);
    EXPECT_EQ(other->cels(element.id)[0].scanCount, 2);
    // The element must be the named one of that scene; nothing changes otherwise.
    dba_scene_struct wrong = *scene;
    wrong.id += 1;
    EXPECT_EQ(db_->dba_ProcessedCels(&wrong, QStringLiteral("E"), element.id, {"2"}, 1, 0), -1);
    EXPECT_EQ(db_->dba_ProcessedCels(scene, QStringLiteral("F"), element.id, {"2"}, 1, 0), -1);
    EXPECT_EQ(db_->dba_ProcessedCels(nullptr, QStringLiteral("E"), element.id, {"2"}, 1, 0), -1);
    EXPECT_EQ(db_->cels(element.id)[1].scanCount, 0);
}

TEST_P(DbProduction, CelWalkNeedsItsLockAndEndsWithZero) {
    const LMV_element_data element = makeElement();
    const auto scene = db_->findScene(db_->findJob(QStringLiteral("J"))->id, QStringLiteral("S"));
    ASSERT_TRUE(scene);
    ASSERT_EQ(db_->exposeDrawings(element.id, {"1", "2"}), 2);
    ASSERT_EQ(db_->dba_LockCelsDatabase(&*scene), 0);
    EXPECT_EQ(db_->dba_LockCelsDatabase(&*scene), -1);
    dba_celTable_struct table;
    QStringList names;
    for (qint64 cel = db_->dba_GetElementCels(&table, element.id); cel; cel = db_->dba_GetNextElementCel(&table, element.id))
        names << db_->dba_GetCelInfo(&*scene, cel, 0)->name;
    EXPECT_EQ(names, (QStringList{"1", "2"}));
    EXPECT_EQ(db_->dba_GetNextElementCel(&table, element.id), 0);
    EXPECT_FALSE(db_->dba_GetCelInfo(&*scene, 99999, 0));
    EXPECT_EQ(db_->dba_UnlockCelsDatabase(&*scene), 0);
    EXPECT_EQ(db_->dba_UnlockCelsDatabase(&*scene), -1);
}

DB_BACKEND_TESTS(DbProduction);
