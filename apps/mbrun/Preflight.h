#pragma once

#include <QStringList>

namespace Plugin {
class APCModel;
class APCObject;
} // namespace Plugin

namespace Mbrun {

// The refusals before a run, in the order the editor's Run makes them, in the
// system's own words ("… is wrong!", "can not run an empty model!") with mbrun's
// lines added that say what exactly is wrong; then the path expressions that
// cannot be read, which would otherwise surface as an empty name steps later.
class Preflight
{
public:
    // The lines to print, each ending in a line feed; empty when the model may run.
    static QStringList Problems(Plugin::APCModel& model);

private:
    // What makes object fail its check, as far as it can be told.
    static QStringList WhyInvalid(Plugin::APCObject* object);
    static QStringList InvalidExpressions(Plugin::APCModel& model);
};

} // namespace Mbrun
