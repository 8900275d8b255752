#pragma once

#include "HostCatalog/Param.h"

#include <QList>
#include <QString>

namespace Plugin {

// One algorithm as the catalogue knows it.
class AlgoConfig
{
public:
    QString GetName() const { return name; }
    QString GetDisplayText() const { return displayText; }
    QString GetCategory() const { return category; }
    const QList<Param>& GetParams() const { return params; }

    QString name;         // what runs it: the key of ExcuteAlgo
    QString displayText;  // what users read
    QString category;     // "Raster", "Vector", ... for listings
    QString help;         // one sentence on what it does
    QList<Param> params;
};

} // namespace Plugin
