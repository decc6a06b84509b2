// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/write_import.h"

#include "host/files/input_error.h"
#include "host/files/nifti_stream.h"
#include "host/files/output_folder.h"
#include "host/files/sample_conversion.h"
#include "host/files/vtc_writer.h"
#include "host/import/cleaned_run.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <cstdio>

namespace corvane
{

namespace
{

void requireNoFolders(const OutputFolder &output, const std::vector<PlannedFile> &files)
{
    for (const PlannedFile &file : files)
        if (QFileInfo(output.finalPath(file.name)).isDir())
            throw InputError(output.finalPath(file.name), QStringLiteral("writing"),
                             QStringLiteral("a folder"),
                             QStringLiteral("a place where a file can be written"));
}

/// The run from its first sample on.
NiftiStream openRun(const ImportPlan &plan)
{
    NiftiStream run(plan.request.functional);
    if (!(run.header() == plan.run))
        throw InputError(run.path(), QStringLiteral("header"),
                         QStringLiteral("another run than a moment ago"),
                         QStringLiteral("the file to stay as it is during the import"));
    return run;
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

/// Returns how many samples are no finite numbers.
template <typename Sample>
qint64 streamVolumes(NiftiStream &run, const FunctionalGrid &grid, VtcWriter &writer,
                     Sample *(VtcWriter::*nextVolume)(), const ProgressWatch &watch)
{
    const NiftiHeader &header = run.header();
    const VolumeSampler sampler(grid);
    const qint64 voxels = header.voxelsPerVolume();
    std::vector<char> stored(static_cast<std::size_t>(header.bytesPerVolume()));
    std::vector<Sample> values(static_cast<std::size_t>(voxels));
    qint64 broken = 0;
    for (qint64 t = 0; t < header.dim[3]; ++t) {
        run.read(stored.data(), voxels);
        convert(header, stored.data(), voxels, values.data());
        Sample *const volume = (writer.*nextVolume)();
        sampler.sample(values.data(), volume);
        broken += countBroken(volume, grid.sampleCount());
        writer.addVolume();
        tellProgress(watch, t + 1, header.dim[3]);
    }
    return broken;
}

/// The samples as they were recorded. Returns how many are no finite numbers.
qint64 writeSamples(const QString &path, const VtcInfo &info, const ImportPlan &plan,
                    const ProgressWatch &watch, QStringList &notes)
{
    NiftiStream run = openRun(plan);
    VtcWriter writer(path, info);
    const qint64 broken =
        info.type == VtcInfo::Short
            ? streamVolumes(run, plan.grid, writer, &VtcWriter::shortVolume, watch)
            : streamVolumes(run, plan.grid, writer, &VtcWriter::floatVolume, watch);
    run.finish(notes);
    writer.commit();
    return broken;
}

void writeTimeCourse(const QString &path, const VtcInfo &info, const ImportPlan &plan,
                     const ProgressWatch &watch, QStringList &notes)
{
    const qint64 broken = writeSamples(path, info, plan, watch, notes);
    if (broken > 0)
        notes += QStringLiteral("%1: %2 samples are not finite numbers, nor are the means of VOIs "
                                "that hold them")
                     .arg(printable(plan.request.functional, 4096))
                     .arg(broken);
}

/// A file of the import that is gone when the work on it ends.
class PassingFile
{
public:
    explicit PassingFile(const QString &path) : m_path(path) {}
    ~PassingFile() { QFile::remove(m_path); }
    PassingFile(const PassingFile &) = delete;
    PassingFile &operator=(const PassingFile &) = delete;

    const QString &path() const { return m_path; }

private:
    QString m_path;
};

/// The run is laid down with the time fastest, as it is, and cleaned from there voxel by voxel.
void writeCleanedTimeCourse(const QString &path, const VtcInfo &info, const ImportPlan &plan,
                            const ProgressWatch &watch, QStringList &notes)
{
    const PassingFile uncleaned(path + QStringLiteral(".uncleaned"));
    const auto half = [&](qint64 begun) {
        return [&watch, begun](qint64 done, qint64 total) {
            return !watch || watch(begun * total + done, 2 * total);
        };
    };
    writeSamples(uncleaned.path(), uncleanedVtc(plan), plan, half(0), notes);
    const qint64 broken =
        writeCleanedRun(path, info, VtcFile(uncleaned.path()), plan.cleaning->design, half(1));
    if (broken > 0)
        notes += QStringLiteral("%1: %2 voxels hold samples that are not finite numbers and have "
                                "none that is, nor have VOIs that hold them")
                     .arg(printable(plan.request.functional, 4096))
                     .arg(broken);
}

/// What a cleaned file says of its run; unset where so many volumes come and go that the header
/// could not hold them.
std::optional<UncleanedRun> uncleanedRun(const ImportPlan &plan, const QString &vtcPath)
{
    constexpr int longest = 1 << 14;
    UncleanedRun run;
    for (const Eigen::Index row : plan.cleaning->design.rows)
        run.volumes.push_back(static_cast<int>(row) + 1);
    if (volumesText(run.volumes).size() > longest)
        return std::nullopt;
    const QString &path = plan.request.functional;
    run.path = linkedProtocolText(vtcPath, path);
    run.bytes = QFileInfo(path).size();
    run.signature = runSignature(path);
    run.toRun = plan.grid.toSource;
    if (plan.grid.copied) // lattice points are voxels, but for the roundings of headers
        run.toRun.affine() = run.toRun.affine().array().round();
    return run;
}

} // namespace

ImportReport writeImport(ImportPlan plan, const ProgressWatch &watch)
{
    OutputFolder output(plan.request.folder, QStringLiteral("import ") + plan.request.name);
    requireNoFolders(output, plan.files);
    ImportReport report;
    report.notes = plan.notes;
    QString protocol;
    for (const PlannedFile &file : plan.files) {
        tellProgress(watch, 0, plan.volumes());
        const QString path = output.path(file.name);
        switch (file.kind) {
        case FileKind::Vmr:
            writeVmr(path, plan.anatomy);
            plan.anatomy.voxels.reset(); // of no use for the samples, which take the memory
            break;
        case FileKind::Voi:
            writeVoiFile(path, plan.vois);
            break;
        case FileKind::Prt:
            writePrtFile(path, plan.protocol);
            protocol = path;
            break;
        default:
            VtcInfo info = plannedVtc(plan);
            info.linkedProtocol = linkedProtocolText(path, protocol);
            if (plan.cleaning)
                info.uncleaned = uncleanedRun(plan, output.finalPath(file.name));
            (plan.cleaning ? writeCleanedTimeCourse : writeTimeCourse)(path, info, plan, watch,
                                                                       report.notes);
        }
        report.files += output.finalPath(file.name);
        report.summary += QStringLiteral("%1: %2").arg(report.files.last(), file.holds);
    }
    report.notes += output.commit();
    report.notes.removeDuplicates(); // files are opened more than once
    return report;
}

void printReport(const ImportReport &report)
{
    for (const QString &note : report.notes)
        std::fprintf(stderr, "%s\n", note.toUtf8().constData());
    for (const QString &line : report.summary)
        std::printf("%s\n", line.toUtf8().constData());
}

} // namespace corvane
