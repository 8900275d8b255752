// Engine overhead: a long chain of do-nothing steps, independent sleeping steps on
// the pool, and the log's cost over a long run.
#include "BenchSupport.h"

#include "HostRunner/ExcuteAlgo.h"
#include "engine/APCAlgo.h"
#include "engine/APCLog.h"
#include "engine/SequenceControl.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"

#include <QThreadPool>

#include <algorithm>
#include <vector>

using namespace Plugin;

namespace {

APCAlgo* addStep(APCModel& model, const QString& algorithm, const QString& paramValue = QString())
{
    auto* step = new APCAlgo;
    step->SetClass("algo");
    step->SetProcessName(algorithm);
    if (!paramValue.isEmpty())
        for (APCParameter& p : step->GetParameters())
            p.value = paramValue;
    model.GetProcesses().append(step);
    step->SetModel(&model);
    return step;
}

// Links a -> b through a var, as an output arrow and an input arrow.
void link(APCModel& model, APCProcess* a, APCProcess* b)
{
    auto* v = new APCVar;
    v->SetConstant(true);
    v->SetValue("x");
    model.GetVars().append(v);
    v->SetModel(&model);
    auto* out = new APCArrow;
    out->SetTail(a->GetName());
    out->SetTailType("process");
    out->SetTailParam("Out");
    out->SetHead(v->GetName());
    out->SetHeadType("var");
    auto* in = new APCArrow;
    in->SetTail(v->GetName());
    in->SetTailType("var");
    in->SetHead(b->GetName());
    in->SetHeadType("process");
    in->SetHeadParam("In");
    model.GetArrows() << out << in;
    out->SetModel(&model);
    in->SetModel(&model);
}

double runMillis(APCModel& model, SequenceControl& control)
{
    return Bench::RunToEnd(control, model, QStringLiteral("bench"));
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    HostRunner::RegisterTestAlgorithms();
    const int threads = QThreadPool::globalInstance()->maxThreadCount();
    Bench::Print("pool_threads", threads, "");
    // An optional argument picks one part: chain, independent or log.
    const QString only = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    auto wanted = [&](const char* part) { return only.isEmpty() || only == QLatin1String(part); };

    if (wanted("chain")) {
        APCModel model;
        APCProcess* prev = nullptr;
        for (int i = 0; i < 1000; ++i) {
            APCProcess* step = addStep(model, "test.noop");
            if (prev)
                link(model, prev, step);
            prev = step;
        }
        std::vector<double> perStep;
        for (int r = 0; r < 5; ++r) {
            SequenceControl control;
            perStep.push_back(runMillis(model, control) * 1000.0 / 1000);
        }
        {
            SequenceControl control;
            Bench::Print("chain_1000_build", Bench::Millis([&] { control.Build(&model); }), "ms");
        }
        std::sort(perStep.begin(), perStep.end());
        const double bare = Bench::BareRoundTripMicros(1000);
        Bench::Print("chain_1000_noop_overhead_per_step_median", perStep[2], "us");
        Bench::Print("bare_pool_round_trip_median", bare, "us (pool task, finish reported to the event loop)");
        Bench::Print("chain_step_to_round_trip_ratio", perStep[2] / bare, "x (target <= 2)");
    }
    if (wanted("independent")) {
        APCModel model;
        for (int i = 0; i < 64; ++i)
            addStep(model, "test.sleep", "50");
        SequenceControl control;
        const double ms = runMillis(model, control);
        const double target = 1.1 * 64 * 50 / threads;
        Bench::Print("independent_64x50ms_wall", ms, "ms");
        Bench::Print("independent_64x50ms_target", target, "ms (1.1 x 64 x 50 / threads)");
    }
    if (wanted("log")) {
        // 10,000 independent steps: the log grows with every block.
        APCModel model;
        for (int i = 0; i < 10000; ++i)
            addStep(model, "test.noop");
        SequenceControl control;
        std::vector<qint64> stamps;
        QElapsedTimer clock;
        clock.start();
        control.NodeFinished.connect([&](SequenceNode* n) { if (n) stamps.push_back(clock.nsecsElapsed()); });
        runMillis(model, control);
        if (stamps.size() >= 10000) {
            const double first = (stamps[999] - stamps[0]) / 1e3 / 999;
            const double last = (stamps[9999] - stamps[9000]) / 1e3 / 999;
            Bench::Print("log_10000_steps_first_thousand_per_step", first, "us");
            Bench::Print("log_10000_steps_last_thousand_per_step", last, "us");
            Bench::Print("log_10000_steps_ratio_last_to_first", last / first, "(target <= 1.5)");
        }
        Bench::Print("log_10000_steps_log_size", control.GetLog()->GetLogText().size() / 1e6, "M chars");
    }
    return 0;
}
