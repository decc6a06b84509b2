// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/fake_host.h"

#include "plugin/host_functions.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace fake_host
{

namespace
{

FakeHost *installed = nullptr;
HostFunctionTable tableBefore;

template <std::size_t Size>
void copyText(char (&field)[Size], const std::string &text)
{
    std::memset(field, 0, Size);
    std::memcpy(field, text.data(), std::min(text.size(), Size - 1));
}

/// A series of its own for each voxel: a slow wave and a little of everything else.
float defaultSample(int i, int j, int k, int t)
{
    const double voxel = 1.0 + i + 3.7 * j + 11.3 * k;
    return static_cast<float>(100.0 + 10.0 * std::sin(0.37 * t * std::sqrt(voxel)) +
                              std::cos(1.9 * t + voxel));
}

} // namespace

void Vtc::linkProtocol(const std::string &path)
{
    header.linkedProtocolCount = path.empty() ? 0 : 1;
    copyText(header.linkedProtocolFile, path);
}

Vtc makeVtc(const Box &box, int resolution, int volumes, int dataType, const SampleFunction &sample)
{
    Vtc vtc;
    VTCHeader &header = vtc.header;
    header.nrOfVolumes = volumes;
    header.xStart = box[0][0];
    header.xEnd = box[0][1];
    header.yStart = box[1][0];
    header.yEnd = box[1][1];
    header.zStart = box[2][0];
    header.zEnd = box[2][1];
    header.resolution = resolution;
    header.dataType = dataType;

    const auto dim = [&](std::size_t axis) { return (box[axis][1] - box[axis][0]) / resolution; };
    for (int k = 0; k < dim(2); ++k) {
        for (int j = 0; j < dim(1); ++j) {
            for (int i = 0; i < dim(0); ++i) {
                for (int t = 0; t < volumes; ++t) {
                    const float value = sample ? sample(i, j, k, t) : defaultSample(i, j, k, t);
                    if (dataType == 1)
                        vtc.integers.push_back(static_cast<short>(std::lround(value)));
                    else
                        vtc.floats.push_back(value);
                }
            }
        }
    }
    return vtc;
}

/// The functions of the table. Each notes its call first and then asks whether it is to fail.
struct Calls {
    enum class Fate { Works, Zero, ZeroedRecord };

    static FakeHost &host() { return *installed; }

    static Fate noted(const std::string &function, const std::string &arguments = {})
    {
        FakeHost &fake = host();
        fake.calls.push_back(function + "(" + arguments + ")");
        ++fake.m_counts[function];
        const auto fault = fake.m_faults.find(function);
        if (fault == fake.m_faults.end())
            return Fate::Works;
        int &callsToGo = fault->second.callsToGo;
        const Failure failure = fault->second.failure;
        if (callsToGo > 1) {
            --callsToGo;
            return Fate::Works;
        }
        if (callsToGo == 1)
            fake.m_faults.erase(fault);
        return failure == Failure::Zero ? Fate::Zero : Fate::ZeroedRecord;
    }

    /// Zeroes the record for a zeroed record; true when the function is to do nothing more.
    template <typename Record>
    static bool failed(Fate fate, Record *record)
    {
        if (fate == Fate::ZeroedRecord)
            *record = Record{};
        return fate != Fate::Works;
    }

    /// What is told, with a lie written over it.
    template <typename Told>
    static Told lied(Told told, const std::function<void(Told &)> &lie)
    {
        if (lie)
            lie(told);
        return told;
    }

    static int result(Fate fate) { return fate == Fate::ZeroedRecord ? 1 : 0; }

    static bool currentIsVmr()
    {
        const FakeHost &fake = host();
        const auto position = static_cast<std::size_t>(fake.currentDocument);
        return fake.currentDocument >= 0 && position < fake.documents.size() &&
               fake.documents[position].type == 3;
    }

    static const Document *current()
    {
        return currentIsVmr() ? &host().documents[static_cast<std::size_t>(host().currentDocument)]
                              : nullptr;
    }

    static const Document *at(int position)
    {
        const auto index = static_cast<std::size_t>(position);
        return position >= 0 && index < host().documents.size() ? &host().documents[index]
                                                                : nullptr;
    }

    static void zqGetVersionOfCorvaneZQ(int *major, int *minor, int *third)
    {
        const Fate fate = noted("zqGetVersionOfCorvaneZQ");
        if (fate == Fate::Zero)
            return;
        const std::array<int, 3> version =
            fate == Fate::Works ? host().version : std::array<int, 3>{};
        *major = version[0];
        *minor = version[1];
        *third = version[2];
    }

    static void zqShowLogPane()
    {
        if (noted("zqShowLogPane") == Fate::Works)
            ++host().logPaneShown;
    }

    static void zqLogText(const char *text)
    {
        if (noted("zqLogText") == Fate::Works)
            host().log.emplace_back(text);
    }

    static void zqMessageBox(const char *text)
    {
        if (noted("zqMessageBox") != Fate::Works)
            return;
        host().messages.emplace_back(text);
        if (host().meanwhile)
            host().meanwhile();
    }

    static int zqGetNumberOfDocsInWorkspace()
    {
        if (noted("zqGetNumberOfDocsInWorkspace") != Fate::Works)
            return 0;
        return lied(static_cast<int>(host().documents.size()), host().lies.documentCount);
    }

    static int zqGetDocumentType(int position)
    {
        const Fate fate = noted("zqGetDocumentType", std::to_string(position));
        const Document *document = at(position);
        return fate == Fate::Works && document != nullptr ? document->type : 0;
    }

    static const char *zqGetDocumentTypeName(int position)
    {
        const Fate fate = noted("zqGetDocumentTypeName", std::to_string(position));
        return fate == Fate::Works ? "VMR" : fate == Fate::Zero ? nullptr : "";
    }

    static int zqGetIDOfCurrentDocument()
    {
        return noted("zqGetIDOfCurrentDocument") == Fate::Works ? host().currentDocument : 0;
    }

    static void zqSetAsCurrentDocument(int document)
    {
        if (noted("zqSetAsCurrentDocument", std::to_string(document)) == Fate::Works)
            host().currentDocument = document;
    }

    static void *zqGetCurrentVMR(int *dimX, int *dimY, int *dimZ)
    {
        static char volume = 0;
        const Fate fate = noted("zqGetCurrentVMR");
        if (fate == Fate::ZeroedRecord) {
            *dimX = *dimY = *dimZ = 0;
            return &volume;
        }
        const Document *document = current();
        if (fate == Fate::Zero || document == nullptr)
            return nullptr;
        *dimX = document->dimensions[0];
        *dimY = document->dimensions[1];
        *dimZ = document->dimensions[2];
        return &volume;
    }

    static void zqGetMainHeaderOfCurrentVMR(VMRHeader *header)
    {
        if (failed(noted("zqGetMainHeaderOfCurrentVMR"), header))
            return;
        const Document *document = current();
        if (document != nullptr)
            copyText(header->path, document->path);
        *header = lied(*header, host().lies.vmrHeader);
    }

    static int zqLinkVTCToCurrentVMR(const char *path, int load)
    {
        const Fate fate =
            noted("zqLinkVTCToCurrentVMR", std::string(path) + ", " + std::to_string(load));
        FakeHost &fake = host();
        if (fate != Fate::Works)
            return result(fate);
        const auto vtc = fake.vtcs.find(path);
        if (vtc == fake.vtcs.end() || current() == nullptr)
            return 0;
        fake.m_linkedVtcs[fake.currentDocument] = path;
        fake.m_vtc = vtc->second;
        fake.m_hasProtocol = false;
        if (vtc->second.header.linkedProtocolCount != 0) {
            const auto protocol = fake.protocols.find(vtc->second.header.linkedProtocolFile);
            fake.m_hasProtocol = protocol != fake.protocols.end();
            if (fake.m_hasProtocol)
                fake.m_loadedProtocol = protocol->second;
        }
        return 1;
    }

    static int zqGetHeaderOfVTCOfCurrentVMR(VTCHeader *header)
    {
        const Fate fate = noted("zqGetHeaderOfVTCOfCurrentVMR");
        if (failed(fate, header))
            return result(fate);
        const Vtc *vtc = host().linkedVtc();
        if (vtc == nullptr)
            return 0;
        *header = lied(vtc->header, host().lies.vtcHeader);
        return 1;
    }

    static float *zqGetVTCFloatDataOfCurrentVMR()
    {
        const Fate fate = noted("zqGetVTCFloatDataOfCurrentVMR");
        FakeHost &fake = host();
        if (fate != Fate::Works || fake.linkedVtc() == nullptr || fake.m_vtc.floats.empty())
            return nullptr;
        return fake.m_vtc.floats.data();
    }

    static short *zqGetVTCIntDataOfCurrentVMR()
    {
        const Fate fate = noted("zqGetVTCIntDataOfCurrentVMR");
        FakeHost &fake = host();
        if (fate != Fate::Works || fake.linkedVtc() == nullptr || fake.m_vtc.integers.empty())
            return nullptr;
        return fake.m_vtc.integers.data();
    }

    static int zqLoadProtocol(const char *path)
    {
        const Fate fate = noted("zqLoadProtocol", path);
        FakeHost &fake = host();
        if (fate != Fate::Works)
            return result(fate);
        const auto protocol = fake.protocols.find(path);
        if (protocol == fake.protocols.end())
            return 0;
        fake.m_loadedProtocol = protocol->second;
        fake.m_hasProtocol = true;
        return 1;
    }

    static int zqGetProtocol(ProtocolHeader *header)
    {
        const Fate fate = noted("zqGetProtocol");
        if (failed(fate, header))
            return result(fate);
        const FakeHost &fake = host();
        if (!fake.m_hasProtocol)
            return 0;
        header->conditionCount = static_cast<int>(fake.m_loadedProtocol.conditions.size());
        header->timeUnit = fake.m_loadedProtocol.timeUnit;
        copyText(header->name, fake.m_loadedProtocol.name);
        *header = lied(*header, fake.lies.protocolHeader);
        return 1;
    }

    static void zqGetProtocolCondition(int index, ConditionRecord *record)
    {
        if (failed(noted("zqGetProtocolCondition", std::to_string(index)), record))
            return;
        FakeHost &fake = host();
        const std::vector<Condition> &conditions = fake.m_loadedProtocol.conditions;
        const auto position = static_cast<std::size_t>(index);
        if (!fake.m_hasProtocol || index < 0 || position >= conditions.size())
            return;
        const Condition &condition = conditions[position];
        // No more memory than there are intervals, so that a sanitizer sees who reads beyond.
        fake.m_from = std::vector<int>();
        fake.m_to = std::vector<int>();
        fake.m_from.reserve(condition.intervals.size());
        fake.m_to.reserve(condition.intervals.size());
        for (const auto &[from, to] : condition.intervals) {
            fake.m_from.push_back(from);
            fake.m_to.push_back(to);
        }
        copyText(record->name, condition.name);
        record->intervalCount = static_cast<int>(condition.intervals.size());
        record->from = fake.m_from.data();
        record->to = fake.m_to.data();
        *record = lied(*record, fake.lies.conditionRecord);
    }

    static int zqLoadVOIs(const char *path)
    {
        const Fate fate = noted("zqLoadVOIs", path);
        FakeHost &fake = host();
        if (fate != Fate::Works)
            return result(fate);
        const auto set = fake.voiSets.find(path);
        if (set == fake.voiSets.end())
            return 0;
        fake.m_loadedVois = path;
        fake.m_voiSet = set->second;
        fake.m_voxels.clear();
        for (const Voi &voi : fake.m_voiSet.vois) {
            std::vector<int> voxels;
            // No more memory than that, as above, but for an empty VOI, which has an address too.
            voxels.reserve(std::max<std::size_t>(1, 3 * voi.voxels.size()));
            for (const std::array<int, 3> &triple : voi.voxels)
                voxels.insert(voxels.end(), triple.begin(), triple.end());
            fake.m_voxels.push_back(std::move(voxels));
        }
        return 1;
    }

    static int zqGetVOIs(VOIsHeader *header)
    {
        const Fate fate = noted("zqGetVOIs");
        if (failed(fate, header))
            return result(fate);
        const FakeHost &fake = host();
        if (fake.m_loadedVois.empty())
            return 0;
        header->voiCount = static_cast<int>(fake.m_voiSet.vois.size());
        header->referenceSpace = fake.m_voiSet.referenceSpace;
        header->resolutionX = fake.m_voiSet.resolution[0];
        header->resolutionY = fake.m_voiSet.resolution[1];
        header->resolutionZ = fake.m_voiSet.resolution[2];
        *header = lied(*header, fake.lies.voisHeader);
        return 1;
    }

    static int *zqGetVOI(int index, VOIRecord *record)
    {
        const Fate fate = noted("zqGetVOI", std::to_string(index));
        FakeHost &fake = host();
        if (fate == Fate::ZeroedRecord) {
            static int nothing[3] = {};
            *record = VOIRecord{};
            return nothing;
        }
        const auto position = static_cast<std::size_t>(index);
        if (fate == Fate::Zero || index < 0 || position >= fake.m_voiSet.vois.size() ||
            !fake.m_voiSet.vois[position].given)
            return nullptr;
        const Voi &voi = fake.m_voiSet.vois[position];
        record->voxelCount = static_cast<int>(voi.voxels.size());
        copyText(record->name, voi.name);
        *record = lied(*record, fake.lies.voiRecord);
        return fake.m_voxels[position].data();
    }
};

FakeHost::FakeHost()
{
    if (installed != nullptr)
        throw std::logic_error("a fake host is installed already");
    installed = this;
    HostFunctionTable &table = hostFunctions();
    tableBefore = table;
    table = HostFunctionTable{};
#define HOST_CALL(result, name, arguments) table.name = &Calls::name;
#define HOST_NAME(name)
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
}

FakeHost::~FakeHost()
{
    hostFunctions() = tableBefore;
    installed = nullptr;
}

int FakeHost::addVmr(const std::string &path)
{
    Document document;
    document.path = path;
    documents.push_back(document);
    return static_cast<int>(documents.size()) - 1;
}

void FakeHost::unload()
{
    m_linkedVtcs.clear();
    m_loadedVois.clear();
    m_hasProtocol = false;
}

void FakeHost::fail(const std::string &function, Failure failure, int nthCall)
{
    const std::vector<std::string> &names = functionNames();
    if (std::find(names.begin(), names.end(), function) == names.end())
        throw std::invalid_argument("no such host function: " + function);
    m_faults[function] = Fault{failure, nthCall};
}

void FakeHost::work()
{
    m_faults.clear();
}

int FakeHost::count(const std::string &function) const
{
    const auto found = m_counts.find(function);
    return found == m_counts.end() ? 0 : found->second;
}

void FakeHost::forgetCalls()
{
    calls.clear();
    log.clear();
    messages.clear();
    m_counts.clear();
    logPaneShown = 0;
}

const std::vector<std::string> &FakeHost::functionNames()
{
    static const std::vector<std::string> names = {
#define HOST_CALL(result, name, arguments) #name,
#define HOST_NAME(name)
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
    };
    return names;
}

const Vtc *FakeHost::linkedVtc() const
{
    // The samples of one VTC are in memory, the one linked last.
    return m_linkedVtcs.count(currentDocument) != 0 ? &m_vtc : nullptr;
}

} // namespace fake_host
