#include "engine/ClusterExport.h"

#include "engine/ModelNesting.h"
#include "engine/ModelRun.h"
#include "engine/RunPlan.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/WholeFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

namespace Plugin {

namespace {

// A Python string literal: JSON's escapes are Python's.
QString pyString(const QString& text)
{
    const QByteArray json = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(json.mid(1, json.size() - 2));
}

QString pyList(const QStringList& items)
{
    QStringList quoted;
    for (const QString& item : items)
        quoted << pyString(item);
    return QLatin1Char('[') + quoted.join(QStringLiteral(", ")) + QLatin1Char(']');
}

// YAML's double-quoted scalars take JSON's escapes too.
QString yamlString(const QString& text) { return pyString(text); }

// Where the iterator could not hand out its files, the run would fail there.
class FailureWatch : public RunPlan::Visitor
{
public:
    void OnIteratorFailed(SequenceNode* node, int, const QString& message) override
    {
        if (failure.isEmpty())
            failure = QStringLiteral("the iterator \"%1\" cannot hand out its files: %2").arg(node->GetProcess()->GetDescription(), message);
    }
    QString failure;
};

bool fail(QString* error, const QString& reason)
{
    if (error)
        *error = reason;
    return false;
}

} // namespace

ClusterExport::ClusterExport(const QString& modelPath, const QList<QPair<QString, QString>>& settings, const QString& mbrun)
    : m_model(QFileInfo(modelPath).absoluteFilePath()), m_settings(settings), m_mbrun(mbrun)
{
}

QString ClusterExport::JobId(const QString& file)
{
    QString stem = QFileInfo(file).completeBaseName();
    stem.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9_.-]")), QStringLiteral("_"));
    const QByteArray hash = QCryptographicHash::hash(file.toUtf8(), QCryptographicHash::Sha1).toHex().left(8);
    return stem.left(60) + QLatin1Char('-') + QString::fromLatin1(hash);
}

QString ClusterExport::LocalCommand(const QString& dir)
{
    return QStringLiteral("snakemake --profile %1").arg(QDir(QFileInfo(dir).absoluteFilePath()).filePath(QStringLiteral("profiles/local")));
}

