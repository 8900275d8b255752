#include "model/FreeVars.h"

#include "model/APCModel.h"
#include "model/APCVar.h"

namespace Plugin {

FreeVars::FreeVars(const APCModel& model) : m_clones(model.GetFreeVars()) {}

FreeVars::~FreeVars() { qDeleteAll(m_clones); }

} // namespace Plugin
