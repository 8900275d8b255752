#pragma once

#include "HostCatalog/AlgoConfig.h"

#include <QJsonObject>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace Plugin {

class AlgoRunContext;

// The one list of algorithms behind both the catalogue (Metadata) and the runner
// (ExcuteAlgo). Thread-safe: steps look algorithms up from pool threads.
class AlgorithmRegistry
{
public:
    // Runs the algorithm with its parameters (all values are strings); returns
    // success. On failure the context carries a code and a message.
    using RunFn = std::function<bool(const QJsonObject& params, AlgoRunContext& ctx)>;

    static AlgorithmRegistry& Instance();

    // Adds or replaces the algorithm named config.name. A replaced entry's config
    // keeps its address, so pointers handed out earlier stay valid.
    void Register(const AlgoConfig& config, RunFn run);
    // The config of name, or null. The pointer lives as long as the process.
    const AlgoConfig* Config(const QString& name) const;
    // The run function of name; empty when unknown.
    RunFn Runner(const QString& name) const;
    // Sorted names of all algorithms.
    QStringList Names() const;

private:
    AlgorithmRegistry() = default;

    struct Entry
    {
        AlgoConfig config;
        RunFn run;
    };
    mutable std::mutex m_mutex;
    std::map<QString, std::unique_ptr<Entry>> m_entries;
};

} // namespace Plugin
