#include "editor/ModelScene.h"

#include "editor/ModelControler.h"
#include "editor/ModelTool.h"

#include <QGraphicsItem>
#include <QGraphicsSceneMouseEvent>

namespace Plugin {

namespace {
constexpr int kArrowType = QGraphicsItem::UserType + 3;
} // namespace

ModelTool* ModelScene::ActiveTool() const
{
    auto* window = qobject_cast<ModelControler*>(parent());
    ModelTool* tool = window ? window->GetCurrentTool() : nullptr;
    return tool && tool->IsEnable() ? tool : nullptr;
}

void ModelScene::AddItem(QGraphicsItem* item)
{
    m_items.append(item);
    addItem(item);
}

void ModelScene::RemoveItem(QGraphicsItem* item)
{
    m_items.removeOne(item);
    removeItem(item);
}

void ModelScene::SetEditable(bool editable)
{
    m_editable = editable;
    for (QGraphicsItem* item : qAsConst(m_items)) {
        item->setFlag(QGraphicsItem::ItemIsMovable, editable);
        item->setFlag(QGraphicsItem::ItemSendsGeometryChanges, editable);
    }
}

void ModelScene::SetItemsInteractive(bool value)
{
    for (QGraphicsItem* item : qAsConst(m_items)) {
        if (m_editable && item->type() != kArrowType) {
            item->setFlag(QGraphicsItem::ItemIsMovable, value);
            item->setFlag(QGraphicsItem::ItemSendsGeometryChanges, value);
        }
        item->setFlag(QGraphicsItem::ItemIsSelectable, value);
    }
}

void ModelScene::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (ModelTool* tool = ActiveTool())
        tool->OnMousePress(event);
    QGraphicsScene::mousePressEvent(event);
}

void ModelScene::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    if (ModelTool* tool = ActiveTool()) {
        if (event->buttons() != Qt::NoButton)
            tool->OnMouseDrag(event);
        else
            tool->OnMouseHover(event);
    }
    emit SceneMouseMove(event);
    QGraphicsScene::mouseMoveEvent(event);
}

void ModelScene::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    if (ModelTool* tool = ActiveTool())
        tool->OnMouseRelease(event);
    QGraphicsScene::mouseReleaseEvent(event);
}

void ModelScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    // The items hand double clicks to the tool themselves.
    QGraphicsScene::mouseDoubleClickEvent(event);
}

void ModelScene::OnViewEnter(QEvent* event)
{
    if (ModelTool* tool = ActiveTool())
        tool->OnEnter(event);
}

void ModelScene::OnViewLeave(QEvent* event)
{
    if (ModelTool* tool = ActiveTool())
        tool->OnLeave(event);
}

} // namespace Plugin
