#pragma once

#include <QString>

namespace Plugin {

// The catalogue's description of one parameter of an algorithm.
class Param
{
public:
    Param() = default;
    Param(const Param&) = default;
    Param& operator=(const Param&) = default;
    virtual ~Param() = default;

    qint32 catalogTag = 0;
    QString name;
    QString type;
    QString typeParam;
    qint32 direction = 0;
    QString defaultValue;
    bool isOptional = false;
    QString description;
};

} // namespace Plugin
