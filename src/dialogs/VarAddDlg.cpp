#include "dialogs/VarAddDlg.h"

#include "HostCatalogGui/DataTypeFactory.h"
#include "dialogs/APCObjectDialog.h"
#include "model/SoftAssert.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSpacerItem>
#include <QVBoxLayout>

VarAddDlg::VarAddDlg(QWidget* parent) : QDialog(parent)
{
    Plugin::StripDialogButtons(this);
    setWindowTitle(tr("Add Variable"));
    resize(323, 406);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(24);
    layout->setContentsMargins(-1, 16, -1, 20);
    layout->addWidget(new QLabel(tr("Select the variable data type"), this));
    m_types = new QListWidget(this);
    m_types->setObjectName(QStringLiteral("typeList"));
    layout->addWidget(m_types);

    const Plugin::DialogButtons buttons = Plugin::AddDialogButtons(this, layout, tr("OK"), tr("Cancel"), true);
    buttons.ok->setDefault(true);

    for (const Plugin::DataTypeInfo& info : Plugin::DataTypeFactory::GetDataTypeInfo()) {
        auto* item = new QListWidgetItem(info.label, m_types);
        item->setData(Qt::UserRole, info.type);
    }
    m_types->sortItems(Qt::AscendingOrder);
    m_types->setCurrentRow(0);

}

void VarAddDlg::OnOKClicked(bool)
{
    QListWidgetItem* item = m_types->currentItem();
    if (!item) {
        QMessageBox::critical(this, tr("Error"), tr("Not selected!"), tr("OK"));
        return;
    }
    m_dataTypeLabel = item->text();
    m_dataType = item->data(Qt::UserRole).toString();
    accept();
}

void VarAddDlg::OnCancelClicked(bool) { close(); }
