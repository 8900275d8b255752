#include "support/GuiDriver.h"

#include "HostCatalog/Metadata.h"
#include "HostCatalogGui/AlgoInfo.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "HostRunner/ExcuteAlgo.h"

#include <QApplication>
#include <QDialog>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

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

TEST_F(AlgoInfoForm, OnlyAlgorithmsInTheCatalogueHaveOne)
{
    EXPECT_EQ(Plugin::GetAlgoInfo("no.such.algorithm", nullptr), nullptr);
#ifdef MB_METADATA_HAS_ALGOINFO
    EXPECT_EQ(Plugin::Metadata::Instance("")->GetAlgoInfo("no.such.algorithm", nullptr), nullptr);
    const std::unique_ptr<AlgoInfo> known(Plugin::Metadata::Instance("")->GetAlgoInfo("raster.aspect", nullptr));
    EXPECT_NE(known, nullptr);
#endif
}

TEST_F(AlgoInfoForm, ShowsTheCatalogueWithDefaultsAndMarksWhatIsRequired)
{
    auto info = aspect();
    QDialog* form = info->GetAlgoDialog();
    EXPECT_EQ(form->windowTitle(), "Aspect");
    EXPECT_EQ(info->GetAlgoParams(), R"({"In File":"","Band":"1","Out File":"","Creation options":"","Additional options":""})");
    struct Case { const char* name; bool required; };
    for (const Case& c : {Case{"In File", true}, Case{"Band", false}, Case{"Out File", true}}) {
        SCOPED_TRACE(c.name);
        auto* w = qobject_cast<Plugin::DataTypeWidget*>(row(form, c.name));
        ASSERT_NE(w, nullptr);
        EXPECT_EQ(w->GetCaption().endsWith(" *"), c.required);
        EXPECT_EQ(w->findChild<QLabel*>("caption")->font().bold(), c.required);
    }
}

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

TEST_F(AlgoInfoForm, VarReferenceIsReadOnlyUntilUnlinked)
{
    auto info = aspect();
    QDialog* form = info->GetAlgoDialog();
    info->SetAlgoParams("{\"Band\":\"" + kRef + "\"}");
    auto* linked = row(form, "Band")->findChild<QLineEdit*>("edit");
    EXPECT_TRUE(linked->isReadOnly());
    EXPECT_EQ(linked->text(), kRef);
    QTest::mouseClick(row(form, "Band")->findChild<QPushButton*>("unlink"), Qt::LeftButton);
    GuiDriver::TypeInto(row(form, "Band"), "edit", "x3"); // the int widget again, refusing the letter
    EXPECT_EQ(QJsonDocument::fromJson(info->GetAlgoParams().toUtf8()).object().value("Band").toString(), "13");
}

TEST_F(AlgoInfoForm, OkRefusesAnEmptyRequiredValueThenKeepsWhatWasTyped)
{
    auto info = aspect();
    QDialog* form = info->GetAlgoDialog();
    QString refusal;
    GuiDriver::OnNextModal([&](QWidget*) {
        GuiDriver::TypeInto(row(form, "In File"), "edit", "/d/dem.tif");
        GuiDriver::OnNextModal([&](QWidget* box) {
            refusal = qobject_cast<QMessageBox*>(box) ? qobject_cast<QMessageBox*>(box)->text() : "no message box";
            box->close();
            EXPECT_TRUE(form->isVisible());
            GuiDriver::TypeInto(row(form, "Out File"), "edit", "/d/aspect.tif");
            press(form, "ok");
        });
        press(form, "ok");
    });
    EXPECT_EQ(form->exec(), QDialog::Accepted);
    EXPECT_EQ(refusal, "Please set value: Aspect, Float32; flat cells are no-data");
    EXPECT_EQ(info->GetAlgoParams(), R"({"In File":"/d/dem.tif","Band":"1","Out File":"/d/aspect.tif","Creation options":"","Additional options":""})");
}

TEST_F(AlgoInfoForm, CancelPutsBackTheValuesTheFormOpenedWith)
{
    auto info = aspect();
    info->SetAlgoParams(R"({"In File":"/d/dem.tif"})");
    const QString before = info->GetAlgoParams();
    QDialog* form = info->GetAlgoDialog();
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
        EXPECT_EQ(form->exec(), QDialog::Rejected);
        EXPECT_EQ(info->GetAlgoParams(), before);
    }
}

TEST_F(AlgoInfoForm, OutlivesItsParentsForm)
{
    auto parent = std::make_unique<QWidget>();
    std::unique_ptr<AlgoInfo> info(Plugin::GetAlgoInfo("raster.aspect", parent.get()));
    info->SetAlgoParams(R"({"In File":"/d/dem.tif"})");
    EXPECT_EQ(info->GetAlgoDialog()->parentWidget(), parent.get());
    parent.reset(); // takes the form with it
    EXPECT_EQ(info->GetAlgoParams(), R"({"In File":"/d/dem.tif","Band":"1","Out File":"","Creation options":"","Additional options":""})");
    ASSERT_NE(info->GetAlgoDialog(), nullptr);
    EXPECT_EQ(info->GetAlgoDialog()->findChild<QStackedWidget*>("In File")->currentWidget()->findChild<QLineEdit*>("edit")->text(),
              "/d/dem.tif");
}
