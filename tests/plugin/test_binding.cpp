// SPDX-License-Identifier: GPL-3.0-or-later
//
// The binding of the host's functions, with modules of our own in place of the operating system's.
#include "plugin/host_functions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace
{

/// Every name of the host in the order of the list.
const std::vector<std::string> names = {
#define HOST_CALL(result, name, arguments) #name,
#define HOST_NAME(name) #name,
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
};

/// The names of the host as its plugins know them: neither a name nor its place may ever change.
const std::vector<std::string> contract = {
    // clang-format off
    // General
    "zqGetVersionOfCorvaneZQ",
    "zqGetCorvaneZQPath",
    "zqGetPluginsPath",
    "zqShowLogPane",
    "zqShowLogTab",
    "zqLogText",
    "zqMessageBox",
    "zqYesNoMessageBox",
    "zqGetIntegerInput",
    "zqGetFloatInput",
    "zqGetTextInput",
    "zqGetOpenFileName",
    "zqGetSaveFileName",
    "zqUpdateActiveWindow",
    "zqShowBusyCursor",
    "zqStopBusyCursor",
    // Documents
    "zqGetNumberOfDocsInWorkspace",
    "zqGetDocumentType",
    "zqGetDocumentTypeName",
    "zqGetIDOfCurrentDocument",
    "zqSetAsCurrentDocument",
    // Transformation
    "zqCalculateIAMatrix",
    "zqGetTRFParametersFromVolumeToolsDlg",
    // FMR
    "zqGetHeaderOfCurrentFMR",
    "zqSetHeaderOfCurrentFMR",
    "zqGetSTCFloatDataOfCurrentFMR",
    "zqGetSTCIntDataOfCurrentFMR",
    "zqGetSTCDataOfCurrentFMR",
    "zqSaveFMR",
    "zqSaveFMRAndSTC",
    "zqGetScannerPositionHeaderOfCurrentFMR",
    "zqSetScannerPositionHeaderOfCurrentFMR",
    // DMR
    "zqGetHeaderOfCurrentDMR",
    "zqSetHeaderOfCurrentDMR",
    "zqGetDWIFloatDataOfCurrentDMR",
    "zqGetDWIIntDataOfCurrentDMR",
    "zqGetDWIDataOfCurrentDMR",
    "zqConvertDWIFormatOfCurrentDMR",
    "zqSaveDMR",
    "zqSaveDMRAndDWI",
    // VMR
    "zqGetCurrentVMR",
    "zqGetMainHeaderOfCurrentVMR",
    "zqSetMainHeaderOfCurrentVMR",
    "zqGetScannerPositionHeaderOfCurrentVMR",
    "zqSetScannerPositionHeaderOfCurrentVMR",
    "zqGetPastTransformationsHeaderOfCurrentVMR",
    "zqSetPastTransformationsHeaderOfCurrentVMR",
    "zqReframeCurrentVMR",
    "zqGetCrossPositionOfCurrentVMR",
    // NR-VMP
    "zqGetNRVMPsOfCurrentVMR",
    "zqGetNRVMPOfCurrentVMR",
    "zqSetNRVMPParametersOfCurrentVMR",
    "zqLoadNRVMPsToCurrentVMR",
    "zqSaveNRVMPsOfCurrentVMR",
    "zqCreateNRVMPsForCurrentVMR",
    "zqDeleteNRVMPsOfCurrentVMR",
    "zqSetNRVMPsParamsDisplayRange",
    // AR-VMP
    "zqGetARVMPsOfCurrentVMR",
    "zqGetARVMPOfCurrentVMR",
    "zqSetARVMPParametersOfCurrentVMR",
    "zqLoadARVMPsToCurrentVMR",
    "zqSaveARVMPsOfCurrentVMR",
    "zqCreateARVMPsForCurrentVMR",
    "zqDeleteARVMPsOfCurrentVMR",
    // VTC
    "zqLinkVTCToCurrentVMR",
    "zqCreateVTCForCurrentVMR",
    "zqGetHeaderOfVTCOfCurrentVMR",
    "zqSetHeaderOfVTCOfCurrentVMR",
    "zqGetVTCOfCurrentVMR",
    "zqGetVTCFloatDataOfCurrentVMR",
    "zqGetVTCIntDataOfCurrentVMR",
    "zqSetVTCParametersOfCurrentVMR",
    "zqSaveVTCOfCurrentVMR",
    "zqClearMultiVTCAnalysis",
    "zqAddVTCRefForMultiVTCAnalysis",
    "zqGetVoxelTimeCourseOfVTC",
    "zqGetVoxelTimeCourseOfVTCs",
    "zqGetVoxelCoordsTimeCourseOfVTC",
    "zqGetVoxelCoordsTimeCourseOfVTCs",
    // GLM, mask, scene
    "zqGetGLMOfCurrentVMR",
    "zqLoadMaskToCurrentVMR",
    "zqGetMaskOfCurrentVMR",
    "zqGetScene",
    // SRF
    "zqGetCurrentSRF",
    "zqReleaseSRFAccess",
    "zqSaveCurrentSRF",
    "zqSetCurrentSRF",
    // MTC
    "zqLinkMTCToCurrentSRF",
    "zqGetMTCOfCurrentSRF",
    "zqSetMTCParametersOfCurrentSRF",
    "zqCreateMTCForCurrentSRF",
    "zqSaveMTCOfCurrentSRF",
    "zqClearMultiMTCRefsOfCurrentSRF",
    "zqAddMultiMTCRefToCurrentSRF",
    "zqGetVertexTimeCourseOfMTC",
    "zqGetVertexTimeCourseOfAllMTCs",
    // SMP
    "zqGetSMPsOfCurrentSRF",
    "zqGetSMPOfCurrentSRF",
    "zqSetSMPParametersOfCurrentSRF",
    "zqLoadSMPsToCurrentSRF",
    "zqSaveSMPsOfCurrentSRF",
    "zqCreateSMPForCurrentSRF",
    "zqDeleteSMPsOfCurrentSRF",
    "zqOverlaySMPsOnSRF",
    // SSM
    "zqGetSSMOfCurrentSRF",
    "zqLoadSSMToCurrentSRF",
    "zqSaveSSMOfCurrentSRF",
    "zqCreateSSMForCurrentSRF",
    "zqDeleteSSMOfCurrentSRF",
    // Protocol
    "zqClearProtocol",
    "zqLoadProtocol",
    "zqSaveProtocol",
    "zqGetProtocol",
    "zqSetProtocol",
    "zqGetProtocolCondition",
    "zqAddProtocolCondition",
    "zqAddProtocolConditionInterval",
    // Design matrix
    "zqClearDesignMatrix",
    "zqAddPredictor",
    "zqSetPredictorValuesFromCondition",
    "zqSetPredictorValuesFromConditionName",
    "zqApplyTwoGammaHRFToPredictor",
    "zqApplyTwoGammaHRFToPredictorWithName",
    "zqApplyBoyntonHRFToPredictor",
    "zqApplyBoyntonHRFToPredictorWithName",
    "zqGetPredictor",
    "zqGetPredictorByName",
    "zqLoadSingleStudyGLMDesignMatrix",
    "zqSaveSingleStudyGLMDesignMatrix",
    // VOI and POI
    "zqLoadVOIs",
    "zqSaveVOIs",
    "zqGetVOIs",
    "zqGetVOI",
    "zqLoadPOIs",
    "zqSavePOIs",
    "zqGetPOIs",
    "zqGetPOI",
    // Parameters
    "zqGetStringParameter",
    "zqGetIntParameter",
    "zqGetFloatParameter",
    "zqSetStringParameter",
    "zqSetIntParameter",
    "zqSetFloatParameter",
    // Dialog parameters
    "zqGetDlgStringParameter",
    "zqGetDlgIntegerParameter",
    "zqGetDlgFloatParameter",
    "zqSetDlgStringOutputParameter",
    "zqSetDlgIntegerOutputParameter",
    "zqSetDlgFloatOutputParameter",
    // ICA
    "zqLaunchICADialog",
    // clang-format on
};

/// The module that the process has, and what was looked up in it.
struct Module {
    bool loaded = true;
    std::set<std::string> missing;
    std::vector<std::string> lookups;
};

Module module;

/// An address of its own for each name, which nobody calls.
HostAddress addressOf(const std::string &name)
{
    const auto place = std::find(names.begin(), names.end(), name) - names.begin();
    return reinterpret_cast<HostAddress>(static_cast<std::uintptr_t>(16 * (place + 1)));
}

/// What the table holds, by name.
std::vector<HostAddress> entries()
{
    const HostFunctionTable &table = hostFunctions();
    return {
#define HOST_CALL(result, name, arguments) reinterpret_cast<HostAddress>(table.name),
#define HOST_NAME(name) table.name,
#include "plugin/host_function_names.inc"
#undef HOST_CALL
#undef HOST_NAME
    };
}

std::vector<HostAddress> addresses()
{
    std::vector<HostAddress> all;
    for (const std::string &name : names)
        all.push_back(addressOf(name));
    return all;
}

class Binding : public testing::Test
{
protected:
    Binding()
    {
        module = Module();
        hostFunctions() = HostFunctionTable();
    }
};

} // namespace

