#include "editor/ModelCommandManager.h"

#include "editor/ModelCommand.h"
#include "editor/ModelControler.h"
#include "editor/ModelTool.h"
#include "model/SoftAssert.h"

#include <QAction>
#include <QCoreApplication>
#include <QPointer>

namespace Plugin {

ModelCommandManager* ModelCommandManager::Instance()
{
    // Dies with the application, while its timer can still be stopped cleanly.
    static QPointer<ModelCommandManager> instance;
    if (!instance)
        instance = new ModelCommandManager;
    return instance;
}

ModelCommandManager::ModelCommandManager() : QObject(QCoreApplication::instance())
{
    connect(&m_timer, &QTimer::timeout, this, &ModelCommandManager::OnUpdateState);
}

ModelCommandManager::~ModelCommandManager()
{
    qDeleteAll(m_commands);
    m_commands.clear();
    qDeleteAll(m_disposed);
}

void ModelCommandManager::AddCommand(ModelCommand* command)
{
    if (!command)
        return;
    m_commands.append(command);
    if (QAction* action = command->GetAction())
        MB_CHECK(connect(action, SIGNAL(triggered()), this, SLOT(OnCommandTriggered())));
    command->OnCreate();
}

ModelCommand* ModelCommandManager::FindCommand(QAction* action) const
{
    if (!action)
        return nullptr;
    for (ModelCommand* command : m_commands)
        if (command->GetAction() == action)
            return command;
    return nullptr;
}

void ModelCommandManager::AddWindow(ModelControler* window) { m_windows.append(window); }

ModelControler* ModelCommandManager::FindWindow(const QString& path) const
{
    for (ModelControler* window : m_windows)
        if (window->GetFilePath() == path)
            return window;
    return nullptr;
}

void ModelCommandManager::ForgetWindow(ModelControler* window)
{
    for (int i = m_commands.size() - 1; i >= 0; --i)
        if (m_commands[i]->GetControler() == window)
            m_disposed.append(m_commands.takeAt(i));
    m_windows.removeOne(window);
}

void ModelCommandManager::OnCommandTriggered()
{
    auto* action = qobject_cast<QAction*>(sender());
    ModelCommand* command = FindCommand(action);
    if (!command)
        return;
    // A tool's activation thus runs twice; it only sets flags and the cursor.
    if (auto* tool = dynamic_cast<ModelTool*>(command))
        command->GetControler()->SetCurrentTool(tool);
    command->OnClick();
}

void ModelCommandManager::OnUpdateState()
{
    for (ModelCommand* command : qAsConst(m_commands)) {
        QAction* action = command->GetAction();
        if (!action)
            continue;
        ModelControler* window = command->GetControler();
        if (window && window->GetCurrentTool() == command) {
            action->setCheckable(true);
            action->setChecked(true);
        } else {
            action->setChecked(false);
        }
        action->setEnabled(command->IsEnable());
    }
    // Windows the user closed are hidden, not deleted: they go here, with
    // their commands off the list.
    for (;;) {
        ModelControler* closed = nullptr;
        for (ModelControler* window : qAsConst(m_windows))
            if (window->isHidden()) {
                closed = window;
                break;
            }
        if (!closed)
            break;
        ForgetWindow(closed);
        delete closed;
    }
    emit InspectTimer();
}

} // namespace Plugin
