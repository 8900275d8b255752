#pragma once

#include "HostTask/IHostTask.h"

namespace Plugin {

// Runs a model file with given values, without any window. Blocks until the run
// has ended; the calling thread must be able to run an event loop.
class ModelAlgo : public HostTask::IHostTask
{
public:
    // Code 100 when the record, the file or the values do not fit the model; true
    // once the model has run, whatever its steps did.
    bool Execute() override;
};

} // namespace Plugin
