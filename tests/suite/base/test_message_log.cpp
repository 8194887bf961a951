#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "suite/base/log_lock.h"
#include "suite/base/message_log.h"
#include "tests/suite/base/message_fixture.h"

namespace {

class MessageLogTest : public ::testing::Test {
protected:
    void SetUp() override {
        id.folder = dir.path();
        id.appName = QStringLiteral("Scan Station");
        id.userName = QStringLiteral("tester");
        id.version = QStringLiteral("1.4\n\n  \nbuild 77\n");
    }
    QTemporaryDir dir;
    MessageLog::Identity id;
};

bool notLive(const QString &lock, const QString &) { return !LogLock::isLive(lock); }

// A lock held the way a crashed process leaves it: the file is there, nobody holds it.
void writeStaleLock(const QString &path) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("2001-01-01 00:00:00\nLock file for the log of Scan Station\nUser: ghost\n");
}

}  // namespace

TEST(LogLock, LiveWhileHeldStaleOnceLeftBehind) {
    QTemporaryDir dir;
    const QString path = dir.filePath("a.lock");
    EXPECT_FALSE(LogLock::isLive(path));  // no file at all
    {
        LogLock lock;
        ASSERT_TRUE(lock.acquire(path, {"one", "two", "three"}));
        EXPECT_TRUE(LogLock::isLive(path));
        EXPECT_TRUE(LogLock::isLive(path));  // probing does not take it over
        LogLock rival;
        EXPECT_FALSE(rival.acquire(path, {"rival"}));
        EXPECT_EQ(readFile(path), QStringLiteral("one\ntwo\nthree\n"));  // the holder's lines survive
    }
    EXPECT_FALSE(QFile::exists(path));  // released locks are removed

    writeStaleLock(path);
    EXPECT_FALSE(LogLock::isLive(path));
    // Held through another open file, as another process holds it.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::flock(fd, LOCK_EX | LOCK_NB), 0);
    EXPECT_TRUE(LogLock::isLive(path));
    ::close(fd);
    LogLock reuse;
    ASSERT_TRUE(reuse.acquire(path, {"mine"}));
    EXPECT_EQ(readFile(path), QStringLiteral("mine\n"));
}

TEST(MessageLog, NamesFollowAppUserAndNumber) {
    EXPECT_EQ(MessageLog::baseName("/logs", "Scan Station 2", "ann"), QStringLiteral("/logs/ScanStation2_ann_"));
    EXPECT_EQ(MessageLog::numbered("/logs/Scan_ann_", 7, ".log"), QStringLiteral("/logs/Scan_ann_0007.log"));
    EXPECT_EQ(MessageLog::versionLine("Scan 1.4\r\n\r\n   \nbuild 77\n"), QStringLiteral("Scan 1.4, build 77"));
    EXPECT_EQ(MessageLog::versionLine(""), QString());
}

TEST_F(MessageLogTest, SkipsLiveLocksAndReusesStaleOnes) {
    const QString base = MessageLog::baseName(dir.path(), id.appName, id.userName);

    LogLock first, second;
    ASSERT_TRUE(first.acquire(MessageLog::numbered(base, 1, ".lock"), {"held"}));
    ASSERT_TRUE(second.acquire(MessageLog::numbered(base, 2, ".lock"), {"held"}));
    writeStaleLock(MessageLog::numbered(base, 3, ".lock"));

    MessageLog log;
    ASSERT_TRUE(log.open(id, notLive));
    EXPECT_EQ(log.logPath(), MessageLog::numbered(base, 3, ".log"));
    EXPECT_EQ(log.lockPath(), MessageLog::numbered(base, 3, ".lock"));
    // Another log of the same user and program, opened while this one lives.
    MessageLog other;
    ASSERT_TRUE(other.open(id, notLive));
    EXPECT_EQ(other.logPath(), MessageLog::numbered(base, 4, ".log"));
    // The lock file tells who holds the log, on three lines.
    const QStringList lines = readFile(log.lockPath()).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(QRegularExpression("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$").match(lines[0]).hasMatch()) << lines[0].toStdString();
    EXPECT_EQ(lines.mid(1), QStringList({"Lock file for the log of Scan Station", "User: tester"}));
    // Closing keeps the log and frees its number.
    const QString lockPath = log.lockPath();
    const QString logPath = log.logPath();
    log.close();
    EXPECT_FALSE(QFile::exists(lockPath));
    EXPECT_TRUE(QFile::exists(logPath));
    MessageLog again;
    ASSERT_TRUE(again.open(id, notLive));
    EXPECT_EQ(again.logPath(), logPath);
}

TEST_F(MessageLogTest, FailsWhenEveryNumberIsRefused) {
    MessageLog log;
    int asked = 0;
    EXPECT_FALSE(log.open(id, [&](const QString &, const QString &) {
        ++asked;
        return false;
    }));
    EXPECT_EQ(std::pair(asked, log.isOpen()), std::pair(MessageLog::kMaxNumber, false));
    EXPECT_TRUE(log.lastTriedLog().endsWith("_9999.log"));
    EXPECT_TRUE(QDir(dir.path()).entryList(QDir::Files).isEmpty());
}

TEST_F(MessageLogTest, HeaderTellsDateProgramVersionUserAndMode) {
    for (const bool debug : {false, true}) {
        id.debug = debug;
        MessageLog log;
        ASSERT_TRUE(log.open(id, notLive));
        const QStringList h = log.read().split('\n', Qt::SkipEmptyParts);
        ASSERT_EQ(h.size(), debug ? 6 : 5);
        EXPECT_TRUE(h[0].startsWith(" Date - Time : ")) << h[0].toStdString();
        EXPECT_EQ(h.mid(1, 4), (QStringList{" Application : Scan Station", " Version : 1.4, build 77", " O/S User name : tester",
                                            debug ? " Debug mode : ON" : " Debug mode : OFF"}));
        EXPECT_EQ(h.value(5), debug ? QStringLiteral(" Log file : ") + log.logPath() : QString());
    }
}

TEST_F(MessageLogTest, ReusedNumberIsTruncatedOrAppended) {
    auto runOnce = [&](const QString &line) {
        MessageLog log;
        EXPECT_TRUE(log.open(id, notLive));
        log.writeLine(line, line);
        return log.read();
    };
    runOnce("first run");
    EXPECT_FALSE(runOnce("second run").contains("first run"));
    id.append = true;
    const QString both = runOnce("third run");
    EXPECT_TRUE(both.contains("second run"));
    EXPECT_TRUE(both.contains("third run"));
    EXPECT_EQ(both.count(" Application : "), 2);  // each run writes its own header
}
