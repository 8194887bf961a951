#include "workflow/scripted_window.h"

#include "workflow/selection_menus.h"

#include <QCoreApplication>

#include <algorithm>

// --- ScriptedListView -------------------------------------------------------

void ScriptedListView::clear() {
    rows_.clear();
    current_ = -1;
}

void ScriptedListView::appendRow(const QString &text) {
    rows_.append(text);
    if (onRowText) onRowText(static_cast<int>(rows_.size()) - 1, text);
}

int ScriptedListView::rowCount() const { return static_cast<int>(rows_.size()); }

int ScriptedListView::currentRow() const { return current_; }

void ScriptedListView::setCurrentRow(int row) {
    // Like a list widget: a row outside the list leaves no row current.
    current_ = (row >= 0 && row < rowCount()) ? row : -1;
}

QString ScriptedListView::rowText(int row) const {
    return (row >= 0 && row < rowCount()) ? rows_.at(row) : QString();
}

void ScriptedListView::setCurrentText(const QString &text) {
    if (current_ < 0) return;
    rows_[current_] = text;
    if (onRowText) onRowText(current_, text);
}

// The selection of a plain list is its current row; clearing it keeps the row,
// as a list widget keeps its current item when the selection goes.
void ScriptedListView::clearSelection() {}

void ScriptedListView::scrollToCurrent() {}

// --- ScriptedScanWindow -----------------------------------------------------

const ScriptedScanWindow::MenuEntry *ScriptedScanWindow::Menu::find(int id) const {
    auto it = std::find_if(entries.begin(), entries.end(), [id](const MenuEntry &e) { return e.id == id; });
    return it == entries.end() ? nullptr : &*it;
}

namespace {
template <typename Key>
bool lookup(const std::map<Key, bool> &map, Key key) {
    auto it = map.find(key);
    return it != map.end() && it->second;
}

}  // namespace

ScriptedScanWindow::ScriptedScanWindow() { add_fixed_menu_entries(this); }

// Each question is counted, lets the script act, and is answered by its policy.
template <typename Answer>
Answer ScriptedScanWindow::answer(int &asked, Answer policy) {
    ++asked;
    if (onQuestion) onQuestion();
    return policy;
}

bool ScriptedScanWindow::buttonEnabled(SessionButton b) const { return lookup(buttons, b); }
bool ScriptedScanWindow::actionEnabled(SessionAction a) const { return lookup(actions, a); }
bool ScriptedScanWindow::boxEnabled(SessionCheckBox b) const { return lookup(boxesEnabled, b); }
bool ScriptedScanWindow::boxChecked(SessionCheckBox b) const { return lookup(boxesChecked, b); }

int ScriptedScanWindow::marked(SelectionButton b) const {
    auto it = menus.find(b);
    return it == menus.end() ? -1 : it->second.current;
}

bool ScriptedScanWindow::entryEnabled(SelectionButton b, int id) const {
    auto it = menus.find(b);
    if (it == menus.end()) return false;
    const MenuEntry *entry = it->second.find(id);
    return entry && entry->enabled;
}

bool ScriptedScanWindow::hasEntry(SelectionButton b, int id) const {
    auto it = menus.find(b);
    return it != menus.end() && it->second.find(id);
}

TUDbAccess *ScriptedScanWindow::database() { return databaseAccess; }

void ScriptedScanWindow::enableAction(SessionAction action, bool on) { actions[action] = on; }
void ScriptedScanWindow::enableButton(SessionButton button, bool on) { buttons[button] = on; }
void ScriptedScanWindow::enableCheckBox(SessionCheckBox box, bool on) { boxesEnabled[box] = on; }
void ScriptedScanWindow::checkCheckBox(SessionCheckBox box, bool on) { boxesChecked[box] = on; }
void ScriptedScanWindow::enableMenuBar(bool on) { menuBarEnabled = on; }
void ScriptedScanWindow::enableSelectionButtons(bool on) { selectionButtonsEnabled = on; }
void ScriptedScanWindow::showOverview(bool on) { overviewShown = on; }
void ScriptedScanWindow::setWindowTitle(const QString &text) { title = text; }
void ScriptedScanWindow::setLastScannedText(const QString &text) { lastScanned = text; }

void ScriptedScanWindow::clearEntries(SelectionButton button) {
    Menu &menu = menus[button];
    menu.entries.clear();
    menu.current = -1;
}

void ScriptedScanWindow::addEntry(SelectionButton button, const QString &text, int id) {
    menus[button].entries.push_back(MenuEntry{text, id, true});
}

void ScriptedScanWindow::removeEntry(SelectionButton button, int id) {
    Menu &menu = menus[button];
    std::erase_if(menu.entries, [id](const MenuEntry &e) { return e.id == id; });
    if (menu.current == id) menu.current = -1;
}

void ScriptedScanWindow::markEntry(SelectionButton button, int id) {
    auto it = menus.find(button);
    if (it == menus.end() || !it->second.find(id)) return;
    it->second.current = id;
}

void ScriptedScanWindow::enableEntry(SelectionButton button, int id, bool on) {
    auto it = menus.find(button);
    if (it == menus.end()) return;
    for (MenuEntry &entry : it->second.entries)
        if (entry.id == id) entry.enabled = on;
}

void ScriptedScanWindow::showParameters(Standard_parameters *parameters) {
    shownParameters = parameters;
    parametersHidden = parameters == nullptr;
}

void ScriptedScanWindow::showDrawing(Drawing *drawing, bool) {
    shownDrawing = drawing;
    ++drawingsShown;
}

QString ScriptedScanWindow::manualListPath() const { return manualPath; }
QString ScriptedScanWindow::manualListPrefix() const { return manualPrefix; }
bool ScriptedScanWindow::isManualList() const { return manualList; }
DrawingListView *ScriptedScanWindow::drawingListView() { return &list; }

void ScriptedScanWindow::rebuildPancel() { ++pancelRebuilds; }
void ScriptedScanWindow::clearPancel() { ++pancelClears; }
void ScriptedScanWindow::pancelStepBack() {}
bool ScriptedScanWindow::pancelFits(Drawing *) { return true; }
bool ScriptedScanWindow::stitchPancel(QString &) { return true; }

void ScriptedScanWindow::setWaitCursor() { ++waitCursors; }
// Like the application's cursor stack, a restore with nothing set does nothing.
void ScriptedScanWindow::restoreCursor() {
    if (waitCursors > 0) --waitCursors;
}

void ScriptedScanWindow::processEvents() {
    if (QCoreApplication::instance()) QCoreApplication::processEvents();
    ++pumps;
    if (onProcessEvents) onProcessEvents(pumps - 1);
}

NoScannerAnswer ScriptedScanWindow::askNoScanner() { return answer(noScannerAsked, noScannerAnswer); }
AutofeedAnswer ScriptedScanWindow::askAutofeedError() { return answer(misfeedAsked, misfeedAnswer); }
RegistrationAnswer ScriptedScanWindow::askRegistrationFailure() {
    return answer(registrationAsked, registrationAnswer);
}
bool ScriptedScanWindow::askSaveDrawing(const QString &) { return answer(saveAsked, saveAnswer); }
bool ScriptedScanWindow::askPencilTest() { return answer(pencilTestAsked, pencilTestAnswer); }
StopAnswer ScriptedScanWindow::askStop() { return answer(stopAsked, stopAnswer); }
