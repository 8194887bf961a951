// The drawing list: its rows against the window's view, marks, the walk
// through the rows, and the lists a session builds.
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "suite/base/osw_util.h"
#include "support/message_capture.h"
#include "workflow/config.h"
#include "workflow/drawing_list.h"
#include "workflow/manual_list_syntax.h"
#include "workflow/scripted_window.h"

namespace {

int assertions(const MessageCapture &capture) {
    const auto logs = capture.texts('I');
    return static_cast<int>(std::count_if(logs.begin(), logs.end(), [](const std::string &line) {
        return line.find("Internal assertion error detected") != std::string::npos;
    }));
}

QStringList view_rows(const DrawingListView &view) {
    QStringList rows;
    for (int r = 0; r < view.rowCount(); ++r) rows.append(view.rowText(r));
    return rows;
}

QStringList names_of(const DrawingList *list) {
    QStringList names;
    for (int r = 0; r < count_of_DrawingList(list); ++r) names.append(name_of_DrawingList(list, r));
    return names;
}

}  // namespace

inline void PrintTo(const QStringList &list, std::ostream *os) { *os << '"' << list.join("|").toStdString() << '"'; }

// ---- the list on its own ------------------------------------------------------------------

class DrawingListRows : public ::testing::Test {
protected:
    void fill(std::initializer_list<const char *> names) {
        for (const char *n : names) add_of_DrawingList(&list, QString::fromUtf8(n));
    }
    ScriptedListView view;
    DrawingList list{&view};
    MessageCapture capture;
};

// Rows follow the view; an empty name, a row past the end, a row written
// behind the list's back and a list with nothing current are assertions.
TEST_F(DrawingListRows, AddedRowsMatchTheViewAndMisusesAreAssertions) {
    fill({"a", "b"});
    add_of_DrawingList(&list, QString());
    EXPECT_EQ(count_of_DrawingList(&list), 2);
    EXPECT_EQ(view_rows(view), (QStringList{"a", "b"}));
    EXPECT_EQ(state_of_DrawingList(&list, 1), ROW_NONE);
    EXPECT_EQ(count_of_DrawingList(nullptr), 0);
    EXPECT_EQ(name_of_DrawingList(&list, 2), QString());
    EXPECT_EQ(name_of_DrawingList(&list, -1), QString());
    EXPECT_EQ(current_row_of_DrawingList(&list), -1);
    EXPECT_EQ(assertions(capture), 4);
    view.appendRow("stray");
    EXPECT_EQ(count_of_DrawingList(&list), 2);
    EXPECT_EQ(assertions(capture), 5);
}

TEST_F(DrawingListRows, MarkShowsStateAndTheLastSummary) {
    fill({"12", "13"});
    view.setCurrentRow(1);
    mark_of_DrawingList(&list, 1, ROW_SCANNED, "B&W, 200dpi, 12.0F, bottom");
    EXPECT_EQ(text_of_DrawingList(&list, 1), "13 (Scanned) B&W, 200dpi, 12.0F, bottom");
    EXPECT_EQ(view.rowText(1), "13 (Scanned) B&W, 200dpi, 12.0F, bottom");
    EXPECT_EQ(view.rowText(0), "12");
    // Scanned again: the summary of the last scan.
    mark_of_DrawingList(&list, 1, ROW_SCANNED, "Grey, 300dpi, 16.0F, top, O/R");
    EXPECT_EQ(view.rowText(1), "13 (Scanned) Grey, 300dpi, 16.0F, top, O/R");
    EXPECT_EQ(state_of_DrawingList(&list, 1), ROW_SCANNED);

    mark_of_DrawingList(&list, 1, ROW_NOT_SCANNED, QString());
    EXPECT_EQ(view.rowText(1), "13 (Not Scanned)");
    // A stop takes the row back to none; details do not show without a state.
    mark_of_DrawingList(&list, 1, ROW_NONE, "Colour");
    EXPECT_EQ(view.rowText(1), "13");
    EXPECT_EQ(name_of_DrawingList(&list, 1), "13");
    EXPECT_EQ(current_row_of_DrawingList(&list), 1);
    EXPECT_EQ(assertions(capture), 0);

    mark_of_DrawingList(&list, 1, 7, "x");
    mark_of_DrawingList(&list, 5, ROW_SCANNED, "x");
    EXPECT_EQ(assertions(capture), 2);
    EXPECT_EQ(view_rows(view), (QStringList{"12", "13"}));
}

TEST_F(DrawingListRows, NextWrapsToTheFirstRow) {
    fill({"a", "b", "c"});
    next_of_DrawingList(&list);  // nothing current: nothing happens
    EXPECT_EQ(view.currentRow(), -1);
    view.setCurrentRow(0);
    int seen[4];
    for (int &row : seen) {
        next_of_DrawingList(&list);
        row = current_row_of_DrawingList(&list);
    }
    EXPECT_EQ(std::vector<int>(seen, seen + 4), (std::vector<int>{1, 2, 0, 1}));
    EXPECT_EQ(assertions(capture), 0);
}

