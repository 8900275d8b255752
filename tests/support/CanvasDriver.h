#pragma once

#include <QPoint>
#include <QString>
#include <Qt>

#include <memory>

class QPointF;
class QTreeWidget;
class QWidget;

namespace Plugin {
class APCObject;
class ATBItem;
class ModelControler;
} // namespace Plugin

namespace CanvasDriver {

// Drags item's row out of tree and lets it go over the window's canvas at scene
// position at. The offscreen platform runs no real drag, so the scene gets the
// three events a view hands on during one (enter, move, drop), with the tree as
// source and the text the tool box puts in the drag. False when the canvas
// refused the drag, so that nothing was dropped.
bool DropOnCanvas(QTreeWidget* tree, Plugin::ATBItem* item, Plugin::ModelControler& window, const QPointF& at);

// Drops a tool box algorithm named name running algorithm, as DropOnCanvas.
bool DropAlgo(Plugin::ModelControler& window, const QString& name, const QString& algorithm, const QPointF& at);

// The model file at path in a window shown on screen.
std::unique_ptr<Plugin::ModelControler> OpenShown(const QString& path, bool readOnly = false, int width = 900,
                                                  int height = 700);

// The mouse over a window's canvas, as a user moves it.
class Mouse
{
public:
    Mouse() = default;
    explicit Mouse(Plugin::ModelControler& window) : m_window(&window) {}
    void SetWindow(Plugin::ModelControler& window) { m_window = &window; }
    QWidget* Viewport() const;
    QPoint At(const QPointF& scenePos) const;
    // Where the item of the object with that id stands, and of object.
    QPoint At(const QString& id) const;
    QPoint At(Plugin::APCObject* object) const;
    void Move(const QPoint& to, Qt::MouseButtons buttons = Qt::NoButton) const;
    void Press(const QPoint& at, Qt::MouseButton button = Qt::LeftButton) const;
    void Release(const QPoint& at, Qt::MouseButton button = Qt::LeftButton) const;
    void Click(const QPoint& at) const { Drag(at, at); }
    void DoubleClick(const QPoint& at) const;
    // The pointer rests on from, the button goes down, the pointer travels in
    // three steps, the button comes up.
    void Drag(const QPoint& from, const QPoint& to) const;

private:
    Plugin::ModelControler* m_window = nullptr;
};

} // namespace CanvasDriver
