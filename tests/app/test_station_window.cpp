// The station window driven as an operator would: menus that follow the
// scanner, a manual list scanned with F5, the Stop question, the no-scanner
// question, and settings restored from a scan file.
#include <QtWidgets>
#include <QtSql>
#include <QtTest>

#include "app/param_dlg.h"
#include "app/param_speed_widget.h"
#include "app/param_widget.h"
#include "app/scale_slider.h"
#include "app/scan_image.h"
#include "app/scroll_image.h"
#include "app/tuabout_dialog.h"
#include "app/tudb_select_dlg.h"
#include "app/tudrawing_selector.h"
#include "app/tumanual_list_dlg.h"
#include "scan/drawing.h"
#include "scan/parameters.h"
#include "scan/scanner_list.h"
#include "suite/base/whoami.h"
#include "station_window_fixture.h"
#include "support/run_program.h"
#include "workflow/drawing_list.h"

namespace {

bool hasPicture(TUScanImage *view) { return !view->scrollImage()->image().isNull(); }

}  // namespace

class StationSession : public StationWindowTest {
protected:
    // Presses Stop whenever the scan loop lets it be pressed.
    void pressStopDuringScan() {
        auto *timer = new QTimer(window_.get());
        QObject::connect(timer, &QTimer::timeout, window_.get(), [this, timer] {
            QPushButton *stop = window_->button(SessionButton::Stop);
            if (!stop->isEnabled()) return;
            timer->stop();
            stop->click();
        });
        timer->start(1);
    }
};

TEST_F(StationSession, StartsOnTheFirstScannerWithMenusFollowingItsCapabilities) {
    ASSERT_NE(start(twoScanners()), nullptr);
    TUMenuButton *scanner = window_->selectionButton(SelectionButton::Scanner);
    EXPECT_EQ(scanner->text(), QStringLiteral("Test_Scanner"));
    EXPECT_EQ(scanner->entry(kNoScannerId), nullptr);
    EXPECT_EQ(window_->windowTitle(), QStringLiteral("Scan: Untitled"));
    EXPECT_TRUE(window_->checkBox(SessionCheckBox::OpticalRegistration)->isChecked());
    // The colour test scanner offers every depth but no 240 dpi.
    TUMenuButton *dpi = window_->selectionButton(SelectionButton::Dpi);
    EXPECT_FALSE(dpi->entry(4)->isEnabled());
    EXPECT_TRUE(dpi->entry(3)->isEnabled());
    EXPECT_EQ(dpi->text(), QStringLiteral("200 dpi"));
    EXPECT_EQ(window_->selectionButton(SelectionButton::Peg)->text(), QStringLiteral("Bottom Peg"));
    for (int depth = 0; depth < 3; ++depth)
        EXPECT_TRUE(window_->selectionButton(SelectionButton::Colour)->entry(depth)->isEnabled()) << depth;
    // Without a list nothing can be scanned, and F5 does nothing.
    EXPECT_FALSE(window_->button(SessionButton::Scan)->isEnabled());
    QTest::keyClick(window_.get(), Qt::Key_F5);
    EXPECT_EQ(drawing_of_ScanConfig(config_), nullptr);
    // The left column keeps its width, the frame preview filling it whole.
    QWidget *lowerPane = window_->framePreview()->parentWidget();
    EXPECT_EQ(lowerPane->width(), 300);
    EXPECT_TRUE(lowerPane->rect().contains(window_->framePreview()->geometry()));
    save_screenshot(window_.get(), QStringLiteral("station_start"));

    // The black and white scanner: its long name is cut on the button only,
    // its depth shows with one ampersand (a button shows "&&" as one), it
    // offers 240 dpi, and the panel shows threshold and speed.
    choose(SelectionButton::Scanner, 1);
    TUMenuButton *colour = window_->selectionButton(SelectionButton::Colour);
    EXPECT_EQ(scanner->text(), QStringLiteral("Line_Art_Of_The_Ink_"));
    EXPECT_EQ(scanner->entry(1)->text(), QStringLiteral("Line_Art_Of_The_Ink_Room"));
    EXPECT_EQ(colour->text(), QStringLiteral("Black && White"));
    EXPECT_EQ(colour->entry(0)->text(), QStringLiteral("&Black && White"));
    EXPECT_TRUE(colour->entry(1)->isEnabled() && !colour->entry(2)->isEnabled());  // grey but no colour
    EXPECT_TRUE(dpi->entry(4)->isEnabled());
    EXPECT_EQ(window_->selectionButton(SelectionButton::Peg)->text(), QStringLiteral("Top Peg"));
    ASSERT_NE(window_->paramDlg()->thresholdWidget(), nullptr);
    EXPECT_FALSE(window_->paramDlg()->thresholdWidget()->isHidden());
    ASSERT_NE(window_->paramDlg()->speedWidget(), nullptr);
    EXPECT_FALSE(window_->paramDlg()->speedWidget()->isHidden());
    save_screenshot(window_.get(), QStringLiteral("station_line_art"));
}

