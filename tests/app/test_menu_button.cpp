// The selection button: what it shows for an entry, and which entry is current
// as entries come and go.
#include <QtWidgets>
#include <QtTest>

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

// The first entry is current until another is marked or triggered; an
// unknown id changes nothing; removing the current entry falls back to the
// first one left, or to nothing.
TEST(MenuButton, TheCurrentEntryAsEntriesComeAndGo) {
    TUMenuButton b;
    EXPECT_EQ(b.currentId(), -1);
    b.addEntry(QStringLiteral("No Scanner"), 9999);
    b.addEntry(QStringLiteral("1&2 Field"), 0);
    b.addEntry(QStringLiteral("1&6 Field"), 1);
    EXPECT_EQ(b.currentId(), 9999);
    b.setCurrent(0);
    EXPECT_TRUE(b.entry(0)->isChecked());
    EXPECT_FALSE(b.entry(9999)->isChecked());
    b.setCurrent(500);  // a dpi of 500 from a file, say
    b.setEntryEnabled(5, false);
    EXPECT_EQ(b.text(), QStringLiteral("12 Field"));
    EXPECT_EQ(b.idAt(2), 1);
    EXPECT_EQ(b.idAt(3), -1);

    QSignalSpy spy(&b, &TUMenuButton::activated);
    b.entry(1)->trigger();
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.at(0).at(0).toInt(), 1);
    EXPECT_EQ(b.currentId(), 1);
    EXPECT_EQ(b.text(), QStringLiteral("16 Field"));

    b.removeEntry(9999);  // not current: nothing else changes
    EXPECT_EQ(b.text(), QStringLiteral("16 Field"));
    b.removeEntry(1);
    EXPECT_EQ(b.text(), QStringLiteral("12 Field"));
    EXPECT_EQ(b.currentId(), 0);
    b.removeEntry(0);
    EXPECT_EQ(b.currentId(), -1);
    EXPECT_TRUE(b.text().isEmpty());
    b.addEntry(QStringLiteral("Again"), 7);
    b.clear();
    EXPECT_EQ(b.count(), 0);
    EXPECT_EQ(b.currentId(), -1);
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
