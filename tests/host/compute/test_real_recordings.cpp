// SPDX-License-Identifier: GPL-3.0-or-later
//
// Real recordings from files to matrices: imported and computed by the program as a user does it,
// and checked against a computation of the test in double precision.
#include "tests/host/support/host_files.h"
#include "tests/host/support/program.h"
#include "tests/host/support/recordings.h"

#include <Eigen/LU>
#include <QFileInfo>
#include <gmock/gmock.h>
#include <nifti/nifti2_io.h>

#include <cmath>
#include <memory>

namespace corvane
{

namespace
{

struct FreeImage {
    void operator()(nifti_image *image) const { nifti_image_free(image); }
};
using Image = std::unique_ptr<nifti_image, FreeImage>;

Image readImage(const QString &path)
{
    Image image(nifti_image_read(path.toUtf8().constData(), 1));
    EXPECT_TRUE(image) << path.toStdString();
    return image;
}

/// An atlas on the grid of a run: the label of each voxel by its place, 0 for none.
void writeAtlas(const QString &path, const nifti_image &run, const std::vector<short> &labels)
{
    const int64_t dims[8] = {3, run.nx, run.ny, run.nz, 1, 1, 1, 1};
    const Image atlas(nifti_make_new_nim(dims, DT_INT16, 1));
    std::memcpy(atlas->data, labels.data(), labels.size() * sizeof(short));
    atlas->dx = atlas->pixdim[1] = run.dx;
    atlas->dy = atlas->pixdim[2] = run.dy;
    atlas->dz = atlas->pixdim[3] = run.dz;
    atlas->qform_code = run.qform_code;
    atlas->sform_code = run.sform_code;
    atlas->sto_xyz = run.sto_xyz;
    atlas->qto_xyz = run.qto_xyz;
    atlas->quatern_b = run.quatern_b;
    atlas->quatern_c = run.quatern_c;
    atlas->quatern_d = run.quatern_d;
    atlas->qoffset_x = run.qoffset_x;
    atlas->qoffset_y = run.qoffset_y;
    atlas->qoffset_z = run.qoffset_z;
    atlas->qfac = run.qfac;
    atlas->xyz_units = NIFTI_UNITS_MM;
    ASSERT_EQ(nifti_set_filenames(atlas.get(), path.toUtf8().constData(), 0, 1), 0);
    nifti_image_write(atlas.get());
}

/// Mean course of each VOI over the samples at its voxels, in double precision, from the files that
/// the import wrote.
Eigen::MatrixXd meanCourses(const VtcFile &vtc, const VoiSet &set)
{
    const VtcInfo &info = vtc.info();
    Eigen::MatrixXd courses =
        Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(set.vois.size()), info.nrOfVolumes);
    for (std::size_t v = 0; v < set.vois.size(); ++v) {
        for (const std::array<int, 3> &voxel : set.vois[v].voxels) {
            const auto place = [&](int axis, int start) {
                return qint64(std::lround(double(voxel[static_cast<std::size_t>(axis)] - start) /
                                          info.resolution));
            };
            const qint64 point =
                place(0, info.xStart) +
                info.dimX() * (place(1, info.yStart) + info.dimY() * place(2, info.zStart));
            for (int t = 0; t < info.nrOfVolumes; ++t) {
                const qint64 at = t + info.nrOfVolumes * point;
                courses(static_cast<Eigen::Index>(v), t) += info.type == VtcInfo::Short
                                                                ? double(vtc.shortSamples()[at])
                                                                : double(vtc.floatSamples()[at]);
            }
        }
        courses.row(static_cast<Eigen::Index>(v)) /= double(set.vois[v].voxels.size());
    }
    return courses;
}

Eigen::MatrixXd correlations(const Eigen::MatrixXd &courses, Eigen::Index first, Eigen::Index count)
{
    Eigen::MatrixXd c(courses.rows(), courses.rows());
    for (Eigen::Index a = 0; a < c.rows(); ++a) {
        for (Eigen::Index b = 0; b < c.cols(); ++b)
            c(a, b) = pearson(courses, a, b, first, count);
    }
    return c;
}

void expectAbsoluteCorrelations(const Eigen::MatrixXf &actual, const Eigen::MatrixXd &courses,
                                Eigen::Index first, Eigen::Index count, double tolerance)
{
    const Eigen::MatrixXd c = correlations(courses, first, count);
    ASSERT_EQ(actual.rows(), c.rows());
    ASSERT_EQ(actual.cols(), c.cols());
    for (Eigen::Index a = 0; a < c.rows(); ++a) {
        for (Eigen::Index b = 0; b < c.cols(); ++b)
            EXPECT_NEAR(actual(a, b), a == b ? 0.0 : std::abs(c(a, b)), tolerance) << a << "," << b;
    }
}

/// The partial measure after its clean-up: mean of both triangles, no diagonal.
void expectPartialCorrelations(const Eigen::MatrixXf &actual, const Eigen::MatrixXd &courses)
{
    const Eigen::MatrixXd c = correlations(courses, 0, courses.cols());
    const Eigen::MatrixXd p = c.inverse();
    const auto entry = [&](Eigen::Index i, Eigen::Index j) {
        return std::abs(p(i, j) / std::sqrt(p(i, i) * c(j, j)));
    };
    for (Eigen::Index i = 0; i < c.rows(); ++i) {
        for (Eigen::Index j = 0; j < c.cols(); ++j) {
            const double expected = i == j ? 0.0 : (entry(i, j) + entry(j, i)) / 2;
            EXPECT_NEAR(actual(i, j), expected, 1e-4 * std::max(1.0, expected)) << i << "," << j;
        }
    }
}

/// A folder with one imported recording.
class RealRecording : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!QFileInfo::exists(recording("SOURCES.md")))
            GTEST_SKIP() << "no real recordings in " << referenceFolder();
    }

    void import(const QString &anatomy, const QString &functional, const QStringList &more)
    {
        const ProgramRun run =
            runCorvane(QStringList{"import", "--anatomy", anatomy, "--functional", functional,
                                   "--name", "r", "--out", folder.path("data")} +
                       more);
        ASSERT_EQ(run.status, 0) << run.errors.constData();
    }

    void compute(const QStringList &more)
    {
        const ProgramRun run =
            runCorvane(QStringList{"compute", "--anatomy", folder.path("data/r.vmr"), "--vtc",
                                   folder.path("data/r.vtc"), "--voi", folder.path("data/r.voi"),
                                   "--out", folder.path("out")} +
                       more);
        ASSERT_EQ(run.status, 0) << run.errors.constData();
    }

    Eigen::MatrixXf table(const QString &name) const
    {
        return readTable(folder.path("out/") + name);
    }

    TemporaryFolder folder;
};

