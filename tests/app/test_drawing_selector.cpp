#include <QtWidgets>
#include <QtTest>

#include <gtest/gtest.h>

#include "app/tudrawing_selector.h"
#include "app/tudrawing_selector_table.h"
#include "window_fixture.h"
#include "support/screenshot.h"

namespace {

QPushButton *button(QWidget &dialog, const QString &text) { return childWithText<QPushButton>(&dialog, text); }

QStringList column(const TUDrawingSelectorTable &table, int col) {
    QStringList texts;
    for (int row = 0; row < table.rowCount(); ++row) texts << table.item(row, col)->text();
    return texts;
}

class DrawingSelectorTest : public ProductionTest {
protected:
    // Element E with cels 1, 7b (a drawing with versions) and 9; the scene
    // exposes 1, 2 and 7b (2 gets its cel then), and 1 has been scanned.
    void SetUp() override {
        ProductionTest::SetUp();
        element_ = makeElement();
        ASSERT_TRUE(db_->createCel(element_.id, QStringLiteral("1"), QString(), 0));
        ASSERT_TRUE(db_->createCel(element_.id, QStringLiteral("7"), QStringLiteral("b"), 2));
        ASSERT_TRUE(db_->createCel(element_.id, QStringLiteral("9"), QString(), 0));
        ASSERT_GE(db_->exposeDrawings(element_.id, {"1", "2", "7b"}), 0) << db_->lastError().toStdString();
        openScene();
        ASSERT_EQ(db_->dba_ProcessedCels(db_->openScene(), QStringLiteral("E"), element_.id, {"1"}, 1, 0), 0);
    }

    LMV_element_data element_;
};

}  // namespace

TEST_F(DrawingSelectorTest, OpensOnTheExposedDrawingsWithTheUnscannedSelected) {
    TUDrawingSelector selector(db_.get(), element_.id);
    QStringList names;
    whileOpen(selector, [&] {
        const TUDrawingSelectorTable &table = *selector.table();
        EXPECT_EQ(selector.windowTitle(), QStringLiteral("Drawings Selector"));
        EXPECT_EQ(column(table, 0), QStringList({"1", "7b", "2"}));  // 9 is not exposed
        EXPECT_EQ(column(table, 1), QStringList({"Yes", "No", "No"}));
        EXPECT_EQ(table.selectedDrawings(), QStringList({"7b", "2"}));
        QStringList headings;
        for (const QLabel *label : selector.findChildren<QLabel *>()) headings << label->text();
        for (const char *heading : {"Job: J", "Scene: S", "Element: E"}) EXPECT_TRUE(headings.contains(heading)) << heading;
        EXPECT_FALSE(button(selector, QStringLiteral("Add Drawing"))->isEnabled());
        EXPECT_TRUE(button(selector, QStringLiteral("OK"))->isEnabled());
        save_screenshot(&selector, QStringLiteral("drawing_selector_open"));
        QTest::mouseClick(button(selector, QStringLiteral("OK")), Qt::LeftButton);
    });
    EXPECT_EQ(selector.exec(&names), 1);
    EXPECT_EQ(names, QStringList({"7b", "2"}));
}

