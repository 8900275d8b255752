#include "StallWatch.h"

#include "engine/APCExecuteFactory.h"
#include "engine/SequenceControl.h"

namespace Mbrun {

StallWatch::StallWatch(Plugin::SequenceControl& control, std::function<void()> onStall, int periodMs)
    : m_control(control), m_onStall(std::move(onStall))
{
    // A skipped step ends through the event loop with nothing on the pool: any
    // change of a node between two ticks counts as progress.
    m_activity = control.NodeStatus.connect([this](Plugin::SequenceNode*, int) { ++m_changes; });
    QObject::connect(&m_timer, &QTimer::timeout, [this] { OnTick(); });
    m_timer.start(periodMs);
}

void StallWatch::OnTick()
{
    const bool quiet = m_changes == m_lastChanges;
    m_lastChanges = m_changes;
    if (m_stalled || !quiet || m_control.GetState() != Plugin::SequenceControl::Running ||
        Plugin::APCExecuteFactory::Instance()->IsRunning())
        return;
    m_stalled = true;
    m_timer.stop();
    if (m_onStall)
        m_onStall();
}

} // namespace Mbrun
