// SPDX-License-Identifier: GPL-3.0-or-later
// The files of the example study: which there are, that they agree with each other, and that they
// are the same on every machine.
#include "host/example_study/example_study.h"

#include "host/derivatives/run_index.h"
#include "host/example_study/participants.h"
#include "host/files/progress.h"
#include "host/files/tsv_table.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/notes.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

constexpr int volumes = example_study::volumeCount;

ExampleStudyRequest studyOf(int participants, const QString &folder, int threads = 0)
{
    ExampleStudyRequest request;
    request.folder = folder;
    request.participants = participants;
    request.threads = threads;
    return request;
}

/// Paths of all files, below the folder.
QStringList filesIn(const QString &folder)
{
    QStringList files;
    QDirIterator iterator(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (iterator.hasNext())
        files += QDir(folder).relativeFilePath(iterator.next());
    files.sort();
    return files;
}

/// A digest of the names of files with that ending and of what is in them, unpacked: packing may
/// differ between processors.
std::string digest(const QString &folder, const char *ending)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QString &file : filesIn(folder))
        if (file.endsWith(QLatin1String(ending))) {
            hash.addData(file.toUtf8());
            const QString path = folder + QLatin1Char('/') + file;
            hash.addData(file.endsWith(QLatin1String(".gz")) ? unpackedBytes(path) : bytesOf(path));
        }
    return hash.result().toHex().left(16).toStdString();
}

class ExampleStudy : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_folder = new TemporaryFolder;
        writeExampleStudy(studyOf(2, path({})));
        s_runs = new std::vector<StudyRun>(indexRuns(path({}), {}));
    }
    static void TearDownTestSuite()
    {
        delete s_runs;
        delete s_folder;
    }

    static QString path(const QString &below)
    {
        const QString study = s_folder->path("study");
        return below.isEmpty() ? study : study + QLatin1Char('/') + below;
    }
    static const std::vector<StudyRun> &runs() { return *s_runs; }

private:
    static TemporaryFolder *s_folder;
    static std::vector<StudyRun> *s_runs;
};

TemporaryFolder *ExampleStudy::s_folder = nullptr;
std::vector<StudyRun> *ExampleStudy::s_runs = nullptr;

TEST_F(ExampleStudy, HasTheFilesOfAPipeline)
{
    QStringList expected{
        QStringLiteral("README.txt"),
        QStringLiteral("atlas/tpl-MNI152NLin2009cAsym_res-2_atlas-Example38_dseg.nii.gz"),
        QStringLiteral("atlas/tpl-MNI152NLin2009cAsym_res-2_atlas-Example38_dseg.tsv"),
        QStringLiteral("dataset_description.json"),
        QStringLiteral("participants.json"),
        QStringLiteral("participants.tsv"),
        QStringLiteral("planted_edges.tsv")};
    for (const char *participant : {"sub-01", "sub-02"})
        for (const char *session : {"ses-a", "ses-b"})
            for (const char *task : {"nback", "rest"}) {
                const QString run = QStringLiteral("%1/%2/func/%1_%2_task-%3")
                                        .arg(QLatin1String(participant), QLatin1String(session),
                                             QLatin1String(task));
                const QString image = run + QStringLiteral("_space-MNI152NLin2009cAsym_res-2");
                expected += run + QStringLiteral("_desc-confounds_timeseries.json");
                expected += run + QStringLiteral("_desc-confounds_timeseries.tsv");
                if (qstrcmp(task, "nback") == 0)
                    expected += run + QStringLiteral("_events.tsv");
                expected += image + QStringLiteral("_boldref.nii.gz");
                expected += image + QStringLiteral("_desc-brain_mask.json");
                expected += image + QStringLiteral("_desc-brain_mask.nii.gz");
                expected += image + QStringLiteral("_desc-preproc_bold.json");
                expected += image + QStringLiteral("_desc-preproc_bold.nii.gz");
            }
    EXPECT_EQ(joined(filesIn(path({}))), joined(expected));
}

