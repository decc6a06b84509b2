// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fuzz/readers.h"

#include "host/derivatives/bids_names.h"
#include "host/derivatives/run_filter.h"
#include "host/derivatives/run_index.h"
#include "host/files/confounds_table.h"
#include "host/files/events_table.h"
#include "host/files/file_lock.h"
#include "host/files/graph_table.h"
#include "host/files/input_error.h"
#include "host/files/json_file.h"
#include "host/files/label_table.h"
#include "host/files/nifti_stream.h"
#include "host/files/output_folder.h"
#include "host/files/output_record.h"
#include "host/files/prt_file.h"
#include "host/files/series_table.h"
#include "host/files/text_check.h"
#include "host/files/vmr_file.h"
#include "host/files/voi_file.h"
#include "host/files/vtc_file.h"
#include "host/group/group_table.h"
#include "host/group/node_places.h"
#include "host/group/study_table.h"
#include "host/import/sphere_table.h"
#include "signals/error.h"
#include "signals/strategies.h"
#include "statistics/contrast.h"
#include "statistics/design.h"
#include "statistics/error.h"
#include "statistics/formula.h"
#include "update/update_manifest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

using namespace corvane;

namespace reading
{

void require(bool isSo, const char *what)
{
    if (isSo)
        return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

namespace
{

/// In memory where the system has that.
const QString &folder()
{
    static const QTemporaryDir made(QStringLiteral("/dev/shm/fuzz-XXXXXX"));
    static const QString path = made.path();
    return path;
}

QString written(const QByteArray &bytes, const char *name)
{
    const QString path = folder() + QLatin1Char('/') + QLatin1String(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "written");
    return path;
}

// ---- files

void readVtc(const QByteArray &bytes)
{
    const VtcFile file(written(bytes, "in.vtc"));
    const VtcInfo &info = file.info();
    double sum = 0;
    for (qint64 n = 0; n < info.sampleCount(); ++n)
        sum +=
            info.type == VtcInfo::Short ? file.shortSamples()[n] : double(file.floatSamples()[n]);
    require(std::isfinite(sum) || info.type == VtcInfo::Float, "short samples are finite");
    vtcFileHeader(info);
}

void readVoi(const QByteArray &bytes)
{
    const VoiSet set = readVoiFile(written(bytes, "in.voi"));
    const QString copy = folder() + QStringLiteral("/copy.voi");
    writeVoiFile(copy, set);
    require(readVoiFile(copy).vois.size() == set.vois.size(), "as many VOIs as before");
}

void readPrt(const QByteArray &bytes)
{
    const Prt prt = readPrtFile(written(bytes, "in.prt"));
    const QString copy = folder() + QStringLiteral("/copy.prt");
    writePrtFile(copy, prt);
    require(readPrtFile(copy).conditions.size() == prt.conditions.size(), "as many conditions");
}

void readVmrFile(const QByteArray &bytes)
{
    readVmr(written(bytes, "in.vmr"));
}

void readNifti(const QByteArray &bytes)
{
    NiftiStream run(written(bytes, "in.nii.gz"));
    const NiftiHeader &header = run.header();
    const qint64 voxels = header.voxelsPerVolume();
    if (header.bytesPerVolume() > (1 << 24))
        return;
    std::vector<char> volume(std::size_t(header.bytesPerVolume()));
    for (qint64 n = 0; n < header.dim[3]; ++n)
        run.read(volume.data(), voxels);
    QStringList notes;
    run.finish(notes);
}

void readGraph(const QByteArray &bytes)
{
    const GraphTable table = readGraphTable(written(bytes, "in.csv"));
    require(table.weights.rows() == table.weights.cols(), "a square matrix");
}

void readMatrix(const QByteArray &bytes)
{
    readMatrixTable(written(bytes, "in_relmat.tsv"));
}

void readSeries(const QByteArray &bytes)
{
    const SeriesTable table = readSeriesTable(written(bytes, "in.csv"));
    require(table.names.size() == table.values.rows(), "a name for each series");
}

void readLabels(const QByteArray &bytes)
{
    QStringList notes;
    readLabelTable(written(bytes, "in.tsv"), notes);
    readLabelTable(written(bytes, "in.txt"), notes);
}

void readEventsTable(const QByteArray &bytes)
{
    QStringList notes;
    const Prt prt = protocolFromEvents(readEvents(written(bytes, "in.tsv"), notes),
                                       QStringLiteral("in"), 0.72, 100, notes);
    protocolNotes(prt);
    shortIntervalNotes(prt);
}

void readConfoundsTable(const QByteArray &bytes)
{
    // The first byte chooses the strategy.
    QStringList notes;
    const int first = bytes.isEmpty() ? 0 : uchar(bytes[0]);
    const signals::ConfoundsTable table = readConfounds(written(bytes.mid(1), "in.tsv"), notes);
    const auto &all = signals::strategies();
    signals::StrategyRequest request;
    request.strategy = std::string(all[std::size_t(first) % (all.size() - 1)].name);
    request.volumes = table.values.rows();
    signals::select(table, request);
}

void readStrategy(const QByteArray &bytes)
{
    QStringList notes;
    signals::ConfoundsTable table =
        readConfounds(written("a\tb\tcosine00\n1\t2\t3\n4\t6\t5\n9\t1\t2\n", "small.tsv"), notes);
    signals::StrategyRequest request;
    request.strategy = bytes.toStdString();
    request.volumes = 3;
    signals::select(table, request);
}

void readCensor(const QByteArray &bytes)
{
    readCensorFile(written(bytes, "in.txt"), 8);
}

void readPlaces(const QByteArray &bytes)
{
    readNodePlaces(written(bytes, "in.tsv"));
}

/// In a run of 8 x 8 x 8 samples in the middle of the cube.
void readSphereTable(const QByteArray &bytes)
{
    QStringList notes;
    std::vector<Sphere> spheres = readSpheres(written(bytes, "in.tsv"), notes);
    for (Sphere &sphere : spheres) // each voxel of a large one is looked at
        sphere.radius = std::min(sphere.radius, 20.0);
    const FunctionalGrid grid = layFunctionalGrid(
        Eigen::Translation3d(116, 116, 116) * Eigen::Scaling(3.0), {8, 8, 8}, 3, {});
    const Eigen::Affine3d cubeToWorld(Eigen::Translation3d(-128, -128, -128));
    std::vector<LabelCount> counts;
    const VoiSet set =
        voisOfSpheres(spheres, grid, cubeToWorld, VoiGrid::Anatomy, {}, notes, counts);
    require(set.vois.size() == spheres.size() && counts.size() == spheres.size(),
            "a VOI for each sphere");
}

void readJsonFile(const QByteArray &bytes)
{
    readJson(written(bytes, "in.json"));
}

void readFilterFile(const QByteArray &bytes)
{
    const FilterFile filter(written(bytes, "in.json"));
    filter.accepts(bidsName(QStringLiteral("sub-01_ses-a_task-rest_run-1_space-T1w_bold.nii.gz")));
}

/// Lines are the names of files in a folder of a participant.
void readFolder(const QByteArray &bytes)
{
    const QString dataset = folder() + QStringLiteral("/dataset");
    QDir(dataset).removeRecursively();
    QDir().mkpath(dataset + QStringLiteral("/sub-01/func"));
    int files = 0;
    for (const QByteArray &line : bytes.split('\n')) {
        const QString name = QString::fromUtf8(line);
        if (name.isEmpty() || name.contains(QLatin1Char('/')) || name.contains(QChar()) ||
            ++files > 8)
            continue;
        QFile file(dataset + QStringLiteral("/sub-01/func/") + name);
        if (file.open(QIODevice::WriteOnly))
            file.write(name.endsWith(QLatin1String(".json")) ? bytes : QByteArray());
    }
    for (const StudyRun &run : indexRuns(dataset, {}))
        require(run.participant == QLatin1String("01"), "rows of the participant");
}

void readStudy(const QByteArray &bytes)
{
    const int half = bytes.indexOf('\0');
    written(bytes.left(half), "study/participants_connectome.tsv");
    StudySelection selection;
    selection.out = folder() + QStringLiteral("/study");
    if (half >= 0)
        selection.participants = written(bytes.mid(half + 1), "study/participants.tsv");
    const GroupTable table(readStudyTable(selection).table);
    table.sessionColumn({}, false);
}

/// A formula, and behind a zero a table.
void readDesign(const QByteArray &bytes)
{
    const int half = std::max(bytes.indexOf('\0'), 0);
    const GroupTable table(written(bytes.mid(half + 1), "in.tsv"));
    const statistics::Design design =
        statistics::make_design(bytes.left(half).toStdString(), table.columns());
    require(std::size_t(design.matrix.cols()) == design.columns.size(), "a name for each column");
    statistics::read_contrast("c=(Intercept)", design.columns);
}

void readFormula(const QByteArray &bytes)
{
    statistics::read_formula(bytes.toStdString());
}

void readContrast(const QByteArray &bytes)
{
    const statistics::Contrast contrast = statistics::read_contrast(
        bytes.toStdString(), {"(Intercept)", "age", "group[a]", "group[a]:age", "*", "="});
    require(contrast.weights.cols() == 6, "a weight for each column");
}

/// What our own commands leave in a folder: the record of it, and the list of a set on its way.
void readOwnRecords(const QByteArray &bytes)
{
    const QString place = folder() + QStringLiteral("/own");
    QDir(place).removeRecursively();
    const int half = std::max(bytes.indexOf('\0'), 0);
    written(bytes.left(half), "own/.corvane-outputs.json");
    written("kept", "own/kept");
    const QString secret = written("secret", "secret");
    written(bytes.mid(half + 1), "own/.corvane-unfinished/.corvane-a.00000000-b-1-1-0.json");
    // Of another machine that was heard of an hour ago: otherwise it would be waited for.
    std::filesystem::last_write_time((place + QStringLiteral("/.corvane-unfinished")).toStdString(),
                                     std::filesystem::file_time_type::clock::now() -
                                         std::chrono::hours(1));
    try {
        OutputFolder out(place, QStringLiteral("fuzz"));
        (void)out.commit();
    } catch (const InputError &) {
        // As it may be.
    }
    require(QFile::exists(secret), "nothing outside the folder is touched");
}

void readLock(const QByteArray &bytes)
{
    if (const auto holder = LockHolder::of(bytes))
        holder->words();
}

// ---- texts

void readManifest(const QByteArray &bytes)
{
    const UpdateManifest manifest = readUpdateManifest(bytes);
    require(QVersionNumber::fromString(manifest.version.toString()) == manifest.version,
            "a version reads back");
}

void readNames(const QByteArray &bytes)
{
    const auto text = fromStrictUtf8(bytes);
    const QString name = text.value_or(QString::fromLatin1(bytes));
    bidsName(name);
    bidsLabel(name);
    entityOf(name, QStringLiteral("task"));
    runPrefix(name);
    atlasName(name);
    wholeNumber(name);
    nameFault(name);
    printable(name, 100);
    if (const auto number = finiteNumber(name))
        require(finiteNumber(QString::fromLatin1(shortestDecimal(*number))) == number,
                "a number reads back");
}

constexpr Reader allReaders[] = {{"vtc", readVtc, true},
                                 {"voi", readVoi, true},
                                 {"prt", readPrt, true},
                                 {"vmr", readVmrFile, true},
                                 {"nifti", readNifti, true},
                                 {"graph", readGraph, true},
                                 {"matrix", readMatrix, true},
                                 {"series", readSeries, true},
                                 {"labels", readLabels, true},
                                 {"events", readEventsTable, true},
                                 {"confounds", readConfoundsTable, false},
                                 {"strategy", readStrategy, false},
                                 {"censor", readCensor, true},
                                 {"places", readPlaces, true},
                                 {"spheres", readSphereTable, true},
                                 {"json", readJsonFile, true},
                                 {"filter", readFilterFile, true},
                                 {"folder", readFolder, false},
                                 {"study", readStudy, true},
                                 {"design", readDesign, false},
                                 {"formula", readFormula, false},
                                 {"contrast", readContrast, false},
                                 {"records", readOwnRecords, false},
                                 {"lock", readLock, false},
                                 {"manifest", readManifest, false},
                                 {"names", readNames, false}};

} // namespace

const Reader *begin()
{
    return std::begin(allReaders);
}

const Reader *end()
{
    return std::end(allReaders);
}

std::string errorOf(const Reader &reader, const QByteArray &bytes)
{
    try {
        reader.read(bytes);
    } catch (const InputError &error) {
        const std::string said = error.what();
        require(said.find('\n') == std::string::npos, "an error of one line");
        require(!reader.namesFile || said.rfind(folder().toStdString(), 0) == 0,
                "an error that names the file");
        return said;
    } catch (const statistics::Error &error) {
        return error.what();
    } catch (const signals::Error &error) {
        return error.what();
    }
    return {};
}

} // namespace reading
