#include "dialogs/APCFileIteratorDlg.h"

#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/ParameterEdit.h"
#include "engine/APCFileIterator.h"
#include "model/APCModel.h"
#include "model/SoftAssert.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpacerItem>
#include <QVBoxLayout>

namespace Plugin {

namespace {

const QString kDir = QStringLiteral("strDir");
const QString kFilter = QStringLiteral("strFilter");

// The editor of one parameter, without caption: the row's label names it. The
// typeParam is left out on purpose: the iterator's inputs need no settings.
DataTypeWidget* parameterWidget(const APCParameter& p, QGridLayout* grid, int row)
{
    DataTypeWidget* widget = DataTypeFactory::CreateDataTypeWidget(p.type, QString());
    widget->SetCaption(QString());
    widget->SetValue(p.value);
    grid->addWidget(widget, row, 1);
    return widget;
}

} // namespace

APCFileIteratorDlg::APCFileIteratorDlg(APCObject* object, QWidget* parent) : APCObjectDialog(object, parent)
{
    setWindowTitle(QCoreApplication::translate("APCFileIteratorDlg", "File Iterator"));
    resize(515, 96);
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(QCoreApplication::translate("APCFileIteratorDlg", "Directory:"), this), 0, 0,
                    Qt::AlignTop);
    grid->addWidget(new QLabel(QCoreApplication::translate("APCFileIteratorDlg", "Filter:"), this), 1, 0,
                    Qt::AlignTop);
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);

    AddDialogButtons(this, layout, QCoreApplication::translate("APCFileIteratorDlg", "OK"), QCoreApplication::translate("APCFileIteratorDlg", "Cancel"), false);


    auto* iterator = dynamic_cast<APCFileIterator*>(object);
    MB_ASSERT(iterator, return);
    for (const APCParameter& p : iterator->GetParameters()) {
        if (p.name == kDir) {
            m_directoryWidget = parameterWidget(p, grid, 0);
            m_directoryWidget->setObjectName(QStringLiteral("directoryWidget"));
        } else if (p.name == kFilter) {
            m_filterWidget = parameterWidget(p, grid, 1);
            m_filterWidget->setObjectName(QStringLiteral("filterWidget"));
        }
    }
}

void APCFileIteratorDlg::Apply()
{
    auto* iterator = dynamic_cast<APCFileIterator*>(m_object);
    MB_ASSERT(iterator, return);
    APCModel* model = iterator->GetModel();
    MB_ASSERT(model, return); // a step is edited only once it stands on a model

    for (int i = 0; i < iterator->GetParameters().size(); ++i) {
        const QString name = iterator->GetParameters().at(i).name;
        if (name == kDir && m_directoryWidget)
            SetParameterValue(iterator, i, m_directoryWidget->GetValue());
        else if (name == kFilter && m_filterWidget)
            SetParameterValue(iterator, i, m_filterWidget->GetValue());
    }
    // A filter that names no outputs (empty, bad, a var reference) keeps the outputs
    // as they are; the step's Check speaks for an empty one later.
    iterator->RefreshOutputs();
    model->UpdateProcess(iterator);
}

void APCFileIteratorDlg::OnOKClicked(bool) { accept(); }

void APCFileIteratorDlg::OnCancelClicked(bool) { close(); }

} // namespace Plugin
