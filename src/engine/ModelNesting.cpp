#include "engine/ModelNesting.h"

#include "engine/APCModelFile.h"
#include "model/APCModel.h"

#include <QFileInfo>

#include <functional>

namespace Plugin {

namespace ModelNesting {

namespace {

// Calls visit with each nested model step of the file; nothing when it does not load.
void forEachNested(const QString& file, const std::function<bool(APCModelFile*)>& visit)
{
    APCModel model;
    if (!model.LoadFile(file))
        return;
    for (APCProcess* p : model.GetProcesses())
        if (auto* nested = dynamic_cast<APCModelFile*>(p))
            if (!visit(nested))
                return;
}

void collect(const QString& path, QStringList& files)
{
    const QString file = QFileInfo(path).absoluteFilePath();
    if (files.contains(file))
        return; // met before, or a cycle, which the checks before a run refuse
    files << file;
    forEachNested(file, [&files](APCModelFile* nested) {
        collect(nested->GetModelPath(), files);
        return true;
    });
}

} // namespace

QString Canonical(const QString& path)
{
    const QString c = QFileInfo(path).canonicalFilePath();
    return c.isEmpty() ? QFileInfo(path).absoluteFilePath() : c;
}

QStringList Files(const QString& path)
{
    QStringList files;
    collect(path, files);
    return files;
}

QStringList Cycle(const QString& path, QStringList chain)
{
    const QString file = Canonical(path);
    if (chain.contains(file))
        return chain.mid(chain.indexOf(file)) << file;
    chain << file;
    QStringList cycle;
    forEachNested(file, [&](APCModelFile* nested) {
        cycle = Cycle(nested->GetModelPath(), chain);
        return cycle.isEmpty();
    });
    return cycle;
}

} // namespace ModelNesting

} // namespace Plugin
