#pragma once

#include "HostTask/IHostTask.h"

namespace Plugin {

// Tells a host which inputs a model file wants: give it an STModelAlgoData with
// the file, Execute, and read the filled-in record back.
class ModelInfoAlgo : public HostTask::IHostTask
{
public:
    // Code 100 for a missing or wrong record; false without a code for a missing file.
    bool Execute() override;
};

} // namespace Plugin
