// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/image_reader.h"
#include "host/import/resample_anatomy.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/notes.h"
#include "tests/host/support/recordings.h"

#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

const QString path = QStringLiteral("anatomy.nii");

/// An image that grows evenly along each axis of the world.
double evenValue(const Eigen::Vector3d &world)
{
    return 110 + 0.5 * world[0] - 0.25 * world[1] + 0.75 * world[2];
}

Image3d<float> evenImage(const Eigen::Affine3d &toWorld, const GridSize &size, bool whole)
{
    Image3d<float> image;
    image.size = size;
    image.toWorld = toWorld;
    for (int k = 0; k < size[2]; ++k)
        for (int j = 0; j < size[1]; ++j)
            for (int i = 0; i < size[0]; ++i) {
                const double value = evenValue(toWorld * Eigen::Vector3d(i, j, k));
                image.voxels.push_back(static_cast<float>(whole ? std::round(value) : value));
            }
    return image;
}

/// A map of places, without the cost of a library in loops over all voxels of a cube.
class Places
{
public:
    explicit Places(const Eigen::Affine3d &map)
    {
        for (int axis = 0; axis < 3; ++axis)
            for (int column = 0; column < 4; ++column)
                m_rows[axis][column] = map(axis, column);
    }

    double operator()(int axis, int i, int j, int k) const
    {
        const double *const row = m_rows[axis];
        return row[0] * i + row[1] * j + row[2] * k + row[3];
    }

private:
    double m_rows[3][4];
};

int voxelOf(const Vmr &vmr, int i, int j, int k)
{
    const int index = i + 256 * (j + 256 * k);
    return vmr.type == Vmr::UChar ? static_cast<const quint8 *>(vmr.voxels.get())[index]
                                  : static_cast<const quint16 *>(vmr.voxels.get())[index];
}

Eigen::Affine3d spaceOf(const Vmr &vmr)
{
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
    for (int axis = 0; axis < 3; ++axis)
        for (int row = 0; row < 3; ++row) {
            const auto a = static_cast<std::size_t>(axis);
            const auto r = static_cast<std::size_t>(row);
            toWorld(row, axis) = vmr.space->directions[a][r];
            toWorld(row, 3) = vmr.space->origin[r];
        }
    return toWorld;
}

Eigen::Affine3d spaced(const Eigen::Vector3d &step, const Eigen::Vector3d &origin)
{
    return Eigen::Translation3d(origin) * Eigen::Scaling(step);
}

Eigen::Matrix3d turn(double angle)
{
    return Eigen::AngleAxisd(angle, Eigen::Vector3d(3, 1, 2).normalized()).toRotationMatrix();
}

// ---- where the cube lies

TEST(Cube, HasItsAxesBackDownAndLeftWithTheOriginAt128)
{
    const Eigen::Affine3d cube = layCube(spaced({1, 1, 1}, {-90, -126, -72}), {181, 217, 181});
    Eigen::Matrix4d expected;
    expected << 0, 0, -1, 128, -1, 0, 0, 128, 0, -1, 0, 128, 0, 0, 0, 1;
    EXPECT_TRUE(cube.matrix().isApprox(expected, 1e-12)) << cube.matrix();
    // So a place 10 mm to the right, 20 to the front and 30 up is voxel 128 less each.
    const Eigen::Vector3d voxel = cube.inverse() * Eigen::Vector3d(10, 20, 30);
    EXPECT_TRUE(voxel.isApprox(Eigen::Vector3d(108, 98, 118), 1e-12)) << voxel;
}

TEST(Cube, HasVoxelCentresOnThoseOfTheImage)
{
    for (const double offset : {0.0, 0.3, 0.5, 0.77}) {
        const Eigen::Affine3d image =
            spaced({-1, 1, 1}, {90 + offset, -126 + offset, -72 - offset});
        const Eigen::Vector3d voxel =
            layCube(image, {181, 217, 181}).inverse() * image * Eigen::Vector3d(5, 6, 7);
        EXPECT_NEAR((voxel - voxel.array().round().matrix()).norm(), 0, 1e-9) << offset;
    }
}

