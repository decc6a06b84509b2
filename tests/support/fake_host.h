// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/host_records.h"

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// @file
/// A host for tests: fills the function table with functions of its own, serves what a test has put
/// into it, fails where a test asks for it, and records what was asked of it. Plain C++, no Qt.
///
///     fake_host::FakeHost host;               // installs itself, one at a time
///     host.addVmr("/data/brain.vmr");
///     host.vtcs["/data/run.vtc"] = fake_host::makeVtc({{50, 53}, {60, 62}, {70, 71}}, 1, 20);
///     host.voiSets["/data/atlas.voi"].vois = {{"V1", {{50, 60, 70}}}, {"empty", {}}};
///     host.fail("zqGetVOIs", fake_host::Failure::Zero, 2);
///
/// Everything may be changed at any time, so that a file can vanish or become another one.

namespace fake_host
{

/// One VOI. Not `given`: the host returns null for it.
struct Voi {
    std::string name; ///< UTF-8, cut to the record's size
    std::vector<std::array<int, 3>> voxels;
    bool given = true;
};

/// A VOI file.
struct VoiSet {
    std::vector<Voi> vois;
    int referenceSpace = 0;
    std::array<float, 3> resolution = {1.0f, 1.0f, 1.0f};
};

/// One condition of a protocol: (from, to) pairs.
struct Condition {
    std::string name; ///< Latin-1
    std::vector<std::pair<int, int>> intervals;
};

/// A protocol file.
struct Protocol {
    std::string name; ///< Latin-1
    int timeUnit = 1;
    std::vector<Condition> conditions;
};

/// A VTC. Samples in one of the two arrays, time fastest, then the first, second and third axis.
struct Vtc {
    VTCHeader header{};
    std::vector<short> integers;
    std::vector<float> floats;

    void linkProtocol(const std::string &path); ///< names it in the header
};

/// Start and end of the box on each axis, in VMR voxels.
using Box = std::array<std::array<int, 2>, 3>;
/// Sample at VTC voxel (i, j, k) and volume t.
using SampleFunction = std::function<float(int i, int j, int k, int t)>;

/// A VTC of floats, or of integers for `dataType` 1, with a sample function that gives each voxel a
/// series of its own unless another is given.
Vtc makeVtc(const Box &box, int resolution, int volumes, int dataType = 2,
            const SampleFunction &sample = {});

/// A document of the workspace.
struct Document {
    std::string path; ///< UTF-8
    int type = 3;     ///< 3 is a VMR
    std::array<int, 3> dimensions = {256, 256, 256};
};

enum class Failure {
    Zero,        ///< returns 0 or null and leaves records and out-parameters alone
    ZeroedRecord ///< fills records and out-parameters with zeros and returns success
};

/// What the host writes over what it has told, whatever that was: for tests of a host that tells
/// nonsense. Each may be empty.
struct Lies {
    std::function<void(VTCHeader &)> vtcHeader;
    std::function<void(VOIsHeader &)> voisHeader;
    std::function<void(VOIRecord &)> voiRecord;
    std::function<void(ProtocolHeader &)> protocolHeader;
    std::function<void(ConditionRecord &)> conditionRecord;
    std::function<void(VMRHeader &)> vmrHeader;
    std::function<void(int &)> documentCount;
};

class FakeHost
{
public:
    FakeHost();  ///< fills the table of the process
    ~FakeHost(); ///< gives it back as it was
    FakeHost(const FakeHost &) = delete;
    FakeHost &operator=(const FakeHost &) = delete;

    // What the host holds. A document's id is its position.
    std::array<int, 3> version = {2, 8, 0};
    std::vector<Document> documents;
    int currentDocument = 0;
    std::map<std::string, Vtc> vtcs; ///< by path, as the others
    std::map<std::string, VoiSet> voiSets;
    std::map<std::string, Protocol> protocols;

    int addVmr(const std::string &path); ///< returns its id

    Lies lies;

    /// What happens while a message box is shown.
    std::function<void()> meanwhile;

    void unload(); ///< forgets what was linked and loaded

    // Failures. `nthCall` counts from now, from 1; 0 means each call.
    void fail(const std::string &function, Failure failure, int nthCall = 0);
    void work(); ///< takes all failures back

    // What was asked of the host.
    std::vector<std::string> calls; ///< "zqLinkVTCToCurrentVMR(/data/run.vtc, 1)", texts left out
    std::vector<std::string> log;
    std::vector<std::string> messages; ///< message boxes
    int logPaneShown = 0;

    int count(const std::string &function) const; ///< its calls so far
    void forgetCalls();                           ///< clears the four records above

    /// The 21 functions in use, in the order of binding.
    static const std::vector<std::string> &functionNames();

private:
    friend struct Calls;
    struct Fault {
        Failure failure;
        int callsToGo; ///< 0: each
    };

    std::map<std::string, Fault> m_faults;
    std::map<std::string, int> m_counts;
    const Vtc *linkedVtc() const;

    std::map<int, std::string> m_linkedVtcs; ///< by document
    std::string m_loadedVois;
    Protocol m_loadedProtocol;
    bool m_hasProtocol = false;
    // What the host hands out by pointer, as it stood at that moment: a file may change behind it.
    std::vector<std::vector<int>> m_voxels;
    std::vector<int> m_from;
    std::vector<int> m_to;
    VoiSet m_voiSet;
    Vtc m_vtc;
};

} // namespace fake_host
