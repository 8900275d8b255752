#include "editor/GraphicsItemBase.h"

#include "editor/ArrowGraphics.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelTool.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"

#include <QAbstractGraphicsShapeItem>
#include <QFontMetricsF>
#include <QGraphicsScene>
#include <QPainter>

#include <cmath>

namespace Plugin {

void GraphicsItemBase::DrawHandles(QPainter* painter, const QRectF& rect)
{
    painter->save();
    QPen pen;
    pen.setColor(Qt::black);
    painter->setPen(pen);
    painter->setBrush(QBrush(Qt::green, Qt::SolidPattern));
    const double x = rect.x(), y = rect.y(), w = rect.width(), h = rect.height();
    const QPointF corners[] = {{x, y},         {x + w / 2, y},     {x + w, y},         {x + w, y + h / 2},
                               {x, y + h / 2}, {x, y + h},         {x + w / 2, y + h}, {x + w, y + h}};
    for (const QPointF& c : corners)
        painter->drawRect(int(c.x() - 4), int(c.y() - 4), 8, 8);
    painter->restore();
}

void GraphicsItemBase::SetStateWithBrush(QAbstractGraphicsShapeItem* self, int state)
{
    m_state = state;
    switch (state) {
    case 1:
        self->setBrush(QBrush(Qt::yellow, Qt::SolidPattern));
        break;
    case 2:
        self->setBrush(QBrush(Qt::darkYellow, Qt::SolidPattern));
        m_progress = 100;
        break;
    default:
        self->setBrush(QBrush(Qt::lightGray, Qt::SolidPattern));
        m_progress = 0;
        break;
    }
    self->update();
    if (self->scene())
        self->scene()->update();
}

void GraphicsItemBase::SetProgressWithRedraw(QGraphicsItem* self, double value)
{
    if (int(value) == m_progress)
        return;
    m_progress = int(value);
    self->update();
    if (self->scene())
        self->scene()->update();
}

QString GraphicsItemBase::StepText() const
{
    const QString description = m_object ? m_object->GetDescription() : QString();
    if (m_state == 1 || m_state == 2)
        return QString::number(m_progress) + QStringLiteral("%\n") + description;
    return description;
}

void GraphicsItemBase::OnItemChange(QGraphicsItem* self, QGraphicsItem::GraphicsItemChange change)
{
    // Qt asks before it moves the item, so the object records the place the
    // item had before this step: after a drag it lags by the last mouse step,
    // and saved files keep that place.
    if (change == QGraphicsItem::ItemPositionChange || change == QGraphicsItem::ItemScaleChange)
        CommitGeometry();
    else if (change == QGraphicsItem::ItemPositionHasChanged) {
        GrowScene(self);
    }
    if (self->scene())
        self->scene()->update();
}

void GraphicsItemBase::UpdateArrows()
{
    APCModel* model = m_object ? m_object->GetModel() : nullptr;
    if (!model || !m_controler)
        return;
    const QList<APCArrow*> arrows =
        dynamic_cast<APCVar*>(m_object) ? model->ArrowsOfVar(m_object) : model->ArrowsOfProcess(m_object, QString());
    for (APCArrow* arrow : arrows) {
        QGraphicsItem* item = m_controler->FindItem(arrow);
        if (item && item->type() == ArrowGraphics::Type)
            static_cast<ArrowGraphics*>(item)->UpdatePosition();
    }
}

void GraphicsItemBase::GrowScene(QGraphicsItem* self)
{
    if (auto* canvas = qobject_cast<ModelScene*>(self->scene()))
        canvas->GrowSceneRect(self->sceneBoundingRect());
}

void GraphicsItemBase::CommitGeometry()
{
    WriteBack();
    UpdateArrows();
}

void GraphicsItemBase::RefreshToolTip()
{
    auto* self = dynamic_cast<QGraphicsItem*>(this);
    const QString description = m_object ? m_object->GetDescription() : QString();
    if (self && self->toolTip() != description)
        self->setToolTip(description);
}

bool GraphicsItemBase::s_wholeLabels = false;

void GraphicsItemBase::DrawLabel(QPainter* painter, const QRectF& rect, const QString& text)
{
    if (s_wholeLabels) {
        // Not clipped: lines beyond the rectangle stay readable.
        painter->drawText(rect, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextWordWrap, text);
        return;
    }
    const QFontMetricsF metrics(painter->font(), painter->device());
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& line : lines)
        line = metrics.elidedText(line, Qt::ElideRight, rect.width());
    painter->drawText(rect, Qt::AlignHCenter | Qt::AlignVCenter, lines.join(QLatin1Char('\n')));
}

void GraphicsItemBase::ForwardDoubleClick(QGraphicsItem* self, QGraphicsSceneMouseEvent* event)
{
    ModelTool* tool = m_controler ? m_controler->GetCurrentTool() : nullptr;
    if (tool && tool->IsEnable())
        tool->OnDoubleClick(event, m_object, self->data(0).value<void*>());
}

QPointF GraphicsItemBase::ScaleBox(const QGraphicsItem* self, QRectF& rect, const QPointF& anchor, double sx, double sy)
{
    const QPointF p = self->pos();
    rect = self->boundingRect(); // includes half the pen on every side
    rect.setWidth(std::fabs(rect.width() * sx));
    rect.setHeight(std::fabs(rect.height() * sy));
    rect.moveCenter(QPointF(0, 0));
    return QPointF((p.x() - anchor.x()) * sx + anchor.x(), (p.y() - anchor.y()) * sy + anchor.y());
}

} // namespace Plugin
