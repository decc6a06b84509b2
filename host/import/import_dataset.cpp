// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/import_dataset.h"

#include "host/files/events_table.h"
#include "host/files/image_reader.h"
#include "host/files/input_error.h"
#include "host/files/nifti_stream.h"
#include "host/files/output_folder.h"
#include "host/files/progress.h"
#include "host/files/sample_conversion.h"
#include "host/files/text_check.h"
#include "host/files/vtc_writer.h"
#include "host/import/resample_anatomy.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

QString decimal(double number)
{
    return QString::fromLatin1(shortestDecimal(number));
}

/// A size in millimetres, which comes out of a matrix and is not exact.
QString millimetres(double length)
{
    return QString::number(std::round(length * 1000) / 1000, 'g', 6);
}

QString voxelText(const Eigen::Affine3d &toWorld)
{
    QStringList sizes;
    for (int axis = 0; axis < 3; ++axis)
        sizes += millimetres(toWorld.linear().col(axis).norm());
    return sizes.join(QStringLiteral(" x ")) + QStringLiteral(" mm");
}

QString gridText(const GridSize &size, const Eigen::Affine3d &toWorld)
{
    return QStringLiteral("%1 x %2 x %3 voxels of %4")
        .arg(QString::number(size[0]), QString::number(size[1]), QString::number(size[2]),
             voxelText(toWorld));
}

bool sameGrid(const GridSize &size, const Eigen::Affine3d &toWorld, const GridSize &otherSize,
              const Eigen::Affine3d &otherToWorld)
{
    // Half a tenth of a millimetre: what headers of one scan differ by.
    const Eigen::Affine3d between = otherToWorld.inverse() * toWorld;
    return size == otherSize && latticeMap(between, size, 1) &&
           between.isApprox(Eigen::Affine3d::Identity(), 1e-3);
}

/// One import on its way: the steps in their order, and what they hand on.
class Import
{
public:
    explicit Import(const ImportRequest &request);
    ImportReport run(const ImportWatch &watch);
    ImportPreview preview();

private:
    void checkRun();
    void readRepetitionTime();
    void readTables();
    void makeAnatomy();
    void layRun();
    void makeVois();
    void makeProtocol();
    void writeAnatomy();
    void writeVois();
    void writeProtocol();
    void makeTimeCourse();
    template <typename Sample>
    void streamVolumes(VtcWriter &writer, const VolumeSampler &sampler,
                       Sample *(VtcWriter::*nextVolume)());
    void noteBrokenSamples();

    void stopIfAsked(qint64 done) const
    {
        if (m_watch && !m_watch(done, m_run.header().dim[3]))
            throw ImportStopped();
    }
    QString fileName(const char *ending) const
    {
        return m_request.name + QLatin1Char('.') + QLatin1String(ending);
    }
    void note(const QString &path, const QString &text)
    {
        m_report.notes += QStringLiteral("%1: %2").arg(printable(path, 4096), text);
    }
    void summarise(const char *ending, const QString &text)
    {
        m_report.summary +=
            QStringLiteral("%1: %2").arg(m_output->finalPath(fileName(ending)), text);
    }

    ImportRequest m_request;
    ImportWatch m_watch;
    ImportReport m_report;
    std::optional<OutputFolder> m_output; ///< unset for a preview
    NiftiStream m_run;
    double m_repetitionTime = 0;
    EventsTable m_events;
    LabelTable m_labels;
    Image3d<float> m_anatomyImage;
    Anatomy m_anatomy;
    FunctionalGrid m_grid;
    VoiSet m_vois;
    std::vector<LabelCount> m_labelCounts;
    Prt m_protocol;
    qint64 m_brokenSamples = 0;
};

Import::Import(const ImportRequest &request) : m_request(request), m_run(request.functional) {}

ImportPreview Import::preview()
{
    checkRun();
    readRepetitionTime();
    readTables();
    makeAnatomy();
    layRun();
    if (!m_request.atlas.isEmpty())
        makeVois();
    if (!m_request.events.isEmpty())
        makeProtocol();
    return {m_anatomy.vmr,    m_grid,        static_cast<int>(m_run.header().dim[3]),
            m_repetitionTime, m_vois,        m_labelCounts,
            m_protocol,       m_report.notes};
}

