#pragma once

#include "editor/ModelTool.h"

#include <QCursor>

namespace Plugin {

// Moves the view with the mouse; Qt scrolls while the button is down.
class PanTool : public ModelTool
{
public:
    // Activation: sets the items up for this tool and shows its cursor.
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
    // Ends a scroll under way.
    void Deactivate() override;
    // The view scrolls with the pointer until the release.
    void OnMousePress(QGraphicsSceneMouseEvent* event) override;
    void OnMouseRelease(QGraphicsSceneMouseEvent* event) override;

private:
    QCursor m_cursor;
};

} // namespace Plugin
