#pragma once
// "Log In": who sits at the station, as which kind of user, and in which
// environment of the production. Both are made on first use.
#include <QDialog>
#include <QList>

class QComboBox;
class QLineEdit;
class QPushButton;
class TUDbAccess;
class TUDbAdmin;

class TUDbUserDialog : public QDialog {
    Q_OBJECT
public:
    // `userTypes`: the kinds offered (dba_userType_types), in this order.
    TUDbUserDialog(TUDbAccess *database, TUDbAdmin *admin, const QList<int> &userTypes, QWidget *parent = nullptr);

    // The operator's word for a kind of user.
    static QString userTypeName(int type);

    QLineEdit *userEdit() const { return userEdit_; }
    QComboBox *typeBox() const { return typeBox_; }
    QLineEdit *environmentEdit() const { return environmentEdit_; }

public slots:
    // Logs in with what is typed; the dialog stays open on failure.
    void apply();

private:
    void enableApply();

    TUDbAccess *database_;
    TUDbAdmin *admin_;
    QLineEdit *userEdit_;
    QComboBox *typeBox_;
    QLineEdit *environmentEdit_;
    QPushButton *okPB_;
};
