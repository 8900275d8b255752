#include "HostCatalog/AlgoRunContext.h"
#include "HostCatalog/AlgorithmRegistry.h"
#include "engine/APCAlgo.h"
#include "engine/APCRasterFileIterator.h"
#include "model/APCProcess.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/RemovedObjectBin.h"
#include "support/ModelFixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace Plugin;
using TestSupport::AddAlgo;
using TestSupport::VarOf;

namespace {

// Four parameters: three required (two inputs, one output) and one optional.
void registerThreeInputs()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    AlgoConfig c;
    c.name = "test.three";
    c.displayText = "Three";
    auto add = [&](const char* name, int dir, bool optional, const char* def = "") {
        Param p;
        p.name = name;
        p.type = dir == 1 ? "filePath" : "file";
        p.direction = dir;
        p.isOptional = optional;
        p.defaultValue = def;
        p.description = QStringLiteral("desc %1").arg(name);
        p.typeParam = QStringLiteral("{\"direction\":\"%1\"}").arg(dir);
        c.params << p;
    };
    add("A", 0, false);
    add("B", 0, false);
    add("Opt", 0, true);
    add("Def", 0, false, "5");
    add("C", 1, false);
    AlgorithmRegistry::Instance().Register(c, [](const QJsonObject&, AlgoRunContext&) { return true; });
}

struct Counts
{
    int added = 0, changed = 0, removed = 0;
};

// Counts every signal of a model, by kind.
struct SignalCounter
{
    explicit SignalCounter(APCModel& m)
    {
        conns.emplace_back(m.processAdded.connect([this](APCProcess*) { ++processes.added; }));
        conns.emplace_back(m.processChanged.connect([this](APCProcess*) { ++processes.changed; }));
        conns.emplace_back(m.processRemoved.connect([this](APCProcess* p) { ++processes.removed; delete p; }));
        conns.emplace_back(m.varAdded.connect([this](APCVar*) { ++vars.added; }));
        conns.emplace_back(m.varChanged.connect([this](APCVar*) { ++vars.changed; }));
        conns.emplace_back(m.varRemoved.connect([this](APCVar* v) { ++vars.removed; delete v; }));
        conns.emplace_back(m.arrowAdded.connect([this](APCArrow*) { ++arrows.added; }));
        conns.emplace_back(m.arrowChanged.connect([this](APCArrow*) { ++arrows.changed; }));
        conns.emplace_back(m.arrowRemoved.connect([this](APCArrow* a) { ++arrows.removed; delete a; }));
    }
    Counts processes, vars, arrows;
    std::vector<boost::signals2::scoped_connection> conns;
};

} // namespace

class ModelDocument : public ::testing::Test
{
protected:
    void SetUp() override { registerThreeInputs(); }
};

TEST_F(ModelDocument, AddProcessPlacesRequiredVarsAndWiresThem)
{
    APCModel model;
    SignalCounter count(model); // the listener that deletes what leaves
    APCAlgo* step = AddAlgo(model, "test.three", 100, 100);

    ASSERT_EQ(model.GetVars().size(), 3);
    ASSERT_EQ(model.GetArrows().size(), 3);
    EXPECT_EQ(count.processes.added, 1);
    EXPECT_EQ(count.vars.added, 3);
    EXPECT_EQ(count.arrows.added, 3);
    const QPointF expected[] = {{10, 250}, {100, 250}, {190, 250}};
    const char* names[] = {"A", "B", "C"};
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(names[i]);
        APCVar* v = model.GetVars()[i];
        EXPECT_EQ(v->GetPos(), expected[i]);
        EXPECT_EQ(VarOf(model, step, names[i]), v);
        EXPECT_EQ(v->GetDescription(), QStringLiteral("desc %1").arg(names[i]));
        EXPECT_FALSE(v->GetConstant());
    }
    // Inputs: var at the tail; output: var at the head.
    const APCArrow* in = model.GetArrows()[0];
    const APCArrow* out = model.GetArrows()[2];
    EXPECT_EQ(QStringList({in->GetTail(), in->GetTailType(), in->GetHead(), in->GetHeadType(), in->GetHeadParam()}),
              QStringList({model.GetVars()[0]->GetName(), "var", step->GetName(), "process", "A"}));
    EXPECT_EQ(QStringList({out->GetHead(), out->GetTailParam(), out->GetHeadParam()}),
              QStringList({model.GetVars()[2]->GetName(), "C", ""}));
    // Optional parameters and parameters with a default get nothing.
    EXPECT_TRUE(step->GetParameter("Opt").value.isEmpty());
    EXPECT_EQ(step->GetParameter("Def").value, "5");

    TestSupport::HeadlessModel empty;
    AddAlgo(empty, "test.noop");
    EXPECT_TRUE(empty.GetVars().isEmpty());
    EXPECT_TRUE(empty.GetArrows().isEmpty());
}

