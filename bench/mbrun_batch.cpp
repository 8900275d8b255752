// mbrun on big batches, through the real binary and the shipped NDVI model: a dry
// run over 10,000 file rounds, and a resumed 1,000-round batch of real GDAL steps
// that has nothing left to do. Each is printed with a baseline measured here too.
#include "BenchSupport.h"
#include "Scenes.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <gdal_priv.h>

#include <cstdio>
#include <vector>

namespace {

QString g_mbrun;

// Runs mbrun to its end with its standard output thrown away; returns the wall time in ms.
double timeMbrun(const QStringList& args, int* exitCode)
{
    QProcess p;
    p.setStandardOutputFile(QProcess::nullDevice());
    return Bench::Millis([&] {
        p.start(g_mbrun, args);
        p.waitForFinished(-1);
        *exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
        if (*exitCode != 0)
            std::fprintf(stderr, "mbrun %s: exit %d\n%s", qPrintable(args.join(' ')), *exitCode,
                         p.readAllStandardError().constData());
    });
}


QMap<QString, qint64> modificationTimes(const QString& dir)
{
    QMap<QString, qint64> times;
    QDirIterator it(dir, QDir::Files | QDir::Hidden);
    while (it.hasNext()) {
        it.next();
        times.insert(it.fileName(), it.fileInfo().lastModified().toMSecsSinceEpoch());
    }
    return times;
}

QStringList inputs(const QString& scenes, const QString& out)
{
    return {"--set", "Scene folders=" + scenes, "--set", "Output folder=" + out};
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QString bin = QCoreApplication::applicationDirPath();
    g_mbrun = bin + "/mbrun";
    const QString model = bin + "/../Model/apc/scene_ndvi.apc";
    if (!QFileInfo::exists(g_mbrun) || !QFileInfo::exists(model)) {
        std::fprintf(stderr, "needs %s and %s: build the mbrun target first\n", qPrintable(g_mbrun), qPrintable(model));
        return 1;
    }
    QTemporaryDir dir;
    int code = 0;

    // A dry run plans 10,000 rounds; the files are never opened, so empty ones do.
    const QString many = dir.filePath("many");
    QDir().mkpath(many);
    for (int i = 0; i < 10000; ++i)
        QFile(QDir(many).filePath(QStringLiteral("scene_%1.tif").arg(i, 5, 10, QLatin1Char('0')))).open(QIODevice::WriteOnly);
    const double list = timeMbrun({model, "--list"}, &code);
    const double dry = timeMbrun(QStringList{model, "--dry-run"} + inputs(many, dir.filePath("never")), &code);
    Bench::Print("dry_run_10000_rounds", dry, "ms (target < 1000)");
    Bench::Print("dry_run_baseline_start_and_load", list, "ms (mbrun --list on the same model)");
    Bench::Print("dry_run_per_round", (dry - list) * 1000.0 / 10000, "us");
    Bench::Print("dry_run_files_written", QDir(dir.filePath("never")).exists() ? 1 : 0, "folders (target 0)");

    // A batch of 1,000 tiny scenes, two GDAL steps each: run for real, then resumed.
    GDALAllRegister();
    const QString scenes = dir.filePath("scenes"), out = dir.filePath("out");
    QDir().mkpath(scenes);
    for (int i = 0; i < 1000; ++i)
        Bench::MakeTinyScene(QDir(scenes).filePath(QStringLiteral("scene_%1.tif").arg(i, 4, 10, QLatin1Char('0'))));
    const QString firstReport = dir.filePath("first.json"), resumedReport = dir.filePath("resumed.json");
    const double full = timeMbrun(QStringList{model, "--resume", "--report", firstReport} + inputs(scenes, out), &code);
    const QMap<QString, qint64> before = modificationTimes(out);
    const double resumed = timeMbrun(QStringList{model, "--resume", "--report", resumedReport} + inputs(scenes, out), &code);
    const QMap<QString, qint64> after = modificationTimes(out);

    QFile f(resumedReport);
    f.open(QIODevice::ReadOnly);
    const QJsonObject summary = QJsonDocument::fromJson(f.readAll()).object().value("summary").toObject();
    const int ran = summary.value("succeeded").toInt() + summary.value("failed").toInt();
    int rewritten = 0;
    for (auto it = after.constBegin(); it != after.constEnd(); ++it)
        rewritten += before.value(it.key(), -1) != it.value() ? 1 : 0;
    Bench::Print("resume_1000_rounds", resumed, "ms (target < 2000)");
    Bench::Print("resume_steps_run", ran, "steps (target 0: no GDAL call)");
    Bench::Print("resume_steps_skipped", summary.value("skipped").toInt(), "steps (of 2000)");
    Bench::Print("resume_files_rewritten", rewritten, "files (target 0)");
    Bench::Print("resume_baseline_full_run_1000_rounds", full, "ms (the same batch run for real: 2,000 GDAL steps)");
    return 0;
}
