#include "model/RemovedObjectBin.h"

#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"

namespace Plugin {

RemovedObjectBin::RemovedObjectBin(APCModel& model)
{
    auto keep = [this](APCObject* object) { m_objects.emplace_back(object); };
    m_processes = model.processRemoved.connect(keep);
    m_vars = model.varRemoved.connect(keep);
    m_arrows = model.arrowRemoved.connect(keep);
}

// Disconnect before the objects go, so nothing is taken while they are freed.
RemovedObjectBin::~RemovedObjectBin()
{
    m_processes.disconnect();
    m_vars.disconnect();
    m_arrows.disconnect();
}

} // namespace Plugin
