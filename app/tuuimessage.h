#pragma once
// The station's message object: the log of TUMessage, and reports shown to the
// operator in a message box over whatever window is in front.
#include "suite/base/tumessage.h"

class TUUIMessage : public TUMessage {
    Q_OBJECT
public:
    // Without `boxes` (no screen to show them on) reports go to standard error.
    explicit TUUIMessage(Settings settings, bool boxes = true);

    // Whether this run has a screen a report box can be seen on.
    static bool screenShowsBoxes();

protected:
    // One modal box per round of pending reports; reports raised while it is
    // open wait for the next round (TUMessage keeps them out).
    bool report(char severity, const QStringList &pending, bool askIgnore) override;
    void showFatalLogFailure(const QStringList &lines) override;

private:
    QString title_;
    bool boxes_;
};
