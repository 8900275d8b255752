#pragma once

#include <QStringList>

namespace Plugin {
class APCModel;
class APCModelFile;
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
    // path is the model's own file, to tell a nested step that runs it.
    static QStringList Problems(Plugin::APCModel& model, const QString& path = QString());

private:
    // What makes object fail its check, as far as it can be told.
    static QStringList WhyInvalid(Plugin::APCObject* object, const QString& path);
    // Why a nested step's model cannot run: not named, not found, not a model
    // file, the model itself, a cycle of models, or an object of it is wrong.
    static QString WhyNestedFails(Plugin::APCModelFile* nested, const QString& path);
    // Duplicate ids, and arrows whose ends the model does not have.
    static QStringList BrokenStructure(Plugin::APCModel& model);
    static QStringList InvalidExpressions(Plugin::APCModel& model);
    // The values the host refuses before any run, such as creation options the
    // output format does not take, each naming the step, the parameter and why.
    static QStringList RefusedParameters(Plugin::APCModel& model);
};

} // namespace Mbrun
