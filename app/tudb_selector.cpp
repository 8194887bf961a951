#include "app/tudb_selector.h"

#include <utility>

#include "app/tudb_select_dlg.h"
#include "app/tudb_user_dialog.h"
#include "suite/db/tudbaccess.h"
#include "suite/db/tudbadmin.h"

TUDbSelector::TUDbSelector(TUDbAccess *database, TUDbAdmin *admin, QList<int> userTypes)
    : database_(database), admin_(admin), userTypes_(std::move(userTypes)) {}

TUDbSelector::Result TUDbSelector::run(bool colourCapable, QWidget *parent) {
    error_.clear();
    if (database_->userName().isEmpty()) {
        TUDbUserDialog login(database_, admin_, userTypes_, parent);
        if (login.exec() != QDialog::Accepted) return Cancelled;
    }
    TUDbSelectDlg select(admin_, colourCapable, parent);
    if (select.exec() != QDialog::Accepted) return Cancelled;
    if (admin_->selectJob(select.jobName()) != 0 || admin_->selectScene(select.sceneName()) != 0 ||
        admin_->selectElement(select.elementName()) != 0) {
        error_ = database_->lastError();
        return Failed;
    }
    elementId_ = database_->selectedElementId();
    return Selected;
}