TEST_F(ExampleStudy, IsIndexedWithoutADoubt)
{
    ASSERT_EQ(runs().size(), 8U);
    for (const StudyRun &run : runs()) {
        EXPECT_EQ(run.reason, QString());
        EXPECT_EQ(run.space, QStringLiteral("MNI152NLin2009cAsym"));
        EXPECT_FALSE(run.mask.isEmpty());
        EXPECT_FALSE(run.confounds.isEmpty());
        EXPECT_EQ(run.repetitionTime, 2.0);
        EXPECT_EQ(run.events.isEmpty(), run.task == QStringLiteral("rest"));
    }
}

TEST_F(ExampleStudy, IsTheSameOnEveryMachine)
{
    EXPECT_EQ(digest(path({}), "_bold.nii.gz"), "07b9562e5e89faa5");
    EXPECT_EQ(digest(path({}), "_boldref.nii.gz"), "7e0a6798ec2a68fc");
    EXPECT_EQ(digest(path({}), "_mask.nii.gz"), "6d118269270bc2b6");
    EXPECT_EQ(digest(path({}), "_dseg.nii.gz"), "06174b8efbb31b60");
    EXPECT_EQ(digest(path({}), ".tsv"), "b10d5cb8b5056239");
    EXPECT_EQ(digest(path({}), ".json"), "dfbbe59102ff98a9");
}

TEST_F(ExampleStudy, IsTheSameOnAnyNumberOfThreads)
{
    const TemporaryFolder folder;
    for (const int threads : {1, 2}) {
        const QString other = folder.path(QString::number(threads));
        writeExampleStudy(studyOf(2, other, threads));
        ASSERT_EQ(filesIn(other), filesIn(path({})));
        for (const QString &file : filesIn(other))
            EXPECT_EQ(bytesOf(other + QLatin1Char('/') + file), bytesOf(path(file)))
                << file.toStdString();
    }
}

TEST_F(ExampleStudy, BeginsALargerOne)
{
    const TemporaryFolder folder;
    writeExampleStudy(studyOf(4, folder.path("four")));
    const QStringList larger = filesIn(folder.path("four"));
    for (const QString &file : filesIn(path({}))) {
        EXPECT_TRUE(larger.contains(file)) << file.toStdString();
        if (file.startsWith(QLatin1String("sub-"))) {
            EXPECT_EQ(bytesOf(folder.path("four/" + file)), bytesOf(path(file)))
                << file.toStdString();
        }
    }
    EXPECT_TRUE(bytesOf(folder.path("four/participants.tsv"))
                    .startsWith(bytesOf(path("participants.tsv"))));
}

// ---- the tables of confounds

class Confounds
{
public:
    explicit Confounds(const QString &path) : m_table(path) {}

    const TsvTable &table() const { return m_table; }

    /// NaN for n/a.
    Eigen::ArrayXd operator[](const QString &name) const
    {
        Eigen::ArrayXd values(m_table.rowCount());
        const int column = m_table.requiredColumn(name);
        for (int row = 0; row < m_table.rowCount(); ++row) {
            const QString cell = m_table.cell(row, column);
            bool isNumber = false;
            values[row] = cell.toDouble(&isNumber);
            if (!isNumber) {
                EXPECT_EQ(cell, QStringLiteral("n/a"));
                values[row] = NAN;
            }
        }
        return values;
    }

private:
    TsvTable m_table;
};

/// The largest difference from row 1 on; both must have nothing in row 0, or both a number.
double apart(const Eigen::ArrayXd &a, const Eigen::ArrayXd &b)
{
    EXPECT_EQ(a.size(), b.size());
    EXPECT_EQ(std::isnan(a[0]), std::isnan(b[0]));
    return (a - b).tail(a.size() - 1).abs().maxCoeff();
}

Eigen::ArrayXd changes(const Eigen::ArrayXd &values)
{
    Eigen::ArrayXd change(values.size());
    change[0] = NAN;
    change.tail(values.size() - 1) =
        values.tail(values.size() - 1) - values.head(values.size() - 1);
    return change;
}

