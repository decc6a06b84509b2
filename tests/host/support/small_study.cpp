// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/support/small_study.h"

#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"

#include <QFileInfo>

namespace corvane
{

namespace
{

constexpr int voxels = 12; // 4 x 3 x 1, three for each label

/// A number that looks random, the same everywhere, from -0.5 to 0.5.
double jitter(int a, int b)
{
    const unsigned mixed = unsigned(a * 7919 + b * 104729 + 12345) * 2654435761U;
    return double(mixed >> 8 & 0xffff) / 65536 - 0.5;
}

int seedOf(const QString &text)
{
    int seed = 0;
    for (const QChar c : text)
        seed = (seed * 31 + c.unicode()) % 10007;
    return seed;
}

template <typename Sample>
QByteArray image(const std::vector<Sample> &samples, std::initializer_list<int> size)
{
    NiftiParts parts;
    parts.setSize(size);
    parts.setSpacing(3);
    parts.pixdim[4] = 2;
    setSamples(parts, samples);
    return gzipped(niftiBytes(parts));
}

QByteArray runImage(int seed)
{
    std::vector<float> samples;
    for (int t = 0; t < SmallStudy::volumes; ++t)
        for (int voxel = 0; voxel < voxels; ++voxel)
            samples.push_back(float(1000 + 100 * jitter(t, seed + voxel / 3) +
                                    60 * jitter(t, seed + 7) + 20 * jitter(t, seed + 20 + voxel)));
    return image(samples, {4, 3, 1, SmallStudy::volumes});
}

} // namespace

SmallStudy::SmallStudy(const QString &folder) : m_folder(folder)
{
    put(QStringLiteral("dataset_description.json"),
        R"({"Name": "Small", "BIDSVersion": "1.8.0", "DatasetType": "derivative",
 "GeneratedBy": [{"Name": "a pipeline"}]})");
}

QString SmallStudy::path(const QString &below) const
{
    return below.isEmpty() ? m_folder : m_folder + QLatin1Char('/') + below;
}

void SmallStudy::put(const QString &below, const QByteArray &bytes) const
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path(below)).path()));
    putBytes(path(below), bytes);
}

void SmallStudy::remove(const QString &below) const
{
    ASSERT_TRUE(QFile::remove(path(below))) << below.toStdString();
}

void SmallStudy::addRun(const QString &folder, const QString &entities, const QString &space) const
{
    const QString own = folder + QLatin1Char('/') + entities + QLatin1Char('_');
    const QString ofSpace = own + space + QLatin1Char('_');
    put(ofSpace + QStringLiteral("desc-preproc_bold.nii.gz"), runImage(seedOf(entities)));
    put(ofSpace + QStringLiteral("desc-preproc_bold.json"), R"({"RepetitionTime": 2})");
    put(ofSpace + QStringLiteral("desc-brain_mask.nii.gz"),
        image(std::vector<quint8>(voxels, 1), {4, 3, 1}));
    put(own + QStringLiteral("desc-confounds_timeseries.tsv"),
        confounds(volumes, seedOf(entities)));
    put(own + QStringLiteral("desc-confounds_timeseries.json"), "{}");
}

QString SmallStudy::addAtlas(const QString &name) const
{
    std::vector<qint16> numbers;
    for (int voxel = 0; voxel < voxels; ++voxel)
        numbers.push_back(qint16(1 + voxel / 3));
    const QString file = name + QStringLiteral("_dseg.nii.gz");
    put(file, image(numbers, {4, 3, 1}));
    put(name + QStringLiteral("_dseg.tsv"), "index\tname\n1\tA left\n2\tA right\n3\tB\n4\tC\n");
    return path(file);
}

QByteArray SmallStudy::confounds(int rows, int seed)
{
    QByteArray table = "trans_x\ttrans_y\ttrans_z\trot_x\trot_y\trot_z\tframewise_displacement\t"
                       "std_dvars\tcsf\twhite_matter\tcosine00\n";
    std::array<double, 6> last{};
    for (int t = 0; t < rows; ++t) {
        double displacement = 0;
        QList<QByteArray> cells;
        for (int parameter = 0; parameter < 6; ++parameter) {
            const double value = jitter(t, seed + parameter) * (parameter < 3 ? 0.05 : 0.001);
            displacement +=
                std::abs(value - last[std::size_t(parameter)]) * (parameter < 3 ? 1 : 50);
            last[std::size_t(parameter)] = value;
            cells += QByteArray::number(value, 'g', 9);
        }
        cells += t == 0 ? QByteArray("n/a") : QByteArray::number(displacement, 'g', 9);
        cells += t == 0 ? QByteArray("n/a") : QByteArray::number(1 + jitter(t, seed + 8), 'g', 9);
        cells += QByteArray::number(900 + jitter(t, seed + 9), 'g', 9);
        cells += QByteArray::number(1100 + jitter(t, seed + 7), 'g', 9);
        cells += QByteArray::number(0.2 * (1 - (2 * t + 1.0) / rows), 'g', 9);
        table += cells.join('\t') + '\n';
    }
    return table;
}

void addOddParticipants(const SmallStudy &study)
{
    const QString space = QStringLiteral("space-T1w");
    const auto add = [&](const char *participant, const char *rest = "_task-rest",
                         const char *session = "") {
        const QString own = QStringLiteral("sub-") + QLatin1String(participant);
        const QString name = QLatin1String(session);
        const QString folder = own + (name.isEmpty() ? QString() : QLatin1Char('/') + name);
        study.addRun(folder + QStringLiteral("/func"),
                     own + (name.isEmpty() ? QString() : QLatin1Char('_') + name) +
                         QLatin1String(rest),
                     space);
    };
    add("01");
    add("02");
    study.addRun(QStringLiteral("sub-02/func"), QStringLiteral("sub-02_task-rest"),
                 QStringLiteral("space-MNI152NLin6Asym"));
    add("03", "_task-rest_run-1");
    add("03", "_task-rest_run-2");
    add("04");
    study.remove(QStringLiteral("sub-04/func/sub-04_task-rest_desc-confounds_timeseries.tsv"));
    add("05", "_task-nback");
    add("06");
    const QString table = QStringLiteral("sub-06/func/sub-06_task-rest_desc-confounds_%1.tsv");
    ASSERT_TRUE(QFile::rename(study.path(table.arg(QStringLiteral("timeseries"))),
                              study.path(table.arg(QStringLiteral("regressors")))));
    add("07");
    const QString image =
        QStringLiteral("sub-07/func/sub-07_task-rest_space-T1w_desc-preproc_bold.nii.gz");
    const QByteArray whole = bytesOf(study.path(image));
    study.put(image, whole.left(whole.size() / 2));
    add("08");
    study.put(QStringLiteral("sub-08/func/sub-08_task-rest_desc-confounds_timeseries.tsv"),
              SmallStudy::confounds(SmallStudy::volumes - 1));
    add("09", "_task-rest", "ses-a");
    add("09", "_task-rest", "ses-b");
}

} // namespace corvane
