// Validate in the model window tells of options GDAL refuses, after its own verdict.
#include "editor/ModelControler.h"
#include "engine/APCAlgo.h"
#include "model/APCVar.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"

#include <QAction>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace Plugin;

TEST(ValidateOptions, ARefusedOptionFollowsTheSucceedBoxNamingStepParameterAndReason)
{
    QTemporaryDir dir;
    {
        TestSupport::HeadlessModel model;
        struct Step { const char* algorithm; const char* options; };
        for (const Step& s : {Step{"raster.hillshade", "COMPRESS=DEFLATE"}, Step{"raster.translate", "COMPRESS=NOPE"}}) {
            APCAlgo* step = TestSupport::AddAlgo(model, s.algorithm);
            TestSupport::SetConstant(TestSupport::VarOf(model, step, "In File"), dir.filePath("in.tif"));
            TestSupport::SetConstant(TestSupport::VarOf(model, step, "Out File"), dir.filePath("out.tif"));
            TestSupport::SetLiteral(model, step, "Creation options", s.options);
        }
        ASSERT_TRUE(model.SaveFile(dir.filePath("options.apc")));
    }
    ModelControler window(dir.filePath("options.apc"), false);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));

    QStringList boxes;
    std::function<void(QWidget*)> answer = [&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_TRUE(box);
        boxes << box->windowTitle() + ": " + box->text();
        if (boxes.size() == 1)
            GuiDriver::OnNextModal(answer);
        box->accept();
    };
    GuiDriver::OnNextModal(answer);
    GuiDriver::Action(&window, "Validate Entire Model")->trigger();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_EQ(boxes[0], "succeed: Validate Succeed");
    EXPECT_EQ(boxes[1], "Warning: The parameter \"Creation options\" of \"Convert raster\" is refused: "
                        "'NOPE' is an unexpected value for COMPRESS creation option of type string-select.");
}
