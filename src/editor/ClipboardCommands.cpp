// Copy and paste. The clipboard carries "ModelBuilder$$" and then the XML of the
// copied processes and vars, their places relative to the selection's corner,
// with a picture of the selection beside it for other programs. Arrows are not
// carried: paste makes them again from the parameters' var references.
#include "editor/ArrowGraphics.h"
#include "editor/CopyCommand.h"
#include "editor/GraphicsItemBase.h"
#include "editor/GraphicsItemFactory.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/PasteCommand.h"
#include "editor/VarGraphics.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCProcessFactory.h"
#include "model/APCVar.h"
#include "model/APCVarFactory.h"
#include "model/Gb2312.h"
#include "model/VarReference.h"

#include <QApplication>
#include <QCoreApplication>
#include <QClipboard>
#include <QDomDocument>
#include <QGraphicsItem>
#include <QImage>
#include <QMap>
#include <QMimeData>
#include <QPainter>
#include <QUuid>
#include <QXmlStreamWriter>

#include <algorithm>
#include <memory>

namespace Plugin {

namespace {

const QString kMarker = QStringLiteral("ModelBuilder");
const QString kSeparator = QStringLiteral("$$");

// The pieces of clipboard text; ours has the marker first.
QStringList clipboardPieces(const QString& text)
{
    return text.split(kSeparator, Qt::KeepEmptyParts, Qt::CaseSensitive);
}

// True when a parameter value has the form "%id%...%", with the id in id.
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

// The smallest rectangle holding every item, each grown by a pixel.
QRect boxOf(const QList<QGraphicsItem*>& items)
{
    QList<int> xs, ys;
    for (QGraphicsItem* item : items) {
        QRect r = item->sceneBoundingRect().toRect();
        r.setWidth(r.width() + 1);
        r.setHeight(r.height() + 1);
        xs << r.left() << r.right();
        ys << r.top() << r.bottom();
    }
    std::sort(xs.begin(), xs.end());
    std::sort(ys.begin(), ys.end());
    return QRect(QPoint(xs.first(), ys.first()), QPoint(xs.last(), ys.last()));
}

// Draws, as the canvas would, the arrows the step's parameters imply towards
// the selected vars.
void drawArrows(QPainter& painter, QGraphicsItem* step, APCProcess* process, const QList<QGraphicsItem*>& vars,
                const QPoint& origin)
{
    QMap<QGraphicsItem*, int> directions; // by item, the last parameter naming the var wins
    for (QGraphicsItem* varItem : vars) {
        const QString id = dynamic_cast<GraphicsItemBase*>(varItem)->GetObject()->GetName();
        for (const APCParameter& p : process->GetParameters())
            if (p.value.indexOf(id) >= 0)
                directions[varItem] = p.direction;
    }
    for (auto it = directions.cbegin(); it != directions.cend(); ++it) {
        const bool output = it.value() == 1;
        QLineF line;
        QPolygonF head;
        if (!ArrowGraphics::Shape(output ? it.key() : step, output ? step : it.key(), line, head))
            continue;
        QPainterPath shaft;
        shaft.moveTo(line.p1());
        shaft.lineTo(line.p2());
        QPainterPath tip;
        tip.addPolygon(head);
        const QPen before = painter.pen();
        QPen pen;
        pen.setWidth(2);
        pen.setColor(Qt::black);
        painter.setPen(pen);
        painter.setBrush(QBrush(Qt::black, Qt::SolidPattern));
        painter.drawPath(shaft.translated(-origin));
        painter.drawPath(tip.translated(-origin));
        painter.setPen(before);
    }
}

} // namespace

bool CopyCommand::IsEnable() { return !m_controler->GetScene()->selectedItems().isEmpty(); }

void CopyCommand::OnClick()
{
    const QList<QGraphicsItem*> selected = m_controler->GetScene()->selectedItems();
    if (selected.isEmpty())
        return;
    const QRect box = boxOf(selected);
    QImage image(box.size(), QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter;
    // A selection too large for a picture still copies as text.
    const bool drawing = !image.isNull() && painter.begin(&image);

    QList<QGraphicsItem*> vars;
    for (QGraphicsItem* item : selected)
        if (item->type() == VarGraphics::Type && dynamic_cast<GraphicsItemBase*>(item)->GetObject())
            vars << item;

    QString text = kMarker + kSeparator;
    for (QGraphicsItem* item : selected) {
        auto* base = dynamic_cast<GraphicsItemBase*>(item);
        if (item->type() == ArrowGraphics::Type || !base || !base->GetObject())
            continue;
        std::unique_ptr<APCObject> clone(base->GetObject()->Clone());
        clone->SetPos(clone->GetPos() - QPointF(box.topLeft()));
        QString fragment;
        QXmlStreamWriter writer(&fragment);
        clone->WriteXml(writer, true);
        text += fragment;
        if (!drawing)
            continue;
        painter.setBrush(base->GetBrush());
        const QPainterPath outline = item->mapToScene(item->shape()).translated(-box.topLeft());
        painter.drawPath(outline);
        GraphicsItemBase::DrawLabel(&painter, outline.boundingRect(), clone->GetDescription());
        if (auto* process = dynamic_cast<APCProcess*>(clone.get()))
            drawArrows(painter, item, process, vars, box.topLeft());
    }
    if (drawing)
        painter.end();

    auto* mime = new QMimeData;
    mime->setText(text);
    mime->setImageData(QVariant(image));
    QGuiApplication::clipboard()->setMimeData(mime, QClipboard::Clipboard); // the clipboard owns mime
}

bool PasteCommand::IsEnable()
{
    if (m_controler->IsReadOnly())
        return false;
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    if (!mime || !mime->hasText())
        return true; // enabled, and a paste then does nothing
    const QStringList pieces = clipboardPieces(mime->text());
    return pieces.size() >= 2 && pieces.first() == kMarker;
}

void PasteCommand::OnClick()
{
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    if (!mime || !mime->hasText())
        return;
    const QStringList pieces = clipboardPieces(mime->text());
    if (pieces.size() < 2 || pieces.first() != kMarker)
        return;
    QDomDocument xml(QStringLiteral("APCFile"));
    if (!xml.setContent(QStringLiteral("<?xml version=\"1.0\" encoding=\"GB2312\" standalone=\"no\"?>\n"
                                       "<Configuration>\n") +
                        pieces.at(1) + QStringLiteral("\n</Configuration>")))
        return;
    // As when a model file is read: what a save would drop is not pasted either.
    Gb2312::DropUnwritableCharacters(xml.documentElement());

    // The pasted objects go straight into the model's lists, which own them
    // from then on: no var is made for an open parameter, and no signal is
    // emitted, so the paste alone is not an edit to save.
    APCModel* model = m_controler->GetDocument();
    m_controler->BeginEdit(QCoreApplication::translate("ModelControler", "Paste"));
    const QPointF offset(20, 20);
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

    // The items come once every object is in: the model's lookups then index
    // its lists once, not once per pasted step.
    ModelScene* scene = m_controler->GetScene();
    for (APCObject* object : pasted + arrows)
        if (QGraphicsItem* item = GraphicsItemFactory::Instance()->CreateItem(object, m_controler))
            scene->AddItem(item);
    m_controler->EndEdit();
}

} // namespace Plugin
