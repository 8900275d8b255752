#pragma once

#include "functions/FunctionInfo.h"

#include <QDialog>
#include <QList>
#include <QString>

class QListWidget;
class QListWidgetItem;
class QPoint;
class QTextEdit;

namespace Plugin {
class APCVar;
}

// Where a user writes the path expression of a computed var: the functions of
// the catalogue and the vars of the model, with help on the chosen one, and an
// edit for the text. OK refuses text that does not parse; empty text is taken.
class APCFunctionDlg : public QDialog
{
    Q_OBJECT

public:
    // Keeps copies of both lists; the vars are not owned and must outlive the dialog.
    APCFunctionDlg(const QList<Plugin::FunctionInfo>& functions, const QList<Plugin::APCVar*>& vars,
                   QWidget* parent);

    // Stores text and shows it in the expression area.
    void SetExpression(const QString& text);
    // The text as set, or as taken at the last OK; read it after acceptance only.
    QString GetExpression() const { return m_expression; }

public slots:
    void OnOKClicked(bool checked);
    void OnCancelClicked(bool checked);
    void OnFuncItemSelectionChanged();
    void OnParamItemSelectionChanged();
    void OnFuncItemClicked(QListWidgetItem* item);
    void OnParamItemClicked(QListWidgetItem* item);
    // Puts a reference to the var of item at the expression's cursor, so that
    // no id has to be typed.
    void OnParamItemDoubleClicked(QListWidgetItem* item);
    void OnParamContextMenu(const QPoint& at);

private:
    // Shows the help of the function behind item; help without a carriage
    // return leaves the area as it was.
    void ShowFunctionHelp(QListWidgetItem* item);
    // Shows the id and the description of the var behind item.
    void ShowVarHelp(QListWidgetItem* item);
    void InsertReference(QListWidgetItem* item);

    QString m_expression;
    QList<Plugin::FunctionInfo> m_functions; // the rows point into this copy
    QList<Plugin::APCVar*> m_vars;           // not owned

    QListWidget* m_functionList = nullptr; // child
    QListWidget* m_varList = nullptr;      // child
    QTextEdit* m_help = nullptr;           // child
    QTextEdit* m_expressionEdit = nullptr; // child
};
