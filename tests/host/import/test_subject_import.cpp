// SPDX-License-Identifier: GPL-3.0-or-later
//
// VOIs of many origins, a run without an anatomy, and whose data the files are.
#include "host/import/bids_import.h"
#include "host/import/import_provenance.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/notes.h"
#include "tests/host/support/program.h"
#include "tests/host/support/small_study.h"

#include <QFileInfo>
#include <algorithm>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// 4 x 4 x 4 voxels of 3 mm and 5 volumes; sample t of voxel v is 10 v + t.
NiftiParts runParts()
{
    NiftiParts parts;
    parts.setSize({4, 4, 4, 5});
    parts.setSpacing(3, -6, -6, -6);
    parts.pixdim[4] = 2;
    std::vector<float> samples;
    for (int t = 0; t < 5; ++t)
        for (int voxel = 0; voxel < 64; ++voxel)
            samples.push_back(float(10 * voxel + t));
    setSamples(parts, samples);
    return parts;
}

/// On the run's grid, with a value for each voxel.
NiftiParts imageOf(const std::function<int(int voxel)> &value)
{
    NiftiParts parts;
    parts.setSize({4, 4, 4});
    parts.setSpacing(3, -6, -6, -6);
    std::vector<quint8> voxels;
    for (int voxel = 0; voxel < 64; ++voxel)
        voxels.push_back(static_cast<quint8>(value(voxel)));
    setSamples(parts, voxels);
    return parts;
}

class SubjectImport : public testing::Test
{
protected:
    SubjectImport()
    {
        put("sub-07_task-rest_space-T1w_bold.nii", runParts());
        put("sub-07_T1w.nii", imageOf([](int voxel) { return voxel; }));
        put("two_dseg.nii", imageOf([](int voxel) { return voxel % 3; }));
        put("one.nii.gz", imageOf([](int voxel) { return voxel < 8 ? 9 : 0; }));
        put("left hand.nii", imageOf([](int voxel) { return voxel > 60 ? 2 : 0; }));
        putBytes(folder.path("two.tsv"), "index\tname\n1\talpha\n2\tbeta\n");
        putBytes(folder.path("places.tsv"), "x\ty\tz\tradius\tname\n0\t0\t0\t3.1\tcentre\n");
        putBytes(folder.path("events.tsv"), "onset\tduration\ttrial_type\n0\t4\trest\n");
        request.functional = folder.path("sub-07_task-rest_space-T1w_bold.nii");
        request.anatomy = folder.path("sub-07_T1w.nii");
        request.name = QStringLiteral("sub");
        request.folder = folder.path("out");
    }
    void put(const char *name, const NiftiParts &parts) const
    {
        const QByteArray bytes = niftiBytes(parts);
        putBytes(folder.path(name), QByteArray(name).endsWith(".gz") ? gzipped(bytes) : bytes);
    }
    QString out(const char *name) const { return folder.path("out/") + QLatin1String(name); }
    static QStringList namesOf(const VoiSet &set)
    {
        QStringList names;
        for (const Voi &voi : set.vois)
            names += voi.name;
        return names;
    }

    const TemporaryFolder folder;
    ImportRequest request;
};

