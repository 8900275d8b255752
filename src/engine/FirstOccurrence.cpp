#include "engine/FirstOccurrence.h"

namespace Plugin {

FirstOccurrence::FirstOccurrence(const QString& haystack)
{
    m_states.reserve(2 * size_t(haystack.size()) + 1);
    m_edges.reserve(3 * size_t(haystack.size()) + 1);
    m_states.emplace_back();
    for (int i = 0; i < haystack.size(); ++i)
        Append(haystack.at(i).unicode(), i);
}

int FirstOccurrence::Target(int state, char16_t symbol) const
{
    for (int e = m_states[size_t(state)].firstEdge; e >= 0; e = m_edges[size_t(e)].next)
        if (m_edges[size_t(e)].symbol == symbol)
            return m_edges[size_t(e)].target;
    return -1;
}

void FirstOccurrence::SetTarget(int state, char16_t symbol, int target)
{
    for (int e = m_states[size_t(state)].firstEdge; e >= 0; e = m_edges[size_t(e)].next)
        if (m_edges[size_t(e)].symbol == symbol) {
            m_edges[size_t(e)].target = target;
            return;
        }
    m_edges.push_back(Edge{symbol, target, m_states[size_t(state)].firstEdge});
    m_states[size_t(state)].firstEdge = int(m_edges.size()) - 1;
}

void FirstOccurrence::Append(char16_t symbol, int position)
{
    const int current = int(m_states.size());
    State fresh;
    fresh.length = m_states[size_t(m_last)].length + 1;
    fresh.firstEnd = position;
    m_states.push_back(fresh);

    int p = m_last;
    while (p >= 0 && Target(p, symbol) < 0) {
        SetTarget(p, symbol, current);
        p = m_states[size_t(p)].link;
    }
    if (p < 0) {
        m_states[size_t(current)].link = 0;
    } else {
        const int q = Target(p, symbol);
        if (m_states[size_t(p)].length + 1 == m_states[size_t(q)].length) {
            m_states[size_t(current)].link = q;
        } else {
            // Split q: the clone keeps q's first end, since it stands for a
            // subset of q's substrings that end at the same places.
            const int clone = int(m_states.size());
            State copy = m_states[size_t(q)];
            copy.length = m_states[size_t(p)].length + 1;
            copy.firstEdge = -1;
            m_states.push_back(copy);
            for (int e = m_states[size_t(q)].firstEdge; e >= 0; e = m_edges[size_t(e)].next)
                SetTarget(clone, m_edges[size_t(e)].symbol, m_edges[size_t(e)].target);
            while (p >= 0 && Target(p, symbol) == q) {
                SetTarget(p, symbol, clone);
                p = m_states[size_t(p)].link;
            }
            m_states[size_t(q)].link = clone;
            m_states[size_t(current)].link = clone;
        }
    }
    m_last = current;
}

int FirstOccurrence::IndexOf(const QString& needle) const
{
    if (needle.isEmpty())
        return 0;
    int state = 0;
    for (const QChar c : needle) {
        state = Target(state, c.unicode());
        if (state < 0)
            return -1;
    }
    return m_states[size_t(state)].firstEnd - needle.size() + 1;
}

} // namespace Plugin
