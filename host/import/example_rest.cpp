// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/example_rest.h"

#include "host/import/example_confounds.h"
#include "host/import/example_head.h"
#include "host/import/example_signals.h"
#include "signals/drift.h"
#include "signals/dvars.h"
#include "signals/motion.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

using namespace example;
using Eigen::MatrixXd;
using Eigen::VectorXd;

const Grid restGrid{{30, 36, 30}, 6, {-87, -123, -69}};

/// Volumes in which the head jerks, some of them in a row.
constexpr int jerks[] = {23, 24, 57, 88, 89, 90, 120, 151, 152, 178};
/// Brightness of the first volumes, before the magnetisation is steady.
constexpr double beginnings[] = {1.12, 1.04};
/// mm by which a rad turns the border of the head.
constexpr double headRadius = 50;

// ---- what is not from the brain's networks

enum Source {
    DriftSource,
    FirstMotion,
    Jerk = FirstMotion + 6,
    Wave,
    FluidSource,
    WhiteSource,
    sourceCount
};

struct Artefacts {
    MatrixXd motion;  ///< volumes x 6: mm, then rad
    MatrixXd sources; ///< volumes x sourceCount
};

VectorXd column(const Series &series)
{
    return Eigen::Map<const VectorXd>(series.data(), Eigen::Index(series.size()));
}

/// A slow walk with jerks, in mm; rotations are told in rad.
MatrixXd motionParameters(Random &random)
{
    MatrixXd motion(volumeCount, 6);
    for (int parameter = 0; parameter < 6; ++parameter) {
        motion.col(parameter) = 0.25 * column(persistentSeries(random, 0.98));
        for (const int jerk : jerks)
            motion(jerk, parameter) += 0.3 * random.normal();
    }
    motion.rightCols(3) /= headRadius;
    return motion;
}

Artefacts artefacts()
{
    Random random(6);
    Artefacts made;
    made.motion = motionParameters(random);
    made.sources.resize(volumeCount, sourceCount);
    for (int t = 0; t < volumeCount; ++t) {
        const double place = 2.0 * t / (volumeCount - 1) - 1;
        made.sources(t, DriftSource) = 20 * place + 15 * place * place - 12 * place * place * place;
    }
    made.sources.middleCols(FirstMotion, 6) = made.motion;
    made.sources.middleCols(FirstMotion + 3, 3) *= headRadius;
    made.sources.col(Jerk).setZero();
    const Eigen::ArrayXd displacement = signals::framewise_displacement(made.motion);
    for (const int jerk : jerks)
        made.sources(jerk, Jerk) = displacement[jerk];
    made.sources.col(Wave) = column(persistentSeries(random, 0.8));
    made.sources.col(FluidSource) = column(persistentSeries(random, 0.5));
    made.sources.col(WhiteSource) = column(persistentSeries(random, 0.5));
    return made;
}

/// How much of each source a voxel has.
using Weights = std::array<float, sourceCount>;

Weights weightsAt(double x, double y, double z, Tissue tissue)
{
    Weights weights{};
    if (tissue < Fluid)
        return weights;
    const double a = x / 70;
    const double b = (y + 18) / 90;
    const double c = (z - 14) / 70;
    const double motion[6] = {90 * a, 90 * b, 90 * c, 90 * b * c, 90 * a * c, 90 * a * b};
    weights[DriftSource] = float(0.8 + 0.5 * a);
    std::transform(std::begin(motion), std::end(motion), weights.begin() + FirstMotion,
                   [](double weight) { return float(weight); });
    weights[Jerk] = float(-60 * (1 + 0.5 * c));
    weights[Wave] = float(9 + 2 * c);
    const double toVentricles = squaredRadius(std::abs(x), y, z, {10, -14, 16}, {40, 60, 40});
    weights[FluidSource] = float(tissue == Fluid ? 30 : 12 / (1 + toVentricles));
    weights[WhiteSource] = float(tissue == White ? 14 : tissue == Grey ? 8 + 4 * b : 0);
    return weights;
}

// ---- the run

struct Voxel {
    float level;
    quint8 region;
    Tissue tissue;
    Weights weights;
};

std::vector<Voxel> voxels()
{
    const std::array<float, 6> level{20, 180, 60, 1100, 900, 800};
    std::vector<Voxel> all;
    all.reserve(std::size_t(restGrid.voxelCount()));
    forEachVoxel(restGrid, [&](double x, double y, double z) {
        const quint8 region = labelAt(x, y, z);
        const Tissue tissue = region > 0 ? Grey : tissueAt(x, y, z);
        all.push_back({level[tissue], region, tissue, weightsAt(x, y, z, tissue)});
    });
    return all;
}

/// Samples of all voxels in all volumes, time fastest.
std::vector<std::vector<qint16>> samplesOf(const std::vector<Voxel> &all, const MatrixXd &sources)
{
    const std::array<Series, regionCount> series = restSeries();
    std::vector<std::vector<qint16>> volumes;
    for (int t = 0; t < volumeCount; ++t) {
        Random random(3000 + quint64(t));
        const float beginning = float(std::size_t(t) < std::size(beginnings) ? beginnings[t] : 1);
        std::vector<qint16> volume;
        volume.reserve(all.size());
        for (const Voxel &voxel : all) {
            float value = voxel.level * (voxel.tissue < Fluid ? 1 : beginning);
            if (voxel.region > 0)
                value += float(series[std::size_t(voxel.region - 1)][std::size_t(t)]);
            for (int source = 0; source < sourceCount; ++source)
                value += voxel.weights[std::size_t(source)] * float(sources(t, source));
            value += float(12 * random.normal());
            volume.push_back(qint16(std::lround(std::max(value, 0.0f))));
        }
        volumes.push_back(std::move(volume));
    }
    return volumes;
}

