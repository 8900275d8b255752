#include "dialogs/RunCmdDlg.h"

#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/APCObjectDialog.h"
#include "model/SoftAssert.h"

#include <QHBoxLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QSpacerItem>
#include <QTabWidget>
#include <QVBoxLayout>

RunCmdDlg::RunCmdDlg(QWidget* parent) : QDialog(parent)
{
    Plugin::StripDialogButtons(this);
    setWindowTitle(tr("Run"));
    resize(426, 148);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(6);
    layout->setContentsMargins(11, 11, 11, 11);
    m_tabs = new QTabWidget(this);
    // The form as drawn carries two placeholder tabs; the dialog starts with none.
    m_tabs->addTab(new QWidget, tr("Tab 1"));
    m_tabs->addTab(new QWidget, tr("Tab 2"));
    while (m_tabs->count() > 0) {
        QWidget* placeholder = m_tabs->widget(0);
        m_tabs->removeTab(0);
        delete placeholder;
    }
    layout->addWidget(m_tabs);

    const Plugin::DialogButtons buttons = Plugin::AddDialogButtons(this, layout, tr("OK"), tr("Cancel"), true);
    buttons.ok->setDefault(true);

}

void RunCmdDlg::AddPage(Plugin::DataTypeWidget* widget, const QString& title)
{
    MB_ASSERT(widget, return);
    widget->setParent(m_tabs);
    m_tabs->addTab(widget, title);
}

void RunCmdDlg::OnOKClicked(bool)
{
    for (int i = 0; i < m_tabs->count(); ++i) {
        auto* widget = qobject_cast<Plugin::DataTypeWidget*>(m_tabs->widget(i));
        if (widget && widget->GetValue().isEmpty()) {
            QMessageBox::information(this, tr("Error"), tr("Please set value: ") + m_tabs->tabText(i), tr("OK"));
            return;
        }
    }
    accept();
}

void RunCmdDlg::OnCancelClicked(bool) { close(); }
