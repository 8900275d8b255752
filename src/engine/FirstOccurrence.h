#pragma once

#include <QString>

#include <vector>

namespace Plugin {

// Answers "where does this text first occur?" for one fixed haystack in time
// proportional to the needle, whatever the haystack's size. Built once (linear
// in the haystack), it turns pairing thousands of files, each by a search over
// all names, from quadratic into linear work.
class FirstOccurrence
{
public:
    explicit FirstOccurrence(const QString& haystack);

    // The position of the first occurrence of needle, as QString::indexOf(needle)
    // would give it, or -1. An empty needle occurs at 0.
    int IndexOf(const QString& needle) const;

private:
    // A suffix automaton: every substring of the haystack is one path from the
    // root, and each state knows where its substrings first end.
    struct State
    {
        int length = 0;
        int link = -1;
        int firstEnd = -1;
        int firstEdge = -1; // head of this state's edge list
    };
    struct Edge
    {
        char16_t symbol;
        int target;
        int next;
    };

    int Target(int state, char16_t symbol) const;
    void SetTarget(int state, char16_t symbol, int target);
    void Append(char16_t symbol, int position);

    std::vector<State> m_states;
    std::vector<Edge> m_edges;
    int m_last = 0;
};

} // namespace Plugin
