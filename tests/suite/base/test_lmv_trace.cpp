#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

#include "suite/base/assertion.h"
#include "suite/base/lmv_trace.h"
#include "tests/suite/base/message_fixture.h"

class TraceTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    InstalledMessage installed{std::make_unique<RecordingMessage>(settingsIn(dir.path()))};
    RecordingMessage *m() { return static_cast<RecordingMessage *>(installed.get()); }
    QStringList lines() { return bodyLines(m()->readLog()); }
    // The text of a line after its type and time.
    static QString textOf(const QString &line) { return line.mid(15); }
};

// One trailing newline is dropped, long texts are cut to the buffer, and a
// trace shows in debug mode only.
TEST_F(TraceTest, LinesOfTheLogAndTheTraceChannel) {
    LMV_log("OPTIONS %s %d\n", "dpi", 300);
    LMV_log("two ends\n\n");
    LMV_log("no end");
    LMV_log("%s", std::string(3000, 'x').c_str());
    LMV_trace("hidden %d", 1);
    m()->setDebugMode(true);
    LMV_trace("shown %d", 2);
    const QStringList l = m()->readLog().split('\n');
    const QStringList body = l.mid(l.indexOf(QRegularExpression("^I .*OPTIONS.*")));
    ASSERT_GE(body.size(), 6);
    EXPECT_EQ(textOf(body[0]), "OPTIONS dpi 300");
    EXPECT_EQ(textOf(body[1]), "two ends");
    EXPECT_EQ(body[2], "");  // the second newline stays with the text
    EXPECT_EQ(textOf(body[3]), "no end");
    EXPECT_EQ(textOf(body[4]).size(), 2047);
    EXPECT_TRUE(body[5].startsWith("D "));
    EXPECT_EQ(textOf(body[5]), "shown 2");
}

TEST_F(TraceTest, DirectTraceIsRawAndLeavesTheModesAsTheyWere) {
    LMV_direct_trace("CDB: %02x %02x\n", 0x12, 0x24);
    EXPECT_FALSE(m()->isDebugMode());
    EXPECT_FALSE(m()->isDirectMode());
    m()->setDebugMode(true);
    LMV_direct_trace("sense: %02x", 0x70);
    EXPECT_TRUE(m()->isDebugMode());
    EXPECT_FALSE(m()->isDirectMode());
    EXPECT_EQ(lines(), QStringList({"CDB: 12 24", "sense: 70"}));
}

// The operator reads the translation, the log keeps the source; a
// translation taking other arguments than its source is not used.
TEST_F(TraceTest, ErrorIsTranslatedForTheOperatorWhenItTakesTheSameArguments) {
    TableTranslator tr({{{"Scan", "Paper jam in %s"}, "Bourrage papier dans %s"},
                        {{"Scan", "Sense key %d on %s"}, "Code %s sur %d"},
                        {{"Scan", "Timeout after %d s"}, "D\u00e9lai %d s d\u00e9pass\u00e9 (%s)"},
                        {{"Scan", "Lamp at %d%%"}, "Lampe \u00e0 %1$d%%"},
                        {{"Scan", "Width %*d"}, "Largeur %*d"}});
    LMV_error("Paper jam in %s", "ADF");
    LMV_error("Sense key %d on %s", 5, "sg0");
    LMV_error("Timeout after %d s", 30);
    LMV_error("Lamp at %d%%", 80);
    LMV_error("Width %*d", 6, 42);
    const QStringList shown[] = {{"Bourrage papier dans ADF"}, {"Sense key 5 on sg0"}, {"Timeout after 30 s"},
                                 {"Lamp at 80%"}, {"Largeur     42"}};
    ASSERT_EQ(m()->shown.size(), 5u);
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(m()->shown[i].severity, 'E');
        EXPECT_EQ(m()->shown[i].texts, shown[i]);
    }
    EXPECT_EQ(textOf(lines().value(0)), "Paper jam in ADF");
    EXPECT_EQ(textOf(lines().value(4)), "Width     42");
}

namespace {
int guarded(const int *p) {
    LMV_ASSERT_RET(p != nullptr, -1);
    return *p;
}
}  // namespace

TEST_F(TraceTest, FailedAssertionIsALogLineAndANeutralResult) {
    EXPECT_EQ(guarded(nullptr), -1);
    ASSERT_EQ(lines().size(), 1);
    EXPECT_TRUE(lines()[0].startsWith("I "));
    EXPECT_TRUE(textOf(lines()[0]).contains(QRegularExpression(R"(^Internal assertion error detected \(.*test_lmv_trace\.cpp:\d+\)$)")))
        << lines()[0].toStdString();
}
