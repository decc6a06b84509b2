// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Geometry>
#include <QByteArray>
#include <QString>
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <vector>
#include <zlib.h>

/// @file
/// NIfTI files for the tests of the import, made byte by byte, and a reader of their own for the
/// recordings, so that no error of the host's reader hides itself.

namespace corvane
{

/// What a NIfTI file is made of, good or bad.
struct NiftiParts {
    int version = 1;
    bool bigEndian = false;
    std::vector<qint64> dim{3, 2, 2, 1, 1, 1, 1, 1}; ///< dim[0] to dim[7]
    int datatype = 4;
    int bitpix = 16;
    std::array<double, 8> pixdim{1, 1, 1, 1, 0, 0, 0, 0};
    double slope = 0;
    double intercept = 0;
    int units = 2 | 8; ///< mm and seconds
    int qformCode = 0;
    int sformCode = 1;
    std::array<double, 6> qform{0, 0, 0, 0, 0, 0}; ///< quaternion b, c, d and offsets
    std::array<std::array<double, 4>, 3> sform{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    double dataOffset = -1; ///< where the header says that the data are; -1: where they are
    QByteArray magic;       ///< empty: the right one
    QByteArray extension;   ///< between header and data, its four leading bytes included
    QByteArray data;        ///< in the order of bytes of the file

    void setSize(std::initializer_list<int> lengths)
    {
        dim.assign(8, 1);
        dim[0] = static_cast<qint64>(lengths.size());
        std::copy(lengths.begin(), lengths.end(), dim.begin() + 1);
    }
    qint64 sampleCount() const
    {
        qint64 count = 1;
        for (std::size_t axis = 1; axis <= static_cast<std::size_t>(dim[0]); ++axis)
            count *= dim[axis];
        return count;
    }
    void setSpacing(double millimetres, double x = 0, double y = 0, double z = 0)
    {
        sform = {{{millimetres, 0, 0, x}, {0, millimetres, 0, y}, {0, 0, millimetres, z}}};
        pixdim[1] = pixdim[2] = pixdim[3] = millimetres;
    }
};

template <typename Number>
QByteArray numberBytes(Number number, bool bigEndian)
{
    QByteArray bytes(reinterpret_cast<const char *>(&number), sizeof number);
    if (bigEndian)
        std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

template <typename Number, typename Value>
void put(QByteArray &bytes, int offset, Value value, bool bigEndian)
{
    const QByteArray number = numberBytes(static_cast<Number>(value), bigEndian);
    bytes.replace(offset, number.size(), number);
}

template <typename Sample>
struct NiftiType;
template <>
struct NiftiType<quint8> {
    static constexpr int code = 2;
};
template <>
struct NiftiType<qint16> {
    static constexpr int code = 4;
};
template <>
struct NiftiType<qint32> {
    static constexpr int code = 8;
};
template <>
struct NiftiType<float> {
    static constexpr int code = 16;
};
template <>
struct NiftiType<double> {
    static constexpr int code = 64;
};
template <>
struct NiftiType<qint8> {
    static constexpr int code = 256;
};
template <>
struct NiftiType<quint16> {
    static constexpr int code = 512;
};
template <>
struct NiftiType<quint32> {
    static constexpr int code = 768;
};
template <>
struct NiftiType<qint64> {
    static constexpr int code = 1024;
};
template <>
struct NiftiType<quint64> {
    static constexpr int code = 1280;
};

/// Samples and what the header says of their type. To be called when `bigEndian` is settled.
template <typename Sample>
void setSamples(NiftiParts &parts, const std::vector<Sample> &samples)
{
    parts.datatype = NiftiType<Sample>::code;
    parts.bitpix = 8 * sizeof(Sample);
    parts.data.clear();
    for (const Sample sample : samples)
        parts.data += numberBytes(sample, parts.bigEndian);
}

inline QByteArray nifti1Bytes(const NiftiParts &parts)
{
    const bool big = parts.bigEndian;
    QByteArray bytes(348, '\0');
    put<qint32>(bytes, 0, 348, big);
    for (int i = 0; i < 8; ++i) {
        put<qint16>(bytes, 40 + 2 * i, parts.dim[static_cast<std::size_t>(i)], big);
        put<float>(bytes, 76 + 4 * i, parts.pixdim[static_cast<std::size_t>(i)], big);
    }
    put<qint16>(bytes, 70, parts.datatype, big);
    put<qint16>(bytes, 72, parts.bitpix, big);
    put<float>(bytes, 112, parts.slope, big);
    put<float>(bytes, 116, parts.intercept, big);
    bytes[123] = static_cast<char>(parts.units);
    put<qint16>(bytes, 252, parts.qformCode, big);
    put<qint16>(bytes, 254, parts.sformCode, big);
    for (int i = 0; i < 6; ++i)
        put<float>(bytes, 256 + 4 * i, parts.qform[static_cast<std::size_t>(i)], big);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            put<float>(bytes, 280 + 16 * row + 4 * column,
                       parts.sform[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)],
                       big);
    const QByteArray magic = parts.magic.isEmpty() ? QByteArray("n+1\0", 4) : parts.magic;
    bytes.replace(344, 4, magic.left(4));
    const QByteArray extension = parts.extension.isEmpty() ? QByteArray(4, '\0') : parts.extension;
    put<float>(bytes, 108, parts.dataOffset == -1 ? 348 + extension.size() : parts.dataOffset, big);
    return bytes + extension + parts.data;
}

inline QByteArray nifti2Bytes(const NiftiParts &parts)
{
    const bool big = parts.bigEndian;
    QByteArray bytes(540, '\0');
    put<qint32>(bytes, 0, 540, big);
    const QByteArray magic = parts.magic.isEmpty() ? QByteArray("n+2\0\r\n\032\n", 8) : parts.magic;
    bytes.replace(4, 8, magic.left(8));
    put<qint16>(bytes, 12, parts.datatype, big);
    put<qint16>(bytes, 14, parts.bitpix, big);
    for (int i = 0; i < 8; ++i) {
        put<qint64>(bytes, 16 + 8 * i, parts.dim[static_cast<std::size_t>(i)], big);
        put<double>(bytes, 104 + 8 * i, parts.pixdim[static_cast<std::size_t>(i)], big);
    }
    put<double>(bytes, 176, parts.slope, big);
    put<double>(bytes, 184, parts.intercept, big);
    put<qint32>(bytes, 344, parts.qformCode, big);
    put<qint32>(bytes, 348, parts.sformCode, big);
    for (int i = 0; i < 6; ++i)
        put<double>(bytes, 352 + 8 * i, parts.qform[static_cast<std::size_t>(i)], big);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            put<double>(
                bytes, 400 + 32 * row + 8 * column,
                parts.sform[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)], big);
    put<qint32>(bytes, 500, parts.units, big);
    const QByteArray extension = parts.extension.isEmpty() ? QByteArray(4, '\0') : parts.extension;
    put<qint64>(bytes, 168, parts.dataOffset == -1 ? 540 + extension.size() : parts.dataOffset,
                big);
    return bytes + extension + parts.data;
}

inline QByteArray niftiBytes(const NiftiParts &parts)
{
    return parts.version == 1 ? nifti1Bytes(parts) : nifti2Bytes(parts);
}

/// One member of a gzip file.
inline QByteArray gzipped(const QByteArray &bytes)
{
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, 6, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY), Z_OK);
    QByteArray packed(static_cast<int>(deflateBound(&stream, static_cast<uLong>(bytes.size()))),
                      '\0');
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.constData()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.truncate(static_cast<int>(stream.total_out));
    deflateEnd(&stream);
    return packed;
}

