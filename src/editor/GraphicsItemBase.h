#pragma once

#include <QBrush>
#include <QGraphicsItem>
#include <QPolygonF>

class QAbstractGraphicsShapeItem;
class QGraphicsSceneMouseEvent;
class QPainter;

namespace Plugin {

class APCObject;
class ModelControler;

// What every canvas item adds to its Qt item: the object it shows, the window,
// and the execution state and progress of its step.
class GraphicsItemBase
{
public:
    GraphicsItemBase(APCObject* object, ModelControler* controler) : m_controler(controler), m_object(object) {}
    virtual ~GraphicsItemBase() = default;

    virtual void SetState(int state) { m_state = state; }
    // Percent of the running step, cut to an integer.
    virtual void SetProgress(double value) { m_progress = int(value); }
    virtual APCObject* GetObject() = 0;
    // The outline in item coordinates; arrows end on it.
    virtual QPolygonF GetOutline() = 0;
    // Resizes about anchor, given in scene coordinates.
    virtual void ScaleBy(const QPointF& anchor, double sx, double sy) = 0;
    virtual void RefreshEnds() {}
    // The fill for the clipboard picture.
    virtual QBrush GetBrush() { return QBrush(); }

    int GetState() const { return m_state; }
    int GetProgress() const { return m_progress; }

    // The eight selection handles of rect, 8 units square at every zoom.
    void DrawHandles(QPainter* painter, const QRectF& rect);
    // Writes the item's shape and place into its object, tells the model, and
    // lets the item's arrows follow.
    void CommitGeometry();
    // The object's whole description as the tool tip; the label may be cut short.
    void RefreshToolTip();
    // Draws text centred in rect, each line cut at its end to the width of rect,
    // so that the start of a long name stays readable.
    static void DrawLabel(QPainter* painter, const QRectF& rect, const QString& text);
    // While one lives, labels are drawn whole, wrapped at the width of their
    // rectangle: a picture of the model names every object in full.
    class WholeLabels
    {
    public:
        WholeLabels() { s_wholeLabels = true; }
        ~WholeLabels() { s_wholeLabels = false; }
        WholeLabels(const WholeLabels&) = delete;
        WholeLabels& operator=(const WholeLabels&) = delete;
    };

protected:
    // For the shapes that show a step: the brush of the state (no colour for a
    // failure), then a redraw.
    void SetStateWithBrush(QAbstractGraphicsShapeItem* self, int state);
    void SetProgressWithRedraw(QGraphicsItem* self, double value);
    // The description, behind the percentage while the step runs or is done.
    QString StepText() const;
    // A move or a scaling is an edit: the shape goes back into the object (at
    // once, or when the mouse gesture making it ends) and the object's arrows
    // follow. Any change redraws the scene.
    void OnItemChange(QGraphicsItem* self, QGraphicsItem::GraphicsItemChange change);
    // Runs the lines of the object's arrows between their ends' new places.
    void UpdateArrows();
    // Lets the canvas grow to hold the item where it now is.
    static void GrowScene(QGraphicsItem* self);
    // Writes the item's geometry into its object and tells the model.
    virtual void WriteBack() {}
    // Hands a double click to the current tool, when it is willing.
    void ForwardDoubleClick(QGraphicsItem* self, QGraphicsSceneMouseEvent* event);
    // The rectangle (into rect) and the position of a rectangle or ellipse
    // scaled about anchor; the caller sets the rect first, then the position.
    static QPointF ScaleBox(const QGraphicsItem* self, QRectF& rect, const QPointF& anchor, double sx, double sy);

    static bool s_wholeLabels; // GUI thread only
    ModelControler* m_controler; // not owned
    int m_state = 0;
    int m_progress = 0;
    APCObject* m_object; // not owned
};

} // namespace Plugin