TEST_F(SubjectImport, TakesVoisOfAllItsSourcesInTheirOrder)
{
    request.voiSources = {{VoiSource::Mask, folder.path("left hand.nii")},
                          {VoiSource::Atlas, folder.path("two_dseg.nii"), folder.path("two.tsv")},
                          {VoiSource::Spheres, folder.path("places.tsv")},
                          {VoiSource::Mask, folder.path("one.nii.gz")},
                          {VoiSource::Atlas, folder.path("two_dseg.nii")}};
    const ImportPlan plan = planImport(request);
    EXPECT_EQ(namesOf(plan.vois),
              QStringList({"left hand", "alpha", "beta", "centre", "one", "1", "2"}));
    ASSERT_EQ(plan.labelCounts.size(), plan.vois.vois.size());
    std::vector<std::size_t> voxels;
    for (const Voi &voi : plan.vois.vois)
        voxels.push_back(voi.voxels.size());
    EXPECT_THAT(voxels, ElementsAre(3, 21, 21, 7, 8, 21, 21));
    EXPECT_EQ(plan.labelCounts[0].inAtlas, 3);
    EXPECT_EQ(joined(plan.notes), "");
    // Each has a colour of its own, whatever it comes from.
    std::set<std::array<int, 3>> colours;
    for (const Voi &voi : plan.vois.vois)
        colours.insert({voi.r, voi.g, voi.b});
    EXPECT_EQ(colours.size(), plan.vois.vois.size());
}

TEST_F(SubjectImport, SaysThatAMaskHasMoreThanOneValue)
{
    request.voiSources = {{VoiSource::Mask, folder.path("two_dseg.nii")}};
    const ImportPlan plan = planImport(request);
    ASSERT_EQ(plan.vois.vois.size(), 1U);
    EXPECT_EQ(plan.vois.vois[0].voxels.size(), 42U);
    EXPECT_THAT(joined(plan.notes), HasSubstr("two_dseg.nii: the mask holds more than one value"));
}

TEST_F(SubjectImport, TakesTheRunsMeanWhereThereIsNoAnatomy)
{
    request.anatomy.clear();
    const ImportPlan plan = planImport(request);
    ASSERT_EQ(plan.notes.size(), 1) << joined(plan.notes);
    EXPECT_THAT(joined(plan.notes), HasSubstr("without an anatomy the mean of the run"));
    EXPECT_TRUE(plan.grid.copied);
    // The mean of 10 v and the four numbers after it.
    ASSERT_EQ(plan.anatomy.type, Vmr::UShort);
    const auto *const voxels = static_cast<const quint16 *>(plan.anatomy.voxels.get());
    int compared = 0;
    for (int n = 0; n < 64; ++n) {
        const std::array<int, 3> at = plan.grid.cubeVoxel(n % 4, n / 4 % 4, n / 16);
        const Eigen::Vector3d source =
            plan.grid.toSource * Eigen::Vector3d(n % 4, n / 4 % 4, n / 16);
        const double voxel = source[0] + 4 * source[1] + 16 * source[2];
        EXPECT_NEAR(voxels[at[0] + 256 * (at[1] + 256 * at[2])], 10 * voxel + 2, 1e-3) << n;
        ++compared;
    }
    EXPECT_EQ(compared, 64);

    // The same run once more; then it is another one.
    EXPECT_EQ(joined(planImport(request).notes), joined(plan.notes));
    NiftiParts flat = runParts();
    flat.setSize({4, 4, 4, 6});
    setSamples(flat, std::vector<float>(64 * 6, 5.0f));
    put("sub-07_task-rest_space-T1w_bold.nii", flat);
    const ImportPlan other = planImport(request);
    EXPECT_EQ(other.anatomy.type, Vmr::UChar);
    EXPECT_EQ(writeImport(other).files.size(), 2);
}

TEST_F(SubjectImport, CanBeStoppedWhileItReadsTheRunForItsMean)
{
    request.anatomy.clear();
    NiftiParts other = runParts();
    other.setSize({4, 4, 2, 10});
    put("sub-07_task-rest_space-T1w_bold.nii", other);
    EXPECT_THROW(planImport(request, [](qint64, qint64) { return false; }), WorkStopped);
}

