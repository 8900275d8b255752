#pragma once

#include "functions/APCFunParam.h"

#include <atomic>

namespace Plugin {

class APCVar;

// A var reference, %id%. Its value is the bound var's run value.
class APCFunVarParam : public APCFunParam
{
public:
    // Drops one "%" at each end, where there is one, so the text is the var id.
    explicit APCFunVarParam(const QString& text);

    bool IsValid() override;
    // Looks the var up by id; it stays null when model has no such var.
    void SetModel(APCModel* model) override;
    // Empty while no var is bound.
    QString Evaluate() override;

    // The bound var, owned by its model; null before binding or when missing.
    APCVar* GetVar() const { return m_var.load(); }

private:
    // A var shares its expression with its clones, so one of them may rebind
    // while a step of another run reads.
    std::atomic<APCVar*> m_var{nullptr}; // not owned
};

} // namespace Plugin