TEST(Cube, IsCentredOnAxesWhereTheOriginLeavesTheImageOutside)
{
    // 256 mm along the third axis, whose origin is at one end.
    const Eigen::Affine3d image = spaced({1, 1, 1}, {-90, -126, 0});
    const GridSize size{181, 217, 256};
    const Eigen::Affine3d imageToCube = layCube(image, size).inverse() * image;
    const Eigen::Vector3d first = imageToCube * Eigen::Vector3d(0, 0, 0);
    const Eigen::Vector3d last = imageToCube * Eigen::Vector3d(180, 216, 255);
    EXPECT_TRUE(first.isApprox(Eigen::Vector3d(254, 255, 218), 1e-9)) << first;
    EXPECT_NEAR(last[1], 0, 1e-9);
}

TEST(Cube, TurnsWithTheImageButNotItsOrderOfAxes)
{
    const Eigen::Matrix3d linear = turn(0.2) * Eigen::Vector3d(0.9, -1.1, 1).asDiagonal();
    Eigen::Affine3d image = Eigen::Affine3d::Identity();
    image.linear() << linear.col(2), linear.col(0), linear.col(1);
    image.translation() = Eigen::Vector3d(-80, 100, -60);
    const Eigen::Affine3d cube = layCube(image, {100, 110, 120});
    EXPECT_TRUE((cube.linear().transpose() * cube.linear()).isIdentity(1e-9));
    // Back, down and left as near as it goes.
    EXPECT_LT(cube.linear()(1, 0), -0.9);
    EXPECT_LT(cube.linear()(2, 1), -0.9);
    EXPECT_LT(cube.linear()(0, 2), -0.9);
    // And along the image's axes.
    const Eigen::Matrix3d between = cube.linear().transpose() * turn(0.2);
    EXPECT_NEAR(between.cwiseAbs().maxCoeff(), 1, 1e-9);
}

// ---- images that are copied

TEST(Anatomy, CopiesAnImageOfOneMillimetre)
{
    for (const double angle : {0.0, 0.25}) {
        Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
        toWorld.linear() = turn(angle) * Eigen::Vector3d(-1, 1, 1).asDiagonal();
        toWorld.translation() = Eigen::Vector3d(30.4, -40.2, -20.7);
        const Image3d<float> image = evenImage(toWorld, {60, 70, 50}, true);
        QStringList notes;
        const Anatomy anatomy = resampleAnatomy(image, path, notes);
        EXPECT_TRUE(anatomy.copied);
        EXPECT_EQ(anatomy.vmr.type, Vmr::UChar);
        EXPECT_TRUE(notes.isEmpty());
        EXPECT_TRUE(spaceOf(anatomy.vmr).isApprox(anatomy.toWorld));
        EXPECT_NEAR(anatomy.field.volume(), 60 * 70 * 50, angle == 0 ? 1e-3 : 1);
        const Places place(anatomy.toWorld.inverse() * toWorld);
        qint64 sum = 0;
        for (int k = 0; k < 50; ++k)
            for (int j = 0; j < 70; ++j)
                for (int i = 0; i < 60; ++i) {
                    const auto nearest = [&](int axis) {
                        return int(std::lround(place(axis, i, j, k)));
                    };
                    const float value = image.at(i, j, k);
                    ASSERT_EQ(voxelOf(anatomy.vmr, nearest(0), nearest(1), nearest(2)), value);
                    sum += std::lround(value);
                }
        // And nothing else is in the cube.
        qint64 inCube = 0;
        for (int n = 0; n < Vmr::voxelCount; ++n)
            inCube += static_cast<const quint8 *>(anatomy.vmr.voxels.get())[n];
        EXPECT_EQ(inCube, sum);
    }
}

