#pragma once

#include <atomic>

namespace HostCore {

// Intrusive, thread-safe reference count. An object starts with no reference; the
// last Release() deletes it.
class CRef
{
public:
    CRef() = default;
    // A copy is a new object: it starts without references of its own.
    CRef(const CRef&) : m_refs(0) {}
    CRef& operator=(const CRef&) { return *this; }

    // Adds one reference; returns the new count.
    long AddRef() const;
    // Drops one reference and deletes the object when none is left; returns the new count.
    long Release() const;
    long RefCount() const { return m_refs.load(std::memory_order_acquire); }

protected:
    virtual ~CRef() = default;

private:
    mutable std::atomic<long> m_refs{0};
};

} // namespace HostCore
