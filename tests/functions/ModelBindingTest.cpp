// Expressions bound to the vars of a real model: computed vars resolved by the
// model's fixed-point loop, binding only at SetModel, and parsed expressions
// shared between a var and its clones.
#include "functions/APCFun.h"
#include "model/APCModel.h"
#include "model/APCVar.h"

#include <QMap>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Plugin;

namespace {

// Adds a var: "=text" makes a constant of text, any other text is an expression.
APCVar* AddVar(APCModel& model, const QString& id, const QString& text)
{
    auto* var = new APCVar;
    var->SetName(id);
    if (text.startsWith('=')) {
        var->SetConstant(true);
        var->SetValue(text.mid(1));
    } else {
        var->SetFunExp(text);
    }
    model.AddVar(var);
    return var;
}

TEST(ExpressionBinding, ResolvesComputedVars)
{
    struct Case
    {
        const char* name;
        // Ids and texts in list order: "=text" is a constant, anything else an expression.
        QList<QPair<QString, QString>> vars;
        bool resolved;
        QMap<QString, QString> values;
    };
    const Case cases[] = {
        {"chain",
         {{"{a}", "=c:/data/x.tif"},
          {"{b}", "$AppendSuffix(%{a}%, '_x')"},
          {"{c}", "$ReplaceExtension(%{b}%, 'xml')"}},
         true,
         {{"{b}", "c:/data/x_x.tif"}, {"{c}", "c:/data/x_x.xml"}}},
        {"nested with vars",
         {{"{a}", "=c:/data/x.tif"}, {"{d}", "=c:/out"}, {"{e}", "$ReplaceDirectory(%{d}%, $AppendSuffix(%{a}%, '_1'))"}},
         true,
         {{"{e}", "c:/out/x_1.tif"}}},
        {"no var named", {{"{g}", "$AppendSuffix('c:/t/y.tif', '_n')"}}, true, {{"{g}", "c:/t/y_n.tif"}}},
        // The model's scan reads '%x%' inside a literal as a var id.
        {"percent signs in a literal, no such var",
         {{"{a}", "=c:/data/x.tif"}, {"{f}", "$AppendSuffix(%{a}%, '%x%')"}},
         false,
         {{"{f}", ""}}},
        {"percent signs in a literal, var exists",
         {{"{a}", "=c:/data/x.tif"}, {"x", "=1"}, {"{f}", "$AppendSuffix(%{a}%, '%x%')"}},
         true,
         {{"{f}", "c:/data/x%x%.tif"}}},
        {"missing var", {{"{i}", "$AppendSuffix(%{zz}%, '_x')"}}, false, {{"{i}", ""}}},
        {"invalid expression", {{"{a}", "=c:/data/x.tif"}, {"{h}", "$AppendSuffix(%{a}%)"}}, false, {{"{h}", ""}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        APCModel model;
        for (const auto& v : c.vars)
            AddVar(model, v.first, v.second);
        EXPECT_EQ(model.ResolveVarValues({}), c.resolved);
        for (auto it = c.values.constBegin(); it != c.values.constEnd(); ++it) {
            APCVar* var = model.FindVar(it.key());
            ASSERT_NE(var, nullptr);
            EXPECT_EQ(var->GetRunValue().toStdString(), it.value().toStdString()) << it.key().toStdString();
        }
    }
}

// A reference is bound when the expression gets its model; a var added later is
// seen only after binding again.
TEST(ExpressionBinding, BindsOnlyAtSetModelAndClonesShareTheExpression)
{
    APCModel model;
    AddVar(model, "{a}", "=c:/data/x.tif");
    APCVar* c = AddVar(model, "{c}", "$ReplaceDirectory('c:/out', %{b}%)");
    APCVar* source = AddVar(model, "{b}", "$AppendSuffix(%{a}%, '_x')");
    EXPECT_FALSE(model.ResolveVarValues({}));
    EXPECT_EQ(c->GetRunValue(), "");

    c->SetModel(&model);
    model.ResetVarValues();
    EXPECT_TRUE(model.ResolveVarValues({}));
    EXPECT_EQ(c->GetRunValue(), "c:/out/x_x.tif");

    // A fresh expression on a var of the model binds at once.
    c->SetFunExp("$AppendSuffix(%{b}%, '_y')");
    EXPECT_EQ(c->GetFun()->Evaluate(), "c:/data/x_x_y.tif");

    // Clones of {b} share its parsed expression, whatever order they go in.
    std::vector<int> order = {0, 1, 2, 3};
    do {
        std::vector<std::unique_ptr<APCVar>> vars;
        vars.emplace_back(static_cast<APCVar*>(source->Clone()));
        vars.emplace_back(new APCVar(*vars.front()));
        vars.emplace_back(static_cast<APCVar*>(vars.back()->Clone()));
        vars.emplace_back(new APCVar);
        *vars.back() = *vars.front();
        for (const auto& v : vars)
            ASSERT_EQ(v->GetFun(), source->GetFun());
        for (int i : order) {
            vars[i].reset();
            for (const auto& left : vars) {
                if (left) {
                    EXPECT_EQ(left->GetFun()->Evaluate(), "c:/data/x_x.tif");
                }
            }
        }
    } while (std::next_permutation(order.begin(), order.end()));
    EXPECT_EQ(source->GetFun()->Evaluate(), "c:/data/x_x.tif");

    // Replacing the source's expression leaves a clone's copy intact.
    std::unique_ptr<APCVar> clone(static_cast<APCVar*>(source->Clone()));
    source->SetFunExp("$ReplaceExtension(%{a}%, 'xml')");
    EXPECT_EQ(clone->GetFun()->Evaluate(), "c:/data/x_x.tif");
    EXPECT_EQ(source->GetFun()->Evaluate(), "c:/data/x.xml");
}

} // namespace