TEST(Anatomy, CutsWithAWord)
{
    const Image3d<float> image =
        evenImage(spaced({1, 1, 1}, {-5, -5, -129.5}), {10, 10, 260}, true);
    QStringList notes;
    const Anatomy anatomy = resampleAnatomy(image, path, notes);
    EXPECT_TRUE(anatomy.copied);
    EXPECT_EQ(joined(notes),
              joined(QStringList{QStringLiteral("anatomy.nii: 400 of 26000 voxels lie outside the "
                                                "cube of 256 mm and are cut off")}));
}

// ---- images that are interpolated

TEST(Anatomy, InterpolatesOtherVoxelSizes)
{
    struct Case {
        Eigen::Vector3d step;
        double angle;
    };
    for (const Case &grid : {Case{{2, 2, 2}, 0}, Case{{0.8, 0.8, 0.8}, 0}, Case{{1.2, 0.9, 3}, 0.3},
                             Case{{-1, 1, 1.5}, 0.1}}) {
        Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
        toWorld.linear() = turn(grid.angle) * grid.step.asDiagonal();
        toWorld.translation() = Eigen::Vector3d(-20, -30, -25);
        const GridSize size{40, 40, 30};
        const Image3d<float> image = evenImage(toWorld, size, true);
        QStringList notes;
        const Anatomy anatomy = resampleAnatomy(image, path, notes);
        EXPECT_FALSE(anatomy.copied);
        EXPECT_TRUE(notes.isEmpty());
        const Places voxel(toWorld.inverse() * anatomy.toWorld);
        int checked = 0;
        int notBlack = 0;
        for (int k = 0; k < 256; k += 3)
            for (int j = 0; j < 256; j += 2)
                for (int i = 0; i < 256; ++i) {
                    bool within = true;
                    bool near = true;
                    for (int axis = 0; axis < 3; ++axis) {
                        const double at = voxel(axis, i, j, k);
                        const auto last =
                            static_cast<double>(size[static_cast<std::size_t>(axis)] - 1);
                        within = within && at >= 0 && at <= last;
                        near = near && at >= -0.501 && at <= last + 0.501;
                    }
                    if (within) {
                        // The image was rounded before, and the result is rounded again.
                        ASSERT_NEAR(voxelOf(anatomy.vmr, i, j, k),
                                    evenValue(anatomy.toWorld * Eigen::Vector3d(i, j, k)), 1.01);
                        ++checked;
                    } else if (!near) {
                        notBlack += voxelOf(anatomy.vmr, i, j, k) == 0 ? 0 : 1;
                    }
                }
        EXPECT_EQ(notBlack, 0);
        EXPECT_GT(checked, 1000);
    }
}

/// Below zero everywhere: what is not of the image must not come out as 0, which would be bright.
TEST(Anatomy, IsDarkestOutsideTheImageAlsoBelowZeroAndAtItsBorder)
{
    Eigen::Matrix3d shear = Eigen::Matrix3d::Identity();
    shear(0, 1) = 0.3;
    for (const Eigen::Matrix3d &linear :
         {Eigen::Matrix3d(Eigen::Vector3d(2, 2, 2).asDiagonal()),
          Eigen::Matrix3d(turn(0.3) * Eigen::Vector3d(1.5, 1.5, 2).asDiagonal()),
          Eigen::Matrix3d(shear * Eigen::Vector3d(1.5, 1.5, 2).asDiagonal())}) {
        Image3d<float> image;
        image.size = {30, 32, 28};
        image.toWorld.linear() = linear;
        image.toWorld.translation() = Eigen::Vector3d(-25, -30, -20);
        image.voxels.assign(static_cast<std::size_t>(image.voxelCount()), -500);
        image.voxels[static_cast<std::size_t>(15 + 30 * (16 + 32 * 14))] = -1000;
        image.voxels[static_cast<std::size_t>(16 + 30 * (16 + 32 * 14))] = -100;
        const int grey = 36408; // what -500 comes to
        QStringList notes;
        const Anatomy anatomy = resampleAnatomy(image, path, notes);
        ASSERT_FALSE(anatomy.copied);
        const Places place(image.toWorld.inverse() * anatomy.toWorld);
        const double middle[] = {14.5, 15.5, 13.5}; // of the image
        const int odd[] = {15, 16, 14};             // what is not grey
        qint64 outside = 0;
        qint64 inside = 0;
        for (int k = 0; k < 256; ++k)
            for (int j = 0; j < 256; ++j)
                for (int i = 0; i < 256; ++i) {
                    // How far beyond the outer faces of the image's voxels, and from the odd ones.
                    double beyond = -1000;
                    double fromOdd = 0;
                    for (int axis = 0; axis < 3; ++axis) {
                        const double at = place(axis, i, j, k);
                        const double half = middle[axis] + 0.5;
                        beyond = std::max(beyond, std::abs(at - middle[axis]) - half);
                        fromOdd = std::max(fromOdd, std::abs(at - odd[axis]));
                    }
                    const int value = voxelOf(anatomy.vmr, i, j, k);
                    if (beyond > 1e-3) {
                        outside += value == 0 ? 0 : 1;
                    } else if (std::abs(beyond) <= 1e-3) {
                        // On the face it is one of the two.
                        outside += value == 0 || value == grey ? 0 : 1;
                    } else if (fromOdd > 2) {
                        inside += value == grey ? 0 : 1;
                    }
                }
        EXPECT_EQ(outside, 0);
        EXPECT_EQ(inside, 0);
    }
}

