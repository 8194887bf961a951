#include "app/tudrawing_selector.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/file_name_validators.h"
#include "app/tudrawing_selector_table.h"
#include "suite/base/msg_scope.h"
#include "suite/db/tudbaccess.h"

TUDrawingSelector::TUDrawingSelector(TUDbAccess *database, qint64 elementId, QWidget *parent)
    : QDialog(parent), database_(database), elementId_(elementId) {
    setWindowTitle(tr("Drawings Selector"));
    resize(300, height());

    jobLabel_ = new QLabel(this);
    sceneLabel_ = new QLabel(this);
    elementLabel_ = new QLabel(this);
    table_ = new TUDrawingSelectorTable(this);

    drawingEdit_ = new QLineEdit(this);
    drawingEdit_->setValidator(new TUFileNameValidator(drawingEdit_));
    addDrawingPB_ = new QPushButton(tr("Add Drawing"), this);
    addDrawingPB_->setAutoDefault(false);

    allPB_ = new QPushButton(tr("All"), this);
    scannedPB_ = new QPushButton(tr("Scanned"), this);
    nonePB_ = new QPushButton(tr("None"), this);
    unscannedPB_ = new QPushButton(tr("Unscanned"), this);
    for (QPushButton *pb : {allPB_, scannedPB_, nonePB_, unscannedPB_}) pb->setAutoDefault(false);
    // No default button: Return in the name field adds a drawing and must
    // not close the dialog as well.
    okPB_ = new QPushButton(tr("OK"), this);
    okPB_->setAutoDefault(false);
    cancelPB_ = new QPushButton(tr("Cancel"), this);
    cancelPB_->setAutoDefault(false);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(jobLabel_);
    layout->addWidget(sceneLabel_);
    layout->addWidget(elementLabel_);
    layout->addWidget(table_, 1);

    auto *addRow = new QHBoxLayout;
    addRow->addWidget(drawingEdit_, 1);
    addRow->addWidget(addDrawingPB_);
    layout->addLayout(addRow);

    layout->addWidget(new QLabel(tr("Select:"), this));
    auto *selectGrid = new QGridLayout;
    selectGrid->addWidget(allPB_, 0, 0);
    selectGrid->addWidget(scannedPB_, 0, 1);
    selectGrid->addWidget(nonePB_, 1, 0);
    selectGrid->addWidget(unscannedPB_, 1, 1);
    layout->addLayout(selectGrid);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(okPB_);
    buttons->addWidget(cancelPB_);
    layout->addLayout(buttons);

    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &TUDrawingSelector::enableApply);
    connect(drawingEdit_, &QLineEdit::textChanged, this, &TUDrawingSelector::enableAddDrawing);
    connect(drawingEdit_, &QLineEdit::returnPressed, this, &TUDrawingSelector::addDrawingPBClicked);
    connect(addDrawingPB_, &QPushButton::clicked, this, &TUDrawingSelector::addDrawingPBClicked);
    connect(allPB_, &QPushButton::clicked, this, &TUDrawingSelector::allPBClicked);
    connect(scannedPB_, &QPushButton::clicked, this, &TUDrawingSelector::scannedPBClicked);
    connect(nonePB_, &QPushButton::clicked, this, &TUDrawingSelector::nonePBClicked);
    connect(unscannedPB_, &QPushButton::clicked, this, &TUDrawingSelector::unscannedPBClicked);
    connect(okPB_, &QPushButton::clicked, this, &TUDrawingSelector::apply);
    connect(cancelPB_, &QPushButton::clicked, this, &QDialog::reject);
}

int TUDrawingSelector::exec(QStringList *names) {
    table_->clearDrawings();
    result_ = names;
    fillTable();
    applySelectMode();
    enableAddDrawing();
    enableApply();
    return QDialog::exec() == QDialog::Accepted ? 1 : 0;
}

void TUDrawingSelector::fillTable() {
    rows_.clear();
    jobLabel_->setText(tr("Job: ") + (database_ ? database_->jobName() : QString()));
    sceneLabel_->setText(tr("Scene: ") + (database_ ? database_->sceneName() : QString()));
    elementLabel_->setText(tr("Element: ") + (database_ ? database_->DBA_elementNameFromID(elementId_) : QString()));
    const dba_scene_struct *scene = database_ ? database_->openScene() : nullptr;
    if (!scene) return;
    // An empty table would read as an element with nothing exposed.
    QString why;
    std::optional<std::vector<DrawingSelectorRow>> rows = drawingSelectorRows(*database_, scene, elementId_, &why);
    if (!rows) {
        MSG_Scope(MSG_Text("TUDrawingSelector", "Cannot read the drawings of the element: %1").arg(why), MSG_ACTION_ERROR);
        return;
    }
    rows_ = std::move(*rows);
    for (const DrawingSelectorRow &row : rows_) table_->addDrawing(row.name, row.scanned);
}

void TUDrawingSelector::applySelectMode() {
    switch (selectMode_) {
    case SelectAll: table_->selectRows([](bool) { return true; }); break;
    case SelectNone: table_->clearSelection(); break;
    case SelectScanned: table_->selectRows([](bool scanned) { return scanned; }); break;
    case SelectUnscanned: table_->selectRows([](bool scanned) { return !scanned; }); break;
    }
}

void TUDrawingSelector::setSelectMode(SelectMode mode) {
    selectMode_ = mode;
    applySelectMode();
}

void TUDrawingSelector::allPBClicked() { setSelectMode(SelectAll); }
void TUDrawingSelector::scannedPBClicked() { setSelectMode(SelectScanned); }
void TUDrawingSelector::nonePBClicked() { setSelectMode(SelectNone); }
void TUDrawingSelector::unscannedPBClicked() { setSelectMode(SelectUnscanned); }

void TUDrawingSelector::enableApply() {
    okPB_->setEnabled(result_ && table_->selectionModel()->hasSelection());
}

void TUDrawingSelector::enableAddDrawing() { addDrawingPB_->setEnabled(!drawingEdit_->text().isEmpty()); }

void TUDrawingSelector::addDrawingPBClicked() {
    const QString name = drawingEdit_->text();
    if (name.isEmpty()) return;
    // A name the table already shows is ignored without a word.
    if (!addDrawingSelectorRow(rows_, name)) return;
    table_->addDrawing(name, false);
    drawingEdit_->clear();
    enableApply();
}

void TUDrawingSelector::apply() {
    if (!result_) {
        reject();
        return;
    }
    result_->append(table_->selectedDrawings());
    accept();
}
