// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/commands/cleaning_options.h"
#include "host/commands/cohort_arguments.h"
#include "host/commands/cohort_group.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/option_values.h"
#include "host/derivatives/run_images.h"
#include "host/files/end_signals.h"
#include "host/files/input_error.h"
#include "host/files/progress.h"
#include "host/files/terminal.h"
#include "host/study/collect.h"
#include "host/study/row_state.h"
#include "host/study/study_folder.h"
#include "host/study/verify.h"
#include "host/workbench/application.h"

#include <QDir>
#include <QProcess>
#include <QThread>

#include <cstdio>

namespace corvane
{

namespace
{

/// All words behind it are those of the step group.
const auto thenGroup = QStringLiteral("--then-group");

void print(const QString &line)
{
    if (standardErrorIsTerminal())
        std::fputs(terminalLineStart, stderr); // instead of a step that is shown there
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout); // other processes of the study write lines there, too
}

/// What a step is given: its place among the plain arguments, and the options that only some have.
struct Call {
    const QCommandLineParser &parser;
    QStringList arguments; ///< plain ones
    QString dataset, out;
    QStringList thenGroup; ///< the command line of the step group that follows; empty for none
};

int groupStep(const Call &call);
void runGroupBehind(const Call &call);

std::vector<ParticipantRows> plannedRows(const Call &call, const StudySettings &settings)
{
    const TerminalProgress progress(QStringLiteral("looking for runs"));
    return byParticipant(rowsOf(indexRuns(settings.dataset, runFilter(call.parser)), settings));
}

void prepare(const std::vector<ParticipantRows> &participants, const StudySettings &settings)
{
    const TerminalProgress progress(QStringLiteral("preparing"));
    prepareStudy(participants, settings, print);
}

void collect(const QString &out)
{
    const TerminalProgress progress(QStringLiteral("collecting"));
    collectStudy(out, print);
}

StudyStatus statusOf(const QString &out, const QStringList &folders)
{
    const TerminalProgress progress(QStringLiteral("reading"));
    return studyStatus(out, folders);
}

bool hasRuns(const std::vector<ParticipantRows> &participants)
{
    for (const ParticipantRows &rows : participants)
        for (const StudyRow &row : rows)
            if (!row.request.run.isEmpty())
                return true;
    return false;
}

QStringList foldersOf(const std::vector<ParticipantRows> &participants)
{
    QStringList folders;
    for (const ParticipantRows &rows : participants)
        folders += participantFolder(rows.front().name.participant);
    return folders;
}

/// Tells what became of the rows and gives the exit status: 0 if none failed, or was left.
int endOf(const std::vector<ParticipantRows> &participants, const StudySettings &settings,
          bool tells)
{
    const StudyCounts counts = statusOf(settings.out, foldersOf(participants)).counts;
    if (tells)
        print(settings.out + QStringLiteral(": ") + text(counts));
    if (!hasRuns(participants)) {
        if (tells)
            std::fprintf(stderr, "Corvane cohort: no run was found in %s\n",
                         settings.dataset.toUtf8().constData());
        return BadInput;
    }
    return counts.failed + counts.open > 0 ? BadInput : Done;
}

int processesOf(const QCommandLineParser &parser)
{
    const std::optional<qint64> given = wholeValue(parser, "nprocs", 1);
    constexpr qint64 most = 1024;
    return int(std::min(given.value_or(QThread::idealThreadCount()), most));
}

StudyCommand commandOf(const Call &call)
{
    StudyCommand command = studyCommand(call.arguments);
    command.processes = processesOf(call.parser);
    command.keepFailed = call.parser.isSet(QStringLiteral("keep-failed"));
    const std::optional<qint64> perTask = wholeValue(call.parser, "subjects-per-job", 1);
    command.participantsPerTask = int(std::min<qint64>(perTask.value_or(1), 1 << 20));
    command.slurmOptions =
        QProcess::splitCommand(call.parser.value(QStringLiteral("sbatch-options")));
    if (!call.parser.isSet(QStringLiteral("slurm")))
        for (const char *option : {"subjects-per-job", "sbatch-options", "wait"})
            if (call.parser.isSet(QLatin1String(option)))
                throw UsageError(QStringLiteral("--%1 goes with --slurm, which is missing")
                                     .arg(QLatin1String(option)));
    return command;
}

/// Whether all is done now: else jobs of Slurm are at it, or will be.
bool ranOnSlurm(const std::vector<ParticipantRows> &participants, const StudySettings &settings,
                const StudyCommand &command, const Call &call)
{
    std::vector<QStringList> afterwards{{QStringLiteral("cohort"), settings.out,
                                         QStringLiteral("status"), QStringLiteral("--collect")}};
    if (!call.thenGroup.isEmpty())
        afterwards.push_back(call.thenGroup);
    const std::optional<SlurmJobs> jobs = submitStudy(participants, settings, command, afterwards);
    if (!jobs) {
        collect(settings.out);
        runGroupBehind(call);
        return true;
    }
    print(QStringLiteral("job %1 with %2, and job %3 that collects; what they print is in %4")
              .arg(jobs->array, counted(jobs->tasks, "task"), jobs->collect, jobs->folder));
    const bool waits = call.parser.isSet(QStringLiteral("wait"));
    if (waits)
        waitForSlurm(jobs->collect);
    return waits;
}

int participantStep(const Call &call)
{
    const StudySettings settings = studySettings(call.parser, call.dataset, call.out);
    const StudyCommand command = commandOf(call);
    const std::vector<ParticipantRows> participants = plannedRows(call, settings);
    prepare(participants, settings);
    if (call.parser.isSet(QStringLiteral("slurm")))
        return ranOnSlurm(participants, settings, command, call)
                   ? endOf(participants, settings, true)
                   : int(Done);
    runOnThisMachine(participants, settings, command, print);
    const bool collects = !call.parser.isSet(QStringLiteral("no-collect"));
    if (collects)
        collect(settings.out);
    const int end = endOf(participants, settings, collects);
    if (!endSignalHasCome())
        runGroupBehind(call);
    return end;
}

int planStep(const Call &call)
{
    const StudySettings settings = studySettings(call.parser, call.dataset, call.out);
    const QString sum = settingsSum(settings.options);
    const std::vector<ParticipantRows> participants = plannedRows(call, settings);
    int rows = 0;
    int toMake = 0;
    for (const ParticipantRows &own : participants)
        for (const StudyRow &row : own) {
            const auto record = readRecord(recordPath(settings.out, row.name));
            const QString why = whyToMake(row, record, settings, sum);
            ++rows;
            toMake += why.isEmpty() ? 0 : 1;
            const QString what = !row.reason.isEmpty() ? QStringLiteral("missing: ") + row.reason
                                 : !why.isEmpty()      ? QStringLiteral("to do: ") + why
                                                       : nameOf(record->status);
            std::printf("%s\n",
                        QStringLiteral("%1: %2").arg(row.name.stem(), what).toUtf8().constData());
        }
    print(QStringLiteral("%1: %2 of %3, %4 to do")
              .arg(settings.out, counted(rows, "row"),
                   counted(qint64(participants.size()), "participant"))
              .arg(toMake));
    return hasRuns(participants) ? Done : BadInput;
}

int groupStep(const Call &call)
{
    const QString out = QDir::cleanPath(call.out);
    requireStudy(out);
    runGroupOfStudy(call.parser, call.dataset, out);
    return Done;
}

int statusStep(const Call &call)
{
    const QString out = QDir::cleanPath(call.out);
    requireStudy(out);
    if (call.parser.isSet(QStringLiteral("collect")))
        collect(out);
    const StudyStatus status = statusOf(out, participantFolders(out));
    for (const QString &line : status.lines)
        std::printf("%s\n", line.toUtf8().constData());
    print(out + QStringLiteral(": ") + text(status.counts));
    return Done;
}

int verifyStep(const Call &call)
{
    const QString out = QDir::cleanPath(call.out);
    requireStudy(out);
    const bool ofInputs = call.parser.isSet(QStringLiteral("inputs"));
    const int sample = call.parser.isSet(QStringLiteral("all"))
                           ? 0
                           : int(std::min<qint64>(*wholeValue(call.parser, "sample", 1), 1 << 30));
    const TerminalProgress progress(QStringLiteral("verifying"));
    const VerifyCounts counts =
        ofInputs ? verifyInputs(out, print) : verifyRows(out, sample, requestOf, print);
    const QString done = ofInputs ? QStringLiteral("%1: inputs of %2 read, %3 differ")
                                  : QStringLiteral("%1: %2 computed again, %3 differ");
    print(done.arg(out, counted(counts.rows, "row")).arg(counts.differ));
    return counts.differ > 0 ? BadInput : Done;
}

struct Step {
    const char *name;
    bool hasDataset; ///< or it works on the study alone
    int (*run)(const Call &call);
};

constexpr Step steps[] = {{"participant", true, participantStep},
                          {"plan", true, planStep},
                          {"group", true, groupStep},
                          {"status", false, statusStep},
                          {"verify", false, verifyStep}};

/// A plan is asked for by the command line of what it plans.
bool fits(const Step &step, const QString &option)
{
    const QString owner = stepOf(option);
    if (owner.isEmpty())
        return step.run == groupStep ? choosesRowsOfGroup(option) : step.hasDataset;
    return owner == QLatin1String(step.name) ||
           (owner == QLatin1String("participant") && step.run == planStep);
}

/// Options that have nothing to do with a step are refused.
void requireOptionsOf(const Step &step, const QCommandLineParser &parser)
{
    for (const QString &option : parser.optionNames()) {
        if (!fits(step, option) && option != QLatin1String("min-seconds"))
            throw UsageError(
                QStringLiteral("--%1 does not go with %2").arg(option, QLatin1String(step.name)));
    }
}

/// The plain arguments that a command line should have: those of a study alone when its second one
/// is such a step.
QStringList plainArguments(const QStringList &found)
{
    const bool isOfStudy =
        found.size() == 2 && std::any_of(std::begin(steps), std::end(steps), [&](const Step &step) {
            return !step.hasDataset && found[1] == QLatin1String(step.name);
        });
    return isOfStudy ? QStringList{QStringLiteral("OUT"), QStringLiteral("status or verify")}
                     : QStringList{QStringLiteral("BIDS_DIR"), QStringLiteral("OUT"),
                                   QStringLiteral("participant, plan or group")};
}

/// Reads a command line and finds its step; none where it only asked for help or a list.
const Step *readCommandLine(QCommandLineParser &parser, const QStringList &arguments)
{
    parser.setApplicationDescription(QStringLiteral(
        "Makes connectivity matrices of all runs that a pipeline left in a folder of subjects."));
    addCohortOptions(parser);
    parser.parse(arguments);
    if (toldStrategies(parser))
        return nullptr;
    const QStringList plain = plainArguments(parser.positionalArguments());
    if (!parseArguments(parser, arguments, plain,
                        {QStringLiteral("participant-label"), QStringLiteral("session-id"),
                         QStringLiteral("session-label"), QStringLiteral("task-id"),
                         QStringLiteral("task-label"), QStringLiteral("space"),
                         QStringLiteral("atlas"), QStringLiteral("labels"),
                         QStringLiteral("atlas-name"), QStringLiteral("contrast")}))
        return nullptr;
    const QStringList words = parser.positionalArguments();
    for (const Step &step : steps) {
        if (words.last() != QLatin1String(step.name) || step.hasDataset != (words.size() == 3))
            continue;
        requireOptionsOf(step, parser);
        return &step;
    }
    throw UsageError(QStringLiteral("found %1, expected participant, plan or group behind BIDS_DIR "
                                    "and OUT, or status or verify behind OUT")
                         .arg(quoted(words.last())));
}

/// Reads a command line that readCommandLine() accepts.
Call callOf(const QCommandLineParser &parser, const Step &step, const QStringList &arguments)
{
    const QStringList words = parser.positionalArguments();
    return {parser,
            arguments,
            step.hasDataset ? words.front() : QString(),
            words[words.size() - 2],
            {}};
}

void runGroupBehind(const Call &call)
{
    if (call.thenGroup.isEmpty())
        return;
    QCommandLineParser parser;
    const QStringList arguments = withPlainOptions(call.thenGroup);
    const Step *const step = readCommandLine(parser, arguments);
    step->run(callOf(parser, *step, arguments));
}

/// The command line of the step group with what stands behind --then-group. What cannot be meant is
/// told now, not after hours of computing. Throws UsageError.
QStringList groupBehind(const Call &call, const QStringList &options)
{
    QStringList words =
        QStringList{QStringLiteral("cohort"), call.dataset, call.out, QStringLiteral("group")} +
        options;
    QCommandLineParser parser;
    const Step *const step = readCommandLine(parser, withPlainOptions(words));
    if (step == nullptr)
        return {};
    if (step->run != groupStep)
        throw UsageError(QStringLiteral("--then-group: found %1, expected options of group")
                             .arg(quoted(parser.positionalArguments().last())));
    checkGroupOfStudy(parser, call.dataset, call.out);
    return words;
}

int run(const QStringList &given)
{
    const int then = given.indexOf(thenGroup);
    const QStringList arguments = withPlainOptions(given.mid(0, then));
    QCommandLineParser parser;
    const Step *const step = readCommandLine(parser, arguments);
    if (step == nullptr)
        return Done;
    Call call = callOf(parser, *step, arguments);
    if (then >= 0) {
        if (step->run != participantStep && step->run != planStep)
            throw UsageError(
                QStringLiteral("--then-group does not go with %1").arg(QLatin1String(step->name)));
        if (parser.isSet(QStringLiteral("no-collect")))
            throw UsageError(QStringLiteral("--then-group does not go with --no-collect"));
        call.thenGroup = groupBehind(call, given.mid(then + 1));
        if (call.thenGroup.isEmpty())
            return Done;
    }
    return step->run(call);
}

/// Pages have pictures, which need fonts.
std::unique_ptr<QCoreApplication> makeCohortApplication(const QStringList &arguments, int &argc,
                                                        char **argv)
{
    const QStringList plain = withPlainOptions(arguments);
    const auto has = [&](const char *word) { return plain.contains(QLatin1String(word)); };
    const bool paints = has("participant") || has("--collect") || has("verify") || has("group");
    const bool hasPages = !has("--no-pages") || arguments.contains(thenGroup);
    if (!hasPages || !paints)
        return makePlainApplication(arguments, argc, argv);
    argc = 1; // the arguments are those of a command, none is Qt's
    return makePictureApplication(argc, argv, false);
}

} // namespace

