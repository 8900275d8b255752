#include "editor/RubberBand.h"

#include <QGraphicsRectItem>
#include <QGraphicsScene>

#include <algorithm>

namespace Plugin {

QPen RubberBand::Pen(double width)
{
    return QPen(QBrush(Qt::gray, Qt::SolidPattern), width, Qt::DotLine, Qt::RoundCap, Qt::RoundJoin);
}

QGraphicsRectItem* RubberBand::Raise(QGraphicsScene* scene, const QRectF& rect, double penWidth)
{
    auto* band = new QGraphicsRectItem(rect);
    band->setPen(Pen(penWidth));
    scene->addItem(band);
    return band;
}

QRectF RubberBand::Span(const QPointF& a, const QPointF& b)
{
    return QRectF(QPointF(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
                  QPointF(std::max(a.x(), b.x()), std::max(a.y(), b.y())));
}

void RubberBand::Discard(QGraphicsItem* item)
{
    if (!item)
        return;
    if (item->scene())
        item->scene()->removeItem(item);
    delete item;
}

} // namespace Plugin
