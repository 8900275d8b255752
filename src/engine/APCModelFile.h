#pragma once

#include "model/APCProcess.h"

#include <QMap>

#include <mutex>


namespace Plugin {

class ModelRun;
class SequenceControl;
class SequenceNode;

// A step whose work is another model file. Its parameters mirror the file's free
// vars; each execution loads the file afresh and runs it to its end.
class APCModelFile : public APCProcess
{
public:
    APCModelFile();
    ~APCModelFile() override;

    APCObjectDialog* CreateDialog(QWidget* parent) override;
    // Reads the process, then refreshes the parameters from the file.
    void ReadXml(const QDomNode& node) override;
    void WriteXml(QXmlStreamWriter& writer, bool withElement) override;
    APCObject* Clone() override;
    // Every parameter has a value (or is optional) and the file loads and validates.
    bool Check() override;
    // name is relative to the application root; loads the parameters.
    void SetProcessName(const QString& name) override;
    // Runs the nested model on a control of its own and waits in an event loop.
    bool Execute() override;

    // Uses path as it stands (processName untouched); returns LoadParameters().
    bool SetModelPath(const QString& path);
    QString GetModelPath() const { return m_modelPath; }
    // Brings the parameter list in line with the file's free vars.
    bool LoadParameters();

    // Asks a nested run in progress to stop, from any thread; it then ends as a
    // stopped run does and Execute returns. Nothing happens when none runs.
    void RequestStop();

private:
    void OnNestedProgress(SequenceNode* node, double value);
    void OnNestedFinished(SequenceNode* node);

    QString m_modelPath;
    ModelRun* m_run = nullptr; // the nested run, during Execute only
    int m_nodeCount = 0;       // its steps, for the progress share of each
    QMap<SequenceNode*, double> m_nodeProgress;
    std::mutex m_stopMutex; // guards m_run and m_stopRequested against RequestStop
    bool m_stopRequested = false;
};

} // namespace Plugin
