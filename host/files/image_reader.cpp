// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/image_reader.h"

#include "dataset/counted.h"
#include "host/files/input_error.h"
#include "host/files/narrow_path.h"
#include "host/files/nifti_stream.h"
#include "host/files/output_file.h"
#include "host/files/sample_conversion.h"
#include "host/files/scratch_folder.h"
#include "host/files/text_check.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <itkImageFileReader.h>
#include <itkNrrdImageIO.h>
#include <limits>

namespace corvane
{

namespace
{

[[noreturn]] void failOnAxes(const QString &path, int dimensions)
{
    throw InputError(path, QStringLiteral("header"),
                     QStringLiteral("%1 dimensions").arg(dimensions),
                     QStringLiteral("3, one volume"));
}

void convert(const NiftiHeader &header, const void *samples, qint64 count, float *values)
{
    toFloat(header, samples, count, values);
}

void convert(const NiftiHeader &header, const void *samples, qint64 count, double *values)
{
    toDouble(header, samples, count, values);
}

template <typename Value>
Image3d<Value> readNifti(const QString &path, QStringList &notes)
{
    NiftiStream stream(path);
    const NiftiHeader &header = stream.header();
    if (header.dimensions > 3)
        failOnAxes(path, header.dimensions);
    Image3d<Value> image;
    image.size = {header.dim[0], header.dim[1], header.dim[2]};
    image.toWorld = header.toWorld;
    image.voxels.resize(static_cast<std::size_t>(image.voxelCount()));

    // In pieces, so that the stored samples need no second image's worth of memory.
    const qint64 piece = 1 << 16;
    std::vector<char> samples(static_cast<std::size_t>(piece * header.sampleSize));
    for (qint64 done = 0; done < image.voxelCount(); done += piece) {
        const qint64 count = std::min(piece, image.voxelCount() - done);
        stream.read(samples.data(), count);
        convert(header, samples.data(), count, image.voxels.data() + done);
    }
    notes += orientationNotes(header, path);
    stream.finish(notes);
    return image;
}

bool startsWithNrrd(ByteSource &source)
{
    char magic[4] = {};
    return source.read(magic, 4) == 4 && std::equal(magic, magic + 4, "NRRD");
}

/// A text that ITK made, in one line.
QString firstLine(const itk::ExceptionObject &error)
{
    return printable(QString::fromUtf8(error.GetDescription()).simplified(), 160);
}

/// ITK's world axes run to the left, to the back and up.
template <typename ItkImage>
Eigen::Affine3d toWorld(const ItkImage &image)
{
    Eigen::Affine3d affine = Eigen::Affine3d::Identity();
    for (unsigned row = 0; row < 3; ++row) {
        const double sign = row < 2 ? -1 : 1;
        for (unsigned column = 0; column < 3; ++column)
            affine(row, column) =
                sign * image.GetDirection()(row, column) * image.GetSpacing()[column];
        affine(row, 3) = sign * image.GetOrigin()[row];
    }
    return affine;
}

template <typename Value>
Image3d<Value> readNrrdFile(const QString &file, const QString &path, QStringList &notes)
{
    using ItkImage = itk::Image<Value, 3>;
    itk::Object::SetGlobalWarningDisplay(false);
    const std::string name = narrowPath(file);
    if (name.empty())
        throw InputError(path, QStringLiteral("opening"),
                         QStringLiteral("a path that only newer versions of Windows can open here"),
                         QStringLiteral("a shorter path, of plain letters"));
    try {
        const auto io = itk::NrrdImageIO::New();
        io->SetFileName(name);
        io->ReadImageInformation();
        if (io->GetNumberOfDimensions() != 3)
            failOnAxes(path, static_cast<int>(io->GetNumberOfDimensions()));
        if (io->GetNumberOfComponents() != 1)
            throw InputError(path, QStringLiteral("header"),
                             QStringLiteral("%1 values per voxel").arg(io->GetNumberOfComponents()),
                             QStringLiteral("1"));

        const auto reader = itk::ImageFileReader<ItkImage>::New();
        reader->SetImageIO(io);
        reader->SetFileName(name);
        reader->Update();
        const ItkImage &read = *reader->GetOutput();
        const auto size = read.GetLargestPossibleRegion().GetSize();

        Image3d<Value> image;
        image.size = {qint64(size[0]), qint64(size[1]), qint64(size[2])};
        image.toWorld = toWorld(read);
        image.voxels.assign(read.GetBufferPointer(), read.GetBufferPointer() + image.voxelCount());
        if (!io->GetMetaDataDictionary().HasKey("NRRD_space")) {
            // Without a space nothing says where the axes run, as in a NIfTI file without a form.
            image.toWorld = Eigen::Scaling(-1.0, -1.0, 1.0) * image.toWorld;
            notes += QStringLiteral("%1: the header tells no orientation: its axes are taken to "
                                    "run to the right, to the front and up")
                         .arg(path);
        }
        if (!image.toWorld.matrix().allFinite())
            throw InputError(path, QStringLiteral("header, space directions"),
                             QStringLiteral("a value that is no finite number"),
                             QStringLiteral("finite numbers"));
        if (!(std::abs(image.toWorld.linear().determinant()) > 1e-12))
            throw InputError(path, QStringLiteral("header, space directions"),
                             QStringLiteral("voxels without a volume"),
                             QStringLiteral("three axes with a length"));
        return image;
    } catch (const itk::ExceptionObject &error) {
        throw InputError(path, QStringLiteral("reading NRRD"), firstLine(error),
                         QStringLiteral("a complete NRRD file"));
    }
}

void unpack(ByteSource &source, const QString &target)
{
    OutputFile file(target);
    std::vector<char> piece(1 << 18);
    for (;;) {
        const qint64 got = source.read(piece.data(), static_cast<qint64>(piece.size()));
        file.write(piece.data(), got);
        if (got < static_cast<qint64>(piece.size()))
            break;
    }
    file.commit();
}

template <typename Value>
Image3d<Value> readNrrd(const QString &path, QStringList &notes)
{
    // ITK goes by the name's ending and knows no NRRD that is packed as a whole. In a folder of
    // its own the unpacked file has no neighbour either.
    const bool packed = path.endsWith(QLatin1String(".gz"), Qt::CaseInsensitive);
    if (!packed && (path.endsWith(QLatin1String(".nrrd")) || path.endsWith(QLatin1String(".nhdr"))))
        return readNrrdFile<Value>(path, path, notes);
    const ScratchFolder folder;
    const QString unpacked = folder.filePath(QStringLiteral("image.nrrd"));
    unpack(*openBytes(path), unpacked);
    return readNrrdFile<Value>(unpacked, path, notes);
}

template <typename Value>
Image3d<Value> readAny(const QString &path, QStringList &notes)
{
    if (startsWithNrrd(*openBytes(path)))
        return readNrrd<Value>(path, notes);
    return readNifti<Value>(path, notes);
}

/// Distance from a whole number within which a value is that label: scaled samples are not exact.
constexpr double labelTolerance = 1e-3;

/// Not a number is the background.
qint32 checkedLabel(double value, const Image3d<double> &image, std::size_t index,
                    const QString &path)
{
    if (std::isnan(value))
        return 0;
    const double nearest = std::round(value);
    if (nearest >= std::numeric_limits<qint32>::min() &&
        nearest <= std::numeric_limits<qint32>::max() &&
        std::abs(value - nearest) <= labelTolerance)
        return static_cast<qint32>(nearest);
    const auto voxel = static_cast<qint64>(index);
    throw InputError(path,
                     QStringLiteral("voxel (%1, %2, %3)")
                         .arg(voxel % image.size[0])
                         .arg(voxel / image.size[0] % image.size[1])
                         .arg(voxel / image.size[0] / image.size[1]),
                     QStringLiteral("label ") + QString::fromLatin1(shortestDecimal(value)),
                     QStringLiteral("a whole number of 32 bits"));
}

} // namespace

Image3d<float> readImage(const QString &path, QStringList &notes)
{
    return readAny<float>(path, notes);
}

Image3d<qint32> readLabels(const QString &path, QStringList &notes)
{
    // Labels of 32 bits do not fit a float.
    const Image3d<double> values = readAny<double>(path, notes);
    Image3d<qint32> labels;
    labels.size = values.size;
    labels.toWorld = values.toWorld;
    labels.voxels.reserve(values.voxels.size());
    for (std::size_t i = 0; i < values.voxels.size(); ++i)
        labels.voxels.push_back(checkedLabel(values.voxels[i], values, i, path));
    const auto broken = std::count_if(values.voxels.begin(), values.voxels.end(),
                                      [](double value) { return std::isnan(value); });
    if (broken > 0)
        notes += QStringLiteral("%1: %2 without a number taken for background")
                     .arg(printable(path, 4096), counted(broken, "voxel"));
    return labels;
}

} // namespace corvane
