// File iterator: pairing 10,000 files of two outputs, and the engine time per round.
#include "BenchSupport.h"

#include "HostRunner/ExcuteAlgo.h"
#include "engine/APCAlgo.h"
#include "engine/APCRasterFileIterator.h"
#include "engine/SequenceControl.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/RemovedObjectBin.h"
#include "model/APCVar.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Plugin;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    HostRunner::RegisterTestAlgorithms();
    QTemporaryDir dir;
    const int n = 10000;
    for (int i = 0; i < n; ++i)
        for (const char* band : {"_a.tif", "_b.tif"}) {
            QFile f(dir.filePath(QStringLiteral("scene_%1%2").arg(i, 5, 10, QLatin1Char('0')).arg(band)));
            f.open(QIODevice::WriteOnly);
        }
    const QString strDir = QStringLiteral(R"({"%1":{"subdir":"0","enabled":"1"}})").arg(dir.path());
    const QString strFilter = R"({"A":"*_a.tif","B":"*_b.tif"})";

    APCRasterFileIterator probe;
    for (APCParameter& p : probe.GetParameters()) {
        if (p.name == "strDir")
            p.value = strDir;
        if (p.name == "strFilter")
            p.value = strFilter;
    }
    probe.RefreshOutputs();
    const double build = Bench::Millis([&] { probe.BuildRounds(); });
    Bench::Print("build_rounds_10000_pairs", build, "ms (target < 1000)");
    Bench::Print("build_rounds_10000_pairs_rounds", probe.GetRounds().size(), "rounds");

    // A run: the iterator feeds a do-nothing step, 10,000 rounds.
    APCModel model;
    RemovedObjectBin bin(model);
    auto* it = new APCRasterFileIterator;
    model.AddProcess(it);
    for (APCParameter& p : it->GetParameters())
        if (p.name == "strFilter")
            p.value = strFilter;
    it->RefreshOutputs();
    model.UpdateProcess(it);
    auto* step = new APCAlgo;
    step->SetClass("algo");
    step->SetProcessName("test.noop");
    model.AddProcess(step);
    // The step reads output A, so it runs behind the iterator.
    APCVar* a = nullptr;
    for (APCArrow* arrow : model.GetArrows())
        if (arrow->GetTailParam() == "A")
            a = model.FindVar(arrow->GetHead());
    auto* in = new APCArrow;
    in->SetTail(a->GetName());
    in->SetTailType("var");
    in->SetHead(step->GetName());
    in->SetHeadType("process");
    in->SetHeadParam("In");
    model.AddArrow(in);
    for (APCParameter& p : it->GetParameters())
        if (p.name == "strDir")
            p.value = strDir;

    SequenceControl control;
    const double run = Bench::RunToEnd(control, model, QStringLiteral("iterate"));
    Bench::Print("run_10000_rounds_total", run, "ms");
    const double perRound = (run - build) * 1000.0 / n;
    const double bare = Bench::BareRoundTripMicros(1000);
    Bench::Print("run_10000_rounds_engine_time_per_round", perRound, "us (scan excluded)");
    Bench::Print("bare_pool_round_trip_median", bare, "us (pool task, finish reported to the event loop)");
    Bench::Print("round_to_round_trip_ratio", perRound / bare, "x (two steps a round; target <= 4)");
    return 0;
}
