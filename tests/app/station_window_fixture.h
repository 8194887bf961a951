#pragma once
// The station window on a real session: a Scan.conf of this machine with the
// test scanners, a production in an embedded SQLite file, reports recorded
// instead of shown, no real waits in the device code, and an operator who
// answers message boxes by the text of a button.
#include <QtWidgets>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include "app/tudb_selector.h"
#include "app/tukqscan.h"
#include "app/tumanual_list_dlg.h"
#include "app/tumenu_button.h"
#include "scan/scanner_device.h"
#include "qstring_print.h"
#include "window_fixture.h"
#include "support/screenshot.h"
#include "workflow/scan_conf_file.h"
#include "workflow/config.h"
#include "workflow/connect_database.h"

class StationWindowTest : public ProductionTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(ProductionTest::SetUp());
        oldCwd_ = QDir::currentPath();
        QDir::setCurrent(dir_.path());
        oldSleep_ = set_sleep_function_of_ScanDevice([](int) {});
        selector_ = std::make_unique<TUDbSelector>(db_.get(), db_.get(), selector_user_types());
        window_ = std::make_unique<TUKqScan>(db_.get(), selector_.get(), false, false);
    }
    void TearDown() override {
        if (config_) ScanConfigDestroy(config_);
        window_.reset();
        set_sleep_function_of_ScanDevice(oldSleep_);
        QDir::setCurrent(oldCwd_);
        while (QApplication::overrideCursor()) QApplication::restoreOverrideCursor();
    }

    // The colour test scanner and a black and white one.
    std::string twoScanners() const {
        return scannerBlock("Test Scanner", "Bogus-Color", "defaultPegSide: Bottom\ndefaultResolution: 200\n") +
               scannerBlock("Line Art Of The Ink Room", "Bogus-B&W", "defaultResolution: 300\ndefaultPegSide: Top\n");
    }

    // Starts the session on a Scan.conf of these blocks and shows the window.
    ScanConfig *start(const std::string &conf) {
        config_ = ScanConfigCreate(writeScanConf(dir_.path(), conf), window_.get());
        window_->setConfig(config_);
        window_->show(false);
        return config_;
    }

    // Builds a manual list in the dialog, as the operator types it.
    void buildList(const QString &numbers) {
        QTimer::singleShot(0, window_.get(), [this, numbers] {
            TUManualListDlg *dlg = window_->manualListDlg();
            ASSERT_NE(dlg, nullptr);
            dlg->pathEdit()->setText(dir_.path());
            dlg->prefixEdit()->setText(QStringLiteral("T"));
            dlg->numbersEdit()->setText(numbers);
            dlg->addDrawing();
            save_screenshot(dlg, QStringLiteral("station_manual_list"));
            dlg->apply();
        });
        window_->buildManualList();
    }
    QString row(int r) const { return window_->drawingList()->item(r)->text(); }

    // What the operator does with a selection button's menu.
    void choose(SelectionButton button, int id) {
        QAction *entry = window_->selectionButton(button)->entry(id);
        ASSERT_NE(entry, nullptr);
        ASSERT_TRUE(entry->isEnabled());
        entry->trigger();
    }

    QString oldCwd_;
    ScanSleepFunction oldSleep_ = nullptr;
    std::unique_ptr<TUDbSelector> selector_;
    std::unique_ptr<TUKqScan> window_;
    ScanConfig *config_ = nullptr;
};
