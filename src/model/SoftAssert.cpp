#include "model/SoftAssert.h"

#include <QtDebug>

#include <atomic>

namespace Plugin {

namespace {
std::atomic<int> failures{0};
}

void SoftAssertFailed(const char* condition, const char* file, int line)
{
    ++failures;
    qWarning("SOFT ASSERT: \"%s\" in %s:%d", condition, file, line);
}

int SoftAssertFailures() { return failures.load(); }

} // namespace Plugin
