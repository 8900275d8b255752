// The var dialogs, the function dialog and Add Variable, driven offscreen
// as a user drives them: rows chosen, text typed, radio buttons and buttons clicked,
// refusals answered.
#include "HostCatalogGui/DataTypeFactory.h"
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
#include <QFrame>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <gtest/gtest.h>

#include <functional>

using namespace Plugin;
using GuiDriver::OnNextModal;

namespace {

// A model file with one constant var, placed where Add Variable puts new ones.
const char* kOneVarModel = R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <Processes/>
    <Vars>
        <Var class="string" name="{v}" description="Placed" posX="50" posY="50" painter="" constant="1" value="x"/>
    </Vars>
    <Arrows/>
</Configuration>
)";

template <class T>
T* child(QWidget* root, const char* name)
{
    auto* found = root->findChild<T*>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
}

void clickButton(QWidget* root, const char* name)
{
    auto* button = root->findChild<QAbstractButton*>(QLatin1String(name));
    ASSERT_NE(button, nullptr) << name;
    ASSERT_TRUE(button->isVisible() && button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
}

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

// Replaces the whole text of an edit by typing, as a user selecting all and typing.
void retype(QWidget* edit, const QString& text)
{
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        if (i > 0)
            QTest::keyClick(edit, Qt::Key_Return);
        QTest::keyClicks(edit, lines[i]);
    }
}

