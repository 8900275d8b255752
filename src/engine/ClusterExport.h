#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace Plugin {

class APCModel;
class APCVar;

// Hands the rounds of a model to Snakemake: a Snakefile with one job per round of
// the outermost iterator (each a run of mbrun on that round alone), the list of
// rounds, and profiles for this machine, Slurm and any submit command. mbrun's
// --export and the editor's Export for a cluster both write through it.
class ClusterExport
{
public:
    // One job of the workflow.
    struct Job
    {
        QString id;         // a safe name, stable across exports: the driving file's
        int round = 0;      // as a run numbers it, for people reading rounds.tsv
        QString file;       // the driving file, as the iterator hands it out
        QStringList inputs; // the round's files, absolute
    };

    // modelPath is the saved model the jobs run; settings are mbrun's --set
    // NAME=VALUE pairs; mbrun is the program the jobs call unless the workflow's
    // config names another.
    ClusterExport(const QString& modelPath, const QList<QPair<QString, QString>>& settings, const QString& mbrun);

    // Walks the plan of model with inputs (free-var clones, the caller's) as a run
    // would; false with the reason when the graph cannot run or its iterator cannot
    // hand out its files. Lists folders only; runs nothing.
    bool Plan(APCModel& model, const QList<APCVar*>& inputs, QString* error);
    // Writes dir/Snakefile, dir/rounds.tsv and dir/profiles/{local,slurm,cluster}/
    // config.yaml, each whole or not at all; false with the system's reason.
    bool Write(const QString& dir, QString* error) const;

    const QList<Job>& Jobs() const { return m_jobs; }
    bool HasIterator() const { return m_iterator; }
    bool HasPrologue() const { return m_prologue; }

    // The job name of a round driven by file: its base name made safe, and a
    // short hash of the whole path so that equal names in two folders differ.
    static QString JobId(const QString& file);
    // What runs the exported workflow on this machine.
    static QString LocalCommand(const QString& dir);

private:
    QString Snakefile() const;
    QString RoundsTable() const;

    QString m_model;
    QList<QPair<QString, QString>> m_settings;
    QString m_mbrun;
    QList<Job> m_jobs;
    bool m_iterator = false;
    bool m_prologue = false;
};

} // namespace Plugin
