// The value widgets of each data type and the algorithm forms built from the
// catalogue, driven offscreen as a user drives them.
#include "support/GuiDriver.h"
#include "support/TestSupport.h"

#include "HostCatalog/Metadata.h"
#include "HostCatalogGui/AlgoInfo.h"
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "HostRunner/ExcuteAlgo.h"

#include <QCheckBox>
#include <QDialog>
#include <QFileDialog>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

using Plugin::DataTypeFactory;
using Plugin::DataTypeWidget;

namespace {

using WidgetPtr = std::unique_ptr<DataTypeWidget>;

WidgetPtr make(const QString& type, const QString& typeParam = QString())
{
    return WidgetPtr(DataTypeFactory::CreateDataTypeWidget(type, typeParam));
}

QJsonObject json(const QString& text)
{
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

QTableWidget* tableOf(DataTypeWidget* w)
{
    return w->findChild<QTableWidget*>(QStringLiteral("table"));
}

QCheckBox* checkAt(DataTypeWidget* w, int row, int column)
{
    return tableOf(w)->cellWidget(row, column)->findChild<QCheckBox*>();
}

const QStringList kTypes = {"file", "filePath", "folder", "multiFile", "multiDirectory", "filter",
                            "string", "int", "long", "float", "spatialReference"};

} // namespace

// The factory lists every type once, each with a widget of its own that gives back
// exactly the text it was given; anything else, "File" too, gets the fallback line edit.
TEST(DataTypeWidget, EveryListedTypeHasItsOwnWidgetThatGivesBackExactlyTheTextItWasGiven)
{
    const QList<Plugin::DataTypeInfo> infos = DataTypeFactory::GetDataTypeInfo();
    QSet<QString> types, labels;
    for (const Plugin::DataTypeInfo& info : infos) {
        types.insert(info.type);
        labels.insert(info.label);
    }
    EXPECT_EQ(types, QSet<QString>(kTypes.begin(), kTypes.end()));
    EXPECT_EQ(labels.size(), infos.size());
    EXPECT_STREQ(make("File")->metaObject()->className(), "Plugin::DefaultDataWidget");
    const QString longList = QStringList(QVector<QString>(3000, QStringLiteral("/data/scene_000.tif")).toList()).join(';');
    const QStringList values = {
        "", "plain", "%{2b8c1d5e-0000-4000-8000-000000000001}%", "  blanks  ", "line\nbreak", "Höhe \"1\" \\ x",
        longList, "{\"/b\":{\"subdir\":\"1\",\"enabled\":\"1\"},\"/a\":{\"enabled\":\"0\"}}",
        "{ \"Out File\" : \"*.tif;*.tiff\", \"x\":1 }", "{\"a\":{\"subdir\":1,\"note\":\"kept\"}}", "{broken", "[1,2]",
        "12", "-3.5e2", "EPSG:4326", "not a number"};
    // Each value under a type parameter of its own; bad ones change nothing either.
    const QStringList typeParams = {R"j({"direction":"1","filter":"GeoTIFF (*.tif)"})j", "{", "[]", "null", "\"x\"",
                                    "{\"direction\":{}}", "{\"filter\":7}"};
    for (const QString& type : kTypes + QStringList{"unknown"}) {
        const bool fallback = QByteArray(make(type)->metaObject()->className()) == "Plugin::DefaultDataWidget";
        EXPECT_EQ(fallback, type == "unknown") << type.toStdString();
        for (int i = 0; i < values.size(); ++i) {
            const QString& value = values[i];
            SCOPED_TRACE((type + " <- " + value.left(60)).toStdString());
            WidgetPtr w = make(type, typeParams[i % typeParams.size()]);
            w->SetValue(value);
            EXPECT_EQ(w->GetValue(), value);
            w->SetValue("x");
            w->SetValue(value); // a second SetValue forgets the first
            EXPECT_EQ(w->GetValue(), value);
        }
    }
}

TEST(DataTypeWidget, NumberEditorsRefuseKeystrokesThatMakeNoNumber)
{
    struct Case { const char* name; const char* type; const char* start; const char* typed; const char* expected; };
    const Case cases[] = {
        {"letters into int", "int", "12", "abc", "12"},
        {"signed int", "int", "", "-42", "-42"},
        {"int up to 32 bits", "int", "214748364", "7", "2147483647"},
        {"int past 32 bits", "int", "214748364", "8", "214748364"},
        {"long takes 64 bits", "long", "", "9000000000", "9000000000"},
        {"long past 64 bits", "long", "9223372036854775807", "1", "9223372036854775807"},
        {"float exponent", "float", "", "-1.5e-3", "-1.5e-3"},
        {"float comma", "float", "", "1,5", "15"},
        {"float letters", "float", "2.5", "xyz", "2.5"},
        {"float second point", "float", "2.5", ".", "2.5"},
        {"text takes anything", "string", "", "a1,.", "a1,."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WidgetPtr w = make(c.type);
        w->SetValue(c.start);
        auto* edit = w->findChild<QLineEdit*>("edit");
        edit->end(false);
        GuiDriver::TypeInto(w.get(), "edit", c.typed);
        EXPECT_EQ(w->GetValue(), c.expected);
    }
}

TEST(DataTypeWidget, BrowseAsksForTheRightKindOfPathAndTakesTheAnswer)
{
    QTemporaryDir dir;
    const QString a = dir.filePath("a.tif"), b = dir.filePath("b.tif");
    ASSERT_TRUE(TestSupport::WriteAll(a, "") && TestSupport::WriteAll(b, ""));
    const QString filter = R"j("filter":"GeoTIFF (*.tif *.tiff);;All files (*)")j";
    // typed: what a user types into the dialog's file name line.
    struct Case { const char* name; QString type; QString typeParam; QString start; QFileDialog::AcceptMode accept;
                  QFileDialog::FileMode mode; QString typed; QString expected; };
    const Case cases[] = {
        {"input file", "file", "{" + filter + "}", "", QFileDialog::AcceptOpen, QFileDialog::ExistingFile, "a.tif", a},
        {"output file", "file", "{\"direction\":\"1\"," + filter + "}", "", QFileDialog::AcceptSave,
         QFileDialog::AnyFile, "new.tif", dir.filePath("new.tif")},
        {"file to write", "filePath", "{" + filter + "}", "", QFileDialog::AcceptSave, QFileDialog::AnyFile, "out.tif",
         dir.filePath("out.tif")},
        {"files are added", "multiFile", "{" + filter + "}", a, QFileDialog::AcceptOpen, QFileDialog::ExistingFiles,
         "\"a.tif\" \"b.tif\"", a + ";" + b},
        {"folder", "folder", "", "", QFileDialog::AcceptOpen, QFileDialog::Directory, "", dir.path()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WidgetPtr w = make(c.type, c.typeParam);
        w->SetValue(c.start);
        GuiDriver::OnNextModal([&](QWidget* modal) {
            auto* dialog = qobject_cast<QFileDialog*>(modal);
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->acceptMode(), c.accept);
            EXPECT_EQ(dialog->fileMode(), c.mode);
            dialog->setDirectory(dir.path());
            if (c.mode != QFileDialog::Directory) {
                EXPECT_EQ(dialog->nameFilters(), QStringList({"GeoTIFF (*.tif *.tiff)", "All files (*)"}));
                dialog->findChild<QLineEdit*>("fileNameEdit")->setText(c.typed);
            }
            static_cast<QDialog*>(dialog)->accept();
        });
        GuiDriver::Click(w.get(), "browse");
        EXPECT_EQ(w->GetValue(), c.expected);
    }
}

// ---------------------------------------------------------------------------
// Algorithm forms

using Plugin::AlgoInfo;

namespace {

const QString kRef = "%{2b8c1d5e-0000-4000-8000-000000000001}%";

class AlgoInfoForm : public ::testing::Test
{
protected:
    void SetUp() override
    {
        HostRunner::RegisterBuiltinAlgorithms();
        ASSERT_NE(Plugin::Metadata::Instance("")->GetConfig("raster.aspect"), nullptr);
    }

    // The aspect algorithm: "In File" and "Out File" required, "Band" defaults to 1; the options are optional.
    std::unique_ptr<AlgoInfo> aspect()
    {
        return std::unique_ptr<AlgoInfo>(Plugin::GetAlgoInfo("raster.aspect", nullptr));
    }
    static QWidget* row(QDialog* form, const char* name) { return form->findChild<QStackedWidget*>(name)->currentWidget(); }
    static void press(QDialog* form, const char* button) { QTest::mouseClick(form->findChild<QPushButton*>(button), Qt::LeftButton); }
};

} // namespace

TEST_F(AlgoInfoForm, ParameterTextRoundTrips)
{
    struct Case { const char* name; QString in; QString out; };
    const Case cases[] = {
        {"dialog text with blanks after commas", R"({"In File":"/d/a.tif", "Band":"2", "Out File":"/d/\"b\".tif"})",
         R"({"In File":"/d/a.tif","Band":"2","Out File":"/d/\"b\".tif","Creation options":"","Additional options":""})"},
        {"var references survive any type", "{\"In File\":\"" + kRef + "\",\"Band\":\"" + kRef + "\"}",
         "{\"In File\":\"" + kRef + "\",\"Band\":\"" + kRef + "\",\"Out File\":\"\",\"Creation options\":\"\",\"Additional options\":\"\"}"},
        {"missing members keep their values, unknown ones are kept", R"({"Stale":"x","Out File":"o"})",
         R"({"In File":"","Band":"1","Out File":"o","Creation options":"","Additional options":"","Stale":"x"})"},
        {"bad JSON changes nothing", R"({"In File":"/d/a.tif")", R"({"In File":"","Band":"1","Out File":"","Creation options":"","Additional options":""})"},
        {"no object changes nothing", "[]", R"({"In File":"","Band":"1","Out File":"","Creation options":"","Additional options":""})"},
        {"beyond ASCII is escaped", QString::fromUtf8(R"({"In File":"/Höhe/ä.tif"})"),
         R"({"In File":"/H\u00f6he/\u00e4.tif","Band":"1","Out File":"","Creation options":"","Additional options":""})"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (bool withForm : {false, true}) {
            auto info = aspect();
            if (withForm)
                info->GetAlgoDialog();
            info->SetAlgoParams(c.in);
            EXPECT_EQ(info->GetAlgoParams(), c.out);
        }
    }
}

