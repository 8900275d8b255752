#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace Mbrun {

// mbrun's arguments, read once: what to do and the values to do it with.
class CommandLine
{
public:
    enum class Action { Run, List, Algorithms, Help };

    // False with Error() set when the arguments make no sense together.
    bool Parse(const QStringList& arguments);
    QString Error() const { return m_error; }
    static QString Usage();

    Action GetAction() const { return m_action; }
    QString ModelPath() const { return m_modelPath; }
    // NAME=VALUE pairs of --set, in order.
    const QList<QPair<QString, QString>>& Settings() const { return m_settings; }
    bool DryRun() const { return m_dryRun; }
    bool Resume() const { return m_resume; }
    // Empty when no report was asked for.
    QString ReportPath() const { return m_reportPath; }

private:
    bool Fail(const QString& error);

    Action m_action = Action::Run;
    QString m_modelPath;
    QList<QPair<QString, QString>> m_settings;
    bool m_dryRun = false;
    bool m_resume = false;
    QString m_reportPath;
    QString m_error;
};

} // namespace Mbrun
