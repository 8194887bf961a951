#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <tuple>

#include "suite/base/assertion.h"
#include "suite/base/lmv_trace.h"
#include "suite/base/msg_scope.h"
#include "suite/base/pending_report.h"
#include "tests/suite/base/message_fixture.h"

namespace {

const QRegularExpression kLine("^([EFWITD]) \\d\\d:\\d\\d:\\d\\d\\.\\d{3} (.*)$");

class RefusingMessage : public TUMessage {
public:
    using TUMessage::TUMessage;
    bool okToUseFile(const QString &, const QString &) override { return false; }
};

}  // namespace

class MessageTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    std::unique_ptr<RecordingMessage> open() {
        auto m = std::make_unique<RecordingMessage>(settingsIn(dir.path()));
        EXPECT_TRUE(m->openLog());
        return m;
    }
};

TEST_F(MessageTest, LinesCarryTypeTimeAndTextAndDebugLinesNeedDebugMode) {
    auto m = open();
    std::vector<std::pair<char, QString>> seen;
    m->attachView([&](char type, const QString &text, const QString &line) {
        seen.emplace_back(type, text);
        EXPECT_TRUE(m->readLog().endsWith(line + "\n"));  // views see a line once it is in the log
    });
    m->trace(MSG_Text::untranslated("a trace"));
    m->error(MSG_Text::untranslated("an error"));
    m->warning(MSG_Text::untranslated("a warning"));
    m->information(MSG_Text::untranslated("some news"));
    m->fatalError(MSG_Text::untranslated("the end"));
    m->debug(MSG_Text::untranslated("hidden"));  // debug mode is off
    m->setDebugMode(true);
    m->debug(MSG_Text::untranslated("visible"));
    m->setDirectMode(true);
    m->debug(MSG_Text::untranslated("0000: 12 00 00 00 24 00"));  // raw, no type or time

    const QStringList lines = bodyLines(m->readLog());
    ASSERT_EQ(lines.size(), 7);
    const char types[] = {'I', 'E', 'W', 'I', 'F', 'D'};
    const char *texts[] = {"a trace", "an error", "a warning", "some news", "the end", "visible"};
    for (int i = 0; i < 6; ++i) {
        const auto match = kLine.match(lines[i]);
        ASSERT_TRUE(match.hasMatch()) << lines[i].toStdString();
        EXPECT_EQ(match.captured(1) + match.captured(2), QChar(types[i]) + QString::fromUtf8(texts[i]));
        EXPECT_EQ(seen[i], std::pair(types[i], QString::fromUtf8(texts[i])));
    }
    EXPECT_EQ(lines[6], "0000: 12 00 00 00 24 00");
}

TEST_F(MessageTest, ActionsRouteThroughTheSingleton) {
    InstalledMessage installed(std::make_unique<RecordingMessage>(settingsIn(dir.path())));
    auto *m = static_cast<RecordingMessage *>(installed.get());
    ASSERT_TRUE(m->isLogOpen());  // installing opens the log
    m->catchErrorCode(true);
    MSG_Scope(MSG_Text::untranslated("to the operator"), MSG_ACTION_ERROR, 14);
    MSG_Scope(MSG_Text::untranslated("fatal"), MSG_ACTION_FATAL);
    MSG_Scope(MSG_Text::untranslated("logged"), MSG_ACTION_LOG);
    MSG_Scope(MSG_Text::untranslated("debug only"), MSG_ACTION_DEBUG);
    EXPECT_EQ(m->getErrorCode(), 14);  // a later 0 does not clear it
    m->catchErrorCode(false);
    MSG_Scope(MSG_Text::untranslated("again"), MSG_ACTION_ERROR, 5);
    EXPECT_EQ(m->getErrorCode(), 14);  // not caught
    m->catchErrorCode(true);
    EXPECT_EQ(m->getErrorCode(), 0);  // catching starts from zero

    QStringList types;
    for (const QString &l : bodyLines(m->readLog())) types << kLine.match(l).captured(1);
    EXPECT_EQ(types, QStringList({"E", "F", "I", "E"}));
    ASSERT_EQ(m->shown.size(), 3u);
    EXPECT_EQ(m->shown[0].severity, 'E');
    EXPECT_EQ(m->shown[1].severity, 'E');  // a fatal error is shown as an error
}

