#pragma once

#include "toolbox/ATBFile.h"

namespace Plugin {

// A model file of the tool box ("Model/apc/NAME.apc" below the application root).
class ATBAlgoDepend : public ATBFile
{
public:
    explicit ATBAlgoDepend(bool readOnly) : ATBFile(ATB_AlgoDepend), m_readOnly(readOnly) {}

    bool GetReadOnly() const { return m_readOnly; }

    // Opens the model's editor window, unless one is open for it already.
    void OnDoubleClicked() override;

private:
    bool m_readOnly;
};

} // namespace Plugin
