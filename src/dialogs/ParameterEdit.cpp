#include "dialogs/ParameterEdit.h"

#include "model/APCProcess.h"
#include "model/SoftAssert.h"

namespace Plugin {

void SetParameterValue(APCProcess* process, int index, const QString& value)
{
    MB_ASSERT(process && index >= 0 && index < process->GetParameters().size(), return);
    process->GetParameters()[index].value = value;
}

} // namespace Plugin