TEST(Anatomy, ReachesTheEdgesOfTheCube)
{
    // 128 voxels of 2 mm, from edge to edge.
    Image3d<float> image;
    image.size = {128, 128, 128};
    image.toWorld = spaced({2, 2, 2}, {-127, -127, -127});
    image.voxels.assign(128 * 128 * 128, 50);
    QStringList notes;
    const Anatomy anatomy = resampleAnatomy(image, path, notes);
    EXPECT_TRUE(notes.isEmpty()) << notes.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(voxelOf(anatomy.vmr, 128, 128, 128), 50);
    EXPECT_EQ(voxelOf(anatomy.vmr, 1, 1, 1), 50);
    EXPECT_EQ(voxelOf(anatomy.vmr, 254, 254, 254), 50);
}

// ---- brightness

struct Brightness {
    const char *name;
    std::vector<float> values;
    Vmr::SampleType type;
    std::vector<int> kept;
    QString note;
};

TEST(Anatomy, KeepsWholeNumbersAndScalesOthers)
{
    const float inf = std::numeric_limits<float>::infinity();
    for (const Brightness &image :
         {Brightness{"bytes", {0, 255, 3, 7}, Vmr::UChar, {0, 255, 3, 7}, {}},
          Brightness{"words", {0, 256, 65535, 7}, Vmr::UShort, {0, 256, 65535, 7}, {}},
          Brightness{"zero", {0, 0, 0, 0}, Vmr::UChar, {0, 0, 0, 0}, {}},
          Brightness{
              "negative",
              {-100, 0, 100, 50},
              Vmr::UShort,
              {0, 32767, 65535, 49151},
              QStringLiteral("anatomy.nii: values from -100 to 100 are scaled to 0 to 65535")},
          Brightness{"fractions",
                     {0, 0.5, 1, 0.25},
                     Vmr::UShort,
                     {0, 32768, 65535, 16384},
                     QStringLiteral("anatomy.nii: values from 0 to 1 are scaled to 0 to 65535")},
          Brightness{"broken",
                     {std::nanf(""), 10, inf, -inf},
                     Vmr::UChar,
                     {0, 10, 255, 0},
                     QStringLiteral("anatomy.nii: 3 voxels hold no finite number: they get the "
                                    "darkest or the brightest value")},
          Brightness{"nothing",
                     {std::nanf(""), std::nanf(""), std::nanf(""), std::nanf("")},
                     Vmr::UChar,
                     {0, 0, 0, 0},
                     QStringLiteral("anatomy.nii: 4 voxels hold no finite number: they get the "
                                    "darkest or the brightest value")}}) {
        Image3d<float> volume;
        volume.size = {4, 1, 1};
        volume.toWorld = spaced({1, 1, 1}, {0, 0, 0});
        volume.voxels = image.values;
        QStringList notes;
        const Anatomy anatomy = resampleAnatomy(volume, path, notes);
        EXPECT_EQ(anatomy.vmr.type, image.type) << image.name;
        // The first axis runs to the right, against the cube's third.
        for (int n = 0; n < 4; ++n)
            EXPECT_EQ(voxelOf(anatomy.vmr, 128, 128, 128 - n), image.kept[std::size_t(n)])
                << image.name << ' ' << n;
        EXPECT_EQ(joined(notes), image.note.toStdString()) << image.name;
    }
}

