#pragma once
// The window seam: everything the session record and the scan loop tell the
// main window, and everything they ask the operator. They never touch a widget
// or a message box themselves. The station window implements this with its
// controls and dialogs; ScriptedScanWindow serves the command line and tests.
#include <QString>

struct Drawing;
struct Standard_parameters;
class TUDbAccess;

// The six buttons that pop up a menu of settings.
enum class SelectionButton { Scanner, Colour, Dpi, Peg, Field, Feed };
// Menu entries that the session enables.
enum class SessionAction { OpenDrawings, BuildManualList, Info, EjectPage, EditMenu, CreateScanInfo };
enum class SessionButton { Preview, Scan, Stop, Save };
enum class SessionCheckBox { PencilTest, OpticalRegistration, FlipDrawing };

// The operator's answers.
enum class NoScannerAnswer { Continue, ExitScanProgram };
enum class AutofeedAnswer { Retry, StopScanning };
enum class RegistrationAnswer { Retry, SkipDrawing, StopScanning };
enum class StopAnswer { StopImmediately, FinishThisDrawing };

// The rows of the drawing list as the window shows them. The current row lives
// here only: the list keeps no second copy.
class DrawingListView {
public:
    virtual ~DrawingListView() = default;
    virtual void clear() = 0;
    virtual void appendRow(const QString &text) = 0;
    virtual int rowCount() const = 0;
    virtual int currentRow() const = 0;  // -1 when no row is current
    virtual void setCurrentRow(int row) = 0;
    virtual QString rowText(int row) const = 0;
    // Writes the text of the current row.
    virtual void setCurrentText(const QString &text) = 0;
    virtual void clearSelection() = 0;
    virtual void scrollToCurrent() = 0;
};

class ScanWindow {
public:
    virtual ~ScanWindow() = default;

    // The production database of the window; null without one.
    virtual TUDbAccess *database() = 0;

    // Controls.
    virtual void enableAction(SessionAction action, bool on) = 0;
    virtual void enableButton(SessionButton button, bool on) = 0;  // Stop is repainted at once
    virtual void enableCheckBox(SessionCheckBox box, bool on) = 0;
    virtual void checkCheckBox(SessionCheckBox box, bool on) = 0;
    virtual void enableMenuBar(bool on) = 0;
    virtual void enableSelectionButtons(bool on) = 0;
    virtual void showOverview(bool on) = 0;
    virtual void setWindowTitle(const QString &title) = 0;
    virtual void setLastScannedText(const QString &text) = 0;

    // Entries of a selection button, by id.
    virtual void clearEntries(SelectionButton button) = 0;
    virtual void addEntry(SelectionButton button, const QString &text, int id) = 0;
    virtual void removeEntry(SelectionButton button, int id) = 0;
    virtual void markEntry(SelectionButton button, int id) = 0;  // an unknown id changes nothing
    virtual void enableEntry(SelectionButton button, int id, bool on) = 0;

    // The parameter panel: the set of the selected depth, or null to hide all.
    virtual void showParameters(Standard_parameters *parameters) = 0;

    // Shows a scan in the main image and previews; with pancelRefresh the peg
    // before the current one takes the new image.
    virtual void showDrawing(Drawing *drawing, bool pancelRefresh) = 0;

    // What the manual list dialog holds, and whether the list was built by hand.
    virtual QString manualListPath() const = 0;
    virtual QString manualListPrefix() const = 0;
    virtual bool isManualList() const = 0;
    virtual DrawingListView *drawingListView() = 0;

    // The option line of the chosen vectorization style, empty for none; the
    // window makes its style list on first use.
    virtual QString vectorizationStyleLine() = 0;

    // The pan cel strip.
    virtual void rebuildPancel() = 0;
    virtual void clearPancel() = 0;
    virtual void pancelStepBack() = 0;
    // Whether a new scan fits the earlier passes; on false the window has
    // dropped the last pass and reported the failure.
    virtual bool pancelFits(Drawing *drawing) = 0;
    // Joins the passes into the current drawing; false with `message` on failure.
    virtual bool stitchPancel(QString &message) = 0;

    // Cursor and event loop.
    virtual void setWaitCursor() = 0;
    virtual void restoreCursor() = 0;
    virtual void processEvents() = 0;

    // Questions to the operator.
    virtual NoScannerAnswer askNoScanner() = 0;
    virtual AutofeedAnswer askAutofeedError() = 0;
    virtual RegistrationAnswer askRegistrationFailure() = 0;
    virtual bool askSaveDrawing(const QString &text) = 0;  // true for OK
    virtual bool askPencilTest() = 0;                      // true for Yes
    virtual StopAnswer askStop() = 0;
};
