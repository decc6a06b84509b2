// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/study/known_study.h"

#include "tests/host/support/nifti_files.h"

#include <QDirIterator>

#include <cmath>

namespace corvane
{

namespace
{

constexpr int regions = 4;
constexpr int voxelsOfRegion = 3;

/// A number that looks random, the same everywhere, from -0.5 to 0.5.
double jitter(int a, int b)
{
    const unsigned mixed = unsigned(a * 7919 + b * 104729 + 12345) * 2654435761U;
    return double(mixed >> 8 & 0xffff) / 65536 - 0.5;
}

int seedOf(const KnownRun &run)
{
    return int(qChecksum(run.participant.toUtf8().constData(), uint(run.participant.size()))) %
               977 +
           (run.session + run.task).size();
}

double confoundAt(const KnownRun &run, int volume)
{
    return jitter(volume, 99 + seedOf(run)) + 0.4 * std::sin(0.7 * volume);
}

float sample(const KnownRun &run, int voxel, int volume)
{
    const int place = voxel / voxelsOfRegion;
    return float(1000 + 100 * jitter(volume, seedOf(run) + (place < 2 ? 0 : place)) +
                 30 * jitter(volume, 50 + voxel) + 200 * confoundAt(run, volume));
}

QString folderOf(const KnownRun &run)
{
    QString folder = QStringLiteral("sub-") + run.participant;
    if (!run.session.isEmpty())
        folder += QStringLiteral("/ses-") + run.session;
    return folder + QStringLiteral("/func");
}

QString stemOf(const KnownRun &run)
{
    QString stem = QStringLiteral("sub-") + run.participant;
    if (!run.session.isEmpty())
        stem += QStringLiteral("_ses-") + run.session;
    return stem + QStringLiteral("_task-") + run.task;
}

QByteArray imageBytes(std::initializer_list<int> size, const std::vector<qint16> &values)
{
    NiftiParts parts;
    parts.setSize(size);
    parts.setSpacing(3);
    setSamples(parts, values);
    return gzipped(niftiBytes(parts));
}

QByteArray runBytes(const KnownRun &run)
{
    std::vector<float> samples;
    for (int volume = 0; volume < run.volumes; ++volume)
        for (int copy = 0; copy < run.copies; ++copy)
            for (int voxel = 0; voxel < regions * voxelsOfRegion; ++voxel)
                samples.push_back(sample(run, voxel, volume));
    NiftiParts parts;
    parts.setSize({4, 3, run.copies, run.volumes});
    parts.setSpacing(3);
    parts.pixdim[4] = 2;
    setSamples(parts, samples);
    const QByteArray bytes = gzipped(niftiBytes(parts));
    return run.isBroken ? bytes.left(bytes.size() / 2) : bytes;
}

QByteArray confoundBytes(const KnownRun &run)
{
    QByteArray table = "framewise_displacement\ttrouble\n";
    for (int row = 0; row < run.confoundRows; ++row)
        table += (row == 0 ? QByteArray("n/a") : QByteArray(row == 20 ? "0.8" : "0.1")) + '\t' +
                 QByteArray::number(confoundAt(run, row), 'g', 17) + '\n';
    return table;
}

} // namespace

KnownStudy::KnownStudy()
{
    QDir().mkpath(dataset());
    putBytes(dataset() + QStringLiteral("/dataset_description.json"),
             R"({"Name": "Small", "BIDSVersion": "1.8.0", "DatasetType": "derivative",
                 "GeneratedBy": [{"Name": "pipeline", "Version": "23.1"}]})");
    std::vector<qint16> labels;
    for (int voxel = 0; voxel < regions * voxelsOfRegion; ++voxel)
        labels.push_back(qint16(1 + voxel / voxelsOfRegion));
    putBytes(atlas(), imageBytes({4, 3, 1}, labels));
}

void KnownStudy::add(const KnownRun &run)
{
    QDir().mkpath(dataset() + QLatin1Char('/') + folderOf(run));
    putBytes(file(run, "_space-T1w_desc-preproc_bold.nii.gz"), runBytes(run));
    if (run.hasConfounds)
        putBytes(file(run, run.isOldStyle ? "_desc-confounds_regressors.tsv"
                                          : "_desc-confounds_timeseries.tsv"),
                 confoundBytes(run));
    if (run.hasMask)
        putBytes(file(run, "_space-T1w_desc-brain_mask.nii.gz"),
                 imageBytes({4, 3, 1}, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0}));
}

