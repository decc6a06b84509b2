// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/vmr_file.h"

#include "host/files/mapped_file.h"
#include "host/files/nrrd_header.h"
#include "host/files/output_file.h"
#include "host/files/text_check.h"

#include <QSysInfo>
#include <cmath>

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "voxels are used where they lie in the file");

namespace corvane
{

namespace
{

constexpr auto sizes = "256 256 256";
constexpr auto spacings = "1 1 1";
constexpr auto spaceName = "right-anterior-superior";

QString name(const char *text)
{
    return QString::fromLatin1(text);
}

bool isOneMillimetre(const std::array<double, 3> &direction)
{
    return std::abs(std::hypot(direction[0], direction[1], direction[2]) - 1) <= 1e-3;
}

QByteArray vectorText(const std::array<double, 3> &vector)
{
    return '(' + shortestDecimal(vector[0]) + ',' + shortestDecimal(vector[1]) + ',' +
           shortestDecimal(vector[2]) + ')';
}

Vmr::SampleType sampleType(const NrrdHeader &header)
{
    const QString type = header.text(QStringLiteral("type"));
    if (type == QLatin1String("uchar"))
        return Vmr::UChar;
    if (type == QLatin1String("ushort"))
        return Vmr::UShort;
    header.fail(QStringLiteral("type"), QStringLiteral("\"uchar\" or \"ushort\""));
}

VmrSpace readSpace(const NrrdHeader &header)
{
    const QString directions = QStringLiteral("space directions");
    const QString origin = QStringLiteral("space origin");
    header.require(QStringLiteral("space"), name(spaceName));
    VmrSpace space;
    const QStringList words = header.words(directions, 3);
    for (int axis = 0; axis < 3; ++axis) {
        auto &direction = space.directions[static_cast<std::size_t>(axis)];
        direction = header.vector(directions, words[axis]);
        if (!isOneMillimetre(direction))
            header.fail(directions, quoted(words[axis]), QStringLiteral("vectors of length 1"));
    }
    space.origin = header.vector(origin, header.words(origin, 1).front());
    return space;
}

void checkSpace(const QString &path, const VmrSpace &space)
{
    for (const auto &direction : space.directions) {
        if (!isOneMillimetre(direction))
            throw InputError(path, QStringLiteral("space directions"),
                             QString::fromLatin1(vectorText(direction)),
                             QStringLiteral("vectors of length 1"));
    }
    for (double coordinate : space.origin) {
        if (!std::isfinite(coordinate))
            throw InputError(path, QStringLiteral("space origin"),
                             QString::fromLatin1(vectorText(space.origin)),
                             QStringLiteral("finite numbers"));
    }
}

/// A header either places the cube in a space or gives its spacings.
std::optional<VmrSpace> readGeometry(const NrrdHeader &header)
{
    const QString field = QStringLiteral("spacings");
    const bool placed = header.has(QStringLiteral("space")) ||
                        header.has(QStringLiteral("space directions")) ||
                        header.has(QStringLiteral("space origin"));
    if (placed && header.has(field))
        header.fail(field, QStringLiteral("either it or a space"));
    if (placed)
        return readSpace(header);
    header.require(field, name(spacings));
    return std::nullopt;
}

} // namespace

Vmr readVmr(const QString &path)
{
    static const QStringList fields{
        QStringLiteral("type"),         QStringLiteral("dimension"),
        QStringLiteral("sizes"),        QStringLiteral("spacings"),
        QStringLiteral("space"),        QStringLiteral("space directions"),
        QStringLiteral("space origin"), QStringLiteral("endian"),
        QStringLiteral("encoding"),     QStringLiteral("content")};
    static const QString versionKey = QStringLiteral("vmr version");

    const auto file = std::make_shared<MappedFile>(path);
    const NrrdHeader header(path, file->head(NrrdHeader::longest), fields,
                            QStringList{versionKey} + provenanceKeys());
    header.version(versionKey, provenanceKeys());
    header.require(QStringLiteral("dimension"), QStringLiteral("3"));
    header.require(QStringLiteral("sizes"), name(sizes));
    header.require(QStringLiteral("endian"), QStringLiteral("little"));
    header.require(QStringLiteral("encoding"), QStringLiteral("raw"));

    Vmr vmr;
    vmr.type = sampleType(header);
    vmr.space = readGeometry(header);
    vmr.provenance = header.provenance();
    if (const auto broken = brokenRule(vmr.provenance))
        header.fail(*broken);
    const qint64 found = file->size() - header.length();
    if (found != vmr.byteCount())
        throw InputError(path, QStringLiteral("data"), QStringLiteral("%1 bytes").arg(found),
                         QStringLiteral("%1 bytes (256 x 256 x 256 samples)").arg(vmr.byteCount()));
    // Voxels are used where they lie.
    if (vmr.type == Vmr::UShort && header.length() % 2 != 0)
        throw InputError(path, QStringLiteral("data"),
                         QStringLiteral("a header of %1 bytes").arg(header.length()),
                         QStringLiteral("a multiple of 2"));
    vmr.voxels = std::shared_ptr<const void>(file, file->data() + header.length());
    vmr.file = file;
    file->requireIntact();
    return vmr;
}

void writeVmr(const QString &path, const Vmr &vmr)
{
    if (vmr.space)
        checkSpace(path, *vmr.space);
    if (const auto broken = brokenRule(vmr.provenance))
        throw InputError(path, name(broken->field), broken->found, broken->expected);
    NrrdWriter header;
    header.field("type", vmr.type == Vmr::UChar ? "uchar" : "ushort").field("dimension", "3");
    if (vmr.space) {
        const auto &directions = vmr.space->directions;
        header.field("space", spaceName)
            .field("sizes", sizes)
            .field("space directions", vectorText(directions[0]) + ' ' + vectorText(directions[1]) +
                                           ' ' + vectorText(directions[2]))
            .field("space origin", vectorText(vmr.space->origin));
    } else {
        header.field("sizes", sizes).field("spacings", spacings);
    }
    header.field("endian", "little")
        .field("encoding", "raw")
        .key("vmr version", QStringLiteral("2"))
        .keys(vmr.provenance);

    OutputFile file(path);
    file.write(header.finished());
    file.write(static_cast<const char *>(vmr.voxels.get()), vmr.byteCount());
    file.commit();
}

} // namespace corvane
