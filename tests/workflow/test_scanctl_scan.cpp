// Runs the built scanctl scan on the test scanner and reads its files back
// with scanctl info; and into an element of a SQLite production database made
// here, whose cels are marked and whose queue holds an entry for each drawing.
#include <QtCore>

#include <gtest/gtest.h>

#include <tuple>

#include "suite/db/sql_db_access.h"
#include "scan_conf_file.h"
#include "support/run_program.h"

namespace {

class ScanctlScan : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        oldEtc_ = qgetenv("SCAN_ETC");
        qputenv("SCAN_ETC", dir_.path().toLocal8Bit());  // no station's own database.conf
        conf_ = writeScanConf(dir_.path(), scannerBlock("Test", "Bogus-Color") +
                                               scannerBlock("Flat Bed", "Epson_836XL", {}, "/dev/null"));
        ASSERT_TRUE(QDir(dir_.path()).mkdir(QStringLiteral("scans")));
        scans_ = dir_.filePath(QStringLiteral("scans"));
    }
    void TearDown() override { qputenv("SCAN_ETC", oldEtc_); }

    ProcessResult scanctl(const QStringList &args, int timeoutMs = 30000) {
        return run_program(QStringLiteral(SCANCTL_PATH), args, dir_.path(), timeoutMs);
    }
    // A scan of `list` with the words given and the conf, folder and prefix.
    ProcessResult scan(const QStringList &words, const QString &list, int timeoutMs = 30000) {
        return scanctl(QStringList{"scan", "--conf", conf_, "--path", scans_, "--prefix", "S", "--list", list} + words,
                       timeoutMs);
    }
    QStringList files() const { return QDir(scans_).entryList(QDir::Files, QDir::Name); }
    void writeFile(const QString &name, const QByteArray &bytes) const {
        QFile f(dir_.filePath(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size());
    }

    QTemporaryDir dir_;
    QByteArray oldEtc_;
    QString conf_, scans_;
};

TEST_F(ScanctlScan, ColourDrawingsReadBackWithTheirScanInformation) {
    const ProcessResult r = scan({"--scanner", "Test", "--depth", "colour", "--dpi", "150", "--field", "12",
                                  "--feed", "pegged-many", "--peg", "top", "--scaninfo-files"},
                                 "1:3", 120000);
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains("\n3 (Scanned) Colour, 150dpi, 12.0F, top\n"));
    EXPECT_TRUE(r.err.contains(QStringLiteral("Scanned 3 of 3 drawings into %1").arg(scans_)));
    EXPECT_EQ(files().size(), 6);

    QStringList paths;
    for (int i = 1; i <= 3; ++i) paths << QStringLiteral("%1/S-%2.tif").arg(scans_, QString::number(i));
    const ProcessResult info = scanctl(QStringList{"info"} + paths);
    ASSERT_EQ(info.status, 0) << info.err.toStdString();
    for (const char *line : {"    dpi:               150\n", "    scanner name:      Test\n",
                             "    peg side:          top\n", "    pegged:            yes\n", "  pixels:  RGBA8\n"})
        EXPECT_EQ(info.out.count(line), 3) << line;
}

TEST_F(ScanctlScan, WrongWordsAreUsageErrorsAndWhatTheScannerCannotDoIsRefused) {
    const QStringList folder{"scan", "--conf", conf_, "--path", scans_, "--prefix", "S"};
    const QList<std::pair<QStringList, int>> cases = {
        {folder + QStringList{"--list", "1", "--depth", "sepia"}, 1},
        {folder + QStringList{"--list", "1", "--on-misfeed", "maybe"}, 1},
        {folder, 1},                                                         // no list
        {folder + QStringList{"--list", "a:3"}, 1},
        {{"scan", "--conf", conf_, "--path", scans_, "--list", "1"}, 1},     // no prefix
        {{"scan", "--conf", conf_, "--prefix", "S", "--list", "1"}, 1},      // no folder
        {folder + QStringList{"--list", "1", "--scanner", "Nobody"}, 2},
        {folder + QStringList{"--list", "1", "--dpi", "240"}, 2},            // Bogus-Color has no 240 dpi step
        {folder + QStringList{"--list", "1", "--scanner", "Flat Bed", "--feed", "autofeed"}, 2},  // no feeder
        {folder + QStringList{"--list", "1", "--feed", "page"}, 2},          // TWAIN sources only
        {{"scan", "--conf", conf_, "--path", dir_.filePath("missing"), "--prefix", "S", "--list", "1"}, 2},
    };
    for (const auto &[words, status] : cases) {
        const ProcessResult r = scanctl(words);
        EXPECT_EQ(r.status, status) << words.join(' ').toStdString();
        EXPECT_EQ(r.err.contains("usage: scanctl scan"), status == 1) << words.join(' ').toStdString();
    }
    EXPECT_TRUE(files().isEmpty());
    EXPECT_EQ(QDir(dir_.path()).entryList({"*.tif"}), QStringList());
}