/// One of the whole-brain runs of 25 mm, with VOIs from the masks on its grid.
class WholeBrainRun : public RealRecording, public testing::WithParamInterface<const char *>
{
protected:
    QString functional() const
    {
        return recording("haxby2001/") + QString::fromUtf8(GetParam()) + "_bold_25mm.nii.gz";
    }
    QString events() const
    {
        return recording("haxby2001/") + QString::fromUtf8(GetParam()) + "_events.tsv";
    }

    /// Labels 1 to 4 from the masks; where two overlap the later one has the voxel.
    std::vector<short> labels() const
    {
        std::vector<short> all;
        short label = 0;
        for (const char *mask : {"white", "gray", "hoc", "vt"}) {
            ++label;
            const Image image =
                readImage(recording("haxby2001/mask_25mm_") + QString::fromUtf8(mask) + ".nii.gz");
            all.resize(image->nvox);
            for (std::size_t n = 0; n < all.size(); ++n) {
                const double value = image->datatype == DT_UINT8
                                         ? static_cast<const uchar *>(image->data)[n]
                                         : static_cast<const short *>(image->data)[n];
                if (value != 0)
                    all[n] = label;
            }
        }
        return all;
    }

    /// Mean course of each label straight from the run.
    static Eigen::MatrixXd coursesOf(const nifti_image &run, const std::vector<short> &labels)
    {
        Eigen::MatrixXd courses = Eigen::MatrixXd::Zero(4, run.nt);
        std::array<int, 5> voxels{};
        const auto *samples = static_cast<const short *>(run.data);
        for (std::size_t n = 0; n < labels.size(); ++n) {
            ++voxels.at(static_cast<std::size_t>(labels[n]));
            for (int t = 0; labels[n] != 0 && t < run.nt; ++t)
                courses(labels[n] - 1, t) +=
                    samples[n + static_cast<std::size_t>(t) * labels.size()];
        }
        for (int label = 1; label <= 4; ++label)
            courses.row(label - 1) /= voxels.at(static_cast<std::size_t>(label));
        return courses;
    }

    /// Imports the run and gives the courses that its matrices must come from.
    void importRun(const QStringList &more = {})
    {
        const Image run = readImage(functional());
        ASSERT_EQ(run->datatype, DT_INT16);
        const std::vector<short> atlas = labels();
        writeAtlas(folder.path("atlas.nii"), *run, atlas);
        import(recording("haxby2001/mask_25mm_brain.nii.gz"), functional(),
               QStringList{"--atlas", folder.path("atlas.nii")} + more);
        courses = coursesOf(*run, atlas);
        EXPECT_EQ(run->nt, 121);
    }

    Eigen::MatrixXd courses;
};

TEST_P(WholeBrainRun, GivesItsCorrelations)
{
    importRun();
    compute({});
    const Eigen::MatrixXf series = table("timeseries.csv");
    ASSERT_EQ(series.rows(), 4);
    EXPECT_LT((series.cast<double>() - courses).cwiseAbs().maxCoeff(), 1e-3);
    expectAbsoluteCorrelations(table("connectivity.csv"), courses, 0, 121, 1e-5);
}

