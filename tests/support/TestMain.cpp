// Test main: an application object so that suites can run event loops (and, in
// the interface suites, widgets offscreen), and the host's test algorithms in the
// registry. Headless suites get a QCoreApplication: they must not need more.
#include "HostRunner/ExcuteAlgo.h"

#ifdef MB_TEST_GUI
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif
#include <QTemporaryDir>
#include <gtest/gtest.h>

#ifdef MB_TEST_SOFT_ASSERTS
#include "model/SoftAssert.h"

namespace {
// A soft assert recovers in the product; in a test it is a failure of its own.
class SoftAssertListener : public ::testing::EmptyTestEventListener
{
    void OnTestStart(const ::testing::TestInfo&) override { m_before = Plugin::SoftAssertFailures(); }
    void OnTestEnd(const ::testing::TestInfo&) override
    {
        const int failed = Plugin::SoftAssertFailures() - m_before;
        EXPECT_EQ(failed, 0) << "soft asserts failed during the test (see SOFT ASSERT lines above)";
    }
    int m_before = 0;
};
} // namespace
#endif

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    // What the windows keep for the user (copies of unsaved models) stays with the run.
    const QTemporaryDir userData;
    qputenv("XDG_DATA_HOME", userData.path().toLocal8Bit());
    TestApplication app(argc, argv);
    HostRunner::RegisterTestAlgorithms();
    ::testing::InitGoogleTest(&argc, argv);
#ifdef MB_TEST_SOFT_ASSERTS
    ::testing::UnitTest::GetInstance()->listeners().Append(new SoftAssertListener);
#endif
    return RUN_ALL_TESTS();
}
