// What the session and the scan loop tell the window and ask the operator.
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCoreApplication>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>

#include <initializer_list>
#include <vector>

#include "app/param_dlg.h"
#include "app/scan_image.h"
#include "app/station_list_view.h"
#include "app/tukqscan.h"
#include "app/tumanual_list_dlg.h"
#include "app/tumenu_button.h"

namespace {

// The context of the session's questions.
QString sessionText(const char *text) { return QCoreApplication::translate("main_interface_of_ScanConfig", text); }

// A modal question with buttons of its own; the index of the button pressed
// (the escape button's when the box is closed otherwise).
int ask(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text,
        std::initializer_list<QString> buttons, int defaultIndex, int escapeIndex, bool arrowCursor) {
    QMessageBox box(icon, title, text, QMessageBox::NoButton, parent);
    std::vector<QPushButton *> added;
    for (const QString &label : buttons) added.push_back(box.addButton(label, QMessageBox::ActionRole));
    box.setDefaultButton(added.at(defaultIndex));
    box.setEscapeButton(added.at(escapeIndex));
    if (arrowCursor) QApplication::setOverrideCursor(Qt::ArrowCursor);
    box.exec();
    if (arrowCursor) QApplication::restoreOverrideCursor();
    for (size_t i = 0; i < added.size(); ++i)
        if (box.clickedButton() == added[i]) return static_cast<int>(i);
    return escapeIndex;
}

}  // namespace

void TUKqScan::enableAction(SessionAction action, bool on) { m_actions.at(action)->setEnabled(on); }

void TUKqScan::enableButton(SessionButton button, bool on) {
    QPushButton *b = m_buttons.at(button);
    b->setEnabled(on);
    // The scan loop runs on this thread: Stop must look right before it goes on.
    if (button == SessionButton::Stop) b->repaint();
}

void TUKqScan::enableCheckBox(SessionCheckBox box, bool on) { m_boxes.at(box)->setEnabled(on); }

// The session checks a box to show its own state; the slot must not write it back.
void TUKqScan::checkCheckBox(SessionCheckBox box, bool on) {
    QCheckBox *b = m_boxes.at(box);
    const bool blocked = b->blockSignals(true);
    b->setChecked(on);
    b->blockSignals(blocked);
}

void TUKqScan::enableMenuBar(bool on) { menuBar()->setEnabled(on); }

void TUKqScan::enableSelectionButtons(bool on) {
    for (auto &[id, button] : m_selection) button->setEnabled(on);
}

void TUKqScan::showOverview(bool on) { m_overview->setVisible(on); }

void TUKqScan::setWindowTitle(const QString &title) { QMainWindow::setWindowTitle(title); }

void TUKqScan::setLastScannedText(const QString &text) { m_lastScanned->setText(text); }

void TUKqScan::clearEntries(SelectionButton button) { m_selection.at(button)->clear(); }

void TUKqScan::addEntry(SelectionButton button, const QString &text, int id) {
    m_selection.at(button)->addEntry(text, id);
}

void TUKqScan::removeEntry(SelectionButton button, int id) { m_selection.at(button)->removeEntry(id); }

void TUKqScan::markEntry(SelectionButton button, int id) { m_selection.at(button)->setCurrent(id); }

void TUKqScan::enableEntry(SelectionButton button, int id, bool on) {
    m_selection.at(button)->setEntryEnabled(id, on);
}

void TUKqScan::showParameters(Standard_parameters *parameters) { SCANAPP_DisplayParameters(parameters, m_paramDlg); }

// The overview borrows the main image's picture, so it lets go of it before
// the main image takes the new one.
void TUKqScan::showDrawing(Drawing *drawing, bool) {
    m_overview->clear();
    m_mainImage->setDrawing(drawing);
    if (!m_overview->isHidden()) TUScanImage::copyFrom(m_overview, m_mainImage);
    TUScanImage::copyFrom(m_framePreview, m_mainImage);
}

