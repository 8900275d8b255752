#pragma once

#include "toolbox/ATBFile.h"

#include <QStringList>

class QProcess;

namespace Plugin {

// A python script of the tool box; a double click opens it in the python editor
// that the installation carries.
class ATBPython : public ATBFile
{
public:
    ATBPython();
    ~ATBPython() override;

    void OnDoubleClicked() override;

    // The program and arguments a double click starts; empty when the
    // installation has no interpreter.
    void EditorCommand(QString& program, QStringList& arguments) const;

private:
    QProcess* m_process; // one for the item's whole life
};

} // namespace Plugin