/// All bytes of a file, unpacked when it is packed.
inline QByteArray unpackedBytes(const QString &path)
{
    const gzFile file = gzopen(path.toUtf8().constData(), "rb");
    EXPECT_NE(file, nullptr) << path.toStdString();
    QByteArray bytes;
    char piece[65536];
    for (int got = gzread(file, piece, sizeof piece); got > 0;
         got = gzread(file, piece, sizeof piece))
        bytes.append(piece, got);
    gzclose(file);
    return bytes;
}

/// A little-endian file as the recordings are, read without any of the host.
struct ReferenceImage {
    std::array<int, 4> size{1, 1, 1, 1};
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
    double repetitionTime = 0; ///< as stored
    double slope = 1;
    double intercept = 0;
    std::vector<double> values; ///< scaled

    double at(int i, int j, int k, int t = 0) const
    {
        return values[static_cast<std::size_t>(i + size[0] * (j + size[1] * (k + size[2] * t)))];
    }
};

template <typename Number>
Number get(const QByteArray &bytes, int offset)
{
    Number number;
    std::memcpy(&number, bytes.constData() + offset, sizeof number);
    return number;
}

inline Eigen::Affine3d referenceQform(const std::array<double, 6> &q,
                                      const std::array<double, 4> &pixdim)
{
    const double a = std::sqrt(std::max(0.0, 1 - q[0] * q[0] - q[1] * q[1] - q[2] * q[2]));
    const Eigen::Quaterniond rotation(a, q[0], q[1], q[2]);
    const double handed = pixdim[0] < 0 ? -1 : 1;
    Eigen::Affine3d result = Eigen::Affine3d::Identity();
    result.linear() = rotation.toRotationMatrix() *
                      Eigen::Vector3d(pixdim[1], pixdim[2], handed * pixdim[3]).asDiagonal();
    result.translation() = Eigen::Vector3d(q[3], q[4], q[5]);
    return result;
}

