// mbrun as a user runs it: a separate process, its output and its exit code.
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace TestSupport;

TEST(Mbrun, TheReadmeListsTheAlgorithmsAsTheRegistryHasThem)
{
    // The README's catalogue is pasted from `mbrun --algorithms`: it must not drift.
    const QString readme = QString::fromUtf8(ReadAll(QStringLiteral(MB_SOURCE_DIR "/README.md")));
    ASSERT_FALSE(readme.isEmpty());
    const Outcome o = Mbrun({"--algorithms"});
    EXPECT_EQ(o.code, 0);
    EXPECT_TRUE(o.out.contains("`raster.ndvi`"));
    EXPECT_TRUE(readme.contains(o.out)) << "regenerate the README section with build/bin/mbrun --algorithms";
}
