#pragma once

#include <QString>
#include <QtGlobal>

namespace Plugin {

// One entry of the path function catalogue, as the function dialog lists it.
struct FunctionInfo
{
    QString name;
    QString help;
    qint32 argCount = 0;
};

} // namespace Plugin
