#include "dialogs/APCObjectDialog.h"

#include "model/SoftAssert.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSpacerItem>

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

DialogButtons AddDialogButtons(QDialog* dialog, QBoxLayout* layout, const QString& okText, const QString& cancelText,
                               bool centred)
{
    auto* row = new QHBoxLayout;
    row->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    DialogButtons buttons;
    buttons.ok = new QPushButton(okText, dialog);
    buttons.ok->setObjectName(QStringLiteral("okButton"));
    row->addWidget(buttons.ok);
    buttons.cancel = new QPushButton(cancelText, dialog);
    buttons.cancel->setObjectName(QStringLiteral("cancelButton"));
    row->addWidget(buttons.cancel);
    if (centred)
        row->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    layout->addLayout(row);
    MB_CHECK(QObject::connect(buttons.ok, SIGNAL(clicked(bool)), dialog, SLOT(OnOKClicked(bool))));
    MB_CHECK(QObject::connect(buttons.cancel, SIGNAL(clicked(bool)), dialog, SLOT(OnCancelClicked(bool))));
    return buttons;
}

void AddSeparator(QWidget* dialog, QBoxLayout* layout)
{
    auto* line = new QFrame(dialog);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line);
}

} // namespace Plugin
