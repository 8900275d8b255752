// The property dialogs driven as a user drives them: rows chosen, text typed,
// radio buttons and buttons clicked, refusals answered. The function dialog, the
// var dialog and Add Variable; the dialogs of arrows, file iterators and nested
// model steps on a model open in its window, read back from the model; and the
// double click on each kind of object that opens its dialog.
#include "HostCatalogGui/DataTypeWidget.h"
#include "HostShell/EnvironmentSetting.h"
#include "dialogs/APCArrowDlg.h"
#include "dialogs/APCFileIteratorDlg.h"
#include "dialogs/APCFunctionDlg.h"
#include "dialogs/APCModelFileDlg.h"
#include "dialogs/APCVarDlg.h"
#include "dialogs/VarAddDlg.h"
#include "editor/GraphicsItemBase.h"
#include "editor/ModelCommandManager.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "engine/APCAlgo.h"
#include "engine/APCModelFile.h"
#include "engine/APCRasterFileIterator.h"
#include "engine/SequenceControl.h"
#include "functions/APCFun.h"
#include "functions/FunctionInfo.h"
#include "model/APCArrow.h"
#include "model/APCVar.h"
#include "model/APCVarFactory.h"
#include "support/CanvasDriver.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QGraphicsItem>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace Plugin;
using GuiDriver::Child;
using GuiDriver::Choose;
using GuiDriver::Click;
using GuiDriver::OnNextModal;
using GuiDriver::Retype;

namespace {

// Where a user clicks the row whose text is text (the list must be on screen).
QPoint rowCentre(QListWidget* list, const QString& text)
{
    const QList<QListWidgetItem*> found = list->findItems(text, Qt::MatchExactly);
    EXPECT_EQ(found.size(), 1) << text.toStdString();
    list->scrollToItem(found.value(0));
    return found.isEmpty() ? QPoint() : list->visualItemRect(found.first()).center();
}

QStringList rowTexts(QListWidget* list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts << list->item(i)->text();
    return texts;
}

// Runs dialog modally; act is what the user does in it (it must end it).
int runModal(QDialog& dialog, std::function<void(QDialog*)> act)
{
    OnNextModal([&dialog, act](QWidget* w) {
        ASSERT_EQ(w, &dialog);
        act(&dialog);
    });
    return dialog.exec();
}

DataTypeWidget* valueWidget(QWidget* dialog) { return Child<DataTypeWidget>(dialog, "valueWidget"); }
QLineEdit* valueEdit(QWidget* dialog) { return valueWidget(dialog)->findChild<QLineEdit*>(); }

APCVar* addVar(APCModel& model, const QString& id, const QString& type, const QString& description)
{
    APCVar* var = APCVarFactory::Instance()->Create(type);
    var->SetName(id);
    var->SetDescription(description);
    model.AddVar(var);
    return var;
}

// What the model told its listeners, one label per signal, sorted: "arrow~", "var+"...
class ChangeLog
{
public:
    explicit ChangeLog(APCModel& m)
    {
        watch(m.processAdded, m.processChanged, m.processRemoved, "process");
        watch(m.varAdded, m.varChanged, m.varRemoved, "var");
        watch(m.arrowAdded, m.arrowChanged, m.arrowRemoved, "arrow");
    }
    QStringList Sorted() const { QStringList s = m_seen; s.sort(); return s; }

private:
    template <class Signal> void watch(Signal& added, Signal& changed, Signal& removed, const QString& kind)
    {
        for (auto [signal, sign] : {std::pair(&added, "+"), std::pair(&changed, "~"), std::pair(&removed, "-")})
            m_connections.emplace_back(signal->connect([this, label = kind + sign](auto*) { m_seen << label; }));
    }
    QStringList m_seen;
    std::vector<boost::signals2::scoped_connection> m_connections;
};

// The rows of a combo box, the current one marked with "*".
QString rows(QWidget* dialog, const char* name)
{
    auto* combo = Child<QComboBox>(dialog, name);
    QStringList rows;
    for (int i = 0; i < combo->count(); ++i)
        rows << (i == combo->currentIndex() ? "*" : "") + combo->itemText(i);
    return rows.join('|');
}

// Types into a table cell, opened with a click and F2 unless its editor is open.
void typeInCell(QTableWidget* table, int row, int column, const QString& text)
{
    const QModelIndex index = table->model()->index(row, column);
    if (!table->indexWidget(index)) {
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(index).center());
        QTest::keyClick(table, Qt::Key_F2);
    }
    auto* editor = qobject_cast<QLineEdit*>(table->indexWidget(index));
    Retype(editor, text);
    if (editor)
        QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents(); // the table takes the edit in a queued call
}

// A JSON object text in one form (keys sorted, compact), so that texts compare;
// any other text as it is.
QString json(const QString& text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    return document.isObject() ? QJsonDocument(document.object()).toJson(QJsonDocument::Compact) : text;
}