// Stop during a scan: Finish This Drawing ends the list after the drawing,
// Stop Immediately leaves the drawing unscanned; F5 then scans the rest into
// all three views.
TEST_F(StationSession, F5ScansTheManualListAndStopEndsIt) {
    ASSERT_NE(start(twoScanners()), nullptr);
    buildList(QStringLiteral("1:3"));
    ASSERT_EQ(window_->drawingList()->count(), 3);
    EXPECT_EQ(window_->windowTitle(), QStringLiteral("Scan: Manual List"));
    // Neither a double click nor Return on a row scans.
    emit window_->drawingList()->itemActivated(window_->drawingList()->item(1));
    emit window_->drawingList()->itemDoubleClicked(window_->drawingList()->item(1));
    EXPECT_EQ(drawing_of_ScanConfig(config_), nullptr);
    // The test scanner feeds: the overview is shown.
    ASSERT_TRUE(autofeed_of_ScanConfig(config_));
    EXPECT_FALSE(window_->overview()->isHidden());
    {
        BoxOperator operatorAnswers(QStringLiteral("Finish This Drawing"), QStringLiteral("station_stop_question"));
        pressStopDuringScan();
        QTest::keyClick(window_.get(), Qt::Key_F5);
        ASSERT_EQ(operatorAnswers.titles, QStringList{QStringLiteral("Scan: Stop Scanning")});
        EXPECT_EQ(operatorAnswers.texts.first(),
                  QStringLiteral("Do you want to stop scanning immediately,\nor finish scanning the current drawing?"));
    }
    EXPECT_TRUE(row(0).startsWith(QStringLiteral("1 (Scanned) ")));
    EXPECT_EQ(row(1), QStringLiteral("2"));
    {
        BoxOperator operatorAnswers(QStringLiteral("Stop Immediately"), QString());
        pressStopDuringScan();
        QTest::keyClick(window_.get(), Qt::Key_F5);
        ASSERT_EQ(operatorAnswers.titles.size(), 1);
    }
    EXPECT_EQ(row(1), QStringLiteral("2"));
    EXPECT_EQ(row(2), QStringLiteral("3"));

    BoxOperator operatorAnswers(QStringLiteral("Retry"), QStringLiteral("station_unexpected_question"));
    QTest::keyClick(window_.get(), Qt::Key_F5);
    EXPECT_TRUE(operatorAnswers.titles.isEmpty()) << operatorAnswers.titles.join(", ").toStdString();
    const QString summary = summary_of_ScanConfig(config_);
    EXPECT_EQ(summary, QStringLiteral("Colour, 200dpi, 12.0F, bottom, O/R"));
    for (int r = 0; r < 3; ++r) EXPECT_EQ(row(r), QString::number(r + 1) + QStringLiteral(" (Scanned) ") + summary);
    EXPECT_TRUE(hasPicture(window_->mainImage()));
    EXPECT_TRUE(hasPicture(window_->framePreview()));
    EXPECT_TRUE(hasPicture(window_->overview()));
    EXPECT_LE(window_->framePreview()->scrollImage()->image().width(), 300);
    EXPECT_TRUE(window_->lastScannedLabel()->text().startsWith(QStringLiteral("Last Scanned:")));
    EXPECT_TRUE(window_->button(SessionButton::Scan)->isEnabled());
    EXPECT_FALSE(window_->button(SessionButton::Stop)->isEnabled());
    save_screenshot(window_.get(), QStringLiteral("station_scanned"));
}