TEST_F(MessageTest, ConsoleModeWritesNoFiles) {
    TUMessage::Settings s = settingsIn(dir.path());
    s.console = true;
    TUMessage m(s);
    QStringList seen;
    m.attachView([&](char, const QString &text, const QString &) { seen << text; });
    m.trace(MSG_Text::untranslated("to the views only"));
    EXPECT_FALSE(m.openLog());
    EXPECT_EQ(seen, QStringList{"to the views only"});
    EXPECT_TRUE(QDir(dir.path()).entryList(QDir::Files).isEmpty());
    // The default singleton is a console one.
    auto previous = TUMessage::takeInstance();
    TUMessage *def = TUMessage::instance();
    def->trace(MSG_Text::untranslated("x"));
    EXPECT_FALSE(def->isLogOpen());
    TUMessage::setInstance(std::move(previous));
}

// The lock goes with the object and the log stays; a translator adds a
// second log; both logs in UTF-8, removed with the lock when asked.
TEST_F(MessageTest, TranslatedTextsGoToASecondLog) {
    auto plain = open();
    const QString lock = plain->lockPath(), log = plain->logPath();
    EXPECT_TRUE(log.startsWith(dir.path() + "/ScanStation_tester_"));
    EXPECT_TRUE(plain->translatedLogPath().isEmpty());
    plain.reset();
    EXPECT_FALSE(QFile::exists(lock));
    EXPECT_TRUE(QFile::exists(log));
    TableTranslator tr({{{"TUUIMessage", "The application will terminate."}, "L'application va se terminer."},
                        {{"Scan", "Paper jam in %1"}, "Bourrage papier dans %1"}});
    auto m = open();
    ASSERT_EQ(m->translatedLogPath(), m->logPath() + "i");
    m->error(MSG_Text("Scan", "Paper jam in %1").arg("l'entr\u00e9e"));  // the value goes into both texts
    EXPECT_TRUE(readFile(m->logPath()).endsWith("Paper jam in l'entr\u00e9e\n"));
    EXPECT_TRUE(readFile(m->translatedLogPath()).endsWith("Bourrage papier dans l'entr\u00e9e\n"));
    ASSERT_EQ(m->shown.size(), 1u);
    EXPECT_EQ(m->shown[0].texts, QStringList{"Bourrage papier dans l'entr\u00e9e"});  // the operator reads the translation

    m->closeAndRemoveLog();
    EXPECT_FALSE(m->isLogOpen());
    m->trace(MSG_Text::untranslated("after removal"));  // harmless, goes nowhere
    EXPECT_TRUE(QDir(dir.path()).entryList(QDir::Files).isEmpty());
}

TEST_F(MessageTest, OtherThreadsReachTheLogThroughTheMainThread) {
    auto m = open();
    std::thread worker([&] {
        m->trace(MSG_Text::untranslated("from worker 1"));
        m->error(MSG_Text::untranslated("worker failed"));
        m->trace(MSG_Text::untranslated("from worker 2"));
    });
    worker.join();
    EXPECT_FALSE(m->readLog().contains("worker"));
    EXPECT_TRUE(m->shown.empty());  // no report leaves a worker thread

    QCoreApplication::sendPostedEvents(m.get(), TUMessage::kQueuedWriteEvent);
    const QStringList lines = bodyLines(m->readLog());
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].endsWith("from worker 1"));
    EXPECT_TRUE(lines[1].startsWith("E "));
    EXPECT_TRUE(lines[2].endsWith("from worker 2"));
    ASSERT_EQ(m->shown.size(), 1u);
    EXPECT_EQ(m->shown[0].texts, QStringList{"worker failed"});
    // A write on the main thread first drains what waits, keeping the order.
    std::thread late([&] { m->trace(MSG_Text::untranslated("late worker")); });
    late.join();
    m->trace(MSG_Text::untranslated("main"));
    const QStringList after = bodyLines(m->readLog());
    ASSERT_EQ(after.size(), 5);
    EXPECT_TRUE(after[3].endsWith("late worker"));
    EXPECT_TRUE(after[4].endsWith("main"));
    QCoreApplication::sendPostedEvents(m.get(), TUMessage::kQueuedWriteEvent);
    EXPECT_EQ(bodyLines(m->readLog()).size(), 5);  // the stale event writes nothing twice
    // A queued line keeps the mode it was written in.
    m->setDirectMode(true);
    std::thread raw([&] { m->trace(MSG_Text::untranslated("raw dump")); });
    raw.join();
    m->setDirectMode(false);
    QCoreApplication::sendPostedEvents(m.get(), TUMessage::kQueuedWriteEvent);
    EXPECT_EQ(bodyLines(m->readLog()).last(), "raw dump");
    // traceLater waits for the event even on the main thread.
    m->traceLater(MSG_Text::untranslated("later"));
    EXPECT_FALSE(m->readLog().contains("later"));
    QCoreApplication::sendPostedEvents(m.get(), TUMessage::kQueuedWriteEvent);
    EXPECT_TRUE(bodyLines(m->readLog()).last().startsWith("T "));
}