// The form marks what is required; OK refuses an empty required value and then
// keeps what was typed; Cancel and Escape put back the values the form opened with;
// a var reference is read-only until unlinked.
TEST_F(AlgoInfoForm, OkRefusesAnEmptyRequiredValueCancelPutsBackWhatTheFormOpenedWithAReferenceIsLocked)
{
    auto info = aspect();
    QDialog* form = info->GetAlgoDialog();
    EXPECT_EQ(form->windowTitle(), "Aspect");
    for (const char* name : {"In File", "Band", "Out File"}) {
        auto* w = qobject_cast<Plugin::DataTypeWidget*>(row(form, name));
        ASSERT_NE(w, nullptr);
        const bool required = QByteArray(name) != "Band";
        EXPECT_EQ(w->GetCaption().endsWith(" *"), required) << name;
        EXPECT_EQ(w->findChild<QLabel*>("caption")->font().bold(), required) << name;
    }
    GuiDriver::OnNextModal([&](QWidget*) {
        GuiDriver::TypeInto(row(form, "In File"), "edit", "/d/dem.tif");
        GuiDriver::ExpectMessage("Error", "Please set value: Aspect, Float32; flat cells are no-data");
        press(form, "ok");
        EXPECT_TRUE(form->isVisible());
        GuiDriver::TypeInto(row(form, "Out File"), "edit", "/d/aspect.tif");
        press(form, "ok");
    });
    EXPECT_EQ(form->exec(), QDialog::Accepted);
    const QString accepted =
        R"({"In File":"/d/dem.tif","Band":"1","Out File":"/d/aspect.tif","Creation options":"","Additional options":""})";
    EXPECT_EQ(info->GetAlgoParams(), accepted);

    for (const char* how : {"cancel", "escape"}) {
        SCOPED_TRACE(how);
        GuiDriver::OnNextModal([&](QWidget*) {
            GuiDriver::TypeInto(row(form, "Band"), "edit", "7");
            GuiDriver::TypeInto(row(form, "In File"), "edit", "x");
            if (QByteArray(how) == "cancel")
                press(form, "cancel");
            else
                QTest::keyClick(form, Qt::Key_Escape);
        });
        EXPECT_EQ(info->GetAlgoDialog()->exec(), QDialog::Rejected); // the same form again
        EXPECT_EQ(info->GetAlgoParams(), accepted);
    }

    info->SetAlgoParams("{\"Band\":\"" + kRef + "\"}");
    auto* linked = row(form, "Band")->findChild<QLineEdit*>("edit");
    EXPECT_TRUE(linked->isReadOnly());
    EXPECT_EQ(linked->text(), kRef);
    QTest::mouseClick(row(form, "Band")->findChild<QPushButton*>("unlink"), Qt::LeftButton);
    GuiDriver::TypeInto(row(form, "Band"), "edit", "x3"); // the int widget again, refusing the letter
    EXPECT_EQ(QJsonDocument::fromJson(info->GetAlgoParams().toUtf8()).object().value("Band").toString(), "13");
}

