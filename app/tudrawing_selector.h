#pragma once
// "Drawings Selector": the drawings that the open scene exposes for one
// element, with whether each has been scanned; the operator picks the ones to
// put on the drawing list and may add new drawing names by hand.
#include <QDialog>
#include <QStringList>

#include <vector>

#include "suite/db/drawing_selection_data.h"

class QLabel;
class QLineEdit;
class QPushButton;
class TUDbAccess;
class TUDrawingSelectorTable;

class TUDrawingSelector : public QDialog {
    Q_OBJECT
public:
    enum SelectMode { SelectAll = 0, SelectNone = 1, SelectScanned = 2, SelectUnscanned = 3 };

    TUDrawingSelector(TUDbAccess *database, qint64 elementId, QWidget *parent = nullptr);

    // Fills the table afresh from the database, applies the select mode and
    // runs the dialog; on accept the chosen names are appended to *names.
    // 1 on accept, 0 otherwise.
    int exec(QStringList *names);
    using QDialog::exec;

    int selectMode() const { return selectMode_; }
    TUDrawingSelectorTable *table() const { return table_; }

public slots:
    void apply();
    void enableApply();
    void enableAddDrawing();
    void allPBClicked();
    void scannedPBClicked();
    void nonePBClicked();
    void unscannedPBClicked();
    void addDrawingPBClicked();

private:
    void fillTable();
    void applySelectMode();
    void setSelectMode(SelectMode mode);

    TUDbAccess *database_;
    QStringList *result_ = nullptr;
    qint64 elementId_;
    SelectMode selectMode_ = SelectUnscanned;
    std::vector<DrawingSelectorRow> rows_;  // what the table shows, in its order

    QLabel *jobLabel_;
    QLabel *sceneLabel_;
    QLabel *elementLabel_;
    TUDrawingSelectorTable *table_;
    QLineEdit *drawingEdit_;
    QPushButton *addDrawingPB_;
    QPushButton *allPB_;
    QPushButton *scannedPB_;
    QPushButton *nonePB_;
    QPushButton *unscannedPB_;
    QPushButton *okPB_;
    QPushButton *cancelPB_;
};
