#pragma once

#include "editor/RectGraphics.h"

namespace Plugin {

class APCModelFile;

// A nested model step on the canvas.
class ModelFileGraphics : public RectGraphics
{
public:
    enum { Type = UserType + 5 };
    ModelFileGraphics(APCModelFile* model, ModelControler* controler);
    int type() const override { return Type; }
    // The clipboard picture shows a nested model without a fill, on purpose.
    QBrush GetBrush() override { return QBrush(); }
};

} // namespace Plugin
