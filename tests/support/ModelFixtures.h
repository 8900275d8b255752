#pragma once

#include "model/APCModel.h"
#include "model/RemovedObjectBin.h"

#include <QMap>
#include <QString>
#include <QStringList>

namespace Plugin {
class APCAlgo;
class APCArrow;
class APCModelFile;
class APCObject;
class APCVar;
} // namespace Plugin

namespace TestSupport {

// A model with no window that owns what it gives up, as every headless owner must.
class HeadlessModel : public Plugin::APCModel
{
    Plugin::RemovedObjectBin m_bin{*this};
};

// A model file's text for the canvas suites: a step of no catalogue, {step} at
// (0, 0), reading {in} (above it); {out} and {other} stand free on either side.
extern const char* const kStepAndThreeVars;

// Adds an algorithm step of the host catalogue at pos; required parameters get
// their vars and arrows as in the editor.
Plugin::APCAlgo* AddAlgo(Plugin::APCModel& model, const QString& algorithm, double x = 0, double y = 0);
// The var wired to the step's parameter, or null.
Plugin::APCVar* VarOf(Plugin::APCModel& model, Plugin::APCAlgo* step, const QString& param);
// Sets a parameter's literal value and reconciles the model.
void SetLiteral(Plugin::APCModel& model, Plugin::APCAlgo* step, const QString& param, const QString& value);
// Makes the var constant with value.
void SetConstant(Plugin::APCVar* var, const QString& value);
// AddAlgo, then each named parameter set: a wired one's var made constant with the
// value, any other given the value as its literal.
Plugin::APCAlgo* AddStep(Plugin::APCModel& model, const QString& algorithm, const QList<QPair<QString, QString>>& values);
// Adds a step running the model file processName (named from the application root);
// the vars of its parameters named in values, by description, made constant.
Plugin::APCModelFile* AddModelStep(Plugin::APCModel& model, const QString& processName,
                                   const QMap<QString, QString>& values = {});
// Adds an arrow by hand, from tail (a var, or a step's parameter) to head.
Plugin::APCArrow* AddArrow(Plugin::APCModel& model, Plugin::APCObject* tail, const QString& tailParam, Plugin::APCObject* head,
                           const QString& headParam);

} // namespace TestSupport

namespace Plugin {
class SequenceControl;
}

namespace TestSupport {

// Wires var into the step's input param, dropping the var that served it before.
void Connect(Plugin::APCModel& model, Plugin::APCVar* var, Plugin::APCAlgo* step, const QString& param);

// What a finished run left behind.
struct RunResult
{
    bool finished = false; // NodeFinished(nullptr) arrived in time
    int finishes = 0;      // how many times it arrived
    QString log;
    QString errors;
    int code = 0;
    QString message;
};

// Prepares the vars with the inputs given, builds and starts control on model, named
// "m", as the editor's Run does, and waits (serving this thread's events) for the
// end of the run.
RunResult RunModel(Plugin::SequenceControl& control, Plugin::APCModel& model, const QList<Plugin::APCVar*>& inputs = {},
                   int timeoutMs = 20000);

} // namespace TestSupport