TEST_F(SubjectImport, WritesSubjectAndSpaceInAllFourFiles)
{
    request.voiSources = {{VoiSource::Atlas, folder.path("two_dseg.nii")}};
    request.events = folder.path("events.tsv");
    const ImportReport report = writeImport(planImport(request));
    const auto expectAll = [&](const QString &subject, const QString &space) {
        for (const Provenance &found :
             {readVmr(out("sub.vmr")).provenance, VtcFile(out("sub.vtc")).info().provenance,
              readVoiFile(out("sub.voi")).provenance, readPrtFile(out("sub.prt")).provenance}) {
            EXPECT_EQ(found.subject, subject);
            EXPECT_EQ(found.space, space);
        }
    };
    expectAll(QStringLiteral("sub-07"), QStringLiteral("T1w"));
    request.provenance = {QStringLiteral("Anna"), QStringLiteral("MNI")};
    writeImport(planImport(request));
    expectAll(QStringLiteral("Anna"), QStringLiteral("MNI"));
}

TEST(ImportProvenance, ComesFromTheNamesOfTheFiles)
{
    ImportRequest request;
    request.functional = QStringLiteral("/d/bold.nii");
    request.anatomy = QStringLiteral("/d/sub-01_space-MNI_T1w.nii.gz");
    EXPECT_EQ(provenanceOf(request).subject, QStringLiteral("sub-01"));
    EXPECT_EQ(provenanceOf(request).space, QStringLiteral("MNI"));
    request.functional = QStringLiteral("/d/sub-02_space-T1w_bold.nii.gz");
    EXPECT_EQ(provenanceOf(request).subject, QStringLiteral("sub-02"));
    EXPECT_EQ(provenanceOf(request).space, QStringLiteral("T1w"));
    request.functional = QStringLiteral("/d/sub-a\nb_bold.nii"); // no key can hold that
    request.anatomy.clear();
    EXPECT_EQ(provenanceOf(request).subject, QString());
}

TEST(ImportProvenance, SaysWhereNamesContradict)
{
    ImportRequest request;
    request.functional = QStringLiteral("sub-02_task-rest_space-MNI_bold.nii");
    request.anatomy = QStringLiteral("sub-01_T1w.nii");
    request.voiSources = {{VoiSource::Atlas, QStringLiteral("tpl-Other_dseg.nii")},
                          {VoiSource::Mask, QStringLiteral("tpl-MNI_mask.nii")}};
    EXPECT_EQ(joined(provenanceNotes(request)),
              "sub-01_T1w.nii: the name says sub-01, the import is of sub-02\n"
              "tpl-Other_dseg.nii: the name says space Other, the import is of space MNI\n"
              "sub-01_T1w.nii: the name says no space, the import is of space MNI");
    // The participant's own space has more than one name, and mostly none.
    request.functional = QStringLiteral("sub-01_task-rest_space-T1w_bold.nii");
    request.voiSources = {{VoiSource::Atlas, QStringLiteral("sub-01_space-anat_dseg.nii")}};
    EXPECT_EQ(joined(provenanceNotes(request)), "");
}

// ---- a pipeline's folder

class BidsImports : public testing::Test
{
protected:
    BidsImports()
    {
        study.addRun(QStringLiteral("sub-01/func"), QStringLiteral("sub-01_task-rest"),
                     QStringLiteral("space-T1w"));
        study.addRun(QStringLiteral("sub-02/ses-a/func"),
                     QStringLiteral("sub-02_ses-a_task-nback_run-1"), QStringLiteral("space-MNI"));
        study.put(QStringLiteral("sub-03/func/sub-03_task-rest_space-T1w_desc-preproc_bold.nii.gz"),
                  "no image");
        atlas = study.addAtlas();
    }
    ProgramRun run(const QStringList &more) const
    {
        return runCorvane(QStringList{QStringLiteral("import"), QStringLiteral("--bids"),
                                      study.path(), QStringLiteral("--out"), out} +
                          more);
    }
    QStringList made() const
    {
        QStringList files;
        for (const char *below : {"sub-01/", "sub-02/ses-a/", "sub-03/"})
            for (const QString &name : QDir(out + QLatin1Char('/') + QLatin1String(below))
                                           .entryList(QDir::Files, QDir::Name))
                files += QLatin1String(below) + name;
        return files;
    }

