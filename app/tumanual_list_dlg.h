#pragma once
// "Manual List": a folder, a prefix and a written list of drawing numbers,
// for scanning outside the production database.
#include <QDialog>
#include <QStringList>

class QLineEdit;
class QListWidget;
class QPushButton;

class TUManualListDlg : public QDialog {
    Q_OBJECT
public:
    explicit TUManualListDlg(QWidget *parent = nullptr);

    // Clears the numbers and the list and runs the dialog; on accept the
    // selected names are appended to *names. 1 on accept, 0 otherwise.
    int exec(QStringList *names);
    using QDialog::exec;

    // What the scan loop needs to name its files.
    QString path() const;
    QString prefix() const;

    QLineEdit *pathEdit() const { return pathEdit_; }
    QLineEdit *prefixEdit() const { return prefixEdit_; }
    QLineEdit *numbersEdit() const { return numbersEdit_; }
    QListWidget *list() const { return list_; }

public slots:
    void addDrawing();
    void apply();

private:
    QStringList *result_ = nullptr;
    QLineEdit *pathEdit_;
    QLineEdit *prefixEdit_;
    QLineEdit *numbersEdit_;
    QListWidget *list_;
    QPushButton *addPB_;
    QPushButton *okPB_;
    QPushButton *cancelPB_;
};