TEST_F(ModelDocument, OffsetsCentreTheRowByIntegerDivision)
{
    struct Case { const char* name; int required; double firstX; };
    for (const Case& c : {Case{"one", 1, 0}, Case{"two", 2, -90}, Case{"three", 3, -90}, Case{"four", 4, -180}}) {
        SCOPED_TRACE(c.name);
        TestSupport::HeadlessModel model;
        auto* p = new APCAlgo;
        for (int i = 0; i < c.required; ++i) {
            APCParameter param;
            param.name = QString::number(i);
            param.type = "file";
            p->GetParameters() << param;
        }
        model.AddProcess(p);
        ASSERT_EQ(model.GetVars().size(), c.required);
        EXPECT_EQ(model.GetVars().first()->GetPos(), QPointF(c.firstX, 150));
        EXPECT_EQ(model.GetVars().last()->GetPos().x(), c.firstX + 90 * (c.required - 1));
    }
}

TEST_F(ModelDocument, TypeParamBecomesDirectionTwoOnlyWhenWrittenAndRead)
{
    TestSupport::HeadlessModel model;
    APCAlgo* writer = AddAlgo(model, "test.copyText");
    APCVar* middle = VarOf(model, writer, "Out File");
    const QString text = R"({"direction":"1","filter":"x"})";
    middle->SetTypeParam(text);
    EXPECT_EQ(middle->GetTypeParam(), text); // only written so far

    APCAlgo* reader = AddAlgo(model, "test.copyText");
    APCVar* readerVar = VarOf(model, reader, "In File");
    model.RemoveVar(readerVar);
    TestSupport::AddArrow(model, middle, "", reader, "In File");
    EXPECT_EQ(reader->GetParameter("In File").value, "%" + middle->GetName() + "%");
    EXPECT_EQ(middle->GetTypeParam(), R"({"direction":"2"})"); // the reader's parameter text, rewritten
    middle->SetTypeParam(R"({"filter":"y"})");
    EXPECT_EQ(middle->GetTypeParam(), R"({"filter":"y"})");
    middle->SetTypeParam(R"({"direction":"0","a":{"direction":"1"}})");
    EXPECT_EQ(middle->GetTypeParam(), R"({"direction":"2","a":{"direction":"2"}})");
}

TEST_F(ModelDocument, RemovingArrowsVarsAndProcessesUnwires)
{
    APCModel model;
    SignalCounter count(model); // the listener that deletes what leaves
    APCAlgo* step = AddAlgo(model, "test.copyText");
    APCVar* in = VarOf(model, step, "In File");
    APCVar* out = VarOf(model, step, "Out File");

    model.RemoveArrow(model.ArrowsOfVar(in).first());
    EXPECT_TRUE(step->GetParameter("In File").value.isEmpty());
    EXPECT_EQ(model.GetVars().size(), 2); // the var stays
    EXPECT_EQ(count.arrows.removed, 1);

    // A value that only contains the id is cleared as well, and the process is
    // reported changed once.
    for (APCParameter& p : step->GetParameters())
        if (p.name == "In File")
            p.value = "prefix " + out->GetName() + " suffix";
    model.RemoveVar(out);
    EXPECT_TRUE(step->GetParameter("In File").value.isEmpty());
    EXPECT_TRUE(step->GetParameter("Out File").value.isEmpty());
    EXPECT_EQ(count.processes.changed, 1);
    EXPECT_EQ(count.vars.removed, 1);
    EXPECT_TRUE(model.GetArrows().isEmpty());

    model.RemoveProcess(step);
    EXPECT_TRUE(model.GetProcesses().isEmpty());
    EXPECT_EQ(model.GetVars().size(), 1);
    EXPECT_EQ(model.FindVar(in->GetName()), in);
}