// text with every id of the model's objects replaced by that object's description.
QString describe(APCModel& model, QString text)
{
    for (APCProcess* o : model.GetProcesses())
        text.replace(o->GetName(), o->GetDescription());
    for (APCVar* o : model.GetVars())
        text.replace(o->GetName(), o->GetDescription());
    return text;
}

// The parameters as "description=value", ids described.
QStringList values(APCModel& model, APCProcess* process, bool outputsOnly = false)
{
    QStringList result;
    for (const APCParameter& p : process->GetParameters())
        if (!outputsOnly || p.direction == 1)
            result << p.description + '=' + describe(model, p.value);
    return result;
}

// Runs the dialog with the user's actions inside it, and applies what was accepted,
// as the double click does.
int runAndApply(APCObjectDialog& dialog, const std::function<void()>& user)
{
    const int result = runModal(dialog, [&](QDialog*) { user(); });
    if (result == QDialog::Accepted)
        dialog.Apply();
    return result;
}

APCModelFile* addNestedStep(APCModel& m)
{
    auto* step = new APCModelFile;
    step->SetClass("model");
    step->SetProcessName("Model/apc/inner.apc");
    m.AddProcess(step);
    return step;
}

// The item of the first object of that kind ("process:<class>", "var", "arrow").
QGraphicsItem* itemOfKind(ModelControler& window, const QString& kind)
{
    for (QGraphicsItem* item : window.GetView()->scene()->items()) {
        auto* base = dynamic_cast<GraphicsItemBase*>(item);
        APCObject* object = base ? base->GetObject() : nullptr;
        if (!object)
            continue;
        const QString type = APCModel::ObjectType(object);
        const QString found = type == "process" ? "process:" + object->GetClass() : type.isEmpty() ? "arrow" : type;
        if (found == kind)
            return item;
    }
    return nullptr;
}

} // namespace

// ---------------------------------------------------------------------------
// APCFunctionDlg

// It opens on the first sorted function with the vars listed by description; a
// double click on a var or its context menu puts "%" + id + "%" at the cursor, and
// a click on a var shows its help.
TEST(FunctionDialog, ListsFunctionsAndVarsAndPutsAVarReferenceAtTheCursor)
{
    TestSupport::HeadlessModel model;
    addVar(model, "{s}", "file", "Scene");
    addVar(model, "{i}", "file", "Input");
    addVar(model, "{o}", "filePath", "Output");
    APCFunctionDlg dialog(APCFun::GetFunctionList(), model.GetVars(), nullptr);

    auto* functions = Child<QListWidget>(&dialog, "functionList");
    EXPECT_EQ(rowTexts(functions),
              QStringList({"$APCFun_UnionFilePath", "$AppendSuffix", "$ReplaceDirectory", "$ReplaceExtension",
                           "$ReplaceSuffix", "$SelectDirectory", "$SelectDirectory2", "$SubDirectory"}));
    EXPECT_TRUE(functions->item(0)->isSelected());

    auto* vars = Child<QListWidget>(&dialog, "varList");
    EXPECT_EQ(rowTexts(vars), QStringList({"Input", "Output", "Scene"}));

    // The help of the first function, not of the first var: the signals were connected after the filling.
    auto* help = Child<QTextEdit>(&dialog, "helpEdit");
    const QString first = help->toPlainText();
    EXPECT_TRUE(first.startsWith("Name:$UnionFilePath(%filePath1%, %filePath2%, '_')\n")) << qPrintable(first);
    EXPECT_TRUE(first.contains("separator + the file extension.\n\nDescribe:\nUnionFilePath('c:/test/a_b_x.tif'"))
        << qPrintable(first);

    dialog.show();
    auto* edit = Child<QTextEdit>(&dialog, "expressionEdit");

    Retype(edit, "$AppendSuffix(, '_a')");
    QTest::keyClick(edit, Qt::Key_Home);
    for (int i = 0; i < 14; ++i)
        QTest::keyClick(edit, Qt::Key_Right);
    // A double click is a click and then the double click event.
    QTest::mouseClick(vars->viewport(), Qt::LeftButton, {}, rowCentre(vars, "Scene"));
    QTest::mouseDClick(vars->viewport(), Qt::LeftButton, {}, rowCentre(vars, "Scene"));
    EXPECT_EQ(edit->toPlainText(), "$AppendSuffix(%{s}%, '_a')");
    EXPECT_EQ(help->toPlainText(), "Name:{s}\nDescribe:Scene");
    QTest::keyClicks(edit, "x"); // typing goes on behind the reference
    EXPECT_EQ(edit->toPlainText(), "$AppendSuffix(%{s}%x, '_a')");

    // Right button on "Input", then the menu's one entry.
    QTest::keyClick(edit, Qt::Key_End);
    const QPoint at = rowCentre(vars, "Input");
    QTest::mousePress(vars->viewport(), Qt::RightButton, {}, at);
    GuiDriver::ChooseInMenu({"Insert reference"});
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, vars->viewport()->mapToGlobal(at));
    QApplication::sendEvent(vars->viewport(), &event);
    EXPECT_EQ(edit->toPlainText(), "$AppendSuffix(%{s}%x, '_a')%{i}%");
    EXPECT_EQ(dialog.GetExpression(), ""); // only OK takes the text
}

