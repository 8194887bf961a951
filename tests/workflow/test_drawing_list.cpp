// The drawing list: its rows against the window's view, marks, the walk
// through the rows, and the lists a session builds.
#include "session_fixture.h"

#include <algorithm>

#include "workflow/manual_list_syntax.h"

namespace {

int assertions(const MessageCapture &capture) {
    const auto logs = capture.texts('I');
    return static_cast<int>(std::count_if(logs.begin(), logs.end(), [](const std::string &line) {
        return line.find("Internal assertion error detected") != std::string::npos;
    }));
}

QString rows(const DrawingListView &view) {
    QStringList out;
    for (int r = 0; r < view.rowCount(); ++r) out.append(view.rowText(r));
    return out.join('|');
}

// Rows follow the view and show their mark with the last scan's summary; an
// empty name, a row past the end, a bad state, a row written behind the
// list's back and a list with nothing current are assertions.
TEST(DrawingListRows, MarksTheWalkAndMisuses) {
    MessageCapture capture;
    ScriptedListView view;
    {
        DrawingList list(&view);
        for (const char *n : {"12", "13", ""}) add_of_DrawingList(&list, QString::fromUtf8(n));
        EXPECT_EQ(count_of_DrawingList(nullptr), 0);
        EXPECT_EQ(name_of_DrawingList(&list, 2), QString());
        EXPECT_EQ(current_row_of_DrawingList(&list), -1);
        next_of_DrawingList(&list);  // nothing current: nothing happens
        EXPECT_EQ(view.currentRow(), -1);
        EXPECT_EQ(assertions(capture), 3);

        view.setCurrentRow(1);
        mark_of_DrawingList(&list, 1, ROW_SCANNED, "B&W, 200dpi, 12.0F, bottom");
        mark_of_DrawingList(&list, 1, ROW_SCANNED, "Grey, 300dpi, 16.0F, top, O/R");
        EXPECT_EQ(rows(view), "12|13 (Scanned) Grey, 300dpi, 16.0F, top, O/R");
        EXPECT_EQ(text_of_DrawingList(&list, 1), view.rowText(1));
        EXPECT_EQ(state_of_DrawingList(&list, 1), ROW_SCANNED);
        mark_of_DrawingList(&list, 1, ROW_NOT_SCANNED, QString());
        EXPECT_EQ(view.rowText(1), "13 (Not Scanned)");
        mark_of_DrawingList(&list, 1, ROW_NONE, "Colour");  // a stop: no details without a state
        EXPECT_EQ(rows(view), "12|13");
        EXPECT_EQ(name_of_DrawingList(&list, 1), "13");

        int seen[3];
        for (int &row : seen) {
            next_of_DrawingList(&list);
            row = current_row_of_DrawingList(&list);
        }
        EXPECT_EQ(std::vector<int>(seen, seen + 3), (std::vector<int>{0, 1, 0}));  // wraps to the first row
        EXPECT_EQ(assertions(capture), 3);

        mark_of_DrawingList(&list, 1, 7, "x");
        mark_of_DrawingList(&list, 5, ROW_SCANNED, "x");
        EXPECT_EQ(rows(view), "12|13");
        view.appendRow("stray");
        EXPECT_EQ(count_of_DrawingList(&list), 2);
        EXPECT_EQ(assertions(capture), 6);
    }
    EXPECT_EQ(view.rowCount(), 0) << "the list clears its view at the end";
}

using SessionList = SessionTest;

// A manual list takes the dialog's folder, starts at the top and replaces
// the list before it; an empty list leaves nothing to scan, and an empty name
// from the dialog is left out.
TEST_F(SessionList, ManualListsReplaceOneAnother) {
    ASSERT_NE(start(scannerBlock("Desk", "Bogus-Color")), nullptr);
    set_can_save_of_ScanConfig(config_, true);
    list({"1", "2", "3"});
    EXPECT_EQ(rows(window_.list), "1|2|3");
    EXPECT_EQ(current_row_of_DrawingList(drawing_list_of_ScanConfig(config_)), 0);
    EXPECT_EQ(path_of_ScanConfig(config_), dir_.path());
    EXPECT_EQ(prefix_of_ScanConfig(config_), "T");
    EXPECT_FALSE(database_of_ScanConfig(config_));
    EXPECT_EQ(pixel_shape_of_ScanConfig(config_), 1);
    EXPECT_EQ(window_.title, "Scan: Manual List");
    EXPECT_FALSE(can_save_of_ScanConfig(config_) || window_.buttonEnabled(SessionButton::Save));
    EXPECT_TRUE(window_.buttonEnabled(SessionButton::Scan) && window_.buttonEnabled(SessionButton::Preview) &&
                window_.actionEnabled(SessionAction::EditMenu));

    list({});
    EXPECT_EQ(window_.list.rowCount(), 0);
    EXPECT_FALSE(window_.buttonEnabled(SessionButton::Scan) || window_.buttonEnabled(SessionButton::Preview));
    EXPECT_FALSE(window_.actionEnabled(SessionAction::EditMenu));
    EXPECT_EQ(assertions(capture_), 0);

    list(parse_manual_list("1  2").names);
    EXPECT_EQ(rows(window_.list), "1|2");
    EXPECT_EQ(count_of_DrawingList(drawing_list_of_ScanConfig(config_)), 2);
    EXPECT_EQ(assertions(capture_), 1);
}

TEST_F(SessionList, ReverseDropsTheMarksAndGoesBackToTheTop) {
    ASSERT_NE(start(scannerBlock("Desk", "Bogus-Color")), nullptr);
    list({"a", "b", "c"});
    DrawingList *l = drawing_list_of_ScanConfig(config_);
    mark_of_DrawingList(l, 0, ROW_SCANNED, "B&W");
    next_of_DrawingList(l);
    mark_of_DrawingList(l, 1, ROW_NOT_SCANNED, QString());
    next_of_DrawingList(l);
    reverse_list(config_);
    l = drawing_list_of_ScanConfig(config_);  // the reversed list is a new one
    EXPECT_EQ(rows(window_.list), "c|b|a");
    EXPECT_EQ(name_of_DrawingList(l, 0), "c");
    for (int r = 0; r < 3; ++r) EXPECT_EQ(state_of_DrawingList(l, r), ROW_NONE);
    EXPECT_EQ(current_row_of_DrawingList(l), 0);
    EXPECT_EQ(path_of_ScanConfig(config_), dir_.path());
    EXPECT_EQ(window_.title, "Scan: Manual List");
}

}  // namespace
