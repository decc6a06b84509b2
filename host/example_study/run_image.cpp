// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/run_image.h"

#include "host/example_study/run_series.h"
#include "host/files/gzip_file.h"
#include "signals/motion.h"
#include "statistics/random.h"

#include <algorithm>
#include <cmath>

namespace corvane::example_study
{

namespace
{

using namespace example;
using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::MatrixXf;
using Eigen::VectorXf;

/// Standard deviation of a node's series, in units of the image.
constexpr float amplitude = 2;
/// That of the scanner's noise, in one voxel.
constexpr float noiseAmplitude = 1.2F;
/// Brightness of the first volumes, before the magnetisation is steady.
constexpr float beginnings[unsteadyVolumes] = {1.12F, 1.04F};
/// mm by which a rad turns the border of the head.
constexpr double headRadius = 50;

float levelOf(Tissue tissue)
{
    return tissue == Fluid ? 235 : tissue == Grey ? 200 : 180;
}

// ---- what is not from the brain's networks

enum Source {
    Drift,
    Position,                ///< six: what a voxel loses or gains where the head is
    Movement = Position + 6, ///< six: while the head moves
    Jerk = Movement + 6,     ///< all signal drops while the head moves fast
    Disorder,                ///< what motion does that no parameter tells, in patterns
    Wave = Disorder + 7,     ///< blood of the whole brain
    FluidSource,
    WhiteSource,
    sourceCount
};

/// Smooth patterns over the head, between -1 and 1.
std::array<double, 7> patternsAt(double x, double y, double z)
{
    const double a = x / 70;
    const double b = (y + 18) / 90;
    const double c = (z - 14) / 70;
    return {a, b, c, b * c, a * c, a * b, 1 - 2 * c * c};
}

Eigen::RowVectorXf weightsAt(double x, double y, double z, Tissue tissue)
{
    Eigen::RowVectorXf weights(int{sourceCount});
    const std::array<double, 7> patterns = patternsAt(x, y, z);
    weights[Drift] = float(2.5 + 1.5 * patterns[0] + patterns[2]);
    for (std::size_t n = 0; n < 6; ++n) {
        weights[Position + Index(n)] = float(8 * patterns[n]);
        weights[Movement + Index(n)] = float(3 * patterns[(n + 2) % 6]);
    }
    for (std::size_t n = 0; n < 7; ++n)
        weights[Disorder + Index(n)] = float(1.2 * patterns[n]);
    weights[Jerk] = float(-4.5 * (1 + 0.5 * patterns[2]));
    weights[Wave] = float(tissue == Grey ? 1.2 : 0.7);
    const double toVentricles = squaredRadius(std::abs(x), y, z, {10, -14, 16}, {40, 60, 40});
    weights[FluidSource] = float(tissue == Fluid ? 4 : 1.5 / (1 + toVentricles));
    weights[WhiteSource] = float(tissue == White ? 2 : tissue == Grey ? 0.7 : 0);
    return weights;
}

/// volumes x sources.
MatrixXd sourcesOf(const Run &run, const MatrixXd &motion)
{
    const auto series = [&run](Draw purpose, int part, double persistence) {
        return Draws(purpose, run.owner(), std::uint32_t(part))
            .persistentSeries(volumeCount, persistence);
    };
    MatrixXd sources(volumeCount, int(sourceCount));
    Draws draws(Draw::Nuisance, run.owner(), 99);
    const double bend = draws.normal();
    for (int t = 0; t < volumeCount; ++t) {
        const double place = 2.0 * t / (volumeCount - 1) - 1;
        sources(t, Drift) = place + bend * place * place;
    }
    sources.middleCols(Position, 6) = motion;
    sources.middleCols(Position + 3, 3) *= headRadius;
    sources.row(0).segment(Movement, 6).setZero();
    sources.middleCols(Movement, 6).bottomRows(volumeCount - 1) =
        sources.middleCols(Position, 6).bottomRows(volumeCount - 1) -
        sources.middleCols(Position, 6).topRows(volumeCount - 1);
    Eigen::ArrayXd displacement = signals::framewise_displacement(motion);
    displacement[0] = 0;
    sources.col(Jerk) = (displacement - 0.2).max(0).min(2);
    for (int pattern = 0; pattern < 7; ++pattern)
        sources.col(Disorder + pattern) =
            displacement * series(Draw::MotionNoise, pattern, 0).array();
    sources.col(Wave) = series(Draw::Nuisance, 0, 0.6);
    sources.col(FluidSource) = series(Draw::Nuisance, 1, 0.4);
    sources.col(WhiteSource) = series(Draw::Nuisance, 2, 0.5);
    return sources;
}

/// Nearly normal noise for four voxels: each the sum of four bytes.
std::array<float, 4> scannerNoise(const Owner &owner, int volume, Index voxel)
{
    const auto words = statistics::philox({std::uint32_t(voxel / 4), std::uint32_t(volume),
                                           owner.participant, owner.session * 16 + owner.task},
                                          {0x53545544, static_cast<std::uint32_t>(Draw::Scanner)});
    std::array<float, 4> noise{};
    for (std::size_t n = 0; n < 4; ++n) {
        const int sum = int((words[n] & 0xff) + (words[n] >> 8 & 0xff) + (words[n] >> 16 & 0xff) +
                            (words[n] >> 24));
        noise[n] = float(sum - 510) * (noiseAmplitude / 147.8F);
    }
    return noise;
}

/// A whole image of values of the brain's voxels.
template <typename Value, typename ValueOf>
void writeVolume(GzipFile &file, const Brain &brain, ValueOf valueOf)
{
    std::vector<Value> volume(std::size_t(studyGrid.voxelCount()), Value(0));
    for (std::size_t v = 0; v < brain.voxels.size(); ++v)
        volume[std::size_t(brain.voxels[v].place)] = valueOf(Index(v));
    file.write(volume.data(), qint64(volume.size()) * qint64(sizeof(Value)));
}

} // namespace

Brain makeBrain()
{
    Brain brain;
    struct Place {
        double x, y, z;
    };
    std::vector<Place> places;
    int place = 0;
    forEachVoxel(studyGrid, [&](double x, double y, double z) {
        const double radius = brainRadiusAt(x, y, z);
        if (radius <= 1) {
            const int label = nodeLabelAt(x, y, z);
            const Tissue tissue = label > 0 ? Grey : tissueAt(x, y, z);
            brain.voxels.push_back({place, tissue, label - 1, radius});
            places.push_back({x, y, z});
        }
        ++place;
    });
    brain.weights.resize(Index(places.size()), int(sourceCount));
    for (std::size_t v = 0; v < places.size(); ++v)
        brain.weights.row(Index(v)) =
            weightsAt(places[v].x, places[v].y, places[v].z, brain.voxels[v].tissue);
    return brain;
}

Samples samplesOf(const Run &run, const Brain &brain, const MatrixXd &motion)
{
    const MatrixXf series = nodeSeriesOf(run).cast<float>();
    const MatrixXf sources = sourcesOf(run, motion).cast<float>();
    const auto voxelCount = Index(brain.voxels.size());
    Samples samples(voxelCount, volumeCount);
    VectorXf volume(voxelCount);
    for (int t = 0; t < volumeCount; ++t) {
        const float brightness = t < unsteadyVolumes ? beginnings[t] : 1;
        for (Index v = 0; v < voxelCount; ++v) {
            const BrainVoxel &voxel = brain.voxels[std::size_t(v)];
            volume[v] = levelOf(voxel.tissue) * brightness +
                        (voxel.node >= 0 ? amplitude * series(t, voxel.node) : 0);
        }
        for (Index source = 0; source < sourceCount; ++source)
            volume += sources(t, source) * brain.weights.col(source);
        for (Index v = 0; v < voxelCount; v += 4) {
            const std::array<float, 4> noise = scannerNoise(run.owner(), t, v);
            for (Index n = v; n < std::min(v + 4, voxelCount); ++n) {
                const float value = volume[n] + noise[std::size_t(n - v)];
                // NOLINTNEXTLINE(bugprone-incorrect-roundings): of no matter for values made up.
                samples(n, t) = qint16(std::max(value, 0.0F) + 0.5F);
            }
        }
    }
    return samples;
}

std::vector<int> maskOf(const Run &run, const Brain &brain)
{
    Draws draws(Draw::Nuisance, run.owner(), 100);
    const double border = draws.between(0.94, 1);
    std::vector<int> mask;
    for (std::size_t v = 0; v < brain.voxels.size(); ++v)
        if (brain.voxels[v].radius <= border)
            mask.push_back(int(v));
    return mask;
}

void writeBold(const QString &path, const Brain &brain, const Samples &samples)
{
    GzipFile file(path);
    writeHeader(file, studyGrid, volumeCount, Shorts, Template);
    for (int t = 0; t < volumeCount; ++t)
        writeVolume<qint16>(file, brain, [&](Index v) { return samples(v, t); });
    file.commit();
}

void writeReference(const QString &path, const Brain &brain, const Samples &samples)
{
    const Eigen::VectorXi sums =
        samples.rightCols(volumeCount - unsteadyVolumes).cast<int>().rowwise().sum();
    GzipFile file(path);
    writeHeader(file, studyGrid, 1, Shorts, Template);
    writeVolume<qint16>(file, brain,
                        [&](Index v) { return qint16(sums[v] / (volumeCount - unsteadyVolumes)); });
    file.commit();
}

void writeMask(const QString &path, const Brain &brain, const std::vector<int> &mask)
{
    std::vector<quint8> inside(brain.voxels.size(), 0);
    for (const int v : mask)
        inside[std::size_t(v)] = 1;
    GzipFile file(path);
    writeHeader(file, studyGrid, 1, Bytes, Template);
    writeVolume<quint8>(file, brain, [&](Index v) { return inside[std::size_t(v)]; });
    file.commit();
}

void writeAtlas(const QString &path)
{
    std::vector<quint8> labels;
    forEachVoxel(studyGrid,
                 [&](double x, double y, double z) { labels.push_back(nodeLabelAt(x, y, z)); });
    GzipFile file(path);
    writeHeader(file, studyGrid, 1, Bytes, Template);
    file.write(labels.data(), qint64(labels.size()));
    file.commit();
}

} // namespace corvane::example_study
