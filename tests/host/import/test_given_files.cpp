// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/file_role.h"
#include "host/import/given_files.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/notes.h"
#include "tests/host/support/small_study.h"
#include "tests/support/other_user.h"

#include <QDir>
#include <QFileInfo>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;

class Given : public testing::Test
{
protected:
    Given()
    {
        putImage("run.nii.gz", {4, 4, 4, 3}, [](int n) { return n % 97; });
        putImage("sub-01_task-a_bold.nii", {4, 4, 4, 2}, [](int n) { return n % 97; });
        putImage("sub-01_task-b_bold.nii", {4, 4, 4, 2}, [](int n) { return n % 97; });
        putImage("head.nii", {4, 4, 4}, [](int n) { return n * 7 % 61; });
        putImage("sub-01_T1w.nii", {4, 4, 4}, [](int) { return 1; });
        putImage("patches.nii.gz", {4, 4, 4}, [](int n) { return n / 8; });
        putImage("blob.nii", {4, 4, 4}, [](int n) { return n > 20; });
        putImage("my_mask.nii", {4, 4, 4}, [](int n) { return n % 2; });
        putImage("left ROI.nii", {4, 4, 4}, [](int n) { return n % 2; });
        putImage("unmasked.nii", {4, 4, 4}, [](int n) { return n * 7 % 61; });
        putImage("sub-01_dseg.nii.gz", {4, 4, 4}, [](int n) { return n % 5; });
        putBytes(path("events.tsv"), "onset\tduration\n0\t3\n");
        putBytes(path("sub-01_task-a_events.tsv"), "onset\tduration\n0\t3\n");
        putBytes(path("sub-01_task-b_events.tsv"), "onset\tduration\n0\t3\n");
        putBytes(path("names.tsv"), "# a comment\nindex\tname\n1\tone\n");
        putBytes(path("colours.ctab"), "0 Unknown 0 0 0 0\n1 Left-Area 10 20 30 0\n");
        putBytes(path("places.tsv"), "name\tx\ty\tz\nm\t1\t2\t3\n");
        putBytes(path("sub-01_task-a_desc-confounds_timeseries.tsv"), "csf\n1\n2\n");
        putBytes(path("motion.par"), "0 0 0 0 0 0\n");
        putBytes(path("ages.tsv"), "who\tage\na\t3\n");
        putBytes(path("notes.docx"), "x");
    }
    QString path(const char *name) const { return folder.path(name); }
    QStringList paths(std::initializer_list<const char *> names) const
    {
        QStringList all;
        for (const char *name : names)
            all += path(name);
        return all;
    }
    void putImage(const char *name, std::initializer_list<int> size,
                  const std::function<int(int)> &value) const
    {
        NiftiParts parts;
        parts.setSize(size);
        parts.pixdim[4] = 2;
        std::vector<quint8> voxels;
        for (int n = 0; n < parts.sampleCount(); ++n)
            voxels.push_back(static_cast<quint8>(value(n)));
        setSamples(parts, voxels);
        const QByteArray bytes = niftiBytes(parts);
        putBytes(path(name), QByteArray(name).endsWith(".gz") ? gzipped(bytes) : bytes);
    }
    std::string bare(const QStringList &files) const
    {
        QStringList names;
        for (const QString &file : files)
            names += QFileInfo(file).fileName();
        return joined(names);
    }

    const TemporaryFolder folder;
};

