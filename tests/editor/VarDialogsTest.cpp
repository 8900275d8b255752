// The var dialogs, the function dialog and Add Variable, driven offscreen
// as a user drives them: rows chosen, text typed, radio buttons and buttons clicked,
// refusals answered.
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/APCFunctionDlg.h"
#include "dialogs/APCVarDlg.h"
#include "dialogs/VarAddDlg.h"
#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "functions/APCFun.h"
#include "functions/FunctionInfo.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/APCVarFactory.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <gtest/gtest.h>

#include <functional>

using namespace Plugin;
using GuiDriver::OnNextModal;
using GuiDriver::Child;
using GuiDriver::Click;
using GuiDriver::Retype;

namespace {

// Clicks the row whose text is text, as a user does (the list must be on screen).
void clickRow(QListWidget* list, const QString& text)
{
    const QList<QListWidgetItem*> found = list->findItems(text, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << text.toStdString();
    list->scrollToItem(found.first());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(found.first()).center());
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

// The next modal window must be the function dialog; act is what the user does in it.
void inFunctionDialog(std::function<void(APCFunctionDlg*)> act)
{
    OnNextModal([act](QWidget* w) {
        auto* dialog = qobject_cast<APCFunctionDlg*>(w);
        ASSERT_NE(dialog, nullptr);
        act(dialog);
    });
}

APCVar* addVar(APCModel& model, const QString& id, const QString& type, const QString& description)
{
    APCVar* var = APCVarFactory::Instance()->Create(type);
    var->SetName(id);
    var->SetDescription(description);
    model.AddVar(var);
    return var;
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
    APCVar* scene = addVar(model, "{s}", "file", "Scene");
    APCVar* input = addVar(model, "{i}", "file", "Input");
    APCVar* output = addVar(model, "{o}", "filePath", "Output");
    APCFunctionDlg dialog(APCFun::GetFunctionList(), model.GetVars(), nullptr);

    auto* functions = Child<QListWidget>(&dialog, "functionList");
    EXPECT_EQ(rowTexts(functions),
              QStringList({"$APCFun_UnionFilePath", "$AppendSuffix", "$ReplaceDirectory", "$ReplaceExtension",
                           "$ReplaceSuffix", "$SelectDirectory", "$SelectDirectory2", "$SubDirectory"}));
    EXPECT_TRUE(functions->item(0)->isSelected());

    auto* vars = Child<QListWidget>(&dialog, "varList");
    EXPECT_EQ(rowTexts(vars), QStringList({"Input", "Output", "Scene"}));
    EXPECT_EQ(vars->item(0)->data(Qt::UserRole).value<void*>(), static_cast<void*>(input));
    EXPECT_EQ(vars->item(1)->data(Qt::UserRole).value<void*>(), static_cast<void*>(output));
    EXPECT_EQ(vars->item(2)->data(Qt::UserRole).value<void*>(), static_cast<void*>(scene));

    // The help of the first function, not of the first var: the signals were connected after the filling.
    auto* help = Child<QTextEdit>(&dialog, "helpEdit");
    const QString first = help->toPlainText();
    EXPECT_TRUE(first.startsWith("Name:$UnionFilePath(%filePath1%, %filePath2%, '_')\n")) << qPrintable(first);
    EXPECT_TRUE(first.contains("separator + the file extension.\n\nDescribe:\nUnionFilePath('c:/test/a_b_x.tif'"))
        << qPrintable(first);

    dialog.show();
    auto* edit = Child<QTextEdit>(&dialog, "expressionEdit");
    auto rowCentre = [vars](const QString& text) {
        QListWidgetItem* item = vars->findItems(text, Qt::MatchExactly).value(0);
        EXPECT_NE(item, nullptr) << text.toStdString();
        return item ? vars->visualItemRect(item).center() : QPoint();
    };

    Retype(edit, "$AppendSuffix(, '_a')");
    QTest::keyClick(edit, Qt::Key_Home);
    for (int i = 0; i < 14; ++i)
        QTest::keyClick(edit, Qt::Key_Right);
    // A double click is a click and then the double click event.
    QTest::mouseClick(vars->viewport(), Qt::LeftButton, {}, rowCentre("Scene"));
    QTest::mouseDClick(vars->viewport(), Qt::LeftButton, {}, rowCentre("Scene"));
    EXPECT_EQ(edit->toPlainText(), "$AppendSuffix(%{s}%, '_a')");
    EXPECT_EQ(help->toPlainText(), "Name:{s}\nDescribe:Scene");
    QTest::keyClicks(edit, "x"); // typing goes on behind the reference
    EXPECT_EQ(edit->toPlainText(), "$AppendSuffix(%{s}%x, '_a')");

    // Right button on "Input", then the menu's one entry.
    QTest::keyClick(edit, Qt::Key_End);
    const QPoint at = rowCentre("Input");
    QTest::mousePress(vars->viewport(), Qt::RightButton, {}, at);
    QStringList entries;
    GuiDriver::OnNextPopup(nullptr, [&entries](QMenu* menu) {
        for (QAction* a : menu->actions())
            entries << a->text();
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions().first()).center());
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, vars->viewport()->mapToGlobal(at));
    QApplication::sendEvent(vars->viewport(), &event);
    EXPECT_EQ(entries, QStringList({"Insert reference"}));
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
        GuiDriver::Message message;
        const int result = runModal(dialog, [&](QDialog* d) {
            auto* edit = Child<QTextEdit>(d, "expressionEdit");
            Retype(edit, c.text);
            ASSERT_EQ(edit->toPlainText(), c.text);
            if (c.accepted) {
                Click(d, "okButton");
                return;
            }
            GuiDriver::AnswerMessage(&message);
            Click(d, "okButton");
            EXPECT_EQ(message.shown, 1);
            EXPECT_EQ(message.title, "Error");
            EXPECT_EQ(message.text, "The function is error!");
            EXPECT_EQ(message.buttons, QStringList({"OK"}));
            EXPECT_TRUE(d->isVisible()); // stays open, with the bad text in the field
            EXPECT_EQ(dialog.GetExpression(), c.text);
            // The user mends the text and tries again.
            Retype(edit, "$ReplaceExtension('c:/test/x.tif', 'xml')");
            Click(d, "okButton");
        });
        EXPECT_EQ(result, QDialog::Accepted);
        EXPECT_EQ(message.shown, c.accepted ? 0 : 1);
        EXPECT_EQ(dialog.GetExpression(), c.accepted ? c.text : "$ReplaceExtension('c:/test/x.tif', 'xml')");
    }
}

