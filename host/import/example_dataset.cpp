// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/example_dataset.h"

#include "host/files/gzip_file.h"
#include "host/files/output_folder.h"
#include "host/files/text_check.h"
#include "host/import/example_head.h"
#include "host/import/example_rest.h"
#include "host/import/example_signals.h"

#include <QFileInfo>
#include <algorithm>
#include <array>
#include <cmath>

namespace corvane
{

namespace
{

using namespace example;

constexpr auto anatomyFile = "sub-01_T1w.nii.gz";
constexpr auto runFile = "sub-01_task-movement_bold.nii.gz";
constexpr auto eventsFile = "sub-01_task-movement_events.tsv";
constexpr auto atlasFile = "sub-01_dseg.nii.gz";
constexpr auto labelsFile = "sub-01_dseg.tsv";
constexpr auto correlationsFile = "correlations.tsv";
constexpr auto restCorrelationsFile = "rest_correlations.tsv";
constexpr auto readmeFile = "README.txt";
constexpr auto importName = "example";

const Grid anatomyGrid{{180, 216, 180}, 1, {-89.5, -125.5, -71.5}};
const Grid runGrid{{60, 72, 60}, 3, {-88.5, -124.5, -70.5}};

void writeAnatomy(const QString &path)
{
    const std::array<int, 6> brightness{4, 70, 25, 45, 110, 165};
    GzipFile file(path);
    writeHeader(file, anatomyGrid, 1, Bytes);
    Random random(2);
    std::vector<quint8> plane;
    forEachVoxel(anatomyGrid, [&](double x, double y, double z) {
        const int noise = static_cast<int>(random.next() % 9);
        plane.push_back(static_cast<quint8>(brightness[tissueAt(x, y, z)] + noise - 4));
        if (static_cast<int>(plane.size()) == anatomyGrid.size[0] * anatomyGrid.size[1]) {
            file.write(plane.data(), static_cast<qint64>(plane.size()));
            plane.clear();
        }
    });
    file.commit();
}

std::vector<quint8> labels()
{
    std::vector<quint8> result;
    result.reserve(static_cast<std::size_t>(runGrid.voxelCount()));
    forEachVoxel(runGrid,
                 [&](double x, double y, double z) { result.push_back(labelAt(x, y, z)); });
    return result;
}

void writeAtlas(const QString &path)
{
    const std::vector<quint8> voxels = labels();
    GzipFile file(path);
    writeHeader(file, runGrid, 1, Bytes);
    file.write(voxels.data(), static_cast<qint64>(voxels.size()));
    file.commit();
}

void writeLabels(const QString &path)
{
    const std::array<const char *, networkCount> colours{"#e6a02d", "#4ca6e0", "#5fbf5f",
                                                         "#d0607f"};
    const std::array<const char *, networkCount> names{"visual", "motor", "attention", "default"};
    QByteArray text = "index\tname\tcolor\tnetwork\n";
    for (int number = 0; number < regionCount; ++number)
        text += QByteArray::number(number + 1) + '\t' + regions[number].name + '\t' +
                colours[regions[number].network] + '\t' + names[regions[number].network] + '\n';
    writeFile(path, text);
}

void writeEvents(const QString &path)
{
    QByteArray text = "onset\tduration\ttrial_type\n";
    for (const TaskEvent &event : taskEvents())
        text += shortestDecimal(event.onset) + '\t' + shortestDecimal(event.duration) + '\t' +
                event.condition + '\n';
    writeFile(path, text);
}

void writeCorrelations(const QString &path, const std::array<Series, regionCount> &series)
{
    QByteArray text = "name";
    for (const Region &region : regions)
        text += QByteArray("\t") + region.name;
    text += '\n';
    for (int row = 0; row < regionCount; ++row) {
        text += regions[row].name;
        for (int column = 0; column < regionCount; ++column)
            text += '\t' + QByteArray::number(correlation(series[row], series[column]), 'f', 4);
        text += '\n';
    }
    writeFile(path, text);
}

/// What a voxel of the run is made of, apart from its region's series and the noise.
struct VoxelModel {
    float level;
    float drift;
    float breathing;
    float pulse;
};

VoxelModel voxelModel(double x, double y, double z)
{
    const std::array<float, 6> level{20, 180, 60, 1100, 900, 800};
    const Tissue tissue = tissueAt(x, y, z);
    VoxelModel model{level[tissue], 0, 0, 0};
    if (tissue < Fluid)
        return model;
    // Drift differs from side to side, breathing is strongest far from the neck, and the pulse
    // near the vessels at the base of the brain.
    model.drift = static_cast<float>(0.6 + x / 200);
    model.breathing = static_cast<float>(1 + (z + 70) / 70);
    model.pulse = static_cast<float>(6 / (1 + squaredRadius(x, y, z, {0, -20, -25}, {25, 25, 25})));
    return model;
}

void writeRun(const QString &path, const ProgressWatch &watch)
{
    const std::vector<quint8> regionOf = labels();
    const std::array<Series, regionCount> series = regionSeries();
    const Nuisance noise = nuisance();
    std::vector<VoxelModel> models;
    models.reserve(regionOf.size());
    forEachVoxel(runGrid,
                 [&](double x, double y, double z) { models.push_back(voxelModel(x, y, z)); });

    GzipFile file(path);
    writeHeader(file, runGrid, volumeCount, Shorts);
    std::vector<qint16> volume(models.size());
    for (int t = 0; t < volumeCount; ++t) {
        std::array<float, regionCount + 1> signal{};
        for (int number = 0; number < regionCount; ++number)
            signal[number + 1] = static_cast<float>(series[number][t]);
        const auto drift = static_cast<float>(noise.drift[t]);
        const auto breathing = static_cast<float>(noise.breathing[t]);
        const auto pulse = static_cast<float>(noise.pulse[t]);
        Random random(1000 + static_cast<quint64>(t));
        for (std::size_t v = 0; v < models.size(); ++v) {
            // Four uniform numbers of 16 bits: nearly normal, with a standard deviation of 12.
            const quint64 bits = random.next();
            const auto sum = static_cast<int>((bits & 0xffff) + (bits >> 16 & 0xffff) +
                                              (bits >> 32 & 0xffff) + (bits >> 48));
            const VoxelModel &model = models[v];
            const float value = model.level + signal[regionOf[v]] + model.drift * drift +
                                model.breathing * breathing + model.pulse * pulse +
                                static_cast<float>(sum - 131070) * (12.0f / 37837.0f);
            volume[v] = static_cast<qint16>(std::lround(std::max(value, 0.0f)));
        }
        file.write(volume.data(), static_cast<qint64>(volume.size()) * qint64{sizeof(qint16)});
        // The import of the run takes about as long again.
        tellProgress(watch, t + 1, 2 * qint64(volumeCount));
    }
    file.commit();
}

void writeReadme(const QString &path)
{
    writeFile(path, R"(An example dataset, made by a program: no person was scanned.

sub-01_T1w.nii.gz                 anatomy, 1 mm
sub-01_task-movement_bold.nii.gz  functional run, 3 mm, 200 volumes 2 s apart
sub-01_task-movement_events.tsv   rest and movement in blocks of 30 s, and cues of no duration
sub-01_dseg.nii.gz                atlas of 16 regions, on the grid of the run
sub-01_dseg.tsv                   names, colours and networks of the regions
correlations.tsv                  correlations of the regions' signals over the whole run, before
                                  drift, breathing, pulse and noise were added
example.vmr, .vtc, .voi, .prt     the same, imported

sub-01_task-rest_...              a run at rest as a preprocessing pipeline leaves it: 6 mm, with
                                  motion, drift, breathing and the start of the scanner in it; its
                                  mask, and the table of confounds that tells of them
rest_correlations.tsv             correlations of the regions' signals in that run, before all this

The 16 regions form four networks: visual, motor, attention and default. The signals of two regions
of one network correlate with about 0.7. The visual and the attention network correlate with each
other, the attention and the default network have opposite signs, and the motor network follows the
visual one during movement only.
)");
}

QString name(const char *text)
{
    return QString::fromLatin1(text);
}

} // namespace

ImportReport writeExample(const QString &folder, const ProgressWatch &watch)
{
    OutputFolder output(folder, QStringLiteral("example"));
    writeAnatomy(output.path(name(anatomyFile)));
    writeAtlas(output.path(name(atlasFile)));
    writeLabels(output.path(name(labelsFile)));
    writeEvents(output.path(name(eventsFile)));
    writeCorrelations(output.path(name(correlationsFile)), regionSeries());
    writeCorrelations(output.path(name(restCorrelationsFile)), restSeries());
    writeReadme(output.path(name(readmeFile)));
    writeRun(output.path(name(runFile)), watch);
    writeRestingRun(output);

    ImportRequest request;
    request.anatomy = output.path(name(anatomyFile));
    request.functional = output.path(name(runFile));
    request.voiSources = {
        {VoiSource::Atlas, output.path(name(atlasFile)), output.path(name(labelsFile))}};
    request.events = output.path(name(eventsFile));
    request.name = name(importName);
    request.folder = QFileInfo(request.anatomy).path();
    ImportReport report = writeImport(planImport(request), [&](qint64 done, qint64 total) {
        return !watch || watch(total + done, 2 * total);
    });
    report.notes += output.commit();
    // Say where the files are now, not where they were made.
    const QString made = request.folder + QLatin1Char('/');
    for (QStringList *lines : {&report.notes, &report.summary, &report.files})
        lines->replaceInStrings(made, output.finalPath(QString()));
    return report;
}

} // namespace corvane
