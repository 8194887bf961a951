#pragma once
// A broken invariant is a log line and a neutral return, never an abort.

void LMV_assertion_msg(const char *file, int line, const char *text);

// Returns `ret` from the enclosing function when `cond` does not hold.
#define LMV_ASSERT_RET(cond, ret)                                  \
    do {                                                           \
        if (!(cond)) {                                             \
            LMV_assertion_msg(__FILE__, __LINE__, #cond);          \
            return ret;                                            \
        }                                                          \
    } while (0)

#define LMV_ASSERT_VOID(cond)                                      \
    do {                                                           \
        if (!(cond)) {                                             \
            LMV_assertion_msg(__FILE__, __LINE__, #cond);          \
            return;                                                \
        }                                                          \
    } while (0)