// ---- files

NiftiParts smallAnatomy()
{
    NiftiParts parts;
    parts.setSize({3, 2, 2});
    setSamples(parts, std::vector<quint8>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    parts.sform = {{{1, 0, 0, 10}, {0, 1, 0, 20}, {0, 0, 1, 30}}};
    return parts;
}

QByteArray nrrdBytes(const QByteArray &encoding, const QByteArray &space, const QByteArray &data)
{
    return "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 3 2 2\n" + space + "encoding: " + encoding +
           "\n\n" + data;
}

TEST(ImageReader, ReadsTheSameImageFromEveryFormat)
{
    const NiftiParts parts = smallAnatomy();
    NiftiParts second = parts;
    second.version = 2;
    const QByteArray &data = parts.data;
    const QByteArray ras = "space: right-anterior-superior\n"
                           "space directions: (1,0,0) (0,1,0) (0,0,1)\n"
                           "space origin: (10,20,30)\n";
    const QByteArray lps = "space: left-posterior-superior\n"
                           "space directions: (-1,0,0) (0,-1,0) (0,0,1)\n"
                           "space origin: (-10,-20,30)\n";
    struct File {
        const char *name;
        QByteArray bytes;
    };
    for (const File &file :
         {File{"a.nii", niftiBytes(parts)}, File{"b.nii.gz", gzipped(niftiBytes(parts))},
          File{"c.nii", niftiBytes(second)}, File{"d.nii.gz", gzipped(niftiBytes(second))},
          File{"e.nrrd", nrrdBytes("raw", ras, data)}, File{"f.nrrd", nrrdBytes("raw", lps, data)},
          File{"g.nrrd", nrrdBytes("gzip", ras, gzipped(data))},
          File{"h.nrrd.gz", gzipped(nrrdBytes("raw", ras, data))},
          File{"i.vmr", nrrdBytes("raw", ras, data)},
          File{"j.nrrd", nrrdBytes("ascii", ras, "1 2 3 4 5 6 7 8 9 10 11 12\n")}}) {
        const TemporaryFolder folder;
        putBytes(folder.path(file.name), file.bytes);
        QStringList notes;
        const Image3d<float> image = readImage(folder.path(file.name), notes);
        EXPECT_EQ(image.size, (GridSize{3, 2, 2})) << file.name;
        EXPECT_TRUE(image.toWorld.isApprox(spaced({1, 1, 1}, {10, 20, 30}))) << file.name;
        EXPECT_EQ(image.voxels, (std::vector<float>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}))
            << file.name;
        EXPECT_TRUE(notes.isEmpty()) << file.name;
        const Image3d<qint32> labels = readLabels(folder.path(file.name), notes);
        EXPECT_EQ(labels.voxels, (std::vector<qint32>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}))
            << file.name;
    }
}

TEST(ImageReader, SaysWhenAnOrientationIsMissing)
{
    const TemporaryFolder folder;
    putBytes(folder.path("a.nrrd"), nrrdBytes("raw", "spacings: 1 2 3\n", smallAnatomy().data));
    QStringList notes;
    const Image3d<float> image = readImage(folder.path("a.nrrd"), notes);
    EXPECT_EQ(
        joined(notes),
        joined(QStringList{folder.path("a.nrrd") +
                           QStringLiteral(": the header tells no orientation: its axes are "
                                          "taken to run to the right, to the front and up")}));
    EXPECT_TRUE(
        image.toWorld.linear().isApprox(Eigen::Matrix3d(Eigen::Vector3d(1, 2, 3).asDiagonal())));
}