TEST(DataTypeWidget, FolderRowsFollowClicksAndTheFolderPicker)
{
    QTemporaryDir dir;
    WidgetPtr w = make("multiDirectory");
    w->SetValue(R"({"/b":{"subdir":"1","enabled":"1","note":"kept"},"/a":{"enabled":"1"}})");
    QTableWidget* table = tableOf(w.get());
    ASSERT_EQ(table->rowCount(), 2);
    EXPECT_EQ(table->item(0, 0)->text(), "/a"); // sorted, as the iterator reads them
    EXPECT_FALSE(checkAt(w.get(), 0, 1)->isChecked());
    EXPECT_TRUE(checkAt(w.get(), 1, 1)->isChecked());

    QTest::mouseClick(checkAt(w.get(), 0, 1), Qt::LeftButton);
    EXPECT_EQ(json(w->GetValue()), json(R"({"/a":{"subdir":"1","enabled":"1"},
        "/b":{"subdir":"1","enabled":"1","note":"kept"}})"));

    const QString picked = QDir(dir.path()).absolutePath();
    for (int round = 0; round < 2; ++round) { // the second pick of the same folder adds nothing
        GuiDriver::PickFolder(picked);
        GuiDriver::Click(w.get(), "add");
    }
    ASSERT_EQ(table->rowCount(), 3);
    EXPECT_EQ(json(w->GetValue()).value(picked).toObject(), json(R"({"subdir":"0","enabled":"1"})"));

    for (const QStringList& left : {QStringList{"/b", picked}, QStringList{picked}, QStringList()}) {
        table->selectRow(0);
        GuiDriver::Click(w.get(), "remove");
        EXPECT_EQ(json(w->GetValue()).keys(), left);
    }
    EXPECT_EQ(w->GetValue(), ""); // no rows is nothing set
}

