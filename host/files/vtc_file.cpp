// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/vtc_file.h"

#include "host/files/input_error.h"
#include "host/files/limits.h"
#include "host/files/mapped_file.h"
#include "host/files/nrrd_header.h"
#include "host/files/text_check.h"
#include "host/files/vmr_file.h"
#include "host/files/vtc_checksum.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>
#include <cmath>
#include <optional>

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "samples are used where they lie in the file");

namespace corvane
{

namespace
{

constexpr auto sizesField = "sizes";
constexpr auto spacingsField = "spacings";
constexpr auto versionKey = "vtc version";
constexpr auto boxStartKey = "box start";
constexpr auto protocolKey = "linked protocol";
constexpr auto checksumKey = "samples checksum";
constexpr auto units = R"("s" "mm" "mm" "mm")";
constexpr auto kinds = "time domain domain domain";
constexpr WholeRange resolutionRange{1, Vmr::size};

QString name(const char *text)
{
    return QString::fromLatin1(text);
}

std::optional<BrokenRule> brokenAxis(int start, int end, int resolution)
{
    if (start < 0 || start >= Vmr::size)
        return BrokenRule{boxStartKey, QString::number(start), QStringLiteral("0 to 255")};
    const qint64 extent = qint64(end) - start;
    if (extent < resolution || extent % resolution != 0)
        return BrokenRule{sizesField, QStringLiteral("a box from %1 to %2").arg(start).arg(end),
                          QStringLiteral("a whole number of samples, 1 or more")};
    const qint64 last = qint64(end) - resolution;
    if (last >= Vmr::size)
        return BrokenRule{sizesField, QStringLiteral("a last sample at VMR voxel %1").arg(last),
                          QStringLiteral("all samples at 0 to 255")};
    return std::nullopt;
}

/// The first rule that the information breaks. Both the reader and the writer go by it.
std::optional<BrokenRule> brokenRule(const VtcInfo &info)
{
    static const QRegularExpression checksum(QStringLiteral("\\A([0-9a-f]{16})?\\z"));

    if (info.nrOfVolumes < 1)
        return BrokenRule{sizesField, QStringLiteral("%1 volumes").arg(info.nrOfVolumes),
                          QStringLiteral("1 or more")};
    if (!resolutionRange.holds(info.resolution))
        return BrokenRule{spacingsField, QStringLiteral("a resolution of %1").arg(info.resolution),
                          QStringLiteral("1 to 256 VMR voxels")};
    if (!std::isfinite(info.repetitionTime) || info.repetitionTime <= 0)
        return BrokenRule{spacingsField,
                          QStringLiteral("a repetition time of %1").arg(info.repetitionTime),
                          QStringLiteral("seconds above 0")};
    if (auto broken = brokenAxis(info.xStart, info.xEnd, info.resolution))
        return broken;
    if (auto broken = brokenAxis(info.yStart, info.yEnd, info.resolution))
        return broken;
    if (auto broken = brokenAxis(info.zStart, info.zEnd, info.resolution))
        return broken;
    if (!info.linkedProtocol.isValidUtf16() || info.linkedProtocol.contains(QChar(0)))
        return BrokenRule{protocolKey, quoted(info.linkedProtocol), QStringLiteral("a path")};
    if (!checksum.match(info.checksum).hasMatch())
        return BrokenRule{checksumKey, quoted(info.checksum),
                          QStringLiteral("16 lower-case hexadecimal digits")};
    if (auto broken = brokenRule(info.provenance))
        return broken;
    if (info.cleaning)
        if (auto broken = brokenRule(*info.cleaning))
            return broken;
    return info.uncleaned ? brokenRule(*info.uncleaned, info.nrOfVolumes) : std::nullopt;
}

VtcInfo::SampleType sampleType(const NrrdHeader &header)
{
    const QString type = header.text(QStringLiteral("type"));
    if (type == QLatin1String("short"))
        return VtcInfo::Short;
    if (type == QLatin1String("float"))
        return VtcInfo::Float;
    header.fail(QStringLiteral("type"), QStringLiteral("\"short\" or \"float\""));
}

/// Repetition time in seconds, then the resolution three times.
void readSpacings(const NrrdHeader &header, VtcInfo &info)
{
    const QString field = name(spacingsField);
    const QStringList words = header.words(field, 4);
    const std::optional<double> seconds = finiteNumber(words[0]);
    if (!seconds)
        header.fail(field, quoted(words[0]), QStringLiteral("seconds above 0"));
    info.repetitionTime = *seconds;

    const std::optional<qint64> resolution = wholeNumber(words[1]);
    if (!resolution || !resolutionRange.holds(static_cast<double>(*resolution)))
        header.fail(field, quoted(words[1]), resolutionRange.text());
    if (words[2] != words[1] || words[3] != words[1])
        header.fail(field, QStringLiteral("one resolution for all three axes"));
    info.resolution = static_cast<int>(*resolution);
}

VtcInfo readHeader(const NrrdHeader &header, const QString &path)
{
    header.version(name(versionKey), provenanceKeys() + cleaningKeys() + uncleanedKeys());
    header.require(QStringLiteral("dimension"), QStringLiteral("4"));
    header.require(QStringLiteral("kinds"), name(kinds));
    header.require(QStringLiteral("units"), name(units));
    header.require(QStringLiteral("endian"), QStringLiteral("little"));
    header.require(QStringLiteral("encoding"), QStringLiteral("raw"));

    VtcInfo info;
    info.type = sampleType(header);
    readSpacings(header, info);

    const std::vector<int> sizes = header.wholeNumbers(name(sizesField), 4, 1, largestCount);
    for (std::size_t axis = 1; axis < 4; ++axis) {
        if (sizes[axis] > Vmr::size)
            header.fail(name(sizesField), QString::number(sizes[axis]),
                        QStringLiteral("1 to 256 samples on each axis of the box"));
    }
    const std::vector<int> start = header.wholeNumbers(name(boxStartKey), 3, 0, Vmr::size - 1);
    info.nrOfVolumes = sizes[0];
    info.xStart = start[0];
    info.yStart = start[1];
    info.zStart = start[2];
    info.xEnd = start[0] + info.resolution * sizes[1];
    info.yEnd = start[1] + info.resolution * sizes[2];
    info.zEnd = start[2] + info.resolution * sizes[3];

    info.checksum = header.text(name(checksumKey));
    if (info.checksum.isEmpty())
        header.fail(name(checksumKey), QStringLiteral("16 lower-case hexadecimal digits"));
    const auto resolved = [folder = QFileInfo(path).absoluteDir()](const QString &stored) {
        return QDir::cleanPath(folder.absoluteFilePath(stored));
    };
    if (header.has(name(protocolKey))) {
        const QString stored = header.text(name(protocolKey));
        if (stored.isEmpty())
            header.fail(name(protocolKey), QStringLiteral("a path"));
        info.linkedProtocol = resolved(stored);
    }
    info.provenance = header.provenance();
    info.cleaning = readCleaning(header);
    info.uncleaned = readUncleaned(header);
    if (info.uncleaned && !info.uncleaned->path.isEmpty())
        info.uncleaned->path = resolved(info.uncleaned->path);
    if (const auto broken = brokenRule(info))
        header.fail(*broken);
    return info;
}

void checkLength(const MappedFile &file, const NrrdHeader &header, const VtcInfo &info)
{
    const qint64 found = file.size() - header.length();
    const qint64 expected = info.sampleCount() * info.sampleSize();
    if (found != expected)
        throw InputError(file.path(), QStringLiteral("data"), QStringLiteral("%1 bytes").arg(found),
                         QStringLiteral("%1 bytes (%2 x %3 x %4 x %5 samples of %6 bytes)")
                             .arg(expected)
                             .arg(info.nrOfVolumes)
                             .arg(info.dimX())
                             .arg(info.dimY())
                             .arg(info.dimZ())
                             .arg(info.sampleSize()));
    // Samples are used where they lie.
    if (header.length() % info.sampleSize() != 0)
        throw InputError(file.path(), QStringLiteral("data"),
                         QStringLiteral("a header of %1 bytes").arg(header.length()),
                         QStringLiteral("a multiple of %1").arg(info.sampleSize()));
}

} // namespace

QByteArray vtcFileHeader(const VtcInfo &info)
{
    if (const auto broken = brokenRule(info))
        throw InputError(QStringLiteral(".vtc"), name(broken->field), broken->found,
                         broken->expected);

    const auto list = [](std::initializer_list<int> numbers) {
        QByteArray text;
        for (int number : numbers)
            text += ' ' + QByteArray::number(number);
        return text.mid(1);
    };
    NrrdWriter header;
    header.field("type", info.type == VtcInfo::Short ? "short" : "float")
        .field("dimension", "4")
        .field(sizesField, list({info.nrOfVolumes, info.dimX(), info.dimY(), info.dimZ()}))
        .field("kinds", kinds)
        .field(spacingsField, shortestDecimal(info.repetitionTime) + ' ' +
                                  list({info.resolution, info.resolution, info.resolution}))
        .field("units", units)
        .field("endian", "little")
        .field("encoding", "raw")
        .key(versionKey, QStringLiteral("2"))
        .key(boxStartKey, QString::fromLatin1(list({info.xStart, info.yStart, info.zStart})));
    if (!info.linkedProtocol.isEmpty())
        header.key(protocolKey, info.linkedProtocol);
    header.key(checksumKey,
               info.checksum.isEmpty() ? QStringLiteral("0000000000000000") : info.checksum);
    header.keys(info.provenance);
    if (info.cleaning)
        addCleaning(header, *info.cleaning);
    if (info.uncleaned)
        addUncleaned(header, *info.uncleaned);
    return header.finished();
}

QString linkedProtocolText(const QString &vtcPath, const QString &protocolPath)
{
    if (protocolPath.isEmpty())
        return {};
    const QDir folder = QFileInfo(vtcPath).absoluteDir();
    const QString absolute = QDir::cleanPath(QFileInfo(protocolPath).absoluteFilePath());
    const QString relative = folder.relativeFilePath(absolute);
    const bool outside =
        relative.startsWith(QLatin1String("../")) || QDir::isAbsolutePath(relative);
    return outside ? absolute : relative;
}

VtcFile::VtcFile(const QString &path) : m_file(std::make_shared<const MappedFile>(path))
{
    static const QStringList fields{
        QStringLiteral("type"),   QStringLiteral("dimension"), name(sizesField),
        QStringLiteral("kinds"),  name(spacingsField),         QStringLiteral("units"),
        QStringLiteral("endian"), QStringLiteral("encoding"),  QStringLiteral("content")};
    static const QStringList keys =
        QStringList{name(versionKey), name(boxStartKey), name(protocolKey), name(checksumKey)} +
        provenanceKeys() + cleaningKeys() + uncleanedKeys();

    const NrrdHeader header(path, m_file->head(NrrdHeader::longest), fields, keys);
    m_info = readHeader(header, path);
    checkLength(*m_file, header, m_info);
    m_samples = m_file->data() + header.length();
    m_file->requireIntact();
}

QString VtcFile::path() const
{
    return m_file->path();
}

const short *VtcFile::shortSamples() const
{
    return m_info.type == VtcInfo::Short ? reinterpret_cast<const short *>(m_samples) : nullptr;
}

const float *VtcFile::floatSamples() const
{
    return m_info.type == VtcInfo::Float ? reinterpret_cast<const float *>(m_samples) : nullptr;
}

bool VtcFile::isIntact() const
{
    return m_file->isIntact();
}

void VtcFile::requireIntact() const
{
    m_file->requireIntact();
}

bool verifyVtcChecksum(const VtcFile &file)
{
    const VtcInfo &info = file.info();
    VtcChecksum checksum;
    if (info.type == VtcInfo::Short)
        checksum.add(file.shortSamples(), info.sampleCount(), 0);
    else
        checksum.add(file.floatSamples(), info.sampleCount(), 0);
    file.requireIntact();
    return checksum.text() == info.checksum;
}

} // namespace corvane
