#include "editor/AlgoGraphics.h"
#include "editor/ModelFileGraphics.h"
#include "engine/APCAlgo.h"
#include "engine/APCModelFile.h"

namespace Plugin {

AlgoGraphics::AlgoGraphics(APCAlgo* algo, ModelControler* controler) : RectGraphics(algo, controler) {}

ModelFileGraphics::ModelFileGraphics(APCModelFile* model, ModelControler* controler) : RectGraphics(model, controler) {}

} // namespace Plugin
