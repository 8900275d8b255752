#pragma once

#include "dialogs/APCObjectDialog.h"

class QComboBox;

namespace Plugin {

class APCArrow;

// Edits what an arrow joins: for each end a kind ("process" or "var"), an object
// of the model and, at a process, a parameter that may be joined there (inputs at
// the head, outputs at the tail). Any combination is accepted; the model decides
// what it means for the parameters.
class APCArrowDlg : public APCObjectDialog
{
    Q_OBJECT

public:
    // object is the arrow to edit, not owned, and must outlive the dialog; for any
    // other object the lists stay empty and Apply does nothing.
    APCArrowDlg(APCObject* object, QWidget* parent);

    // Re-points the arrow to the chosen ends through APCModel::ChangeArrow.
    void Apply() override;

public slots:
    // Accepts; the owner then calls Apply.
    void OnOKClicked(bool checked);
    // Closes the dialog unaccepted: nothing is applied.
    void OnCancelClicked(bool checked);
    // Driven by the Type combos: refill that end's object list.
    void OnHeadObjectChanged(int index);
    void OnTailObjectChanged(int index);
    // Driven by the Object combos: refill that end's parameter list.
    void OnHeadParameterChanged(int index);
    void OnTailParameterChanged(int index);

private:
    // The edited arrow, or null when the object is none.
    APCArrow* Arrow() const;
    void FillObjects(QComboBox* objects, QComboBox* parameters, const QString& type, bool isHead);
    void FillParameters(QComboBox* parameters, const QString& objectId, bool isHead);

    QComboBox* m_headType = nullptr;      // child
    QComboBox* m_headObject = nullptr;    // child
    QComboBox* m_headParameter = nullptr; // child
    QComboBox* m_tailType = nullptr;      // child
    QComboBox* m_tailObject = nullptr;    // child
    QComboBox* m_tailParameter = nullptr; // child
};

} // namespace Plugin