// ---------------------------------------------------------------------------
// APCVarDlg

class VarDialog : public ::testing::Test
{
protected:
    void SetUp() override
    {
        source = addVar(model, "{src}", "string", "Scene");
        TestSupport::SetConstant(source, "c:/test/x.tif");
        computed = addVar(model, "{out}", "string", "Output");
        computed->SetConstant(false);
        computed->SetValue("c:/old/value.tif");
        computed->SetFunExp("$AppendSuffix(%{src}%, '_a')");
        // A constant that keeps an expression from an earlier switch.
        kept = addVar(model, "{kept}", "string", "Kept");
        kept->SetFunExp("$ReplaceExtension(%{src}%, 'xml')");
        TestSupport::SetConstant(kept, "abc");
        changes = model.varChanged.connect([this](APCVar* var) { changed << var; });
    }

    static DataTypeWidget* valueWidget(QWidget* dialog) { return Child<DataTypeWidget>(dialog, "valueWidget"); }
    static QLineEdit* valueEdit(QWidget* dialog) { return valueWidget(dialog)->findChild<QLineEdit*>(); }

    TestSupport::HeadlessModel model;
    APCVar* source = nullptr;
    APCVar* computed = nullptr;
    APCVar* kept = nullptr;
    QList<APCVar*> changed;
    boost::signals2::scoped_connection changes;
};

// Only Apply writes, once per dialog; the radio buttons switch the editors, and a
// computed var made constant keeps its expression for a later switch back.
TEST_F(VarDialog, ApplyWritesWhatTheUserChoseAndTellsTheModel)
{
    APCVar* fresh = addVar(model, "{fresh}", "string", "Fresh");
    TestSupport::SetConstant(fresh, "v");
    const QString appended = "$AppendSuffix(%{src}%, '_a')";
    const auto typeValue = [](QDialog* d, const QString& text) { Retype(valueEdit(d), text); };
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
             typeValue(d, "c:/data/y.tif");
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
             EXPECT_FALSE(Child<QRadioButton>(d, "varRadio")->isChecked());
             typeValue(d, "c:/fixed.tif");
             Click(d, "varRadio");
             EXPECT_FALSE(valueWidget(d)->isEnabled());
             EXPECT_TRUE(expression->isEnabled() && dots->isEnabled());
             EXPECT_EQ(expression->text(), appended); // came back with the mode
         },
         false, "c:/old/value.tif", appended, "Output", ""},
        {"computed to Constant", computed,
         [&](QDialog* d) {
             Click(d, "constRadio");
             typeValue(d, "c:/fixed.tif");
         },
         true, "c:/fixed.tif", appended, "Output", ""},
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
    // A constant's dialog does not show the expression it keeps; Cancel leaves the var.
    APCVarDlg again(computed, nullptr);
    changed.clear();
    const int result = runModal(again, [](QDialog* d) {
        EXPECT_EQ(Child<QLineEdit>(d, "expressionEdit")->text(), "");
        Retype(Child<QLineEdit>(d, "descriptionEdit"), "Renamed");
        Click(d, "cancelButton");
    });
    EXPECT_EQ(result, QDialog::Rejected);
    EXPECT_EQ(computed->GetDescription(), "Output");
    EXPECT_TRUE(changed.isEmpty());
}