ImportReport Import::run(const ImportWatch &watch)
{
    m_watch = watch;
    m_output.emplace(m_request.folder);
    // What is quickly known to be wrong is found before the long work.
    for (const char *ending : {"vmr", "vtc", "voi", "prt"})
        if (QFileInfo(m_output->finalPath(fileName(ending))).isDir())
            throw InputError(m_output->finalPath(fileName(ending)), QStringLiteral("writing"),
                             QStringLiteral("a folder"),
                             QStringLiteral("a place where a file can be written"));
    checkRun();
    readRepetitionTime();
    readTables();
    makeAnatomy();
    writeAnatomy();
    stopIfAsked(0);
    layRun();
    if (!m_request.atlas.isEmpty()) {
        makeVois();
        writeVois();
    }
    if (!m_request.events.isEmpty()) {
        makeProtocol();
        writeProtocol();
    }
    stopIfAsked(0);
    makeTimeCourse();
    m_output->commit();
    return m_report;
}

void Import::checkRun()
{
    const NiftiHeader &header = m_run.header();
    if (header.dimensions != 4)
        throw InputError(m_run.path(), QStringLiteral("header, dim"),
                         header.dimensions < 4
                             ? QStringLiteral("one volume")
                             : QStringLiteral("%1 dimensions").arg(header.dimensions),
                         QStringLiteral("4 dimensions, two or more volumes"));
    if (header.dim[3] > std::numeric_limits<int>::max() ||
        header.voxelsPerVolume() > std::numeric_limits<int>::max())
        throw InputError(
            m_run.path(), QStringLiteral("header, dim"),
            dimensionText(header.dim, header.dimensions),
            QStringLiteral("at most %1 voxels and volumes").arg(std::numeric_limits<int>::max()));
    m_report.notes += orientationNotes(header, m_run.path());
}

void Import::readRepetitionTime()
{
    const NiftiHeader &header = m_run.header();
    const double stored = repetitionTimeSeconds(header);
    if (m_request.repetitionTime) {
        m_repetitionTime = *m_request.repetitionTime;
        if (stored > 0 && stored != m_repetitionTime)
            note(m_run.path(), QStringLiteral("the repetition time is %1 s as told, not %2 s as in "
                                              "the header")
                                   .arg(decimal(m_repetitionTime), decimal(stored)));
        return;
    }
    if (stored == 0)
        throw InputError(m_run.path(), QStringLiteral("header, pixdim[4]"),
                         QStringLiteral("repetition time %1%2")
                             .arg(header.repetitionTime)
                             .arg(header.timeUnit == TimeUnit::NoTime
                                      ? QStringLiteral(" in a unit that is none of time")
                                      : QString()),
                         QStringLiteral("a time above 0, or --tr SECONDS"));
    m_repetitionTime = stored;
    if (header.timeUnit == TimeUnit::Unknown)
        note(m_run.path(), QStringLiteral("the header gives the repetition time without a unit: it "
                                          "is taken for %1 s")
                               .arg(decimal(stored)));
    if (stored < 0.05 || stored > 60)
        note(m_run.path(), QStringLiteral("the repetition time of %1 s is unusual; --tr SECONDS "
                                          "gives another")
                               .arg(decimal(stored)));
}

void Import::readTables()
{
    if (!m_request.events.isEmpty())
        m_events = readEvents(m_request.events, m_report.notes);
    if (!m_request.labels.isEmpty())
        m_labels = readLabelTable(m_request.labels);
}

void Import::makeAnatomy()
{
    m_anatomyImage = readImage(m_request.anatomy, m_report.notes);
    m_anatomy = resampleAnatomy(m_anatomyImage, m_request.anatomy, m_report.notes);
    m_anatomyImage.voxels = {};
}

