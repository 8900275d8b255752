// Load and save of a large model, and resolution of long chains of computed vars.
#include "BenchSupport.h"

#include "engine/APCAlgo.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"

#include <QTemporaryDir>

#include <algorithm>
#include <vector>

using namespace Plugin;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;

    // 1,000 processes with 4 parameters, 2,000 vars, 2,000 arrows.
    APCModel big;
    for (int i = 0; i < 1000; ++i) {
        auto* p = new APCAlgo;
        p->SetClass("algo");
        p->SetDescription(QStringLiteral("Step %1").arg(i));
        for (int k = 0; k < 4; ++k) {
            APCParameter param;
            param.name = QStringLiteral("P%1").arg(k);
            param.type = "file";
            param.direction = k == 3 ? 1 : 0;
            param.value = QStringLiteral("/data/value_%1_%2.tif").arg(i).arg(k);
            p->GetParameters() << param;
        }
        big.GetProcesses().append(p);
    }
    for (int i = 0; i < 2000; ++i) {
        auto* v = new APCVar;
        v->SetClass("file");
        v->SetConstant(i % 2 == 0);
        v->SetValue(QStringLiteral("/data/in_%1.tif").arg(i));
        big.GetVars().append(v);
        auto* a = new APCArrow;
        a->SetHead(big.GetProcesses()[i / 2]->GetName());
        a->SetHeadType("process");
        a->SetHeadParam(QStringLiteral("P%1").arg(i % 2));
        a->SetTail(v->GetName());
        a->SetTailType("var");
        big.GetArrows().append(a);
    }
    const QString path = dir.filePath("big.apc");
    std::vector<double> saves, loads;
    for (int r = 0; r < 5; ++r) {
        saves.push_back(Bench::Millis([&] { big.SaveFile(path); }));
        loads.push_back(Bench::Millis([&] { APCModel m; m.LoadFile(path); }));
    }
    std::sort(saves.begin(), saves.end());
    std::sort(loads.begin(), loads.end());
    Bench::Print("save_5000_objects_median", saves[2], "ms (target < 200)");
    Bench::Print("load_5000_objects_median", loads[2], "ms (target < 200)");

    // 2,000 computed vars, each naming the next, listed in reverse dependency order.
    APCModel chain;
    std::vector<APCVar*> vars(2000);
    for (auto& v : vars) {
        v = new APCVar;
        v->SetClass("file");
        chain.AddVar(v);
    }
    // Expressions bind to the vars of the model when set, so the vars come first.
    for (int i = 0; i < 2000; ++i) {
        if (i + 1 < 2000)
            vars[i]->SetFunExp("$AppendSuffix(%" + vars[i + 1]->GetName() + "%, '_x')");
        else
            vars[i]->SetFunExp("$ReplaceExtension('c:/data/scene.tif', 'img')");
    }
    std::vector<double> resolves;
    bool ok = true;
    for (int r = 0; r < 5; ++r) {
        chain.ResetVarValues();
        resolves.push_back(Bench::Millis([&] { ok = chain.ResolveVarValues({}) && ok; }));
    }
    std::sort(resolves.begin(), resolves.end());
    Bench::Print("resolve_2000_computed_vars_reverse_median", resolves[2], ok ? "ms (target < 100)" : "ms (FAILED TO RESOLVE)");
    return 0;
}
