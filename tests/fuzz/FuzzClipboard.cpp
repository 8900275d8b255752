// libFuzzer target: any text pasted into a model window either adds nothing or
// adds objects that leave a model which saves, reloads with the same objects and
// saves again to the same text; deleting what was pasted restores the model.
#include "editor/ModelControler.h"
#include "editor/PasteCommand.h"
#include "fuzz/FuzzSupport.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"

#include <QApplication>
#include <QClipboard>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

// The window every input is pasted into: a step with its two vars, and a free var.
const char kModel[] = R"apc(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <Processes>
        <Process class="algo" name="{step}" posX="0" posY="0" painter="" processName="raster.ndvi">
            <Parameter name="In File" type="file" direction="0" value="%{in}%" description=""/>
            <Parameter name="Out File" type="file" direction="1" value="%{out}%" description=""/>
        </Process>
    </Processes>
    <Vars>
        <Var class="file" name="{in}" posX="0" posY="-100" painter="" constant="1" value="a.tif"/>
        <Var class="file" name="{out}" posX="0" posY="100" painter="" constant="0" funExp="$AppendSuffix(%{in}%, '_n')"/>
        <Var class="folder" name="{free}" posX="100" posY="0" painter="" constant="0" funExp=""/>
    </Vars>
    <Arrows>
        <Arrow head="{step}" headType="process" headParam="In File" tail="{in}" tailType="var" tailParam="" class="arrow" posX="0" posY="0" painter=""/>
        <Arrow head="{out}" headType="var" headParam="" tail="{step}" tailType="process" tailParam="Out File" class="arrow" posX="0" posY="0" painter=""/>
    </Arrows>
</Configuration>
)apc";

// An application with widgets, whose offscreen clipboard lives in this process:
// the paste reads its text from there, as from the desktop's.
struct Fixture : Fuzz::Application<QApplication>
{
    Fixture() : Application("fuzz_clipboard", "apc") { Fuzz::WriteAll(input, kModel, sizeof kModel - 1); }
    std::unique_ptr<Plugin::ModelControler> window;
    int uses = 0;

    // A window costs far more than a paste, so one serves many inputs. It keeps
    // the canvas items of removed objects until it closes: a fresh one now and
    // then bounds them.
    Plugin::ModelControler& Window()
    {
        if (!window || ++uses > 256) {
            window.reset();
            window = std::make_unique<Plugin::ModelControler>(input, false);
            uses = 1;
        }
        return *window;
    }
};

int Count(Plugin::APCModel& model)
{
    return model.GetProcesses().size() + model.GetVars().size() + model.GetArrows().size();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Fixture fixture;
    const Fuzz::NoSoftAssert check;
    QGuiApplication::clipboard()->setText(QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    Plugin::ModelControler& window = fixture.Window();
    Plugin::APCModel& model = *window.GetDocument();
    const int processes = model.GetProcesses().size();
    const int vars = model.GetVars().size();
    const int before = Count(model);
    Plugin::PasteCommand paste;
    paste.SetControler(&window);
    paste.OnClick();
    const int pasted = Count(model);
    if (pasted == before)
        return 0;
    if (!model.SaveFile(fixture.first))
        abort();
    {
        Plugin::APCModel again;
        if (!again.LoadFile(fixture.first) || Count(again) != pasted || !again.SaveFile(fixture.second))
            abort();
    }
    fixture.SameSaves();

    // Back to the window's own model, as a user would delete what was pasted: the
    // steps and vars go through the model, each taking its arrows with it, and the
    // window frees them. Every pasted arrow joins a pasted step to a pasted var.
    const QList<Plugin::APCProcess*> steps = model.GetProcesses().mid(processes);
    const QList<Plugin::APCVar*> pastedVars = model.GetVars().mid(vars);
    for (Plugin::APCProcess* step : steps)
        window.RemoveObject(step);
    for (Plugin::APCVar* var : pastedVars)
        window.RemoveObject(var);
    if (Count(model) != before)
        abort();
    return 0;
}
