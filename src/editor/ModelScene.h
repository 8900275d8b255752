#pragma once

#include <QGraphicsScene>
#include <QList>

namespace Plugin {

class ModelControler;
class ModelTool;

// The canvas of one model window. Every mouse event goes to the window's
// current tool first, then to Qt.
class ModelScene : public QGraphicsScene
{
    Q_OBJECT
public:
    // parent is the window; the scene finds its tool through it.
    explicit ModelScene(QObject* parent = nullptr) : QGraphicsScene(parent) {}

    virtual void OnViewLeave(QEvent* event);
    virtual void OnViewEnter(QEvent* event);

    void AddItem(QGraphicsItem* item);
    // Takes the item off the canvas without deleting it.
    void RemoveItem(QGraphicsItem* item);
    QList<QGraphicsItem*> GetItems() const { return m_items; }
    // The record of the view's scale; the view itself is not touched.
    double GetScale() const { return m_scale; }
    void SetScale(double scale) { m_scale = scale; }
    // A read-only model: no item can be moved, under any tool.
    void SetEditable(bool editable);
    bool IsEditable() const { return m_editable; }
    // Called by each tool as it becomes current.
    void SetItemsInteractive(bool value);

signals:
    void SceneMouseMove(QGraphicsSceneMouseEvent* mouseEvent);

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;

private:
    // The window's current tool when it is willing, else null.
    ModelTool* ActiveTool() const;

    QList<QGraphicsItem*> m_items; // in order of adding; no rubber bands
    double m_scale = 1.0;
    bool m_editable = true;
};

} // namespace Plugin