// In place of host_module_posix.cpp and its like.

HostModule hostModule()
{
    return module.loaded ? &module : nullptr;
}

HostAddress hostSymbol(HostModule from, const char *name)
{
    EXPECT_EQ(from, &module);
    module.lookups.emplace_back(name);
    return module.missing.count(name) == 0 ? addressOf(name) : nullptr;
}

namespace
{

TEST_F(Binding, KnowsEveryNameOfTheHostInItsOrder)
{
    EXPECT_EQ(names, contract);
    EXPECT_EQ(names.size(), 150u);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

TEST_F(Binding, LooksUpEachNameOnceInTheOrderOfTheList)
{
    EXPECT_TRUE(bindHostFunctions());
    EXPECT_EQ(module.lookups, names);
    EXPECT_EQ(entries(), addresses());
}

TEST_F(Binding, WithoutTheModuleLooksUpNothing)
{
    module.loaded = false;
    EXPECT_FALSE(bindHostFunctions());
    EXPECT_THAT(module.lookups, testing::IsEmpty());
    EXPECT_THAT(entries(), testing::Each(nullptr));
}

TEST_F(Binding, WithoutTheVersionLooksUpNothingElse)
{
    bindHostFunctions();
    module.lookups.clear();
    module.missing = {"zqGetVersionOfCorvaneZQ"};
    EXPECT_FALSE(bindHostFunctions());
    EXPECT_THAT(module.lookups, testing::ElementsAre("zqGetVersionOfCorvaneZQ"));
    std::vector<HostAddress> expected = addresses();
    expected.front() = nullptr;
    EXPECT_EQ(entries(), expected) << "the other entries are as they were";
}

TEST_F(Binding, TakesAnyOtherNameThatIsMissingForNull)
{
    // One after the other, each bound anew over the table of the one before.
    for (std::size_t n = 1; n < names.size(); ++n) {
        module.missing = {names[n]};
        EXPECT_TRUE(bindHostFunctions()) << names[n];
        std::vector<HostAddress> expected = addresses();
        expected[n] = nullptr;
        EXPECT_EQ(entries(), expected) << names[n];
    }
}

} // namespace
