// mbrun: runs a model file the way the editor's Run does, without a window.
#include "HostRunner/AlgorithmList.h"
#include "engine/APCExecuteFactory.h"
#include "engine/APCLog.h"
#include "engine/ModelRun.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCModel.h"
#include "model/APCObject.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "model/FreeVars.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTextCodec>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <unistd.h>

namespace {

enum ExitCode { Success = 0, StepFailed = 1, UsageError = 2 };

void out(const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), stdout);
    std::fflush(stdout);
}

void err(const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
}

const char* kUsage =
    "Usage: mbrun MODEL.apc [--set NAME=VALUE]...   run the model\n"
    "       mbrun MODEL.apc --list                  list its free inputs\n"
    "       mbrun --algorithms                      list the host's algorithms (Markdown)\n"
    "       mbrun --help\n"
    "\n"
    "NAME is a free input's description or id. The run's log goes to standard output;\n"
    "exit code 0 when every step succeeded, 1 when a step failed, 2 on a usage, load or\n"
    "validation error.\n";

// Streams the run's log to standard output as it is written.
class StreamingLog : public Plugin::APCLog
{
public:
    void Write(const QString& text) override
    {
        APCLog::Write(text);
        out(text);
    }
    void WriteError(const QString& text) override
    {
        APCLog::WriteError(text);
        m_failed = true;
    }
    bool Failed() const { return m_failed; }

private:
    bool m_failed = false;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Paths travel as local 8-bit text to the algorithms: make that UTF-8.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

    QStringList args = app.arguments().mid(1);
    if (args.isEmpty() || args.contains("--help") || args.contains("-h")) {
        out(QString::fromLatin1(kUsage));
        return args.isEmpty() ? UsageError : Success;
    }
    if (args.first() == "--algorithms") {
        out(HostRunner::AlgorithmListMarkdown());
        return Success;
    }

    const QString path = args.takeFirst();
    bool list = false;
    QList<QPair<QString, QString>> settings;
    while (!args.isEmpty()) {
        const QString a = args.takeFirst();
        if (a == "--list") {
            list = true;
        } else if (a == "--set" && !args.isEmpty()) {
            const QString pair = args.takeFirst();
            const int eq = pair.indexOf('=');
            if (eq <= 0) {
                err(QStringLiteral("mbrun: --set needs NAME=VALUE, got \"%1\"\n").arg(pair));
                return UsageError;
            }
            settings.append({pair.left(eq), pair.mid(eq + 1)});
        } else {
            err(QStringLiteral("mbrun: unknown argument \"%1\"\n\n").arg(a) + QString::fromLatin1(kUsage));
            return UsageError;
        }
    }

    Plugin::APCModel model;
    if (!QFileInfo::exists(path) || !model.LoadFile(path)) {
        err(QStringLiteral("mbrun: cannot open the model file %1\n").arg(path));
        return UsageError;
    }

    const Plugin::FreeVars free(model);
    if (list) {
        out(QStringLiteral("id\tdescription\ttype\n"));
        for (Plugin::APCVar* v : free.List())
            out(QStringLiteral("%1\t%2\t%3\n").arg(v->GetName(), v->GetDescription(), v->GetClass()));
        return Success;
    }

    if (Plugin::APCObject* bad = model.FindInvalidObject()) {
        err(bad->GetDescription() + QStringLiteral(" is wrong!\n"));
        return UsageError;
    }
    if (model.GetProcesses().isEmpty()) {
        err(QStringLiteral("can not run an empty model!\n"));
        return UsageError;
    }
    for (const auto& s : settings) {
        bool matched = false;
        for (Plugin::APCVar* v : free.List())
            if (v->GetName() == s.first || v->GetDescription() == s.first) {
                v->SetValue(s.second);
                matched = true;
            }
        if (!matched) {
            err(QStringLiteral("mbrun: the model has no free input named \"%1\" (see --list)\n").arg(s.first));
            return UsageError;
        }
    }
    for (Plugin::APCVar* v : free.List())
        if (v->GetValue().isEmpty()) {
            err(QStringLiteral("Please set value: %1 (--set \"%1=...\")\n").arg(v->GetDescription()));
            return UsageError;
        }

    Plugin::SequenceControl control;
    auto* log = new StreamingLog;
    control.SetLog(log);
    const bool terminal = isatty(fileno(stderr));
    if (terminal)
        control.NodeProgress.connect([](Plugin::SequenceNode* node, double value) {
            err(QStringLiteral("\r%1: %2%   ").arg(node->GetProcess()->GetDescription()).arg(value, 0, 'f', 0));
        });

    // A graph that cannot run is refused before the start; a run that still
    // waits for nothing (an end node the iterator never reaches again) would
    // wait forever: end it with a message.
    bool stuck = false;
    QTimer watchdog;
    QObject::connect(&watchdog, &QTimer::timeout, [&] {
        if (control.GetState() == Plugin::SequenceControl::Running && !Plugin::APCExecuteFactory::Instance()->IsRunning()) {
            stuck = true;
            err(QStringLiteral("mbrun: the run cannot go on: no step is running or ready to run\n"));
            control.Stop();
        }
    });
    watchdog.start(500);

    Plugin::ModelRun run(control, model);
    if (!run.Start(free.List(), QFileInfo(path).baseName())) {
        err(QStringLiteral("mbrun: the model cannot run: %1\n").arg(control.GetBuildError()));
        return UsageError;
    }
    run.Wait();
    if (terminal)
        err(QStringLiteral("\n"));

    int code = 0;
    QString message;
    control.GetError(code, message);
    if (stuck)
        return UsageError;
    return log->Failed() ? StepFailed : Success;
}
