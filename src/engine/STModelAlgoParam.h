#pragma once

#include <QString>

namespace Plugin {

// One input of a model file as the headless objects report and take it.
struct STModelAlgoParam
{
    QString name;        // the id of the model's free var
    QString description;
    QString type;
    QString typeParam;
    QString value;       // empty from ModelInfoAlgo; the caller's value for ModelAlgo
};

} // namespace Plugin
