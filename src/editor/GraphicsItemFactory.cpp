#include "editor/GraphicsItemFactory.h"

#include "editor/AlgoGraphics.h"
#include "editor/ArrowGraphics.h"
#include "editor/IteratorGraphics.h"
#include "editor/ModelFileGraphics.h"
#include "editor/VarGraphics.h"
#include "engine/APCAlgo.h"
#include "engine/APCIterator.h"
#include "engine/APCModelFile.h"
#include "model/APCArrow.h"
#include "model/APCVar.h"

namespace Plugin {

GraphicsItemFactory* GraphicsItemFactory::Instance()
{
    static GraphicsItemFactory instance;
    return &instance;
}

QGraphicsItem* GraphicsItemFactory::CreateItem(APCObject* object, ModelControler* controler)
{
    if (auto* algo = dynamic_cast<APCAlgo*>(object))
        return new AlgoGraphics(algo, controler);
    if (auto* iterator = dynamic_cast<APCIterator*>(object))
        return new IteratorGraphics(iterator, controler);
    if (auto* model = dynamic_cast<APCModelFile*>(object))
        return new ModelFileGraphics(model, controler);
    if (auto* var = dynamic_cast<APCVar*>(object))
        return new VarGraphics(var, controler);
    if (auto* arrow = dynamic_cast<APCArrow*>(object))
        return new ArrowGraphics(arrow, controler);
    return nullptr;
}

QString GraphicsItemFactory::GetClassWord(APCObject* object)
{
    if (dynamic_cast<APCProcess*>(object))
        return QStringLiteral("process");
    if (dynamic_cast<APCVar*>(object))
        return QStringLiteral("var");
    return QString();
}

} // namespace Plugin
