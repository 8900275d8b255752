#pragma once

#include <QHash>
#include <QString>

#include <functional>

namespace Plugin {

class APCProcess;

// Makes processes from their class text. The model knows no kind of process: the
// engine registers each one ("algo", "RasterFileIterator", "VectorFileIterator",
// "model") when its library loads.
class APCProcessFactory
{
public:
    using Creator = std::function<APCProcess*()>;

    static APCProcessFactory* Instance();
    virtual ~APCProcessFactory() = default;

    // A new process of that class (exact case), or null for a class nobody
    // registered. The caller owns the result.
    APCProcess* Create(const QString& className);
    // True when the class is registered as an iterator: a process the run calls
    // again and again, whose output vars count as fed.
    bool IsIterator(const QString& className) const;

    // Called once per class, before any model is read; a later call replaces it.
    void Register(const QString& className, Creator creator, bool isIterator);

private:
    struct Entry
    {
        Creator create;
        bool isIterator = false;
    };
    QHash<QString, Entry> m_entries;
};

} // namespace Plugin
