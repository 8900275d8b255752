#pragma once

#include "dialogs/APCObjectDialog.h"

#include <QList>
#include <QString>

namespace Plugin {

class DataTypeWidget;

// Edits the parameters of a nested model step, one value widget per parameter,
// each captioned with the parameter's description.
class APCModelFileDlg : public APCObjectDialog
{
    Q_OBJECT

public:
    // object is the nested model step to edit, not owned, and must outlive the dialog.
    APCModelFileDlg(APCObject* object, QWidget* parent);

    // Writes the values into the parameters, brings the parameters in line with the
    // model file again and lets APCModel::UpdateProcess rebuild vars and arrows.
    void Apply() override;

public slots:
    // Accepts; the owner then calls Apply.
    void OnOKClicked(bool checked);
    // Closes the dialog unaccepted: nothing is applied.
    void OnCancelClicked(bool checked);

private:
    struct ParameterWidget
    {
        QString name;
        DataTypeWidget* widget = nullptr; // child of the dialog
    };

    QList<ParameterWidget> m_widgets; // in the order of the parameters
};

} // namespace Plugin
