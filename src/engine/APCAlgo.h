#pragma once

#include "model/APCProcess.h"

#include <QStringList>

#include <memory>

namespace HostRunner {
struct RunRecord;
}

namespace Plugin {

// A step that runs one algorithm of the host's catalogue.
class APCAlgo : public APCProcess
{
public:
    // Allocates the zero-filled run record with the progress callback.
    APCAlgo();
    ~APCAlgo() override;

    APCObjectDialog* CreateDialog(QWidget* parent) override;
    // Reads the process, then reconciles it with the catalogue.
    void ReadXml(const QDomNode& node) override;
    void WriteXml(QXmlStreamWriter& writer, bool withElement) override;
    // A copy with a run record of its own.
    APCObject* Clone() override;
    // Every parameter has a value or is optional.
    bool Check() override;
    // What the host refuses of the parameters before any run (creation options the
    // output format does not take, switches its utility does not read), as
    // {parameter name, reason}; empty when it accepts them. Vars without a run value
    // yet count with their own value.
    QStringList ParameterProblem() const;
    // Takes name, display text and parameter settings from the catalogue; stored
    // values stay. Nothing changes for an algorithm the catalogue does not know.
    void SetProcessName(const QString& name) override;
    // Sends the execution text to the host's runner; blocks until it ends.
    bool Execute() override;

    // {"name":"value",...} with var references resolved to run values; "{}" when empty.
    QString ExecutionText() const;
    // The text the algorithm's dialog is opened with: references kept, ", " between
    // entries, empty text for no parameters.
    QString DialogText() const;
    // Takes the values of the dialog's JSON object text and lets the model update
    // its arrows and vars. Invalid text changes nothing; returns whether it was taken.
    bool ApplyDialogResult(const QString& json);

private:
    static int OnRunProgress(double percent, const char* text, void* userData);

    std::unique_ptr<HostRunner::RunRecord> m_record;
};

} // namespace Plugin
