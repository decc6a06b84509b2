// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/session/loaded_records.h"

#include "host/files/input_error.h"
#include "host/session/record_text.h"

#include <QFileInfo>

namespace corvane
{

namespace
{

VTCHeader vtcHeader(const VtcFile &file)
{
    const VtcInfo &info = file.info();
    VTCHeader header{};
    header.nrOfVolumes = info.nrOfVolumes;
    header.xStart = info.xStart;
    header.xEnd = info.xEnd;
    header.yStart = info.yStart;
    header.yEnd = info.yEnd;
    header.zStart = info.zStart;
    header.zEnd = info.zEnd;
    header.resolution = info.resolution;
    header.dataType = info.type == VtcInfo::Short ? 1 : 2;
    if (!info.linkedProtocol.isEmpty()) {
        header.linkedProtocolCount = 1;
        putLatin1(header.linkedProtocolFile, info.linkedProtocol, Keep::End,
                  QStringLiteral("The path of the linked protocol"));
    }
    return header;
}

VOIsHeader voisHeader(const VoiSet &set)
{
    VOIsHeader header{};
    header.voiCount = static_cast<int>(set.vois.size());
    header.referenceSpace = set.referenceSpace;
    header.resolutionX = static_cast<float>(set.resolution[0]);
    header.resolutionY = static_cast<float>(set.resolution[1]);
    header.resolutionZ = static_cast<float>(set.resolution[2]);
    return header;
}

VOIRecord voiRecord(const Voi &voi, std::size_t index)
{
    VOIRecord record{};
    record.voxelCount = static_cast<int>(voi.voxels.size());
    putUtf8(record.name, voi.name, Keep::Beginning,
            QStringLiteral("The name of VOI %1").arg(index + 1));
    return record;
}

ProtocolHeader protocolHeader(const Prt &prt)
{
    ProtocolHeader header{};
    header.conditionCount = static_cast<int>(prt.conditions.size());
    header.timeUnit = prt.timeUnit;
    putLatin1(header.name, prt.name, Keep::Beginning, QStringLiteral("The name of the protocol"));
    return header;
}

} // namespace

LinkedVtc::LinkedVtc(VtcFile vtc) : file(std::move(vtc)), header(vtcHeader(file)) {}

LoadedVois::LoadedVois(VoiSet voiSet) : set(std::move(voiSet)), header(voisHeader(set))
{
    records.reserve(set.vois.size());
    for (const Voi &voi : set.vois)
        records.push_back(voiRecord(voi, records.size()));
}

const int *LoadedVois::voxels(int index) const
{
    // Null would mean that there is no such VOI.
    static constexpr int none[3] = {0, 0, 0};
    const auto &triples = set.vois[static_cast<std::size_t>(index)].voxels;
    return triples.empty() ? none : triples.front().data();
}

LoadedProtocol::LoadedProtocol(Prt protocol) : prt(std::move(protocol)), header(protocolHeader(prt))
{
    records.reserve(prt.conditions.size());
    m_bounds.reserve(2 * prt.conditions.size());
    for (const PrtCondition &condition : prt.conditions) {
        std::vector<int> &from = m_bounds.emplace_back();
        std::vector<int> &to = m_bounds.emplace_back();
        for (const auto &interval : condition.intervals) {
            from.push_back(interval.first);
            to.push_back(interval.second);
        }
        ConditionRecord record{};
        putLatin1(record.name, condition.name, Keep::Beginning,
                  QStringLiteral("The name of condition %1").arg(records.size() + 1));
        record.intervalCount = static_cast<int>(condition.intervals.size());
        record.from = from.data();
        record.to = to.data();
        records.push_back(record);
    }
}

VMRHeader vmrHeader(const QString &path)
{
    VMRHeader header{};
    putUtf8(header.path, path, Keep::End, QStringLiteral("The path of the VMR"));
    return header;
}

} // namespace corvane