    const TemporaryFolder folder;
    const SmallStudy study{folder.path("study")};
    const QString out = folder.path("imported");
    QString atlas;
};

TEST_F(BidsImports, GiveEachRunWhatBelongsToIt)
{
    const QByteArray image = bytesOf(study.path(
        QStringLiteral("sub-01/func/sub-01_task-rest_space-T1w_desc-brain_mask.nii.gz")));
    for (const char *name :
         {"sub-01/anat/sub-01_desc-preproc_T1w.nii.gz",
          "sub-01/anat/sub-01_desc-preproc_T2w.nii.gz",
          "sub-01/anat/sub-01_space-MNI_desc-preproc_T1w.nii.gz", "sub-01/anat/sub-01_dseg.nii.gz",
          "sub-01/func/sub-01_task-rest_space-T1w_desc-aseg_dseg.nii.gz",
          "sub-01/func/sub-01_task-rest_space-T1w_desc-aparcaseg_dseg.nii.gz",
          "sub-01/func/sub-01_task-rest_events.tsv", "desc-aparcaseg_dseg.tsv",
          "sub-02/ses-a/anat/sub-02_ses-a_desc-preproc_T1w.nii.gz",
          "sub-02/anat/sub-02_space-MNI_res-2_desc-preproc_T1w.nii.gz",
          "sub-02/anat/sub-02_space-MNI_desc-preproc_T1w.nii.gz"})
        study.put(QLatin1String(name), image);
    ImportRequest common;
    common.folder = out;
    const std::vector<BidsImport> imports = bidsImports(study.path(), {}, common);
    ASSERT_EQ(imports.size(), 3U);
    const auto below = [&](const QString &path) { return path.mid(study.path().size() + 1); };
    const ImportRequest &first = imports[0].request;
    EXPECT_EQ(below(first.functional),
              QStringLiteral("sub-01/func/sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz"));
    EXPECT_EQ(below(first.anatomy), QStringLiteral("sub-01/anat/sub-01_desc-preproc_T1w.nii.gz"));
    ASSERT_EQ(first.voiSources.size(), 1U);
    EXPECT_EQ(below(first.voiSources[0].file),
              QStringLiteral("sub-01/func/sub-01_task-rest_space-T1w_desc-aparcaseg_dseg.nii.gz"));
    EXPECT_EQ(below(first.voiSources[0].labels), QStringLiteral("desc-aparcaseg_dseg.tsv"));
    EXPECT_EQ(below(first.events), QStringLiteral("sub-01/func/sub-01_task-rest_events.tsv"));
    EXPECT_EQ(first.repetitionTime, 2.0);
    EXPECT_EQ(first.name, QStringLiteral("sub-01_task-rest_space-T1w"));
    EXPECT_EQ(first.folder, out + QStringLiteral("/sub-01"));

    // An anatomy in another space is none of the run's; without an atlas its mask is a VOI.
    const ImportRequest &second = imports[1].request;
    EXPECT_EQ(below(second.anatomy),
              QStringLiteral("sub-02/anat/sub-02_space-MNI_desc-preproc_T1w.nii.gz"));
    ASSERT_EQ(second.voiSources.size(), 1U);
    EXPECT_EQ(second.voiSources[0].kind, VoiSource::Mask);
    EXPECT_EQ(second.folder, out + QStringLiteral("/sub-02/ses-a"));
    EXPECT_EQ(second.name, QStringLiteral("sub-02_ses-a_task-nback_run-1_space-MNI"));
    EXPECT_THAT(imports[2].reason.toStdString(), HasSubstr("no table of confounds"));
}

