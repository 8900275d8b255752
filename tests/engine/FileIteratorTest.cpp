#include "engine/APCFileIterator.h"
#include "engine/APCIterator.h"
#include "engine/APCRasterFileIterator.h"
#include "engine/APCVectorFileIterator.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

using namespace Plugin;

namespace {

void setParam(APCProcess& p, const QString& name, const QString& value)
{
    for (APCParameter& param : p.GetParameters())
        if (param.name == name)
            param.value = value;
}

QString dirs(const QStringList& entries)
{
    return "{" + entries.join(",") + "}";
}

QString dirEntry(const QString& path, const char* subdir = "0", const char* enabled = "1")
{
    return QStringLiteral(R"("%1":{"subdir":"%2","enabled":"%3"})").arg(path, subdir, enabled);
}

// Rounds as "key=name" strings, one line per round, for compact comparison.
QStringList describe(const QList<QMap<QString, QString>>& rounds)
{
    QStringList lines;
    for (const auto& round : rounds) {
        QStringList parts;
        for (auto it = round.begin(); it != round.end(); ++it)
            parts << it.key() + "=" + QFileInfo(it.value()).fileName();
        lines << parts.join(" ");
    }
    return lines;
}

} // namespace

TEST(FileIterator, ConstructionMakesItsParametersAndOutputs)
{
    APCRasterFileIterator raster;
    EXPECT_EQ(raster.GetParameters()[1].value, R"({"Out File":"*.tif;*.tiff"})");
    EXPECT_EQ(raster.GetParameters()[2].direction, 1);
    EXPECT_EQ(APCVectorFileIterator().GetParameter("strFilter").value, R"({"Out File":"*.shp;*.000"})");

    // A new filter replaces the outputs; a "%" filter is left for the run.
    setParam(raster, "strFilter", R"({"B":"*_b.tif","A":"*_a.tif"})");
    EXPECT_TRUE(raster.RefreshOutputs());
    QStringList names;
    for (const APCParameter& p : raster.GetParameters())
        names << p.name;
    EXPECT_EQ(names, (QStringList{"strDir", "strFilter", "A", "B"}));
    setParam(raster, "strFilter", "%{var}%");
    EXPECT_FALSE(raster.RefreshOutputs());
    EXPECT_EQ(raster.GetParameters().size(), 4);

    EXPECT_FALSE(raster.Check()); // no directory yet
    std::unique_ptr<APCObject> clone(raster.Clone());
    EXPECT_EQ(static_cast<APCProcess*>(clone.get())->GetParameters().size(), 4);
    // Every kind of iterator clones as its own kind: a run works on clones.
    APCVectorFileIterator vector;
    APCIterator plain;
    for (APCProcess* original : {static_cast<APCProcess*>(&vector), static_cast<APCProcess*>(&plain)}) {
        std::unique_ptr<APCObject> copy(original->Clone());
        EXPECT_EQ(typeid(*copy), typeid(*original));
    }
}

TEST(FileIterator, PairsFilesThroughTheirWildcardsAndNamesThoseLeftOut)
{
    QTemporaryDir tmp;
    QDir root(tmp.path());
    struct Case
    {
        const char* name;
        QStringList files; // relative to the case's folder
        QString filter;
        const char* subdir;
        QStringList rounds;
        QStringList leftOut; // matched by a filter, in no round
    };
    const std::vector<Case> cases = {
        {"one output", {"a1.tif", "a2.tif", "a3.tif", "x.txt"}, R"({"Out File":"*.tif"})", "0",
         {"Out File=a1.tif", "Out File=a2.tif", "Out File=a3.tif"}, {}},
        {"suffix case is ignored in capturing", {"a.TIF"}, R"({"Out File":"*.tif;*.TIF"})", "0", {"Out File=a.TIF"}, {}},
        {"missing partner drops the round", {"x_a.tif", "x_b.tif", "y_a.tif"}, R"({"A":"*_a.tif","B":"*_b.tif"})", "0",
         {"A=x_a.tif B=x_b.tif"}, {"y_a.tif"}},
        {"band and mask by scene number", {"S2_B7.tif", "S2_B8.tif", "M_7.tif", "M_8.tif"},
         R"({"Band":"S2_B*.tif","Mask":"M_*.tif"})", "0", {"Band=S2_B7.tif Mask=M_7.tif", "Band=S2_B8.tif Mask=M_8.tif"}, {}},
        {"the first sorted key drives", {"p_1.tif", "q_1.tif", "q_2.tif"}, R"({"Z":"q_*.tif","A":"p_*.tif"})", "0",
         {"A=p_1.tif Z=q_1.tif"}, {"q_2.tif"}},
        {"a silent wildcard is not used for pairing", {"img01_x.tif", "img01_y.tif", "ref01.tif"},
         R"({"A":"img*_**.tif","B":"ref*.tif"})", "0", {"A=img01_x.tif B=ref01.tif", "A=img01_x.tif B=ref01.tif"},
         {"img01_y.tif"}},
        {"a name shadowed by a longer one", {"x10_b.tif", "x10_a.tif", "x1_a.tif", "x1_b.tif"},
         R"({"A":"*_a.tif","B":"*_b.tif"})", "0", {"A=x10_a.tif B=x10_b.tif", "A=x10_a.tif B=x10_b.tif"}, {"x1_a.tif", "x1_b.tif"}},
        {"the default filter yields nothing", {"a.tif"}, R"({"Out File":"*.*"})", "0", {}, {"a.tif"}},
        {"subdirectories only when asked", {"top.tif", "sub/deep.tif"}, R"({"Out File":"*.tif"})", "0", {"Out File=top.tif"}, {}},
        {"subdirectories after the folder's own files", {"top.tif", "sub/deep.tif"}, R"({"Out File":"*.tif"})", "1",
         {"Out File=top.tif", "Out File=deep.tif"}, {}},
        {"hidden files are left out, not iterated", {"a.tif", ".b.tif", ".c.txt", "sub/.d.tif"}, R"({"Out File":"*.tif"})", "1",
         {"Out File=a.tif"}, {".b.tif", ".d.tif"}},
    };
    int index = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString folder = root.filePath(QString::number(index++));
        for (const QString& f : c.files) {
            QDir().mkpath(QFileInfo(folder + "/" + f).path());
            TestSupport::WriteAll(folder + "/" + f, "x");
        }
        APCRasterFileIterator it;
        setParam(it, "strDir", dirs({dirEntry(folder, c.subdir)}));
        setParam(it, "strFilter", c.filter);
        EXPECT_TRUE(it.BuildRounds());
        EXPECT_EQ(describe(it.GetRounds()), c.rounds);
        QStringList leftOut;
        for (const QString& f : it.TakeUnusedFiles())
            leftOut << QFileInfo(f).fileName();
        EXPECT_EQ(leftOut, c.leftOut);
        EXPECT_TRUE(it.TakeUnusedFiles().isEmpty()); // handed over once per scan
    }
}