Command cohortCommand()
{
    return {"cohort",
            R"(Corvane cohort BIDS_DIR OUT participant|plan [--participant-label A B ...]
                  [--session-id|--session-label A ...] [--task-id|--task-label A ...]
                  [--space A ...] [--bids-filter-file F] --atlas F [--labels F]
                  [--atlas-name NAME] [--atlas F ...] [--min-coverage X] [--tr SECONDS]
                  [--dvars-scale N] --clean NAME|help [--order NAME] [--high-pass HZ] [--low-pass HZ]
                  [--no-detrend] [--standardize UNIT] [--fd-threshold MM]
                  [--dvars-threshold X] [--min-segment N] [--dummy-scans N|auto]
                  [--components N] [--motion-order PACKAGE] [--min-volumes N]
                  [--min-seconds S] [--measure NAME,NAME] [--shrinkage ledoit-wolf]
                  [--window S --step S [--taper NAME]]
                  [--events [--delay S] [--per-interval] [--centre-intervals]]
                  [--nprocs N | --slurm [--subjects-per-job N] [--sbatch-options "..."]
                  [--wait]] [--no-pages] [--keep-failed] [--no-collect]
                  [--then-group OPTIONS OF group]
  Corvane cohort BIDS_DIR OUT group [--session-id A] [--task-id A] [--space A]
                  [--atlas-name NAME] [--measure NAME] [--group-out DIR]
                  [--test glm,nbs,distance,icc,fingerprint,qcfc,tangent]
                  [--formula "group + age"] [--contrast NAME=SUM ...]
                  [--threshold 3.1,...] [--sides each|both|greater|less] [--permutations N]
                  [--seed N] [--permutation-file F] [--blocks COLUMN] [--paired]
                  [--session COLUMN] [--centroids F] [--fisher-z auto|yes|no]
                  [--min-node-subjects 0.9] [--threads N] [--plots] [--page]
  Corvane cohort OUT status [--collect]
  Corvane cohort OUT verify [--sample N|--all|--inputs])",
            "Makes matrices of all runs in a folder of subjects.", run, makeCohortApplication};
}

} // namespace corvane
