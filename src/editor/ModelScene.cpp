#include "editor/ModelScene.h"

#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelTool.h"
#include "model/APCObject.h"
#include "model/APCProcess.h"
#include "model/APCProcessFactory.h"
#include "model/SoftAssert.h"
#include "toolbox/ATBAlgo.h"
#include "toolbox/ATBAlgoDepend.h"
#include "toolbox/ATBIterator.h"

#include <QCoreApplication>
#include <QGraphicsItem>
#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneMouseEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

namespace Plugin {

namespace {

constexpr int kArrowType = QGraphicsItem::UserType + 3;

QString idOf(GraphicsItemBase* base)
{
    APCObject* object = base ? base->GetObject() : nullptr;
    return object ? object->GetName() : QString();
}

// The tool box row the drag text names. The text is an address, so it is taken
// only when a row of the tree it came from really holds that item: a stale or
// foreign text then makes nothing instead of reading freed memory.
ATBItem* droppedItem(QTreeWidget* tree, const QString& text)
{
    bool ok = false;
    const quint64 address = text.toULongLong(&ok, 10);
    if (!ok || address == 0)
        return nullptr;
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        if (quint64(quintptr((*it)->data(0, Qt::UserRole).value<void*>())) == address)
            return static_cast<ATBItem*>((*it)->data(0, Qt::UserRole).value<void*>());
    return nullptr;
}

} // namespace

ModelControler* ModelScene::Window() const { return qobject_cast<ModelControler*>(parent()); }

ModelTool* ModelScene::ActiveTool() const
{
    ModelControler* window = Window();
    ModelTool* tool = window ? window->GetCurrentTool() : nullptr;
    return tool && tool->IsEnable() ? tool : nullptr;
}

void ModelScene::AddItem(QGraphicsItem* item)
{
    m_items.append(item);
    if (auto* base = dynamic_cast<GraphicsItemBase*>(item)) {
        if (APCObject* object = base->GetObject())
            m_itemsByObject.insert(object, base);
        const QString id = idOf(base);
        if (!id.isEmpty() && !m_itemsById.contains(id)) {
            m_itemsById.insert(id, base);
            m_indexedIds.insert(base, id);
        }
    }
    // An item added under the pan, zoom or connect tool, or to a read-only
    // model, must not be movable there.
    if (!m_interactive || !m_editable)
        ApplyInteractivity(item);
    addItem(item);
    GrowSceneRect(item->sceneBoundingRect());
}

void ModelScene::GrowSceneRect(const QRectF& rect)
{
    const QRectF grown = m_grownRect.united(rect);
    if (grown == m_grownRect)
        return;
    m_grownRect = grown;
    setSceneRect(grown);
}

void ModelScene::RemoveItem(QGraphicsItem* item)
{
    m_items.removeOne(item);
    // Only pointers are compared here: the object may be on its way out.
    if (auto* base = dynamic_cast<GraphicsItemBase*>(item)) {
        auto byObject = m_itemsByObject.find(base->GetObject());
        if (byObject != m_itemsByObject.end() && byObject.value() == base)
            m_itemsByObject.erase(byObject);
        // Another item of the same id, if there is one, is found through the list.
        const QString id = m_indexedIds.take(base);
        if (!id.isEmpty())
            m_itemsById.remove(id);
    }
    removeItem(item);
}

GraphicsItemBase* ModelScene::FindItemById(const QString& id) const
{
    if (id.isEmpty())
        return nullptr;
    GraphicsItemBase* indexed = m_itemsById.value(id);
    if (indexed && idOf(indexed) == id)
        return indexed;
    // Ids are set before an object reaches the canvas; should one change
    // afterwards, or two items share one, the list still answers.
    for (QGraphicsItem* item : m_items) {
        auto* base = dynamic_cast<GraphicsItemBase*>(item);
        if (idOf(base) == id)
            return base;
    }
    return nullptr;
}

GraphicsItemBase* ModelScene::FindItemOf(APCObject* object) const
{
    if (!object)
        return nullptr;
    if (GraphicsItemBase* own = m_itemsByObject.value(object))
        return own;
    return FindItemById(object->GetName());
}

void ModelScene::SetEditable(bool editable)
{
    m_editable = editable;
    for (QGraphicsItem* item : qAsConst(m_items)) {
        item->setFlag(QGraphicsItem::ItemIsMovable, editable);
        item->setFlag(QGraphicsItem::ItemSendsGeometryChanges, editable);
    }
}

void ModelScene::ApplyInteractivity(QGraphicsItem* item) const
{
    if (m_editable && item->type() != kArrowType) {
        item->setFlag(QGraphicsItem::ItemIsMovable, m_interactive);
        item->setFlag(QGraphicsItem::ItemSendsGeometryChanges, m_interactive);
    } else if (!m_editable) {
        item->setFlag(QGraphicsItem::ItemIsMovable, false);
        item->setFlag(QGraphicsItem::ItemSendsGeometryChanges, false);
    }
    item->setFlag(QGraphicsItem::ItemIsSelectable, m_interactive);
}

void ModelScene::SetItemsInteractive(bool value)
{
    m_interactive = value;
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
    // A gesture, from the first press to the release of the last button, is
    // one step of the history, whatever the tool makes of it.
    if (!m_inGesture) {
        m_inGesture = true;
        if (ModelControler* window = Window())
            window->BeginEdit(QCoreApplication::translate("ModelControler", "Move"));
    }
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
    if (m_inGesture && event->buttons() == Qt::NoButton) {
        m_inGesture = false;
        if (ModelControler* window = Window())
            window->EndEdit();
    }
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

void ModelScene::dragEnterEvent(QGraphicsSceneDragDropEvent* event)
{
    event->setAccepted(qobject_cast<QTreeWidget*>(event->source()) != nullptr);
}

void ModelScene::dragMoveEvent(QGraphicsSceneDragDropEvent* event) { event->setAccepted(m_editable); }

void ModelScene::dropEvent(QGraphicsSceneDragDropEvent* event)
{
    auto* tree = qobject_cast<QTreeWidget*>(event->source());
    ModelControler* window = Window();
    if (!tree || !window || !m_editable || !event->mimeData())
        return;
    ATBItem* item = droppedItem(tree, event->mimeData()->text());
    if (!item)
        return;

    QString classWord, value;
    switch (item->GetType()) {
    case ATB_Algo: {
        auto* algo = dynamic_cast<ATBAlgo*>(item);
        MB_ASSERT(algo, return);
        classWord = QStringLiteral("algo");
        value = algo->GetMetadata();
        break;
    }
    case ATB_Iterator: {
        auto* iterator = dynamic_cast<ATBIterator*>(item);
        MB_ASSERT(iterator, return);
        classWord = iterator->GetClass();
        break;
    }
    case ATB_AlgoDepend: {
        auto* model = dynamic_cast<ATBAlgoDepend*>(item);
        MB_ASSERT(model, return);
        classWord = QStringLiteral("model");
        value = model->GetFile();
        // Compared as text, one level deep: a model nested in itself would run forever.
        if (ATBItem::AppRoot() + value == window->GetFilePath()) {
            QMessageBox::warning(qobject_cast<QWidget*>(parent()), QCoreApplication::translate("ModelScene", "Warning"), QCoreApplication::translate("ModelScene", "Can not drag self!"),
                                 QMessageBox::Ok);
            return;
        }
        break;
    }
    default:
        return; // groups, folders and scripts make nothing
    }

    APCProcess* process = APCProcessFactory::Instance()->Create(classWord);
    if (!process)
        return;
    process->SetProcessName(value);
    // After the catalogue's description: the tool box's name wins.
    process->SetClass(classWord);
    process->SetPos(event->scenePos());
    process->SetDescription(item->GetName());
    window->BeginEdit(QCoreApplication::translate("ModelControler", "Add %1").arg(item->GetName()));
    MB_ASSERT(window->AddObject(process), delete process);
    window->EndEdit();
}

} // namespace Plugin
