#include "toolbox/ATBCreateCircuitDlg.h"

#include "dialogs/APCObjectDialog.h"
#include "model/SoftAssert.h"
#include "toolbox/ATBItem.h"

#include <QFile>
#include <QFileInfo>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpacerItem>
#include <QVBoxLayout>

ATBCreateCircuitDlg::ATBCreateCircuitDlg(QWidget* parent)
    : QDialog(parent), m_nameEdit(new QLineEdit), m_descriptionEdit(new QLineEdit)
{
    resize(321, 124);
    setWindowTitle(tr("CreateCircuit"));
    Plugin::StripDialogButtons(this);
    m_nameEdit->setObjectName(QStringLiteral("nameEdit"));
    m_descriptionEdit->setObjectName(QStringLiteral("descriptionEdit"));

    auto* outer = new QVBoxLayout(this);
    outer->setSpacing(6);
    outer->setContentsMargins(11, 11, 11, 11);
    auto* grid = new QGridLayout;
    grid->setSpacing(6);
    grid->addWidget(new QLabel(tr("Name:")), 0, 0);
    grid->addWidget(m_nameEdit, 0, 1);
    grid->addWidget(new QLabel(tr("Description:")), 1, 0);
    grid->addWidget(m_descriptionEdit, 1, 1);
    outer->addLayout(grid);
    outer->addItem(new QSpacerItem(20, 0, QSizePolicy::Minimum, QSizePolicy::Expanding));
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    outer->addWidget(line);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(6);
    auto spacer = [] { return new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum); };
    auto* ok = new QPushButton(tr("OK"));
    auto* cancel = new QPushButton(tr("Cancel"));
    ok->setObjectName(QStringLiteral("okButton"));
    cancel->setObjectName(QStringLiteral("cancelButton"));
    ok->setDefault(true); // Return in a field is OK
    buttons->addItem(spacer());
    buttons->addWidget(ok);
    buttons->addItem(spacer());
    buttons->addWidget(cancel);
    buttons->addItem(spacer());
    outer->addLayout(buttons);

    MB_CHECK(connect(ok, SIGNAL(clicked(bool)), this, SLOT(OnOKClicked(bool))));
    MB_CHECK(connect(cancel, SIGNAL(clicked(bool)), this, SLOT(OnCancelClicked(bool))));
}

void ATBCreateCircuitDlg::SetName(const QString& name) { m_nameEdit->setText(name); }
QString ATBCreateCircuitDlg::GetName() const { return m_nameEdit->text(); }
void ATBCreateCircuitDlg::SetDescription(const QString& description) { m_descriptionEdit->setText(description); }
QString ATBCreateCircuitDlg::GetDescription() const { return m_descriptionEdit->text(); }

QString ATBCreateCircuitDlg::FileForName(const QString& name)
{
    const QString extension = QStringLiteral(".apc");
    // Case-sensitive on purpose: "A.APC" becomes "A.APC.apc".
    return QStringLiteral("Model/apc/") + (name.endsWith(extension, Qt::CaseSensitive) ? name : name + extension);
}

void ATBCreateCircuitDlg::OnOKClicked(bool)
{
    const QString name = m_nameEdit->text();
    if (name.isEmpty()) {
        QMessageBox::critical(this, tr("Error"), tr("Name is null!"), QMessageBox::Ok);
        return;
    }
    const QString root = Plugin::ATBItem::AppRoot();
    const QString file = FileForName(name);
    if (m_file.isEmpty()) {
        // A new model never takes the place of a file that exists.
        m_file = file;
        if (QFileInfo::exists(root + m_file)) {
            QMessageBox::critical(this, tr("Error"), tr("File is existing!"), QMessageBox::Ok);
            m_file.clear();
            return;
        }
    } else if (file != m_file) {
        if (QFileInfo::exists(root + file)) {
            QMessageBox::critical(this, tr("Error"), tr("File is existing!"), QMessageBox::Ok);
            return;
        }
        QFile::rename(root + m_file, root + file);
        m_file = file;
    }
    accept();
}

void ATBCreateCircuitDlg::OnCancelClicked(bool) { close(); }