QString TUKqScan::manualListPath() const { return m_manualDlg ? m_manualDlg->path() : QString(); }

QString TUKqScan::manualListPrefix() const { return m_manualDlg ? m_manualDlg->prefix() : QString(); }

DrawingListView *TUKqScan::drawingListView() { return m_listView.get(); }

void TUKqScan::rebuildPancel() {}
void TUKqScan::clearPancel() {}
void TUKqScan::pancelStepBack() {}
bool TUKqScan::pancelFits(Drawing *) { return true; }
bool TUKqScan::stitchPancel(QString &) { return true; }

void TUKqScan::setWaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }

void TUKqScan::restoreCursor() {
    if (QApplication::overrideCursor()) QApplication::restoreOverrideCursor();
}

void TUKqScan::processEvents() { QCoreApplication::processEvents(); }

NoScannerAnswer TUKqScan::askNoScanner() {
    const QString text = sessionText("No Scanners are attached to this computer. \n") +
                         sessionText("You'll need to log into a computer which is connected\n") +
                         sessionText("to at least one scanner.  \n") +
                         sessionText("If you think this message is incorrect, please\n") +
                         sessionText("contact your system administrator for help.  \n") +
                         sessionText("Press \"Continue\" to use the scan program without\n") +
                         sessionText("a scanner, or \"Exit Scan Program\" to Exit.");
    const int answer = ask(this, QMessageBox::Warning, sessionText("No Scanners Present"), text,
                           {sessionText("Continue"), sessionText("Exit Scan Program")}, 1, 1, false);
    return answer == 0 ? NoScannerAnswer::Continue : NoScannerAnswer::ExitScanProgram;
}

AutofeedAnswer TUKqScan::askAutofeedError() {
    const int answer = ask(this, QMessageBox::Warning, sessionText("Autofeed Error"),
                           sessionText("Drawing misfed or not found."),
                           {sessionText("Retry"), sessionText("Stop Scanning")}, 1, 1, true);
    return answer == 0 ? AutofeedAnswer::Retry : AutofeedAnswer::StopScanning;
}

RegistrationAnswer TUKqScan::askRegistrationFailure() {
    const QString text = sessionText("Unable to optically register this drawing.\n") +
                         sessionText("Press Retry to re-feed drawing, Skip Drawing to\n") +
                         sessionText("proceed to next drawing, or Stop Scanning.");
    const int answer =
        ask(this, QMessageBox::Warning, sessionText("Optical Registration Failed"), text,
            {sessionText("Retry"), sessionText("Skip Drawing"), sessionText("Stop Scanning")}, 0, 2, true);
    switch (answer) {
    case 0: return RegistrationAnswer::Retry;
    case 1: return RegistrationAnswer::SkipDrawing;
    default: return RegistrationAnswer::StopScanning;
    }
}

bool TUKqScan::askSaveDrawing(const QString &text) {
    return ask(this, QMessageBox::Warning, sessionText("Save Drawing File"), text,
               {sessionText("OK"), sessionText("Cancel")}, 1, 1, false) == 0;
}

bool TUKqScan::askPencilTest() {
    const QString text = tr("If you scan in Pencil Test (Line Art Only) mode, there\n") +
                         tr("will be no paintable color art regions in the drawings.\n") +
                         tr("Do you really want to scan in Pencil Test Mode?");
    QMessageBox box(QMessageBox::Question, tr("Scan: Pencil Test Confirmation"), text,
                    QMessageBox::Yes | QMessageBox::No, this);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

StopAnswer TUKqScan::askStop() {
    const QString text = tr("Do you want to stop scanning immediately,\n") +
                         tr("or finish scanning the current drawing?");
    const int answer = ask(this, QMessageBox::Question, tr("Scan: Stop Scanning"), text,
                           {tr("Stop Immediately"), tr("Finish This Drawing")}, 0, 0, false);
    return answer == 1 ? StopAnswer::FinishThisDrawing : StopAnswer::StopImmediately;
}
