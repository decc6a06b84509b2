// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/nifti_header.h"

#include "host/files/input_error.h"
#include "host/files/text_check.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <nifti/nifti2_io.h>
#include <tuple>

namespace corvane
{

namespace
{

constexpr int nifti1Length = 348;
constexpr int nifti2Length = 540;

/// Distance from which sform and qform are said to disagree. A quaternion of floats is good to
/// about a thousandth of a millimetre.
constexpr double formTolerance = 0.1;

/// NIfTI-2 holds all that NIfTI-1 does, in wider fields: one set of checks serves both.
nifti_2_header widened(const nifti_1_header &narrow)
{
    nifti_2_header wide{};
    wide.sizeof_hdr = narrow.sizeof_hdr;
    std::memcpy(wide.magic, narrow.magic, sizeof narrow.magic);
    wide.datatype = narrow.datatype;
    wide.bitpix = narrow.bitpix;
    for (int i = 0; i < 8; ++i) {
        wide.dim[i] = narrow.dim[i];
        wide.pixdim[i] = narrow.pixdim[i];
    }
    // Not a number and what no offset can be become -1, which is refused with the rest.
    const bool countable = narrow.vox_offset >= 0 && narrow.vox_offset < 1e9f &&
                           narrow.vox_offset == std::floor(narrow.vox_offset);
    wide.vox_offset = countable ? static_cast<qint64>(narrow.vox_offset) : -1;
    wide.scl_slope = narrow.scl_slope;
    wide.scl_inter = narrow.scl_inter;
    wide.qform_code = narrow.qform_code;
    wide.sform_code = narrow.sform_code;
    wide.quatern_b = narrow.quatern_b;
    wide.quatern_c = narrow.quatern_c;
    wide.quatern_d = narrow.quatern_d;
    wide.qoffset_x = narrow.qoffset_x;
    wide.qoffset_y = narrow.qoffset_y;
    wide.qoffset_z = narrow.qoffset_z;
    for (int i = 0; i < 4; ++i) {
        wide.srow_x[i] = narrow.srow_x[i];
        wide.srow_y[i] = narrow.srow_y[i];
        wide.srow_z[i] = narrow.srow_z[i];
    }
    wide.xyzt_units = static_cast<unsigned char>(narrow.xyzt_units);
    return wide;
}

/// One header on its way from bytes to NiftiHeader.
class Parser
{
public:
    Parser(const QByteArray &bytes, qint64 mostBytes, const QString &path);
    NiftiHeader parse();

private:
    void readMagic();
    void readDimensions();
    void readSamples();
    void readSize();
    void readScaling();
    void readOrientation();
    void readTime();

    Eigen::Affine3d sform() const;
    Eigen::Affine3d qform() const;
    Eigen::Affine3d spacing() const;
    Eigen::Affine3d checked(Eigen::Affine3d toWorld, const char *place) const;
    double formDistance() const;

    [[noreturn]] void fail(const QString &place, const QString &found,
                           const QString &expected) const;

