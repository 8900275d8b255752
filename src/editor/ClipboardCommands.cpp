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
    APCModel* model = m_controler->GetDocument();
    m_controler->BeginEdit(QCoreApplication::translate("ModelControler", "Paste"));
    const QList<APCObject*> pasted = model->PasteFragment(pieces.at(1), QPointF(20, 20));

    // The items come once every object is in: the model's lookups then index
    // its lists once, not once per pasted step.
    ModelScene* scene = m_controler->GetScene();
    for (APCObject* object : pasted)
        if (QGraphicsItem* item = GraphicsItemFactory::Instance()->CreateItem(object, m_controler))
            scene->AddItem(item);
    m_controler->EndEdit();
}

} // namespace Plugin