// The colour scanner's values for black and white.
Standard_parameters *bwParameters(ScanConfig *config, int scanner) {
    return parameters_of_ScanDeviceInfo(
        device_of_ScannerEntry(entry_of_ScannerList(scanner_list_of_ScanConfig(config), scanner)), 0);
}

TEST_F(StationSession, LoadFromFileRestoresTheSettingsTheFileWasScannedWith) {
    ASSERT_NE(start(twoScanners()), nullptr);
    // Drawing 7 in black and white at 150 dpi, 16 field, left peg, with a
    // threshold of 77 on the colour test scanner.
    choose(SelectionButton::Colour, 0);
    choose(SelectionButton::Dpi, 2);
    choose(SelectionButton::Field, 1);
    choose(SelectionButton::Peg, 1);
    bwParameters(config_, 0)->threshold_current = 77;
    buildList(QStringLiteral("7"));
    {
        BoxOperator operatorAnswers(QStringLiteral("Retry"), QString());
        QTest::keyClick(window_.get(), Qt::Key_F5);
    }
    const Drawing *scanned = drawing_of_ScanConfig(config_);
    ASSERT_TRUE(scanned && row(0).startsWith(QStringLiteral("7 (Scanned)")));
    const QDir folder(path_of_Drawing(scanned));
    const QStringList files = folder.entryList({file_base_name_of_Drawing(scanned) + QStringLiteral(".*")}, QDir::Files);
    ASSERT_EQ(files.size(), 1);
    const QString file = folder.filePath(files.first());

    // The operator changes every setting before loading the file again.
    choose(SelectionButton::Colour, 2);
    choose(SelectionButton::Dpi, 5);    // 300 dpi
    choose(SelectionButton::Field, 0);  // 12 field
    choose(SelectionButton::Peg, 4);    // bottom
    bwParameters(config_, 0)->threshold_current = 140;
    ASSERT_EQ(dpi_of_ScanConfig(config_), 300u);

    window_->loadFile(file);
    EXPECT_EQ(window_->drawingList()->count(), 0);
    EXPECT_EQ(window_->windowTitle(), QStringLiteral("Scan: ") + file);
    EXPECT_EQ(std::tuple(depth_of_ScanConfig(config_), dpi_of_ScanConfig(config_), field_of_ScanConfig(config_),
                         peg_side_of_ScanConfig(config_), bwParameters(config_, 0)->threshold_current),
              std::tuple(0, 150u, 16.0, 1, 77));
    QStringList buttons;
    for (auto b : {SelectionButton::Scanner, SelectionButton::Colour, SelectionButton::Dpi, SelectionButton::Field,
                   SelectionButton::Peg})
        buttons << window_->selectionButton(b)->text();
    EXPECT_EQ(buttons.join(", "), QStringLiteral("Test_Scanner, Black && White, 150 dpi, 16 Field, Left Peg"));
    EXPECT_FALSE(window_->paramDlg()->thresholdWidget()->isHidden());
    for (auto b : {SessionButton::Save, SessionButton::Scan, SessionButton::Preview})  // the list went with the file
        EXPECT_FALSE(window_->button(b)->isEnabled());
    EXPECT_TRUE(hasPicture(window_->mainImage()));
    save_screenshot(window_.get(), QStringLiteral("station_loaded_file"));

    // The file's values reach the scanner that made it, not the one that was
    // selected; that scanner comes back with the settings it brings along.
    bwParameters(config_, 0)->threshold_current = 140;
    choose(SelectionButton::Scanner, 1);
    window_->loadFile(file);
    EXPECT_EQ(window_->selectionButton(SelectionButton::Scanner)->text(), QStringLiteral("Test_Scanner"));
    EXPECT_EQ(scanner_of_ScanConfig(config_), entry_of_ScannerList(scanner_list_of_ScanConfig(config_), 0));
    EXPECT_EQ(std::tuple(dpi_of_ScanConfig(config_), field_of_ScanConfig(config_), peg_side_of_ScanConfig(config_),
                         bwParameters(config_, 0)->threshold_current),
              std::tuple(200u, 16.0, 4, 77));
}

