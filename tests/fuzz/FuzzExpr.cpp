// libFuzzer target: any text given to the path expression parser either gives
// null or a function that binds, evaluates and frees cleanly.
#include "functions/APCFun.h"
#include "model/APCModel.h"
#include "model/APCVar.h"

#include <QDir>
#include <QtGlobal>
#include <QString>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

// A model with vars that have run values, and a scratch working directory for
// $SubDirectory. Lives for the whole run; its directory is removed at exit.
struct Fixture
{
    QTemporaryDir dir;
    Plugin::APCModel model;

    Fixture()
    {
        if (!dir.isValid() || !QDir::setCurrent(dir.path()))
            abort();
        // Qt warns about every file name holding a NUL; that is expected here.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        // Relative values only, so that $SubDirectory stays below the scratch folder.
        Add("{a}", "x.tif");
        Add("{b}", "d_1/a_b_y.tif");
        Add("{c}", "d_2/a_b_x");
        Add("x", "1");
    }

    void Add(const QString& id, const QString& value)
    {
        auto* var = new Plugin::APCVar; // the model owns it
        var->SetName(id);
        var->SetConstant(true);
        var->SetValue(value);
        var->SetRunValue(value);
        model.AddVar(var);
    }
};

// Whether evaluating text is safe and bounded. $SubDirectory makes directories:
// only a single call on literals without "/" or ".." stays inside the scratch
// folder, since other functions can build absolute or parent paths. And replacing
// an empty text inserts between all characters, so nested calls multiply the
// length: a few calls on a short text keep a run within memory.
bool MayEvaluate(const QString& text)
{
    const int calls = text.count(QLatin1Char('$'));
    if (text.size() > 512 || calls > 4)
        return false;
    if (text.contains(QLatin1String("SubDirectory")))
        return calls == 1 && !text.contains(QLatin1Char('/')) && !text.contains(QLatin1String(".."));
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Fixture fixture;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    std::unique_ptr<Plugin::APCFun> fun(Plugin::APCFun::Create(text));
    if (!fun)
        return 0;
    fun->SetModel(&fixture.model);
    if (MayEvaluate(text)) {
        const QString first = fun->Evaluate();
        // Bound again, as after vars were added: the value stays.
        fun->SetModel(&fixture.model);
        if (fun->Evaluate() != first)
            abort();
        // Unbound references evaluate as empty.
        fun->SetModel(nullptr);
        fun->Evaluate();
    }
    return 0;
}
