// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Geometry>
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <array>

namespace corvane
{

/// Kinds of samples that are read, with the numbers that NIfTI gives them.
enum class SampleKind {
    UInt8 = 2,
    Int16 = 4,
    Int32 = 8,
    Float32 = 16,
    Float64 = 64,
    Int8 = 256,
    UInt16 = 512,
    UInt32 = 768,
    Int64 = 1024,
    UInt64 = 1280
};

/// Unit in which a header gives its repetition time.
enum class TimeUnit { Unknown = 0, Second = 8, Millisecond = 16, Microsecond = 24, NoTime = -1 };

/// What is used of the header of a NIfTI-1 or NIfTI-2 file, checked.
struct NiftiHeader {
    int dimensions = 0;                             ///< 1 to 7, without trailing axes of length 1
    std::array<qint64, 7> dim{1, 1, 1, 1, 1, 1, 1}; ///< each 1 or more
    SampleKind kind = SampleKind::Int16;
    int sampleSize = 2;   ///< bytes
    bool swapped = false; ///< the file has the other byte order
    bool scaled = false;  ///< values are slope * sample + intercept
    double slope = 1;
    double intercept = 0;
    qint64 dataOffset = 0;

    /// From voxel indices to millimetres to the right, to the front and up: the sform, else the
    /// qform, else the voxel size alone.
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
    bool hasOrientation = false; ///< false when only the voxel size is known
    /// Largest distance in mm between where sform and qform put a corner; 0 without both.
    double formsApart = 0;

    double repetitionTime = 0; ///< in `timeUnit`, as stored
    TimeUnit timeUnit = TimeUnit::Unknown;

    qint64 voxelsPerVolume() const { return dim[0] * dim[1] * dim[2]; }
    qint64 bytesPerVolume() const { return voxelsPerVolume() * sampleSize; }
};

/// Whether two headers describe the same samples at the same place.
bool operator==(const NiftiHeader &a, const NiftiHeader &b);

/// How many bytes of a file its header takes, to be read before parseNiftiHeader. The argument is
/// the first four bytes. 0 when this is no NIfTI header.
int niftiHeaderLength(const QByteArray &firstBytes);

/// Reads a header, `mostBytes` being the most bytes that the whole file can hold.
/// Throws InputError, with `path` as the file that it names.
NiftiHeader parseNiftiHeader(const QByteArray &bytes, qint64 mostBytes, const QString &path);

/// The repetition time in seconds. A header keeps it as a binary number: this is the shortest
/// decimal number that reads back as what is stored, so that 0.72 is 0.72 and not 0.7200000286.
/// 0 when the header does not tell it, also when it counts no time.
double repetitionTimeSeconds(const NiftiHeader &header);

/// What a user should know of the header's orientation: sform and qform that disagree, or neither.
QStringList orientationNotes(const NiftiHeader &header, const QString &path);

/// "60 x 72 x 60"; the first `count` axes.
QString dimensionText(const std::array<qint64, 7> &dim, int count);

} // namespace corvane
