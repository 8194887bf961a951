#pragma once
// "Open Drawings": the job, scene and element whose drawings are to be
// scanned, each listed below the one chosen above it.
#include <QDialog>

#include <vector>

#include "suite/db/dba_records.h"

class QLabel;
class QListWidget;
class QPushButton;
class TUDbAdmin;

class TUDbSelectDlg : public QDialog {
    Q_OBJECT
public:
    // Without a colour scanner, elements scanned in colour are listed but
    // cannot be chosen.
    TUDbSelectDlg(TUDbAdmin *admin, bool colourCapable, QWidget *parent = nullptr);

    // The choice, valid after accept.
    QString jobName() const;
    QString sceneName() const;
    QString elementName() const;

    QListWidget *jobList() const { return jobList_; }
    QListWidget *sceneList() const { return sceneList_; }
    QListWidget *elementList() const { return elementList_; }

private:
    void fillJobs();
    void fillScenes();
    void fillElements();
    // Says so when the listing just read failed (it would look empty).
    void reportReadFailure();
    void enableApply();
    static QString currentText(const QListWidget *list);

    TUDbAdmin *admin_;
    bool colourCapable_;
    std::vector<dba_job_struct> jobs_;
    std::vector<dba_scene_struct> scenes_;
    QListWidget *jobList_;
    QListWidget *sceneList_;
    QListWidget *elementList_;
    QPushButton *okPB_;
};