TEST_F(ModelDocument, UpdateProcessReconcilesArrowsWithParameters)
{
    APCModel model;
    SignalCounter count(model); // the listener that deletes what leaves
    APCAlgo* step = AddAlgo(model, "test.three");
    APCVar* a = VarOf(model, step, "A");

    // A literal typed into a wired parameter drops its arrow; the var stays, and
    // unwiring empties the parameter.
    TestSupport::SetLiteral(model, step, "A", "/data/a.tif");
    EXPECT_EQ(model.ArrowsOfProcess(step, "A").size(), 0);
    EXPECT_EQ(model.FindVar(a->GetName()), a);
    EXPECT_TRUE(step->GetParameter("A").value.isEmpty());
    EXPECT_EQ(count.processes.changed, 1);

    // A reference to an existing var gets an arrow again.
    TestSupport::SetLiteral(model, step, "A", "%" + a->GetName() + "%");
    ASSERT_EQ(model.ArrowsOfProcess(step, "A").size(), 1);
    EXPECT_EQ(model.ArrowsOfProcess(step, "A").first()->GetTail(), a->GetName());

    // Re-pointing B at var A moves B's arrow instead of adding one.
    const int arrows = model.GetArrows().size();
    TestSupport::SetLiteral(model, step, "B", "%" + a->GetName() + "%");
    EXPECT_EQ(model.GetArrows().size(), arrows);
    EXPECT_EQ(model.ArrowsOfProcess(step, "B").first()->GetTail(), a->GetName());
    EXPECT_GE(count.arrows.changed, 1);

    // A reference to no var asks for a new one; the wired arrow is re-pointed.
    const int vars = model.GetVars().size();
    TestSupport::SetLiteral(model, step, "B", "%{no-such-var}%");
    EXPECT_EQ(model.GetVars().size(), vars + 1);
    APCVar* fresh = model.GetVars().last();
    EXPECT_EQ(model.ArrowsOfProcess(step, "B").first()->GetTail(), fresh->GetName());
    EXPECT_EQ(fresh->GetPos(), QPointF(0, 0));

    // Optional parameters and those with a default are left alone.
    // The new id went into the private copy and the arrow only: the parameter still
    // asks for a new var, and the next reconciliation makes one more.
    EXPECT_EQ(step->GetParameter("B").value, "%{no-such-var}%");
    TestSupport::SetLiteral(model, step, "B", "%" + fresh->GetName() + "%");
    EXPECT_EQ(model.GetVars().size(), vars + 1);
    TestSupport::SetLiteral(model, step, "Opt", "%{whatever}%");
    TestSupport::SetLiteral(model, step, "Def", "%{whatever}%");
    EXPECT_EQ(model.GetVars().size(), vars + 1);

    // An output pointed at a new var: the process end of its arrow, the tail, is
    // set to the new var's id.
    TestSupport::SetLiteral(model, step, "C", "%{new}%");
    ASSERT_EQ(model.GetVars().size(), vars + 2);
    const QList<APCArrow*> all = model.GetArrows();
    EXPECT_EQ(std::count_if(all.begin(), all.end(), [&](APCArrow* a) {
                  return a->GetTailParam() == "C" && a->GetTail() == model.GetVars().last()->GetName();
              }), 1);

    // An arrow whose parameter no longer exists is swept.
    QList<APCParameter>& params = step->GetParameters();
    for (int i = 0; i < params.size(); ++i)
        if (params[i].name == "C")
            params.removeAt(i--);
    model.UpdateProcess(step);
    EXPECT_TRUE(model.ArrowsOfProcess(step, "C").isEmpty());
}

TEST_F(ModelDocument, FreeVarsValidationAndIteratorOutputs)
{
    TestSupport::HeadlessModel model;
    APCAlgo* step = AddAlgo(model, "test.copyText");
    APCVar* in = VarOf(model, step, "In File");
    APCVar* out = VarOf(model, step, "Out File");
    EXPECT_EQ(model.FindInvalidObject(), nullptr); // wired references count as values
    TestSupport::SetLiteral(model, step, "In File", "");
    EXPECT_EQ(model.FindInvalidObject(), step);

    TestSupport::SetConstant(out, "/tmp/out.txt");
    QList<APCVar*> free = model.GetFreeVars();
    ASSERT_EQ(free.size(), 1);
    EXPECT_EQ(free[0]->GetName(), in->GetName());
    EXPECT_NE(free[0], in); // a clone the caller owns
    qDeleteAll(free);

    auto* it = new APCRasterFileIterator;
    model.AddProcess(it);
    APCVar* file = model.GetVars().last();
    EXPECT_TRUE(file->IsIteratorOutput());
    EXPECT_FALSE(file->IsFree());
    EXPECT_TRUE(file->ResolveValue());
    EXPECT_FALSE(in->IsIteratorOutput());
}

