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

    auto* buttons = new QHBoxLayout;
    buttons->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    auto* ok = new QPushButton(tr("OK"), this);
    ok->setObjectName(QStringLiteral("okButton"));
    ok->setDefault(true);
    buttons->addWidget(ok);
    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName(QStringLiteral("cancelButton"));
    buttons->addWidget(cancel);
    buttons->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    layout->addLayout(buttons);

    for (const Plugin::DataTypeInfo& info : Plugin::DataTypeFactory::GetDataTypeInfo()) {
        auto* item = new QListWidgetItem(info.label, m_types);
        item->setData(Qt::UserRole, info.type);
    }
    m_types->sortItems(Qt::AscendingOrder);
    m_types->setCurrentRow(0);

    MB_CHECK(connect(ok, SIGNAL(clicked(bool)), this, SLOT(OnOKClicked(bool))));
    MB_CHECK(connect(cancel, SIGNAL(clicked(bool)), this, SLOT(OnCancelClicked(bool))));
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
