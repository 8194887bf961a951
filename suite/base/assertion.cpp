#include "suite/base/assertion.h"

#include <cstdio>

#include "suite/base/msg_scope.h"

void LMV_assertion_msg(const char *file, int line, const char *text) {
    std::printf("Internal assertion error detected (%s:%d)\n", file, line);
    std::fflush(stdout);
    MSG_Scope(MSG_Text::untranslated(QStringLiteral("Internal assertion error detected (%1:%2): %3")
                                         .arg(QString::fromUtf8(file))
                                         .arg(line)
                                         .arg(QString::fromUtf8(text))),
              MSG_ACTION_LOG);
}
