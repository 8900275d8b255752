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

protected:
    ~Counted() override { --g_alive; }
};

} // namespace

// References taken and dropped on several threads at once: the last release deletes,
// once.
TEST(RefCount, ConcurrentAddRefReleaseDeletesExactlyOnce)
{
    g_alive = 0;
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
