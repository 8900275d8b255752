#include "editor/RectGraphics.h"

#include "model/APCModel.h"
#include "model/APCProcess.h"

#include <QPainter>

namespace Plugin {

RectGraphics::RectGraphics(APCProcess* process, ModelControler* controler) : CanvasItem(process, controler)
{
    setBrush(QBrush(Qt::lightGray, Qt::SolidPattern));
    const QRectF r = process->GetRect();
    setRect(-r.width() / 2, -r.height() / 2, r.width(), r.height());
    setPos(r.center());
    setAcceptHoverEvents(true);
    setFlag(ItemIsMovable);
    setFlag(ItemIsSelectable);
    setFlag(ItemSendsGeometryChanges);
    RefreshToolTip();
}

QPolygonF RectGraphics::GetOutline()
{
    const QRectF r = rect();
    return QPolygonF({r.topLeft(), r.topRight(), r.bottomRight(), r.bottomLeft(), r.topLeft()});
}

void RectGraphics::ScaleBy(const QPointF& anchor, double sx, double sy)
{
    QRectF r;
    const QPointF position = ScaleBox(this, r, anchor, sx, sy);
    setRect(r);
    setPos(position);
    GrowScene(this);
}

void RectGraphics::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    const QString text = StepText();
    QGraphicsRectItem::paint(painter, option, widget);
    DrawLabel(painter, rect(), text);
    if (isSelected())
        DrawHandles(painter, rect());
}

void RectGraphics::WriteBack()
{
    auto* process = static_cast<APCProcess*>(m_object);
    // pos(), not the new value: the object records where the item was before
    // this move, and the file keeps that.
    QRectF r(0, 0, rect().width(), rect().height());
    r.moveCenter(pos());
    process->SetRect(r);
    if (APCModel* model = process->GetModel())
        model->UpdateProcess(process);
}

APCObject* RectGraphics::GetObject() { return m_object; }

} // namespace Plugin
