#pragma once

// Programmer errors made visible without taking the user's work down: a failed
// check is logged with its place and counted, then the code recovers by the
// action given (MB_ASSERT(node, return);), which may return but not break out
// of the caller's loop. Tests fail on any counted failure.
#define MB_ASSERT(cond, action)                                    \
    do {                                                           \
        if (Q_UNLIKELY(!(cond))) {                                 \
            ::Plugin::SoftAssertFailed(#cond, __FILE__, __LINE__); \
            action;                                                \
        }                                                          \
    } while (0)

// For results that must hold but need no recovery, such as a string-form
// connect: the expression is evaluated in every build.
#define MB_CHECK(cond) MB_ASSERT(cond, (void)0)

#include <QtGlobal>

namespace Plugin {

// Logs "SOFT ASSERT" with the condition and place through qWarning, and counts.
void SoftAssertFailed(const char* condition, const char* file, int line);
// How many soft asserts failed in this process so far.
int SoftAssertFailures();

} // namespace Plugin