void Import::writeAnatomy()
{
    writeVmr(m_output->path(fileName("vmr")), m_anatomy.vmr);
    summarise("vmr", QStringLiteral("%1, %2").arg(
                         gridText(m_anatomyImage.size, m_anatomyImage.toWorld),
                         m_anatomy.copied ? QStringLiteral("copied")
                                          : QStringLiteral("interpolated to 1 mm")));
    m_anatomy.vmr.voxels.reset();
}

void Import::layRun()
{
    const NiftiHeader &header = m_run.header();
    const GridSize size{header.dim[0], header.dim[1], header.dim[2]};
    const Eigen::Affine3d toCube = m_anatomy.toWorld.inverse() * header.toWorld;
    m_grid = layFunctionalGrid(
        toCube, size, m_request.resolution.value_or(nearestResolution(toCube)), m_run.path());
    if (m_grid.voxelsCut > 0)
        note(m_run.path(),
             QStringLiteral("%1 of %2 voxels lie outside the cube of 256 mm and are cut off")
                 .arg(m_grid.voxelsCut)
                 .arg(header.voxelsPerVolume()));
    if (!m_anatomy.field.intersects(gridBounds(toCube, size, 0.5)))
        note(m_run.path(), QStringLiteral("the run does not overlap the anatomy %1")
                               .arg(printable(m_request.anatomy, 4096)));
}

void Import::makeVois()
{
    const Image3d<qint32> atlas = readLabels(m_request.atlas, m_report.notes);
    const NiftiHeader &header = m_run.header();
    const GridSize runSize{header.dim[0], header.dim[1], header.dim[2]};
    if (!sameGrid(atlas.size, atlas.toWorld, runSize, header.toWorld))
        note(m_request.atlas,
             QStringLiteral("the atlas (%1) has another grid than the run (%2): its labels are "
                            "taken by nearest neighbour")
                 .arg(gridText(atlas.size, atlas.toWorld), gridText(runSize, header.toWorld)));
    m_vois = voisOfAtlas(atlas, m_labels, m_grid, m_anatomy.toWorld, m_request.voiGrid,
                         m_request.atlas, m_report.notes, &m_labelCounts);
}

void Import::writeVois()
{
    writeVoiFile(m_output->path(fileName("voi")), m_vois);
    std::size_t voxels = 0;
    for (const Voi &voi : m_vois.vois)
        voxels += voi.voxels.size();
    const auto empty = std::count_if(m_vois.vois.begin(), m_vois.vois.end(),
                                     [](const Voi &voi) { return voi.voxels.empty(); });
    summarise("voi",
              QStringLiteral("%1 VOIs, %2 %3 voxels, %4 VOIs empty")
                  .arg(QString::number(m_vois.vois.size()), QString::number(voxels),
                       m_request.voiGrid == VoiGrid::Functional ? QStringLiteral("functional")
                                                                : QStringLiteral("1 mm"),
                       QString::number(empty)));
}

void Import::makeProtocol()
{
    m_protocol = protocolFromEvents(m_events, m_request.name, m_repetitionTime,
                                    static_cast<int>(m_run.header().dim[3]), m_report.notes);
}

void Import::writeProtocol()
{
    writePrtFile(m_output->path(fileName("prt")), m_protocol);
    std::size_t intervals = 0;
    for (const PrtCondition &condition : m_protocol.conditions)
        intervals += condition.intervals.size();
    summarise("prt", QStringLiteral("%1 conditions, %2 intervals")
                         .arg(m_protocol.conditions.size())
                         .arg(intervals));
}

