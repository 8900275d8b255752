#include "HostCore/CRef.h"
#include "HostCore/_ptr_t.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

std::atomic<int> g_alive{0};

class Counted : public HostCore::CRef
{
public:
    Counted() { ++g_alive; }
    Counted(const Counted& o) : CRef(o) { ++g_alive; }

protected:
    ~Counted() override { --g_alive; }
};

} // namespace

TEST(RefCount, PointerHoldsOneReferenceAndLastReleaseDeletesOnAnyThread)
{
    g_alive = 0;
    {
        HostCore::_ptr_t<Counted> a(new Counted);
        EXPECT_EQ(a->RefCount(), 1);
        HostCore::_ptr_t<Counted> b = a;
        EXPECT_EQ(a->RefCount(), 2);
        HostCore::_ptr_t<Counted> c = std::move(b);
        EXPECT_FALSE(b);
        EXPECT_EQ(a->RefCount(), 2);
        c = HostCore::_ptr_t<Counted>();
        EXPECT_EQ(a->RefCount(), 1);
        EXPECT_EQ(g_alive, 1);
        // A copy of the object is a new object: it starts without references.
        HostCore::_ptr_t<Counted> d(new Counted(*a));
        EXPECT_EQ(d->RefCount(), 1);
        EXPECT_EQ(a->RefCount(), 1);
    }
    EXPECT_EQ(g_alive, 0);

    // References taken and dropped on several threads at once.
    HostCore::_ptr_t<Counted> root(new Counted);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([root] {
            for (int i = 0; i < 10000; ++i) {
                HostCore::_ptr_t<Counted> copy = root;
            }
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(root->RefCount(), 1);
    root.reset();
    EXPECT_EQ(g_alive, 0);
}
