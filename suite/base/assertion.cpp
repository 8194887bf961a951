#include "suite/base/assertion.h"

#include "suite/base/lmv_trace.h"

void LMV_assertion_msg(const char *file, int line, const char *text) {
    LMV_log("Internal assertion error detected (%s:%d)\n", file, line);
    // The failed condition helps whoever debugs it, not the operator's log.
    LMV_trace("  condition: %s", text);
}
