#pragma once

#include <QTimer>
#include <boost/signals2/connection.hpp>

#include <functional>

namespace Plugin {
class SequenceControl;
}

namespace Mbrun {

// Notices a run that can no longer make progress (an end node the iterator never
// reaches again, say): still running, no step on the pool and nothing changed
// for a whole period. It then calls onStall once; mbrun stops the run there
// instead of waiting for ever.
class StallWatch
{
public:
    StallWatch(Plugin::SequenceControl& control, std::function<void()> onStall, int periodMs = 500);
    StallWatch(const StallWatch&) = delete;
    StallWatch& operator=(const StallWatch&) = delete;

    bool Stalled() const { return m_stalled; }

private:
    void OnTick();

    Plugin::SequenceControl& m_control;
    std::function<void()> m_onStall;
    QTimer m_timer;
    boost::signals2::scoped_connection m_activity;
    unsigned m_changes = 0;     // node status changes so far
    unsigned m_lastChanges = 0; // as seen at the last tick
    bool m_stalled = false;
};

} // namespace Mbrun