TEST_F(MessageTest, SuspendedReportsPileUpAndShowTogether) {
    auto m = open();
    m->suspendReport(true);
    m->information(MSG_Text::untranslated("one"));
    m->error(MSG_Text::untranslated("two"));
    m->warning(MSG_Text::untranslated("three"));
    EXPECT_TRUE(m->shown.empty());
    EXPECT_EQ(bodyLines(m->readLog()).size(), 3);  // the log does not wait
    m->suspendReport(false);
    ASSERT_EQ(m->shown.size(), 1u);
    EXPECT_EQ(m->shown[0].severity, 'E');
    EXPECT_EQ(m->shown[0].texts, QStringList({"one", "two", "three"}));

    m->suspendReport(true);
    m->warning(MSG_Text::untranslated("four"));
    m->showPendingReports();  // as the event loop does before it sleeps
    EXPECT_EQ(m->shown.size(), 2u);
    m->suspendReport(false);
    EXPECT_EQ(m->shown.size(), 2u);  // nothing shown twice

    m->setSilent(true);
    m->error(MSG_Text::untranslated("quiet"));
    EXPECT_EQ(m->shown.size(), 2u);
    EXPECT_TRUE(m->readLog().contains("quiet"));
}

TEST(PendingReport, SeverityOfTheList) {
    MSG_PendingReport p;
    p.add('I', "a");
    p.add('W', "b");  // only the first text or an error decides
    EXPECT_EQ(p.severity(), 'I');
    p.add('T', "c");
    EXPECT_EQ(p.severity(), 'W');
    p.add('E', "d");
    p.add('I', "e");
    EXPECT_EQ(p.severity(), 'E');
    EXPECT_EQ(p.take().size(), 5);
    EXPECT_TRUE(p.isEmpty());
    p.add('W', "g");
    EXPECT_EQ(p.severity(), 'W');
}

TEST(PendingReport, TextOfTheBox) {
    for (const auto &[severity, count, heading] :
         {std::tuple{'E', 1, "The following error occurred:\n"}, {'E', 2, "The following errors occurred:\n"},
          {'W', 1, "The following warning occurred:\n"}, {'W', 3, "The following warnings occurred:\n"},
          {'I', 3, "Information:\n"}})
        EXPECT_EQ(MSG_PendingReport::heading(severity, count), heading) << severity << count;

    EXPECT_EQ(MSG_PendingReport::body({"alone"}), "alone");
    EXPECT_EQ(MSG_PendingReport::body({"a", "b"}), " - a\n - b\n");
    QStringList thirty;
    for (int i = 1; i <= 30; ++i) thirty << QString::number(i);
    const QStringList lines = MSG_PendingReport::body(thirty).split('\n');
    ASSERT_EQ(lines.size(), 30);
    EXPECT_EQ(lines.mid(28), QStringList({" - 29", "..."}));
    EXPECT_EQ(MSG_PendingReport::body(thirty.mid(0, 29)).split('\n', Qt::SkipEmptyParts).size(), 29);
}

TEST_F(MessageTest, NoFreeLogEndsTheProcess) {
    const QString folder = dir.path();
    EXPECT_EXIT(
        {
            RefusingMessage m(settingsIn(folder));
            m.openLog();
        },
        ::testing::ExitedWithCode(1), "FATAL ERROR: Unable to open log file:\n.*_9999\\.log\nThe application will terminate\\.");
}

// The printf-style front end of the message object.
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
    EXPECT_EQ(std::pair(m()->isDebugMode(), m()->isDirectMode()), std::pair(false, false));
    m()->setDebugMode(true);
    LMV_direct_trace("sense: %02x", 0x70);
    EXPECT_EQ(std::pair(m()->isDebugMode(), m()->isDirectMode()), std::pair(true, false));
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
    EXPECT_TRUE(textOf(lines()[0]).contains(QRegularExpression(R"(^Internal assertion error detected \(.*test_tumessage\.cpp:\d+\)$)")))
        << lines()[0].toStdString();
}