TEST(ImageReader, KeepsLabelsOf32Bits)
{
    NiftiParts parts = smallAnatomy();
    parts.setSize({2, 1, 1});
    setSamples(parts, std::vector<qint32>{2147483647, -2147483647 - 1});
    const TemporaryFolder folder;
    putBytes(folder.path("a.nii"), niftiBytes(parts));
    QStringList notes;
    EXPECT_EQ(readLabels(folder.path("a.nii"), notes).voxels,
              (std::vector<qint32>{2147483647, -2147483647 - 1}));
}

TEST(ImageReader, RefusesWhatIsNoLabel)
{
    const TemporaryFolder folder;
    const QString file = folder.path("a.nii");
    QStringList notes;
    for (const auto &[value, text] :
         std::vector<std::pair<float, std::string>>{{1.5f, "1.5"},
                                                    {1.001953125f, "1.001953125"},
                                                    {-3.0019531f, "-3.001953125"},
                                                    {INFINITY, "inf"},
                                                    {3e9f, "3e+09"}}) {
        NiftiParts parts = smallAnatomy();
        setSamples(parts, std::vector<float>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, value, 11});
        putBytes(file, niftiBytes(parts));
        EXPECT_EQ(errorOf([&] { readLabels(file, notes); }),
                  file.toStdString() + ": voxel (1, 1, 1): found label " + text +
                      ", expected a whole number of 32 bits");
    }
}

TEST(ImageReader, TakesLabelsThatAreWholeToAThousandth)
{
    const TemporaryFolder folder;
    const QString file = folder.path("a.nii");
    QStringList notes;
    // Bytes scaled by 1/255, as some programs write their labels: 1 is 1.0000000591.
    NiftiParts parts = smallAnatomy();
    parts.setSize({4, 1, 1});
    parts.slope = 1.0 / 255;
    setSamples(parts, std::vector<quint8>{0, 255, 0, 255});
    putBytes(file, niftiBytes(parts));
    EXPECT_EQ(readLabels(file, notes).voxels, (std::vector<qint32>{0, 1, 0, 1}));
    parts.slope = 0;
    setSamples(parts, std::vector<float>{2.0009f, 1.9991f, -3.0005f, 2147483520.0f});
    putBytes(file, niftiBytes(parts));
    EXPECT_EQ(readLabels(file, notes).voxels, (std::vector<qint32>{2, 2, -3, 2147483520}));
    EXPECT_EQ(joined(notes), "");
}

TEST(ImageReader, TakesNotANumberForBackgroundAndSaysSoOnce)
{
    const TemporaryFolder folder;
    const QString file = folder.path("a.nii");
    NiftiParts parts = smallAnatomy();
    parts.setSize({4, 1, 1});
    setSamples(parts, std::vector<float>{std::nanf(""), 7, std::nanf(""), std::nanf("")});
    putBytes(file, niftiBytes(parts));
    QStringList notes;
    EXPECT_EQ(readLabels(file, notes).voxels, (std::vector<qint32>{0, 7, 0, 0}));
    EXPECT_EQ(joined(notes),
              file.toStdString() + ": 3 voxels without a number taken for background");
}

class BadImage : public testing::TestWithParam<BadFile>
{
};

TEST_P(BadImage, IsRefusedInOneLine)
{
    const TemporaryFolder folder;
    const QString file =
        folder.path(QString::fromLatin1(GetParam().name) + QStringLiteral(".nrrd"));
    putBytes(file, GetParam().bytes);
    QStringList notes;
    const std::string error = errorOf([&] { readImage(file, notes); });
    EXPECT_EQ(error.find('\n'), std::string::npos);
    EXPECT_EQ(error.rfind(file.toStdString() + ": " + GetParam().says, 0), 0U) << error;
}

