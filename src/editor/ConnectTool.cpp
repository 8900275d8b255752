#include "editor/ConnectTool.h"

#include "dialogs/APCObjectDialog.h"
#include "editor/GraphicsItemBase.h"
#include "editor/GraphicsItemFactory.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/RubberBand.h"
#include "engine/SequenceControl.h"
#include "model/APCArrow.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "model/SoftAssert.h"

#include <QCoreApplication>
#include <QGraphicsLineItem>
#include <QGraphicsSceneMouseEvent>
#include <QPen>

#include <memory>

namespace Plugin {

namespace {

// The object of the topmost canvas item at point, or null.
APCObject* objectAt(ModelScene* scene, const QPointF& point)
{
    const QList<QGraphicsItem*> items = scene->items(point, Qt::IntersectsItemShape, Qt::DescendingOrder, QTransform());
    auto* base = items.isEmpty() ? nullptr : dynamic_cast<GraphicsItemBase*>(items.first());
    return base ? base->GetObject() : nullptr;
}

} // namespace

void ConnectTool::Deactivate() { Reset(); }

void ConnectTool::Reset() { RubberBand::Drop(m_line); }

void ConnectTool::OnMousePress(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    // A line whose release never came stays in the scene as it is: the new
    // press starts another, and the scene keeps (and at last deletes) the old.
    m_line = nullptr;
    const QPointF at = event->scenePos();
    m_line = new QGraphicsLineItem(QLineF(at, at));
    m_line->setPen(QPen(QBrush(Qt::black, Qt::SolidPattern), 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    m_controler->GetScene()->addItem(m_line);
}

void ConnectTool::OnMouseDrag(QGraphicsSceneMouseEvent* event)
{
    if (m_line)
        m_line->setLine(QLineF(m_line->line().p1(), event->scenePos()));
}

void ConnectTool::OnMouseRelease(QGraphicsSceneMouseEvent* event)
{
    if (!m_line || event->button() != Qt::LeftButton)
        return;
    const QLineF line = m_line->line();
    Reset(); // down before the lookup, so that the line cannot find itself
    Connect(line.p1(), line.p2());
}

void ConnectTool::Connect(const QPointF& from, const QPointF& to)
{
    ModelScene* scene = m_controler->GetScene();
    APCObject* start = objectAt(scene, from);
    APCObject* end = objectAt(scene, to);
    if (!start || !end || start == end)
        return;
    const bool varToStep = dynamic_cast<APCVar*>(start) && dynamic_cast<APCProcess*>(end);
    const bool stepToVar = dynamic_cast<APCProcess*>(start) && dynamic_cast<APCVar*>(end);
    if (!varToStep && !stepToVar)
        return;

    GraphicsItemFactory* factory = GraphicsItemFactory::Instance();
    auto arrow = std::make_unique<APCArrow>();
    arrow->SetHead(end->GetName());
    arrow->SetHeadType(factory->GetClassWord(end));
    arrow->SetTail(start->GetName());
    arrow->SetTailType(factory->GetClassWord(start));
    arrow->SetPainter(QString());
    arrow->SetModel(m_controler->GetDocument());
    // Declared after the arrow, so it goes first: it points at the arrow.
    std::unique_ptr<APCObjectDialog> dialog(arrow->CreateDialog(m_controler));
    if (!dialog || dialog->exec() != QDialog::Accepted)
        return;
    // Steps of a run read the model from pool threads: it is edited only when idle.
    if (m_controler->GetSequenceControl()->GetState() != SequenceControl::Idle)
        return;
    m_controler->NameEdit(QCoreApplication::translate("ModelControler", "Connect"));
    APCArrow* added = arrow.release();
    MB_ASSERT(m_controler->AddObject(added), delete added; return);
    dialog->Apply();
}

} // namespace Plugin
