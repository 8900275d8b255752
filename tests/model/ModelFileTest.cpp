#include "engine/APCAlgo.h"
#include "engine/APCModelFile.h"
#include "engine/APCRasterFileIterator.h"
#include "engine/APCVectorFileIterator.h"
#include "model/APCProcess.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/WholeFile.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QXmlStreamWriter>
#include <gtest/gtest.h>

using namespace Plugin;
using TestSupport::ReadAll;
using TestSupport::WriteAll;

namespace {

const QByteArray kDeclaration = R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>)";

QByteArray gb(const QString& text)
{
    return QTextCodec::codecForName("gb2312")->fromUnicode(text);
}

// A model with a step of each kind of object and odd positions.
void fill(APCModel& model)
{
    APCAlgo* step = TestSupport::AddAlgo(model, "test.copyText", 12.3456789, -4);
    TestSupport::SetConstant(TestSupport::VarOf(model, step, "In File"), "/in/数据.txt");
    APCVar* out = TestSupport::VarOf(model, step, "Out File");
    out->SetFunExp("$AppendSuffix(%" + TestSupport::VarOf(model, step, "In File")->GetName() + "%, '_x')");
    out->SetDescription("输出 \"quoted\" <b>&");
    auto* it = new APCRasterFileIterator;
    it->SetPos(QPointF(1e7 + 0.5, 3));
    model.AddProcess(it);
    APCAlgo* compressed = TestSupport::AddAlgo(model, "raster.translate");
    TestSupport::SetLiteral(model, compressed, "Creation options", "COMPRESS=DEFLATE;TILED=YES;PREDICTOR=2");
}

} // namespace