const char *const motionNames[] = {"trans_x", "trans_y", "trans_z", "rot_x", "rot_y", "rot_z"};

TEST_F(ExampleStudy, TellsTheDisplacementOfItsMotion)
{
    for (const StudyRun &run : runs()) {
        const Confounds confounds(run.confounds);
        Eigen::ArrayXd displacement = Eigen::ArrayXd::Zero(volumes);
        for (int n = 0; n < 6; ++n)
            displacement += (n < 3 ? 1 : 50) * changes(confounds[motionNames[n]]).abs();
        EXPECT_LT(apart(confounds["framewise_displacement"], displacement), 1e-5);
        EXPECT_GT(displacement.tail(volumes - 1).mean(), 0.03);
    }
}

TEST_F(ExampleStudy, ExpandsItsColumns)
{
    const Confounds confounds(runs().front().confounds);
    for (const char *name : {"trans_x", "trans_y", "trans_z", "rot_x", "rot_y", "rot_z",
                             "global_signal", "csf", "white_matter"}) {
        const QString stem = QLatin1String(name);
        const Eigen::ArrayXd values = confounds[stem];
        const Eigen::ArrayXd change = changes(values);
        // Numbers have six digits.
        const double scale = 1e-5 * values.abs().maxCoeff();
        EXPECT_LT(apart(confounds[stem + "_derivative1"], change), scale) << name;
        EXPECT_LT(apart(confounds[stem + "_power2"], values.square()),
                  scale * values.abs().maxCoeff());
        EXPECT_LT(apart(confounds[stem + "_derivative1_power2"], change.square()),
                  scale * (1 + 2 * change.tail(volumes - 1).abs().maxCoeff()));
    }
}

TEST_F(ExampleStudy, TellsTheSignalsOfItsImages)
{
    for (const StudyRun &run : runs()) {
        const QByteArray image = unpackedBytes(run.bold);
        const QByteArray mask = unpackedBytes(run.mask);
        const int voxels = mask.size() - 352;
        ASSERT_EQ(image.size(), 352 + 2 * voxels * volumes);
        Eigen::ArrayXd mean = Eigen::ArrayXd::Zero(volumes);
        Eigen::ArrayXd squares = Eigen::ArrayXd::Zero(volumes);
        int inside = 0;
        for (int v = 0; v < voxels; ++v) {
            if (mask[352 + v] == 0)
                continue;
            ++inside;
            Eigen::ArrayXd series(volumes);
            for (int t = 0; t < volumes; ++t)
                series[t] = get<qint16>(image, 352 + 2 * (v + voxels * t));
            mean += series;
            squares += changes(series).square();
        }
        EXPECT_GT(inside, 2500);
        const Confounds confounds(run.confounds);
        EXPECT_LT(apart(confounds["global_signal"], mean / inside), 1e-3);
        EXPECT_LT(apart(confounds["dvars"], (squares / inside).sqrt()), 1e-4);
        // Steady from the third volume on.
        EXPECT_GT(mean[0] / mean[2], 1.08);
        EXPECT_LT(std::abs(mean[2] / mean[3] - 1), 0.04);
    }
}

TEST_F(ExampleStudy, MarksOutliersAndTheScannersStart)
{
    for (const StudyRun &run : runs()) {
        const Confounds confounds(run.confounds);
        const Eigen::ArrayXd displacement = confounds["framewise_displacement"];
        const Eigen::ArrayXd dvars = confounds["std_dvars"];
        Eigen::ArrayXd marked = Eigen::ArrayXd::Zero(volumes);
        for (const QString &column : confounds.table().columns())
            if (column.startsWith(QLatin1String("motion_outlier"))) {
                EXPECT_EQ(confounds[column].sum(), 1);
                marked += confounds[column];
            }
        for (int t = 1; t < volumes; ++t)
            EXPECT_EQ(marked[t] == 1, displacement[t] > 0.5 || dvars[t] > 1.5) << t;
        EXPECT_EQ(confounds["non_steady_state_outlier00"][0], 1);
        EXPECT_EQ(confounds["non_steady_state_outlier01"][1], 1);
        EXPECT_EQ(confounds.table().column(QStringLiteral("non_steady_state_outlier02")), -1);
    }
}

