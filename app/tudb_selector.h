#pragma once
// What "Open Drawings..." asks before the drawing selector: the login when
// no user is known yet, then job, scene and element; the choice is then made
// the database's current selection, which opens the scene.
#include <QList>
#include <QString>

class QWidget;
class TUDbAccess;
class TUDbAdmin;

class TUDbSelector {
public:
    // `userTypes`: the kinds of user the login offers.
    TUDbSelector(TUDbAccess *database, TUDbAdmin *admin, QList<int> userTypes);

    enum Result { Failed = -1, Cancelled = 0, Selected = 1 };
    // Runs the dialogs over `parent`. On Failed, errorMessage() says why.
    Result run(bool colourCapable, QWidget *parent = nullptr);

    // The element chosen by the last successful run (0 before).
    qint64 elementId() const { return elementId_; }
    QString errorMessage() const { return error_; }

private:
    TUDbAccess *database_;
    TUDbAdmin *admin_;
    QList<int> userTypes_;
    qint64 elementId_ = 0;
    QString error_;
};
