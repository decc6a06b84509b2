// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/run_index.h"

#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"
#include "tests/support/reference_folder.h"

#include <QFileInfo>

namespace corvane
{
namespace
{

/// A folder with files of given names; what is JSON holds an empty object.
class Dataset : public testing::Test
{
protected:
    QString root() const { return m_folder.path(); }

    void put(const QString &below, const QByteArray &bytes = {})
    {
        const QString path = m_folder.path(below);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        putBytes(path, bytes.isEmpty() && below.endsWith(QLatin1String(".json")) ? "{}" : bytes);
    }

    /// Files of a folder; "@" in a name stands for its image's ending "_desc-preproc_bold.nii.gz".
    void put(const char *folder, std::initializer_list<const char *> names)
    {
        for (const char *name : names)
            put(QLatin1String(folder) + QLatin1Char('/') +
                QString::fromLatin1(name).replace(QLatin1Char('@'),
                                                  QStringLiteral("_desc-preproc_bold.nii.gz")));
    }

    QString below(const QString &path) const
    {
        return path.isEmpty() ? QStringLiteral("-") : path.mid(root().size() + 1);
    }

    /// A row in one line: its labels, what belongs to it, its reason.
    QString lineOf(const StudyRun &run) const
    {
        if (!run.reason.isEmpty())
            return QStringLiteral("%1|%2|%3|%4: %5")
                .arg(run.participant, run.session, run.task, run.space, run.reason);
        EXPECT_EQ(QFileInfo(run.bold).path(), root() + QLatin1Char('/') + run.folder);
        return QStringLiteral("%1|%2|%3|%4 %5 %6 mask %7 confounds %8")
            .arg(run.participant, run.session, run.task, run.space, run.folder, run.prefix,
                 QFileInfo(run.mask).fileName(), QFileInfo(run.confounds).fileName());
    }

    QStringList index(const RunFilter &filter = {})
    {
        QStringList lines;
        for (const StudyRun &run : indexRuns(root(), filter))
            lines += lineOf(run);
        return lines;
    }