void KnownStudy::addParticipants(int count)
{
    for (int n = 1; n <= count; ++n)
        add(QByteArray::number(n).rightJustified(2, '0').constData());
}

QString KnownStudy::file(const KnownRun &run, const char *rest) const
{
    return QStringLiteral("%1/%2/%3%4")
        .arg(dataset(), folderOf(run), stemOf(run), QLatin1String(rest));
}

QString KnownStudy::output(const KnownRun &run, const char *rest) const
{
    return QStringLiteral("%1/%2/%3_space-T1w_atlas-Four_%4")
        .arg(out(), folderOf(run), stemOf(run), QLatin1String(rest));
}

Eigen::VectorXd KnownStudy::region(const KnownRun &run, int number)
{
    Eigen::VectorXd series(run.volumes);
    for (int volume = 0; volume < run.volumes; ++volume) {
        double sum = 0;
        for (int voxel = 0; voxel < voxelsOfRegion; ++voxel)
            sum += double(sample(run, voxelsOfRegion * number + voxel, volume));
        series[volume] = sum / voxelsOfRegion;
    }
    return series;
}

Eigen::VectorXd KnownStudy::confound(const KnownRun &run)
{
    Eigen::VectorXd column(run.volumes);
    for (int volume = 0; volume < run.volumes; ++volume)
        column[volume] = confoundAt(run, volume);
    return column;
}

QStringList KnownStudy::arguments(const QString &step, const QStringList &more) const
{
    return QStringList{QStringLiteral("cohort"),
                       dataset(),
                       out(),
                       step,
                       QStringLiteral("--atlas"),
                       atlas(),
                       QStringLiteral("--clean"),
                       QStringLiteral("columns:trouble"),
                       QStringLiteral("--no-pages")} +
           more;
}

ProgramRun KnownStudy::cohort(const QString &step, const QStringList &more) const
{
    return runCorvane(arguments(step, more));
}

ProgramRun KnownStudy::ofStudy(const QStringList &step) const
{
    return runCorvane(QStringList{QStringLiteral("cohort"), out()} + step);
}

QStringList KnownStudy::connectome(const KnownRun &run, const KnownRun &confounds,
                                   const QString &folder) const
{
    return {QStringLiteral("connectome"),
            QStringLiteral("--bold"),
            file(run, "_space-T1w_desc-preproc_bold.nii.gz"),
            QStringLiteral("--atlas"),
            atlas(),
            QStringLiteral("--confounds"),
            file(confounds, "_desc-confounds_timeseries.tsv"),
            QStringLiteral("--clean"),
            QStringLiteral("columns:trouble"),
            QStringLiteral("--out"),
            folder};
}

QStringList KnownStudy::table() const
{
    QStringList lines =
        QString::fromUtf8(bytesOf(out() + QStringLiteral("/participants_connectome.tsv")))
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    EXPECT_FALSE(lines.isEmpty());
    return lines.mid(1);
}

QMap<QString, QByteArray> KnownStudy::filesBelow(const QString &folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator every(folder, QDir::Files, QDirIterator::Subdirectories);
    while (every.hasNext()) {
        const QString path = every.next();
        files[QDir(folder).relativeFilePath(path)] = bytesOf(path);
    }
    return files;
}

QStringList KnownStudy::leftBelow(const QString &folder)
{
    QStringList left;
    QDirIterator every(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (every.hasNext()) {
        every.next();
        const QString name = every.fileName();
        const bool isKept = name == QLatin1String(".corvane-plan.json") ||
                            name == QLatin1String(".corvane-outputs.json") ||
                            (name.startsWith(QLatin1String(".corvane-row-")) &&
                             name.endsWith(QLatin1String(".json")));
        if (name.startsWith(QLatin1Char('.')) && !isKept)
            left += name;
    }
    return left;
}

} // namespace corvane
