#pragma once

#include "dialogs/APCObjectDialog.h"

namespace Plugin {

class DataTypeWidget;

// Edits the two inputs of a raster or vector file iterator: the folders it scans
// ("strDir") and the filter whose keys name its outputs ("strFilter").
class APCFileIteratorDlg : public APCObjectDialog
{
    Q_OBJECT

public:
    // object is the file iterator to edit, not owned, and must outlive the dialog.
    APCFileIteratorDlg(APCObject* object, QWidget* parent);

    // Writes folders and filter into the parameters, refreshes the outputs and lets
    // APCModel::UpdateProcess rebuild the vars and arrows that hang on them.
    void Apply() override;

public slots:
    // Accepts; the owner then calls Apply.
    void OnOKClicked(bool checked);
    // Closes the dialog unaccepted: nothing is applied.
    void OnCancelClicked(bool checked);

private:
    DataTypeWidget* m_directoryWidget = nullptr; // child; null without a "strDir" parameter
    DataTypeWidget* m_filterWidget = nullptr;    // child; null without a "strFilter" parameter
};

} // namespace Plugin