TEST_F(StationWindowTest, WithoutScannersTheOperatorIsAskedWhetherToGoOn) {
    {
        BoxOperator operatorAnswers(QStringLiteral("Exit Scan Program"), QStringLiteral("station_no_scanner"));
        EXPECT_EQ(start("# no scanner here\n"), nullptr);
        ASSERT_EQ(operatorAnswers.titles, QStringList{QStringLiteral("No Scanners Present")});
        EXPECT_TRUE(operatorAnswers.texts.first().startsWith(
            QStringLiteral("No Scanners are attached to this computer. \nYou'll need to log into")));
    }
    BoxOperator operatorAnswers(QStringLiteral("Continue"), QString());
    ASSERT_NE(start("# no scanner here\n"), nullptr);
    EXPECT_EQ(window_->selectionButton(SelectionButton::Scanner)->text(), QStringLiteral("No Scanner"));
    choose(SelectionButton::Scanner, kNoScannerId);  // ignored
    EXPECT_EQ(scanner_kind_of_ScanConfig(config_), SCANNER_NONE);
    buildList(QStringLiteral("1"));
    EXPECT_FALSE(window_->button(SessionButton::Scan)->isEnabled());
    save_screenshot(window_.get(), QStringLiteral("station_without_scanner"));
}

// Open Drawings: the element chosen in the database, its unscanned drawings
// taken from the selector, scanned with F9, marked and queued. Before the
// scan the file dialog of Load From File showed the folder of the SQLite file
// and another program's session was opened and closed; after it the station
// is closed: what the station wrote reached the file that every other
// program uses, and the file is whole. (A dialog that opens the database's
// files to guess their type drops SQLite's locks, and the station then
// writes to a log nobody else reads, and over their work when it closes.)
TEST_F(StationSession, OpenDrawingsScansAnElementOfTheDatabaseThatOthersSee) {
    // The sample production: job Sample, scene sc01 in a folder beside the
    // database file, element Anim (colour, vectorized) exposing 1 to 3.
    const auto job = db_->createJob(QStringLiteral("Sample"));
    ASSERT_TRUE(job && QDir(dir_.path()).mkpath(QStringLiteral("sc01/Anim")));
    const auto scene = db_->createScene(job->id, QStringLiteral("sc01"), dir_.filePath(QStringLiteral("sc01")));
    ASSERT_TRUE(scene);
    const auto element = db_->createElement(
        scene->id, {.name = "Anim", .path = "Anim", .scanType = LMV_SCAN_COLOUR, .needsVectorization = LMV_VECTORIZE});
    ASSERT_TRUE(element);
    ASSERT_GE(db_->exposeDrawings(element->id, {"1", "2", "3"}), 0);
    ASSERT_EQ(db_->setUser(QStringLiteral("mia")), 0);
    ASSERT_NE(start(twoScanners()), nullptr);

    QObject steps;  // the element opened through the selectors
    atNextDialog<TUDbSelectDlg>(&steps, [](TUDbSelectDlg *select) {
        select->jobList()->setCurrentRow(0);
        select->sceneList()->setCurrentRow(0);
        select->elementList()->setCurrentRow(0);
        select->accept();
    });
    atNextDialog<TUDrawingSelector>(&steps, [](TUDrawingSelector *selector) {
        save_screenshot(selector, QStringLiteral("station_drawing_selector"));
        selector->apply();
    });
    window_->openDrawings();
    ASSERT_EQ(window_->drawingList()->count(), 3);
    EXPECT_TRUE(database_of_ScanConfig(config_));
    EXPECT_FALSE(window_->manualListFlag());
    EXPECT_TRUE(window_->windowTitle().endsWith(QStringLiteral(" -> Sample -> scene sc01 -> element Anim")));
    TUMenuButton *colour = window_->selectionButton(SelectionButton::Colour);
    EXPECT_TRUE(colour->entry(2)->isEnabled());
    EXPECT_FALSE(colour->entry(0)->isEnabled());
    // The element is vectorized: Pencil Test may be chosen, after a question.
    QCheckBox *pencil = window_->checkBox(SessionCheckBox::PencilTest);
    ASSERT_TRUE(pencil->isEnabled());
    {
        BoxOperator refuses(QStringLiteral("&No"), QStringLiteral("station_pencil_test_question"));
        pencil->click();
        EXPECT_EQ(refuses.titles, QStringList{QStringLiteral("Scan: Pencil Test Confirmation")});
    }
    EXPECT_FALSE(pencil->isChecked() || pencil_test_of_ScanConfig(config_));

    const QString file = dir_.filePath(QStringLiteral("production.db"));
    const auto scanctl = [this, &file](QStringList args) {
        args.insert(2, QStringLiteral("--db"));
        args.insert(3, file);
        return run_program(QStringLiteral(SCANCTL_PATH), args, dir_.path());
    };
    QString shown;
    atNextDialog<QFileDialog>(&steps, [&](QFileDialog *dialog) {
        dialog->setDirectory(dir_.path());
        QTest::qWait(1500);  // the folder is listed, with an icon for each file
        save_screenshot(dialog, QStringLiteral("station_load_from_file"));
        shown = dialog->directory().absolutePath();
    });
    window_->loadFromFile();
    QTest::qWait(2000);
    EXPECT_EQ(shown, QDir(dir_.path()).absolutePath());
    // The database's own file is not read as a scan, and the session stays.
    window_->loadFile(file + QStringLiteral("-wal"));
    ASSERT_FALSE(reported().isEmpty());
    EXPECT_TRUE(reported().join(' ').contains(QStringLiteral("is the production database")));
    ASSERT_EQ(scanctl({"db", "show"}).status, 0);  // another program's session, opened and closed

    BoxOperator operatorAnswers(QStringLiteral("Retry"), QStringLiteral("station_unexpected_question"));
    QTest::keyClick(window_.get(), Qt::Key_F9);
    EXPECT_TRUE(operatorAnswers.titles.isEmpty()) << operatorAnswers.titles.join(", ").toStdString();
    for (int r = 0; r < 3; ++r) ASSERT_TRUE(row(r).contains(QStringLiteral(" (Scanned) Colour, "))) << r;
    save_screenshot(window_.get(), QStringLiteral("station_database_scanned"));
    // Other programs see the scans while the station runs, and work on them.
    EXPECT_TRUE(scanctl({"db", "show", "Sample", "sc01", "Anim"}).out.contains("drawings: 3 exposed, 3 scanned"));
    const ProcessResult taken = scanctl({"queue", "take", "--worker", "other", "--lease", "600"});
    EXPECT_EQ(taken.status, 0) << taken.err.toStdString();

    ScanConfigDestroy(config_);
    config_ = nullptr;
    window_.reset();
    selector_.reset();
    db_.reset();
    EXPECT_TRUE(scanctl({"db", "show", "Sample", "sc01", "Anim"}).out.contains("drawings: 3 exposed, 3 scanned"));
    const ProcessResult queue = scanctl({"queue", "list"});
    EXPECT_EQ(queue.out.count(QStringLiteral("  Sample/sc01/Anim  ")), 3) << queue.out.toStdString();
    EXPECT_EQ(queue.out.count(QStringLiteral("  taken  ")), 1) << queue.out.toStdString();
    {
        QSqlDatabase check = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("check"));
        check.setDatabaseName(file);
        ASSERT_TRUE(check.open());
        QSqlQuery q(check);
        ASSERT_TRUE(q.exec(QStringLiteral("PRAGMA integrity_check")) && q.next());
        EXPECT_EQ(q.value(0).toString(), QStringLiteral("ok"));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("check"));
}

