#include "model/APCProcessFactory.h"

namespace Plugin {

APCProcessFactory* APCProcessFactory::Instance()
{
    static APCProcessFactory instance;
    return &instance;
}

APCProcess* APCProcessFactory::Create(const QString& className)
{
    const auto it = m_entries.constFind(className);
    return it == m_entries.constEnd() ? nullptr : it->create();
}

bool APCProcessFactory::IsIterator(const QString& className) const
{
    const auto it = m_entries.constFind(className);
    return it != m_entries.constEnd() && it->isIterator;
}

void APCProcessFactory::Register(const QString& className, Creator creator, bool isIterator)
{
    m_entries.insert(className, Entry{std::move(creator), isIterator});
}

} // namespace Plugin
