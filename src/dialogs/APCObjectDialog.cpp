#include "dialogs/APCObjectDialog.h"

namespace Plugin {

APCObjectDialog::APCObjectDialog(APCObject* object, QWidget* parent) : QDialog(parent), m_object(object)
{
    StripDialogButtons(this);
}

void APCObjectDialog::Apply() {}

void StripDialogButtons(QWidget* dialog)
{
    dialog->setWindowFlags(dialog->windowFlags() & ~(Qt::WindowContextHelpButtonHint | Qt::WindowMinimizeButtonHint |
                                                     Qt::WindowMaximizeButtonHint));
}

} // namespace Plugin
