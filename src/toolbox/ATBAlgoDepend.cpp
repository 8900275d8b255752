#include "toolbox/ATBAlgoDepend.h"

#include "editor/ModelCommandManager.h"
#include "editor/ModelControler.h"

namespace Plugin {

void ATBAlgoDepend::OnDoubleClicked()
{
    const QString path = AppRoot() + m_file;
    ModelCommandManager* manager = ModelCommandManager::Instance();
    // One window per model: an open one is left as it is, not even raised.
    if (manager->FindWindow(path))
        return;
    auto* window = new ModelControler(path, m_readOnly, m_parentWidget);
    const QString title = window->windowTitle() + QLatin1Char('-') + m_name;
    window->SetModelName(m_name);
    window->setWindowTitle(title);
    window->setGeometry(100, 100, 800, 500);
    window->show();
    manager->AddWindow(window);
}

} // namespace Plugin
