#pragma once

#include <QList>
#include <QObject>
#include <QTimer>

class QAction;

namespace Plugin {

class ModelCommand;
class ModelControler;

// Holds the commands and windows of every open model, runs every action's
// command, and twice a second brings the actions' enabled and checked states
// up to date and disposes of the windows the user has closed.
class ModelCommandManager : public QObject
{
    Q_OBJECT
public:
    static ModelCommandManager* Instance();
    ~ModelCommandManager() override;

    // Null is ignored. Runs the command's OnCreate once it is listed.
    void AddCommand(ModelCommand* command);
    ModelCommand* FindCommand(QAction* action) const;
    void AddWindow(ModelControler* window);
    ModelControler* FindWindow(const QString& path) const;
    int WindowCount() const { return m_windows.size(); }
    void StartTimer(int milliseconds) { m_timer.start(milliseconds); }
    // Takes a window that is going and its commands off the lists; a window
    // deleted by anyone but the manager thus leaves nothing dangling.
    void ForgetWindow(ModelControler* window);

signals:
    // Every tick, after the clean-up; the tool box locks model files by it.
    void InspectTimer();

public slots:
    void OnUpdateState();
    void OnCommandTriggered();

private:
    ModelCommandManager();

    QList<ModelCommand*> m_commands;   // owned
    QList<ModelCommand*> m_disposed;   // of disposed windows; their actions are gone
    QList<ModelControler*> m_windows;  // owned
    QTimer m_timer;
};

} // namespace Plugin