TEST_F(ModelDocument, ResolveVarValuesFixedPoint)
{
    {
        // A free computed var is filled from the inputs; a missing input fails at once.
        TestSupport::HeadlessModel model;
        APCAlgo* step = AddAlgo(model, "test.copyText");
        APCVar* in = VarOf(model, step, "In File");
        TestSupport::SetConstant(VarOf(model, step, "Out File"), "/o");
        EXPECT_FALSE(model.ResolveVarValues({}));
        APCVar given;
        given.SetName(in->GetName());
        given.SetValue("/i");
        EXPECT_TRUE(model.ResolveVarValues({&given}));
        EXPECT_EQ(in->GetRunValue(), "/i");
        EXPECT_EQ(VarOf(model, step, "Out File")->GetRunValue(), "/o");
    }
    {
        // A constant var with an empty value takes the input but is reset to its value.
        TestSupport::HeadlessModel model;
        auto* v = new APCVar;
        TestSupport::SetConstant(v, "");
        model.AddVar(v);
        APCVar given;
        given.SetName(v->GetName());
        given.SetValue("x");
        EXPECT_FALSE(model.ResolveVarValues({&given}));
        EXPECT_TRUE(v->GetRunValue().isEmpty());
    }
    {
        // Two vars that name each other never resolve.
        TestSupport::HeadlessModel model;
        auto* a = new APCVar;
        auto* b = new APCVar;
        a->SetFunExp("$AppendSuffix(%" + b->GetName() + "%, '_a')");
        b->SetFunExp("$AppendSuffix(%" + a->GetName() + "%, '_b')");
        model.AddVar(a);
        model.AddVar(b);
        EXPECT_FALSE(model.ResolveVarValues({}));
    }
}

