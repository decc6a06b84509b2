// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/resample_anatomy.h"

#include "host/files/image_reader.h"
#include "host/import/lattice.h"
#include "host/session/log.h"

#include <Eigen/SVD>
#include <cmath>
#include <itkImportImageFilter.h>
#include <itkLinearInterpolateImageFunction.h>
#include <itkResampleImageFilter.h>
#include <limits>

namespace corvane
{

namespace
{

using FloatImage = itk::Image<float, 3>;

/// Back, down and left: the directions of the cube's axes in the world.
Eigen::Matrix3d cubeAxes()
{
    return (Eigen::Matrix3d() << 0, 0, -1, -1, 0, 0, 0, -1, 0).finished();
}

/// The rotation, with or without a reflection, that is nearest to the image's axes.
Eigen::Matrix3d orthonormalAxes(const Eigen::Matrix3d &linear)
{
    const Eigen::JacobiSVD<Eigen::Matrix3d> svd(linear.colwise().normalized(),
                                                Eigen::ComputeFullU | Eigen::ComputeFullV);
    return svd.matrixU() * svd.matrixV().transpose();
}

/// The image's axes in the order and with the signs that come nearest to the cube's directions.
Eigen::Matrix3d orderedAxes(const Eigen::Matrix3d &axes)
{
    const int orders[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    const Eigen::Matrix3d along = cubeAxes().transpose() * axes;
    Eigen::Matrix3d best;
    double bestFit = -1;
    for (const auto &order : orders) {
        double fit = 0;
        for (int axis = 0; axis < 3; ++axis)
            fit += std::abs(along(axis, order[axis]));
        if (fit <= bestFit)
            continue;
        bestFit = fit;
        for (int axis = 0; axis < 3; ++axis)
            best.col(axis) = axes.col(order[axis]) * (along(axis, order[axis]) < 0 ? -1 : 1);
    }
    return best;
}

/// How stored values become the whole numbers of a VMR.
struct Intensities {
    Vmr::SampleType type = Vmr::UChar;
    float lowest = 0;
    float factor = 1;

    /// Not a number becomes 0: it is not above it.
    float scaled(float value) const
    {
        const float top = type == Vmr::UChar ? 255.0f : 65535.0f;
        return std::min(std::max(0.0f, (value - lowest) * factor + 0.5f), top);
    }
    quint8 toUChar(float value) const { return static_cast<quint8>(scaled(value)); }
    quint16 toUShort(float value) const { return static_cast<quint16>(scaled(value)); }
};

Intensities intensities(const Image3d<float> &image, const QString &path, QStringList &notes)
{
    float lowest = std::numeric_limits<float>::infinity();
    float highest = -lowest;
    bool whole = true;
    qint64 broken = 0;
    for (const float value : image.voxels) {
        if (!std::isfinite(value)) {
            ++broken;
            continue;
        }
        lowest = std::min(lowest, value);
        highest = std::max(highest, value);
        whole = whole && value == std::floor(value);
    }
    if (broken > 0)
        notes +=
            QStringLiteral(
                "%1: %2 voxels hold no finite number: they get the darkest or the brightest value")
                .arg(path)
                .arg(broken);
    Intensities result;
    if (!(highest >= lowest) || (whole && lowest >= 0 && highest <= 255))
        return result;
    result.type = Vmr::UShort;
    if (whole && lowest >= 0 && highest <= 65535)
        return result;
    result.lowest = lowest;
    result.factor = highest > lowest ? 65535 / (highest - lowest) : 0;
    notes += QStringLiteral("%1: values from %2 to %3 are scaled to 0 to 65535")
                 .arg(path)
                 .arg(double(lowest))
                 .arg(double(highest));
    return result;
}

/// The sample array of a VMR to be filled. The voxels are zero.
template <typename Sample>
std::shared_ptr<Sample> emptyCube()
{
    return std::shared_ptr<Sample>(new Sample[Vmr::voxelCount](), std::default_delete<Sample[]>());
}

constexpr std::array<qint64, 3> cubeStride{1, cubeSize, qint64(cubeSize) * cubeSize};

qint64 cubeIndex(int i, int j, int k)
{
    return i + cubeStride[1] * j + cubeStride[2] * k;
}

/// The image as ITK sees it, in a space whose coordinates are voxels of the cube. It borrows the
/// voxels.
FloatImage::Pointer itkImage(const Image3d<float> &image, const Eigen::Affine3d &imageToCube)
{
    const auto import = itk::ImportImageFilter<float, 3>::New();
    FloatImage::SizeType size;
    FloatImage::SpacingType spacing;
    FloatImage::DirectionType direction;
    FloatImage::PointType origin;
    for (unsigned axis = 0; axis < 3; ++axis) {
        const Eigen::Vector3d step = imageToCube.linear().col(axis);
        size[axis] = static_cast<itk::SizeValueType>(image.size[axis]);
        spacing[axis] = step.norm();
        for (unsigned row = 0; row < 3; ++row)
            direction(row, axis) = step[row] / step.norm();
        origin[axis] = imageToCube(axis, 3);
    }
    import->SetRegion(FloatImage::RegionType(size));
    import->SetSpacing(spacing);
    import->SetDirection(direction);
    import->SetOrigin(origin);
    import->SetImportPointer(const_cast<float *>(image.voxels.data()),
                             static_cast<itk::SizeValueType>(image.voxelCount()), false);
    import->Update();
    const FloatImage::Pointer result = import->GetOutput();
    result->DisconnectPipeline();
    return result;
}

/// Whole voxels of the cube on one axis that lie in the field.
struct Range {
    int first;
    int end;
};

Range voxelsInside(const Eigen::AlignedBox3d &field, int axis)
{
    const double first = std::max(0.0, std::ceil(field.min()[axis]));
    const double end = std::min(double(cubeSize), std::floor(field.max()[axis]) + 1);
    return {static_cast<int>(std::min(first, double(cubeSize))),
            static_cast<int>(std::max(end, std::min(first, double(cubeSize))))};
}

/// Interpolates the part of the cube that the field covers, a few planes at a time, so that the
/// interpolated values are never all in memory. Where the field is not the image, since that lies
/// askew in it or ends on a voxel, the value is `outside`.
template <typename Sample, typename Convert>
void interpolate(const FloatImage *image, const Eigen::AlignedBox3d &field, float outside,
                 Sample *cube, Convert convert)
{
    const Range x = voxelsInside(field, 0);
    const Range y = voxelsInside(field, 1);
    const Range z = voxelsInside(field, 2);
    if (x.end == x.first || y.end == y.first)
        return;
    const auto filter = itk::ResampleImageFilter<FloatImage, FloatImage>::New();
    filter->SetInput(image);
    filter->SetDefaultPixelValue(outside);
    filter->SetInterpolator(itk::LinearInterpolateImageFunction<FloatImage>::New());
    const int planes = 16;
    for (int k = z.first; k < z.end; k += planes) {
        const int depth = std::min(planes, z.end - k);
        FloatImage::SizeType size;
        size[0] = static_cast<itk::SizeValueType>(x.end - x.first);
        size[1] = static_cast<itk::SizeValueType>(y.end - y.first);
        size[2] = static_cast<itk::SizeValueType>(depth);
        FloatImage::PointType origin;
        origin[0] = x.first;
        origin[1] = y.first;
        origin[2] = k;
        filter->SetSize(size);
        filter->SetOutputOrigin(origin);
        filter->UpdateLargestPossibleRegion();
        const float *value = filter->GetOutput()->GetBufferPointer();
        for (int plane = 0; plane < depth; ++plane)
            for (int j = y.first; j < y.end; ++j)
                for (int i = x.first; i < x.end; ++i)
                    cube[cubeIndex(i, j, k + plane)] = convert(*value++);
    }
}

template <typename Sample, typename Convert>
std::shared_ptr<Sample> fillCube(const Image3d<float> &image, const Eigen::Affine3d &imageToCube,
                                 const std::optional<LatticeMap> &lattice,
                                 const Eigen::AlignedBox3d &field, float outside, Convert convert)
{
    std::shared_ptr<Sample> cube = emptyCube<Sample>();
    if (lattice) {
        const LatticeBox box = cutToCube(*lattice, image.size);
        if (!box.isEmpty())
            copyBox(box, image.voxels.data(),
                    cube.get() + cubeIndex(box.start[0], box.start[1], box.start[2]), cubeStride,
                    convert);
    } else {
        interpolate(itkImage(image, imageToCube).GetPointer(), field, outside, cube.get(), convert);
    }
    return cube;
}

VmrSpace vmrSpace(const Eigen::Affine3d &toWorld)
{
    VmrSpace space;
    // Adding zero turns -0 into 0.
    for (int axis = 0; axis < 3; ++axis)
        for (int row = 0; row < 3; ++row)
            space.directions[axis][row] = toWorld(row, axis) + 0.0;
    for (int row = 0; row < 3; ++row)
        space.origin[row] = toWorld(row, 3) + 0.0;
    return space;
}

} // namespace

Eigen::Affine3d layCube(const Eigen::Affine3d &imageToWorld, const GridSize &size)
{
    const Eigen::Matrix3d axes = orderedAxes(orthonormalAxes(imageToWorld.linear()));
    const Eigen::Affine3d alongAxes = Eigen::Affine3d(axes.transpose()) * imageToWorld;
    const Eigen::AlignedBox3d bounds = gridBounds(alongAxes, size, 0);
    const Eigen::Vector3d firstVoxel = alongAxes.translation();
    Eigen::Vector3d shift;
    for (int axis = 0; axis < 3; ++axis) {
        const auto shiftNear = [&](double wanted) {
            return std::round(firstVoxel[axis] + wanted) - firstVoxel[axis];
        };
        shift[axis] = shiftNear(cubeSize / 2);
        const double slack = 1e-3;
        if (bounds.min()[axis] + shift[axis] < -slack ||
            bounds.max()[axis] + shift[axis] > cubeSize - 1 + slack)
            shift[axis] = shiftNear((cubeSize - 1) / 2.0 - bounds.center()[axis]);
    }
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
    toWorld.linear() = axes;
    toWorld.translation() = -(axes * shift);
    return toWorld;
}

Anatomy resampleAnatomy(const Image3d<float> &image, const QString &path, QStringList &notes)
{
    Anatomy anatomy;
    anatomy.toWorld = layCube(image.toWorld, image.size);
    const Eigen::Affine3d imageToCube = anatomy.toWorld.inverse() * image.toWorld;
    anatomy.field = gridBounds(imageToCube, image.size, 0.5);
    const std::optional<LatticeMap> lattice = latticeMap(imageToCube, image.size, 1);
    anatomy.copied = lattice.has_value();

    const qint64 outside = voxelsOutsideCube(imageToCube, image.size);
    if (outside > 0)
        notes +=
            QStringLiteral("%1: %2 of %3 voxels lie outside the cube of 256 mm and are cut off")
                .arg(path)
                .arg(outside)
                .arg(image.voxelCount());

    const Intensities scale = intensities(image, path, notes);
    anatomy.vmr.type = scale.type;
    anatomy.vmr.space = vmrSpace(anatomy.toWorld);
    if (scale.type == Vmr::UChar)
        anatomy.vmr.voxels =
            fillCube<quint8>(image, imageToCube, lattice, anatomy.field, scale.lowest,
                             [&](float value) { return scale.toUChar(value); });
    else
        anatomy.vmr.voxels =
            fillCube<quint16>(image, imageToCube, lattice, anatomy.field, scale.lowest,
                              [&](float value) { return scale.toUShort(value); });
    return anatomy;
}

Anatomy openAnatomy(const QString &path, QStringList &notes)
{
    const Image3d<float> image = readImage(path, notes);
    return resampleAnatomy(image, path, notes);
}

Vmr openForeignAnatomy(const QString &path)
{
    QStringList notes;
    Vmr vmr = openAnatomy(path, notes).vmr;
    for (const QString &note : qAsConst(notes))
        logText(note);
    return vmr;
}

} // namespace corvane
