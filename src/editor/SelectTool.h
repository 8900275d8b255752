#pragma once

#include "editor/ModelTool.h"

namespace Plugin {

// Selects, moves and resizes objects; a double click opens an object's dialog.
class SelectTool : public ModelTool
{
public:
    // Activation: sets the items up for this tool and shows its cursor.
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
    // Left double click on an object: its dialog, none while a run goes on; what
    // was accepted is applied unless the model is read-only or a run is paused.
    void OnDoubleClick(QGraphicsSceneMouseEvent* event, APCObject* object, void* data) override;
};

} // namespace Plugin
