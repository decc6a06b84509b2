// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/host/support/host_files.h"
#include "tests/host/support/program.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <random>

namespace corvane
{

/// A dataset for the command "compute": four VOIs of which the last is empty, a run of 6 x 5 x 4
/// samples, and a protocol with three conditions, one of them an event, and one name that is no
/// file name.
class ComputeCommand : public testing::Test
{
protected:
    static constexpr int volumes = 40;

    void SetUp() override
    {
        writeVmr(folder.path("a.vmr"), zeroVmr());
        writePrtFile(folder.path("task.prt"), protocol());
        putBytes(folder.path("run.vtc"), runFile(QString()));
        putBytes(folder.path("linked.vtc"), runFile(QStringLiteral("task.prt")));
        writeVoiFile(folder.path("set.voi"), vois());
    }

    static Prt protocol()
    {
        Prt prt;
        prt.name = QStringLiteral("task");
        prt.conditions = {{QStringLiteral("left/right"), {{1, 10}, {21, 30}}},
                          {QStringLiteral("rest, eyes \"open\""), {{11, 20}}},
                          {QStringLiteral("cue"), {{35, 35}}}};
        return prt;
    }

    static VtcInfo info()
    {
        VtcInfo info;
        info.xStart = 60;
        info.xEnd = 60 + 3 * 6;
        info.yStart = 70;
        info.yEnd = 70 + 3 * 5;
        info.zStart = 80;
        info.zEnd = 80 + 3 * 4;
        info.resolution = 3;
        info.nrOfVolumes = volumes;
        info.repetitionTime = 2;
        return info;
    }

    /// Sample of volume t at lattice point (i, j, k): a random walk shared by neighbours on the
    /// first axis, and noise.
    static std::vector<short> samples()
    {
        const VtcInfo vtc = info();
        std::vector<short> all(static_cast<std::size_t>(vtc.sampleCount()));
        std::mt19937 random(1);
        std::vector<int> shared(volumes);
        for (int &value : shared)
            value = static_cast<int>(random() % 200);
        for (std::size_t n = 0; n < all.size(); ++n)
            all[n] =
                static_cast<short>(1000 + shared[n % volumes] + static_cast<int>(random() % 300));
        return all;
    }

    static QByteArray runFile(const QString &linkedProtocol)
    {
        VtcInfo vtc = info();
        vtc.linkedProtocol = linkedProtocol;
        return vtcBytes(vtc, samples());
    }

    static VoiSet vois()
    {
        VoiSet set;
        set.vois = {
            {QStringLiteral("V, one"), 1, 1, 1, {{{60, 70, 80}}, {{63, 70, 80}}}},
            {QStringLiteral("two"), 2, 2, 2, {{{75, 82, 89}}}},
            {QStringLiteral("three"), 3, 3, 3, {{{66, 73, 83}}, {{69, 73, 83}}, {{66, 76, 86}}}},
            {QStringLiteral("none"), 4, 4, 4, {}}};
        return set;
    }

    /// The node matrix of those VOIs, in double precision.
    static Eigen::MatrixXd nodes(const std::vector<int> &seeds)
    {
        const VtcInfo vtc = info();
        const std::vector<short> all = samples();
        const VoiSet set = vois();
        Eigen::MatrixXd result =
            Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(seeds.size()), volumes);
        for (std::size_t n = 0; n < seeds.size(); ++n) {
            const Voi &voi = set.vois[static_cast<std::size_t>(seeds[n])];
            for (const std::array<int, 3> &voxel : voi.voxels) {
                const int i = (voxel[0] - vtc.xStart) / 3;
                const int j = (voxel[1] - vtc.yStart) / 3;
                const int k = (voxel[2] - vtc.zStart) / 3;
                for (int t = 0; t < volumes; ++t) {
                    const int at = t + volumes * (i + vtc.dimX() * (j + vtc.dimY() * k));
                    result(static_cast<Eigen::Index>(n), t) +=
                        double(all[static_cast<std::size_t>(at)]) / double(voi.voxels.size());
                }
            }
        }
        return result;
    }

    QStringList arguments(const QStringList &more = {}, const char *vtc = "run.vtc") const
    {
        return QStringList{QStringLiteral("compute"), QStringLiteral("--anatomy"),
                           folder.path("a.vmr"),      QStringLiteral("--vtc"),
                           folder.path(vtc),          QStringLiteral("--voi"),
                           folder.path("set.voi"),    QStringLiteral("--out"),
                           folder.path("out")} +
               more;
    }

    QJsonObject summary() const
    {
        return QJsonDocument::fromJson(bytesOf(folder.path("out/summary.json"))).object();
    }

    Eigen::MatrixXf table(const char *name) const
    {
        return readTable(folder.path("out/") + QString::fromUtf8(name));
    }

    QStringList outputs() const { return namesIn(folder.path("out")); }

    TemporaryFolder folder;
};

} // namespace corvane
