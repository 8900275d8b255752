#pragma once

class QString;

namespace HostTask {
class IHostTask;
}

namespace Plugin {

// The headless model objects by the names the host asks for: "ModelAlgo" and
// "ModelAlgoInfo" (exact case); null for any other name. The caller takes the
// one reference. The plug-in exports this as GetAlgoObj.
HostTask::IHostTask* CreateHeadlessAlgo(const QString& name);

} // namespace Plugin
