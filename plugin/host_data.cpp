// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host_data.h"

#include "dataset/plugin_settings.h"
#include "dataset/subject.h"
#include "engine/assembly.h"
#include "plugin/host_functions.h"
#include "plugin/host_log.h"

#include <QDebug>
#include <QFileInfo>

#include <cmath>
#include <cstdint>
#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace
{

constexpr const char *vtcNotLoaded = "Plugin> Failed to load VTC file. Please retry.";
constexpr const char *vtcTrouble = "Plugin> Trouble with VTC file. Please retry.";
constexpr const char *voiNotLoaded = "Plugin> Could not load VOI file. Please retry.";
constexpr const char *voiTrouble = "Plugin>  Trouble with VOI. Please retry.";
constexpr const char *prtTrouble = "Plugin> Trouble with PRT file. Please retry.";
constexpr const char *vmrRequired =
    "This plugin requires a VMR to operate. Make sure that a VMR is open and that its window is "
    "selected.";

/// The most that a host can tell of and be believed: far more than any file holds, and few enough
/// to count and to address.
constexpr int mostDocuments = 1 << 16;
constexpr int mostVolumes = 1 << 24;
constexpr int longestAxis = 1 << 12; ///< VTC voxels; those of an anatomy have 256
constexpr int mostVois = 1 << 20;
constexpr int mostVoxels = 1 << 24; ///< of one VOI: all of an anatomy
constexpr int mostConditions = 1 << 16;
constexpr int mostIntervals = 1 << 20;

/// Whether a host can tell of so many; says so in its log when it cannot. Below zero is none.
bool isBelieved(int count, int most, const char *what)
{
    if (count <= most)
        return true;
    logToHost("Plugin> The host tells of %d %s, which cannot be.", count, what);
    return false;
}

/// A text field of a record up to its terminator, which a faulty host may have left out.
template <std::size_t Size>
QByteArray fieldText(const char (&field)[Size])
{
    return {field, static_cast<int>(qstrnlen(field, Size))};
}

bool linkVTC(Subject &subject)
{
    const QByteArray path = subject.vtcFile().toUtf8();
    if (hostFunctions().zqLinkVTCToCurrentVMR(path.constData(), 1) == 0) {
        hostFunctions().zqLogText(vtcNotLoaded);
        return false;
    }
    if (hostFunctions().zqGetHeaderOfVTCOfCurrentVMR(&subject.vtcHeader) == 0) {
        hostFunctions().zqLogText(vtcTrouble);
        return false;
    }
    return true;
}

bool loadVOIs(const char *path, VOIsHeader &header)
{
    if (hostFunctions().zqLoadVOIs(path) == 0) {
        hostFunctions().zqLogText(voiNotLoaded);
        return false;
    }
    if (hostFunctions().zqGetVOIs(&header) == 0 || !isBelieved(header.voiCount, mostVois, "VOIs")) {
        hostFunctions().zqLogText(voiTrouble);
        return false;
    }
    return true;
}

/// The box of a VTC in its own voxels. All extents are at least 1 and can be multiplied.
struct VTCGrid {
    std::int64_t dimX;
    std::int64_t dimXY;
    std::int64_t dimY;
    std::int64_t dimZ;
};

/// Number of VTC voxels between two VMR coordinates.
std::int64_t extent(int start, int end, int resolution)
{
    return (std::int64_t{end} - start) / resolution;
}

/// The box, when the header describes one that has voxels and volumes, and not more than can be.
std::optional<VTCGrid> vtcGrid(const VTCHeader &header)
{
    if (!isBelieved(header.nrOfVolumes, mostVolumes, "volumes") || header.nrOfVolumes < 1 ||
        header.resolution < 1)
        return {};
    VTCGrid grid{};
    grid.dimX = extent(header.xStart, header.xEnd, header.resolution);
    grid.dimY = extent(header.yStart, header.yEnd, header.resolution);
    grid.dimZ = extent(header.zStart, header.zEnd, header.resolution);
    for (const std::int64_t dim : {grid.dimX, grid.dimY, grid.dimZ})
        if (dim < 1 || dim > longestAxis)
            return {};
    grid.dimXY = grid.dimY * grid.dimX;
    return grid;
}

/// Coordinate in VTC voxels on one axis: halves go upward, also below zero.
double vtcCoordinate(float vmrCoordinate, int start, int resolution)
{
    const float scaled =
        (vmrCoordinate - static_cast<float>(start)) / static_cast<float>(resolution);
    return std::floor(static_cast<double>(scaled) + 0.5);
}

/// Position of the voxel (a, b, c) in the VTC, counted in voxels; -1 outside the box.
std::int64_t vtcPosition(const int *triple, const VTCHeader &header, const VTCGrid &grid,
                         int referenceSpace)
{
    const auto a = static_cast<float>(triple[0]);
    const auto b = static_cast<float>(triple[1]);
    const auto c = static_cast<float>(triple[2]);
    const bool converted = referenceSpace >= 3;
    const float p = converted ? 128.0f - b : a;
    const float q = converted ? 128.0f - c : b;
    const float r = converted ? 128.0f - a : c;

    const double i = vtcCoordinate(p, header.xStart, header.resolution);
    const double j = vtcCoordinate(q, header.yStart, header.resolution);
    const double k = vtcCoordinate(r, header.zStart, header.resolution);
    const auto within = [](double coordinate, std::int64_t dim) {
        return coordinate >= 0 && coordinate < static_cast<double>(dim);
    };
    if (!within(i, grid.dimX) || !within(j, grid.dimY) || !within(k, grid.dimZ))
        return -1;
    return static_cast<std::int64_t>(k) * grid.dimXY + static_cast<std::int64_t>(i) +
           static_cast<std::int64_t>(j) * grid.dimX;
}

/// Copies the samples of voxels at the given positions into their rows.
template <typename Sample>
void copySamples(const Sample *samples, int volumes, const std::vector<std::int64_t> &positions,
                 const std::vector<float *> &rows)
{
    for (int t = 0; t < volumes; ++t) {
        for (std::size_t voxel = 0; voxel < positions.size(); ++voxel) {
            if (positions[voxel] >= 0)
                rows[voxel][t] = static_cast<float>(samples[t + positions[voxel] * volumes]);
        }
    }
}

/// The samples of the linked VTC, of the one or the other type.
struct VTCSamples {
    const short *integers = nullptr;
    const float *floats = nullptr;
};

VTCSamples vtcSamples(const VTCHeader &header)
{
    VTCSamples samples;
    if (header.dataType == 1)
        samples.integers = hostFunctions().zqGetVTCIntDataOfCurrentVMR();
    else
        samples.floats = hostFunctions().zqGetVTCFloatDataOfCurrentVMR();
    return samples;
}

/// Reads the series of VOI `index` and appends it to the subject. False and a log line when the
/// host tells of voxels that cannot be.
bool loadVOI(Subject &subject, int index, const VTCGrid &grid, const VTCSamples &samples)
{
    const VTCHeader &header = subject.vtcHeader;
    VOIRecord &record = subject.voiRecord;
    if (hostFunctions().zqGetVOI(index, &record) == nullptr)
        return true;
    if (!isBelieved(record.voxelCount, mostVoxels, "voxels in one VOI"))
        return false;
    const bool empty = record.voxelCount < 1;
    if (empty)
        subject.emptyVois.append(index);
    const std::size_t voxelCount = empty ? 1 : static_cast<std::size_t>(record.voxelCount);

    const int *triples = hostFunctions().zqGetVOI(index, &record);
    // A host that takes its first answer back has not given the VOI.
    if (!empty && (triples == nullptr || record.voxelCount != static_cast<int>(voxelCount)))
        return true;

    const auto volumes = static_cast<std::size_t>(header.nrOfVolumes);
    std::vector<float> storage(voxelCount * volumes, 0.0f);
    std::vector<float *> rows(voxelCount);
    for (std::size_t voxel = 0; voxel < voxelCount; ++voxel)
        rows[voxel] = storage.data() + voxel * volumes;

    if (!empty) {
        std::vector<std::int64_t> positions(voxelCount);
        int outside = 0;
        for (std::size_t voxel = 0; voxel < voxelCount; ++voxel) {
            positions[voxel] =
                vtcPosition(triples + 3 * voxel, header, grid, subject.voisHeader.referenceSpace);
            outside += positions[voxel] < 0 ? 1 : 0;
        }
        if (outside > 0) {
            logToHost("Plugin> %d of %d voxels lie outside the VTC and count as 0 in VOI %s",
                      outside, record.voxelCount, fieldText(record.name).constData());
        }
        if (samples.integers != nullptr)
            copySamples(samples.integers, header.nrOfVolumes, positions, rows);
        else
            copySamples(samples.floats, header.nrOfVolumes, positions, rows);
    }
    subject.appendTimeseries(matrixFromRows(rows.data(), static_cast<unsigned>(voxelCount),
                                            static_cast<unsigned>(volumes)));
    return true;
}

/// Reads all VOIs.
bool loadAllVOIs(Subject &subject, const VTCGrid &grid, const VTCSamples &samples)
{
    for (int voi = 0; voi < subject.voisHeader.voiCount; ++voi)
        if (!loadVOI(subject, voi, grid, samples))
            return false;
    return true;
}

/// Reads condition `index` of the protocol in the host; nothing when it tells of intervals that
/// cannot be, with a line in its log.
std::optional<ProtocolCondition> readCondition(int index, SubjectProtocol &protocol)
{
    ConditionRecord record{};
    hostFunctions().zqGetProtocolCondition(index, &record);

    ProtocolCondition condition;
    condition.name = QString::fromLatin1(fieldText(record.name));
    condition.intervalCount = record.intervalCount;
    condition.index = index;
    if (!isBelieved(record.intervalCount, mostIntervals, "intervals in one condition"))
        return {};
    if (record.from == nullptr || record.to == nullptr)
        return condition;
    for (int n = 0; n < record.intervalCount; ++n) {
        condition.intervals.emplace_back(record.from[n], record.to[n]);
        if (protocol.timeUnit == 1 && record.from[n] == record.to[n]) {
            condition.isEvent = 1;
            protocol.eventRelated = true;
        }
    }
    return condition;
}

/// Adds a condition. Of two intervals with the same start the later condition's wins in the maps.
void addCondition(SubjectProtocol &protocol, const ProtocolCondition &condition)
{
    protocol.conditions[condition.index] = condition;
    for (const auto &interval : condition.intervals) {
        protocol.volumeConditions[interval.first] = condition.index;
        protocol.volumeNames[interval.first] = condition.name;
        protocol.volumeEvents[interval.first] = condition.isEvent;
    }
}

/// The protocol that is in the host, or nothing when it cannot be.
std::optional<SubjectProtocol> readProtocol(ProtocolHeader &header)
{
    if (hostFunctions().zqGetProtocol(&header) == 0 ||
        !isBelieved(header.conditionCount, mostConditions, "conditions"))
        return {};
    SubjectProtocol protocol(QString::fromLatin1(fieldText(header.name)), header.timeUnit,
                             header.conditionCount);
    for (int c = 0; c < header.conditionCount; ++c) {
        const std::optional<ProtocolCondition> condition = readCondition(c, protocol);
        if (!condition)
            return {};
        addCondition(protocol, *condition);
    }
    return protocol;
}

/// Takes the protocol that is in the host; false and a log line when there is trouble with it.
bool takeProtocol(Subject &subject)
{
    const std::optional<SubjectProtocol> read = readProtocol(subject.protocolHeader);
    if (!read) {
        hostFunctions().zqLogText(prtTrouble);
        return false;
    }
    const SubjectProtocol &protocol = *read;
    subject.setProtocol(protocol);

    if (PluginSettings::instance()->verboseLogging) {
        for (const auto &[start, condition] : protocol.volumeConditions)
            qDebug().noquote().nospace() << start << "\t" << condition;
    }
    return true;
}

} // namespace

