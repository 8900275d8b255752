#include "dialogs/APCFunctionDlg.h"

#include "dialogs/APCObjectDialog.h"
#include "functions/APCFun.h"
#include "model/APCVar.h"
#include "model/SoftAssert.h"
#include "model/VarReference.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSpacerItem>
#include <QSplitter>
#include <QTextEdit>
#include <QVBoxLayout>

#include <memory>

using Plugin::APCVar;
using Plugin::FunctionInfo;

APCFunctionDlg::APCFunctionDlg(const QList<FunctionInfo>& functions, const QList<APCVar*>& vars, QWidget* parent)
    : QDialog(parent), m_functions(functions), m_vars(vars)
{
    Plugin::StripDialogButtons(this);
    setWindowTitle(tr("Function"));
    resize(633, 488);
    auto* layout = new QVBoxLayout(this);

    auto* sides = new QSplitter(Qt::Horizontal, this);
    sides->setHandleWidth(10);
    auto* lists = new QSplitter(Qt::Vertical, sides);
    lists->setHandleWidth(10);
    m_functionList = new QListWidget(lists);
    m_functionList->setObjectName(QStringLiteral("functionList"));
    m_varList = new QListWidget(lists);
    m_varList->setObjectName(QStringLiteral("varList"));
    m_varList->setContextMenuPolicy(Qt::CustomContextMenu);
    lists->addWidget(m_functionList);
    lists->addWidget(m_varList);
    sides->addWidget(lists);

    auto* right = new QWidget(sides);
    auto* rightLayout = new QVBoxLayout(right);
    rightLayout->setSpacing(6);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    m_help = new QTextEdit(right);
    m_help->setObjectName(QStringLiteral("helpEdit"));
    m_help->setReadOnly(true);
    m_help->setStyleSheet(QStringLiteral("QTextEdit { background:lightgray }"));
    rightLayout->addWidget(m_help, 6);
    m_expressionEdit = new QTextEdit(right);
    m_expressionEdit->setObjectName(QStringLiteral("expressionEdit"));
    m_expressionEdit->setAcceptRichText(false);
    rightLayout->addWidget(m_expressionEdit, 4);
    sides->addWidget(right);
    sides->setStretchFactor(0, 35);
    sides->setStretchFactor(1, 65);
    layout->addWidget(sides);

    Plugin::AddSeparator(this, layout);

    Plugin::AddDialogButtons(this, layout, tr("OK"), tr("Cancel"), false);

    // Each row points at its record: the dialog's own copy of the catalogue, the var itself.
    for (int i = 0; i < m_functions.size(); ++i) {
        auto* item = new QListWidgetItem(m_functions[i].name, m_functionList);
        item->setData(Qt::UserRole, QVariant::fromValue(static_cast<void*>(&m_functions[i])));
    }
    for (APCVar* var : qAsConst(m_vars)) {
        MB_CHECK(var);
        if (!var)
            continue;
        auto* item = new QListWidgetItem(var->GetDescription(), m_varList);
        item->setData(Qt::UserRole, QVariant::fromValue(static_cast<void*>(var)));
    }
    m_functionList->sortItems(Qt::AscendingOrder);
    m_varList->sortItems(Qt::AscendingOrder);
    m_functionList->setCurrentRow(0);
    m_varList->setCurrentRow(0);
    ShowFunctionHelp(m_functionList->currentItem());

    // Only now: filling the lists must not fire the slots.
    MB_CHECK(connect(m_functionList, SIGNAL(itemSelectionChanged()), this, SLOT(OnFuncItemSelectionChanged())));
    MB_CHECK(connect(m_varList, SIGNAL(itemSelectionChanged()), this, SLOT(OnParamItemSelectionChanged())));
    MB_CHECK(connect(m_functionList, SIGNAL(itemClicked(QListWidgetItem*)), this,
                     SLOT(OnFuncItemClicked(QListWidgetItem*))));
    MB_CHECK(connect(m_varList, SIGNAL(itemClicked(QListWidgetItem*)), this,
                     SLOT(OnParamItemClicked(QListWidgetItem*))));
    MB_CHECK(connect(m_varList, SIGNAL(itemDoubleClicked(QListWidgetItem*)), this,
                     SLOT(OnParamItemDoubleClicked(QListWidgetItem*))));
    MB_CHECK(connect(m_varList, SIGNAL(customContextMenuRequested(QPoint)), this,
                     SLOT(OnParamContextMenu(QPoint))));
}

void APCFunctionDlg::SetExpression(const QString& text)
{
    m_expression = text;
    m_expressionEdit->setPlainText(text);
}

void APCFunctionDlg::OnOKClicked(bool)
{
    const QString text = m_expressionEdit->toPlainText();
    // The parse is a test only; the expression object itself is not wanted.
    const std::unique_ptr<Plugin::APCFun> parsed(Plugin::APCFun::Create(text));
    m_expression = text;
    if (!parsed && !text.isEmpty()) {
        QMessageBox::critical(this, tr("Error"), tr("The function is error!"), tr("OK"));
        return;
    }
    accept();
}

void APCFunctionDlg::OnCancelClicked(bool) { close(); }

void APCFunctionDlg::OnFuncItemSelectionChanged() { ShowFunctionHelp(m_functionList->currentItem()); }

void APCFunctionDlg::OnParamItemSelectionChanged() { ShowVarHelp(m_varList->currentItem()); }

void APCFunctionDlg::OnFuncItemClicked(QListWidgetItem* item) { ShowFunctionHelp(item); }

void APCFunctionDlg::OnParamItemClicked(QListWidgetItem* item) { ShowVarHelp(item); }

void APCFunctionDlg::OnParamItemDoubleClicked(QListWidgetItem* item) { InsertReference(item); }

void APCFunctionDlg::OnParamContextMenu(const QPoint& at)
{
    QListWidgetItem* item = m_varList->itemAt(at);
    if (!item)
        return;
    QMenu menu(this);
    QAction* insert = menu.addAction(tr("Insert reference"));
    if (menu.exec(m_varList->viewport()->mapToGlobal(at)) == insert)
        InsertReference(item);
}

void APCFunctionDlg::InsertReference(QListWidgetItem* item)
{
    if (!item)
        return;
    const auto* var = static_cast<const APCVar*>(item->data(Qt::UserRole).value<void*>());
    MB_ASSERT(var, return);
    m_expressionEdit->insertPlainText(Plugin::VarReferenceTo(var->GetName()));
    m_expressionEdit->setFocus();
}

void APCFunctionDlg::ShowFunctionHelp(QListWidgetItem* item)
{
    if (!item)
        return;
    const auto* info = static_cast<const FunctionInfo*>(item->data(Qt::UserRole).value<void*>());
    MB_ASSERT(info, return);
    const QStringList parts = info->help.split(QChar(13), Qt::KeepEmptyParts);
    if (parts.size() < 2)
        return;
    m_help->setPlainText(tr("Name:") + parts.at(0) + QStringLiteral("\n\n") + tr("Describe:") + parts.at(1));
}

void APCFunctionDlg::ShowVarHelp(QListWidgetItem* item)
{
    if (!item)
        return;
    const auto* var = static_cast<const APCVar*>(item->data(Qt::UserRole).value<void*>());
    MB_ASSERT(var, return);
    m_help->setPlainText(tr("Name:") + var->GetName() + QStringLiteral("\n") + tr("Describe:") +
                         var->GetDescription());
}