void writeRun(const QString &path, const std::vector<std::vector<qint16>> &volumes)
{
    GzipFile file(path);
    writeHeader(file, restGrid, volumeCount, Shorts);
    for (const std::vector<qint16> &volume : volumes)
        file.write(volume.data(), qint64(volume.size()) * qint64(sizeof(qint16)));
    file.commit();
}

void writeMask(const QString &path, const std::vector<Voxel> &all)
{
    std::vector<quint8> mask;
    for (const Voxel &voxel : all)
        mask.push_back(voxel.tissue >= Fluid ? 1 : 0);
    GzipFile file(path);
    writeHeader(file, restGrid, 1, Bytes);
    file.write(mask.data(), qint64(mask.size()));
    file.commit();
}

// ---- the table of confounds

/// Series of the voxels that are chosen: volumes x voxels.
template <typename Choose>
MatrixXd seriesOf(const std::vector<Voxel> &all, const std::vector<std::vector<qint16>> &volumes,
                  Choose choose)
{
    std::vector<std::size_t> chosen;
    for (std::size_t v = 0; v < all.size(); ++v)
        if (choose(all[v].tissue))
            chosen.push_back(v);
    MatrixXd series(volumeCount, Eigen::Index(chosen.size()));
    for (std::size_t n = 0; n < chosen.size(); ++n)
        for (int t = 0; t < volumeCount; ++t)
            series(t, Eigen::Index(n)) = volumes[std::size_t(t)][chosen[n]];
    return series;
}

class Components
{
public:
    void add(ConfoundsText &table, const char *stem, const char *mask, const MatrixXd &components)
    {
        for (Eigen::Index n = 0; n < components.cols(); ++n) {
            const QByteArray name = numbered(stem, n);
            table.add(name, components.col(n));
            m_facts.insert(QString::fromLatin1(name),
                           QJsonObject{{QStringLiteral("Method"), QStringLiteral("aCompCor")},
                                       {QStringLiteral("Mask"), QString::fromLatin1(mask)},
                                       {QStringLiteral("Retained"), true}});
        }
    }
    QByteArray json() const { return QJsonDocument(m_facts).toJson(); }

private:
    QJsonObject m_facts;
};

void writeConfounds(const OutputFolder &folder, const std::vector<Voxel> &all,
                    const std::vector<std::vector<qint16>> &volumes, const MatrixXd &motion)
{
    const MatrixXd fluid = seriesOf(all, volumes, [](Tissue tissue) { return tissue == Fluid; });
    const MatrixXd white = seriesOf(all, volumes, [](Tissue tissue) { return tissue == White; });
    const MatrixXd brain = seriesOf(all, volumes, [](Tissue tissue) { return tissue >= Fluid; });
    const MatrixXd cosines = signals::cosines(
        volumeCount, signals::cosines_below(volumeCount, repetitionTime, 1.0 / 128));

    ConfoundsText table(10);
    table.addExpanded("global_signal", brain.rowwise().mean());
    table.addExpanded("csf", fluid.rowwise().mean());
    table.addExpanded("white_matter", white.rowwise().mean());
    table.add("std_dvars", signals::dvars(brain).standardised);
    table.add("framewise_displacement", signals::framewise_displacement(motion));
    Components components;
    MatrixXd both(volumeCount, fluid.cols() + white.cols());
    both << fluid, white;
    components.add(table, "a_comp_cor_", "combined", mainComponents(both, cosines, 5).series);
    components.add(table, "c_comp_cor_", "CSF", mainComponents(fluid, cosines, 5).series);
    components.add(table, "w_comp_cor_", "WM", mainComponents(white, cosines, 5).series);
    for (Eigen::Index k = 0; k < cosines.cols(); ++k)
        table.add(numbered("cosine", k), cosines.col(k));
    for (std::size_t volume = 0; volume < std::size(beginnings); ++volume)
        table.add(numbered("non_steady_state_outlier", Eigen::Index(volume)),
                  VectorXd::Unit(volumeCount, Eigen::Index(volume)));
    const char *const names[] = {"trans_x", "trans_y", "trans_z", "rot_x", "rot_y", "rot_z"};
    for (int parameter = 0; parameter < 6; ++parameter)
        table.addExpanded(names[parameter], motion.col(parameter));
    writeFile(folder.path(QLatin1String(restfiles::confounds)), table.text());
    writeFile(folder.path(QLatin1String(restfiles::components)), components.json());
}

} // namespace

void writeRestingRun(const OutputFolder &folder)
{
    const Artefacts made = artefacts();
    const std::vector<Voxel> all = voxels();
    const std::vector<std::vector<qint16>> volumes = samplesOf(all, made.sources);
    writeRun(folder.path(QLatin1String(restfiles::run)), volumes);
    writeMask(folder.path(QLatin1String(restfiles::mask)), all);
    writeConfounds(folder, all, volumes, made.motion);
}

} // namespace corvane
