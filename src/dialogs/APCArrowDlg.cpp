#include "dialogs/APCArrowDlg.h"

#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "model/SoftAssert.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpacerItem>
#include <QVBoxLayout>

#include <memory>

namespace Plugin {

namespace {

const QString kProcess = QStringLiteral("process");
const QString kVar = QStringLiteral("var");
const QString kArrowClass = QStringLiteral("arrow");

// One end of the arrow: a group box with its three labelled combos.
QGroupBox* endGroup(const QString& title, const QString& prefix, QComboBox** type, QComboBox** object,
                    QComboBox** parameter, QWidget* parent)
{
    auto* group = new QGroupBox(title, parent);
    auto* grid = new QGridLayout(group);
    const QString labels[] = {QCoreApplication::translate("APCArrowDlg", "Type:"),
                              QCoreApplication::translate("APCArrowDlg", "Object:"),
                              QCoreApplication::translate("APCArrowDlg", "Parameter:")};
    const QString names[] = {QStringLiteral("Type"), QStringLiteral("Object"), QStringLiteral("Parameter")};
    QComboBox** combos[] = {type, object, parameter};
    for (int row = 0; row < 3; ++row) {
        auto* label = new QLabel(labels[row], group);
        auto* combo = new QComboBox(group);
        combo->setObjectName(prefix + names[row]);
        combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        label->setBuddy(combo);
        grid->addWidget(label, row, 0);
        grid->addWidget(combo, row, 1);
        *combos[row] = combo;
    }
    return group;
}

} // namespace

APCArrowDlg::APCArrowDlg(APCObject* object, QWidget* parent) : APCObjectDialog(object, parent)
{
    setWindowTitle(QCoreApplication::translate("APCArrowDlg", "Depend"));
    auto* layout = new QVBoxLayout(this);

    auto* ends = new QHBoxLayout;
    ends->addWidget(endGroup(QCoreApplication::translate("APCArrowDlg", "Depend head"), QStringLiteral("head"),
                             &m_headType, &m_headObject, &m_headParameter, this));
    ends->addItem(new QSpacerItem(20, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    ends->addWidget(endGroup(QCoreApplication::translate("APCArrowDlg", "Depend tail"), QStringLiteral("tail"),
                             &m_tailType, &m_tailObject, &m_tailParameter, this));
    layout->addLayout(ends);

    AddSeparator(this, layout);

    AddDialogButtons(this, layout, QCoreApplication::translate("APCArrowDlg", "OK"), QCoreApplication::translate("APCArrowDlg", "Cancel"), false);


    if (APCArrow* arrow = Arrow()) {
        for (QComboBox* type : {m_headType, m_tailType}) {
            type->addItem(QCoreApplication::translate("APCArrowDlg", "process"), kProcess);
            type->addItem(QCoreApplication::translate("APCArrowDlg", "var"), kVar);
        }
        m_headType->setCurrentIndex(m_headType->findData(arrow->GetHeadType()));
        m_tailType->setCurrentIndex(m_tailType->findData(arrow->GetTailType()));
        FillObjects(m_headObject, m_headParameter, m_headType->currentData().toString(), true);
        FillObjects(m_tailObject, m_tailParameter, m_tailType->currentData().toString(), false);

        // Connected only after the first fill, so that the selections below refill
        // just the end whose object is not the first of its list.
        MB_CHECK(connect(m_headType, SIGNAL(currentIndexChanged(int)), this, SLOT(OnHeadObjectChanged(int))));
        MB_CHECK(connect(m_tailType, SIGNAL(currentIndexChanged(int)), this, SLOT(OnTailObjectChanged(int))));
        MB_CHECK(connect(m_headObject, SIGNAL(currentIndexChanged(int)), this, SLOT(OnHeadParameterChanged(int))));
        MB_CHECK(connect(m_tailObject, SIGNAL(currentIndexChanged(int)), this, SLOT(OnTailParameterChanged(int))));

        // Not found gives index -1: the combo shows blank and stores an empty text.
        m_headObject->setCurrentIndex(m_headObject->findData(arrow->GetHead()));
        m_headParameter->setCurrentIndex(m_headParameter->findData(arrow->GetHeadParam()));
        m_tailObject->setCurrentIndex(m_tailObject->findData(arrow->GetTail()));
        m_tailParameter->setCurrentIndex(m_tailParameter->findData(arrow->GetTailParam()));
    }

    setFixedSize(522, 181);
}

APCArrow* APCArrowDlg::Arrow() const
{
    if (!m_object || m_object->GetClass() != kArrowClass)
        return nullptr;
    return dynamic_cast<APCArrow*>(m_object);
}

void APCArrowDlg::Apply()
{
    APCArrow* arrow = Arrow();
    if (!arrow)
        return;
    APCModel* model = arrow->GetModel();
    MB_ASSERT(model, return); // an arrow is edited only once it stands on a model

    std::unique_ptr<APCArrow> before(static_cast<APCArrow*>(arrow->Clone()));
    arrow->SetHead(m_headObject->currentData().toString());
    arrow->SetHeadType(m_headType->currentData().toString());
    arrow->SetHeadParam(m_headParameter->currentData().toString());
    arrow->SetTail(m_tailObject->currentData().toString());
    arrow->SetTailType(m_tailType->currentData().toString());
    arrow->SetTailParam(m_tailParameter->currentData().toString());
    model->ChangeArrow(before.get(), arrow);
}

void APCArrowDlg::OnOKClicked(bool) { accept(); }

void APCArrowDlg::OnCancelClicked(bool) { close(); }

void APCArrowDlg::OnHeadObjectChanged(int)
{
    FillObjects(m_headObject, m_headParameter, m_headType->currentData().toString(), true);
}

void APCArrowDlg::OnTailObjectChanged(int)
{
    FillObjects(m_tailObject, m_tailParameter, m_tailType->currentData().toString(), false);
}

void APCArrowDlg::OnHeadParameterChanged(int)
{
    FillParameters(m_headParameter, m_headObject->currentData().toString(), true);
}

void APCArrowDlg::OnTailParameterChanged(int)
{
    FillParameters(m_tailParameter, m_tailObject->currentData().toString(), false);
}

void APCArrowDlg::FillObjects(QComboBox* objects, QComboBox* parameters, const QString& type, bool isHead)
{
    APCModel* model = m_object ? m_object->GetModel() : nullptr;
    if (type == kProcess) {
        objects->clear();
        if (model) {
            for (APCProcess* process : model->GetProcesses())
                objects->addItem(process->GetDescription(), process->GetName());
        }
        objects->setCurrentIndex(0);
        // Setting index 0 on a list that already showed it emits nothing.
        FillParameters(parameters, objects->currentData().toString(), isHead);
    } else if (type == kVar) {
        // The cleared list changes the index, and that signal empties the parameters.
        objects->clear();
        if (model) {
            for (APCVar* var : model->GetVars())
                objects->addItem(var->GetDescription(), var->GetName());
        }
        objects->setCurrentIndex(0);
    }
}

void APCArrowDlg::FillParameters(QComboBox* parameters, const QString& objectId, bool isHead)
{
    parameters->clear();
    APCModel* model = m_object ? m_object->GetModel() : nullptr;
    APCProcess* process = model ? model->FindProcess(objectId) : nullptr;
    if (!process)
        return; // a var end has no parameter
    for (const APCParameter& p : process->GetParameters()) {
        const bool output = p.direction == 1;
        // Data flows from tail to head: the head takes inputs, the tail gives outputs.
        if (output == isHead)
            continue;
        parameters->addItem(p.description, p.name);
    }
    if (APCArrow* arrow = Arrow())
        parameters->setCurrentText(isHead ? arrow->GetHeadParam() : arrow->GetTailParam());
}

} // namespace Plugin