TEST(FileIterator, DirectoriesThatAreDisabledMissingListedTwiceOrUnreadable)
{
    QTemporaryDir tmp;
    TestSupport::WriteAll(tmp.filePath("a.tif"), "x");
    struct Case { const char* name; QString strDir; int rounds; bool built; };
    const std::vector<Case> cases = {
        {"enabled", dirs({dirEntry(tmp.path())}), 1, true},
        {"disabled", dirs({dirEntry(tmp.path(), "0", "0")}), 0, true},
        {"enabled missing", QStringLiteral(R"({"%1":{"subdir":"0"}})").arg(tmp.path()), 0, true},
        {"missing folder", dirs({dirEntry(tmp.filePath("nope"))}), 0, true},
        {"same folder twice", dirs({dirEntry(tmp.path()), dirEntry(tmp.path() + "/")}), 2, true},
        {"not JSON", "not json", 0, false},
        {"empty", "", 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        APCRasterFileIterator it;
        setParam(it, "strDir", c.strDir);
        EXPECT_EQ(it.BuildRounds(), c.built);
        EXPECT_EQ(it.GetRounds().size(), c.rounds);
    }

    // What cannot be read fails the step with a message, not as the end of the iteration.
    struct Failure { const char* name; QString strDir; QString inMessage; };
    const std::vector<Failure> failures = {
        {"an output wired to no var", dirs({dirEntry(tmp.path())}), "Out File"},
        {"a setting naming a missing var", "%{not-in-the-model}%", "{not-in-the-model}"},
    };
    for (const Failure& c : failures) {
        SCOPED_TRACE(c.name);
        APCModel model;
        auto* it = new APCRasterFileIterator;
        setParam(*it, "strDir", c.strDir);
        model.GetProcesses().append(it);
        it->SetModel(&model);
        EXPECT_FALSE(it->Execute());
        int code = 0;
        QString message;
        it->GetError(code, message);
        EXPECT_EQ(code, -2);
        EXPECT_TRUE(message.contains(c.inMessage)) << qPrintable(message);
        EXPECT_FALSE(it->IsEnded()); // a failure, logged as such, not the end of the iteration
    }
}

TEST(FileIterator, ExecuteHandsOutRoundsThenReportsTheEnd)
{
    QTemporaryDir tmp;
    for (const char* f : {"a.tif", "b.tif", "c.tif"})
        TestSupport::WriteAll(tmp.filePath(f), "x");
    APCModel model;
    auto* it = new APCRasterFileIterator;
    model.AddProcess(it);
    APCVar* dirVar = model.GetVars()[0];
    APCVar* out = model.GetVars()[1];
    // Settings through a "%" reference are read from the var's run value.
    dirVar->SetRunValue(dirs({dirEntry(tmp.path())}));
    std::vector<double> progress;
    it->Progress.connect([&](double v, const QString&, void*) { progress.push_back(v); return 0; });
    QStringList seen;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(it->Execute());
        seen << QFileInfo(out->GetRunValue()).fileName();
        EXPECT_EQ(it->GetIteratorState(), 1);
    }
    EXPECT_EQ(seen, (QStringList{"a.tif", "b.tif", "c.tif"}));
    EXPECT_FALSE(it->Execute());
    int code = 0;
    QString message;
    it->GetError(code, message);
    EXPECT_EQ(code, -1);
    EXPECT_EQ(message, "End of the iteration");
    EXPECT_TRUE(it->IsSucceeded());
    EXPECT_TRUE(it->IsEnded());
    EXPECT_FALSE(it->Execute()); // no way back from the end
    ASSERT_EQ(progress.size(), 5u);
    EXPECT_NEAR(progress[0], 100.0 / 3, 1e-9);
    EXPECT_NEAR(progress[1], 200.0 / 3, 1e-9);
    EXPECT_EQ(progress[2], 100.0);
    EXPECT_EQ(progress[3], 100.0);
}