    StudyRun only()
    {
        const std::vector<StudyRun> runs = indexRuns(root(), {});
        EXPECT_EQ(runs.size(), 1U);
        return runs.empty() ? StudyRun{} : runs.front();
    }

private:
    TemporaryFolder m_folder;
};

RunFilter tasks(std::initializer_list<const char *> labels)
{
    RunFilter filter;
    for (const char *label : labels)
        filter.tasks += QLatin1String(label);
    return filter;
}

// ---- what a run is, and what belongs to it

TEST_F(Dataset, TellsTheParticipantsThatHaveAFolder)
{
    put("sub-10/func", {"a"});
    put("sub-02/func", {"a"});
    put("sub-", {"a"});
    put(QStringLiteral("sub-03.html"));
    put(QStringLiteral("sub-04"));
    put("logs", {"a"});
    EXPECT_EQ(participantsOf(root()), QStringList({QStringLiteral("02"), QStringLiteral("10")}));
}

TEST_F(Dataset, GivesEverythingOfARun)
{
    put("sub-01/ses-a/func", {"sub-01_ses-a_task-rest_run-1_space-T1w_res-2@",
                              "sub-01_ses-a_task-rest_run-1_space-T1w_res-2_desc-brain_mask.nii.gz",
                              "sub-01_ses-a_task-rest_run-1_desc-confounds_timeseries.tsv",
                              "sub-01_ses-a_task-rest_run-1_events.tsv"});
    put(QStringLiteral("sub-01/ses-a/func/"
                       "sub-01_ses-a_task-rest_run-1_space-T1w_res-2_desc-preproc_bold.json"),
        R"({"RepetitionTime": 1.35, "SkullStripped": false})");
    const StudyRun run = only();
    const QString own = root() + QStringLiteral("/sub-01/ses-a/func/sub-01_ses-a_task-rest_run-1");
    EXPECT_EQ(run.participant, QStringLiteral("01"));
    EXPECT_EQ(run.session, QStringLiteral("a"));
    EXPECT_EQ(run.task, QStringLiteral("rest"));
    EXPECT_EQ(run.space, QStringLiteral("T1w"));
    EXPECT_EQ(run.folder, QStringLiteral("sub-01/ses-a/func"));
    EXPECT_EQ(run.prefix, QStringLiteral("sub-01_ses-a_task-rest_run-1_space-T1w_res-2"));
    EXPECT_EQ(run.bold, own + QStringLiteral("_space-T1w_res-2_desc-preproc_bold.nii.gz"));
    EXPECT_EQ(run.mask, own + QStringLiteral("_space-T1w_res-2_desc-brain_mask.nii.gz"));
    EXPECT_EQ(run.confounds, own + QStringLiteral("_desc-confounds_timeseries.tsv"));
    EXPECT_EQ(run.events, own + QStringLiteral("_events.tsv"));
    EXPECT_EQ(run.repetitionTime, 1.35);
    EXPECT_EQ(run.reason, QString());
}

TEST_F(Dataset, TakesImagesOfASpaceAndNoOthers)
{
    put("sub-01/func",
        {"sub-01_task-rest_space-T1w@", "sub-01_task-rest_desc-confounds_timeseries.tsv",
         "sub-01_task-rest@", "sub-01_task-rest_echo-1@", "sub-01_task-rest_echo-1_space-T1w@",
         "sub-01_task-rest_space-T1w_boldref.nii.gz", "sub-01_task-rest_space-T1w_bold.nii.gz",
         "sub-01_task-rest_space-fsLR_den-91k_bold.dtseries.nii",
         "sub-01_task-rest_space-fsLR_den-91k_desc-preproc_bold.dtseries.nii",
         "sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz.part"});
    EXPECT_EQ(joined(index()),
              "01||rest|T1w sub-01/func sub-01_task-rest_space-T1w mask  confounds "
              "sub-01_task-rest_desc-confounds_timeseries.tsv");
}

TEST_F(Dataset, ReadsUnpackedImages)
{
    put("sub-01/func", {"sub-01_task-rest_space-T1w_desc-preproc_bold.nii",
                        "sub-01_task-rest_space-T1w_desc-brain_mask.nii",
                        "sub-01_task-rest_desc-confounds_timeseries.tsv"});
    EXPECT_EQ(joined(index()), "01||rest|T1w sub-01/func sub-01_task-rest_space-T1w mask "
                               "sub-01_task-rest_space-T1w_desc-brain_mask.nii confounds "
                               "sub-01_task-rest_desc-confounds_timeseries.tsv");
}

TEST_F(Dataset, PutsRunsInTheOrderOfParticipantsFoldersAndNames)
{
    for (const char *participant : {"sub-02", "sub-01"})
        for (const char *session : {"ses-b", "ses-a"})
            for (const char *task : {"task-rest", "task-nback"}) {
                const QString own = QStringLiteral("%1/%2/func/%1_%2_%3_")
                                        .arg(QLatin1String(participant), QLatin1String(session),
                                             QLatin1String(task));
                put(own + QStringLiteral("space-T1w_desc-preproc_bold.nii.gz"));
                put(own + QStringLiteral("desc-confounds_timeseries.tsv"));
            }
    QStringList prefixes;
    for (const StudyRun &run : indexRuns(root(), {}))
        prefixes += run.prefix;
    QStringList sorted = prefixes;
    sorted.sort();
    EXPECT_EQ(prefixes.size(), 8);
    EXPECT_EQ(joined(prefixes), joined(sorted));
}

TEST_F(Dataset, TakesTheTableOfConfoundsWithMostOfTheEntities)
{
    put("sub-01/func", {"sub-01_task-rest_acq-fast_space-T1w@", "sub-01_task-rest_run-1_space-T1w@",
                        "sub-01_task-rest_run-2_space-T1w@",
                        "sub-01_task-rest_acq-fast_desc-confounds_timeseries.tsv",
                        "sub-01_task-rest_desc-confounds_timeseries.tsv",
                        "sub-01_task-rest_run-2_desc-confounds_timeseries.tsv",
                        "sub-01_task-nback_run-2_desc-confounds_timeseries.tsv"});
    QStringList tables;
    for (const StudyRun &run : indexRuns(root(), {}))
        tables += QFileInfo(run.confounds).fileName() + run.reason;
    EXPECT_EQ(joined(tables), "sub-01_task-rest_acq-fast_desc-confounds_timeseries.tsv\n"
                              "sub-01_task-rest_desc-confounds_timeseries.tsv\n"
                              "sub-01_task-rest_run-2_desc-confounds_timeseries.tsv");
}

TEST_F(Dataset, TakesAMaskOnTheGridOfTheRun)
{
    put("sub-01/func", {"sub-01_task-rest_space-T1w@", "sub-01_task-rest_space-MNI_res-2@",
                        "sub-01_task-rest_desc-confounds_timeseries.tsv",
                        "sub-01_task-rest_desc-brain_mask.nii.gz",
                        "sub-01_task-rest_space-MNI_desc-brain_mask.nii.gz",
                        "sub-01_task-rest_space-MNI_res-2_desc-brain_mask.nii.gz"});
    const std::vector<StudyRun> runs = indexRuns(root(), {});
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(
        below(runs[0].mask),
        QStringLiteral("sub-01/func/sub-01_task-rest_space-MNI_res-2_desc-brain_mask.nii.gz"));
    EXPECT_EQ(below(runs[1].mask), QStringLiteral("-")) << "the one without a space is on no grid";
}

// ---- repetition times

TEST_F(Dataset, FindsTheRepetitionTimeInTheFoldersAbove)
{
    put("sub-01/func", {"sub-01_task-rest_space-T1w@", "sub-01_task-nback_space-T1w@",
                        "sub-01_task-rest_space-T1w_desc-preproc_bold.json",
                        "sub-01_task-rest_desc-confounds_timeseries.tsv",
                        "sub-01_task-nback_desc-confounds_timeseries.tsv"});
    put(QStringLiteral("task-rest_bold.json"), R"({"RepetitionTime": 2.5})");
    put(QStringLiteral("task-nback_bold.json"), R"({"RepetitionTime": 0.8})");
    put(QStringLiteral("sub-01/sub-01_task-nback_bold.json"), R"({"RepetitionTime": 0.72})");
    put(QStringLiteral("bold.json"), R"({"RepetitionTime": 9})");
    const std::vector<StudyRun> runs = indexRuns(root(), {});
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].repetitionTime, 0.72);
    EXPECT_EQ(runs[1].repetitionTime, 2.5);
}