    QString m_path;
    qint64 m_mostBytes;
    nifti_2_header m_raw{};
    NiftiHeader m_header;
};

Parser::Parser(const QByteArray &bytes, qint64 mostBytes, const QString &path)
    : m_path(path), m_mostBytes(mostBytes)
{
    const int length = niftiHeaderLength(bytes);
    if (bytes.isEmpty())
        fail(QStringLiteral("header"), QStringLiteral("an empty file"),
             QStringLiteral("a NIfTI file"));
    if (length == 0)
        fail(QStringLiteral("header"), QStringLiteral("\"%1\"").arg(printable(bytes.left(4))),
             QStringLiteral("a NIfTI file, which begins with the number 348 or 540"));
    if (bytes.size() < length)
        fail(QStringLiteral("header"), QStringLiteral("%1 bytes").arg(bytes.size()),
             QStringLiteral("%1").arg(length));
    qint32 stored;
    std::memcpy(&stored, bytes.constData(), sizeof stored);
    m_header.swapped = stored != length;
    if (length == nifti1Length) {
        nifti_1_header narrow;
        std::memcpy(&narrow, bytes.constData(), sizeof narrow);
        if (m_header.swapped)
            nifti_swap_as_nifti1(&narrow);
        m_raw = widened(narrow);
    } else {
        std::memcpy(&m_raw, bytes.constData(), sizeof m_raw);
        if (m_header.swapped)
            nifti_swap_as_nifti2(&m_raw);
    }
}

NiftiHeader Parser::parse()
{
    readMagic();
    readDimensions();
    readSamples();
    readSize();
    readScaling();
    readOrientation();
    readTime();
    return m_header;
}

void Parser::readMagic()
{
    const QByteArray magic(m_raw.magic, m_raw.sizeof_hdr == nifti1Length ? 4 : 8);
    const QByteArray single = m_raw.sizeof_hdr == nifti1Length ? QByteArray("n+1\0", 4)
                                                               : QByteArray("n+2\0\r\n\032\n", 8);
    if (magic == single)
        return;
    const QString place = QStringLiteral("header, magic");
    const QString expected = QStringLiteral("\"%1\"").arg(printable(single.left(3)));
    if (magic.startsWith("ni1") || magic.startsWith("ni2"))
        fail(place, QStringLiteral("the header of a pair of files"),
             expected + QStringLiteral(", header and data in one file"));
    fail(place, QStringLiteral("\"%1\"").arg(printable(magic)), expected);
}

void Parser::readDimensions()
{
    const qint64 count = m_raw.dim[0];
    if (count < 1 || count > 7)
        fail(QStringLiteral("header, dim[0]"), QStringLiteral("%1 dimensions").arg(count),
             QStringLiteral("1 to 7"));
    m_header.dimensions = 1;
    for (int i = 0; i < count; ++i) {
        const qint64 length = m_raw.dim[i + 1];
        if (length < 1)
            fail(QStringLiteral("header, dim[%1]").arg(i + 1), QStringLiteral("%1").arg(length),
                 QStringLiteral("1 or more"));
        m_header.dim[i] = length;
        if (length > 1)
            m_header.dimensions = i + 1;
    }
}

void Parser::readSamples()
{
    switch (m_raw.datatype) {
    case NIFTI_TYPE_UINT8:
    case NIFTI_TYPE_INT8:
    case NIFTI_TYPE_INT16:
    case NIFTI_TYPE_UINT16:
    case NIFTI_TYPE_INT32:
    case NIFTI_TYPE_UINT32:
    case NIFTI_TYPE_INT64:
    case NIFTI_TYPE_UINT64:
    case NIFTI_TYPE_FLOAT32:
    case NIFTI_TYPE_FLOAT64:
        break;
    default:
        fail(QStringLiteral("header, datatype"), QStringLiteral("%1").arg(m_raw.datatype),
             QStringLiteral("whole numbers of 8 to 64 bits or floats of 32 or 64 bits (2, 4, 8, "
                            "16, 64, 256, 512, 768, 1024 or 1280)"));
    }
    m_header.kind = static_cast<SampleKind>(m_raw.datatype);
    int swapSize = 0;
    nifti_datatype_sizes(m_raw.datatype, &m_header.sampleSize, &swapSize);
    if (m_raw.bitpix != 8 * m_header.sampleSize)
        fail(QStringLiteral("header, bitpix"), QStringLiteral("%1").arg(m_raw.bitpix),
             QStringLiteral("%1 for datatype %2").arg(8 * m_header.sampleSize).arg(m_raw.datatype));
}

void Parser::readSize()
{
    const qint64 first = m_raw.sizeof_hdr + 4;
    m_header.dataOffset = m_raw.vox_offset;
    if (m_header.dataOffset < first || m_header.dataOffset > m_mostBytes)
        fail(QStringLiteral("header, vox_offset"),
             m_raw.vox_offset < 0 ? QStringLiteral("no whole number")
                                  : QStringLiteral("%1").arg(m_raw.vox_offset),
             m_mostBytes < first ? QStringLiteral("a file of more than %1 bytes").arg(first)
                                 : QStringLiteral("%1 to %2").arg(first).arg(m_mostBytes));
    // A product of seven axes of 64 bits overflows whole numbers; its size is what matters here.
    double bytes = m_header.sampleSize;
    for (const qint64 length : m_header.dim)
        bytes *= static_cast<double>(length);
    if (bytes > static_cast<double>(m_mostBytes - m_header.dataOffset))
        fail(QStringLiteral("header, dim"),
             QStringLiteral("%1 samples of %2 bytes")
                 .arg(dimensionText(m_header.dim, m_header.dimensions))
                 .arg(m_header.sampleSize),
             QStringLiteral("at most %1 bytes of samples in a file of this size")
                 .arg(m_mostBytes - m_header.dataOffset));
}

void Parser::readScaling()
{
    // A slope of 0 or one that is no number says that there is no scaling.
    if (m_raw.scl_slope == 0 || !std::isfinite(m_raw.scl_slope))
        return;
    if (!std::isfinite(m_raw.scl_inter))
        fail(QStringLiteral("header, scl_inter"), QStringLiteral("%1").arg(m_raw.scl_inter),
             QStringLiteral("a finite number"));
    m_header.slope = m_raw.scl_slope;
    m_header.intercept = m_raw.scl_inter;
    m_header.scaled = m_header.slope != 1 || m_header.intercept != 0;
}

void Parser::readOrientation()
{
    if (m_raw.sform_code > 0)
        m_header.toWorld = checked(sform(), "header, sform");
    else if (m_raw.qform_code > 0)
        m_header.toWorld = checked(qform(), "header, qform");
    else
        m_header.toWorld = checked(spacing(), "header, pixdim");
    m_header.hasOrientation = m_raw.sform_code > 0 || m_raw.qform_code > 0;
    if (m_raw.sform_code > 0 && m_raw.qform_code > 0)
        m_header.formsApart = formDistance();

    double millimetres = 1;
    if (XYZT_TO_SPACE(m_raw.xyzt_units) == NIFTI_UNITS_METER)
        millimetres = 1000;
    else if (XYZT_TO_SPACE(m_raw.xyzt_units) == NIFTI_UNITS_MICRON)
        millimetres = 0.001;
    m_header.toWorld = Eigen::Scaling(millimetres) * m_header.toWorld;
    m_header.formsApart *= millimetres;
}

Eigen::Affine3d Parser::sform() const
{
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
    for (int i = 0; i < 4; ++i)
        toWorld.matrix().col(i).head<3>() << m_raw.srow_x[i], m_raw.srow_y[i], m_raw.srow_z[i];
    return toWorld;
}

Eigen::Affine3d Parser::qform() const
{
    const nifti_dmat44 matrix = nifti_quatern_to_dmat44(
        m_raw.quatern_b, m_raw.quatern_c, m_raw.quatern_d, m_raw.qoffset_x, m_raw.qoffset_y,
        m_raw.qoffset_z, m_raw.pixdim[1], m_raw.pixdim[2], m_raw.pixdim[3], m_raw.pixdim[0]);
    Eigen::Affine3d toWorld = Eigen::Affine3d::Identity();
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            toWorld(row, column) = matrix.m[row][column];
    return toWorld;
}

Eigen::Affine3d Parser::spacing() const
{
    return Eigen::Affine3d(Eigen::Scaling(m_raw.pixdim[1], m_raw.pixdim[2], m_raw.pixdim[3]));
}

Eigen::Affine3d Parser::checked(Eigen::Affine3d toWorld, const char *place) const
{
    if (!toWorld.matrix().allFinite())
        fail(QLatin1String(place), QStringLiteral("a value that is no finite number"),
             QStringLiteral("finite numbers"));
    if (!(std::abs(toWorld.linear().determinant()) > 1e-12))
        fail(QLatin1String(place), QStringLiteral("voxels without a volume"),
             QStringLiteral("three axes with a length"));
    return toWorld;
}

double Parser::formDistance() const
{
    const Eigen::Affine3d first = sform();
    const Eigen::Affine3d second = qform();
    double farthest = 0;
    for (int corner = 0; corner < 8; ++corner) {
        Eigen::Vector3d voxel;
        for (int axis = 0; axis < 3; ++axis)
            voxel[axis] = (corner >> axis & 1) ? static_cast<double>(m_header.dim[axis] - 1) : 0;
        const double distance = (first * voxel - second * voxel).norm();
        // A broken qform beside a good sform is as far off as can be.
        if (!std::isfinite(distance))
            return distance;
        farthest = std::max(farthest, distance);
    }
    return farthest;
}

void Parser::readTime()
{
    m_header.repetitionTime = m_raw.pixdim[4];
    switch (XYZT_TO_TIME(m_raw.xyzt_units)) {
    case NIFTI_UNITS_UNKNOWN:
        m_header.timeUnit = TimeUnit::Unknown;
        break;
    case NIFTI_UNITS_SEC:
        m_header.timeUnit = TimeUnit::Second;
        break;
    case NIFTI_UNITS_MSEC:
        m_header.timeUnit = TimeUnit::Millisecond;
        break;
    case NIFTI_UNITS_USEC:
        m_header.timeUnit = TimeUnit::Microsecond;
        break;
    default:
        m_header.timeUnit = TimeUnit::NoTime;
    }
}

void Parser::fail(const QString &place, const QString &found, const QString &expected) const
{
    throw InputError(m_path, place, found, expected);
}

template <typename Number>
double asShortestDecimal(Number stored)
{
    char text[64];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, stored);
    double decimal = 0;
    std::from_chars(text, end.ptr, decimal);
    return decimal;
}

} // namespace

