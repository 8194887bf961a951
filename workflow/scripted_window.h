#pragma once
// A window without widgets: it keeps what the session shows in plain fields,
// answers the operator's questions from fixed policies, and lets a script act
// at each pump of the event loop (a Stop press at the third stop check, say).
// scanctl scan runs a session on it; the tests look at what it was told.
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <vector>

#include "workflow/scan_window.h"

class ScriptedListView : public DrawingListView {
public:
    void clear() override;
    void appendRow(const QString &text) override;
    int rowCount() const override;
    int currentRow() const override;
    void setCurrentRow(int row) override;
    QString rowText(int row) const override;
    void setCurrentText(const QString &text) override;
    void clearSelection() override;
    void scrollToCurrent() override;

    // Called with each text that a row is given (the command line prints it).
    std::function<void(int row, const QString &text)> onRowText;

private:
    QStringList rows_;
    int current_ = -1;
};

class ScriptedScanWindow : public ScanWindow {
public:
    // Starts with the entries that the station window fills once.
    ScriptedScanWindow();

    struct MenuEntry {
        QString text;
        int id = 0;
        bool enabled = true;
    };
    struct Menu {
        std::vector<MenuEntry> entries;
        int current = -1;  // the marked id
        const MenuEntry *find(int id) const;
    };

    // Policies: the answer to each question.
    NoScannerAnswer noScannerAnswer = NoScannerAnswer::Continue;
    AutofeedAnswer misfeedAnswer = AutofeedAnswer::StopScanning;
    RegistrationAnswer registrationAnswer = RegistrationAnswer::StopScanning;
    bool saveAnswer = true;
    bool pencilTestAnswer = true;
    StopAnswer stopAnswer = StopAnswer::StopImmediately;

    // Runs at each pump of the event loop with the number of earlier pumps.
    std::function<void(int pump)> onProcessEvents;
    // Runs while a question is open, before the policy answers: the operator
    // may act meanwhile (load the feeder, say).
    std::function<void()> onQuestion;

    // What the manual list dialog would hold.
    QString manualPath;
    QString manualPrefix;
    bool manualList = true;
    // The option line of the chosen vectorization style.
    QString styleLine;
    TUDbAccess *databaseAccess = nullptr;

    // How often each question was asked.
    int noScannerAsked = 0, misfeedAsked = 0, registrationAsked = 0, saveAsked = 0, pencilTestAsked = 0,
        stopAsked = 0;
    int pumps = 0;
    int waitCursors = 0;  // set minus restored
    int drawingsShown = 0;
    Drawing *shownDrawing = nullptr;
    Standard_parameters *shownParameters = nullptr;
    bool parametersHidden = false;
    QString title;
    QString lastScanned;
    bool menuBarEnabled = true;
    bool selectionButtonsEnabled = true;
    bool overviewShown = false;
    int pancelRebuilds = 0;
    int pancelClears = 0;
    std::map<SessionAction, bool> actions;
    std::map<SessionButton, bool> buttons;
    std::map<SessionCheckBox, bool> boxesEnabled;
    std::map<SessionCheckBox, bool> boxesChecked;
    std::map<SelectionButton, Menu> menus;
    ScriptedListView list;

    bool buttonEnabled(SessionButton b) const;
    bool actionEnabled(SessionAction a) const;
    bool boxEnabled(SessionCheckBox b) const;
    bool boxChecked(SessionCheckBox b) const;
    int marked(SelectionButton b) const;  // -1 when nothing is marked
    bool entryEnabled(SelectionButton b, int id) const;  // false for a missing entry
    bool hasEntry(SelectionButton b, int id) const;

    TUDbAccess *database() override;
    void enableAction(SessionAction action, bool on) override;
    void enableButton(SessionButton button, bool on) override;
    void enableCheckBox(SessionCheckBox box, bool on) override;
    void checkCheckBox(SessionCheckBox box, bool on) override;
    void enableMenuBar(bool on) override;
    void enableSelectionButtons(bool on) override;
    void showOverview(bool on) override;
    void setWindowTitle(const QString &text) override;
    void setLastScannedText(const QString &text) override;
    void clearEntries(SelectionButton button) override;
    void addEntry(SelectionButton button, const QString &text, int id) override;
    void removeEntry(SelectionButton button, int id) override;
    void markEntry(SelectionButton button, int id) override;
    void enableEntry(SelectionButton button, int id, bool on) override;
    void showParameters(Standard_parameters *parameters) override;
    void showDrawing(Drawing *drawing, bool pancelRefresh) override;
    QString manualListPath() const override;
    QString manualListPrefix() const override;
    bool isManualList() const override;
    DrawingListView *drawingListView() override;
    QString vectorizationStyleLine() override { return styleLine; }
    // One pass only: no strip to keep several, so every scan fits and the
    // stitch of a single pass leaves the drawing as scanned.
    void rebuildPancel() override;
    void clearPancel() override;
    void pancelStepBack() override;
    bool pancelFits(Drawing *drawing) override;
    bool stitchPancel(QString &message) override;
    void setWaitCursor() override;
    void restoreCursor() override;
    // Runs the Qt event loop when there is an application, then the script.
    void processEvents() override;
    NoScannerAnswer askNoScanner() override;
    AutofeedAnswer askAutofeedError() override;
    RegistrationAnswer askRegistrationFailure() override;
    bool askSaveDrawing(const QString &text) override;
    bool askPencilTest() override;
    StopAnswer askStop() override;

private:
    template <typename Answer>
    Answer answer(int &asked, Answer policy);
};