TEST(FunctionDialog, OkTakesWhatParsesOrIsEmptyAndRefusesTheRest)
{
    struct Case
    {
        const char* name;
        QString text;
        bool accepted;
    };
    const std::vector<Case> cases = {
        {"a function", "$AppendSuffix('c:/test/x.tif', '_a')", true},
        {"empty clears the expression", "", true},
        {"a line break goes to the parser as it stands", "$AppendSuffix('c:/test/x.tif',\n'_a')", true},
        {"too few arguments", "$AppendSuffix('c:/test/x.tif')", false},
        {"blanks only", "   ", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        APCFunctionDlg dialog(APCFun::GetFunctionList(), {}, nullptr);
        dialog.SetExpression("$AppendSuffix('set', '_by the caller')");
        const int result = runModal(dialog, [&](QDialog* d) {
            auto* edit = Child<QTextEdit>(d, "expressionEdit");
            Retype(edit, c.text);
            ASSERT_EQ(edit->toPlainText(), c.text);
            if (c.accepted) {
                Click(d, "okButton");
                return;
            }
            GuiDriver::ExpectMessage("Error", "The function is error!");
            Click(d, "okButton");
            EXPECT_TRUE(d->isVisible()); // stays open, with the bad text in the field
            EXPECT_EQ(dialog.GetExpression(), c.text);
            // The user mends the text and tries again.
            Retype(edit, "$ReplaceExtension('c:/test/x.tif', 'xml')");
            Click(d, "okButton");
        });
        EXPECT_EQ(result, QDialog::Accepted);
        EXPECT_EQ(dialog.GetExpression(), c.accepted ? c.text : "$ReplaceExtension('c:/test/x.tif', 'xml')");
    }
}

// ---------------------------------------------------------------------------
// APCVarDlg

// Only Apply writes, once per dialog; the radio buttons switch the editors, a
// computed var made constant keeps its expression for a later switch back, and
// the dots open the function dialog, whose OK alone changes the expression.
TEST(VarDialog, ApplyWritesWhatTheUserChoseAndTellsTheModel)
{
    TestSupport::HeadlessModel model;
    APCVar* source = addVar(model, "{src}", "string", "Scene");
    TestSupport::SetConstant(source, "c:/test/x.tif");
    APCVar* computed = addVar(model, "{out}", "string", "Output");
    computed->SetConstant(false);
    computed->SetValue("c:/old/value.tif");
    computed->SetFunExp("$AppendSuffix(%{src}%, '_a')");
    // A constant that keeps an expression from an earlier switch.
    APCVar* kept = addVar(model, "{kept}", "string", "Kept");
    kept->SetFunExp("$ReplaceExtension(%{src}%, 'xml')");
    TestSupport::SetConstant(kept, "abc");
    QList<APCVar*> changed;
    boost::signals2::scoped_connection changes = model.varChanged.connect([&](APCVar* var) { changed << var; });
    APCVar* fresh = addVar(model, "{fresh}", "string", "Fresh");
    TestSupport::SetConstant(fresh, "v");
    const QString appended = "$AppendSuffix(%{src}%, '_a')";
    const QString replaced = "$ReplaceExtension(%{src}%, 'xml')";
    struct Case
    {
        const char* name;
        APCVar* var;
        std::function<void(QDialog*)> edit;
        bool constant;
        QString value, funExp, description;
        QString runValue; // after resolving the model, when given
    };
    const std::vector<Case> cases = {
        {"a constant made computed keeps its value", fresh,
         [](QDialog* d) {
             Click(d, "varRadio");
             Retype(Child<QLineEdit>(d, "expressionEdit"), "$ReplaceExtension(%{src}%, 'xml')");
         },
         false, "v", "$ReplaceExtension(%{src}%, 'xml')", "Fresh", "c:/test/x.xml"},
        {"a constant retyped", source,
         [&](QDialog* d) {
             Retype(Child<QLineEdit>(d, "descriptionEdit"), "Scene file");
             Retype(valueEdit(d), "c:/data/y.tif");
         },
         true, "c:/data/y.tif", "", "Scene file", "c:/data/y.tif"},
        {"computed to Constant and back", computed,
         [&](QDialog* d) {
             auto* expression = Child<QLineEdit>(d, "expressionEdit");
             auto* dots = Child<QPushButton>(d, "funcButton");
             EXPECT_TRUE(Child<QRadioButton>(d, "varRadio")->isChecked());
             EXPECT_TRUE(expression->isEnabled() && dots->isEnabled());
             EXPECT_FALSE(valueWidget(d)->isEnabled());
             EXPECT_EQ(valueWidget(d)->GetValue(), "c:/old/value.tif");
             Click(d, "constRadio");
             EXPECT_TRUE(valueWidget(d)->isEnabled());
             EXPECT_FALSE(expression->isEnabled() || dots->isEnabled());
             Retype(valueEdit(d), "c:/fixed.tif");
             Click(d, "varRadio");
             EXPECT_FALSE(valueWidget(d)->isEnabled());
             EXPECT_TRUE(expression->isEnabled() && dots->isEnabled());
             EXPECT_EQ(expression->text(), appended); // came back with the mode
         },
         false, "c:/old/value.tif", appended, "Output", ""},
        {"the dots: Cancel keeps the expression, OK takes the new one", computed,
         [&](QDialog* d) {
             for (const char* button : {"cancelButton", "okButton"}) {
                 OnNextModal([&](QWidget* w) {
                     auto* f = qobject_cast<APCFunctionDlg*>(w);
                     ASSERT_NE(f, nullptr);
                     EXPECT_EQ(f->parentWidget(), d);
                     EXPECT_EQ(Child<QTextEdit>(f, "expressionEdit")->toPlainText(), appended);
                     EXPECT_EQ(rowTexts(Child<QListWidget>(f, "varList")), QStringList({"Fresh", "Kept", "Output", "Scene file"}));
                     Retype(Child<QTextEdit>(f, "expressionEdit"), replaced);
                     Click(f, button);
                 });
                 Click(d, "funcButton");
             }
             EXPECT_EQ(Child<QLineEdit>(d, "expressionEdit")->text(), replaced);
         },
         false, "c:/old/value.tif", replaced, "Output", "c:/data/y.xml"},
        {"computed to Constant", computed,
         [&](QDialog* d) {
             Click(d, "constRadio");
             Retype(valueEdit(d), "c:/fixed.tif");
         },
         true, "c:/fixed.tif", replaced, "Output", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        changed.clear();
        APCVarDlg dialog(c.var, nullptr);
        const int result = runModal(dialog, [&](QDialog* d) {
            c.edit(d);
            Click(d, "okButton");
        });
        ASSERT_EQ(result, QDialog::Accepted);
        EXPECT_TRUE(changed.isEmpty()); // not before Apply
        dialog.Apply();
        EXPECT_EQ(c.var->GetConstant(), c.constant);
        EXPECT_EQ(c.var->GetValue(), c.value);
        EXPECT_EQ(c.var->GetFunExp(), c.funExp);
        if (!c.funExp.isEmpty()) {
            EXPECT_NE(c.var->GetFun(), nullptr);
        }
        EXPECT_EQ(c.var->GetDescription(), c.description);
        EXPECT_EQ(changed, QList<APCVar*>({c.var}));
        if (!c.runValue.isEmpty()) {
            ASSERT_TRUE(model.ResolveVarValues({}));
            EXPECT_EQ(c.var->GetRunValue(), c.runValue);
        }
    }
    // A constant's dialog does not show the expression it keeps; Cancel closes it.
    APCVarDlg again(computed, nullptr);
    const int result = runModal(again, [](QDialog* d) {
        EXPECT_EQ(Child<QLineEdit>(d, "expressionEdit")->text(), "");
        Click(d, "cancelButton");
    });
    EXPECT_EQ(result, QDialog::Rejected);
}

// ---------------------------------------------------------------------------
// In a window: Add Variable

TEST(VarsInWindow, AddsAVarOfTheChosenTypeAtTheFixedPoint)
{
    QTemporaryDir dir;
    ASSERT_TRUE(TestSupport::WriteAll(dir.filePath("m.apc"), TestSupport::kStepAndThreeVars));
    ModelControler window(dir.filePath("m.apc"), false);
    // Clicks "Add Variable"; act is what the user does in the dialog.
    const auto addVariable = [&window](std::function<void(QWidget*)> act) {
        OnNextModal(act);
        GuiDriver::Action(&window, "Add Variable")->trigger();
    };
    QList<APCVar*>& vars = window.GetDocument()->GetVars();
    int expectedCount = vars.size();
    ASSERT_FALSE(window.IsModified());

    struct Case { const char* name; const char* row; const char* type; const char* label; bool noRowFirst; };
    const Case cases[] = {
        {"OK at once: the first sorted type", nullptr, "file", "File", false},
        {"a chosen type, on top of the others", "Integer", "int", "Integer", false},
        // The state a list without a current row is in (no host type chosen).
        {"OK without a current row is refused and the dialog stays", "Real number", "float", "Real number", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        addVariable([&](QWidget* d) {
            auto* list = Child<QListWidget>(d, "typeList");
            if (c.noRowFirst) {
                list->setCurrentRow(-1);
                GuiDriver::ExpectMessage("Error", "Not selected!");
                Click(d, "okButton");
                EXPECT_TRUE(d->isVisible());
                EXPECT_EQ(qobject_cast<VarAddDlg*>(d)->GetDataType(), "");
            }
            if (c.row)
                QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rowCentre(list, c.row));
            Click(d, "okButton");
        });
        ASSERT_EQ(vars.size(), ++expectedCount);
        APCVar* added = vars.last();
        EXPECT_EQ(added->GetClass(), c.type);
        EXPECT_EQ(added->GetDescription(), c.label);
        EXPECT_EQ(added->GetPos(), QPointF(50, 50));
        EXPECT_EQ(added->GetModel(), window.GetDocument());
        EXPECT_NE(window.FindItemBase(added), nullptr); // the canvas heard of it
        EXPECT_TRUE(window.IsModified());
        window.SetModified(false);
    }
    addVariable([](QWidget* d) { Click(d, "cancelButton"); });
    EXPECT_EQ(vars.size(), expectedCount);
    EXPECT_FALSE(window.IsModified());
}

// ---------------------------------------------------------------------------
// The dialogs of arrows, file iterators and nested model steps

class ObjectDialogs : public ::testing::Test
{
protected:
    void SetUp() override
    {
        HostShell::EnvironmentSetting::Instance()->SetAppBinDir(dir.filePath("bin"));
        for (const char* folder : {"bin", "Model/apc", "scenes"})
            QDir(dir.path()).mkpath(folder);
    }
    void TearDown() override { HostShell::EnvironmentSetting::Instance()->SetAppBinDir(QString()); }

    // Saves what build puts on a model and opens the file in a window, whose model
    // then listens as in the editor.
    std::unique_ptr<ModelControler> open(const std::function<void(APCModel&)>& build)
    {
        {
            TestSupport::HeadlessModel m;
            build(m);
            EXPECT_TRUE(m.SaveFile(dir.filePath("m.apc")));
        }
        return std::make_unique<ModelControler>(dir.filePath("m.apc"), false);
    }

    // The nested model: a copy step whose "Source" and "Copy" are free. Version 2 gives
    // "Copy" a value and adds a free "Extra", keeping the ids.
    void writeInner(int version)
    {
        TestSupport::HeadlessModel m;
        if (version == 1) {
            APCAlgo* copy = TestSupport::AddAlgo(m, "test.copyText");
            TestSupport::VarOf(m, copy, "In File")->SetDescription("Source");
            TestSupport::VarOf(m, copy, "Out File")->SetDescription("Copy");
        } else {
            ASSERT_TRUE(m.LoadFile(inner()));
            TestSupport::SetConstant(m.GetVars().value(1), "/x/copy.txt");
            APCVar* extra = APCVarFactory::Instance()->Create("string");
            extra->SetDescription("Extra");
            m.AddVar(extra);
        }
        ASSERT_TRUE(m.SaveFile(inner()));
    }
    QString inner() const { return dir.filePath("Model/apc/inner.apc"); }

    QTemporaryDir dir;
};

TEST_F(ObjectDialogs, ArrowRepointedThroughTheDialogRewiresTheParameters)
{
    struct Case
    {
        const char* name;
        std::function<void(QWidget*)> act;
        const char* ends;   // head|headType|headParam|tail|tailType|tailParam
        const char* inputs; // "In File" of the first and of the second step
        const char* button = "okButton";
    };
    const std::vector<Case> cases = {
        {"TailToAnotherVar", [](QWidget* d) { Choose(d, "tailObject", "Second out"); },
         "First|process|In File|Second out|var|", "%Second out%|%Second in%"},
        {"HeadToAnotherProcess", [](QWidget* d) { Choose(d, "headObject", "Second"); },
         "Second|process|In File|First in|var|", "|%First in%"},
        {"HeadToAVarHasNoParameter",
         [](QWidget* d) {
             Choose(d, "headType", "var");
             EXPECT_EQ(rows(d, "headParameter"), "");
         },
         "First in|var||First in|var|", "|%Second in%"},
        {"TailAtProcessesOffersOnlyOutputs",
         [](QWidget* d) {
             Choose(d, "tailType", "process");
             EXPECT_EQ(rows(d, "tailParameter"), "*Out File");
             Choose(d, "tailObject", "Inputs only");
             EXPECT_EQ(rows(d, "tailParameter"), "");
         },
         "First|process|In File|Inputs only|process|", "|%Second in%"},
        {"CancelChangesNothing", [](QWidget* d) { Choose(d, "headType", "var"); },
         "First|process|In File|First in|var|", "%First in%|%Second in%", "cancelButton"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto window = open([](APCModel& m) {
            for (const char* step : {"First", "Second"}) {
                APCAlgo* copy = TestSupport::AddAlgo(m, "test.copyText");
                TestSupport::VarOf(m, copy, "In File")->SetDescription(step + QString(" in"));
                TestSupport::VarOf(m, copy, "Out File")->SetDescription(step + QString(" out"));
            }
            TestSupport::AddAlgo(m, "test.fail");
        });
        APCModel& model = *window->GetDocument();
        // Steps are read back with their catalogue text; named apart for the combos.
        const QList<APCProcess*> steps = model.GetProcesses();
        for (int i = 0; i < 3; ++i)
            steps[i]->SetDescription(QStringList({"First", "Second", "Inputs only"})[i]);
        APCArrow* arrow = model.ArrowsOfProcess(steps[0], "In File").value(0);
        ASSERT_TRUE(arrow);
        ChangeLog log(model);

        APCArrowDlg dialog(arrow, window.get());
        EXPECT_EQ(dialog.windowTitle(), "Depend");
        const int result = runAndApply(dialog, [&] {
            // The arrow as it stands; a head offers inputs only, a var no parameter.
            QStringList shown;
            for (const char* end : {"head", "tail"})
                for (const char* box : {"Type", "Object", "Parameter"})
                    shown << rows(&dialog, qPrintable(end + QString(box)));
            EXPECT_EQ(shown, QStringList({"*process|var", "*First|Second|Inputs only", "*In File", "process|*var",
                                          "*First in|First out|Second in|Second out", ""}));
            c.act(&dialog);
            Click(&dialog, c.button);
        });
        const bool applied = QByteArray(c.button) == "okButton";
        EXPECT_EQ(result, applied ? QDialog::Accepted : QDialog::Rejected);
        const QStringList ends = {arrow->GetHead(), arrow->GetHeadType(), arrow->GetHeadParam(),
                                  arrow->GetTail(), arrow->GetTailType(), arrow->GetTailParam()};
        EXPECT_EQ(describe(model, ends.join('|')), c.ends);
        EXPECT_EQ(describe(model, steps[0]->GetParameter("In File").value + '|' +
                                      steps[1]->GetParameter("In File").value),
                  c.inputs);
        EXPECT_EQ(log.Sorted(), applied ? QStringList{"arrow~"} : QStringList());
        EXPECT_EQ(window->IsModified(), applied);
    }
}

TEST_F(ObjectDialogs, IteratorFoldersAndFilterReachItsParametersAndItsOutputsFollowOrAreUnwired)
{
    const QString scenes = QDir(dir.filePath("scenes")).absolutePath();
    for (const char* f : {"s1_B4.tif", "s1_mask.tif", "s2_B4.tif", "s2_mask.tif", "s3_B4.tif"})
        TestSupport::WriteAll(scenes + '/' + f, "");
    struct Case
    {
        const char* name;
        std::function<void(QTableWidget*, QWidget* filter)> editFilter;
        const char* filter;
        QStringList outputs; // each wired to a var of its own, named after it
        QStringList changes;
        int rounds;
        bool foldersWired = false; // else the user took away the var the dropped step got for them
    };
    const std::vector<Case> cases = {
        {"AnOutputAdded",
         [](QTableWidget* t, QWidget* filter) {
             typeInCell(t, 0, 1, "*_B4.tif");
             Click(filter, "add");
             typeInCell(t, 1, 1, "*_mask.tif");
         },
         R"({"Out File":"*_B4.tif","Out File 2":"*_mask.tif"})", {"Out File=%Out File%", "Out File 2=%Out File 2%"},
         {"arrow+", "process~", "var+"}, 2},
        {"TheOutputRenamed",
         [](QTableWidget* t, QWidget*) {
             typeInCell(t, 0, 0, "Band");
             typeInCell(t, 0, 1, "*_B4.tif");
         },
         R"({"Band":"*_B4.tif"})", {"Band=%Band%"}, {"arrow+", "arrow-", "process~", "var+"}, 3},
        // Folders picked over the parameter an arrow ties to a var are stored, and then
        // the document's update unwires the arrow and so empties it, in the algorithm
        // dialog and here alike.
        {"FoldersOverAWiredParameter", [](QTableWidget*, QWidget*) {}, R"({"Out File":"*.tif;*.tiff"})",
         {"Out File=%Out File%"}, {"arrow-", "process~"}, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto window = open([&c](APCModel& m) {
            auto* iterator = new APCRasterFileIterator;
            m.AddProcess(iterator);
            if (!c.foldersWired)
                m.RemoveVar(m.FindVar(m.ArrowsOfProcess(iterator, "strDir").value(0)->GetTail()));
        });
        APCModel& model = *window->GetDocument();
        auto* iterator = dynamic_cast<APCFileIterator*>(model.GetProcesses().value(0));
        ASSERT_TRUE(iterator);
        ChangeLog log(model);

        APCFileIteratorDlg dialog(iterator, window.get());
        EXPECT_EQ(dialog.windowTitle(), "File Iterator");
        const int result = runAndApply(dialog, [&] {
            auto* folders = Child<QWidget>(&dialog, "directoryWidget");
            Click(folders, "useRows");
            GuiDriver::PickFolder(scenes);
            Click(folders, "add");
            auto* filter = Child<QWidget>(&dialog, "filterWidget");
            c.editFilter(Child<QTableWidget>(filter, "table"), filter);
            Click(&dialog, "okButton");
        });
        EXPECT_EQ(result, QDialog::Accepted);
        const QString picked = QString(R"({"%1":{"subdir":"0","enabled":"1"}})").arg(scenes);
        EXPECT_EQ(json(iterator->GetParameter("strDir").value), json(c.foldersWired ? QString() : picked));
        EXPECT_EQ(json(iterator->GetParameter("strFilter").value), json(c.filter));
        EXPECT_EQ(values(model, iterator, true), c.outputs);
        EXPECT_EQ(model.ArrowsOfProcess(iterator, "").size(), c.outputs.size()); // none left at the folders
        EXPECT_EQ(log.Sorted(), c.changes);
        EXPECT_TRUE(window->IsModified());
        std::unique_ptr<APCFileIterator> run(static_cast<APCFileIterator*>(iterator->Clone()));
        EXPECT_EQ(run->BuildRounds(), c.rounds > 0);
        EXPECT_EQ(run->GetRounds().size(), c.rounds);
    }
}

TEST_F(ObjectDialogs, NestedModelStepTakesTheFreeInputsOfItsModelFile)
{
    struct Case
    {
        const char* name;
        int before, after; // versions of the model file; 0: none yet
        QStringList shown; // the captions of the form
        QString typed;     // into the first widget
        QStringList values;
        QStringList changes; // none: Cancel pressed
    };
    const std::vector<Case> cases = {
        {"AFileThatAppears", 0, 1, {}, "", {"Source=%Source%", "Copy=%Copy%"},
         {"arrow+", "arrow+", "process~", "var+", "var+"}},
        // What is typed over the linked "Source" goes with its arrow.
        {"AFileThatChanged", 1, 2, {"Source", "Copy"}, "/data/in.txt", {"Source=", "Extra=%Extra%"},
         {"arrow+", "arrow-", "arrow-", "process~", "var+"}},
        {"CancelChangesNothing", 1, 1, {"Source", "Copy"}, "/data/in.txt", {"Source=%Source%", "Copy=%Copy%"}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QFile::remove(inner());
        if (c.before)
            writeInner(1);
        auto window = open(addNestedStep);
        APCModel& model = *window->GetDocument();
        auto* step = dynamic_cast<APCModelFile*>(model.GetProcesses().value(0));
        ASSERT_TRUE(step);
        for (int v = c.before + 1; v <= c.after; ++v)
            writeInner(v);
        ChangeLog log(model);

        APCModelFileDlg dialog(step, window.get());
        EXPECT_EQ(dialog.windowTitle(), "Model file");
        const int result = runAndApply(dialog, [&] {
            QStringList shown;
            for (DataTypeWidget* w : dialog.findChildren<DataTypeWidget*>())
                shown << w->GetCaption();
            EXPECT_EQ(shown, c.shown);
            if (!c.typed.isEmpty())
                Retype(dialog.findChild<QLineEdit*>("edit"), c.typed);
            Click(&dialog, c.changes.isEmpty() ? "cancelButton" : "okButton");
        });
        EXPECT_EQ(result, c.changes.isEmpty() ? QDialog::Rejected : QDialog::Accepted);
        // One parameter per free var of the file, named by its id.
        TestSupport::HeadlessModel file;
        ASSERT_TRUE(file.LoadFile(inner()));
        QStringList free, names;
        for (APCVar* v : file.GetFreeVars()) {
            free << v->GetName();
            delete v;
        }
        for (const APCParameter& p : step->GetParameters())
            names << p.name;
        EXPECT_EQ(names, free);
        EXPECT_EQ(values(model, step), c.values);
        EXPECT_EQ(model.ArrowsOfProcess(step, "").size(), c.values.filter("=%").size());
        EXPECT_EQ(log.Sorted(), c.changes);
        EXPECT_EQ(window->IsModified(), !c.changes.isEmpty());
    }
}

// ---------------------------------------------------------------------------
// Double clicks on a real canvas

// The steps of a run read the model from pool threads: while it goes on no dialog
// opens, no layout moves the steps and no undo takes an edit back.
TEST(DoubleClick, NoDialogLayoutOrUndoWhileARunGoesOn)
{
    QTemporaryDir dir;
    {
        TestSupport::HeadlessModel model;
        APCAlgo* sleep = TestSupport::AddAlgo(model, "test.sleep", 0, 0);
        TestSupport::AddAlgo(model, "test.noop", 0, 300);
        for (APCParameter& p : sleep->GetParameters())
            p.value = "1500";
        ASSERT_TRUE(model.SaveFile(dir.filePath("slow.apc")));
    }
    std::unique_ptr<ModelControler> shown = CanvasDriver::OpenShown(dir.filePath("slow.apc"), false, 1000, 800);
    ModelControler& window = *shown;
    const CanvasDriver::Mouse mouse(window);
    const auto action = [&](const char* caption) { return GuiDriver::Action(&window, caption); };
    const auto places = [&] {
        QList<QPointF> at;
        for (QGraphicsItem* item : window.GetScene()->GetItems())
            at << item->pos();
        return at;
    };
    action("Auto Layout")->trigger(); // an edit for Undo to take back
    const QList<QPointF> before = places();
    QGraphicsItem* item = itemOfKind(window, "process:algo");
    ASSERT_TRUE(item);
    action("Run")->trigger();
    ASSERT_EQ(window.GetSequenceControl()->GetState(), SequenceControl::Running);
    ModelCommandManager::Instance()->OnUpdateState();
    EXPECT_FALSE(action("Auto Layout")->isEnabled());
    EXPECT_FALSE(action("Undo Auto Layout")->isEnabled());
    action("Auto Layout")->trigger(); // still enabled from the last tick
    action("Undo Auto Layout")->trigger();
    EXPECT_EQ(places(), before);

    bool opened = false;
    QTimer::singleShot(500, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            opened = true;
            modal->close();
        }
    });
    mouse.DoubleClick(mouse.At(item->sceneBoundingRect().center()));
    QTest::qWait(600);
    EXPECT_FALSE(opened);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return window.GetSequenceControl()->GetState() == SequenceControl::Idle; }));
    ModelCommandManager::Instance()->OnUpdateState();
    EXPECT_TRUE(action("Auto Layout")->isEnabled());
    EXPECT_TRUE(action("Undo Auto Layout")->isEnabled());
    // Once the run is over, the same double click opens the form again.
    QString form;
    GuiDriver::OnNextModal([&](QWidget* modal) {
        form = modal->metaObject()->className();
        modal->close();
    });
    mouse.DoubleClick(mouse.At(item->sceneBoundingRect().center()));
    EXPECT_EQ(form, "Plugin::AlgoForm");
}

