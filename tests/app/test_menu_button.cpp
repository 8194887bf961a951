// The selection button: what it shows for an entry, and which entry is current
// as entries come and go.
#include <QAction>
#include <QMenu>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <tuple>

#include "app/tumenu_button.h"
#include "qstring_print.h"

// A button shows "&&" as one ampersand and no accelerator mark, cut at the
// limit (which counts the marks) before the marks are dropped.
TEST(MenuButtonText, DropsAcceleratorsAndCutsAtTheLimit) {
    const QString name = QStringLiteral("A Scanner With A Very Long Name");
    const std::tuple<QString, int, QString> cases[] = {
        {"&Black && White", 0, "Black && White"}, {"24&0 dpi", 0, "240 dpi"}, {"&Ink && &Paint", 0, "Ink && Paint"},
        {name, 20, name.left(20)}, {name, 0, name}, {"&ABCDEFGHIJKLMNOPQRSTUVWXYZ", 20, "ABCDEFGHIJKLMNOPQRS"},
    };
    for (const auto &[entry, limit, shown] : cases) EXPECT_EQ(TUMenuButton::buttonText(entry, limit), shown) << entry.toStdString();
}

TEST(MenuButton, FirstEntryIsCurrentUntilAnotherIsMarked) {
    TUMenuButton b;
    EXPECT_EQ(b.currentId(), -1);
    b.addEntry(QStringLiteral("&Bottom Peg"), 4);
    b.addEntry(QStringLiteral("&Top Peg"), 2);
    EXPECT_EQ(b.currentId(), 4);
    EXPECT_EQ(b.text(), QStringLiteral("Bottom Peg"));
    b.setCurrent(2);
    EXPECT_EQ(b.text(), QStringLiteral("Top Peg"));
    EXPECT_TRUE(b.entry(2)->isChecked());
    EXPECT_FALSE(b.entry(4)->isChecked());
    // An id no entry has (a dpi of 500 from a file, say) leaves the button alone.
    b.setCurrent(500);
    EXPECT_EQ(b.currentId(), 2);
    EXPECT_EQ(b.text(), QStringLiteral("Top Peg"));
    EXPECT_EQ(b.idAt(0), 4);
    EXPECT_EQ(b.idAt(1), 2);
    EXPECT_EQ(b.idAt(2), -1);
}

TEST(MenuButton, RemovingTheCurrentEntryFallsBackToTheFirst) {
    TUMenuButton b;
    b.addEntry(QStringLiteral("No Scanner"), 9999);
    b.addEntry(QStringLiteral("Test Scanner"), 0);
    b.addEntry(QStringLiteral("Line Art"), 1);
    b.removeEntry(9999);
    EXPECT_EQ(b.count(), 2);
    EXPECT_EQ(b.text(), QStringLiteral("Test Scanner"));
    EXPECT_EQ(b.currentId(), 0);
    b.setCurrent(1);
    b.removeEntry(0);  // not current: nothing else changes
    EXPECT_EQ(b.text(), QStringLiteral("Line Art"));
    b.removeEntry(1);
    EXPECT_EQ(b.text(), QString());
    EXPECT_EQ(b.currentId(), -1);
    b.addEntry(QStringLiteral("Again"), 7);
    b.clear();
    EXPECT_EQ(b.count(), 0);
    EXPECT_EQ(b.currentId(), -1);
    EXPECT_TRUE(b.text().isEmpty());
}

TEST(MenuButton, ATriggeredEntryBecomesCurrentAndIsSignalled) {
    TUMenuButton b;
    b.addEntry(QStringLiteral("1&2 Field"), 0);
    b.addEntry(QStringLiteral("1&6 Field"), 1);
    b.setEntryEnabled(5, false);  // unknown: no effect, no crash
    QSignalSpy spy(&b, &TUMenuButton::activated);
    b.entry(1)->trigger();
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.at(0).at(0).toInt(), 1);
    EXPECT_EQ(b.currentId(), 1);
    EXPECT_EQ(b.text(), QStringLiteral("16 Field"));
}

TEST(MenuButton, PressingPopsTheMenuUpUnderTheButtonOnlyWithEntries) {
    TUMenuButton b;
    b.resize(120, 30);
    b.show();
    b.click();
    EXPECT_FALSE(b.menu()->isVisible());
    b.addEntry(QStringLiteral("&Grey"), 1);
    b.click();
    EXPECT_TRUE(b.menu()->isVisible());
    EXPECT_FALSE(b.isDown());
    EXPECT_EQ(b.menu()->pos().y(), b.mapToGlobal(QPoint(0, b.height())).y());
    b.menu()->hide();
}
