#include "toolbox/ATBAlgoDepend.h"

#include "editor/ModelCommandManager.h"
#include "editor/ModelControler.h"
#include "model/WholeFile.h"
#include "toolbox/ATBCreateCircuitDlg.h"

#include <QCoreApplication>
#include <QCursor>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>

namespace Plugin {

ATBAlgoDepend::ATBAlgoDepend(bool readOnly) : ATBFile(ATB_AlgoDepend), m_readOnly(readOnly), m_menu(new QMenu)
{
    if (!readOnly) {
        m_removeAction = m_menu->addAction(QCoreApplication::translate("ATBAlgo", "Remove"));
        m_editAction = m_menu->addAction(QCoreApplication::translate("ATBAlgo", "Edit"));
        QObject::connect(m_removeAction, &QAction::triggered, m_menu, [this] { OnRemove(); });
        QObject::connect(m_editAction, &QAction::triggered, m_menu, [this] { OnEdit(); });
    }
    QAction* exportAction = m_menu->addAction(QCoreApplication::translate("ATBAlgo", "Export"));
    QObject::connect(exportAction, &QAction::triggered, m_menu, [this] { OnExport(); });
    ConnectInspectTimer(m_menu, [this] { OnInspectTimer(); });
}

ATBAlgoDepend::~ATBAlgoDepend() { delete m_menu; }

void ATBAlgoDepend::OnDoubleClicked() { OpenWindow(); }

ModelControler* ATBAlgoDepend::OpenWindow()
{
    const QString path = AppRoot() + m_file;
    ModelCommandManager* manager = ModelCommandManager::Instance();
    // One window per model: an open one is left as it is, not even raised.
    if (ModelControler* open = manager->FindWindow(path))
        return open;
    auto* window = new ModelControler(path, m_readOnly, m_parentWidget);
    const QString title = window->windowTitle() + QLatin1Char('-') + m_name;
    window->SetModelName(m_name);
    window->setWindowTitle(title);
    window->setGeometry(100, 100, 800, 500);
    window->show();
    manager->AddWindow(window);
    return window;
}

bool ATBAlgoDepend::OnContextMenu(QContextMenuEvent*)
{
    // The entries show the lock the last timer tick left.
    m_menu->exec(QCursor::pos());
    return true;
}

void ATBAlgoDepend::OnInspectTimer() { EnableUnlessModelsOpen({m_removeAction, m_editAction}); }

void ATBAlgoDepend::OnRemove()
{
    const auto answer = QMessageBox::question(m_parentWidget, QCoreApplication::translate("SaveAsCommand", "Warning"),
                                              QCoreApplication::translate("SaveAsCommand", "Whether to delete or not?"),
                                              QMessageBox::Yes | QMessageBox::No);
    if (answer != QMessageBox::Yes)
        return;
    m_valid = 0;
    QFile::remove(AppRoot() + m_file);
    NotifyChanged();
}

void ATBAlgoDepend::OnEdit()
{
    ATBCreateCircuitDlg dialog(m_parentWidget);
    dialog.SetName(m_name);
    dialog.SetFile(m_file);
    dialog.SetDescription(m_description);
    if (dialog.exec() != QDialog::Accepted)
        return;
    // The dialog has renamed the file on the disk already when the name changed.
    m_name = dialog.GetName();
    m_file = dialog.GetFile();
    m_description = dialog.GetDescription();
    NotifyChanged();
}

void ATBAlgoDepend::OnExport()
{
    const QString target = QFileDialog::getSaveFileName(
        m_parentWidget, QCoreApplication::translate("SaveAsCommand", "Save As"), QString(),
        QCoreApplication::translate("SaveAsCommand", "AlgoProcessControl File(*.apc);;All File(*.*)"));
    if (target.isEmpty())
        return;
    // Never over a file that exists, as a plain copy would refuse it.
    if (!QFileInfo::exists(target))
        WholeFile::Copy(AppRoot() + m_file, target);
}

} // namespace Plugin
