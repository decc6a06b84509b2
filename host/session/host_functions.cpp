// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/session/host_functions.h"

#include "host/session/host_version.h"
#include "host/session/log.h"
#include "host/session/session.h"

#include <exception>
#include <type_traits>

using corvane::workspace;

namespace
{

/// Runs an action for a plugin, to which no exception may get: what goes wrong is logged, and the
/// plugin gets an empty result, which means failure.
template <typename Action>
auto guarded(Action action) noexcept -> decltype(action())
{
    using Result = decltype(action());
    try {
        return action();
    } catch (const std::exception &error) {
        try {
            corvane::logText(QString::fromUtf8(error.what()));
        } catch (...) {
            // Not even memory for the line: the failure alone has to do.
        }
    } catch (...) {
    }
    return Result();
}

template <typename Value>
void put(Value *target, Value value)
{
    if (target != nullptr)
        *target = value;
}

/// Fills a record, with zeros when there is nothing to tell. Returns 1 when there was.
template <typename Record>
int fill(Record *record, const Record *known)
{
    put(record, known != nullptr ? *known : Record{});
    return record != nullptr && known != nullptr ? 1 : 0;
}

/// The record at an index, null beyond the ends.
template <typename Record>
const Record *at(const std::vector<Record> &records, int index)
{
    const auto position = static_cast<std::size_t>(index);
    return index >= 0 && position < records.size() ? &records[position] : nullptr;
}

} // namespace

// General

void zqGetVersionOfCorvaneZQ(int *major, int *minor, int *third)
{
    put(major, corvane::hostVersion[0]);
    put(minor, corvane::hostVersion[1]);
    put(third, corvane::hostVersion[2]);
}

void zqShowLogPane()
{
    guarded([] {
        if (corvane::Session::current() != nullptr)
            corvane::Session::current()->showLogPane();
    });
}

void zqLogText(const char *text)
{
    guarded([text] { corvane::logText(QString::fromUtf8(text)); });
}

void zqMessageBox(const char *text)
{
    guarded([text] { corvane::showMessage(QString::fromUtf8(text)); });
}

// Documents

int zqGetNumberOfDocsInWorkspace()
{
    return workspace().documentCount();
}

int zqGetDocumentType(int position)
{
    return workspace().documentType(position);
}

const char *zqGetDocumentTypeName(int position)
{
    return workspace().documentType(position) == corvane::VmrDocument ? "VMR" : "closed";
}

int zqGetIDOfCurrentDocument()
{
    return workspace().currentDocument();
}

void zqSetAsCurrentDocument(int document)
{
    workspace().setCurrentDocument(document);
}

// VMR

void *zqGetCurrentVMR(int *dimX, int *dimY, int *dimZ)
{
    const corvane::Vmr *vmr = workspace().currentVmr();
    const int size = vmr != nullptr ? corvane::Vmr::size : 0;
    put(dimX, size);
    put(dimY, size);
    put(dimZ, size);
    return vmr != nullptr ? const_cast<void *>(vmr->voxels.get()) : nullptr;
}

void zqGetMainHeaderOfCurrentVMR(VMRHeader *header)
{
    fill(header, workspace().currentVmrHeader());
}

// VTC

int zqLinkVTCToCurrentVMR(const char *path, int /*load: a linked file is always mapped*/)
{
    return guarded([path] {
        workspace().linkVtc(QString::fromUtf8(path));
        return 1;
    });
}

int zqGetHeaderOfVTCOfCurrentVMR(VTCHeader *header)
{
    const corvane::LinkedVtc *vtc = workspace().linkedVtc();
    return fill(header, vtc != nullptr ? &vtc->header : nullptr);
}

float *zqGetVTCFloatDataOfCurrentVMR()
{
    const corvane::LinkedVtc *vtc = workspace().linkedVtc();
    return vtc != nullptr ? const_cast<float *>(vtc->file.floatSamples()) : nullptr;
}

short *zqGetVTCIntDataOfCurrentVMR()
{
    const corvane::LinkedVtc *vtc = workspace().linkedVtc();
    return vtc != nullptr ? const_cast<short *>(vtc->file.shortSamples()) : nullptr;
}

// Protocol

int zqLoadProtocol(const char *path)
{
    return guarded([path] {
        workspace().loadProtocol(QString::fromUtf8(path));
        return 1;
    });
}

int zqGetProtocol(ProtocolHeader *header)
{
    const corvane::LoadedProtocol *protocol = workspace().protocol();
    return fill(header, protocol != nullptr ? &protocol->header : nullptr);
}

void zqGetProtocolCondition(int index, ConditionRecord *condition)
{
    const corvane::LoadedProtocol *protocol = workspace().protocol();
    fill(condition, protocol != nullptr ? at(protocol->records, index) : nullptr);
}

// VOI

int zqLoadVOIs(const char *path)
{
    return guarded([path] {
        workspace().loadVois(QString::fromUtf8(path));
        return 1;
    });
}

int zqGetVOIs(VOIsHeader *header)
{
    const corvane::LoadedVois *vois = workspace().vois();
    return fill(header, vois != nullptr ? &vois->header : nullptr);
}

int *zqGetVOI(int index, VOIRecord *voi)
{
    const corvane::LoadedVois *vois = workspace().vois();
    const VOIRecord *known = vois != nullptr ? at(vois->records, index) : nullptr;
    fill(voi, known);
    return known != nullptr ? const_cast<int *>(vois->voxels(index)) : nullptr;
}

// Each has the very type with which plugins bind it.
// NOLINTBEGIN(bugprone-macro-parentheses): a type cannot stand in parentheses
namespace
{

#define HOST_CALL(result, name, arguments)                                                         \
    static_assert(std::is_same_v<decltype(&::name), result(*) arguments>);
#define HOST_NAME(name)
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME

} // namespace
// NOLINTEND(bugprone-macro-parentheses)
