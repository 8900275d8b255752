#include "editor/ArrowGraphics.h"

#include "editor/ModelControler.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"

#include <QPainter>
#include <QPen>

#include <cmath>

namespace Plugin {

namespace {

APCObject* findEnd(APCModel* model, const QString& id, const QString& type)
{
    if (type == QLatin1String("process"))
        return model->FindProcess(id);
    if (type == QLatin1String("var"))
        return model->FindVar(id);
    return nullptr;
}

// Where the centre line first meets the outline of item, or (0, 0).
QPointF meetOutline(QGraphicsItem* item, const QLineF& centre)
{
    auto* base = dynamic_cast<GraphicsItemBase*>(item);
    const QPolygonF outline = base ? base->GetOutline().translated(item->pos()) : QPolygonF();
    for (int i = 0; i + 1 < outline.size(); ++i) {
        QPointF hit;
        if (QLineF(outline[i], outline[i + 1]).intersects(centre, &hit) == QLineF::BoundedIntersection)
            return hit;
    }
    return QPointF(0, 0);
}

} // namespace

ArrowGraphics::ArrowGraphics(APCArrow* arrow, ModelControler* controler) : CanvasItem(arrow, controler)
{
    setZValue(-1.0);
    RefreshEnds();
    setPen(QPen(QBrush(Qt::black, Qt::SolidPattern), 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    setFlag(ItemIsSelectable);
}

void ArrowGraphics::RefreshEnds()
{
    auto* arrow = static_cast<APCArrow*>(m_object);
    APCModel* model = arrow->GetModel();
    if (!model || !m_controler)
        return;
    APCObject* head = findEnd(model, arrow->GetHead(), arrow->GetHeadType());
    APCObject* tail = findEnd(model, arrow->GetTail(), arrow->GetTailType());
    if (!head || !tail)
        return;
    m_headItem = m_controler->FindItem(head);
    m_tailItem = m_controler->FindItem(tail);
    UpdatePosition();
}

void ArrowGraphics::UpdatePosition()
{
    if (!m_headItem || !m_tailItem)
        return;
    setLine(QLineF(mapFromItem(m_tailItem, 0, 0), mapFromItem(m_headItem, 0, 0)));
    // The line between the centres holds the one painted between the outlines.
    GrowScene(this);
}

QRectF ArrowGraphics::boundingRect() const
{
    const double extra = (pen().width() + 20) / 2.0;
    return QRectF(line().p1(), QSizeF(line().p2().x() - line().p1().x(), line().p2().y() - line().p1().y()))
        .normalized()
        .adjusted(-extra, -extra, extra, extra);
}

QPainterPath ArrowGraphics::shape() const
{
    QPainterPath path = QGraphicsLineItem::shape();
    path.addPolygon(m_headShape); // the head can be clicked too
    return path;
}

bool ArrowGraphics::Shape(QGraphicsItem* head, QGraphicsItem* tail, QLineF& line, QPolygonF& headShape)
{
    if (!head || !tail || tail->collidesWithItem(head, Qt::IntersectsItemShape))
        return false;
    const QLineF centre(tail->pos(), head->pos());
    line = QLineF(meetOutline(head, centre), meetOutline(tail, centre));
    if (line.length() == 0) {
        // No direction to point the head in.
        headShape = QPolygonF({line.p1(), line.p1(), line.p1()});
        return true;
    }
    // The head's corners, with these constants rather than the library's pi.
    double angle = std::acos(line.dx() / line.length());
    if (line.dy() >= 0)
        angle = 6.2831852 - angle;
    const double third = 3.1415926 / 3;
    const double a = angle + third;
    const double b = angle + 3.1415926 - third;
    const QPointF cornerA(line.x1() + std::sin(a) * 20, line.y1() + std::cos(a) * 20);
    const QPointF cornerB(line.x1() + std::sin(b) * 20, line.y1() + std::cos(b) * 20);
    headShape = QPolygonF({line.p1(), cornerA, cornerB});
    return true;
}

void ArrowGraphics::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    QLineF ends;
    QPolygonF head;
    if (!Shape(m_headItem, m_tailItem, ends, head))
        return;
    QPen linePen = pen();
    linePen.setColor(Qt::black);
    painter->setPen(linePen);
    painter->setBrush(QBrush(Qt::black, Qt::SolidPattern));
    // The arrow item never moves: its coordinates are the scene's.
    setLine(ends);
    m_headShape = head;
    painter->drawLines(QVector<QLineF>{ends});
    painter->drawPolygon(m_headShape, Qt::OddEvenFill);
    QGraphicsLineItem::paint(painter, option, widget);
}

APCObject* ArrowGraphics::GetObject() { return m_object; }

} // namespace Plugin
