#include "CommandLine.h"

#include <QFileInfo>

#include <utility>

namespace Mbrun {

QString CommandLine::Usage()
{
    return QStringLiteral(
        "Usage: mbrun MODEL.apc [--set NAME=VALUE]... [OPTION]...   run the model\n"
        "       mbrun MODEL.apc --list                  list its free inputs\n"
        "       mbrun MODEL.apc [--set ...] --list-rounds [--json]   list its rounds\n"
        "       mbrun MODEL.apc [--set ...] --export snakemake DIR   write a Snakemake workflow\n"
        "                                               of its rounds into DIR\n"
        "       mbrun --algorithms                      list the host's algorithms (Markdown)\n"
        "       mbrun --help\n"
        "\n"
        "NAME is a free input's description or id. A several-folders input takes folders\n"
        "separated by ';' or its JSON object text.\n"
        "\n"
        "  --dry-run         print the plan (rounds, steps, resolved parameters, outputs);\n"
        "                    run no step and write no file\n"
        "  --resume          skip each step whose outputs are up to date, as recorded in\n"
        "                    .mbrun-state.json in their folder by an earlier run\n"
        "  --report FILE     write a JSON report of the run (format mbrun-report/1), also\n"
        "                    when the run fails or is interrupted\n"
        "  --round K         run round K of the iterator only, after the steps outside it\n"
        "                    whose outputs are missing; K-L runs rounds K to L in turn\n"
        "  --round-file FILE run the one round whose driving file is FILE (as --round)\n"
        "  --prologue        run the steps outside the iterator only\n"
        "  --no-prologue     with --round: run no step outside the iterator\n"
        "  --with-prologue   with --round: run every step outside the iterator\n"
        "  -j, --jobs N      run N rounds at a time (0: one per core; default 1)\n"
        "  --state-held      --resume for one of the rounds of a --resume --jobs run,\n"
        "                    whose run holds the state files\n"
        "  --round-marks     with --round: mark each round's end on standard error, for\n"
        "                    the progress line of a --jobs run\n"
        "\n"
        "The run's log goes to standard output; exit code 0 when every step succeeded,\n"
        "1 when a step failed, 2 on a usage, load or validation error, 130, 143 or 129\n"
        "when SIGINT, SIGTERM or SIGHUP stopped the run.\n");
}

const QString& CommandLine::RoundEndMark()
{
    // A line no log or message of a round can hold: it starts with a control character.
    static const QString mark = QStringLiteral("\x1e" "mbrun round ended\n");
    return mark;
}

bool CommandLine::Fail(const QString& error)
{
    m_error = error;
    return false;
}

bool CommandLine::Parse(const QStringList& arguments)
{
    QStringList args = arguments;
    if (args.isEmpty() || args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"))) {
        m_action = Action::Help;
        return true;
    }
    if (args.first() == QLatin1String("--algorithms")) {
        m_action = Action::Algorithms;
        return true;
    }
    m_modelPath = args.takeFirst();
    if (m_modelPath.startsWith(QLatin1String("--")))
        return Fail(QStringLiteral("mbrun: the model file comes first, got \"%1\"\n\n").arg(m_modelPath) + Usage());
    while (!args.isEmpty()) {
        const QString a = args.takeFirst();
        if (a == QLatin1String("--list")) {
            m_action = Action::List;
        } else if (a == QLatin1String("--dry-run")) {
            m_dryRun = true;
        } else if (a == QLatin1String("--resume")) {
            m_resume = true;
        } else if (a == QLatin1String("--state-held")) {
            m_resume = m_stateHeld = true;
        } else if (a == QLatin1String("--round-marks")) {
            m_roundMarks = true;
        } else if (a == QLatin1String("--list-rounds")) {
            m_action = Action::ListRounds;
        } else if (a == QLatin1String("--json")) {
            m_json = true;
        } else if (a == QLatin1String("--no-prologue")) {
            m_noPrologue = true;
        } else if (a == QLatin1String("--with-prologue")) {
            m_withPrologue = true;
        } else if (a == QLatin1String("--round") || a == QLatin1String("--jobs") || a == QLatin1String("-j")) {
            if (args.isEmpty())
                return Fail(QStringLiteral("mbrun: %1 needs a value\n").arg(a));
            const QString value = args.takeFirst();
            bool ok = false;
            const bool round = a == QLatin1String("--round");
            if (round) {
                const QStringList range = value.split(QLatin1Char('-'));
                bool lastOk = false;
                m_round = range.first().toInt(&ok);
                m_lastRound = range.size() == 2 ? range.last().toInt(&lastOk) : m_round;
                if (!ok || m_round < 1 || range.size() > 2 || (range.size() == 2 && (!lastOk || m_lastRound < m_round)))
                    return Fail(QStringLiteral("mbrun: --round needs a round number (1, 2, ...) or a range such as 3-8, got \"%1\"\n").arg(value));
                continue;
            }
            m_jobs = value.toInt(&ok);
            if (!ok || m_jobs < 0)
                return Fail(QStringLiteral("mbrun: %1 needs a number of jobs (0 for one per core), got \"%2\"\n").arg(a, value));
        } else if (a == QLatin1String("--prologue")) {
            m_prologueOnly = true;
        } else if (a == QLatin1String("--round-file")) {
            if (args.isEmpty() || args.first().isEmpty())
                return Fail(QStringLiteral("mbrun: --round-file needs the driving file of a round\n"));
            m_roundFile = args.takeFirst();
        } else if (a == QLatin1String("--export")) {
            if (args.size() < 2 || args.first() != QLatin1String("snakemake") || args.at(1).isEmpty())
                return Fail(QStringLiteral("mbrun: --export needs a kind and a folder: --export snakemake DIR\n"));
            args.removeFirst();
            m_action = Action::Export;
            m_exportDir = args.takeFirst();
        } else if (a == QLatin1String("--report") || a == QLatin1String("--set")) {
            if (args.isEmpty())
                return Fail(QStringLiteral("mbrun: %1 needs a value\n").arg(a));
            const QString value = args.takeFirst();
            if (a == QLatin1String("--report")) {
                m_reportPath = value;
                continue;
            }
            const int eq = value.indexOf(QLatin1Char('='));
            if (eq <= 0)
                return Fail(QStringLiteral("mbrun: --set needs NAME=VALUE, got \"%1\"\n").arg(value));
            m_settings.append({value.left(eq), value.mid(eq + 1)});
        } else {
            return Fail(QStringLiteral("mbrun: unknown argument \"%1\"\n\n").arg(a) + Usage());
        }
    }
    if (m_json && m_action != Action::ListRounds)
        return Fail(QStringLiteral("mbrun: --json goes with --list-rounds\n"));
    if (!m_roundFile.isEmpty() && (m_round > 0 || m_prologueOnly))
        return Fail(QStringLiteral("mbrun: --round-file runs one round: leave out --round and --prologue\n"));
    if (m_prologueOnly && m_round > 0)
        return Fail(QStringLiteral("mbrun: --prologue runs no round: leave out --round\n"));
    const bool oneRound = m_round > 0 || !m_roundFile.isEmpty();
    for (const auto& [given, flag] : {std::make_pair(m_noPrologue, "--no-prologue"), std::make_pair(m_withPrologue, "--with-prologue")})
        if (given && !oneRound)
            return Fail(QStringLiteral("mbrun: %1 goes with --round\n").arg(QLatin1String(flag)));
    if (m_noPrologue && m_withPrologue)
        return Fail(QStringLiteral("mbrun: --no-prologue and --with-prologue exclude each other\n"));
    if ((m_stateHeld || m_roundMarks) && !oneRound)
        return Fail(QStringLiteral("mbrun: %1 goes with --round\n").arg(m_stateHeld ? "--state-held" : "--round-marks"));
    if ((oneRound || m_prologueOnly) && m_jobs != 1)
        return Fail(QStringLiteral("mbrun: --round runs one round: leave out --jobs\n"));
    if (m_action == Action::Export && (oneRound || m_prologueOnly || m_dryRun || m_resume || m_jobs != 1 || !m_reportPath.isEmpty()))
        return Fail(QStringLiteral("mbrun: --export writes a workflow and runs nothing: give it only --set\n"));
    if (m_dryRun && !m_reportPath.isEmpty())
        return Fail(QStringLiteral("mbrun: --dry-run writes no file: leave out --report\n"));
    if (!m_reportPath.isEmpty()) {
        const QFileInfo report(m_reportPath), model(m_modelPath);
        const bool same = report.absoluteFilePath() == model.absoluteFilePath() ||
                          (report.exists() && report.canonicalFilePath() == model.canonicalFilePath());
        if (same)
            return Fail(QStringLiteral("mbrun: the report would replace the model file %1\n").arg(m_modelPath));
        if (report.isDir())
            return Fail(QStringLiteral("mbrun: the report %1 is a folder; give a file name\n").arg(m_reportPath));
    }
    return true;
}

} // namespace Mbrun