bool ClusterExport::Plan(APCModel& model, const QList<APCVar*>& inputs, QString* error)
{
    SequenceControl control; // for its graph: it never starts
    if (!ModelRun::Prepare(control, model, inputs, QFileInfo(m_model).baseName()))
        return fail(error, control.GetBuildError());
    RunPlan plan(control);
    m_iterator = plan.OuterIterator() != nullptr;
    m_prologue = m_iterator && !plan.Prologue().isEmpty();
    FailureWatch watch;
    plan.Walk(watch);
    if (!watch.failure.isEmpty())
        return fail(error, watch.failure);
    m_jobs.clear();
    for (const RunPlan::Round& round : plan.OuterRounds()) {
        Job job;
        job.id = JobId(round.file);
        job.round = round.number;
        job.file = round.file;
        for (const auto& f : round.files)
            job.inputs << QFileInfo(f.second).absoluteFilePath();
        job.inputs.removeDuplicates();
        for (const QString& text : QStringList{job.file} + job.inputs)
            if (text.contains(QLatin1Char('\t')) || text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r')))
                return fail(error, QStringLiteral("the file name %1 holds a tab or a line break, which the list of rounds cannot hold").arg(text));
        m_jobs.append(job);
    }
    return true;
}

QString ClusterExport::RoundsTable() const
{
    QString text = QStringLiteral("id\tround\tfile\tinputs\n");
    for (const Job& job : m_jobs)
        text += QStringList{job.id, QString::number(job.round), job.file}.join(QLatin1Char('\t')) + QLatin1Char('\t') +
                job.inputs.join(QLatin1Char('\t')) + QLatin1Char('\n');
    return text;
}

QString ClusterExport::Snakefile() const
{
    QStringList settings;
    for (const auto& s : m_settings)
        settings << s.first + QLatin1Char('=') + s.second;
    QString text = QStringLiteral(
        "# The model %1 as a Snakemake workflow, written by mbrun --export snakemake.\n"
        "#\n"
        "#   snakemake --profile DIR/profiles/local      this machine, every core\n"
        "#   snakemake --profile DIR/profiles/slurm      a Slurm cluster\n"
        "#   snakemake --profile DIR/profiles/cluster    any submit command (edit it first)\n"
        "#\n"
        "# Another mbrun: add --config mbrun=/path/to/mbrun. After new files arrive in the\n"
        "# iterator's folders, export again: the rounds that finished stay finished.\n"
        "\n"
        "import csv\n"
        "import os\n"
        "import shlex\n"
        "\n"
        "MBRUN = config.get(\"mbrun\", %2)\n"
        "MODEL = %3\n"
        "MODEL_FILES = %4\n"
        "SETTINGS = %5\n"
        "RUN = \" \".join(shlex.quote(a) for a in [MBRUN, MODEL] + [x for s in SETTINGS for x in (\"--set\", s)])\n"
        "\n")
                       .arg(m_model, pyString(m_mbrun), pyString(m_model), pyList(ModelNesting::Files(m_model)), pyList(settings));
    if (!m_iterator)
        return text + QStringLiteral(
                          "# The model has no iterator: one job runs it whole.\n"
                          "rule all:\n"
                          "    input: \"model.json\"\n"
                          "\n"
                          "rule model:\n"
                          "    input: MODEL_FILES\n"
                          "    output: \"model.json\"\n"
                          "    log: \"logs/model.log\"\n"
                          "    shell: \"{RUN} --report {output:q} > {log:q} 2>&1\"\n");
    // A job's name and command hold its driving file, not its round number: so a
    // re-export after new files keeps every finished job's command, and Snakemake
    // keeps it finished with its default rerun triggers. Turning those down to
    // mtime alone would also keep finished rounds whose --set values changed.
    text += QStringLiteral(
        "# One job per round, named and run by its driving file, never by its number:\n"
        "# numbers shift when a file is added, and Snakemake runs a finished job again\n"
        "# when its command changes.\n"
        "ROUNDS = {}\n"
        "with open(os.path.join(workflow.basedir, \"rounds.tsv\"), newline=\"\") as table:\n"
        "    rows = csv.reader(table, delimiter=\"\\t\", quoting=csv.QUOTE_NONE)\n"
        "    next(rows)\n"
        "    for row in rows:\n"
        "        ROUNDS[row[0]] = {\"file\": row[2], \"inputs\": row[3:]}\n"
        "PROLOGUE = %1\n"
        "\n"
        "wildcard_constraints:\n"
        "    round=\"[A-Za-z0-9_.-]+\"\n"
        "\n"
        "localrules: all\n"
        "\n"
        "rule all:\n"
        "    input: expand(\"rounds/{round}.json\", round=ROUNDS) + PROLOGUE\n"
        "\n")
                .arg(m_prologue ? QStringLiteral("[\"prologue.json\"]") : QStringLiteral("[]"));
    if (m_prologue)
        text += QStringLiteral(
            "# The steps outside the iterator, once, before any round.\n"
            "rule prologue:\n"
            "    input: MODEL_FILES\n"
            "    output: \"prologue.json\"\n"
            "    log: \"logs/prologue.log\"\n"
            "    shell: \"{RUN} --prologue --report {output:q} > {log:q} 2>&1\"\n"
            "\n");
    text += QStringLiteral(
        "rule round:\n"
        "    input: lambda w: ROUNDS[w.round][\"inputs\"] + MODEL_FILES + PROLOGUE\n"
        "    output: \"rounds/{round}.json\"\n"
        "    log: \"logs/{round}.log\"\n"
        "    params: file=lambda w: ROUNDS[w.round][\"file\"]\n"
        "    shell: \"{RUN} --round-file {params.file:q} --no-prologue --report {output:q} > {log:q} 2>&1\"\n");
    return text;
}

bool ClusterExport::Write(const QString& dir, QString* error) const
{
    const QString root = QFileInfo(dir).absoluteFilePath();
    const QDir at(root);
    // The profiles name the workflow and its folder, so they work from anywhere.
    const QString where = QStringLiteral("snakefile: %1\ndirectory: %2\n")
                              .arg(yamlString(at.filePath(QStringLiteral("Snakefile"))), yamlString(root));
    const QString grouping = QStringLiteral(
        "# Rounds go to the scheduler in jobs of 8 rounds each: a cluster scheduler\n"
        "# polls in seconds, so a short round alone in a job spends its time waiting.\n"
        "# Change 8 to suit the length of a round.\n"
        "groups: [round=rounds]\n"
        "group-components: [rounds=8]\n");
    const QList<QPair<QString, QString>> files{
        {QStringLiteral("Snakefile"), Snakefile()},
        {QStringLiteral("rounds.tsv"), RoundsTable()},
        {QStringLiteral("profiles/local/config.yaml"),
         QStringLiteral("# This machine: a round per core; when one fails, the others go on.\n") + where +
             QStringLiteral("cores: all\nkeep-going: true\nscheduler: greedy\nrerun-incomplete: true\n")},
        {QStringLiteral("profiles/slurm/config.yaml"),
         QStringLiteral("# A Slurm cluster. Every node needs mbrun, GDAL and the paths of this machine\n"
                        "# (the model, its input and output folders, this folder). Add --account or\n"
                        "# --partition to the sbatch line as your site asks.\n") +
             where +
             QStringLiteral("cluster: \"mkdir -p logs/slurm && sbatch --parsable --job-name=mbrun "
                            "--cpus-per-task={threads} --output=logs/slurm/%j.out\"\n"
                            "cluster-cancel: scancel\n"
                            "jobs: 100\nkeep-going: true\nrerun-incomplete: true\nlatency-wait: 60\n") +
             grouping},
        {QStringLiteral("profiles/cluster/config.yaml"),
         QStringLiteral("# Any batch system: put its submit command under cluster; Snakemake appends\n"
                        "# the job script and fills {threads} for each job. For example\n"
                        "#   cluster: \"qsub -V -cwd -pe smp {threads} -o logs -e logs\"   (SGE, PBS)\n"
                        "#   cluster: \"bsub -n {threads} -o logs/%J.out\"                 (LSF)\n"
                        "# and, to cancel the jobs on Ctrl-C, cluster-cancel: qdel (or bkill).\n"
                        "# Every node needs mbrun, GDAL and the paths of this machine.\n") +
             where +
             QStringLiteral("cluster: \"qsub -V -cwd -pe smp {threads} -o logs -e logs\"\n"
                            "jobs: 50\nkeep-going: true\nrerun-incomplete: true\nlatency-wait: 60\n") +
             grouping},
    };
    for (const auto& file : files) {
        const QString path = at.filePath(file.first);
        if (!QDir().mkpath(QFileInfo(path).absolutePath()))
            return fail(error, QStringLiteral("cannot make the folder %1").arg(QFileInfo(path).absolutePath()));
        QString why;
        if (!WholeFile::Save(path, file.second.toUtf8(), &why))
            return fail(error, QStringLiteral("%1: %2").arg(path, why));
    }
    return true;
}

} // namespace Plugin
