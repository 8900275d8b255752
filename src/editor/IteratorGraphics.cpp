#include "editor/IteratorGraphics.h"

#include "engine/APCIterator.h"
#include "model/APCModel.h"
#include "model/PainterText.h"

#include <QPainter>

namespace Plugin {

IteratorGraphics::IteratorGraphics(APCIterator* iterator, ModelControler* controler) : CanvasItem(iterator, controler)
{
    setBrush(QBrush(Qt::lightGray, Qt::SolidPattern));
    setPolygon(QPolygonF(PainterText::ReadPoints(iterator->GetPainter())));
    setPos(iterator->GetPos());
    setAcceptHoverEvents(true);
    setFlag(ItemIsMovable);
    setFlag(ItemIsSelectable);
    setFlag(ItemSendsGeometryChanges);
    RefreshToolTip();
}

void IteratorGraphics::ScaleBy(const QPointF& anchor, double sx, double sy)
{
    const QPointF p = pos();
    QPolygonF points = polygon();
    const QPointF c0 = boundingRect().center();
    const QPointF a = mapFromScene(anchor);
    for (QPointF& q : points)
        q = QPointF((q.x() - a.x()) * sx + a.x(), (q.y() - a.y()) * sy + a.y());
    const QPointF d = points.boundingRect().center() - c0;
    for (QPointF& q : points)
        q -= d;
    setPolygon(points);
    setPos(p + d);
    GrowScene(this);
}

void IteratorGraphics::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    const QString text = StepText();
    QGraphicsPolygonItem::paint(painter, option, widget);
    DrawLabel(painter, boundingRect(), text);
    if (isSelected())
        DrawHandles(painter, boundingRect());
}

void IteratorGraphics::WriteBack()
{
    auto* iterator = static_cast<APCIterator*>(m_object);
    iterator->SetPos(pos());
    iterator->SetPainter(PainterText::PointsText(polygon()));
    if (APCModel* model = iterator->GetModel())
        model->UpdateProcess(iterator);
}

APCObject* IteratorGraphics::GetObject() { return m_object; }

} // namespace Plugin
