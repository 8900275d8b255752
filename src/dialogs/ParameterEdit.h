#pragma once

#include <QString>

namespace Plugin {

class APCProcess;

// Gives the parameter at index of process the value a dialog gathered, before the
// dialog lets APCModel::UpdateProcess reconcile the step. When the new value names
// no var and replaces another, the parameter's arrows are taken out first through
// the model: left in place, the reconciliation would unwire them and so empty the
// parameter, losing what the user typed. Without a model the value is just stored.
void SetParameterValue(APCProcess* process, int index, const QString& value);

} // namespace Plugin
