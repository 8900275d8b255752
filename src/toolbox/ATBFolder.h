#pragma once

#include "toolbox/ATBContainer.h"

namespace Plugin {

// A tool set: a folder of models and further tool sets. Only a folder made
// deletable may be removed by the user.
class ATBFolder : public ATBContainer
{
public:
    explicit ATBFolder(bool canDelete) : ATBContainer(ATB_Folder), m_canDelete(canDelete) {}

    bool GetCanDelete() const { return m_canDelete; }

private:
    bool m_canDelete;
};

} // namespace Plugin
