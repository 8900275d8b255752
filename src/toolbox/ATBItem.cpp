#include "toolbox/ATBItem.h"

#include "HostShell/EnvironmentSetting.h"

namespace Plugin {

ATBItem::ATBItem(int type) : m_type(type) {}

ATBItem::~ATBItem() = default;

void ATBItem::SetParentWidget(QWidget* parent) { m_parentWidget = parent; }
int ATBItem::GetType() { return m_type; }
void ATBItem::OnClicked() {}
void ATBItem::OnDoubleClicked() {}
bool ATBItem::OnContextMenu(QContextMenuEvent*) { return true; }

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
