#pragma once

#include <QList>
#include <QPair>
#include <QStringList>

namespace Plugin {
class APCProcess;
}

namespace Mbrun {

// What a step is given when it starts, read from its clone: each parameter's value
// as the step sees it, and which of them name the files it writes and reads. The
// plan, the report and the resume state all take a step's files from here.
class StepFiles
{
public:
    // Reads clone now; var references resolve to the vars' current run values.
    explicit StepFiles(Plugin::APCProcess* clone);
    // What the step runs, as the log names it: the algorithm, or the process's class.
    static QString Algorithm(Plugin::APCProcess* process);

    // name -> value, in parameter order.
    const QList<QPair<QString, QString>>& Parameters() const { return m_parameters; }
    // The output parameters with a value: name -> value, in parameter order.
    const QList<QPair<QString, QString>>& OutputParameters() const { return m_outputParameters; }
    // Their values.
    const QStringList& Outputs() const { return m_outputs; }
    // What the input parameters may name as files: their non-empty values, a
    // "multiFile" value split at ';'.
    const QStringList& Inputs() const { return m_inputs; }
    // Those of them that exist as files.
    QStringList ExistingInputs() const;

private:
    QList<QPair<QString, QString>> m_parameters;
    QList<QPair<QString, QString>> m_outputParameters;
    QStringList m_outputs;
    QStringList m_inputs;
};

} // namespace Mbrun
