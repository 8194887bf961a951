#include "app/tudb_select_dlg.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "suite/base/msg_scope.h"
#include "suite/db/tudbadmin.h"

TUDbSelectDlg::TUDbSelectDlg(TUDbAdmin *admin, bool colourCapable, QWidget *parent)
    : QDialog(parent), admin_(admin), colourCapable_(colourCapable) {
    setWindowTitle(tr("Open Drawings"));
    jobList_ = new QListWidget(this);
    sceneList_ = new QListWidget(this);
    elementList_ = new QListWidget(this);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    okPB_ = buttons->button(QDialogButtonBox::Ok);
    okPB_->setText(tr("OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));

    auto *grid = new QGridLayout(this);
    grid->addWidget(new QLabel(tr("Job"), this), 0, 0);
    grid->addWidget(new QLabel(tr("Scene"), this), 0, 1);
    grid->addWidget(new QLabel(tr("Element"), this), 0, 2);
    grid->addWidget(jobList_, 1, 0);
    grid->addWidget(sceneList_, 1, 1);
    grid->addWidget(elementList_, 1, 2);
    grid->addWidget(buttons, 2, 0, 1, 3);
    resize(540, 360);

    connect(jobList_, &QListWidget::currentRowChanged, this, &TUDbSelectDlg::fillScenes);
    connect(sceneList_, &QListWidget::currentRowChanged, this, &TUDbSelectDlg::fillElements);
    connect(elementList_, &QListWidget::currentRowChanged, this, &TUDbSelectDlg::enableApply);
    connect(elementList_, &QListWidget::itemDoubleClicked, this, [this] {
        if (okPB_->isEnabled()) accept();
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    fillJobs();
}

QString TUDbSelectDlg::currentText(const QListWidget *list) {
    const QListWidgetItem *item = list->currentItem();
    return item ? item->text() : QString();
}

QString TUDbSelectDlg::jobName() const { return currentText(jobList_); }
QString TUDbSelectDlg::sceneName() const { return currentText(sceneList_); }
QString TUDbSelectDlg::elementName() const { return currentText(elementList_); }

void TUDbSelectDlg::fillJobs() {
    jobs_ = admin_->jobs();
    reportReadFailure();
    jobList_->clear();
    for (const dba_job_struct &job : jobs_) jobList_->addItem(job.name);
    fillScenes();
}

void TUDbSelectDlg::fillScenes() {
    sceneList_->clear();
    scenes_.clear();
    const int row = jobList_->currentRow();
    if (row >= 0 && row < int(jobs_.size())) {
        scenes_ = admin_->scenes(jobs_[row].id);
        reportReadFailure();
    }
    for (const dba_scene_struct &scene : scenes_) sceneList_->addItem(scene.name);
    fillElements();
}

void TUDbSelectDlg::fillElements() {
    elementList_->clear();
    const int row = sceneList_->currentRow();
    if (row >= 0 && row < int(scenes_.size())) {
        const std::vector<LMV_element_data> elements = admin_->elements(scenes_[row].id);
        reportReadFailure();
        for (const LMV_element_data &element : elements) {
            auto *item = new QListWidgetItem(element.name, elementList_);
            if (!colourCapable_ && element.scanType == LMV_SCAN_COLOUR) {
                item->setFlags(item->flags() & ~(Qt::ItemIsEnabled | Qt::ItemIsSelectable));
                item->setToolTip(tr("Needs a colour scanner"));
            }
        }
    }
    enableApply();
}

void TUDbSelectDlg::reportReadFailure() {
    if (!admin_->lastError().isEmpty())
        MSG_Scope(MSG_Text("TUDbSelectDlg", "Cannot read the production database: %1").arg(admin_->lastError()),
                  MSG_ACTION_ERROR);
}

void TUDbSelectDlg::enableApply() {
    const QListWidgetItem *item = elementList_->currentItem();
    okPB_->setEnabled(item && (item->flags() & Qt::ItemIsEnabled));
}
