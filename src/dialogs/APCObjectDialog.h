#pragma once

#include <QDialog>

class QBoxLayout;
class QPushButton;

namespace Plugin {

class APCObject;

// Base of the property dialogs of a model's objects. A dialog gathers values
// from the user and changes its object only in Apply, which the tool that ran
// it calls after an accepted exec and only when the model is editable.
class APCObjectDialog : public QDialog
{
    Q_OBJECT

public:
    // object is not owned; it must outlive the dialog.
    APCObjectDialog(APCObject* object, QWidget* parent);

    // Copies what the dialog holds into the object, through the model's operations.
    virtual void Apply();

    APCObject* GetObject() const { return m_object; }

protected:
    APCObject* m_object = nullptr;
};

// Takes away the title-bar buttons a property dialog has no use for.
void StripDialogButtons(QWidget* dialog);

// The row of OK and Cancel every dialog ends with, after a stretch (and before
// another when centred), named okButton and cancelButton and wired to the
// dialog's OnOKClicked(bool) and OnCancelClicked(bool) slots.
struct DialogButtons
{
    QPushButton* ok = nullptr;
    QPushButton* cancel = nullptr;
};
DialogButtons AddDialogButtons(QDialog* dialog, QBoxLayout* layout, const QString& okText, const QString& cancelText,
                               bool centred);
// A sunken horizontal line across the dialog, as above its buttons.
void AddSeparator(QWidget* dialog, QBoxLayout* layout);

} // namespace Plugin
