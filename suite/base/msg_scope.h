#pragma once
// Raising a report: construct an MSG_Scope; when it goes out of scope the text
// reaches the message singleton with its action.
#include "suite/base/msg_text.h"

enum MSG_Action : int {
    MSG_ACTION_ERROR = 2,  // shown to the operator
    MSG_ACTION_FATAL = 3,
    MSG_ACTION_LOG = 5,    // written to the log in normal mode
    MSG_ACTION_DEBUG = 6,  // written only in debug mode
};

class MSG_Scope {
public:
    MSG_Scope(MSG_Text text, int action, int errorCode = 0);
    ~MSG_Scope();
    MSG_Scope(const MSG_Scope &) = delete;
    MSG_Scope &operator=(const MSG_Scope &) = delete;

private:
    MSG_Text text_;
    int action_;
    int errorCode_;
};
