#pragma once

#include <QGraphicsScene>
#include <QHash>
#include <QList>

namespace Plugin {

class APCObject;
class GraphicsItemBase;
class ModelControler;
class ModelTool;

// The canvas of one model window. Every mouse event goes to the window's
// current tool first, then to Qt. A drop of a tool box row makes a process.
class ModelScene : public QGraphicsScene
{
    Q_OBJECT
public:
    // parent is the window; the scene finds its tool through it.
    explicit ModelScene(QObject* parent = nullptr) : QGraphicsScene(parent) {}

    virtual void OnViewLeave(QEvent* event);
    virtual void OnViewEnter(QEvent* event);

    // Lists the item and adds it; it takes the flags of the current tool.
    void AddItem(QGraphicsItem* item);
    // Takes the item off the canvas without deleting it.
    void RemoveItem(QGraphicsItem* item);
    QList<QGraphicsItem*> GetItems() const { return m_items; }
    // The first listed canvas item showing the object with that id, or null.
    GraphicsItemBase* FindItemById(const QString& id) const;
    // The item of object itself, else of an object with its id (the engine reports
    // clones, which keep the ids; arrows read from a file have none), or null.
    GraphicsItemBase* FindItemOf(APCObject* object) const;
    // The record of the view's scale; the view itself is not touched.
    double GetScale() const { return m_scale; }
    void SetScale(double scale) { m_scale = scale; }
    // A read-only model: no item can be moved, under any tool.
    void SetEditable(bool editable);
    bool IsEditable() const { return m_editable; }
    // Called by each tool as it becomes current.
    void SetItemsInteractive(bool value);

    // The scene's rectangle grows to hold rect and never shrinks, as Qt's own
    // does; kept here so that a move does not make Qt measure every item.
    void GrowSceneRect(const QRectF& rect);

signals:
    // Emitted on the GUI thread for every mouse move over the canvas.
    void SceneMouseMove(QGraphicsSceneMouseEvent* mouseEvent);

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    // Rows of the tool box tree only.
    void dragEnterEvent(QGraphicsSceneDragDropEvent* event) override;
    // A read-only model takes no drop.
    void dragMoveEvent(QGraphicsSceneDragDropEvent* event) override;
    // Turns the dropped tool box row into a process of the model.
    void dropEvent(QGraphicsSceneDragDropEvent* event) override;

private:
    // The window's current tool when it is willing, else null.
    ModelTool* ActiveTool() const;
    ModelControler* Window() const;
    void ApplyInteractivity(QGraphicsItem* item) const;

    bool m_inGesture = false; // a press came and the last button is not up yet
    QList<QGraphicsItem*> m_items;                 // in order of adding; no rubber bands
    // Indexes of the listed items, so that a model of thousands of objects opens
    // and drags without searching the list.
    QHash<APCObject*, GraphicsItemBase*> m_itemsByObject;
    QHash<QString, GraphicsItemBase*> m_itemsById; // the first listed item of each id
    QHash<GraphicsItemBase*, QString> m_indexedIds; // the id each item is listed under
    QRectF m_grownRect; // every listed item's extent so far
    double m_scale = 1.0;
    bool m_editable = true;
    bool m_interactive = true; // as the current tool set the items
};

} // namespace Plugin
