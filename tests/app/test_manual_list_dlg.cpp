#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include "app/tumanual_list_dlg.h"
#include "selection_fixture.h"
#include "support/screenshot.h"

namespace {

QStringList rows(const QListWidget &list, bool selectedOnly = false) {
    QStringList texts;
    for (int row = 0; row < list.count(); ++row)
        if (!selectedOnly || list.item(row)->isSelected()) texts << list.item(row)->text();
    return texts;
}

QStringList numbers(int from, int to) {
    QStringList texts;
    for (int n = from; n <= to; ++n) texts << QString::number(n);
    return texts;
}

void type(TUManualListDlg &dlg, const QString &text) {
    dlg.numbersEdit()->clear();
    QTest::keyClicks(dlg.numbersEdit(), text);
    QTest::keyClick(dlg.numbersEdit(), Qt::Key_Return);
}

QPushButton *okButton(TUManualListDlg &dlg) {
    for (QPushButton *pb : dlg.findChildren<QPushButton *>())
        if (pb->text() == QStringLiteral("OK")) return pb;
    return nullptr;
}

using ManualListTest = SelectionTest;

}  // namespace

TEST_F(ManualListTest, NumbersAndRangesFillTheListOnce) {
    TUManualListDlg dlg;
    QStringList names;
    whileOpen(dlg, [&] {
        EXPECT_EQ(dlg.windowTitle(), QStringLiteral("Manual List"));
        EXPECT_GE(dlg.width(), 300);
        EXPECT_GE(dlg.height(), 400);
        type(dlg, QStringLiteral("1:10 12 7b"));
        EXPECT_TRUE(dlg.isVisible());  // Return adds, it does not accept
        EXPECT_EQ(rows(*dlg.list()), numbers(1, 10) + QStringList({"12", "7b"}));
        EXPECT_EQ(rows(*dlg.list(), true), rows(*dlg.list()));
        EXPECT_TRUE(dlg.numbersEdit()->text().isEmpty());

        // Only what is new goes to the end; a reversed range still rises.
        type(dlg, QStringLiteral("14:9 5:5"));
        EXPECT_EQ(rows(*dlg.list()), numbers(1, 10) + QStringList({"12", "7b", "11", "13", "14"}));
        save_screenshot(&dlg, QStringLiteral("manual_list_filled"));
    });
    dlg.exec(&names);

    whileOpen(dlg, [&] {
        EXPECT_EQ(dlg.list()->count(), 0);  // each run starts empty
        type(dlg, QStringLiteral("10:1"));
        EXPECT_EQ(rows(*dlg.list()), numbers(1, 10));
        type(dlg, QStringLiteral("1:2000"));
        EXPECT_EQ(rows(*dlg.list()), numbers(1, 1000));
    });
    dlg.exec(&names);
    EXPECT_TRUE(reported().isEmpty());
}

TEST_F(ManualListTest, ABadRangeAddsNothingOfTheField) {
    TUManualListDlg dlg;
    QStringList names;
    whileOpen(dlg, [&] {
        type(dlg, QStringLiteral("3"));
        type(dlg, QStringLiteral("4 5 a:3 6"));
        EXPECT_EQ(rows(*dlg.list()), QStringList({"3"}));
        EXPECT_EQ(dlg.numbersEdit()->text(), QStringLiteral("4 5 a:3 6"));  // left for correction
        type(dlg, QStringLiteral("1:x"));
        EXPECT_EQ(rows(*dlg.list()), QStringList({"3"}));
        save_screenshot(&dlg, QStringLiteral("manual_list_bad_range"));
    });
    dlg.exec(&names);
    EXPECT_EQ(reported(), QStringList({"The \"From\" part of a:3 is not an integer",
                                       "The \"To\" part of 1:x is not an integer"}));
}

TEST_F(ManualListTest, OkNeedsAnExistingFolderAndGivesTheSelectedInListOrder) {
    const QString file = dir_.filePath(QStringLiteral("notes.txt"));
    QFile(file).open(QIODevice::WriteOnly);
    TUManualListDlg dlg;
    QStringList names{QStringLiteral("kept")};
    whileOpen(dlg, [&] {
        type(dlg, QStringLiteral("1:4"));
        dlg.pathEdit()->setText(file);
        QTest::mouseClick(okButton(dlg), Qt::LeftButton);
        EXPECT_TRUE(dlg.isVisible());
        dlg.pathEdit()->setText(dir_.filePath(QStringLiteral("missing")));
        QTest::mouseClick(okButton(dlg), Qt::LeftButton);
        EXPECT_TRUE(dlg.isVisible());

        dlg.pathEdit()->setText(dir_.path());
        QTest::keyClicks(dlg.prefixEdit(), QStringLiteral("ep1_"));
        // Deselect 2 by a click; multiple selection toggles one row.
        QTest::mouseClick(dlg.list()->viewport(), Qt::LeftButton, {},
                          dlg.list()->visualItemRect(dlg.list()->item(1)).center());
        EXPECT_EQ(rows(*dlg.list(), true), QStringList({"1", "3", "4"}));
        save_screenshot(&dlg, QStringLiteral("manual_list_ready"));
        QTest::mouseClick(okButton(dlg), Qt::LeftButton);
    });
    EXPECT_EQ(dlg.exec(&names), 1);
    EXPECT_EQ(names, QStringList({"kept", "1", "3", "4"}));
    EXPECT_EQ(dlg.path(), dir_.path());
    EXPECT_EQ(dlg.prefix(), QStringLiteral("ep1_"));
    EXPECT_EQ(reported(), QStringList({QStringLiteral("Path \"%1\" does not exist.").arg(file),
                                       QStringLiteral("Path \"%1\" does not exist.")
                                           .arg(dir_.filePath(QStringLiteral("missing")))}));
}