// Each kind of object opens its own dialog; an accepted form changes the model
// only when it may be edited.
TEST(DoubleClick, EachKindOpensItsOwnDialogAndAFormChangesOnlyAnEditableModel)
{
    struct Case { const char* model; const char* kind; bool readOnly; const char* dialog; };
    const Case cases[] = {
        {"ndvi_one.apc", "process:algo", false, "Plugin::AlgoForm"}, // the catalogue's form
        {"ndvi_one.apc", "process:algo", true, "Plugin::AlgoForm"},  // opens for reading
        {"scene_ndvi.apc", "process:RasterFileIterator", false, "Plugin::APCFileIteratorDlg"},
        {"batch_nested.apc", "process:model", false, "Plugin::APCModelFileDlg"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.kind) + (c.readOnly ? ", read-only" : ""));
        const QString path = QCoreApplication::applicationDirPath() + "/../Model/apc/" + c.model;
        auto window = CanvasDriver::OpenShown(path, c.readOnly, 1000, 800);
        const CanvasDriver::Mouse mouse(*window);
        QGraphicsItem* item = itemOfKind(*window, c.kind);
        ASSERT_TRUE(item);
        auto* step = dynamic_cast<APCProcess*>(dynamic_cast<GraphicsItemBase*>(item)->GetObject());
        const bool form = QByteArray(c.dialog) == "Plugin::AlgoForm";
        QString opened;
        // In the form the user changes the red band from 3 to 5 and presses OK;
        // another dialog is closed without OK.
        GuiDriver::OnNextModal([&](QWidget* modal) {
            opened = modal->metaObject()->className();
            for (QLineEdit* edit : modal->findChildren<QLineEdit*>())
                if (form && edit->text() == "3") {
                    edit->selectAll();
                    QTest::keyClicks(edit, "5");
                }
            for (QPushButton* button : modal->findChildren<QPushButton*>())
                if (form && button->text() == "OK")
                    QTest::mouseClick(button, Qt::LeftButton);
            modal->close();
        });
        mouse.DoubleClick(mouse.At(item->sceneBoundingRect().center()));
        EXPECT_EQ(opened, c.dialog);
        if (form) {
            EXPECT_EQ(step->GetParameter("Red Band").value, c.readOnly ? "3" : "5");
        }
        EXPECT_EQ(window->IsModified(), form && !c.readOnly);
    }
}