void Import::makeTimeCourse()
{
    const NiftiHeader &header = m_run.header();
    const bool asShort = m_grid.copied && fitsShort(header);
    VtcInfo info;
    info.resolution = m_grid.resolution;
    const auto end = [&](int axis) {
        return m_grid.start[axis] + m_grid.resolution * m_grid.size[axis];
    };
    info.xStart = m_grid.start[0];
    info.yStart = m_grid.start[1];
    info.zStart = m_grid.start[2];
    info.xEnd = end(0);
    info.yEnd = end(1);
    info.zEnd = end(2);
    info.nrOfVolumes = static_cast<int>(header.dim[3]);
    info.type = asShort ? VtcInfo::Short : VtcInfo::Float;
    info.repetitionTime = m_repetitionTime;
    const QString path = m_output->path(fileName("vtc"));
    if (!m_request.events.isEmpty())
        info.linkedProtocol = linkedProtocolText(path, m_output->path(fileName("prt")));

    const VolumeSampler sampler(m_grid);
    if (sampler.pointsOutside() == m_grid.sampleCount())
        throw InputError(
            m_run.path(), QStringLiteral("position relative to the anatomy"),
            QStringLiteral("no voxel at a point of the lattice of %1 mm").arg(m_grid.resolution),
            QStringLiteral("a run that overlaps the anatomy's cube"));
    if (sampler.pointsOutside() > 0)
        note(m_run.path(), QStringLiteral("%1 of %2 lattice points lie outside what was recorded: "
                                          "their samples are 0")
                               .arg(sampler.pointsOutside())
                               .arg(m_grid.sampleCount()));
    VtcWriter writer(path, info);
    if (asShort)
        streamVolumes(writer, sampler, &VtcWriter::shortVolume);
    else
        streamVolumes(writer, sampler, &VtcWriter::floatVolume);
    writer.commit();
    noteBrokenSamples();
    summarise("vtc",
              QStringLiteral("%1 x %2 x %3 samples %4 mm apart, %5 volumes %6 s apart, %7, %8")
                  .arg(QString::number(m_grid.size[0]), QString::number(m_grid.size[1]),
                       QString::number(m_grid.size[2]), QString::number(m_grid.resolution),
                       QString::number(info.nrOfVolumes), decimal(m_repetitionTime),
                       asShort ? QStringLiteral("short") : QStringLiteral("float"),
                       m_grid.copied ? QStringLiteral("copied")
                                     : QStringLiteral("interpolated from voxels of ") +
                                           voxelText(header.toWorld)));
}

void convert(const NiftiHeader &header, const void *samples, qint64 count, short *values)
{
    toShort(header, samples, count, values);
}

void convert(const NiftiHeader &header, const void *samples, qint64 count, float *values)
{
    toFloat(header, samples, count, values);
}

qint64 countBroken(const short *, qint64)
{
    return 0;
}

qint64 countBroken(const float *values, qint64 count)
{
    return std::count_if(values, values + count, [](float value) { return !std::isfinite(value); });
}

template <typename Sample>
void Import::streamVolumes(VtcWriter &writer, const VolumeSampler &sampler,
                           Sample *(VtcWriter::*nextVolume)())
{
    const NiftiHeader &header = m_run.header();
    const qint64 voxels = header.voxelsPerVolume();
    std::vector<char> stored(static_cast<std::size_t>(header.bytesPerVolume()));
    std::vector<Sample> values(static_cast<std::size_t>(voxels));
    Progress progress(QStringLiteral("importing the run"), header.dim[3]);
    for (qint64 t = 0; t < header.dim[3]; ++t) {
        m_run.read(stored.data(), voxels);
        convert(header, stored.data(), voxels, values.data());
        Sample *const volume = (writer.*nextVolume)();
        sampler.sample(values.data(), volume);
        m_brokenSamples += countBroken(volume, m_grid.sampleCount());
        writer.addVolume();
        progress.update(t + 1);
        stopIfAsked(t + 1);
    }
    m_run.finish(m_report.notes);
}

void Import::noteBrokenSamples()
{
    if (m_brokenSamples > 0)
        note(m_run.path(), QStringLiteral("%1 samples are no finite numbers: so are the means of "
                                          "VOIs that hold them")
                               .arg(m_brokenSamples));
}

} // namespace

QString defaultImportName(const QString &functional)
{
    QString name = QFileInfo(functional).fileName();
    for (const char *ending : {".gz", ".nii"})
        if (name.endsWith(QLatin1String(ending), Qt::CaseInsensitive))
            name.chop(static_cast<int>(qstrlen(ending)));
    return name;
}

ImportPreview previewImport(const ImportRequest &request)
{
    return Import(request).preview();
}

ImportReport importDataset(const ImportRequest &request, const ImportWatch &watch)
{
    return Import(request).run(watch);
}

} // namespace corvane
