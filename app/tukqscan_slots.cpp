// The operator's actions on the station window.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QTimer>
#include <QUrl>

#include <unistd.h>

#include "app/load_from_file.h"
#include "app/load_from_file_dialog.h"
#include "app/tuabout_dialog.h"
#include "app/scale_slider.h"
#include "app/scan_application.h"
#include "app/scan_image.h"
#include "app/scroll_image.h"
#include "app/tudb_selector.h"
#include "app/tudrawing_selector.h"
#include "app/tukqscan.h"
#include "app/tumanual_list_dlg.h"
#include "app/tumenu_button.h"
#include "app/who_app_info.h"
#include "scan/scanner_device.h"
#include "vectorize/ui/tuvect_options_dlg.h"
#include "scan/scanner_list.h"
#include "suite/base/lmv_trace.h"
#include "suite/base/msg_scope.h"
#include "suite/base/osw_lang.h"
#include "suite/base/osw_util.h"
#include "suite/base/tumessage.h"
#include "suite/base/whoami.h"
#include "suite/db/tudbaccess.h"
#include "workflow/config.h"
#include "workflow/dbinfo.h"
#include "workflow/drawing_list.h"
#include "workflow/scan_procs.h"

namespace {
constexpr int kOneToOne = 16;
constexpr uint32_t kResolutions[] = {72, 100, 150, 200, 240, 300, 400, 600};
// The suite's online documentation; the operator's language is appended.
const char *const kHelpAddress = "https://docs.scanstation.org/scan/";

bool runsAsAdministrator() { return geteuid() == 0; }
}  // namespace

void TUKqScan::setConfig(ScanConfig *config) {
    m_config = config;
    updateVectorizationStyleLabel();
}

void TUKqScan::updateVectorizationStyleLabel() {
    const TUVectOptionsDlg *dialog = styleDialog();
    m_styleLabel->setText(tr("Vectorization Style: ") + (dialog ? dialog->currentName() : QString()));
}

TUVectOptionsDlg *TUKqScan::styleDialog() {
    if (!m_config) return nullptr;
    auto *dialog = qobject_cast<TUVectOptionsDlg *>(vect_options_of_ScanConfig(m_config));
    if (!dialog) {
        dialog = new TUVectOptionsDlg(this);
        dialog->setModal(true);
        connect(dialog, &QDialog::finished, this, &TUKqScan::updateVectorizationStyleLabel);
        set_vect_options_of_ScanConfig(m_config, dialog);
    }
    m_styleDialog = dialog;
    return dialog;
}

QString TUKqScan::vectorizationStyleLine() {
    TUVectOptionsDlg *dialog = styleDialog();
    return dialog ? dialog->currentOptions() : QString();
}

void TUKqScan::show(bool isLoginAtStart) {
    QMainWindow::show();
    if (isLoginAtStart) showDbSelector();
}

void TUKqScan::showDbSelector() {
    if (!m_config || !m_dbSelector) return;
    const bool colour = colour_capable_of_ScanConfig(m_config);
    const TUDbSelector::Result result = m_dbSelector->run(colour, this);
    if (result == TUDbSelector::Cancelled) return;
    if (result == TUDbSelector::Failed) {
        MSG_Scope(MSG_Text("TUKqScan", "Cannot open the scene because: %1.").arg(m_dbSelector->errorMessage()),
                  MSG_ACTION_ERROR);
        return;
    }
    m_drawingSelector = std::make_unique<TUDrawingSelector>(m_database, m_dbSelector->elementId(), this);
    m_manualList = false;
    showDrawingSelector();
}

void TUKqScan::showDrawingSelector() {
    if (m_manualList) {
        buildManualList();
        return;
    }
    if (!m_drawingSelector || !m_config) return;
    QStringList names;
    if (m_drawingSelector->exec(&names) != 1) return;
    m_list->clear();
    if (!names.isEmpty()) bind_element_of_ScanConfig(m_config, m_dbSelector->elementId(), names);
}