TEST_F(Dataset, MayTellNoRepetitionTime)
{
    put("sub-01/func",
        {"sub-01_task-rest_space-T1w@", "sub-01_task-rest_desc-confounds_timeseries.tsv"});
    EXPECT_FALSE(only().repetitionTime);
    EXPECT_EQ(only().reason, QString());
}

// ---- what is asked for

TEST_F(Dataset, GivesTheRunsAskedFor)
{
    for (const char *participant : {"sub-01", "sub-02"})
        for (const char *session : {"ses-a", "ses-b"})
            for (const char *name :
                 {"task-rest_space-T1w", "task-rest_space-MNI", "task-nback_space-T1w"}) {
                put(QStringLiteral("%1/%2/func/%1_%2_%3_desc-preproc_bold.nii.gz")
                        .arg(QLatin1String(participant), QLatin1String(session),
                             QLatin1String(name)));
                put(QStringLiteral("%1/%2/func/%1_%2_desc-confounds_timeseries.tsv")
                        .arg(QLatin1String(participant), QLatin1String(session)));
            }
    RunFilter filter;
    filter.participants = QStringList{QStringLiteral("02"), QStringLiteral("02")};
    filter.sessions = QStringList{QStringLiteral("b")};
    filter.tasks = QStringList{QStringLiteral("rest")};
    filter.spaces = QStringList{QStringLiteral("MNI")};
    const std::vector<StudyRun> runs = indexRuns(root(), filter);
    ASSERT_EQ(runs.size(), 1U);
    EXPECT_EQ(runs[0].prefix, QStringLiteral("sub-02_ses-b_task-rest_space-MNI"));

    put(QStringLiteral("filter.json"), R"({"bold": {"session": "a", "space": ["T1w", "MNI"]}})");
    filter = {};
    filter.participants = QStringList{QStringLiteral("01")};
    filter.filterFile = root() + QStringLiteral("/filter.json");
    EXPECT_EQ(indexRuns(root(), filter).size(), 3U);
}