namespace host_data
{

QHash<int, QString> vmrDocuments()
{
    constexpr int vmrType = 3;
    QHash<int, QString> documents;
    const int count = hostFunctions().zqGetNumberOfDocsInWorkspace();
    if (!isBelieved(count, mostDocuments, "documents"))
        return documents;
    for (int position = 0; position < count; ++position) {
        const int type = hostFunctions().zqGetDocumentType(position);
        hostFunctions().zqGetDocumentTypeName(position);
        if (type != vmrType)
            continue;
        VMRHeader header{};
        hostFunctions().zqSetAsCurrentDocument(position);
        const int id = hostFunctions().zqGetIDOfCurrentDocument();
        hostFunctions().zqGetMainHeaderOfCurrentVMR(&header);
        documents.insert(id, QFileInfo(QString::fromUtf8(fieldText(header.path))).fileName());
    }
    return documents;
}

void setCurrentDocument(int id)
{
    hostFunctions().zqSetAsCurrentDocument(id);
}

bool loadSubject(Subject &subject)
{
    logToHost("\n** Loading subject data: %s...", subject.name().toUtf8().constData());
    hostFunctions().zqSetAsCurrentDocument(subject.documentId());
    int dimensions[3] = {};
    if (hostFunctions().zqGetCurrentVMR(&dimensions[0], &dimensions[1], &dimensions[2]) ==
        nullptr) {
        hostFunctions().zqMessageBox(vmrRequired);
        return false;
    }
    if (!linkVTC(subject))
        return false;
    if (!loadVOIs(subject.voiFile().toUtf8().constData(), subject.voisHeader))
        return false;

    const std::optional<VTCGrid> grid = vtcGrid(subject.vtcHeader);
    const VTCSamples samples = grid ? vtcSamples(subject.vtcHeader) : VTCSamples{};
    if (samples.integers == nullptr && samples.floats == nullptr) {
        hostFunctions().zqLogText(vtcTrouble);
        return false;
    }
    try {
        if (loadAllVOIs(subject, *grid, samples))
            return true;
        hostFunctions().zqLogText(voiTrouble);
    } catch (const std::bad_alloc &) {
        logToHost("Plugin> There is not enough memory for the samples of VOI %s.",
                  fieldText(subject.voiRecord.name).constData());
    }
    return false;
}

int readVOINames(Subject &subject)
{
    if (subject.voiFile().isEmpty())
        return 0;
    if (!loadVOIs(subject.voiFile().toUtf8().constData(), subject.voisHeader))
        return 0;
    QStringList names;
    for (int voi = 0; voi < subject.voisHeader.voiCount; ++voi) {
        subject.voiRecord = {}; // a host that fails must not leave the name of another VOI in it
        hostFunctions().zqGetVOI(voi, &subject.voiRecord);
        QString name = QString::fromUtf8(fieldText(subject.voiRecord.name));
        if (subject.voiRecord.voxelCount == 0)
            name += QStringLiteral(" (empty)");
        names.append(name);
    }
    subject.voiNames = names;
    return subject.voisHeader.voiCount;
}

bool loadProtocolFile(Subject &subject, const char *path)
{
    if (hostFunctions().zqLoadProtocol(path) == 0)
        return false;
    return takeProtocol(subject);
}

bool linkVTCProtocol(Subject &subject)
{
    if (!linkVTC(subject))
        return false;
    if (subject.vtcHeader.linkedProtocolCount == 0)
        return false;
    return takeProtocol(subject);
}

bool voiFileIsOneMillimetre(const char *path)
{
    VOIsHeader header{};
    if (!loadVOIs(path, header))
        return false;
    return header.resolutionX == 1.0f && header.resolutionY == 1.0f && header.resolutionZ == 1.0f;
}

} // namespace host_data
