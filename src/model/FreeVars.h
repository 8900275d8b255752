#pragma once

#include <QList>

namespace Plugin {

class APCModel;
class APCVar;

// Owns the clones of a model's free vars (APCModel::GetFreeVars) and deletes
// them when it dies, on every path out of the caller.
class FreeVars
{
public:
    explicit FreeVars(const APCModel& model);
    FreeVars(const FreeVars&) = delete;
    FreeVars& operator=(const FreeVars&) = delete;
    ~FreeVars();

    // The clones in model order; they stay owned by this object.
    const QList<APCVar*>& List() const { return m_clones; }
    bool IsEmpty() const { return m_clones.isEmpty(); }
    int Size() const { return m_clones.size(); }

private:
    QList<APCVar*> m_clones; // owned
};

} // namespace Plugin
