#pragma once

#include <QDialog>

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

} // namespace Plugin
