#include "dialogs/ParameterEdit.h"

#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/SoftAssert.h"
#include "model/VarReference.h"

namespace Plugin {

void SetParameterValue(APCProcess* process, int index, const QString& value)
{
    MB_ASSERT(process && index >= 0 && index < process->GetParameters().size(), return);
    // Copies: removing arrows writes into the parameter list and tells listeners.
    const APCParameter before = process->GetParameters().at(index);
    APCModel* model = process->GetModel();
    if (model && value != before.value && !IsVarReference(value)) {
        for (APCArrow* arrow : model->ArrowsOfProcess(process, before.name))
            model->RemoveArrow(arrow);
    }
    process->GetParameters()[index].value = value;
}

} // namespace Plugin