// Scale keys; Load From File waits for the menu to close; Drawing List after a
// manual list reopens the manual dialog; the scanner information and about
// boxes; the dark style, which turns off again.
TEST_F(StationSession, KeysMenusAndBoxes) {
    ASSERT_NE(start(twoScanners()), nullptr);
    QSlider *scale = window_->mainImage()->scaleSlider()->slider();
    ASSERT_EQ(scale->value(), 16);
    for (const auto &[key, value] : {std::pair{'1', 15}, {'1', 14}, {'2', 15}, {'m', 15}, {'M', 16}}) {
        QTest::keyClick(window_.get(), key);  // the lower case 'm' does nothing
        EXPECT_EQ(scale->value(), value) << key;
    }
    EXPECT_EQ(window_->mainImage()->scaleSlider()->label()->text(), QStringLiteral("Scale: 1:1"));

    QObject steps;
    window_->loadFromFile();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    QString title;
    atNextDialog<QFileDialog>(&steps, [&title](QFileDialog *dialog) { title = dialog->windowTitle(); });
    QTest::qWait(200);
    EXPECT_EQ(title, QStringLiteral("Load From File"));
    EXPECT_EQ(drawing_of_ScanConfig(config_), nullptr);

    buildList(QStringLiteral("4 5"));
    ASSERT_TRUE(window_->manualListFlag());
    bool manualShown = false;
    atNextDialog<TUManualListDlg>(&steps, [&manualShown](TUManualListDlg *) { manualShown = true; });
    window_->showDrawingSelector();
    EXPECT_TRUE(manualShown);
    EXPECT_EQ(window_->drawingList()->count(), 2) << "cancelled: the list stays as it was";
    {
        BoxOperator closes(QStringLiteral("Close"), QStringLiteral("station_scanner_info"));
        window_->action(SessionAction::Info)->trigger();
        ASSERT_EQ(closes.titles, QStringList{QStringLiteral("Scanner Information")});
        EXPECT_EQ(closes.texts.first(), scanner_text_of_ScanConfig(config_));
        EXPECT_TRUE(closes.texts.first().contains(QStringLiteral("Test_Scanner")));
    }
    QString name, version;
    atNextDialog<TUAboutDialog>(&steps, [&](TUAboutDialog *about) {
        title = about->windowTitle();
        name = about->nameLabel()->text();
        version = about->versionLabel()->text();
        save_screenshot(about, QStringLiteral("station_about"));
    });
    window_->about();
    EXPECT_EQ(title, QStringLiteral("About Scan"));
    EXPECT_EQ(name, QStringLiteral("Scan"));
    EXPECT_EQ(version, QStringLiteral("Version ") + whoami::version());

    QAction *dark = childWithText<QAction>(window_.get(), "Dark Style");
    ASSERT_NE(dark, nullptr);
    ASSERT_TRUE(dark->isChecked());
    const QColor plain = QApplication::palette().color(QPalette::Window);
    dark->setChecked(false);  // the entry point made it dark; this fixture did not
    dark->setChecked(true);
    EXPECT_NE(QApplication::palette().color(QPalette::Window), plain);
    // The selection buttons follow the dark ground, and a disabled entry of
    // their menus (240 dpi) shows no light shadow under its grey text.
    save_screenshot(window_.get(), QStringLiteral("station_dark"));
    TUMenuButton *dpiButton = window_->selectionButton(SelectionButton::Dpi);
    EXPECT_EQ(dpiButton->palette().color(QPalette::Button), QApplication::palette().color(QPalette::Button));
    QMenu *dpi = dpiButton->menu();
    dpi->ensurePolished();
    dpi->adjustSize();
    save_screenshot(dpi, QStringLiteral("station_dark_dpi_menu"));
    const QImage menu = dpi->grab().toImage();
    const QRect entry = dpi->actionGeometry(dpiButton->entry(4));
    int brightest = 0;
    for (int y = entry.top(); y <= entry.bottom(); ++y)
        for (int x = entry.left(); x <= entry.right(); ++x) brightest = std::max(brightest, qGray(menu.pixel(x, y)));
    EXPECT_LT(brightest, 160);
    dark->setChecked(false);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), plain);
}
