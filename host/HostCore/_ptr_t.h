#pragma once

#include <utility>

namespace HostCore {

// Smart pointer that holds exactly one reference on a CRef-derived object.
template <class T>
class _ptr_t
{
public:
    _ptr_t() = default;
    _ptr_t(T* p) : m_p(p) { if (m_p) m_p->AddRef(); }
    _ptr_t(const _ptr_t& o) : _ptr_t(o.m_p) {}
    _ptr_t(_ptr_t&& o) noexcept : m_p(std::exchange(o.m_p, nullptr)) {}
    template <class U>
    _ptr_t(const _ptr_t<U>& o) : _ptr_t(o.get()) {}
    ~_ptr_t() { reset(); }

    _ptr_t& operator=(_ptr_t o) noexcept { std::swap(m_p, o.m_p); return *this; }

    void reset() { if (T* p = std::exchange(m_p, nullptr)) p->Release(); }
    T* get() const { return m_p; }
    T* operator->() const { return m_p; }
    T& operator*() const { return *m_p; }
    explicit operator bool() const { return m_p != nullptr; }
    bool operator==(const _ptr_t& o) const { return m_p == o.m_p; }
    bool operator!=(const _ptr_t& o) const { return m_p != o.m_p; }

private:
    T* m_p = nullptr;
};

} // namespace HostCore
