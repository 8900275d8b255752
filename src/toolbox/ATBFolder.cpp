#include "toolbox/ATBFolder.h"

#include "dialogs/APCObjectDialog.h"
#include "model/APCModel.h"
#include "model/WholeFile.h"
#include "toolbox/ATBAlgoDepend.h"
#include "toolbox/ATBCreateCircuitDlg.h"

#include <QCoreApplication>
#include <QCursor>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace Plugin {

namespace {

// Makes the folder of the model files when missing, so that the first model or
// import of a fresh installation has somewhere to go.
void makeModelFolder() { QDir().mkpath(ATBItem::AppRoot() + QStringLiteral("Model/apc")); }

} // namespace

ATBFolder::ATBFolder(bool canDelete) : ATBContainer(ATB_Folder), m_canDelete(canDelete) {}

ATBFolder::~ATBFolder()
{
    qDeleteAll(m_children);
    m_children.clear();
    delete m_menu;
    delete m_dialog;
}

void ATBFolder::SetParentWidget(QWidget* parent)
{
    ATBItem::SetParentWidget(parent);
    if (m_menu)
        return;

    m_dialog = new QDialog(parent);
    m_dialog->setWindowTitle(QCoreApplication::translate("ToolBox", "ToolSet"));
    StripDialogButtons(m_dialog);
    m_nameEdit = new QLineEdit;
    m_nameEdit->setObjectName(QStringLiteral("nameEdit"));
    auto* ok = new QPushButton(QCoreApplication::translate("ATBFolder", "OK"));
    auto* cancel = new QPushButton(QCoreApplication::translate("ATBFolder", "Cancel"));
    ok->setDefault(true);
    auto* nameRow = new QHBoxLayout;
    nameRow->addWidget(new QLabel(QCoreApplication::translate("ATBFolder", "Name:")));
    nameRow->addWidget(m_nameEdit);
    auto* buttonRow = new QHBoxLayout;
    buttonRow->addWidget(ok);
    buttonRow->addWidget(cancel);
    auto* layout = new QVBoxLayout(m_dialog);
    layout->addLayout(nameRow);
    layout->addLayout(buttonRow);
    QObject::connect(ok, &QPushButton::clicked, m_dialog, [this] { OnNewToolSet(); });
    QObject::connect(cancel, &QPushButton::clicked, m_dialog, &QWidget::close);

    m_menu = new QMenu;
    QMenu* newMenu = m_menu->addMenu(QCoreApplication::translate("ToolBox", "New"));
    QAction* toolSet =
        newMenu->addAction(QIcon(IconPath(ATB_Folder)), QCoreApplication::translate("ToolBox", "ToolSet"));
    QAction* model =
        newMenu->addAction(QIcon(IconPath(ATB_AlgoDepend)), QCoreApplication::translate("ToolBox", "Model"));
    if (m_canDelete)
        m_deleteAction = m_menu->addAction(QCoreApplication::translate("ToolBox", "Delete"));
    QAction* import = m_menu->addAction(QCoreApplication::translate("ToolBox", "Import Model"));
    QObject::connect(toolSet, &QAction::triggered, m_menu, [this] {
        m_nameEdit->clear();
        m_dialog->exec();
    });
    QObject::connect(model, &QAction::triggered, m_menu, [this] { OnNewModel(); });
    if (m_deleteAction)
        QObject::connect(m_deleteAction, &QAction::triggered, m_menu, [this] { OnDeleteFolder(); });
    QObject::connect(import, &QAction::triggered, m_menu, [this] { OnImportModel(); });
    ConnectInspectTimer(m_menu, [this] { OnInspectTimer(); });
}

bool ATBFolder::OnContextMenu(QContextMenuEvent*)
{
    if (!m_menu)
        return true; // not set up yet: nothing to show
    // The entries show the lock the last timer tick left.
    m_menu->exec(QCursor::pos());
    return true;
}

void ATBFolder::OnInspectTimer() { EnableUnlessModelsOpen({m_deleteAction}); }

void ATBFolder::OnNewToolSet()
{
    const QString name = m_nameEdit->text();
    if (name.isEmpty()) {
        QMessageBox box(QMessageBox::Information, QCoreApplication::translate("ATBFolder", "Error"),
                        QCoreApplication::translate("ATBFolder", "Name can not be empty"), QMessageBox::NoButton,
                        m_parentWidget);
        box.addButton(QCoreApplication::translate("ATBFolder", "OK"), QMessageBox::AcceptRole);
        box.exec();
        return; // the dialog stays open for another name
    }
    auto* folder = new ATBFolder(true); // what the user makes, the user may delete
    folder->SetName(name);
    m_children.append(folder);
    NotifyChanged();
    m_dialog->accept();
}

void ATBFolder::OnNewModel()
{
    ATBCreateCircuitDlg dialog(m_parentWidget);
    if (dialog.exec() != QDialog::Accepted)
        return;
    auto* model = new ATBAlgoDepend(false);
    model->SetName(dialog.GetName());
    model->SetFile(dialog.GetFile());
    model->SetDescription(dialog.GetDescription());
    m_valid = 1;
    m_children.append(model);
    makeModelFolder();
    APCModel().SaveFile(AppRoot() + model->GetFile());
    NotifyChanged();
}

void ATBFolder::OnDeleteFolder()
{
    // No question, and the models in it stay on the disk: only the tool set goes.
    m_valid = 0;
    NotifyChanged();
}

QString ATBFolder::ImportTarget(const QString& source)
{
    const QString root = AppRoot();
    const QString folder = QStringLiteral("Model/apc/");
    const QFileInfo info(source);
    QString file = folder + info.fileName();
    for (int n = 1; QFileInfo::exists(root + file); ++n)
        file = folder + info.baseName() + QStringLiteral("(%1).apc").arg(n);
    return file;
}

void ATBFolder::OnImportModel()
{
    const QString source = QFileDialog::getOpenFileName(
        m_parentWidget, QCoreApplication::translate("SaveAsCommand", "Open"), QString(),
        QCoreApplication::translate("SaveAsCommand", "AlgoProcessControl File(*.apc);;All File(*.*)"));
    if (source.isEmpty())
        return;
    makeModelFolder();
    const QString file = ImportTarget(source);
    WholeFile::Copy(source, AppRoot() + file);
    auto* model = new ATBAlgoDepend(false);
    const QString name = QFileInfo(file).baseName();
    model->SetName(name);
    model->SetDescription(name);
    model->SetFile(file);
    m_valid = 1;
    m_children.append(model);
    NotifyChanged();
}

} // namespace Plugin
