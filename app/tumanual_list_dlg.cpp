#include "app/tumanual_list_dlg.h"

#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/file_name_validators.h"
#include "suite/base/msg_scope.h"
#include "workflow/manual_list_syntax.h"

TUManualListDlg::TUManualListDlg(QWidget *parent) : QDialog(parent) {
    setWindowTitle(tr("Manual List"));
    setMinimumSize(300, 400);

    pathEdit_ = new QLineEdit(this);
    pathEdit_->setValidator(new TUPathValidator(pathEdit_));
    prefixEdit_ = new QLineEdit(this);
    prefixEdit_->setValidator(new TUFileNameValidator(prefixEdit_));
    numbersEdit_ = new QLineEdit(this);
    list_ = new QListWidget(this);
    list_->setSelectionMode(QAbstractItemView::MultiSelection);

    addPB_ = new QPushButton(tr("Add"), this);
    addPB_->setAutoDefault(false);
    okPB_ = new QPushButton(tr("OK"), this);
    okPB_->setAutoDefault(false);
    cancelPB_ = new QPushButton(tr("Cancel"), this);
    cancelPB_->setAutoDefault(false);

    auto *form = new QFormLayout;
    form->addRow(tr("Path"), pathEdit_);
    form->addRow(tr("Prefix"), prefixEdit_);
    auto *numbersRow = new QHBoxLayout;
    numbersRow->addWidget(numbersEdit_, 1);
    numbersRow->addWidget(addPB_);
    form->addRow(tr("Drawings"), numbersRow);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(okPB_);
    buttons->addWidget(cancelPB_);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(list_, 1);
    layout->addLayout(buttons);

    // Return in the numbers adds them; it must not close the dialog.
    connect(numbersEdit_, &QLineEdit::returnPressed, this, &TUManualListDlg::addDrawing);
    connect(addPB_, &QPushButton::clicked, this, &TUManualListDlg::addDrawing);
    connect(okPB_, &QPushButton::clicked, this, &TUManualListDlg::apply);
    connect(cancelPB_, &QPushButton::clicked, this, &QDialog::reject);
}

int TUManualListDlg::exec(QStringList *names) {
    result_ = names;
    numbersEdit_->clear();
    list_->clear();
    return QDialog::exec() == QDialog::Accepted ? 1 : 0;
}

QString TUManualListDlg::path() const { return pathEdit_->text(); }
QString TUManualListDlg::prefix() const { return prefixEdit_->text(); }

void TUManualListDlg::addDrawing() {
    const ManualListParse parsed = parse_manual_list(numbersEdit_->text());
    if (!parsed.ok) {
        MSG_Scope(MSG_Text::translated(parsed.error, parsed.error), MSG_ACTION_ERROR);
        return;
    }
    for (const QString &name : parsed.names)
        if (list_->findItems(name, Qt::MatchExactly).isEmpty()) list_->addItem(name);
    list_->selectAll();
    numbersEdit_->clear();
}

void TUManualListDlg::apply() {
    if (!result_) {
        reject();
        return;
    }
    const QFileInfo folder(path());
    if (path().isEmpty() || !folder.isDir()) {
        MSG_Scope(MSG_Text("TUManualListDlg", "Path \"%1\" does not exist.").arg(path()), MSG_ACTION_ERROR);
        return;
    }
    for (int row = 0; row < list_->count(); ++row)
        if (list_->item(row)->isSelected()) result_->append(list_->item(row)->text());
    accept();
}
