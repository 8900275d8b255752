#pragma once

#include <QString>

namespace Plugin {

class APCProcess;

// Gives the parameter at index of process the value a dialog gathered. The
// dialog then lets APCModel::UpdateProcess reconcile the step, as the algorithm
// dialog does: a literal typed over a parameter an arrow still ties to a var is
// emptied there when the arrow is unwired. Every dialog takes this one road.
void SetParameterValue(APCProcess* process, int index, const QString& value);

} // namespace Plugin
