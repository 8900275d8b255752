#pragma once

#include "dialogs/APCObjectDialog.h"

class QLineEdit;
class QPushButton;
class QRadioButton;

namespace Plugin {

class APCVar;
class DataTypeWidget;

// Edits a var in one of two modes: a constant, through the value widget of its
// data type, or a computed value, through a path expression written by hand or
// in the function dialog ("..."). The var changes only in Apply.
class APCVarDlg : public APCObjectDialog
{
    Q_OBJECT

public:
    // object is the APCVar edited; not owned, it must outlive the dialog.
    APCVarDlg(APCObject* object, QWidget* parent);

    // Copies the description and, by the checked mode, the constant value or the
    // expression into the var, then tells the var's model (varChanged). The mode's
    // other text is kept, so a var can be switched back.
    void Apply() override;

public slots:
    void OnOKClicked(bool checked);
    void OnCancelClicked(bool checked);
    // Opens the function dialog on the expression; on OK its text is taken over.
    void OnFuncClicked(bool checked);
    void OnRadioConstClicked(bool checked);
    void OnRadioVarClicked(bool checked);

private:
    // Enables the editor of the constant mode or those of the expression mode.
    void EnableMode(bool constant);

    APCVar* m_var = nullptr;                // the object as a var; not owned
    DataTypeWidget* m_widget = nullptr;     // in the grid
    QLineEdit* m_nameEdit = nullptr;        // child
    QLineEdit* m_descriptionEdit = nullptr; // child
    QRadioButton* m_constRadio = nullptr;   // child
    QRadioButton* m_varRadio = nullptr;     // child
    QLineEdit* m_expressionEdit = nullptr;  // child
    QPushButton* m_funcButton = nullptr;    // child
};

} // namespace Plugin
