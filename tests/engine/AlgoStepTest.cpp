#include "engine/APCAlgo.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "support/ModelFixtures.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Plugin;
using namespace TestSupport;

namespace {

APCParameter param(const QString& name, const QString& value, const QString& description = QString())
{
    APCParameter p;
    p.name = name;
    p.value = value;
    p.description = description.isEmpty() ? name : description;
    return p;
}

} // namespace

TEST(AlgoStep, TheThreeTextFormsOfTheParametersAndTheDialogsTextReadBack)
{
    TestSupport::HeadlessModel model;
    auto* var = new APCVar;
    var->SetName("{a1}");
    model.AddVar(var);
    var->SetRunValue("c:/d/a.tif");
    auto* step = new APCAlgo;
    step->GetParameters() << param("In File", "%{a1}%") << param("Out File", "c:/d/\"b\".tif");
    model.GetProcesses().append(step);
    step->SetModel(&model);

    EXPECT_EQ(step->ExecutionText(), R"({"In File":"c:/d/a.tif","Out File":"c:/d/\"b\".tif"})");
    EXPECT_EQ(step->DialogText(), R"({"In File":"%{a1}%", "Out File":"c:/d/\"b\".tif"})");

    struct Case { const char* name; QString value; QString sent; };
    var->SetRunValue("x\\y\nz é");
    const std::vector<Case> cases = {
        {"percent later in the text is sent as it stands", "50% of %{a1}%", "50% of %{a1}%"},
        {"backslashes, line ends and non-ASCII are not escaped", "%{a1}%", "x\\y\nz é"},
        {"a reference to an unknown var sends nothing", "%{nobody}%", ""},
        {"%% looks up an empty id", "%%", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        step->GetParameters()[0].value = c.value;
        step->GetParameters()[1].value = "o";
        EXPECT_EQ(step->ExecutionText(), "{\"In File\":\"" + c.sent + "\",\"Out File\":\"o\"}");
    }

    APCAlgo none;
    EXPECT_EQ(none.ExecutionText(), "{}");
    EXPECT_EQ(none.DialogText(), "");

    // The dialog's text read back: a reference kept, a literal typed, whose arrow goes.
    APCAlgo* dialog = AddAlgo(model, "test.copyText");
    const QString before = dialog->GetParameter("In File").value;
    EXPECT_FALSE(dialog->ApplyDialogResult("not json"));
    EXPECT_FALSE(dialog->ApplyDialogResult("[1,2]"));
    EXPECT_EQ(dialog->GetParameter("In File").value, before);
    ASSERT_TRUE(dialog->ApplyDialogResult(QStringLiteral(R"({"In File":"%1","Out File":"/tmp/out.txt"})").arg(before)));
    EXPECT_EQ(model.ArrowsOfProcess(dialog, "In File").size(), 1);
    EXPECT_TRUE(model.ArrowsOfProcess(dialog, "Out File").isEmpty());
    EXPECT_EQ(dialog->GetParameter("In File").value, before);
}

TEST(AlgoStep, ExecuteTakesOverTheRunnersErrorAndProgress)
{
    TestSupport::HeadlessModel model;
    APCAlgo* fail = AddAlgo(model, "test.fail");
    SetLiteral(model, fail, "Code", "42");
    SetLiteral(model, fail, "Message", "broken \"input\"");
    EXPECT_FALSE(fail->Execute());
    int code = 0;
    QString message;
    fail->GetError(code, message);
    EXPECT_EQ(code, 42);
    EXPECT_EQ(message, "broken \"input\"");
    EXPECT_FALSE(fail->IsSucceeded());

    APCAlgo* progress = AddAlgo(model, "test.progress");
    std::vector<double> seen;
    void* user = nullptr;
    progress->Progress.connect([&](double v, const QString&, void* u) { seen.push_back(v); user = u; return 1; });
    EXPECT_TRUE(progress->Execute());
    EXPECT_EQ(seen, (std::vector<double>{25, 50, 75, 100}));
    EXPECT_EQ(user, progress);
    EXPECT_TRUE(progress->IsSucceeded());

    // A clone has a run record of its own: its errors do not reach the source.
    std::unique_ptr<APCAlgo> clone(static_cast<APCAlgo*>(fail->Clone()));
    EXPECT_EQ(clone->GetName(), fail->GetName());
    for (APCParameter& p : clone->GetParameters())
        if (p.name == "Code")
            p.value = "7";
    clone->Execute();
    clone->GetError(code, message);
    EXPECT_EQ(code, 7);
    fail->GetError(code, message);
    EXPECT_EQ(code, 42);
}