TEST_F(VarDialog, DotsOpenTheFunctionDialogAndOnlyItsOkChangesTheExpression)
{
    struct Case
    {
        const char* name;
        QString typed;     // in the function dialog
        bool ok;          // clicked OK (else Cancel)
        QString expected; // the expression edit afterwards
    };
    const QString before = "$AppendSuffix(%{src}%, '_a')";
    const std::vector<Case> cases = {
        {"cancelled", "$ReplaceExtension(%{src}%, 'xml')", false, before},
        {"accepted", "$ReplaceExtension(%{src}%, 'xml')", true, "$ReplaceExtension(%{src}%, 'xml')"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        changed.clear();
        APCVarDlg dialog(computed, nullptr);
        const int result = runModal(dialog, [&](QDialog* d) {
            auto* expression = Child<QLineEdit>(d, "expressionEdit");
            inFunctionDialog([&](APCFunctionDlg* f) {
                EXPECT_EQ(f->parentWidget(), d);
                EXPECT_EQ(Child<QTextEdit>(f, "expressionEdit")->toPlainText(), before);
                EXPECT_EQ(rowTexts(Child<QListWidget>(f, "varList")), QStringList({"Kept", "Output", "Scene"}));
                EXPECT_EQ(Child<QListWidget>(f, "functionList")->count(), APCFun::GetFunctionList().size());
                Retype(Child<QTextEdit>(f, "expressionEdit"), c.typed);
                Click(f, c.ok ? "okButton" : "cancelButton");
            });
            Click(d, "funcButton");
            EXPECT_EQ(expression->text(), c.expected);
            Click(d, "okButton");
        });
        ASSERT_EQ(result, QDialog::Accepted);
        dialog.Apply();
        EXPECT_EQ(computed->GetFunExp(), c.expected);
        EXPECT_EQ(changed, QList<APCVar*>({computed}));
        computed->SetFunExp(before);
    }
}

// ---------------------------------------------------------------------------
// In a window: Add Variable

TEST(VarsInWindow, AddsAVarOfTheChosenTypeAtTheFixedPoint)
{
    QTemporaryDir dir;
    ASSERT_TRUE(TestSupport::WriteAll(dir.filePath("m.apc"), TestSupport::kStepAndThreeVars));
    ModelControler window(dir.filePath("m.apc"), false);
    // Clicks "Add Variable"; act is what the user does in the dialog.
    const auto addVariable = [&window](std::function<void(QDialog*)> act) {
        QAction* action = GuiDriver::Action(&window, "Add Variable");
        ASSERT_TRUE(action && action->isEnabled());
        OnNextModal([&window, act](QWidget* w) {
            auto* dialog = qobject_cast<VarAddDlg*>(w);
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->parentWidget(), &window);
            act(dialog);
        });
        action->trigger();
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
        addVariable([&](QDialog* d) {
            auto* list = Child<QListWidget>(d, "typeList");
            if (c.noRowFirst) {
                list->setCurrentRow(-1);
                GuiDriver::Message message;
                GuiDriver::AnswerMessage(&message);
                Click(d, "okButton");
                EXPECT_EQ(message.shown, 1);
                EXPECT_EQ(message.title, "Error");
                EXPECT_EQ(message.text, "Not selected!");
                EXPECT_EQ(message.buttons, QStringList({"OK"}));
                EXPECT_TRUE(d->isVisible());
                EXPECT_EQ(qobject_cast<VarAddDlg*>(d)->GetDataType(), "");
            }
            if (c.row)
                clickRow(list, c.row);
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
    addVariable([](QDialog* d) { Click(d, "cancelButton"); });
    EXPECT_EQ(vars.size(), expectedCount);
    EXPECT_FALSE(window.IsModified());
}
