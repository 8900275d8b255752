#pragma once

#include "dialogs/APCObjectDialog.h"

#include <memory>

namespace Plugin {

class AlgoInfo;
class APCProcess;

// The dialog of an algorithm step: the catalogue's own form for the algorithm,
// filled with the step's parameter values. The dialog itself is never shown.
class APCAlgoDlg : public APCObjectDialog
{
    Q_OBJECT

public:
    APCAlgoDlg(APCProcess* process, QWidget* parent);
    ~APCAlgoDlg() override;

    // Runs the algorithm's form and gives its result; an algorithm the catalogue
    // does not know is said so, and the result is Rejected.
    int exec() override;
    // The form's values become the step's parameters; the model then follows.
    void Apply() override;

private:
    std::unique_ptr<AlgoInfo> m_info; // null for an algorithm the catalogue lacks
};

} // namespace Plugin