TEST_F(ModelDocument, ResolveValueScansPercentPairsAndLookupsFollowRenames)
{
    TestSupport::HeadlessModel model;
    auto* named = new APCVar;
    model.AddVar(named);
    auto* v = new APCVar;
    model.AddVar(v);
    struct Case { const char* name; QString funExp; QString namedValue; bool ready; };
    const QString ref = "%" + named->GetName() + "%";
    const std::vector<Case> cases = {
        {"names a var without value", ref, "", false},
        {"names a var with value, no parse keeps the old value", ref, "x", false},
        {"names a missing var", "%{missing}%", "x", false},
        {"odd percent: the last one is ignored", ref + " 50%", "x", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        named->SetRunValue(c.namedValue);
        v->SetRunValue("");
        v->SetFunExp(c.funExp);
        EXPECT_EQ(v->ResolveValue(), c.ready);
    }
    // A var that something else gave a value resolves although its text does not parse.
    v->SetFunExp("not an expression");
    v->SetRunValue("given");
    EXPECT_TRUE(v->ResolveValue());
    EXPECT_EQ(v->GetRunValue(), "given");

    // Lookups follow renames and removals.
    EXPECT_EQ(model.FindVar(named->GetName()), named);
    const QString old = named->GetName();
    named->SetName("{renamed}");
    EXPECT_EQ(model.FindVar(old), nullptr);
    EXPECT_EQ(model.FindVar("{renamed}"), named);
    v->SetName("{renamed}"); // duplicates: the first in list order wins
    EXPECT_EQ(model.FindVar("{renamed}"), named);
    model.RemoveVar(named);
    EXPECT_EQ(model.FindVar("{renamed}"), v);
    // Direct appends by a reader are seen too.
    auto* c = new APCVar;
    c->SetModel(&model);
    model.GetVars().append(c);
    EXPECT_EQ(model.FindVar(c->GetName()), c);
}

// Counts its own destruction, so a test can tell who deleted it and how often.
template <class T>
struct Counted : T
{
    explicit Counted(int& deaths) : deaths(deaths) {}
    ~Counted() override { ++deaths; }
    int& deaths;
};

TEST_F(ModelDocument, RemovedObjectsBelongToTheCallerWithOrWithoutAListener)
{
    // No listener at all: what leaves a list is the caller's to delete, and the
    // model must not delete it a second time when it dies.
    int processDeaths = 0, varDeaths = 0, arrowDeaths = 0;
    APCProcess* process = nullptr;
    APCVar* var = nullptr;
    APCArrow* arrow = nullptr;
    {
        APCModel model;
        process = AddAlgo(model, "test.copyText");
        var = new Counted<APCVar>(varDeaths);
        arrow = new Counted<APCArrow>(arrowDeaths);
        model.AddVar(var);
        model.AddArrow(arrow);
        auto* owned = new Counted<APCVar>(processDeaths);
        model.AddVar(owned); // stays: the model deletes it
        model.RemoveVar(var);
        model.RemoveArrow(arrow);
        const QList<APCArrow*> wired = model.GetArrows();
        model.RemoveProcess(process);
        EXPECT_TRUE(model.GetArrows().isEmpty());
        qDeleteAll(wired); // the process's arrows went with it, to the caller too
    }
    EXPECT_EQ(processDeaths, 1);
    EXPECT_EQ(varDeaths, 0);
    EXPECT_EQ(arrowDeaths, 0);
    delete process;
    delete var;
    delete arrow;
    EXPECT_EQ(varDeaths, 1);
    EXPECT_EQ(arrowDeaths, 1);

    // A bin keeps what leaves, valid for every listener, and frees it once.
    varDeaths = 0;
    {
        APCModel model;
        auto bin = std::make_unique<RemovedObjectBin>(model);
        var = new Counted<APCVar>(varDeaths);
        model.AddVar(var);
        model.RemoveVar(var);
        EXPECT_EQ(varDeaths, 0);
        EXPECT_EQ(bin->Size(), 1);
        bin.reset();
        EXPECT_EQ(varDeaths, 1);
    }
    EXPECT_EQ(varDeaths, 1);
}

TEST_F(ModelDocument, AlgoTakesTheCatalogueAndKeepsStoredValues)
{
    APCAlgo step;
    APCParameter stored;
    stored.name = "In File";
    stored.type = "stored type";
    stored.description = "stored description";
    stored.value = "/kept.txt";
    APCParameter extra;
    extra.name = "Gone";
    step.GetParameters() << stored << extra;
    step.SetDescription("old");
    step.SetPainter(R"({"width":"10.000000", "height":"10.000000"})");
    step.SetProcessName("test.copyText");

    EXPECT_EQ(step.GetDescription(), "Copy text file");
    EXPECT_TRUE(step.GetPainter().isEmpty());
    ASSERT_EQ(step.GetParameters().size(), 3);
    const APCParameter in = step.GetParameter("In File");
    EXPECT_EQ(in.value, "/kept.txt");
    EXPECT_EQ(in.type, "stored type");
    EXPECT_EQ(in.description, "stored description");
    EXPECT_EQ(in.typeParam, R"({"direction":"0"})");
    EXPECT_EQ(step.GetParameter("Gone").name, "Gone");
    EXPECT_EQ(step.GetParameters()[2].name, "Out File");

    APCAlgo unknown;
    unknown.SetDescription("mine");
    unknown.SetProcessName("not.installed");
    EXPECT_EQ(unknown.GetDescription(), "mine");
    EXPECT_TRUE(unknown.GetProcessName().isEmpty());
}

// A paste with no window: new ids, the arrows the parameters imply, references to
// vars left behind emptied, unknown kinds and broken text left out, no signal.
TEST_F(ModelDocument, PastedFragmentsComeInWithNewIdsAndTheirArrows)
{
    const QString var = R"(<Var class="file" name="{v}" description="In" posX="0" posY="0" painter="" constant="1" value="a.tif"/>)";
    const QString step = R"(<Process class="algo" name="{p}" description="Step" posX="100" posY="0" painter="" processName="local.x">
        <Parameter name="In" type="file" direction="0" value="%{v}%" description="In"/>
        <Parameter name="Other" type="file" direction="0" value="%{gone}%" description="Other"/>
        <Parameter name="Out" type="file" direction="1" value="%{v}%" description="Out"/>
    </Process>)";
    const QString unknown = R"(<Process class="no such kind" name="{u}"/>)";
    struct Case { const char* name; QString text; int processes, vars, arrows; };
    const Case cases[] = {
        {"a step with its var", var + step + unknown, 1, 1, 2},
        {"a step without its var", step, 1, 0, 0},
        {"no XML", "<Var", 0, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TestSupport::HeadlessModel model;
        SignalCounter heard(model);
        const QList<APCObject*> pasted = model.PasteFragment(c.text, QPointF(20, 20));
        EXPECT_EQ(model.GetProcesses().size(), c.processes);
        EXPECT_EQ(model.GetVars().size(), c.vars);
        EXPECT_EQ(model.GetArrows().size(), c.arrows);
        EXPECT_EQ(pasted.size(), c.processes + c.vars + c.arrows);
        EXPECT_EQ(heard.processes.added + heard.vars.added + heard.arrows.added, 0);
        if (c.processes == 0)
            continue;
        APCProcess* p = model.GetProcesses().first();
        EXPECT_NE(p->GetName(), "{p}");
        EXPECT_EQ(p->GetPos(), QPointF(120, 20));
        EXPECT_EQ(p->GetParameter("Other").value, "");
        const QString in = c.vars ? "%" + model.GetVars().first()->GetName() + "%" : QString();
        EXPECT_EQ(p->GetParameter("In").value, in);
        EXPECT_EQ(dynamic_cast<APCObject*>(p), pasted.value(c.vars)); // vars first, then steps, then arrows
    }
}
