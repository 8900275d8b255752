#include "StepFiles.h"

#include "engine/APCAlgo.h"
#include "model/APCProcess.h"
#include "model/VarReference.h"

#include <QFileInfo>

namespace Mbrun {

StepFiles::StepFiles(Plugin::APCProcess* clone)
{
    if (!clone)
        return;
    for (const Plugin::APCParameter& p : clone->GetParameters()) {
        const QString value = Plugin::RunValueOf(clone->GetModel(), p.value);
        m_parameters.append({p.name, value});
        if (value.isEmpty())
            continue;
        if (p.direction == 1) {
            m_outputParameters.append({p.name, value});
            m_outputs.append(value);
        }
        else if (p.type == QLatin1String("multiFile"))
            m_inputs += value.split(QLatin1Char(';'), Qt::SkipEmptyParts);
        else
            m_inputs.append(value);
    }
}

QString StepFiles::Algorithm(Plugin::APCProcess* process)
{
    return dynamic_cast<Plugin::APCAlgo*>(process) ? process->GetProcessName() : process->GetClass();
}

QStringList StepFiles::ExistingInputs() const
{
    // Any input may name a file (a layer, a mask, a table): whatever exists counts.
    QStringList files;
    for (const QString& path : m_inputs)
        if (!path.contains(QLatin1Char('\n')) && QFileInfo(path).isFile())
            files.append(path);
    return files;
}

} // namespace Mbrun
