#pragma once

#include "engine/STModelAlgoParam.h"

#include <QList>
#include <QMetaType>

namespace Plugin {

// What goes in and out of ModelAlgo and ModelInfoAlgo through the parameter slot.
struct STModelAlgoData
{
    QString file; // full path of the model file, used as it stands
    QList<STModelAlgoParam> params;
};

} // namespace Plugin