TEST_F(Given, FilesAreKnownByNameAndContent)
{
    const std::pair<const char *, FileRole> rows[] = {
        {"run.nii.gz", FileRole::Run},
        {"head.nii", FileRole::Anatomy},
        {"sub-01_T1w.nii", FileRole::Anatomy},
        {"unmasked.nii", FileRole::Anatomy},
        {"patches.nii.gz", FileRole::Atlas},
        {"sub-01_dseg.nii.gz", FileRole::Atlas},
        {"blob.nii", FileRole::Mask},
        {"my_mask.nii", FileRole::Mask},
        {"left ROI.nii", FileRole::Mask},
        {"events.tsv", FileRole::Events},
        {"names.tsv", FileRole::Labels},
        {"colours.ctab", FileRole::Labels},
        {"places.tsv", FileRole::Spheres},
        {"sub-01_task-a_desc-confounds_timeseries.tsv", FileRole::Confounds},
        {"motion.par", FileRole::Confounds},
        {"ages.tsv", FileRole::None},
        {"notes.docx", FileRole::None},
    };
    for (const auto &[name, role] : rows)
        EXPECT_EQ(int(roleOf(path(name))), int(role)) << name;
    EXPECT_FALSE(isRun(path("none.nii")));
}

TEST_F(Given, OneAnatomyAndTheHostsOwnFilesAreOpened)
{
    const GivenFiles given =
        sortGivenFiles(paths({"head.nii", "a.vmr", "b.vtc", "c.voi", "d.prt"}));
    EXPECT_EQ(bare(given.toOpen), "head.nii\na.vmr\nb.vtc\nc.voi\nd.prt");
    EXPECT_TRUE(given.toImport.isEmpty());
    EXPECT_EQ(joined(given.faults), "");
}

TEST_F(Given, RunsTablesAndSeveralImagesAreImported)
{
    EXPECT_EQ(bare(sortGivenFiles(paths({"run.nii.gz"})).toImport), "run.nii.gz");
    EXPECT_EQ(bare(sortGivenFiles(paths({"events.tsv"})).toImport), "events.tsv");
    EXPECT_EQ(bare(sortGivenFiles(paths({"my_mask.nii", "blob.nii"})).toImport),
              "my_mask.nii\nblob.nii");
    const GivenFiles mixed = sortGivenFiles(paths({"head.nii", "places.tsv", "a.vmr"}));
    EXPECT_EQ(bare(mixed.toOpen), "a.vmr");
    EXPECT_EQ(bare(mixed.toImport), "places.tsv\nhead.nii");
}

TEST_F(Given, AnUnknownEndingGetsASentenceWithWhatIsKnown)
{
    const GivenFiles given = sortGivenFiles(paths({"notes.docx"}));
    EXPECT_TRUE(given.toOpen.isEmpty());
    ASSERT_EQ(given.faults.size(), 1);
    EXPECT_EQ(given.faults[0].toStdString(),
              "\"notes.docx\" is of no kind that this program knows: it opens .vmr, .vtc, .voi, "
              ".prt, .nii, .nii.gz, .nrrd, .nhdr, .tsv, .ctab, .par, .1D and .txt, and folders of "
              "these");
}

TEST_F(Given, AFolderThatCannotBeReadIsToldAndStopsNoOther)
{
    const QString closed = path("closed");
    ASSERT_TRUE(QDir().mkdir(closed));
    const QFileDevice::Permissions whole = QFileInfo(closed).permissions();
    QFile::setPermissions(QFileInfo(closed).path(), whole | QFile::ReadGroup | QFile::ExeGroup);
    ASSERT_TRUE(QFile::setPermissions(closed, QFile::ExeOwner | QFile::ExeGroup));
    GivenFiles given;
    {
        const OtherUser user;
        given = sortGivenFiles(paths({"closed", "a.vmr"}));
    }
    QFile::setPermissions(closed, whole);
    EXPECT_EQ(bare(given.toOpen), "a.vmr");
    ASSERT_EQ(given.faults.size(), 1);
    EXPECT_THAT(given.faults[0].toStdString(),
                HasSubstr("closed: listing: found Permission denied"));
}

