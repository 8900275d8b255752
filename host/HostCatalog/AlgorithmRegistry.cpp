#include "HostCatalog/AlgorithmRegistry.h"

namespace Plugin {

AlgorithmRegistry& AlgorithmRegistry::Instance()
{
    static AlgorithmRegistry registry;
    return registry;
}

void AlgorithmRegistry::Register(const AlgoConfig& config, RunFn run)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto& slot = m_entries[config.name];
    if (!slot) {
        slot = std::make_unique<Entry>();
    }
    slot->config = config;
    slot->run = std::move(run);
}

const AlgoConfig* AlgorithmRegistry::Config(const QString& name) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_entries.find(name);
    return it == m_entries.end() ? nullptr : &it->second->config;
}

AlgorithmRegistry::RunFn AlgorithmRegistry::Runner(const QString& name) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_entries.find(name);
    return it == m_entries.end() ? RunFn() : it->second->run;
}

QStringList AlgorithmRegistry::Names() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    QStringList names;
    for (const auto& e : m_entries)
        names << e.first;
    return names;
}

} // namespace Plugin
