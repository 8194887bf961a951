#include <QtWidgets>
#include <QtTest>

#include <gtest/gtest.h>

#include "app/tumanual_list_dlg.h"
#include "window_fixture.h"
#include "support/screenshot.h"

namespace {

QString rows(const QListWidget &list, bool selectedOnly = false) {
    QStringList texts;
    for (int row = 0; row < list.count(); ++row)
        if (!selectedOnly || list.item(row)->isSelected()) texts << list.item(row)->text();
    return texts.join(' ');
}

void type(TUManualListDlg &dlg, const QString &text) {
    dlg.numbersEdit()->clear();
    QTest::keyClicks(dlg.numbersEdit(), text);
    QTest::keyClick(dlg.numbersEdit(), Qt::Key_Return);
}

using ManualListTest = ProductionTest;

}  // namespace

// Return adds the numbers, selected, and empties the field; only what is new
// goes to the end; a field with a bad range adds nothing and stays for
// correction; each run starts empty.
TEST_F(ManualListTest, NumbersFillTheListOnce) {
    TUManualListDlg dlg;
    QStringList names;
    whileOpen(dlg, [&] {
        EXPECT_EQ(dlg.windowTitle(), QStringLiteral("Manual List"));
        EXPECT_GE(dlg.width(), 300);
        EXPECT_GE(dlg.height(), 400);
        type(dlg, QStringLiteral("1:3 7b"));
        EXPECT_TRUE(dlg.isVisible());  // Return adds, it does not accept
        EXPECT_EQ(rows(*dlg.list(), true), "1 2 3 7b");
        EXPECT_TRUE(dlg.numbersEdit()->text().isEmpty());
        type(dlg, QStringLiteral("5:2"));
        EXPECT_EQ(rows(*dlg.list()), "1 2 3 7b 4 5");
        type(dlg, QStringLiteral("8 a:3 9"));
        EXPECT_EQ(rows(*dlg.list()), "1 2 3 7b 4 5");
        EXPECT_EQ(dlg.numbersEdit()->text(), QStringLiteral("8 a:3 9"));
        save_screenshot(&dlg, QStringLiteral("manual_list_filled"));
    });
    dlg.exec(&names);
    ASSERT_EQ(reported().size(), 1);
    EXPECT_TRUE(reported().first().contains(QStringLiteral("a:3")));
    whileOpen(dlg, [&] { EXPECT_EQ(dlg.list()->count(), 0); });
    dlg.exec(&names);
}

TEST_F(ManualListTest, OkNeedsAnExistingFolderAndGivesTheSelectedInListOrder) {
    const QString file = dir_.filePath(QStringLiteral("notes.txt"));
    QFile(file).open(QIODevice::WriteOnly);
    TUManualListDlg dlg;
    QPushButton *ok = childWithText<QPushButton>(&dlg, "OK");
    ASSERT_NE(ok, nullptr);
    QStringList names{QStringLiteral("kept")};
    whileOpen(dlg, [&] {
        type(dlg, QStringLiteral("1:4"));
        for (const QString &notAFolder : {file, dir_.filePath(QStringLiteral("missing"))}) {
            dlg.pathEdit()->setText(notAFolder);
            QTest::mouseClick(ok, Qt::LeftButton);
            EXPECT_TRUE(dlg.isVisible());
        }
        dlg.pathEdit()->setText(dir_.path());
        QTest::keyClicks(dlg.prefixEdit(), QStringLiteral("ep1_"));
        // Deselect 2 by a click; multiple selection toggles one row.
        QTest::mouseClick(dlg.list()->viewport(), Qt::LeftButton, {},
                          dlg.list()->visualItemRect(dlg.list()->item(1)).center());
        save_screenshot(&dlg, QStringLiteral("manual_list_ready"));
        QTest::mouseClick(ok, Qt::LeftButton);
    });
    EXPECT_EQ(dlg.exec(&names), 1);
    EXPECT_EQ(names, QStringList({"kept", "1", "3", "4"}));
    EXPECT_EQ(dlg.path(), dir_.path());
    EXPECT_EQ(dlg.prefix(), QStringLiteral("ep1_"));
    EXPECT_EQ(reported(), QStringList({QStringLiteral("Path \"%1\" does not exist.").arg(file),
                                       QStringLiteral("Path \"%1\" does not exist.")
                                           .arg(dir_.filePath(QStringLiteral("missing")))}));
}
