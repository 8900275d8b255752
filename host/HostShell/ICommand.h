#pragma once

#include "HostCore/CRef.h"

#include <QString>

namespace HostShell {

// A command the host shows and drives (tool-bar action, menu entry).
class ICommand : public virtual HostCore::CRef
{
public:
    virtual QString GetName() = 0;
    virtual QString GetCaption() = 0;
    virtual QString GetToolTip() = 0;
    virtual QString GetTypeName() = 0;
    // Polled often by the host: must be cheap and free of side effects.
    virtual bool IsEnable() = 0;
    virtual bool IsChecked() = 0;
    // Called once after creation; hook is the host's application interface.
    virtual void OnCreate(void* hook) = 0;
    virtual void OnClick() = 0;

protected:
    ~ICommand() override = default;
};

} // namespace HostShell
