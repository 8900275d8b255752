#include "editor/VarGraphics.h"

#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/PainterText.h"

#include <QPainter>

#include <cmath>

namespace Plugin {

VarGraphics::VarGraphics(APCVar* var, ModelControler* controler) : CanvasItem(var, controler)
{
    setBrush(QBrush(Qt::green, Qt::SolidPattern));
    const QSizeF size = PainterText::ReadSize(var->GetPainter());
    setRect(-size.width() / 2, -size.height() / 2, size.width(), size.height());
    setPos(var->GetPos());
    setAcceptHoverEvents(true);
    setFlag(ItemIsMovable);
    setFlag(ItemIsSelectable);
    setFlag(ItemSendsGeometryChanges);
    RefreshToolTip();
}

QPolygonF VarGraphics::GetOutline()
{
    const QRectF r = rect();
    const QPointF c = r.center();
    const float pi = std::acos(-1.0f);
    QPolygonF outline;
    for (int i = 0; i <= 120; ++i) {
        const double a = i * (2 * pi / 120);
        if (a > 2 * pi)
            break;
        const QPointF p(std::cos(a) * r.width() / 2 + c.x(), std::sin(a) * r.height() / 2 + c.y());
        // Points exactly on either axis are left out; arrows are drawn that way.
        if (p.x() == c.x() || p.y() == c.y())
            continue;
        outline << p;
    }
    return outline;
}

void VarGraphics::ScaleBy(const QPointF& anchor, double sx, double sy)
{
    QRectF r;
    const QPointF position = ScaleBox(this, r, anchor, sx, sy);
    setRect(r);
    setPos(position);
    GrowScene(this);
}

void VarGraphics::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    const QString text = m_object ? m_object->GetDescription() : QString();
    QGraphicsEllipseItem::paint(painter, option, widget);
    DrawLabel(painter, rect(), text);
    if (isSelected())
        DrawHandles(painter, boundingRect());
}

void VarGraphics::WriteBack()
{
    auto* var = static_cast<APCVar*>(m_object);
    var->SetPos(pos());
    var->SetPainter(PainterText::SizeText(rect().width(), rect().height()));
    if (APCModel* model = var->GetModel())
        model->NotifyVarChanged(var);
}

APCObject* VarGraphics::GetObject() { return m_object; }

} // namespace Plugin
