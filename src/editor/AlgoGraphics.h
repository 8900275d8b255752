#pragma once

#include "editor/RectGraphics.h"

namespace Plugin {

class APCAlgo;

// An algorithm step on the canvas.
class AlgoGraphics : public RectGraphics
{
public:
    enum { Type = UserType + 1 };
    AlgoGraphics(APCAlgo* algo, ModelControler* controler);
    int type() const override { return Type; }
};

} // namespace Plugin
