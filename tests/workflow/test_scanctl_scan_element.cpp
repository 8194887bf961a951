// scanctl scan into an element of a SQLite production database made here:
// the files land in the element's folder, the cels are marked and the queue
// holds an entry for each drawing, all read back through the library.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "suite/base/osw_util.h"
#include "suite/db/sql_db_access.h"
#include "support/run_program.h"

namespace {

class ScanctlScanElement : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        oldEtc_ = qgetenv("SCAN_ETC");
        qputenv("SCAN_ETC", dir_.path().toLocal8Bit());  // no station's own database.conf
        QString host;
        ASSERT_TRUE(oswUtil::getShortMachineName(host));
        conf_ = dir_.filePath(QStringLiteral("Scan.conf"));
        QFile f(conf_);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("host: " + host.toUtf8() + "\nname: Test\ndevice: fieldchart\nmodel: Bogus-Color\n");
        f.close();
        dbFile_ = dir_.filePath(QStringLiteral("production.db"));
        ASSERT_TRUE(QDir(dir_.path()).mkpath(QStringLiteral("scene1/E")));

        SqlDbAccess db(dbFile_);
        ASSERT_EQ(db.dba_Open2dDatabaseSession(), 0) << db.lastError().toStdString();
        const auto job = db.createJob(QStringLiteral("J"));
        ASSERT_TRUE(job);
        const auto scene = db.createScene(job->id, QStringLiteral("S1"), dir_.filePath(QStringLiteral("scene1")));
        ASSERT_TRUE(scene);
        const auto element = db.createElement(scene->id, {.name = QStringLiteral("E"),
                                                          .path = QStringLiteral("E"),
                                                          .scanType = LMV_SCAN_COLOUR,
                                                          .needsVectorization = LMV_VECTORIZE,
                                                          .pf = 4,
                                                          .fieldChart = 12});
        ASSERT_TRUE(element);
        elementId_ = element->id;
        ASSERT_EQ(db.exposeDrawings(elementId_, {"1", "2", "3", "4"}), 4);
    }
    void TearDown() override { qputenv("SCAN_ETC", oldEtc_); }

    ProcessResult scan(const QStringList &words) {
        return run_program(QStringLiteral(SCANCTL_PATH),
                           QStringList{"scan", "--db", dbFile_, "--conf", conf_, "--dpi", "72", "--feed", "pegged-many"} +
                               words,
                           dir_.path(), 60000);
    }
    QString element(const char *file) const { return dir_.filePath(QStringLiteral("scene1/E/")) + file; }

    QTemporaryDir dir_;
    QByteArray oldEtc_;
    QString conf_, dbFile_;
    qint64 elementId_ = 0;
};

TEST_F(ScanctlScanElement, DrawingsLandInTheElementFolderMarkedAndQueued) {
    const ProcessResult r = scan({"--job", "J", "--scene", "S1", "--element", "E", "--drawings", "1:2"});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QStringLiteral("Scanned 2 of 2 drawings into %1").arg(dir_.filePath("scene1/E"))))
        << r.err.toStdString();
    EXPECT_TRUE(QFile::exists(element("E-1.tif")));
    EXPECT_TRUE(QFile::exists(element("E-2.tif")));

    // The exposed drawings not scanned yet are 3 and 4.
    const ProcessResult rest = scan({"--job", "J", "--scene", "S1", "--element", "E", "--unscanned"});
    ASSERT_EQ(rest.status, 0) << rest.err.toStdString();
    EXPECT_TRUE(rest.err.contains("Scanning 2 drawings")) << rest.err.toStdString();
    EXPECT_TRUE(QFile::exists(element("E-4.tif")));

    SqlDbAccess db(dbFile_);
    ASSERT_EQ(db.dba_Open2dDatabaseSession(), 0);
    QStringList marked;
    for (const dba_cel_struct &cel : db.cels(elementId_)) {
        EXPECT_EQ(cel.scanCount, 1) << cel.name.toStdString();
        EXPECT_EQ(cel.processedStage, 1);
        EXPECT_EQ(cel.processedStatus, 0);
        marked << cel.drawingName();
    }
    EXPECT_EQ(marked, (QStringList{"1", "2", "3", "4"}));

    const std::vector<dba_queueEntry_struct> queue = db.queueEntries();
    ASSERT_EQ(queue.size(), 4u);
    QStringList drawings;
    for (const dba_queueEntry_struct &e : queue) {
        drawings << e.drawing;
        EXPECT_EQ(e.jobName, "J");
        EXPECT_EQ(e.sceneName, "S1");
        EXPECT_EQ(e.elementName, "E");
        EXPECT_EQ(e.elementId, elementId_);
        EXPECT_EQ(e.process, DBA_PROCESS_VECTORIZE);
        EXPECT_EQ(e.options, "");
        EXPECT_EQ(e.state, dba_queueState::Waiting);
    }
    EXPECT_EQ(drawings, (QStringList{"1", "2", "3", "4"}));

    const ProcessResult none = scan({"--job", "J", "--scene", "S1", "--element", "E", "--unscanned"});
    EXPECT_EQ(none.status, 2);
    EXPECT_TRUE(none.err.contains("element 'E' has no unscanned drawings")) << none.err.toStdString();
}

TEST_F(ScanctlScanElement, WrongWordsAreUsageErrorsAndUnknownNamesAreRefused) {
    struct Case {
        QStringList words;
        const char *text;
        int status;
    };
    const QList<Case> wrong = {
        {{"--job", "X", "--scene", "S1", "--element", "E", "--drawings", "1"}, "no job 'X'", 2},
        {{"--job", "J", "--scene", "X", "--element", "E", "--drawings", "1"}, "no scene 'X' in job 'J'", 2},
        {{"--job", "J", "--scene", "S1", "--element", "X", "--drawings", "1"}, "no element 'X' in scene 'S1'", 2},
        {{"--job", "J", "--scene", "S1", "--element", "E"}, "give either --drawings or --unscanned", 1},
        {{"--job", "J", "--element", "E", "--drawings", "1"}, "go together", 1},
        {{"--job", "J", "--scene", "S1", "--element", "E", "--drawings", "1", "--depth", "grey"},
         "not scanned at that depth", 2},
        {{"--job", "J", "--scene", "S1", "--element", "E", "--drawings", "1", "--path", "."}, "--path", 1},
        {{"--job", "J", "--scene", "S1", "--element", "E", "--drawings", "a:3"}, "a:3", 1},
    };
    for (const Case &c : wrong) {
        const ProcessResult r = scan(c.words);
        EXPECT_EQ(r.status, c.status) << c.words.join(' ').toStdString();
        EXPECT_TRUE(r.err.contains(c.text)) << r.err.toStdString();
    }
    EXPECT_TRUE(QDir(dir_.filePath("scene1/E")).isEmpty());
}

}  // namespace
