#include "support/ModelFixtures.h"

#include "engine/APCAlgo.h"
#include "engine/APCModelFile.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"

namespace TestSupport {

const char* const kStepAndThreeVars = R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <Processes>
        <Process class="algo" name="{step}" description="Convert raster to another format" posX="0" posY="0" painter="" processName="local.convert">
            <Parameter name="In File" type="file" direction="0" value="%{in}%" description="Input"/>
            <Parameter name="Out File" type="file" direction="1" value="" description="Output"/>
        </Process>
    </Processes>
    <Vars>
        <Var class="file" name="{in}" description="Scene" posX="0" posY="-150" painter="" constant="1" value="a.tif"/>
        <Var class="file" name="{out}" description="Result" posX="250" posY="0" painter="" constant="1" value="b.tif"/>
        <Var class="file" name="{other}" description="Other" posX="-250" posY="0" painter="" constant="1" value="c.tif"/>
    </Vars>
    <Arrows>
        <Arrow head="{step}" headType="process" headParam="In File" tail="{in}" tailType="var" tailParam="" class="arrow" posX="0" posY="0" painter=""/>
    </Arrows>
</Configuration>
)";


using namespace Plugin;

APCAlgo* AddAlgo(APCModel& model, const QString& algorithm, double x, double y)
{
    auto* step = new APCAlgo;
    step->SetClass(QStringLiteral("algo"));
    step->SetPos(QPointF(x, y));
    step->SetProcessName(algorithm);
    model.AddProcess(step);
    return step;
}

APCArrow* AddArrow(APCModel& model, APCObject* tail, const QString& tailParam, APCObject* head, const QString& headParam)
{
    const auto kind = [](APCObject* o) { return dynamic_cast<APCVar*>(o) ? QStringLiteral("var") : QStringLiteral("process"); };
    auto* arrow = new APCArrow;
    arrow->SetTail(tail->GetName());
    arrow->SetTailType(kind(tail));
    arrow->SetTailParam(tailParam);
    arrow->SetHead(head->GetName());
    arrow->SetHeadType(kind(head));
    arrow->SetHeadParam(headParam);
    model.AddArrow(arrow);
    return arrow;
}

APCVar* VarOf(APCModel& model, APCAlgo* step, const QString& param)
{
    return model.FindVar(step->GetParameter(param).value.remove(QLatin1Char('%')));
}

void SetLiteral(APCModel& model, APCAlgo* step, const QString& param, const QString& value)
{
    for (APCParameter& p : step->GetParameters())
        if (p.name == param)
            p.value = value;
    model.UpdateProcess(step);
}

void SetConstant(APCVar* var, const QString& value)
{
    var->SetConstant(true);
    var->SetValue(value);
}

APCAlgo* AddStep(APCModel& model, const QString& algorithm, const QList<QPair<QString, QString>>& values)
{
    APCAlgo* step = AddAlgo(model, algorithm);
    for (const auto& v : values) {
        if (APCVar* var = VarOf(model, step, v.first))
            SetConstant(var, v.second);
        else
            SetLiteral(model, step, v.first, v.second);
    }
    return step;
}

APCModelFile* AddModelStep(APCModel& model, const QString& processName, const QMap<QString, QString>& values)
{
    auto* step = new APCModelFile;
    step->SetClass(QStringLiteral("model"));
    step->SetProcessName(processName);
    model.AddProcess(step);
    for (APCParameter& p : step->GetParameters()) {
        APCVar* v = model.FindVar(QString(p.value).remove(QLatin1Char('%')));
        if (v && values.contains(p.description))
            SetConstant(v, values[p.description]);
    }
    return step;
}

} // namespace TestSupport

#include "engine/APCLog.h"
#include "engine/ModelRun.h"
#include "engine/SequenceControl.h"
#include "support/TestSupport.h"

namespace TestSupport {

void Connect(APCModel& model, APCVar* var, APCAlgo* step, const QString& param)
{
    if (APCVar* old = VarOf(model, step, param)) {
        model.RemoveVar(old);
    }
    SetLiteral(model, step, param, QLatin1Char('%') + var->GetName() + QLatin1Char('%'));
}

RunResult RunModel(SequenceControl& control, APCModel& model, const QList<APCVar*>& inputs, int timeoutMs)
{
    RunResult result;
    boost::signals2::scoped_connection c =
        control.NodeFinished.connect([&](SequenceNode* n) { if (!n) ++result.finishes; });
    ModelRun run(control, model);
    result.finished = run.Start(inputs, QStringLiteral("m")) && run.Wait(timeoutMs);
    result.log = control.GetLog()->GetLogText();
    result.errors = control.GetLog()->GetErrorText();
    control.GetError(result.code, result.message);
    return result;
}

} // namespace TestSupport