TEST_P(WholeBrainRun, TakesTheAnatomyInItsOwnFormatToo)
{
    importRun();
    const ProgramRun run =
        runCorvane({"compute", "--anatomy", recording("haxby2001/mask_25mm_brain.nii.gz"), "--vtc",
                    folder.path("data/r.vtc"), "--voi", folder.path("data/r.voi"), "--out",
                    folder.path("out")});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    expectAbsoluteCorrelations(table("connectivity.csv"), courses, 0, 121, 1e-5);
}

TEST_P(WholeBrainRun, GivesItsPartialCorrelations)
{
    importRun();
    compute({"--measure", "partial-correlation"});
    expectPartialCorrelations(table("connectivity.csv"), courses);
}

TEST_P(WholeBrainRun, GivesOneMatrixPerEvent)
{
    importRun({"--events", events()});
    compute({"--use-protocol"});
    // Eight blocks of 22.5 s; at 2.5 s a volume they are nine volumes each when they begin on the
    // border of a volume and ten when they begin within one.
    QFile file(events());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    file.readLine();
    int slice = 0;
    while (!file.atEnd()) {
        const QList<QByteArray> fields = file.readLine().trimmed().split('\t');
        const double onset = fields.at(0).toDouble();
        const double end = onset + fields.at(1).toDouble();
        const auto first = static_cast<Eigen::Index>(std::floor(onset / 2.5 + 1e-6));
        const auto last = static_cast<Eigen::Index>(std::ceil(end / 2.5 - 1e-6));
        const QString name = QStringLiteral("connectivity_%1_%2.csv")
                                 .arg(QString::number(slice), QString::fromUtf8(fields.at(2)));
        expectAbsoluteCorrelations(table(name), courses, first, last - first, 1e-4);
        ++slice;
    }
    EXPECT_EQ(slice, 8);
}

INSTANTIATE_TEST_SUITE_P(Haxby, WholeBrainRun, testing::Values("run001", "run002", "run003"),
                         [](const auto &c) { return std::string(c.param); });

struct Recording {
    const char *name;
    const char *file;
    int volumes;
    QStringList importOptions;
};

void PrintTo(const Recording &r, std::ostream *stream)
{
    *stream << r.file;
}

class AnyRun : public RealRecording, public testing::WithParamInterface<Recording>
{
};

TEST_P(AnyRun, GivesTheMatricesOfItsSamples)
{
    const QString functional = recording(GetParam().file);
    const Image run = readImage(functional);
    ASSERT_EQ(run->nt, GetParam().volumes);

    // Four VOIs by quarters of the plane.
    std::vector<short> labels(static_cast<std::size_t>(run->nx * run->ny * run->nz));
    for (std::size_t n = 0; n < labels.size(); ++n) {
        const auto i = static_cast<int64_t>(n) % run->nx;
        const auto j = static_cast<int64_t>(n) / run->nx % run->ny;
        labels[n] = static_cast<short>(1 + (2 * i >= run->nx) + 2 * (2 * j >= run->ny));
    }
    writeAtlas(folder.path("atlas.nii.gz"), *run, labels);
    import(folder.path("atlas.nii.gz"), functional,
           QStringList{"--atlas", folder.path("atlas.nii.gz")} + GetParam().importOptions);
    compute({});

    const VtcFile vtc(folder.path("data/r.vtc"));
    EXPECT_EQ(vtc.info().nrOfVolumes, GetParam().volumes);
    EXPECT_TRUE(verifyVtcChecksum(vtc));
    const VoiSet set = readVoiFile(folder.path("data/r.voi"));
    ASSERT_EQ(set.vois.size(), 4u);
    const Eigen::MatrixXd courses = meanCourses(vtc, set);
    const double scale = courses.cwiseAbs().maxCoeff();
    EXPECT_LT((table("timeseries.csv").cast<double>() - courses).cwiseAbs().maxCoeff(),
              1e-5 * scale);
    // Two volumes in single precision at a mean far above their difference leave few digits.
    const double tolerance = GetParam().volumes > 9 ? 2e-5 : 1e-3;
    expectAbsoluteCorrelations(table("connectivity.csv"), courses, 0, GetParam().volumes,
                               tolerance);
}

INSTANTIATE_TEST_SUITE_P(
    Recordings, AnyRun,
    testing::Values(Recording{"Crop", "nitime/fmri1.nii.gz", 40, {}},
                    Recording{"SecondCrop", "nitime/fmri2.nii.gz", 40, {}},
                    Recording{"Nifti2", "nibabel/example_nifti2.nii.gz", 2, {}},
                    Recording{"ScaledIntegers", "nibabel/functional.nii", 20, {}},
                    Recording{"Milliseconds", "nibabel/example4d.nii.gz", 2, {}}),
    [](const auto &c) { return std::string(c.param.name); });

} // namespace

} // namespace corvane
