#pragma once

#include <QPointF>

class QGraphicsItem;
class QGraphicsRectItem;
class QGraphicsSceneMouseEvent;

namespace Plugin {

class ModelControler;

// The select tool's resizing: one selected item is resized by one of its eight
// handles, about the point opposite. The band shows the new size during the
// drag; the item changes once, at the release.
class ScaleTool
{
public:
    // The handles, numbered as the cursor table and the anchors go.
    enum Handle { NoHandle = 0, TopLeft = 2, TopMiddle, TopRight, RightMiddle, BottomRight, BottomMiddle, BottomLeft,
                  LeftMiddle };

    virtual ~ScaleTool() = default;

    // The window whose selection is resized.
    void SetControler(ModelControler* controler) { m_controler = controler; }
    // The handle of item under scenePos (8 by 8 squares on the corners and the
    // middles of the item's bounding rectangle), or NoHandle.
    static int HandleAt(QGraphicsItem* item, const QPointF& scenePos);
    // Remembers the one selected item and the handle under scenePos, and shows
    // that handle's cursor; forgets the item unless exactly one is selected.
    void FindHandle(const QPointF& scenePos);

    // Holds the item still and shows a band from the handle to its anchor.
    void Press(QGraphicsSceneMouseEvent* event);
    // Stretches the band to the pointer; a side handle moves one side only.
    void Drag(QGraphicsSceneMouseEvent* event);
    // Resizes the item by the band and looks for the handle under the pointer again.
    void Release(QGraphicsSceneMouseEvent* event);
    // Takes the band down and gives the item back its moves; the one place a
    // resize under way is abandoned.
    void Reset();
    // True while a resize runs.
    bool IsUp() const { return m_band != nullptr; }
    // The handle the last look found under the pointer, or NoHandle.
    int GetHandle() const { return m_handle; }

private:
    // item, while it is still on this window's canvas, else null.
    QGraphicsItem* LiveItem() const;

    ModelControler* m_controler = nullptr; // not owned
    QGraphicsRectItem* m_band = nullptr;   // in the scene while a resize runs; see RubberBand
    QPointF m_anchor;                      // scene coordinates: the point that stays
    QPointF m_grab;                        // scene coordinates: the handle at the press
    int m_handle = NoHandle;
    QGraphicsItem* m_item = nullptr;       // not owned: the one selected item
};

} // namespace Plugin