INSTANTIATE_TEST_SUITE_P(
    Files, BadImage,
    testing::Values(
        BadFile{"Empty", "", "header: found an empty file"},
        BadFile{"FourAxes",
                [] {
                    NiftiParts parts = smallAnatomy();
                    parts.setSize({3, 2, 1, 2});
                    return niftiBytes(parts);
                }(),
                "header: found 4 dimensions, expected 3, one volume"},
        BadFile{"NrrdOfFourAxes",
                QByteArray("NRRD0004\ntype: uchar\ndimension: 4\nsizes: 3 2 1 2\nencoding: "
                           "raw\n\nabcdefghijkl"),
                "header: found 4 dimensions, expected 3, one volume"},
        BadFile{"NrrdOfTwoAxes",
                QByteArray("NRRD0004\ntype: uchar\ndimension: 2\nsizes: 3 2\nencoding: "
                           "raw\n\nabcdef"),
                "header: found 2 dimensions, expected 3, one volume"},
        BadFile{"NrrdCutShort", nrrdBytes("raw", "spacings: 1 1 1\n", "abc"),
                "reading NRRD: found "},
        BadFile{"NrrdHeaderAlone", "NRRD0004\n", "reading NRRD: found "},
        BadFile{"NrrdOfColours",
                QByteArray("NRRD0004\ntype: uchar\ndimension: 4\nsizes: 3 2 1 1\nkinds: RGB-color "
                           "space space space\nencoding: raw\n\nabcdef"),
                "header: found 3 values per voxel, expected 1"},
        BadFile{"NrrdNotANumber",
                nrrdBytes("raw",
                          "space: right-anterior-superior\nspace directions: (1,0,0) (0,nan,0) "
                          "(0,0,1)\nspace origin: (0,0,0)\n",
                          "abcdefghijkl"),
                ""}),
    nameOf);

TEST(OpenAnatomy, BringsAnyImageOntoTheCube)
{
    const TemporaryFolder folder;
    putBytes(folder.path("a.nii.gz"), gzipped(niftiBytes(smallAnatomy())));
    QStringList notes;
    const Anatomy anatomy = openAnatomy(folder.path("a.nii.gz"), notes);
    EXPECT_EQ(voxelOf(anatomy.vmr, 108, 98, 118), 1);
    EXPECT_EQ(voxelOf(anatomy.vmr, 107, 97, 116), 12);
    writeVmr(folder.path("a.vmr"), anatomy.vmr);
    EXPECT_TRUE(spaceOf(readVmr(folder.path("a.vmr"))).isApprox(anatomy.toWorld));
}

TEST(OpenAnatomy, ReadsRecordings)
{
    const QString file = recording("haxby2001/mask_25mm_brain.nii.gz");
    if (!QFile::exists(file))
        GTEST_SKIP() << "no recordings in " << referenceFolder();
    const ReferenceImage reference = readReference(file);
    QStringList notes;
    const Image3d<float> image = readImage(file, notes);
    EXPECT_EQ(image.size, (GridSize{6, 10, 10}));
    EXPECT_TRUE(image.toWorld.isApprox(reference.toWorld, 1e-6));
    ASSERT_EQ(image.voxels.size(), reference.values.size());
    for (std::size_t n = 0; n < reference.values.size(); ++n)
        EXPECT_EQ(image.voxels[n], reference.values[n]);
    const Anatomy anatomy = resampleAnatomy(image, file, notes);
    EXPECT_FALSE(anatomy.copied);
    // At the centre of each voxel stands its value.
    for (int k = 0; k < 10; ++k)
        for (int j = 0; j < 10; ++j)
            for (int i = 0; i < 6; ++i) {
                const Eigen::Vector3d voxel =
                    anatomy.toWorld.inverse() * image.toWorld * Eigen::Vector3d(i, j, k);
                EXPECT_EQ(voxelOf(anatomy.vmr, int(std::lround(voxel[0])),
                                  int(std::lround(voxel[1])), int(std::lround(voxel[2]))),
                          reference.at(i, j, k));
            }
}

} // namespace

} // namespace corvane