TEST_F(Given, FilesFillAllFieldsOfAnImport)
{
    QStringList faults;
    const std::vector<ImportRequest> requests =
        requestsOf(paths({"places.tsv", "events.tsv", "run.nii.gz", "names.tsv", "my_mask.nii",
                          "head.nii", "patches.nii.gz", "motion.par"}),
                   faults);
    EXPECT_EQ(joined(faults), "");
    ASSERT_EQ(requests.size(), 1U);
    const ImportRequest &request = requests[0];
    EXPECT_EQ(request.functional, path("run.nii.gz"));
    EXPECT_EQ(request.anatomy, path("head.nii"));
    EXPECT_EQ(request.events, path("events.tsv"));
    EXPECT_EQ(request.confounds, path("motion.par"));
    EXPECT_EQ(request.name, QStringLiteral("run"));
    ASSERT_EQ(request.voiSources.size(), 3U);
    EXPECT_EQ(request.voiSources[0].file, path("patches.nii.gz"));
    EXPECT_EQ(request.voiSources[0].labels, path("names.tsv"));
    EXPECT_EQ(request.voiSources[1].kind, VoiSource::Mask);
    EXPECT_EQ(request.voiSources[2].kind, VoiSource::Spheres);
}

TEST_F(Given, EachOfSeveralRunsGetsItsOwnFiles)
{
    QStringList faults;
    const std::vector<ImportRequest> requests = requestsOf(
        paths({"sub-01_task-b_bold.nii", "sub-01_task-a_bold.nii", "sub-01_task-b_events.tsv",
               "sub-01_task-a_events.tsv", "sub-01_task-a_desc-confounds_timeseries.tsv",
               "sub-01_T1w.nii", "ages.tsv"}),
        faults);
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].events, path("sub-01_task-b_events.tsv"));
    EXPECT_EQ(requests[0].confounds, QString());
    EXPECT_EQ(requests[0].anatomy, path("sub-01_T1w.nii"));
    EXPECT_EQ(requests[1].events, path("sub-01_task-a_events.tsv"));
    EXPECT_EQ(requests[1].confounds, path("sub-01_task-a_desc-confounds_timeseries.tsv"));
    EXPECT_THAT(joined(faults), HasSubstr("ages.tsv: a table of no known kind: "));
}

TEST_F(Given, FilesWithoutARunStillMakeAnImport)
{
    QStringList faults;
    const std::vector<ImportRequest> requests = requestsOf(paths({"events.tsv"}), faults);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].events, path("events.tsv"));
    EXPECT_EQ(requests[0].functional, QString());
}

TEST(GivenFolder, IsADatasetAPartOfOneOrThatOfItsDerivatives)
{
    const TemporaryFolder folder;
    const SmallStudy study(folder.path("raw/derivatives/pipeline"));
    study.addRun(QStringLiteral("sub-01/ses-a/func"), QStringLiteral("sub-01_ses-a_task-rest"),
                 QStringLiteral("space-T1w"));
    ASSERT_TRUE(QDir().mkpath(folder.path("raw/sub-01/func")));
    const auto datasetOf = [](const QString &path) { return sortGivenFiles({path}).dataset; };
    EXPECT_EQ(datasetOf(study.path()), study.path());
    EXPECT_EQ(datasetOf(folder.path("raw")), study.path());
    for (const char *part : {"sub-01", "sub-01/ses-a", "sub-01/ses-a/func"}) {
        const GivenFiles given = sortGivenFiles({study.path(QLatin1String(part))});
        EXPECT_EQ(given.dataset, study.path()) << part;
        EXPECT_EQ(given.participants, QStringList{QStringLiteral("01")}) << part;
    }
}

TEST_F(Given, AFolderOfFilesStandsForThem)
{
    for (const char *name : {"out/b.vtc", "out/a.vmr", "out/readme.md"}) {
        ASSERT_TRUE(QDir().mkpath(folder.path("out")));
        putBytes(path(name), "x");
    }
    EXPECT_EQ(bare(sortGivenFiles({path("out")}).toOpen), "a.vmr\nb.vtc");
    ASSERT_TRUE(QDir().mkpath(folder.path("empty")));
    const GivenFiles empty = sortGivenFiles({path("empty")});
    EXPECT_TRUE(empty.toOpen.isEmpty());
    EXPECT_THAT(joined(empty.faults),
                HasSubstr("empty: a folder without a file that can be opened"));
}

} // namespace
} // namespace corvane
