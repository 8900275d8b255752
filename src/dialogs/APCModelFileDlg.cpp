#include "dialogs/APCModelFileDlg.h"

#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/ParameterEdit.h"
#include "engine/APCModelFile.h"
#include "model/APCModel.h"
#include "model/SoftAssert.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSpacerItem>
#include <QVBoxLayout>

namespace Plugin {

APCModelFileDlg::APCModelFileDlg(APCObject* object, QWidget* parent) : APCObjectDialog(object, parent)
{
    setWindowTitle(QCoreApplication::translate("APCModelFileDlg", "Model file"));
    resize(516, 108);
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);

    const DialogButtons buttons = AddDialogButtons(this, layout, QCoreApplication::translate("APCModelFileDlg", "OK"), QCoreApplication::translate("APCModelFileDlg", "Cancel"), false);
    buttons.ok->setDefault(true);


    auto* step = dynamic_cast<APCModelFile*>(object);
    MB_ASSERT(step, return);
    m_widgets.clear();
    const QList<APCParameter>& parameters = step->GetParameters();
    for (int row = 0; row < parameters.size(); ++row) {
        const APCParameter& p = parameters[row];
        // The widget's own caption names the parameter; column 0 stays empty.
        DataTypeWidget* widget = DataTypeFactory::CreateDataTypeWidget(p.type, QString());
        widget->SetCaption(p.description);
        widget->SetValue(p.value);
        grid->addWidget(widget, row, 1);
        m_widgets.append({p.name, widget});
    }
}

void APCModelFileDlg::Apply()
{
    auto* step = dynamic_cast<APCModelFile*>(m_object);
    MB_ASSERT(step, return);
    APCModel* model = step->GetModel();
    MB_ASSERT(model, return); // a step is edited only once it stands on a model

    for (int i = 0; i < step->GetParameters().size(); ++i) {
        const QString name = step->GetParameters().at(i).name;
        for (const ParameterWidget& w : m_widgets) {
            if (w.name == name)
                SetParameterValue(step, i, w.widget->GetValue());
        }
    }
    // A file that is gone or unreadable leaves the parameters as they were; the
    // step's Check reports it before a run.
    step->LoadParameters();
    model->UpdateProcess(step);
}

void APCModelFileDlg::OnOKClicked(bool) { accept(); }

void APCModelFileDlg::OnCancelClicked(bool) { close(); }

} // namespace Plugin