// A saved model loads and saves to the same bytes, in GB2312, with the attributes in
// the order and the presence the file rules give.
TEST(ModelFile, SaveLoadSaveIsByteIdentical)
{
    QTemporaryDir dir;
    APCModel model;
    ASSERT_TRUE(model.SaveFile(dir.filePath("empty.apc")));
    EXPECT_EQ(ReadAll(dir.filePath("empty.apc")), kDeclaration + "\n<Configuration>\n    <!--" + gb("算法") +
                                                      "-->\n    <Processes/>\n    <!--" + gb("数据") + "-->\n    <Vars/>\n    <!--" +
                                                      gb("依赖关系") + "-->\n    <Arrows/>\n</Configuration>\n");
    fill(model);
    // The stored value disagrees with the arrow: loading keeps it as stored.
    for (APCParameter& p : model.GetProcesses()[0]->GetParameters())
        if (p.name == "In File")
            p.value = "/literal";
    model.GetVars()[0]->SetFunExp("kept only on computed vars");
    model.GetVars()[1]->SetValue("kept only on constant vars");
    const QString first = dir.filePath("a.apc"), second = dir.filePath("b.apc"), third = dir.filePath("c.apc");
    ASSERT_TRUE(model.SaveFile(first));
    APCModel loaded;
    ASSERT_TRUE(loaded.LoadFile(first));
    ASSERT_TRUE(loaded.SaveFile(second));
    APCModel again;
    ASSERT_TRUE(again.LoadFile(second));
    ASSERT_TRUE(again.SaveFile(third));
    EXPECT_EQ(ReadAll(first), ReadAll(second));
    EXPECT_EQ(ReadAll(second), ReadAll(third));

    const QByteArray bytes = ReadAll(first);
    EXPECT_TRUE(bytes.startsWith(kDeclaration + "\n"));
    EXPECT_TRUE(bytes.contains(gb("输出")));  // Chinese text in GB2312 bytes
    EXPECT_FALSE(bytes.contains("\xe8\xbe\x93")); // not UTF-8

    ASSERT_EQ(loaded.GetVars().size(), 6); // two of each step, two of the iterator
    EXPECT_EQ(loaded.GetProcesses()[2]->GetParameter("Creation options").value, "COMPRESS=DEFLATE;TILED=YES;PREDICTOR=2");
    APCVar* out = loaded.GetVars()[1];
    EXPECT_EQ(out->GetDescription(), "输出 \"quoted\" <b>&");
    EXPECT_EQ(loaded.GetVars()[0]->GetValue(), "/in/数据.txt");
    EXPECT_EQ(loaded.GetProcesses()[0]->GetPos(), QPointF(12.3457, -4)); // six significant digits
    EXPECT_EQ(loaded.GetProcesses()[1]->GetPos().x(), 1e7);
    ASSERT_EQ(loaded.GetArrows().size(), model.GetArrows().size());
    EXPECT_EQ(loaded.GetArrows()[1]->GetTailParam(), "Out File");

    const QString text = QTextCodec::codecForName("gb2312")->toUnicode(bytes);
    EXPECT_FALSE(text.contains("kept only"));
    EXPECT_TRUE(text.contains(R"(<Var class="file" name=")")) << qPrintable(text);
    // Arrows: ends first, then the common attributes; the empty painter is written.
    EXPECT_TRUE(text.contains(QRegExp(R"(<Arrow head="[^"]+" headType="process" headParam="In File" tail="[^"]+" tailType="var" tailParam="" class="arrow" name="[^"]+" posX="0" posY="0" painter=""/>)")));
    // No description attribute when it is empty.
    EXPECT_TRUE(text.contains(QRegExp(R"(<Process class="RasterFileIterator" name="[^"]+" posX="1e\+07" posY="3" painter="" processName="">)")));
    EXPECT_TRUE(text.contains(QRegExp(R"(<Parameter name="strDir" type="multiDirectory" direction="0" value="%\{[^"]+\}%" description="MultiDirectory"/>)")));

    // Loading appends, without wiring and without a signal.
    APCModel twice;
    int emitted = 0;
    twice.arrowAdded.connect([&](APCArrow*) { ++emitted; });
    twice.varAdded.connect([&](APCVar*) { ++emitted; });
    ASSERT_TRUE(twice.LoadFile(first));
    ASSERT_TRUE(twice.LoadFile(first));
    EXPECT_EQ(emitted, 0);
    EXPECT_EQ(twice.GetProcesses().size(), 6);
    EXPECT_EQ(twice.GetVars().size(), 12);
    EXPECT_EQ(twice.GetProcesses()[0]->GetParameter("In File").value, "/literal");
    for (APCVar* v : twice.GetVars())
        EXPECT_EQ(v->GetModel(), &twice);
}

// withElement lets plain processes and vars write into an element their caller
// opened; algorithm steps, iterators and nested models always write their own.
TEST(ModelFile, WithElementFalseIsHonouredOnlyByPlainProcessesAndVars)
{
    auto written = [](APCObject* object) {
        QString text;
        QXmlStreamWriter writer(&text);
        writer.writeStartElement("Outer");
        object->WriteXml(writer, false);
        writer.writeEndElement();
        delete object;
        return text;
    };
    struct Case { const char* name; APCObject* object; bool ownElement; };
    auto* algo = new APCAlgo;
    algo->SetProcessName("test.copyText");
    const Case cases[] = {
        {"process", new APCProcess, false},
        {"var", new APCVar, false},
        {"algo", algo, true},
        {"nested model", new APCModelFile, true},
        {"iterator", new APCIterator, true},
        {"raster file iterator", new APCRasterFileIterator, true},
        {"vector file iterator", new APCVectorFileIterator, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString text = written(c.object);
        EXPECT_EQ(text.contains("<Process") || text.contains("<Var"), c.ownElement) << qPrintable(text);
    }
}

TEST(ModelFile, CharactersOutsideGb2312SurviveAndUnwritableOnesAreDropped)
{
    QTemporaryDir dir;
    APCModel model;
    auto* v = new APCVar;
    v->SetDescription(QString::fromUtf8("naïve café ❤ 𝄞 ü"));
    model.AddVar(v);
    ASSERT_TRUE(model.SaveFile(dir.filePath("x.apc")));
    const QByteArray bytes = ReadAll(dir.filePath("x.apc"));
    EXPECT_TRUE(bytes.contains("&#x1d11e;")) << bytes.constData(); // not two surrogate halves
    EXPECT_FALSE(bytes.contains("&#xd834;"));
    APCModel back;
    ASSERT_TRUE(back.LoadFile(dir.filePath("x.apc")));
    EXPECT_EQ(back.GetVars()[0]->GetDescription(), v->GetDescription());

    // Files of other writers name such characters in decimal or in hex; older
    // files of ours hold the two halves. All three read back the same.
    const QString globe = QString::fromUcs4(U"\U0001F30D");
    for (const char* reference : {"&#127757;", "&#x1F30D;", "&#xd83c;&#xdf0d;"}) {
        SCOPED_TRACE(reference);
        WriteAll(dir.filePath("r.apc"), kDeclaration + "\n<Configuration><Vars><Var class=\"string\" name=\"{v}\" "
                                        "description=\"a" + QByteArray(reference) + "b\" constant=\"1\" value=\"\"/>"
                                        "</Vars></Configuration>\n");
        APCModel read;
        ASSERT_TRUE(read.LoadFile(dir.filePath("r.apc")));
        ASSERT_EQ(read.GetVars().size(), 1);
        EXPECT_EQ(read.GetVars()[0]->GetDescription(), "a" + globe + "b");
    }

    // The DOM reader takes control characters and U+FFFF, as bytes or references,
    // which no save can write: read as they were, the saved model would mean another.
    const QString path = dir.filePath("c.apc");
    ASSERT_TRUE(WriteAll(path, kDeclaration + "\n<Configuration><Processes>"
        "<Process class=\"algo\" name=\"{p}\" posX=\"0\" posY=\"0\" processName=\"test.copy&#1;Text\"/></Processes>"
        "<Vars><Var class=\"file\" name=\"{v}\" constant=\"1\" value=\"a&#0;.\x02tif&#xFFFF;\"/></Vars></Configuration>"));
    APCModel cleaned;
    ASSERT_TRUE(cleaned.LoadFile(path));
    ASSERT_EQ(cleaned.GetProcesses().size() + cleaned.GetVars().size(), 2);
    EXPECT_EQ(cleaned.GetProcesses()[0]->GetDescription(), "Copy text file"); // found in the catalogue
    EXPECT_EQ(cleaned.GetVars()[0]->GetValue(), "a.tif");
}

TEST(ModelFile, ReadsGbkDeclarationAndDamagedInputSafely)
{
    QTemporaryDir dir;
    const QByteArray body = "<Configuration><Processes>"
                            "<Process class=\"algo\" name=\"{p}\" posX=\"x1\" posY=\"\" painter=\"{bad json\" processName=\"not.installed\">"
                            "<Parameter name=\"In\" type=\"file\" direction=\"one\" value=\"%{v}%\" description=\"" + gb("输入") + "\"/>"
                            "</Process><Process class=\"Unknown\" name=\"{u}\"/></Processes>"
                            "<Vars><Var class=\"file\" name=\"{v}\" constant=\"7\" value=\"c\"/><Var/></Vars>"
                            "<Arrows><Arrow head=\"{nobody}\" headType=\"process\"/></Arrows></Configuration>";
    struct Case { const char* name; QByteArray bytes; bool ok; int processes; };
    const std::vector<Case> cases = {
        {"GBK declaration", "<?xml version=\"1.0\" encoding=\"GBK\"?>" + body, true, 1},
        {"GB2312 declaration", kDeclaration + body, true, 1},
        {"not XML", "this is not xml <", false, 0},
        {"empty file", "", false, 0},
        {"wrong root", "<Model><Processes/></Model>", false, 0},
        {"truncated", (kDeclaration + body).left(120), false, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = dir.filePath("damaged.apc");
        ASSERT_TRUE(WriteAll(path, c.bytes));
        APCModel model;
        EXPECT_EQ(model.LoadFile(path), c.ok);
        EXPECT_EQ(model.GetProcesses().size(), c.processes);
        if (!c.ok)
            continue;
        APCProcess* p = model.GetProcesses()[0];
        EXPECT_EQ(p->GetPos(), QPointF(0, 0));
        EXPECT_EQ(p->GetParameters()[0].direction, 0);
        EXPECT_EQ(p->GetParameters()[0].description, "输入");
        EXPECT_EQ(p->GetPainter(), "{bad json"); // kept as stored: the algorithm is unknown
        ASSERT_EQ(model.GetVars().size(), 2);
        EXPECT_TRUE(model.GetVars()[0]->GetConstant());
        EXPECT_TRUE(model.GetVars()[1]->GetName().isEmpty()); // a missing name empties the id
        EXPECT_EQ(model.GetArrows().size(), 1);
        EXPECT_EQ(model.GetArrows()[0]->GetClass(), "arrow");
    }
    APCModel model;
    EXPECT_FALSE(model.LoadFile(dir.filePath("does-not-exist.apc")));
    EXPECT_FALSE(model.SaveFile(dir.filePath("no/such/dir/x.apc")));
}

// The tool box imports and exports models by copying them whole: a copy that
// cannot be made says why and leaves no file behind.
TEST(ModelFile, CopiesAreWholeOrNothing)
{
    QTemporaryDir dir;
    const QByteArray text(200000, 'x'); // more than one chunk
    ASSERT_TRUE(WriteAll(dir.filePath("a.apc"), text));
    QString error;
    EXPECT_TRUE(WholeFile::Copy(dir.filePath("a.apc"), dir.filePath("b.apc"), &error)) << qPrintable(error);
    EXPECT_EQ(ReadAll(dir.filePath("b.apc")), text);
    EXPECT_FALSE(WholeFile::Copy(dir.filePath("none.apc"), dir.filePath("c.apc"), &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(WholeFile::Copy(dir.filePath("a.apc"), dir.filePath("no/such/folder/d.apc"), &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList({"a.apc", "b.apc"}));
}