TEST_F(ScanctlScan, ListsThatEndEarlyTellWhatWasNotScannedAndWhatNotReached) {
    ASSERT_NO_FATAL_FAILURE(writeFile("ADF_COUNT_FILE", "1\n"));
    for (const char *policy : {"stop", "retry"}) {
        const ProcessResult r =
            scan({"--dpi", "72", "--feed", "autofeed", "--no-optical", "--on-misfeed", policy}, "1:3");
        EXPECT_EQ(r.status, 2) << policy;
        EXPECT_TRUE(r.err.contains("Autofeed Error: Drawing misfed or not found. -> Stop Scanning")) << policy;
    }
    EXPECT_EQ(files(), QStringList{"S-1.tif"});

    // A save that fails counts its drawing as not scanned: a folder stands
    // where the file would go.
    ASSERT_TRUE(QDir(scans_).mkdir("S-5.tif"));
    const ProcessResult r = scan({"--dpi", "72", "--feed", "pegged-many", "--no-optical"}, "5 6");
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.err.contains(QStringLiteral("Scanned 0 of 2 drawings into %1 (1 not scanned, 1 not reached).")
                                   .arg(scans_)))
        << r.err.toStdString();
}

// The value after `label` on its line of a scanctl output.
QString field(const QString &out, const QString &label) {
    const qsizetype at = out.indexOf(label);
    if (at < 0) return {};
    const qsizetype start = at + label.size();
    return out.mid(start, out.indexOf('\n', start) - start).trimmed();
}

TEST_F(ScanctlScan, OpticalScansKeepTheirTurnAndRegisterAgainFromTheFile) {
    ASSERT_NO_FATAL_FAILURE(writeFile("DUMMY_XYR_OFFSET_FILE", "0.05,-0.05,0.6\n"));
    // Black and white stays uncut for the vectorizer; grey is turned and cut.
    for (const char *depth : {"bw", "grey"}) {
        const ProcessResult r = scanctl({"scan", "--conf", conf_, "--path", scans_, "--prefix", depth, "--list", "1",
                                         "--depth", depth, "--dpi", "150", "--peg", "left", "--feed", "pegged",
                                         "--optical"});
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
    }
    const QString bw = scans_ + "/bw-1.tif", grey = scans_ + "/grey-1.tif";
    const ProcessResult info = scanctl({"info", bw});
    const QString angle = field(info.out, "rotation angle:").remove(" rad");
    EXPECT_NE(angle.toDouble(), 0.0);
    EXPECT_EQ(field(scanctl({"info", grey}).out, "size:").section(',', 0, 0), "1350 x 1800 pixels");

    const ProcessResult again = scanctl({"register", bw});
    ASSERT_EQ(again.status, 0) << again.err.toStdString();
    EXPECT_EQ(field(again.out, "angle:").section(' ', 0, 0), angle);
    EXPECT_EQ(field(again.out, "x:") + ", " + field(again.out, "y:"), field(info.out, "rotation centre:"));

    EXPECT_EQ(scanctl({"register", grey}).status, 2) << "the peg strip was cut away";
    EXPECT_EQ(scanctl({"register", bw, "--side", "top"}).status, 2);
    const ProcessResult traced = scanctl({"register", bw, "--rdebug"});
    EXPECT_TRUE(traced.err.contains("Performing optical registration. Looseness factor is 2.000000\n"));
    EXPECT_TRUE(traced.out.contains("Found a center peg candidate at: ("));
    EXPECT_EQ(scanctl({"register", bw, "--threshold", "300"}).status, 1);
    EXPECT_EQ(scanctl({"register", dir_.filePath("none.tif")}).status, 2);
}

// Job J, scene S1 in the folder scene1, colour element E exposing 1 to 4.
class ScanctlScanElement : public ScanctlScan {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(ScanctlScan::SetUp());
        dbFile_ = dir_.filePath(QStringLiteral("production.db"));
        ASSERT_TRUE(QDir(dir_.path()).mkpath(QStringLiteral("scene1/E")));

        SqlDbAccess db(dbFile_);
        ASSERT_EQ(db.dba_Open2dDatabaseSession(), 0) << db.lastError().toStdString();
        const auto job = db.createJob(QStringLiteral("J"));
        const auto scene = job ? db.createScene(job->id, "S1", dir_.filePath(QStringLiteral("scene1"))) : std::nullopt;
        ASSERT_TRUE(scene);
        const auto element = db.createElement(scene->id, {.name = "E", .path = "E", .scanType = LMV_SCAN_COLOUR,
                                                          .needsVectorization = LMV_VECTORIZE, .pf = 4});
        ASSERT_TRUE(element);
        elementId_ = element->id;
        ASSERT_EQ(db.exposeDrawings(elementId_, {"1", "2", "3", "4"}), 4);
    }
    ProcessResult scan(const QStringList &words) {
        return run_program(QStringLiteral(SCANCTL_PATH),
                           QStringList{"scan", "--db", dbFile_, "--conf", conf_, "--dpi", "72", "--feed", "pegged-many"} +
                               words,
                           dir_.path(), 60000);
    }
    QString element(const char *file) const { return dir_.filePath(QStringLiteral("scene1/E/")) + file; }

    QString dbFile_;
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
    QStringList marked, queued;
    for (const dba_cel_struct &cel : db.cels(elementId_)) {
        marked << cel.drawingName();
        EXPECT_EQ(std::tie(cel.scanCount, cel.processedStage, cel.processedStatus), std::tuple(1, 1, 0));
    }
    EXPECT_EQ(marked, (QStringList{"1", "2", "3", "4"}));
    for (const dba_queueEntry_struct &e : db.queueEntries()) {
        queued << e.drawing;
        EXPECT_EQ(std::tie(e.jobName, e.sceneName, e.elementName, e.elementId, e.process, e.options, e.state),
                  std::tuple("J", "S1", "E", elementId_, DBA_PROCESS_VECTORIZE, "", dba_queueState::Waiting));
    }
    EXPECT_EQ(queued, (QStringList{"1", "2", "3", "4"}));

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