TEST_F(Dataset, SaysWhatIsNotThere)
{
    put("sub-01/func",
        {"sub-01_task-rest_space-T1w@", "sub-01_task-rest_desc-confounds_timeseries.tsv"});
    put("sub-02/func", {"sub-02_task-nback_space-MNI@", "sub-02_task-nback_space-T1w@",
                        "sub-02_desc-confounds_timeseries.tsv"});
    put("sub-03/func", {"sub-03_task-rest@"});
    put("sub-04/anat", {"sub-04_desc-preproc_T1w.nii.gz"});
    RunFilter filter = tasks({"rest"});
    filter.participants =
        QStringList{QStringLiteral("04"), QStringLiteral("03"),        QStringLiteral("02"),
                    QStringLiteral("05"), QStringLiteral("../sub-01"), QStringLiteral("")};
    EXPECT_EQ(joined(index(filter)), "|||: no folder sub-\n"
                                     "../sub-01|||: no folder sub-../sub-01\n"
                                     "02||rest|: no run of task-rest; found: task-nback\n"
                                     "03|||: no desc-preproc_bold image with a space\n"
                                     "04|||: no desc-preproc_bold image with a space\n"
                                     "05|||: no folder sub-05");
    filter.participants = QStringList{QStringLiteral("02")};
    filter.tasks = QStringList{QStringLiteral("rest"), QStringLiteral("faces")};
    EXPECT_EQ(joined(index(filter)), "02|||: no run of task-rest|faces; found: task-nback");
    filter.tasks.clear();
    filter.sessions = QStringList{QStringLiteral("a")};
    EXPECT_EQ(joined(index(filter)), "02|a||: no run of ses-a; found: none");
    filter.sessions.clear();
    filter.spaces = QStringList{QStringLiteral("fsLR")};
    EXPECT_EQ(joined(index(filter)),
              "02|||fsLR: no run of space-fsLR; found: space-MNI, space-T1w");
    put(QStringLiteral("filter.json"), R"({"bold": {"run": 1}})");
    filter.spaces.clear();
    filter.filterFile = root() + QStringLiteral("/filter.json");
    EXPECT_EQ(joined(index(filter)), "02|||: no run fits all that is asked for; found: "
                                     "sub-02_task-nback_space-MNI, sub-02_task-nback_space-T1w");
}

TEST_F(Dataset, SaysWhichOfSeveralLabelsHasNoRun)
{
    put("sub-01/func", {"sub-01_task-rest_space-T1w@", "sub-01_task-nback_space-MNI@",
                        "sub-01_desc-confounds_timeseries.tsv"});
    RunFilter filter = tasks({"rest", "nback", "faces"});
    filter.spaces = QStringList{QStringLiteral("T1w")};
    const std::string run = "01||rest|T1w sub-01/func sub-01_task-rest_space-T1w mask  confounds "
                            "sub-01_desc-confounds_timeseries.tsv\n";
    EXPECT_EQ(joined(index(filter)),
              run + "01||nback|: no run of task-nback fits all that is asked for; found: "
                    "sub-01_task-nback_space-MNI, sub-01_task-rest_space-T1w\n"
                    "01||faces|: no run of task-faces; found: task-nback, task-rest");
}

// ---- reasons