TEST_F(DrawingSelectorTest, SelectButtonsAndAddedDrawings) {
    TUDrawingSelector selector(db_.get(), element_.id);
    QStringList names{QStringLiteral("earlier")};
    whileOpen(selector, [&] {
        const TUDrawingSelectorTable &table = *selector.table();
        QPushButton *ok = button(selector, QStringLiteral("OK"));
        QPushButton *add = button(selector, QStringLiteral("Add Drawing"));
        auto *edit = selector.findChild<QLineEdit *>();

        // A name already in the table is ignored without a word.
        QTest::keyClicks(edit, QStringLiteral("2"));
        EXPECT_TRUE(add->isEnabled());
        QTest::mouseClick(add, Qt::LeftButton);
        EXPECT_EQ(table.rowCount(), 3);
        EXPECT_EQ(edit->text(), QStringLiteral("2"));
        // A new one is added unscanned, by the button or by Return.
        edit->clear();
        QTest::keyClicks(edit, QStringLiteral("12"));
        QTest::mouseClick(add, Qt::LeftButton);
        QTest::keyClicks(edit, QStringLiteral("13a"));
        QTest::keyClick(edit, Qt::Key_Return);
        EXPECT_TRUE(selector.isVisible());  // Return adds, it does not accept
        EXPECT_EQ(column(table, 0), QStringList({"1", "7b", "2", "12", "13a"}));
        EXPECT_EQ(column(table, 1), QStringList({"Yes", "No", "No", "No", "No"}));
        EXPECT_TRUE(edit->text().isEmpty());
        EXPECT_FALSE(add->isEnabled());
        save_screenshot(&selector, QStringLiteral("drawing_selector_added"));

        for (const auto &[mode, selected] : {std::pair{"Scanned", "1"}, {"None", ""}, {"All", "1 7b 2 12 13a"},
                                             {"Unscanned", "7b 2 12 13a"}}) {
            QTest::mouseClick(button(selector, mode), Qt::LeftButton);
            EXPECT_EQ(table.selectedDrawings().join(' '), selected) << mode;
            EXPECT_EQ(ok->isEnabled(), *selected != 0) << mode;
        }

        // Picked from the bottom up, the names still come in table order.
        QTest::mouseClick(button(selector, QStringLiteral("None")), Qt::LeftButton);
        auto *view = selector.table()->viewport();
        QTest::mouseClick(view, Qt::LeftButton, {}, selector.table()->visualItemRect(table.item(3, 0)).center());
        QTest::mouseClick(view, Qt::LeftButton, Qt::ControlModifier,
                          selector.table()->visualItemRect(table.item(0, 0)).center());
        EXPECT_EQ(table.selectedDrawings(), QStringList({"1", "12"}));
        save_screenshot(&selector, QStringLiteral("drawing_selector_picked"));
        QTest::mouseClick(ok, Qt::LeftButton);
    });
    EXPECT_EQ(selector.exec(&names), 1);
    EXPECT_EQ(names, QStringList({"earlier", "1", "12"}));
    EXPECT_TRUE(reported().isEmpty());
}

TEST_F(DrawingSelectorTest, SelectModeLastsAndCancelLeavesTheNames) {
    TUDrawingSelector selector(db_.get(), element_.id);
    QStringList names;
    whileOpen(selector, [&] { QTest::mouseClick(button(selector, QStringLiteral("Scanned")), Qt::LeftButton); });
    EXPECT_EQ(selector.exec(&names), 0);
    EXPECT_TRUE(names.isEmpty());

    // The next run reads the database afresh (2 has been scanned since) and
    // keeps the mode; the hand-added rows of the last run are gone.
    ASSERT_EQ(db_->dba_ProcessedCels(db_->openScene(), QStringLiteral("E"), element_.id, {"2"}, 1, 0), 0);
    whileOpen(selector, [&] {
        EXPECT_EQ(selector.table()->rowCount(), 3);
        EXPECT_EQ(selector.table()->selectedDrawings(), QStringList({"1", "2"}));
        QTest::mouseClick(button(selector, QStringLiteral("Cancel")), Qt::LeftButton);
    });
    EXPECT_EQ(selector.exec(&names), 0);
    EXPECT_TRUE(names.isEmpty());
}

// A failed read is an error to the operator, never an element with nothing exposed.
TEST_F(DrawingSelectorTest, AFailedReadIsReportedNotShownAsNoDrawings) {
    hideTable(QStringLiteral("cels"));
    TUDrawingSelector selector(db_.get(), element_.id);
    whileOpen(selector, [&] { EXPECT_EQ(selector.table()->rowCount(), 0); });
    selector.exec(nullptr);
    ASSERT_FALSE(reported().isEmpty());
    EXPECT_TRUE(reported().last().startsWith("Cannot read the drawings of the element: ")) << reported().last().toStdString();
}