TEST(RunCompanions, HaveTheEventsOfTheDatasetAboveTheDerivatives)
{
    const TemporaryFolder folder;
    const SmallStudy study(folder.path("data/derivatives/pipeline"));
    study.addRun(QStringLiteral("sub-01/func"), QStringLiteral("sub-01_task-go"),
                 QStringLiteral("space-T1w"));
    const QString events = folder.path("data/sub-01/func/sub-01_task-go_events.tsv");
    ASSERT_TRUE(QDir().mkpath(QFileInfo(events).path()));
    putBytes(events, "onset\tduration\n0\t4\n");
    putBytes(folder.path("data/sub-01/func/sub-01_task-stop_events.tsv"), "onset\tduration\n");
    const std::vector<BidsImport> imports = bidsImports(study.path(), {}, {});
    ASSERT_EQ(imports.size(), 1U);
    EXPECT_EQ(QFileInfo(imports[0].request.events).canonicalFilePath(),
              QFileInfo(events).canonicalFilePath());
}

/// The mean that stands in for an anatomy is half of the work.
TEST_F(BidsImports, TellHowFarTheyAreWhileTheMeanIsReadToo)
{
    ImportRequest common;
    common.folder = out;
    const std::vector<BidsImport> imports = bidsImports(study.path(), {}, common);
    std::vector<double> shares;
    importRun(imports[0], [&shares](qint64 done, qint64 total) {
        shares.push_back(double(done) / double(total));
        return true;
    });
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    const auto half = std::lower_bound(shares.begin(), shares.end(), 0.5);
    EXPECT_GE(half - shares.begin(), SmallStudy::volumes - 1);
    EXPECT_EQ(shares.back(), 1);
    bool isStopped = false;
    EXPECT_THROW(importRun(imports[1],
                           [&isStopped](qint64 done, qint64) {
                               EXPECT_FALSE(isStopped);
                               isStopped = done > 0;
                               return !isStopped;
                           }),
                 WorkStopped);
    EXPECT_FALSE(QFileInfo::exists(out + QStringLiteral("/sub-02/ses-a")));
}

TEST_F(BidsImports, AreStoppedAlsoWhereNoneCanBeRead)
{
    ImportRequest common;
    common.folder = out;
    std::vector<BidsImport> imports = bidsImports(study.path(), {}, common);
    imports.resize(2);
    for (BidsImport &import : imports)
        import.request.functional = folder.path("none.nii");
    ImportedRuns imported;
    importRuns(imports, {}, imported);
    EXPECT_EQ(imported.faults.size(), 2U);
    EXPECT_TRUE(imported.reports.empty());
    imported = {};
    EXPECT_THROW(
        importRuns(
            imports, [&imported](qint64, qint64) { return imported.faults.empty(); }, imported),
        WorkStopped);
    EXPECT_EQ(imported.faults.size(), 1U);
}

TEST_F(BidsImports, AreMadeByTheCommandWhichTellsOfRunsThatCannotBe)
{
    const ProgramRun done =
        run({QStringLiteral("--atlas"), atlas, QStringLiteral("--labels"),
             QString(atlas).replace(QLatin1String(".nii.gz"), QLatin1String(".tsv"))});
    EXPECT_EQ(done.status, 1);
    EXPECT_THAT(done.errors.toStdString(),
                HasSubstr("Corvane import: sub-03_task-rest_space-T1w: "));
    EXPECT_THAT(done.errors.toStdString(), HasSubstr("2 runs imported, 1 not"));
    EXPECT_EQ(joined(made()), "sub-01/sub-01_task-rest_space-T1w.vmr\n"
                              "sub-01/sub-01_task-rest_space-T1w.voi\n"
                              "sub-01/sub-01_task-rest_space-T1w.vtc\n"
                              "sub-02/ses-a/sub-02_ses-a_task-nback_run-1_space-MNI.vmr\n"
                              "sub-02/ses-a/sub-02_ses-a_task-nback_run-1_space-MNI.voi\n"
                              "sub-02/ses-a/sub-02_ses-a_task-nback_run-1_space-MNI.vtc");
    const VoiSet vois = readVoiFile(out + QStringLiteral("/sub-01/sub-01_task-rest_space-T1w.voi"));
    EXPECT_EQ(vois.vois.size(), 4U);
    EXPECT_EQ(vois.provenance.subject, QStringLiteral("sub-01"));
    EXPECT_EQ(vois.provenance.space, QStringLiteral("T1w"));
}

