// Pasting copied objects into a model: the one road a paste takes, with or
// without a window.
#include "model/APCModel.h"

#include "model/APCArrow.h"
#include "model/APCProcess.h"
#include "model/APCProcessFactory.h"
#include "model/APCVar.h"
#include "model/APCVarFactory.h"
#include "model/Gb2312.h"
#include "model/VarReference.h"

#include <QDomDocument>
#include <QMap>
#include <QPointF>
#include <QUuid>

#include <memory>

namespace Plugin {

namespace {

// The id in a "%id%" value, when the value is such a reference.
bool copiedReference(const QString& value, QString* id)
{
    if (!value.startsWith(QLatin1Char('%')) || !value.endsWith(QLatin1Char('%')))
        return false;
    const QStringList parts = value.split(QLatin1Char('%'), Qt::KeepEmptyParts);
    if (parts.size() <= 2)
        return false;
    *id = parts.at(1);
    return true;
}

} // namespace

QList<APCObject*> APCModel::PasteFragment(const QString& fragments, const QPointF& offset)
{
    QDomDocument xml(QStringLiteral("APCFile"));
    if (!xml.setContent(QStringLiteral("<?xml version=\"1.0\" encoding=\"GB2312\" standalone=\"no\"?>\n"
                                       "<Configuration>\n") +
                        fragments + QStringLiteral("\n</Configuration>")))
        return {};
    // As when a model file is read: what a save would drop is not pasted either.
    Gb2312::DropUnwritableCharacters(xml.documentElement());

    // The pasted objects go straight into the model's lists, which own them
    // from then on: no var is made for an open parameter, and no signal is
    // emitted, so the paste alone is not an edit to save.
    APCModel* model = this;
    QMap<QString, QString> newIds; // copied id -> pasted id
    QList<APCObject*> pasted;      // shapes first, then arrows: an arrow's item looks for its ends
    QList<APCObject*> arrows;
    const QDomElement root = xml.documentElement();

    for (QDomElement e = root.firstChildElement(QStringLiteral("Var")); !e.isNull();
         e = e.nextSiblingElement(QStringLiteral("Var"))) {
        std::unique_ptr<APCVar> var(APCVarFactory::Instance()->Create(e.attribute(QStringLiteral("class"))));
        if (!var)
            continue; // a kind this build does not know is left out
        const QString id = QUuid::createUuid().toString();
        newIds[e.attribute(QStringLiteral("name"))] = id;
        var->ReadXml(e);
        var->SetName(id);
        var->SetPos(var->GetPos() + offset);
        var->SetModel(model);
        model->GetVars().append(var.get());
        pasted << var.release();
    }

    for (QDomElement e = root.firstChildElement(QStringLiteral("Process")); !e.isNull();
         e = e.nextSiblingElement(QStringLiteral("Process"))) {
        std::unique_ptr<APCProcess> process(APCProcessFactory::Instance()->Create(e.attribute(QStringLiteral("class"))));
        if (!process)
            continue; // a kind this build does not know is left out
        const QString id = QUuid::createUuid().toString();
        newIds[e.attribute(QStringLiteral("name"))] = id;
        // References to pasted vars follow them; references to vars left behind are emptied.
        for (QDomElement p = e.firstChildElement(QStringLiteral("Parameter")); !p.isNull();
             p = p.nextSiblingElement(QStringLiteral("Parameter"))) {
            QString copied;
            if (!copiedReference(p.attribute(QStringLiteral("value")), &copied))
                continue;
            const QString pastedId = newIds.value(copied);
            p.setAttribute(QStringLiteral("value"), pastedId.isEmpty() ? QString() : VarReferenceTo(pastedId));
        }
        process->ReadXml(e);
        process->SetName(id);
        process->SetPos(process->GetPos() + offset);
        process->SetModel(model);
        APCProcess* step = process.get();
        model->GetProcesses().append(process.release());
        pasted << step;

        for (const APCParameter& p : step->GetParameters()) {
            QString varId;
            APCVar* var = copiedReference(p.value, &varId) && !varId.isEmpty() ? model->FindVar(varId) : nullptr;
            if (!var)
                continue;
            auto* arrow = new APCArrow;
            if (p.direction == 1) {
                arrow->SetHead(var->GetName());
                arrow->SetHeadType(APCModel::ObjectType(var));
                arrow->SetTail(step->GetName());
                arrow->SetTailType(APCModel::ObjectType(step));
                arrow->SetTailParam(p.name);
            } else {
                arrow->SetHead(step->GetName());
                arrow->SetHeadType(APCModel::ObjectType(step));
                arrow->SetHeadParam(p.name);
                arrow->SetTail(var->GetName());
                arrow->SetTailType(APCModel::ObjectType(var));
            }
            arrow->SetPainter(QString());
            arrow->SetModel(model);
            model->GetArrows().append(arrow);
            arrows << arrow;
        }
    }

    return pasted + arrows;
}

} // namespace Plugin