inline double storedValue(const QByteArray &bytes, int datatype, int dataOffset, int n)
{
    switch (datatype) {
    case 2:
        return double(get<quint8>(bytes, dataOffset + n));
    case 4:
        return double(get<qint16>(bytes, dataOffset + 2 * n));
    case 16:
        return double(get<float>(bytes, dataOffset + 4 * n));
    default:
        ADD_FAILURE() << "datatype " << datatype;
        return 0;
    }
}

template <typename Real>
ReferenceImage readReference(const QByteArray &bytes, int dim, int dimStep, int pixdim, int slope,
                             int qformCode, int sformCode, int qform, int sform, int dataOffset)
{
    constexpr int width = sizeof(Real);
    ReferenceImage image;
    const auto whole = [&](int offset, int step) {
        return step == 2 ? static_cast<int>(get<qint16>(bytes, offset))
                         : static_cast<int>(get<qint64>(bytes, offset));
    };
    const int axes = whole(dim, dimStep);
    int count = 1;
    for (int axis = 0; axis < std::min(axes, 4); ++axis) {
        image.size[static_cast<std::size_t>(axis)] = whole(dim + dimStep * (axis + 1), dimStep);
        count *= image.size[static_cast<std::size_t>(axis)];
    }
    image.repetitionTime = double(get<Real>(bytes, pixdim + 4 * width));
    const auto storedSlope = double(get<Real>(bytes, slope));
    if (storedSlope != 0 && std::isfinite(storedSlope)) {
        image.slope = storedSlope;
        image.intercept = double(get<Real>(bytes, slope + width));
    }
    if (sformCode > 0) {
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 4; ++column)
                image.toWorld(row, column) =
                    double(get<Real>(bytes, sform + width * (4 * row + column)));
    } else if (qformCode > 0) {
        std::array<double, 6> q{};
        std::array<double, 4> p{};
        for (int i = 0; i < 6; ++i)
            q[static_cast<std::size_t>(i)] = double(get<Real>(bytes, qform + width * i));
        for (int i = 0; i < 4; ++i)
            p[static_cast<std::size_t>(i)] = double(get<Real>(bytes, pixdim + width * i));
        image.toWorld = referenceQform(q, p);
    } else {
        for (int axis = 0; axis < 3; ++axis)
            image.toWorld(axis, axis) = double(get<Real>(bytes, pixdim + width * (axis + 1)));
    }
    const int datatype = get<qint16>(bytes, width == 4 ? 70 : 12);
    for (int n = 0; n < count; ++n)
        image.values.push_back(image.slope * storedValue(bytes, datatype, dataOffset, n) +
                               image.intercept);
    return image;
}

inline ReferenceImage readReference(const QString &path)
{
    const QByteArray bytes = unpackedBytes(path);
    if (get<qint32>(bytes, 0) == 348)
        return readReference<float>(bytes, 40, 2, 76, 112, get<qint16>(bytes, 252),
                                    get<qint16>(bytes, 254), 256, 280,
                                    static_cast<int>(get<float>(bytes, 108)));
    EXPECT_EQ(get<qint32>(bytes, 0), 540) << path.toStdString();
    return readReference<double>(bytes, 16, 8, 104, 176, get<qint32>(bytes, 344),
                                 get<qint32>(bytes, 348), 352, 400,
                                 static_cast<int>(get<qint64>(bytes, 168)));
}

} // namespace corvane
