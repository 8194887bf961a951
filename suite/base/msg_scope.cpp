#include "suite/base/msg_scope.h"

#include "suite/base/tumessage.h"

MSG_Scope::MSG_Scope(MSG_Text text, int action, int errorCode)
    : text_(std::move(text)), action_(action), errorCode_(errorCode) {}

MSG_Scope::~MSG_Scope() { TUMessage::instance()->dispatch(text_, action_, errorCode_); }
