#include "engine/APCExecuteFactory.h"
#include "model/IAPCExecute.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QThreadPool>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <stdexcept>

using namespace Plugin;
using TestSupport::WaitUntil;

namespace {

// An executable that holds its pool thread until released, and counts the
// reports it gets.
class Gate : public IAPCExecute
{
public:
    explicit Gate(bool open = true) : m_open(open)
    {
        Finished.connect([this](void*) { ++finished; });
        Canceled.connect([this](void*) { ++canceled; });
    }
    bool Execute() override
    {
        entered = true;
        while (!m_open)
            QThread::msleep(1);
        // left is the last thing the gate touches: a test that waited for the pool, whose
        // order the thread checker cannot see, may end once it reads left.
        const bool fail = throws;
        left = true;
        if (fail)
            throw std::runtime_error("disk on fire");
        return true;
    }
    void Open() { m_open = true; }

    std::atomic<bool> entered{false};
    std::atomic<bool> left{false};
    bool throws = false;
    int finished = 0;
    int canceled = 0;

private:
    std::atomic<bool> m_open;
};

APCExecuteFactory& factory() { return *APCExecuteFactory::Instance(); }

} // namespace

TEST(ExecuteFactory, CancelAllLeavesARunningStepUnheard)
{
    // With nothing to run, the calls do nothing.
    factory().Start(nullptr);
    factory().Cancel(nullptr);
    factory().CancelAll();
    EXPECT_FALSE(factory().IsRunning());
    EXPECT_FALSE(factory().Execute(nullptr));
    Gate step(false);
    factory().Start(&step);
    ASSERT_TRUE(WaitUntil([&] { return step.entered.load(); }));
    factory().CancelAll();
    ASSERT_TRUE(WaitUntil([&] { return step.canceled == 1; }));
    EXPECT_FALSE(factory().IsRunning()); // out of the lists while its thread still works
    step.Open();
    // The factory no longer tracks it, so WaitUntilIdle cannot wait for it: wait
    // for the pool itself, or the step's thread would outlive the stack it reads.
    ASSERT_TRUE(QThreadPool::globalInstance()->waitForDone(10000));
    QCoreApplication::processEvents();
    EXPECT_TRUE(step.left);
    EXPECT_EQ(step.finished, 0);
    EXPECT_EQ(step.canceled, 1);
}

// Watchers are reused on the application thread. A cancel that lands after a
// step finished, but before its report was handled, must not reach the step
// that gets the watcher next.
TEST(ExecuteFactory, ALateCancelDoesNotReachTheNextStep)
{
    Gate first;
    Gate next(false);
    // As in a chain: the next step starts from the first one's report.
    first.Finished.connect([&](void*) { factory().Start(&next); });
    factory().Start(&first);
    factory().WaitUntilIdle({&first}); // finished, its report still queued
    factory().CancelAll();
    ASSERT_TRUE(WaitUntil([&] { return first.finished == 1; }));
    QCoreApplication::processEvents();
    next.Open();
    ASSERT_TRUE(WaitUntil([&] { return next.finished == 1; }));
    EXPECT_EQ(next.canceled, 0);
    EXPECT_EQ(first.canceled, 0);
    EXPECT_FALSE(factory().IsRunning());
}

TEST(ExecuteFactory, AnExceptionBecomesTheStepsError)
{
    Gate step;
    step.throws = true;
    factory().Start(&step);
    ASSERT_TRUE(WaitUntil([&] { return step.finished == 1; }));
    int code = 0;
    QString message;
    step.GetError(code, message);
    EXPECT_EQ(code, -1);
    EXPECT_EQ(message, "disk on fire");
}

TEST(ExecuteFactory, CancelWaitsForTheStepsThread)
{
    Gate step(false);
    factory().Start(&step);
    ASSERT_TRUE(WaitUntil([&] { return step.entered.load(); }));
    std::thread opener([&] {
        QThread::msleep(20);
        step.Open();
    });
    factory().Cancel(&step);
    EXPECT_TRUE(step.left); // Cancel returned only once Execute had
    opener.join();
    ASSERT_TRUE(WaitUntil([&] { return step.canceled == 1; }));
    EXPECT_EQ(step.finished, 0);
    EXPECT_FALSE(factory().IsRunning());
}