TEST_F(ExampleStudy, HasCosinesAndComponentsWithoutThem)
{
    const double pi = std::acos(-1.0);
    const Confounds confounds(runs().back().confounds);
    // 2 * 160 volumes * 0.008 Hz * 2 s = 5.12
    EXPECT_EQ(confounds.table().column(QStringLiteral("cosine05")), -1);
    std::vector<Eigen::ArrayXd> all;
    for (int k = 1; k <= 5; ++k) {
        all.push_back(confounds[QStringLiteral("cosine0%1").arg(k - 1)]);
        for (int t = 0; t < volumes; ++t)
            ASSERT_NEAR(all.back()[t],
                        std::sqrt(2.0 / volumes) * std::cos(pi / volumes * (t + 0.5) * k), 1e-6);
    }
    const QJsonObject facts =
        QJsonDocument::fromJson(bytesOf(QString(runs().back().confounds).replace(".tsv", ".json")))
            .object();
    for (const char *stem : {"c_comp_cor_0", "w_comp_cor_0", "a_comp_cor_0"}) {
        std::vector<Eigen::ArrayXd> components = all;
        double explained = 0;
        for (int n = 0; n < 5; ++n) {
            const QString name = QLatin1String(stem) + QString::number(n);
            components.push_back(confounds[name]);
            const QJsonObject fact = facts[name].toObject();
            EXPECT_EQ(fact["Mask"].toString(), stem[0] == 'c'   ? QStringLiteral("CSF")
                                               : stem[0] == 'w' ? QStringLiteral("WM")
                                                                : QStringLiteral("combined"));
            EXPECT_TRUE(fact["Retained"].toBool());
            explained += fact["VarianceExplained"].toDouble();
            EXPECT_NEAR(fact["CumulativeVarianceExplained"].toDouble(), explained, 1e-5);
        }
        EXPECT_GT(explained, 0.02);
        EXPECT_LT(explained, 1);
        for (std::size_t a = 0; a < components.size(); ++a)
            for (std::size_t b = 0; b < components.size(); ++b)
                EXPECT_NEAR((components[a] * components[b]).sum(), a == b ? 1 : 0, 1e-4);
    }
}

// ---- what can go wrong

TEST(ExampleStudyFolder, MayStandEmpty)
{
    const TemporaryFolder folder;
    writeExampleStudy(studyOf(2, folder.path()));
    EXPECT_EQ(folder.entries().size(), 8);
}

TEST(ExampleStudyFolder, IsRefusedWithAnythingInIt)
{
    const TemporaryFolder folder;
    putBytes(folder.path(".notes"), "mine");
    EXPECT_EQ(
        errorOf([&] { writeExampleStudy(studyOf(2, folder.path())); }),
        folder.path().toStdString() +
            ": output folder: found a folder that holds \".notes\", expected an empty folder, "
            "or one that is not there yet");
    EXPECT_EQ(folder.entries(), QStringList{".notes"});
    EXPECT_EQ(errorOf([&] { writeExampleStudy(studyOf(2, folder.path(".notes"))); }),
              folder.path(".notes").toStdString() +
                  ": output folder: found a file, expected an empty folder, or one that is not "
                  "there yet");
    EXPECT_EQ(bytesOf(folder.path(".notes")), "mine");
}

TEST(ExampleStudyFolder, IsGoneWhenTheWorkIsStopped)
{
    const TemporaryFolder folder;
    qint64 last = 0;
    const auto stopAtThree = [&last](qint64 done, qint64 total) {
        EXPECT_EQ(total, 8);
        last = done;
        return done < 3;
    };
    EXPECT_THROW(writeExampleStudy(studyOf(2, folder.path("a/study")), stopAtThree), WorkStopped);
    EXPECT_GE(last, 3);
    EXPECT_EQ(folder.entries(), QStringList());
}

} // namespace
} // namespace corvane