bool operator==(const NiftiHeader &a, const NiftiHeader &b)
{
    const auto samples = [](const NiftiHeader &header) {
        return std::tie(header.dim, header.kind, header.swapped, header.scaled, header.slope,
                        header.intercept, header.dataOffset);
    };
    return samples(a) == samples(b) && a.toWorld.matrix() == b.toWorld.matrix();
}

int niftiHeaderLength(const QByteArray &firstBytes)
{
    qint32 length = 0;
    if (firstBytes.size() < int(sizeof length))
        return 0;
    std::memcpy(&length, firstBytes.constData(), sizeof length);
    if (length != nifti1Length && length != nifti2Length)
        nifti_swap_4bytes(1, &length);
    return length == nifti1Length || length == nifti2Length ? length : 0;
}

NiftiHeader parseNiftiHeader(const QByteArray &bytes, qint64 mostBytes, const QString &path)
{
    return Parser(bytes, mostBytes, path).parse();
}

double repetitionTimeSeconds(const NiftiHeader &header)
{
    const double stored = header.repetitionTime;
    if (!std::isfinite(stored) || stored <= 0 || header.timeUnit == TimeUnit::NoTime)
        return 0;
    const auto single = static_cast<float>(stored);
    const double decimal =
        double(single) == stored ? asShortestDecimal(single) : asShortestDecimal(stored);
    // Division of two exact numbers gives the double nearest to the decimal quotient.
    if (header.timeUnit == TimeUnit::Millisecond)
        return decimal / 1e3;
    if (header.timeUnit == TimeUnit::Microsecond)
        return decimal / 1e6;
    return decimal;
}

QStringList orientationNotes(const NiftiHeader &header, const QString &path)
{
    if (!header.hasOrientation)
        return {QStringLiteral("%1: the header tells no orientation: its axes are taken to run to "
                               "the right, to the front and up")
                    .arg(path)};
    if (header.formsApart > formTolerance)
        return {QStringLiteral("%1: sform and qform disagree by up to %2 mm: the sform is used")
                    .arg(path, readableNumber(header.formsApart, 1))};
    if (!std::isfinite(header.formsApart))
        return {QStringLiteral("%1: the qform is damaged: the sform is used").arg(path)};
    return {};
}

QString dimensionText(const std::array<qint64, 7> &dim, int count)
{
    QStringList lengths;
    for (int i = 0; i < count; ++i)
        lengths += QString::number(dim[i]);
    return lengths.join(QStringLiteral(" x "));
}

} // namespace corvane
