#pragma once

#include <QString>

class QGraphicsItem;

namespace Plugin {

class APCObject;
class ModelControler;

// Picks the canvas item class for an object.
class GraphicsItemFactory
{
public:
    static GraphicsItemFactory* Instance();

    // The item of object, or null for an object of no known kind.
    QGraphicsItem* CreateItem(APCObject* object, ModelControler* controler);
    // "process" for steps, "var" for vars, empty for anything else.
    QString GetClassWord(APCObject* object);
};

} // namespace Plugin
