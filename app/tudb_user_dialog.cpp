#include "app/tudb_user_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

#include "app/file_name_validators.h"
#include "suite/base/msg_scope.h"
#include "suite/db/dba_records.h"
#include "suite/db/tudbaccess.h"
#include "suite/db/tudbadmin.h"

TUDbUserDialog::TUDbUserDialog(TUDbAccess *database, TUDbAdmin *admin, const QList<int> &userTypes,
                               QWidget *parent)
    : QDialog(parent), database_(database), admin_(admin) {
    setWindowTitle(tr("Log In"));
    userEdit_ = new QLineEdit(database_->userName(), this);
    typeBox_ = new QComboBox(this);
    for (int type : userTypes) typeBox_->addItem(userTypeName(type), type);
    const int operatorIndex = typeBox_->findData(int(DBA_USER_SCANNER_OPERATOR));
    if (operatorIndex >= 0) typeBox_->setCurrentIndex(operatorIndex);
    environmentEdit_ = new QLineEdit(database_->envName(), this);
    // Environments name folders of the production.
    environmentEdit_->setValidator(new TUFileNameValidator(environmentEdit_));

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    okPB_ = buttons->button(QDialogButtonBox::Ok);
    okPB_->setText(tr("OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));

    auto *form = new QFormLayout(this);
    form->addRow(tr("User:"), userEdit_);
    form->addRow(tr("User type:"), typeBox_);
    form->addRow(tr("Environment:"), environmentEdit_);
    form->addRow(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &TUDbUserDialog::apply);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(userEdit_, &QLineEdit::textChanged, this, &TUDbUserDialog::enableApply);
    connect(environmentEdit_, &QLineEdit::textChanged, this, &TUDbUserDialog::enableApply);
    enableApply();
}

QString TUDbUserDialog::userTypeName(int type) {
    switch (type) {
    case DBA_USER_ADMINISTRATOR: return tr("Administrator");
    case DBA_USER_SUPERVISOR: return tr("Supervisor");
    case DBA_USER_ANIMATOR: return tr("Animator");
    case DBA_USER_SCANNER_OPERATOR: return tr("Scanner Operator");
    case DBA_USER_INK_AND_PAINT: return tr("Ink and Paint");
    case DBA_USER_CHECKER: return tr("Checker");
    case DBA_USER_COMPOSITOR: return tr("Compositor");
    case DBA_USER_DIRECTOR: return tr("Director");
    case DBA_USER_VECTORIZE_SERVICE: return tr("Vectorize Service");
    case DBA_USER_GUEST: return tr("Guest");
    }
    return tr("User type %1").arg(type);
}

void TUDbUserDialog::enableApply() {
    okPB_->setEnabled(!userEdit_->text().trimmed().isEmpty() && !environmentEdit_->text().trimmed().isEmpty());
}

void TUDbUserDialog::apply() {
    const QString user = userEdit_->text().trimmed();
    const QString environment = environmentEdit_->text().trimmed();
    if (admin_->setUser(user, typeBox_->currentData().toInt()) != 0 || admin_->setEnvironment(environment) != 0) {
        MSG_Scope(MSG_Text("TUDbUserDialog", "Cannot log in: %1").arg(database_->lastError()), MSG_ACTION_ERROR);
        return;
    }
    accept();
}
