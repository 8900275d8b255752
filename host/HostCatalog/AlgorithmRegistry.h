#pragma once

#include "HostCatalog/AlgoConfig.h"

#include <QJsonObject>
#include <QStringList>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

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
    // Judges the parameters before any run, without touching a file: empty when
    // nothing is refused, else {parameter name, reason}.
    using CheckFn = std::function<QStringList(const QJsonObject& params)>;

    static AlgorithmRegistry& Instance();

    // Adds or replaces the algorithm named config.name. A replaced entry's config
    // keeps its address, so pointers handed out earlier stay valid.
    void Register(const AlgoConfig& config, RunFn run, CheckFn check = {});
    // Adds a function that registers a library's algorithms. It runs once, before
    // the first lookup, so that loading the library costs nothing: a program that
    // never asks for an algorithm never builds the catalogue.
    void AddSource(std::function<void()> source);
    // The config of name, or null. The pointer lives as long as the process.
    const AlgoConfig* Config(const QString& name) const;
    // The run function of name; empty when unknown.
    RunFn Runner(const QString& name) const;
    // The check of name; empty when unknown or when it has none.
    CheckFn Checker(const QString& name) const;
    // Sorted names of all algorithms.
    QStringList Names() const;

private:
    AlgorithmRegistry() = default;
    // Runs the sources not run yet; a lookup on another thread meanwhile waits.
    void RunSources() const;

    struct Entry
    {
        AlgoConfig config;
        RunFn run;
        CheckFn check;
    };
    mutable std::mutex m_mutex;
    std::map<QString, std::unique_ptr<Entry>> m_entries;
    // A source may look algorithms up itself: the sources' lock is recursive.
    mutable std::recursive_mutex m_sourceMutex;
    mutable std::vector<std::function<void()>> m_sources;
    mutable std::atomic<bool> m_hasSources{false};
};

} // namespace Plugin