TEST(DrawingListOneRow, NextStaysOnTheOnlyRowAndTheListClearsItsViewAtTheEnd) {
    ScriptedListView view;
    {
        DrawingList list(&view);
        add_of_DrawingList(&list, "only");
        view.setCurrentRow(0);
        mark_of_DrawingList(&list, 0, ROW_SCANNED, "B&W");
        next_of_DrawingList(&list);
        EXPECT_EQ(current_row_of_DrawingList(&list), 0);
        EXPECT_EQ(view.rowText(0), "only (Scanned) B&W");
    }
    EXPECT_EQ(view.rowCount(), 0);
}

// ---- lists of a session --------------------------------------------------------------------

class SessionList : public ::testing::Test {
protected:
    void SetUp() override {
        QString host;
        ASSERT_TRUE(oswUtil::getShortMachineName(host));
        const QString conf = dir.filePath("Scan.conf");
        QFile f(conf);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(("host: " + host + "\nname: Desk\ndevice: fieldchart\nmodel: Bogus-Color\n").toUtf8());
        f.close();
        window.manualPath = dir.path();
        window.manualPrefix = "sc_";
        config = ScanConfigCreate(conf, &window);
        ASSERT_NE(config, nullptr);
        ASSERT_EQ(scanner_count_of_ScanConfig(config), 1);
    }
    void TearDown() override {
        if (config) ScanConfigDestroy(config);
    }
    DrawingList *list() const { return drawing_list_of_ScanConfig(config); }

    QTemporaryDir dir;
    ScriptedScanWindow window;  // outlives the session, which clears its list view
    ScanConfig *config = nullptr;
    MessageCapture capture;
};

TEST_F(SessionList, ManualListTakesTheDialogsFolderAndStartsAtTheTop) {
    set_can_save_of_ScanConfig(config, true);
    build_manual_list(config, {"1", "2", "3"});
    EXPECT_EQ(names_of(list()), (QStringList{"1", "2", "3"}));
    EXPECT_EQ(view_rows(window.list), (QStringList{"1", "2", "3"}));
    EXPECT_EQ(current_row_of_DrawingList(list()), 0);
    EXPECT_EQ(path_of_ScanConfig(config), dir.path());
    EXPECT_EQ(prefix_of_ScanConfig(config), "sc_");
    EXPECT_FALSE(database_of_ScanConfig(config));
    EXPECT_EQ(pixel_shape_of_ScanConfig(config), 1);
    EXPECT_EQ(window.title, "Scan: Manual List");
    EXPECT_FALSE(can_save_of_ScanConfig(config));
    EXPECT_FALSE(window.buttonEnabled(SessionButton::Save));
    EXPECT_TRUE(window.buttonEnabled(SessionButton::Scan));
    EXPECT_TRUE(window.buttonEnabled(SessionButton::Preview));
    EXPECT_TRUE(window.actionEnabled(SessionAction::EditMenu));

    // A new list replaces the old one in the same view.
    build_manual_list(config, {"7"});
    EXPECT_EQ(view_rows(window.list), QStringList{"7"});
    EXPECT_EQ(count_of_DrawingList(list()), 1);
    EXPECT_EQ(assertions(capture), 0);
}

TEST_F(SessionList, AnEmptyListLeavesNothingToScan) {
    build_manual_list(config, {});
    EXPECT_EQ(count_of_DrawingList(list()), 0);
    EXPECT_EQ(window.list.rowCount(), 0);
    EXPECT_FALSE(window.buttonEnabled(SessionButton::Scan));
    EXPECT_FALSE(window.buttonEnabled(SessionButton::Preview));
    EXPECT_FALSE(window.actionEnabled(SessionAction::EditMenu));
    EXPECT_EQ(window.title, "Scan: Manual List");
}

TEST_F(SessionList, AnEmptyNameFromTheDialogIsLeftOutOfTheList) {
    const ManualListParse parse = parse_manual_list("1  2");
    ASSERT_TRUE(parse.ok);
    build_manual_list(config, parse.names);
    EXPECT_EQ(names_of(list()), (QStringList{"1", "2"}));
    EXPECT_EQ(window.list.rowCount(), 2);
    EXPECT_EQ(assertions(capture), 1);
}

TEST_F(SessionList, ReverseDropsTheMarksAndGoesBackToTheTop) {
    build_manual_list(config, {"a", "b", "c"});
    mark_of_DrawingList(list(), 0, ROW_SCANNED, "B&W");
    next_of_DrawingList(list());
    mark_of_DrawingList(list(), 1, ROW_NOT_SCANNED, QString());
    next_of_DrawingList(list());
    ASSERT_EQ(current_row_of_DrawingList(list()), 2);

    reverse_list(config);
    EXPECT_EQ(names_of(list()), (QStringList{"c", "b", "a"}));
    EXPECT_EQ(view_rows(window.list), (QStringList{"c", "b", "a"}));
    for (int r = 0; r < 3; ++r) EXPECT_EQ(state_of_DrawingList(list(), r), ROW_NONE);
    EXPECT_EQ(current_row_of_DrawingList(list()), 0);
    // The session stays what it was.
    EXPECT_EQ(path_of_ScanConfig(config), dir.path());
    EXPECT_EQ(window.title, "Scan: Manual List");
    EXPECT_EQ(assertions(capture), 0);
}
