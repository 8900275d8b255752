#include "toolbox/ATBItem.h"

#include "HostShell/EnvironmentSetting.h"
#include "editor/ModelCommandManager.h"
#include "toolbox/ToolBoxWidget.h"

#include <QAction>

namespace Plugin {

ATBItem::ATBItem(int type) : m_type(type) {}

ATBItem::~ATBItem() = default;

void ATBItem::SetParentWidget(QWidget* parent) { m_parentWidget = parent; }
int ATBItem::GetType() { return m_type; }
void ATBItem::OnClicked() {}
void ATBItem::OnDoubleClicked() {}
bool ATBItem::OnContextMenu(QContextMenuEvent*) { return true; }

void ATBItem::NotifyChanged()
{
    if (m_toolBox)
        m_toolBox->UpdateItem(this);
}

void ATBItem::ConnectInspectTimer(QObject* context, const std::function<void()>& slot)
{
    QObject::connect(ModelCommandManager::Instance(), &ModelCommandManager::InspectTimer, context, slot);
}

void ATBItem::EnableUnlessModelsOpen(const QList<QAction*>& actions)
{
    // Any open window locks them all, not only its own model's: an open model
    // may use any other one as a nested step.
    const bool free = ModelCommandManager::Instance()->WindowCount() == 0;
    for (QAction* action : actions)
        if (action)
            action->setEnabled(free);
}

QString ATBItem::IconPath(int type)
{
    switch (type) {
    case ATB_Group:
        return QStringLiteral(":/res/ATB_Group.ico");
    case ATB_Folder:
        return QStringLiteral(":/res/ATB_Folder.ico");
    case ATB_AlgoDepend:
        return QStringLiteral(":/res/ATB_AlgoDepend.ico");
    case ATB_Algo:
    case ATB_Iterator: // no icon of its own, on purpose
        return QStringLiteral(":/res/ATB_Algo.ico");
    case ATB_Python:
        return QStringLiteral(":/res/ATB_Python.ico");
    default:
        return QString();
    }
}

QString ATBItem::AppRoot()
{
    return HostShell::EnvironmentSetting::Instance()->GetAppBinDir() + QStringLiteral("/../");
}

} // namespace Plugin
