#pragma once
// TUKqScan: the station's one window. On the left the scanner settings over
// the drawing list; on the right the last scan. Its slots turn the operator's
// actions into calls on the session record, and the session writes back
// through the window seam that this class implements with real controls and
// the operator's dialogs.
#include <QMainWindow>
#include <QPointer>

#include <map>
#include <memory>

#include "workflow/scan_window.h"

class QAction;
class QCheckBox;
class QFrame;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QPushButton;
class QScrollArea;
class QSplitter;
struct WHO_AppInfo;
class TUDbAccess;
class TUDbSelector;
class TUDrawingSelector;
class TUManualListDlg;
class TUMenuButton;
class TUParamDlg;
class TUScanImage;
class TUVectOptionsDlg;
class StationListView;
struct ScanConfig;

class TUKqScan : public QMainWindow, public ScanWindow {
    Q_OBJECT
public:
    TUKqScan(TUDbAccess *databaseAccess, TUDbSelector *databaseSelector, bool debug, bool scsiDebug,
             QWidget *parent = nullptr);
    ~TUKqScan() override;

    // Takes the session and shows its vectorization style, reading the
    // style list now, so that a missing list is told at start and not during
    // the first scan.
    void setConfig(ScanConfig *config);
    ScanConfig *config() const { return m_config; }
    // "Vectorization Style: " and the name of the session's style.
    void updateVectorizationStyleLabel();
    // Steps 4 to 11 of "Load From File" for a chosen file.
    void loadFile(const QString &path);

    // The controls, for the session's setters and for tests.
    TUMenuButton *selectionButton(SelectionButton button) const;
    QPushButton *button(SessionButton button) const;
    QCheckBox *checkBox(SessionCheckBox box) const;
    QAction *action(SessionAction action) const;
    QAction *debugModeAction() const { return m_debugModeAction; }
    QListWidget *drawingList() const { return m_list; }
    TUScanImage *mainImage() const { return m_mainImage; }
    TUScanImage *framePreview() const { return m_framePreview; }
    TUScanImage *overview() const { return m_overview; }
    QLabel *lastScannedLabel() const { return m_lastScanned; }
    QLabel *vectorizationStyleLabel() const { return m_styleLabel; }
    // The session's style list, made on first use; null without a session.
    TUVectOptionsDlg *styleDialog();
    TUParamDlg *paramDlg() const { return m_paramDlg; }
    TUManualListDlg *manualListDlg() const { return m_manualDlg.get(); }
    bool manualListFlag() const { return m_manualList; }

    // The window seam.
    TUDbAccess *database() override { return m_database; }
    void enableAction(SessionAction action, bool on) override;
    void enableButton(SessionButton button, bool on) override;
    void enableCheckBox(SessionCheckBox box, bool on) override;
    void checkCheckBox(SessionCheckBox box, bool on) override;
    void enableMenuBar(bool on) override;
    void enableSelectionButtons(bool on) override;
    void showOverview(bool on) override;
    void setWindowTitle(const QString &title) override;
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
    bool isManualList() const override { return m_manualList; }
    DrawingListView *drawingListView() override;
    QString vectorizationStyleLine() override;
    // The strip of pan cel passes is not part of this window yet: a pan cel
    // scan is one pass, which fits and stitches to itself.
    void rebuildPancel() override;
    void clearPancel() override;
    void pancelStepBack() override;
    bool pancelFits(Drawing *drawing) override;
    bool stitchPancel(QString &message) override;
    void setWaitCursor() override;
    void restoreCursor() override;
    void processEvents() override;
    NoScannerAnswer askNoScanner() override;
    AutofeedAnswer askAutofeedError() override;
    RegistrationAnswer askRegistrationFailure() override;
    bool askSaveDrawing(const QString &text) override;
    bool askPencilTest() override;
    StopAnswer askStop() override;

public slots:
    void show(bool isLoginAtStart);
    void showDbSelector();
    void showDrawingSelector();
    void openDrawings();
    void loadFromFile();
    void loadFromFileTimed();
    void buildManualList();
    void reverseDrawingList();
    void vectorizeStyle();
    void createScanInfoFile(bool on);
    void scannerInfo();
    void ejectPage();
    void help();
    void about();
    void scannerListSlot(int id);
    void scannerPegSlot(int id);
    void scannerFieldSlot(int id);
    void scannerResolutionSlot(int id);
    void scannerColorSlot(int id);
    void peggingSlot(int index);
    void pencilTestSlot(bool on);
    void opticalRegSlot(bool on);
    void flipDrawingSlot(bool on);
    void trialSlot();
    void scanSlot();
    void scanSlot(QListWidgetItem *item);
    void stopSlot();
    void saveSlot();
    void currentPancelChanged(int index);
    void DebugMode();
    void onActionChangeStyle(bool on);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;

private:
    void buildMenus();
    QWidget *buildSettings();
    QWidget *buildLowerPane();
    void connectControls();
    // Passes the held key to the main image and, when shown, the overview.
    void passHeldKey(int key);
    // The operator may scan only where the system lets this process reach the scanner.
    bool rightsAllowScan();
    void scanList(bool preview);

    TUDbAccess *m_database;
    TUDbSelector *m_dbSelector;
    bool m_debug;
    bool m_scsiDebug;
    ScanConfig *m_config = nullptr;
    bool m_manualList = false;

    QSplitter *m_splitter = nullptr;
    QScrollArea *m_settingsArea = nullptr;
    QFrame *m_lowerFrame = nullptr;
    QFrame *m_imageFrame = nullptr;
    TUScanImage *m_mainImage = nullptr;
    TUScanImage *m_framePreview = nullptr;
    TUScanImage *m_overview = nullptr;
    TUParamDlg *m_paramDlg = nullptr;
    std::map<SelectionButton, TUMenuButton *> m_selection;
    std::map<SessionButton, QPushButton *> m_buttons;
    std::map<SessionCheckBox, QCheckBox *> m_boxes;
    std::map<SessionAction, QAction *> m_actions;
    QMenu *m_editMenu = nullptr;
    QMenu *m_scannerMenu = nullptr;
    QAction *m_debugModeAction = nullptr;
    QLabel *m_lastScanned = nullptr;
    QLabel *m_styleLabel = nullptr;
    // The session owns the style list; this notes whether it is still there.
    QPointer<TUVectOptionsDlg> m_styleDialog;
    QListWidget *m_list = nullptr;
    std::unique_ptr<StationListView> m_listView;
    std::unique_ptr<TUDrawingSelector> m_drawingSelector;
    std::unique_ptr<TUManualListDlg> m_manualDlg;
    std::unique_ptr<WHO_AppInfo> m_appInfo;
};
