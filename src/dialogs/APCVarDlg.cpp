#include "dialogs/APCVarDlg.h"

#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/APCFunctionDlg.h"
#include "functions/APCFun.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/SoftAssert.h"

#include <QCoreApplication>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpacerItem>
#include <QVBoxLayout>

namespace Plugin {

// The dialog's texts keep the context of the class without its namespace.
APCVarDlg::APCVarDlg(APCObject* object, QWidget* parent)
    : APCObjectDialog(object, parent), m_var(dynamic_cast<APCVar*>(object))
{
    setWindowTitle(QCoreApplication::translate("APCVarDlg", "Value"));
    resize(514, 219);
    auto* layout = new QVBoxLayout(this);

    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(QCoreApplication::translate("APCVarDlg", "Name:"), this), 0, 0);
    m_nameEdit = new QLineEdit(this);
    m_nameEdit->setObjectName(QStringLiteral("nameEdit"));
    m_nameEdit->setReadOnly(true);
    grid->addWidget(m_nameEdit, 0, 1);
    grid->addWidget(new QLabel(QCoreApplication::translate("APCVarDlg", "Description:"), this), 1, 0);
    m_descriptionEdit = new QLineEdit(this);
    m_descriptionEdit->setObjectName(QStringLiteral("descriptionEdit"));
    grid->addWidget(m_descriptionEdit, 1, 1);
    m_constRadio = new QRadioButton(QCoreApplication::translate("APCVarDlg", "Constant"), this);
    m_constRadio->setObjectName(QStringLiteral("constRadio"));
    grid->addWidget(m_constRadio, 2, 0);
    m_varRadio = new QRadioButton(QCoreApplication::translate("APCVarDlg", "Variable"), this);
    m_varRadio->setObjectName(QStringLiteral("varRadio"));
    grid->addWidget(m_varRadio, 3, 0);
    auto* expressionRow = new QHBoxLayout;
    m_expressionEdit = new QLineEdit(this);
    m_expressionEdit->setObjectName(QStringLiteral("expressionEdit"));
    expressionRow->addWidget(m_expressionEdit);
    m_funcButton = new QPushButton(QCoreApplication::translate("APCVarDlg", "..."), this);
    m_funcButton->setObjectName(QStringLiteral("funcButton"));
    m_funcButton->setAutoDefault(false); // Return in a line edit means OK, not "..."
    expressionRow->addWidget(m_funcButton);
    grid->addLayout(expressionRow, 3, 1);
    layout->addLayout(grid);

    AddSeparator(this, layout);

    const DialogButtons buttons = AddDialogButtons(this, layout, QCoreApplication::translate("APCVarDlg", "OK"), QCoreApplication::translate("APCVarDlg", "Cancel"), false);
    buttons.ok->setDefault(true);
    buttons.cancel->setAutoDefault(false);

    MB_CHECK(connect(m_funcButton, SIGNAL(clicked(bool)), this, SLOT(OnFuncClicked(bool))));
    MB_CHECK(connect(m_constRadio, SIGNAL(clicked(bool)), this, SLOT(OnRadioConstClicked(bool))));
    MB_CHECK(connect(m_varRadio, SIGNAL(clicked(bool)), this, SLOT(OnRadioVarClicked(bool))));

    MB_ASSERT(m_var, return);
    m_nameEdit->setText(m_var->GetName());
    m_descriptionEdit->setText(m_var->GetDescription());
    m_widget = m_var->CreateWidget();
    MB_ASSERT(m_widget, return);
    m_widget->setObjectName(QStringLiteral("valueWidget"));
    m_widget->SetCaption(QString());
    m_widget->SetValue(m_var->GetValue());
    // A constant shows an empty expression even when it keeps one; a computed
    // var shows its last value in the disabled widget.
    if (m_var->GetConstant()) {
        m_constRadio->setChecked(true);
        m_varRadio->setChecked(false);
    } else {
        m_varRadio->setChecked(true);
        m_constRadio->setChecked(false);
        m_expressionEdit->setText(m_var->GetFunExp());
    }
    EnableMode(m_var->GetConstant());
    grid->addWidget(m_widget, 2, 1);
}

void APCVarDlg::Apply()
{
    MB_ASSERT(m_var, return);
    m_var->SetDescription(m_descriptionEdit->text());
    if (m_constRadio->isChecked()) {
        m_var->SetConstant(true);
        if (m_widget)
            m_var->SetValue(m_widget->GetValue());
    } else if (m_varRadio->isChecked()) {
        m_var->SetConstant(false);
        m_var->SetFunExp(m_expressionEdit->text());
    }
    APCModel* model = m_var->GetModel();
    MB_ASSERT(model, return);
    model->NotifyVarChanged(m_var);
}

void APCVarDlg::OnOKClicked(bool) { accept(); }

void APCVarDlg::OnCancelClicked(bool) { close(); }

void APCVarDlg::OnFuncClicked(bool)
{
    QList<APCVar*> vars;
    if (m_var && m_var->GetModel())
        vars = m_var->GetModel()->GetVars();
    APCFunctionDlg dialog(APCFun::GetFunctionList(), vars, this);
    dialog.SetExpression(m_expressionEdit->text());
    if (dialog.exec() == QDialog::Accepted)
        m_expressionEdit->setText(dialog.GetExpression());
}

void APCVarDlg::OnRadioConstClicked(bool) { EnableMode(true); }

void APCVarDlg::OnRadioVarClicked(bool) { EnableMode(false); }

void APCVarDlg::EnableMode(bool constant)
{
    if (m_widget)
        m_widget->setEnabled(constant);
    m_expressionEdit->setEnabled(!constant);
    m_funcButton->setEnabled(!constant);
}

} // namespace Plugin