TEST_F(BidsImports, AreThoseThatAreAskedFor)
{
    const ProgramRun done =
        run({QStringLiteral("--participant_label"), QStringLiteral("sub-01"), QStringLiteral("02"),
             QStringLiteral("--task-id"), QStringLiteral("nback"), QStringLiteral("--clean"),
             QStringLiteral("motion6")});
    EXPECT_THAT(done.errors.toStdString(), HasSubstr("no run of task-nback; found: task-rest"));
    EXPECT_EQ(made().size(), 3);
    const VtcInfo info =
        VtcFile(out + QStringLiteral("/sub-02/ses-a/sub-02_ses-a_task-nback_run-1_space-MNI.vtc"))
            .info();
    EXPECT_TRUE(info.cleaning.has_value());
    EXPECT_EQ(run({QStringLiteral("--participant-label"), QStringLiteral("01")}).status, 0);
    EXPECT_EQ(run({QStringLiteral("--space"), QStringLiteral("none")}).status, 1);
}

TEST_F(BidsImports, AreNoPlaceForFilesOfOneRun)
{
    for (const QStringList &more :
         {QStringList{QStringLiteral("--functional"), QStringLiteral("a.nii")},
          QStringList{QStringLiteral("--name"), QStringLiteral("a")},
          QStringList{QStringLiteral("--labels"), QStringLiteral("a.tsv")},
          QStringList{QStringLiteral("--space-name"), QStringLiteral("a")}}) {
        const ProgramRun refused = run(more);
        EXPECT_EQ(refused.status, 2) << joined(more);
        EXPECT_EQ(refused.errorLines(), 1) << refused.errors.constData();
    }
    const ProgramRun without = runCorvane({QStringLiteral("import"), QStringLiteral("--task-id"),
                                           QStringLiteral("rest"), QStringLiteral("--functional"),
                                           QStringLiteral("a.nii"), QStringLiteral("--out"), out});
    EXPECT_EQ(without.status, 2);
    EXPECT_THAT(without.errors.toStdString(), HasSubstr("--task-id goes with --bids"));
    EXPECT_FALSE(QFileInfo::exists(out));
}

TEST_F(SubjectImport, ByTheCommandTakesAllItsSources)
{
    const ProgramRun run = runCorvane(
        {QStringLiteral("import"),    QStringLiteral("--functional"), request.functional,
         QStringLiteral("--atlas"),   folder.path("two_dseg.nii"),    QStringLiteral("--labels"),
         folder.path("two.tsv"),      QStringLiteral("--mask"),       folder.path("left hand.nii"),
         QStringLiteral("--mask"),    folder.path("one.nii.gz"),      QStringLiteral("--atlas"),
         folder.path("two_dseg.nii"), QStringLiteral("--spheres"),    folder.path("places.tsv"),
         QStringLiteral("--subject"), QStringLiteral("Anna"),         QStringLiteral("--name"),
         QStringLiteral("sub"),       QStringLiteral("--out"),        request.folder});
    EXPECT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_THAT(run.errors.toStdString(), HasSubstr("without an anatomy the mean of the run"));
    const VoiSet set = readVoiFile(out("sub.voi"));
    EXPECT_EQ(namesOf(set), QStringList({"alpha", "beta", "left hand", "one", "1", "2", "centre"}));
    EXPECT_EQ(set.provenance.subject, QStringLiteral("Anna"));
    EXPECT_EQ(set.provenance.space, QStringLiteral("T1w"));
}

} // namespace
} // namespace corvane
