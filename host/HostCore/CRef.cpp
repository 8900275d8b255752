#include "HostCore/CRef.h"

namespace HostCore {

long CRef::AddRef() const
{
    return m_refs.fetch_add(1, std::memory_order_relaxed) + 1;
}

long CRef::Release() const
{
    const long left = m_refs.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0)
        delete this;
    return left;
}

} // namespace HostCore
