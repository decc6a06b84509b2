// SPDX-License-Identifier: GPL-3.0-or-later
// A plugin without windows: it writes the mean signal of each loaded volume of interest into the
// host's log.
#include "plugin/export.h"
#include "plugin/host_functions.h"
#include "plugin/plugin_interface.h"

#include <cmath>
#include <cstddef>
#include <optional>
#include <string>

namespace
{

void say(const std::string &text)
{
    hostFunctions().zqLogText(text.c_str());
}

/// The functional run that is linked to the current anatomy. Its samples are the host's: they are
/// used within one call of the plugin and never kept.
class Run
{
public:
    /// False when no run is linked.
    bool read()
    {
        const HostFunctionTable &host = hostFunctions();
        if (host.zqGetHeaderOfVTCOfCurrentVMR(&m_header) == 0)
            return false;
        m_shorts = m_header.dataType == 1 ? host.zqGetVTCIntDataOfCurrentVMR() : nullptr;
        m_floats = m_header.dataType == 1 ? nullptr : host.zqGetVTCFloatDataOfCurrentVMR();
        return m_shorts != nullptr || m_floats != nullptr;
    }

    /// The mean over all volumes at a voxel of the anatomy; nothing outside the run's box.
    std::optional<double> meanAt(const int *voxel) const
    {
        const int i = index(voxel[0], m_header.xStart);
        const int j = index(voxel[1], m_header.yStart);
        const int k = index(voxel[2], m_header.zStart);
        const int sizeX = (m_header.xEnd - m_header.xStart) / m_header.resolution;
        const int sizeY = (m_header.yEnd - m_header.yStart) / m_header.resolution;
        const int sizeZ = (m_header.zEnd - m_header.zStart) / m_header.resolution;
        if (i < 0 || i >= sizeX || j < 0 || j >= sizeY || k < 0 || k >= sizeZ)
            return std::nullopt;
        // The samples of one place stand together, time first.
        const auto volumes = static_cast<std::size_t>(m_header.nrOfVolumes);
        const std::size_t first = volumes * static_cast<std::size_t>(i + sizeX * (j + sizeY * k));
        double sum = 0;
        for (std::size_t n = first; n < first + volumes; ++n)
            sum += m_shorts != nullptr ? m_shorts[n] : static_cast<double>(m_floats[n]);
        return sum / static_cast<double>(volumes);
    }

private:
    int index(int place, int start) const
    {
        const double steps = static_cast<double>(place - start) / m_header.resolution;
        return static_cast<int>(std::floor(steps + 0.5));
    }

    VTCHeader m_header;
    const short *m_shorts = nullptr;
    const float *m_floats = nullptr;
};

class VoiMeans : public CVZQPluginInterface
{
public:
    /// Whether the plugin can work with this host. Without a word of its own a refusal is a riddle.
    bool initPlugin() override
    {
        if (!bindHostFunctions())
            return false;
        const HostFunctionTable &host = hostFunctions();
        int version[3] = {0, 0, 0};
        host.zqGetVersionOfCorvaneZQ(&version[0], &version[1], &version[2]);
        if (version[0] < 3) {
            host.zqMessageBox("VOI Means needs version 3 of the host or a later one.");
            return false;
        }
        return true;
    }

    /// What each choice in the Plugins menu does.
    bool execute() override
    {
        const HostFunctionTable &host = hostFunctions();
        Run run;
        VOIsHeader vois;
        if (!run.read() || host.zqGetVOIs(&vois) == 0) {
            host.zqMessageBox("Open an anatomy, a functional run and volumes of interest first.");
            return true;
        }
        if (vois.referenceSpace >= 3) {
            host.zqMessageBox("These volumes of interest are not in the voxels of the anatomy.");
            return true;
        }
        host.zqShowLogPane();
        for (int n = 0; n < vois.voiCount; ++n)
            sayMean(run, n);
        return true;
    }

private:
    static void sayMean(const Run &run, int number)
    {
        VOIRecord voi;
        const int *const voxels = hostFunctions().zqGetVOI(number, &voi);
        double sum = 0;
        int inside = 0;
        for (int n = 0; voxels != nullptr && n < voi.voxelCount; ++n) {
            if (const std::optional<double> mean = run.meanAt(voxels + 3 * n)) {
                sum += *mean;
                ++inside;
            }
        }
        say(voi.name + std::string(": ") +
            (inside > 0 ? std::to_string(sum / inside) : std::string("no voxel inside the run")));
    }
};

} // namespace

extern "C" {
TESSERA_EXPORT CVZQPluginInterface *createPlugin()
{
    return new VoiMeans;
}
TESSERA_EXPORT const char *getPluginName()
{
    return "VOI Means";
}
TESSERA_EXPORT const char *getPluginDescription()
{
    return "Writes the mean signal of each volume of interest into the log";
}
TESSERA_EXPORT const char *getAuthor()
{
    return "<i>A. Researcher</i>";
}
TESSERA_EXPORT const char *getGUIScript()
{
    return "";
}
TESSERA_EXPORT const char *getPluginVersion()
{
    return "1.0";
}
}