void TUKqScan::openDrawings() { showDbSelector(); }

// The file dialog waits until the menu that chose it has closed.
void TUKqScan::loadFromFile() { QTimer::singleShot(0, this, &TUKqScan::loadFromFileTimed); }

void TUKqScan::loadFromFileTimed() {
    if (!m_config) return;
    DatabaseBinding *binding = binding_of_ScanConfig(m_config);
    const QString start = database_of_ScanConfig(m_config) && binding && binding->open
                              ? path_of_DatabaseBinding(binding)
                              : QString();
    const QString path = choose_file_to_load(this, tr("Load From File"), start);
    if (path.isNull()) return;
    loadFile(path);
}

void TUKqScan::loadFile(const QString &path) {
    // Reading it would open it outside SQLite (see load_from_file_dialog.h).
    if (m_database && !path.isEmpty() && m_database->ownsFile(path)) {
        MSG_Scope(MSG_Text("TUKqScan", "%1 is the production database, not a scan file.").arg(path), MSG_ACTION_ERROR);
        return;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    if (path.isEmpty())
        LMV_trace("LoadFromFile: Invalid filename\n");
    else
        load_scan_file_of_ScanConfig(m_config, path);
    QApplication::restoreOverrideCursor();
}

void TUKqScan::buildManualList() {
    if (!m_config) return;
    if (!m_manualDlg) m_manualDlg = std::make_unique<TUManualListDlg>(this);
    QStringList names;
    if (m_manualDlg->exec(&names) != 1) return;
    m_manualList = true;
    m_list->clear();
    build_manual_list(m_config, names);
}

void TUKqScan::reverseDrawingList() {
    if (m_config) reverse_list(m_config);
}

void TUKqScan::vectorizeStyle() {
    if (TUVectOptionsDlg *dialog = styleDialog()) dialog->show();
    updateVectorizationStyleLabel();
}

void TUKqScan::createScanInfoFile(bool on) {
    if (m_config) set_create_scaninfo_of_ScanConfig(m_config, on);
}

void TUKqScan::scannerInfo() {
    QMessageBox box(QMessageBox::Information, tr("Scanner Information"), scanner_text_of_ScanConfig(m_config),
                    QMessageBox::NoButton, this);
    box.addButton(tr("Close"), QMessageBox::AcceptRole);
    box.exec();
}

void TUKqScan::ejectPage() {
    if (m_config && scanner_kind_of_ScanConfig(m_config) == SCANNER_SCSI)
        eject_of_ScannerEntry(scanner_of_ScanConfig(m_config));
}

void TUKqScan::help() {
    QDesktopServices::openUrl(QUrl(QString::fromLatin1(kHelpAddress) + OSW_Lang::defaultLanguage()));
}

void TUKqScan::about() {
    TUAboutDialog dialog(*m_appInfo, this);
    dialog.exec();
}

void TUKqScan::scannerListSlot(int id) {
    if (id == kNoScannerId || !m_config) return;
    select_scanner_of_ScanConfig(m_config, id);
}

void TUKqScan::scannerPegSlot(int id) {
    if (m_config && id >= 1 && id <= 4) set_peg_side_of_ScanConfig(m_config, id);
}

void TUKqScan::scannerFieldSlot(int id) {
    if (!m_config) return;
    if (id == 0) set_field_of_ScanConfig(m_config, 12.0);
    if (id == 1) set_field_of_ScanConfig(m_config, 16.0);
}

void TUKqScan::scannerResolutionSlot(int id) {
    if (m_config && id >= 0 && id < static_cast<int>(std::size(kResolutions)))
        set_dpi_of_ScanConfig(m_config, kResolutions[id]);
}

// The scanner is selected again so that the parameter panel shows the set
// of the new depth.
void TUKqScan::scannerColorSlot(int id) {
    if (!m_config || id < 0 || id > 2) return;
    set_depth_of_ScanConfig(m_config, id);
    set_database_of_ScanConfig(m_config, database_of_ScanConfig(m_config));
}

void TUKqScan::peggingSlot(int index) {
    if (!m_config) return;
    set_feed_of_ScanConfig(m_config, index);
    ScannerEntry *scanner = scanner_of_ScanConfig(m_config);
    ScanDeviceInfo *dev = scanner ? device_of_ScannerEntry(scanner) : nullptr;
    enableAction(SessionAction::EjectPage, dev && dev->ops.eject && autofeed_of_ScanConfig(m_config));
}

void TUKqScan::pencilTestSlot(bool on) {
    if (m_config) set_pencil_test_of_ScanConfig(m_config, on);
}

void TUKqScan::opticalRegSlot(bool on) {
    if (m_config) set_optical_of_ScanConfig(m_config, on);
}

void TUKqScan::flipDrawingSlot(bool on) {
    if (m_config) set_flip_of_ScanConfig(m_config, on);
}

bool TUKqScan::rightsAllowScan() {
    if (!spti_of_ScanConfig(m_config) || !oswUtil::isVistaOrAbove() || runsAsAdministrator()) return true;
    QMessageBox::warning(this, whoami::progName(),
                         tr("Scan failed. Launch this application with administrative privileges to perform SPTI "
                            "scanning on this machine."));
    return false;
}

void TUKqScan::scanList(bool preview) {
    if (!m_config || !rightsAllowScan()) return;
    set_trial_of_ScanConfig(m_config, preview);
    ScanDrawingList(m_config);
}

void TUKqScan::trialSlot() { scanList(true); }

void TUKqScan::scanSlot() { scanList(false); }

// A double click or Return on a row is no reason to scan.
void TUKqScan::scanSlot(QListWidgetItem *) {}

void TUKqScan::stopSlot() {
    if (m_config) AskStopScanning(m_config);
}

void TUKqScan::saveSlot() {
    if (m_config) SaveScan(m_config);
}

void TUKqScan::currentPancelChanged(int index) {
    QPushButton *scan = m_buttons.at(SessionButton::Scan);
    if (index < 0 || !m_config)
        scan->setText(tr("Scan"));
    else
        scan->setText(tr("Scan (%1)").arg(peg_name_of_ScanConfig(m_config)));
}

void TUKqScan::DebugMode() {
    TUMessage *messages = TUMessage::instance();
    if (!messages) return;
    messages->setDebugMode(!messages->isDebugMode());
    m_debugModeAction->setChecked(messages->isDebugMode());
}

void TUKqScan::onActionChangeStyle(bool on) {
    Scan_Application::setDarkStyle(on);
    Scan_Application::loadStyleSheets();
}

void TUKqScan::passHeldKey(int key) {
    m_mainImage->setHeldKey(key);
    if (!m_overview->isHidden()) m_overview->setHeldKey(key);
}

void TUKqScan::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_F5 || event->key() == Qt::Key_F9) {
        QPushButton *scan = m_buttons.at(SessionButton::Scan);
        if (scan->isEnabled()) scanSlot();
        return;
    }
    const QByteArray latin = event->text().toLatin1();
    const int key = latin.isEmpty() ? 0 : static_cast<unsigned char>(latin.at(0));
    QSlider *slider = m_mainImage->scaleSlider()->slider();
    switch (key) {
    case '1': slider->setValue(slider->value() - 1); break;
    case '2': slider->setValue(slider->value() + 1); break;
    case 'M': slider->setValue(kOneToOne); break;
    case 'n': {
        const QPoint at = m_mainImage->scrollImage()->viewport()->mapFromGlobal(QCursor::pos());
        m_mainImage->centreAt(at.x(), at.y());
        break;
    }
    default: break;
    }
    passHeldKey(key);
}

void TUKqScan::keyReleaseEvent(QKeyEvent *event) {
    passHeldKey(0);
    QMainWindow::keyReleaseEvent(event);
}