TEST_F(Dataset, SaysWhichTablesOfConfoundsThereAre)
{
    put("sub-01/func", {"sub-01_task-rest_space-T1w@"});
    EXPECT_EQ(joined(index()), "01||rest|T1w: no table of confounds; found: none");
    RunFilter without;
    without.confoundsNeeded = false;
    EXPECT_EQ(joined(index(without)),
              "01||rest|T1w sub-01/func sub-01_task-rest_space-T1w mask  confounds ");
    put("sub-01/func", {"sub-01_task-nback_desc-confounds_timeseries.tsv",
                        "sub-01_task-rest_run-1_desc-confounds_regressors.tsv",
                        "sub-01_task-rest_desc-confounds_timeseries.json"});
    EXPECT_EQ(joined(index()), "01||rest|T1w: no table of confounds; found: "
                               "sub-01_task-nback_desc-confounds_timeseries.tsv, "
                               "sub-01_task-rest_run-1_desc-confounds_regressors.tsv");
    put("sub-01/func", {"sub-01_task-rest_desc-confounds_timeseries.tsv",
                        "sub-01_task-rest_desc-confounds_regressors.tsv"});
    EXPECT_EQ(joined(index()), "01||rest|T1w: more than one table of confounds: "
                               "sub-01_task-rest_desc-confounds_regressors.tsv, "
                               "sub-01_task-rest_desc-confounds_timeseries.tsv");
}

TEST_F(Dataset, SaysWhenMasksOrEventsAreMoreThanOne)
{
    put("sub-01/func",
        {"sub-01_task-rest_space-T1w@", "sub-01_task-rest_desc-confounds_timeseries.tsv",
         "sub-01_task-rest_space-T1w_desc-brain_mask.nii",
         "sub-01_task-rest_space-T1w_desc-brain_mask.nii.gz"});
    EXPECT_EQ(joined(index()), "01||rest|T1w: more than one mask: "
                               "sub-01_task-rest_space-T1w_desc-brain_mask.nii, "
                               "sub-01_task-rest_space-T1w_desc-brain_mask.nii.gz");
    put("sub-02/func",
        {"sub-02_task-rest_run-1_space-T1w@", "sub-02_task-rest_desc-confounds_timeseries.tsv",
         "sub-02_run-1_events.tsv", "sub-02_task-rest_events.tsv"});
    EXPECT_EQ(index().last().toStdString(), "02||rest|T1w: more than one table of events: "
                                            "sub-02_run-1_events.tsv, sub-02_task-rest_events.tsv");
}

TEST_F(Dataset, SaysWhenARunHasTwoImages)
{
    put("sub-01/func",
        {"sub-01_task-rest_space-T1w@", "sub-01_task-rest_space-T1w_desc-preproc_bold.nii",
         "sub-01_task-rest_desc-confounds_timeseries.tsv"});
    const QString line = QStringLiteral("01||rest|T1w: more than one image of the run: "
                                        "sub-01_task-rest_space-T1w_desc-preproc_bold.nii, "
                                        "sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz");
    EXPECT_EQ(joined(index()), joined({line, line}));
}

TEST_F(Dataset, SaysWhenARunLiesInAnotherFolder)
{
    put("sub-01/ses-a/func", {"sub-02_ses-a_task-rest_space-T1w@"});
    put("sub-02/ses-a/func", {"sub-02_ses-b_task-rest_space-T1w@"});
    put("sub-03/func", {"task-rest_space-T1w@"});
    EXPECT_EQ(joined(index()),
              "01|a|rest|T1w: sub-02_ses-a_task-rest_space-T1w_desc-preproc_bold.nii.gz: lies in "
              "sub-01/ses-a/func, expected sub-02/ses-a/func\n"
              "02|b|rest|T1w: sub-02_ses-b_task-rest_space-T1w_desc-preproc_bold.nii.gz: lies in "
              "sub-02/ses-a/func, expected sub-02/ses-b/func\n"
              "03||rest|T1w: task-rest_space-T1w_desc-preproc_bold.nii.gz: lies in "
              "sub-03/func, expected sub-/func");
}

