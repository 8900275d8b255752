#include "HostCatalog/AlgorithmRegistry.h"

namespace Plugin {

AlgorithmRegistry& AlgorithmRegistry::Instance()
{
    static AlgorithmRegistry registry;
    return registry;
}

void AlgorithmRegistry::Register(const AlgoConfig& config, RunFn run, CheckFn check)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto& slot = m_entries[config.name];
    if (!slot) {
        slot = std::make_unique<Entry>();
    }
    slot->config = config;
    slot->run = std::move(run);
    slot->check = std::move(check);
}

void AlgorithmRegistry::AddSource(std::function<void()> source)
{
    std::lock_guard<std::recursive_mutex> lock(m_sourceMutex);
    m_sources.push_back(std::move(source));
    m_hasSources.store(true, std::memory_order_release);
}

void AlgorithmRegistry::RunSources() const
{
    if (!m_hasSources.load(std::memory_order_acquire))
        return;
    std::lock_guard<std::recursive_mutex> lock(m_sourceMutex);
    while (!m_sources.empty()) {
        const std::function<void()> source = std::move(m_sources.front());
        m_sources.erase(m_sources.begin());
        source();
    }
    m_hasSources.store(false, std::memory_order_release);
}

const AlgoConfig* AlgorithmRegistry::Config(const QString& name) const
{
    RunSources();
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_entries.find(name);
    return it == m_entries.end() ? nullptr : &it->second->config;
}

AlgorithmRegistry::RunFn AlgorithmRegistry::Runner(const QString& name) const
{
    RunSources();
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_entries.find(name);
    return it == m_entries.end() ? RunFn() : it->second->run;
}

AlgorithmRegistry::CheckFn AlgorithmRegistry::Checker(const QString& name) const
{
    RunSources();
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_entries.find(name);
    return it == m_entries.end() ? CheckFn() : it->second->check;
}

QStringList AlgorithmRegistry::Names() const
{
    RunSources();
    std::lock_guard<std::mutex> lock(m_mutex);
    QStringList names;
    for (const auto& e : m_entries)
        names << e.first;
    return names;
}

} // namespace Plugin