// The next modal window must be a message box: its title and text are kept and it
// is answered with its button.
struct Message
{
    int shown = 0;
    QString title;
    QString text;
    QStringList buttons;
};
void answerMessage(Message* message)
{
    OnNextModal([message](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        ++message->shown;
        message->title = box->windowTitle();
        message->text = box->text();
        for (QAbstractButton* b : box->buttons())
            message->buttons << b->text();
        box->buttons().first()->click();
    });
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

QString functionHelp(const FunctionInfo& info)
{
    const QStringList parts = info.help.split(QChar(13));
    return "Name:" + parts.at(0) + "\n\nDescribe:" + parts.at(1);
}

FunctionInfo catalogueEntry(const QString& name)
{
    for (const FunctionInfo& info : APCFun::GetFunctionList())
        if (info.name == name)
            return info;
    ADD_FAILURE() << "no function " << name.toStdString();
    return {};
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

TEST(FunctionDialog, OpensOnTheFirstSortedFunctionAndListsTheVarsByDescription)
{
    TestSupport::HeadlessModel model;
    APCVar* scene = addVar(model, "{s}", "file", "Scene");
    APCVar* input = addVar(model, "{i}", "file", "Input");
    APCVar* output = addVar(model, "{o}", "filePath", "Output");
    APCFunctionDlg dialog(APCFun::GetFunctionList(), model.GetVars(), nullptr);

    auto* functions = child<QListWidget>(&dialog, "functionList");
    EXPECT_EQ(rowTexts(functions),
              QStringList({"$APCFun_UnionFilePath", "$AppendSuffix", "$ReplaceDirectory", "$ReplaceExtension",
                           "$ReplaceSuffix", "$SelectDirectory", "$SelectDirectory2", "$SubDirectory"}));
    EXPECT_EQ(functions->currentRow(), 0);
    EXPECT_TRUE(functions->item(0)->isSelected());
    for (int i = 0; i < functions->count(); ++i) {
        // Each row points at its record, the dialog's own copy.
        const auto* info = static_cast<const FunctionInfo*>(functions->item(i)->data(Qt::UserRole).value<void*>());
        ASSERT_NE(info, nullptr);
        EXPECT_EQ(info->name, functions->item(i)->text());
    }

    auto* vars = child<QListWidget>(&dialog, "varList");
    EXPECT_EQ(rowTexts(vars), QStringList({"Input", "Output", "Scene"}));
    EXPECT_EQ(vars->currentRow(), 0);
    EXPECT_EQ(vars->item(0)->data(Qt::UserRole).value<void*>(), static_cast<void*>(input));
    EXPECT_EQ(vars->item(1)->data(Qt::UserRole).value<void*>(), static_cast<void*>(output));
    EXPECT_EQ(vars->item(2)->data(Qt::UserRole).value<void*>(), static_cast<void*>(scene));

    // The help of the first function, not of the first var: the signals were connected after the filling.
    const QString help = child<QTextEdit>(&dialog, "helpEdit")->toPlainText();
    EXPECT_EQ(help, functionHelp(catalogueEntry("$APCFun_UnionFilePath")));
    EXPECT_TRUE(help.startsWith("Name:$UnionFilePath(%filePath1%, %filePath2%, '_')\n")) << qPrintable(help);
    EXPECT_TRUE(help.contains("separator + the file extension.\n\nDescribe:\nUnionFilePath('c:/test/a_b_x.tif'"))
        << qPrintable(help);
    EXPECT_EQ(child<QTextEdit>(&dialog, "expressionEdit")->toPlainText(), "");
    EXPECT_EQ(dialog.GetExpression(), "");
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
        {"nested with a var", "$ReplaceDirectory(%{d}%, $AppendSuffix(%{a}%, '_1'))", true},
        {"empty clears the expression", "", true},
        {"a line break goes to the parser as it stands", "$AppendSuffix('c:/test/x.tif',\n'_a')", true},
        {"too few arguments", "$AppendSuffix('c:/test/x.tif')", false},
        {"the catalogue name of UnionFilePath", "$APCFun_UnionFilePath('a', 'b', '_')", false},
        {"no function at all", "c:/test/x.tif", false},
        {"blanks only", "   ", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        APCFunctionDlg dialog(APCFun::GetFunctionList(), {}, nullptr);
        dialog.SetExpression("$AppendSuffix('set', '_by the caller')");
        Message message;
        const int result = runModal(dialog, [&](QDialog* d) {
            auto* edit = child<QTextEdit>(d, "expressionEdit");
            retype(edit, c.text);
            ASSERT_EQ(edit->toPlainText(), c.text);
            if (c.accepted) {
                clickButton(d, "okButton");
                return;
            }
            answerMessage(&message);
            clickButton(d, "okButton");
            EXPECT_EQ(message.shown, 1);
            EXPECT_EQ(message.title, "Error");
            EXPECT_EQ(message.text, "The function is error!");
            EXPECT_EQ(message.buttons, QStringList({"OK"}));
            EXPECT_TRUE(d->isVisible()); // stays open, with the bad text in the field
            EXPECT_EQ(dialog.GetExpression(), c.text);
            // The user mends the text and tries again.
            retype(edit, "$ReplaceExtension('c:/test/x.tif', 'xml')");
            clickButton(d, "okButton");
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

    static DataTypeWidget* valueWidget(QWidget* dialog) { return child<DataTypeWidget>(dialog, "valueWidget"); }
    static QLineEdit* valueEdit(QWidget* dialog) { return valueWidget(dialog)->findChild<QLineEdit*>(); }

    TestSupport::HeadlessModel model;
    APCVar* source = nullptr;
    APCVar* computed = nullptr;
    APCVar* kept = nullptr;
    QList<APCVar*> changed;
    boost::signals2::scoped_connection changes;
};

TEST_F(VarDialog, ShowsAComputedVarWithItsExpressionAndItsValueDisabled)
{
    APCVarDlg dialog(computed, nullptr);
    EXPECT_TRUE(child<QRadioButton>(&dialog, "varRadio")->isChecked());
    EXPECT_FALSE(child<QRadioButton>(&dialog, "constRadio")->isChecked());
    auto* expression = child<QLineEdit>(&dialog, "expressionEdit");
    EXPECT_EQ(expression->text(), "$AppendSuffix(%{src}%, '_a')");
    EXPECT_TRUE(expression->isEnabled());
    EXPECT_TRUE(child<QPushButton>(&dialog, "funcButton")->isEnabled());
    EXPECT_FALSE(valueWidget(&dialog)->isEnabled());
    EXPECT_EQ(valueWidget(&dialog)->GetValue(), "c:/old/value.tif");
}

TEST_F(VarDialog, RadioButtonsSwitchTheEditorsAndCancelLeavesTheVar)
{
    APCVarDlg dialog(computed, nullptr);
    const int result = runModal(dialog, [&](QDialog* d) {
        auto* expression = child<QLineEdit>(d, "expressionEdit");
        auto* dots = child<QPushButton>(d, "funcButton");
        clickButton(d, "constRadio");
        EXPECT_TRUE(valueWidget(d)->isEnabled());
        EXPECT_FALSE(expression->isEnabled());
        EXPECT_FALSE(dots->isEnabled());
        EXPECT_FALSE(child<QRadioButton>(d, "varRadio")->isChecked());
        clickButton(d, "varRadio");
        EXPECT_FALSE(valueWidget(d)->isEnabled());
        EXPECT_TRUE(expression->isEnabled());
        EXPECT_TRUE(dots->isEnabled());
        EXPECT_FALSE(child<QRadioButton>(d, "constRadio")->isChecked());
        EXPECT_EQ(expression->text(), "$AppendSuffix(%{src}%, '_a')"); // came back with the mode
        clickButton(d, "constRadio");
        retype(child<QLineEdit>(d, "descriptionEdit"), "Renamed");
        retype(valueEdit(d), "c:/typed.tif");
        clickButton(d, "cancelButton");
    });
    EXPECT_EQ(result, QDialog::Rejected);
    // Only Apply writes, and the tool calls it only after OK.
    EXPECT_FALSE(computed->GetConstant());
    EXPECT_EQ(computed->GetDescription(), "Output");
    EXPECT_EQ(computed->GetValue(), "c:/old/value.tif");
    EXPECT_EQ(computed->GetFunExp(), "$AppendSuffix(%{src}%, '_a')");
    EXPECT_TRUE(changed.isEmpty());
}

TEST_F(VarDialog, ApplyWritesAConstantAndTellsTheModel)
{
    APCVarDlg dialog(source, nullptr);
    const int result = runModal(dialog, [&](QDialog* d) {
        retype(child<QLineEdit>(d, "descriptionEdit"), "Scene file");
        retype(valueEdit(d), "c:/data/y.tif");
        clickButton(d, "okButton");
    });
    ASSERT_EQ(result, QDialog::Accepted);
    EXPECT_TRUE(changed.isEmpty()); // not before Apply
    dialog.Apply();
    EXPECT_EQ(source->GetDescription(), "Scene file");
    EXPECT_TRUE(source->GetConstant());
    EXPECT_EQ(source->GetValue(), "c:/data/y.tif");
    EXPECT_EQ(source->GetFunExp(), "");
    EXPECT_EQ(changed, QList<APCVar*>({source}));
}

TEST_F(VarDialog, ApplyWritesAnExpressionBoundToTheModelAndKeepsTheValue)
{
    APCVar* fresh = addVar(model, "{fresh}", "string", "Fresh");
    TestSupport::SetConstant(fresh, "v");
    APCVarDlg dialog(fresh, nullptr);
    const int result = runModal(dialog, [&](QDialog* d) {
        clickButton(d, "varRadio");
        retype(child<QLineEdit>(d, "expressionEdit"), "$ReplaceExtension(%{src}%, 'xml')");
        clickButton(d, "okButton");
    });
    ASSERT_EQ(result, QDialog::Accepted);
    dialog.Apply();
    EXPECT_FALSE(fresh->GetConstant());
    EXPECT_EQ(fresh->GetFunExp(), "$ReplaceExtension(%{src}%, 'xml')");
    EXPECT_EQ(fresh->GetValue(), "v");
    EXPECT_EQ(changed, QList<APCVar*>({fresh}));
    ASSERT_TRUE(model.ResolveVarValues({}));
    EXPECT_EQ(fresh->GetRunValue(), "c:/test/x.xml");
}

TEST_F(VarDialog, AComputedVarSwitchedToConstantAndBackKeepsItsExpression)
{
    struct Case
    {
        const char* name;
        QStringList clicks; // radio buttons, in order
        bool constant;
        QString value;
    };
    const std::vector<Case> cases = {
        {"to Constant", {"constRadio"}, true, "c:/fixed.tif"},
        {"to Constant and back", {"constRadio", "varRadio"}, false, "c:/old/value.tif"},
        {"back and forth twice", {"constRadio", "varRadio", "constRadio", "varRadio"}, false, "c:/old/value.tif"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        computed->SetConstant(false);
        computed->SetValue("c:/old/value.tif");
        changed.clear();
        APCVarDlg dialog(computed, nullptr);
        const int result = runModal(dialog, [&](QDialog* d) {
            for (const QString& button : c.clicks) {
                clickButton(d, qPrintable(button));
                if (button == "constRadio")
                    retype(valueEdit(d), "c:/fixed.tif");
            }
            clickButton(d, "okButton");
        });
        ASSERT_EQ(result, QDialog::Accepted);
        dialog.Apply();
        EXPECT_EQ(computed->GetConstant(), c.constant);
        EXPECT_EQ(computed->GetValue(), c.value);
        EXPECT_EQ(computed->GetFunExp(), "$AppendSuffix(%{src}%, '_a')");
        EXPECT_NE(computed->GetFun(), nullptr);
        EXPECT_EQ(changed, QList<APCVar*>({computed}));
    }
    // Made a constant, the var keeps its expression, which a constant's dialog does not show.
    computed->SetConstant(true);
    APCVarDlg again(computed, nullptr);
    EXPECT_EQ(child<QLineEdit>(&again, "expressionEdit")->text(), "");
    EXPECT_EQ(computed->GetFunExp(), "$AppendSuffix(%{src}%, '_a')");
}

TEST_F(VarDialog, DotsOpenTheFunctionDialogAndOnlyItsOkChangesTheExpression)
{
    struct Case
    {
        const char* name;
        QString typed;     // in the function dialog
        bool ok;           // clicked OK (else Cancel)
        bool refusedFirst; // OK is refused once before Cancel
        QString expected;  // the expression edit afterwards
    };
    const QString before = "$AppendSuffix(%{src}%, '_a')";
    const std::vector<Case> cases = {
        {"cancelled", "$ReplaceExtension(%{src}%, 'xml')", false, false, before},
        {"accepted", "$ReplaceExtension(%{src}%, 'xml')", true, false, "$ReplaceExtension(%{src}%, 'xml')"},
        {"accepted empty", "", true, false, ""},
        {"refused, then cancelled", "$ReplaceExtension(%{src}%)", false, true, before},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        changed.clear();
        APCVarDlg dialog(computed, nullptr);
        const int result = runModal(dialog, [&](QDialog* d) {
            auto* expression = child<QLineEdit>(d, "expressionEdit");
            inFunctionDialog([&](APCFunctionDlg* f) {
                EXPECT_EQ(f->parentWidget(), d);
                EXPECT_EQ(child<QTextEdit>(f, "expressionEdit")->toPlainText(), before);
                EXPECT_EQ(rowTexts(child<QListWidget>(f, "varList")), QStringList({"Kept", "Output", "Scene"}));
                EXPECT_EQ(child<QListWidget>(f, "functionList")->count(), APCFun::GetFunctionList().size());
                retype(child<QTextEdit>(f, "expressionEdit"), c.typed);
                if (c.refusedFirst) {
                    Message message;
                    answerMessage(&message);
                    clickButton(f, "okButton");
                    EXPECT_EQ(message.text, "The function is error!");
                    EXPECT_TRUE(f->isVisible());
                }
                clickButton(f, c.ok ? "okButton" : "cancelButton");
            });
            clickButton(d, "funcButton");
            EXPECT_EQ(expression->text(), c.expected);
            clickButton(d, "okButton");
        });
        ASSERT_EQ(result, QDialog::Accepted);
        dialog.Apply();
        EXPECT_EQ(computed->GetFunExp(), c.expected);
        EXPECT_EQ(changed, QList<APCVar*>({computed}));
        computed->SetFunExp(before);
    }
}

// The window hears the var's change through the model, and the model becomes modified.
TEST(VarDialogInWindow, ApplyRaisesTheWindowsModifiedFlag)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("m.apc");
    ASSERT_TRUE(TestSupport::WriteAll(path, kOneVarModel));
    ModelControler window(path, false);
    APCVar* var = window.GetDocument()->FindVar("{v}");
    ASSERT_NE(var, nullptr);
    ASSERT_FALSE(window.IsModified());
    APCVarDlg dialog(var, &window);
    const int result = runModal(dialog, [](QDialog* d) {
        retype(child<QLineEdit>(d, "descriptionEdit"), "Threshold");
        clickButton(d, "okButton");
    });
    ASSERT_EQ(result, QDialog::Accepted);
    dialog.Apply();
    EXPECT_EQ(var->GetDescription(), "Threshold");
    EXPECT_EQ(var->GetValue(), "x");
    EXPECT_TRUE(window.IsModified());
}

// ---------------------------------------------------------------------------
// VarAddDlg

TEST(VarAddDialog, OkGivesTheChosenRowsTypeAndLabel)
{
    struct Case
    {
        const char* name;
        const char* row; // clicked before OK; null for none
        const char* type;
        const char* label;
    };
    const Case cases[] = {
        {"OK at once", nullptr, "file", "File"},
        {"a chosen row", "Integer", "int", "Integer"},
        {"the last row", "Text", "string", "Text"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VarAddDlg dialog(nullptr);
        const int result = runModal(dialog, [&](QDialog* d) {
            if (c.row)
                clickRow(child<QListWidget>(d, "typeList"), c.row);
            clickButton(d, "okButton");
        });
        EXPECT_EQ(result, QDialog::Accepted);
        EXPECT_EQ(dialog.GetDataType(), c.type);
        EXPECT_EQ(dialog.GetDataTypeLabel(), c.label);
    }
}

TEST(VarAddDialog, OkWithoutACurrentRowIsRefusedAndTheDialogStays)
{
    VarAddDlg dialog(nullptr);
    Message message;
    const int result = runModal(dialog, [&](QDialog* d) {
        auto* list = child<QListWidget>(d, "typeList");
        // The state a list without a current row is in (no host type chosen).
        list->setCurrentRow(-1);
        answerMessage(&message);
        clickButton(d, "okButton");
        EXPECT_EQ(message.shown, 1);
        EXPECT_EQ(message.title, "Error");
        EXPECT_EQ(message.text, "Not selected!");
        EXPECT_EQ(message.buttons, QStringList({"OK"}));
        EXPECT_TRUE(d->isVisible());
        EXPECT_EQ(dialog.GetDataType(), "");
        clickRow(list, "Real number");
        clickButton(d, "okButton");
    });
    EXPECT_EQ(result, QDialog::Accepted);
    EXPECT_EQ(dialog.GetDataType(), "float");
    EXPECT_EQ(dialog.GetDataTypeLabel(), "Real number");
}

// ---------------------------------------------------------------------------
// VarAddCommand

class AddVariable : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(TestSupport::WriteAll(dir.filePath("m.apc"), kOneVarModel));
    }

    // Clicks "Add Variable" in window; act is what the user does in the dialog.
    static void addVariable(ModelControler& window, std::function<void(QDialog*)> act)
    {
        QAction* action = nullptr;
        for (QAction* a : window.findChildren<QAction*>())
            if (a->text() == "Add Variable")
                action = a;
        ASSERT_NE(action, nullptr);
        ASSERT_TRUE(action->isEnabled());
        OnNextModal([&window, act](QWidget* w) {
            auto* dialog = qobject_cast<VarAddDlg*>(w);
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->parentWidget(), &window);
            act(dialog);
        });
        action->trigger();
    }

    QTemporaryDir dir;
};

TEST_F(AddVariable, AddsAVarOfTheChosenTypeAtTheFixedPoint)
{
    ModelControler window(dir.filePath("m.apc"), false);
    QList<APCVar*>& vars = window.GetDocument()->GetVars();
    ASSERT_EQ(vars.size(), 1);
    ASSERT_FALSE(window.IsModified());

    struct Case { const char* name; const char* row; const char* type; const char* label; };
    const Case cases[] = {
        {"OK at once: the first sorted type", nullptr, "file", "File"},
        {"a chosen type, on top of the others", "Integer", "int", "Integer"},
    };
    int expectedCount = 1;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        addVariable(window, [&](QDialog* d) {
            if (c.row)
                clickRow(child<QListWidget>(d, "typeList"), c.row);
            clickButton(d, "okButton");
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
    EXPECT_EQ(vars.first()->GetPos(), vars.last()->GetPos());
}

TEST_F(AddVariable, CancelAddsNothing)
{
    ModelControler window(dir.filePath("m.apc"), false);
    addVariable(window, [](QDialog* d) { clickButton(d, "cancelButton"); });
    EXPECT_EQ(window.GetDocument()->GetVars().size(), 1);
    EXPECT_FALSE(window.IsModified());
}