TEST_F(Dataset, SaysWhenAJsonFileCannotBeRead)
{
    put("sub-01/func",
        {"sub-01_task-rest_space-T1w@", "sub-01_task-rest_desc-confounds_timeseries.tsv"});
    const QString json =
        QStringLiteral("sub-01/func/sub-01_task-rest_space-T1w_desc-preproc_bold.json");
    put(json, "{\"RepetitionTime\": ");
    EXPECT_EQ(joined(index()), "01||rest|T1w: " + json.toStdString() +
                                   ": byte 19: found unterminated object, expected a JSON object");
    put(json, "{\"RepetitionTime\": 0}");
    EXPECT_EQ(joined(index()), "01||rest|T1w: " + json.toStdString() +
                                   ": RepetitionTime: found 0, expected seconds above 0");
    put(json, "{\"RepetitionTime\": \"2\"}");
    EXPECT_EQ(joined(index()), "01||rest|T1w: " + json.toStdString() +
                                   ": RepetitionTime: found no number, expected seconds above 0");
}

TEST_F(Dataset, MustBeAFolder)
{
    const QString none = root() + QStringLiteral("/none");
    EXPECT_EQ(errorOf([&] { indexRuns(none, {}); }),
              none.toStdString() +
                  ": opening: found nothing of this name, expected the folder of a dataset");
    put(QStringLiteral("file"));
    EXPECT_EQ(errorOf([&] { participantsOf(root() + QStringLiteral("/file")); }),
              root().toStdString() +
                  "/file: opening: found no folder, expected the folder of a dataset");
    EXPECT_TRUE(indexRuns(root(), {}).empty());
}

// ---- the names that pipelines really write

class Listing : public Dataset
{
protected:
    /// Makes the files of a listing, in which folders stand too; false when there is no such file.
    bool make(const char *name)
    {
        const QString path = QString::fromUtf8(referenceFolder()) +
                             QStringLiteral("/reference/listings/") + QLatin1String(name);
        if (!QFile::exists(path))
            return false;
        for (const QByteArray &line : bytesOf(path).split('\n'))
            if (line.contains('/') && line.contains('.'))
                put(QString::fromUtf8(line.trimmed()));
        return true;
    }
};

#define SKIP_WITHOUT(name)                                                                         \
    if (!make(name))                                                                               \
    GTEST_SKIP() << "no listings in " << referenceFolder()

TEST_F(Listing, OfTwoRunsInTwoSpacesGivesFour)
{
    SKIP_WITHOUT("fmriprep_ds054_outputs.txt");
    QStringList expected;
    for (const char *run : {"run-01", "run-02"})
        for (const char *space : {"MNI152NLin2009cAsym_res-2", "T1w"})
            expected +=
                QStringLiteral("100185||machinegame|%3 sub-100185/func "
                               "sub-100185_task-machinegame_%1_space-%2 mask "
                               "sub-100185_task-machinegame_%1_space-%2_desc-brain_mask.nii.gz "
                               "confounds sub-100185_task-machinegame_%1_desc-confounds_"
                               "timeseries.tsv")
                    .arg(QLatin1String(run), QLatin1String(space),
                         QLatin1String(space).left(space[0] == 'T' ? 3 : 19));
    EXPECT_EQ(joined(index()), joined(expected));
}

TEST_F(Listing, OfSeveralEchoesGivesTheCombinedRun)
{
    SKIP_WITHOUT("fmriprep_ds210_outputs.txt");
    EXPECT_EQ(joined(index()),
              "02||cuedSGT|MNI152NLin2009cAsym sub-02/func "
              "sub-02_task-cuedSGT_run-01_space-MNI152NLin2009cAsym mask "
              "sub-02_task-cuedSGT_run-01_space-MNI152NLin2009cAsym_desc-brain_mask.nii.gz "
              "confounds sub-02_task-cuedSGT_run-01_desc-confounds_timeseries.tsv");
}

TEST_F(Listing, OfSurfacesGivesNone)
{
    SKIP_WITHOUT("fmriprep_ds005_outputs.txt");
    EXPECT_EQ(joined(index()), "01|||: no desc-preproc_bold image with a space");
}

TEST_F(Listing, OfRunsThatWereCleanedGivesNone)
{
    SKIP_WITHOUT("xcpd_ds001419_nifti_outputs.txt");
    EXPECT_EQ(joined(index()), "01|||: no desc-preproc_bold image with a space");
}

} // namespace
} // namespace corvane
