// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/compute/group_distances.h"

#include "engine/spanning_trees.h"
#include "host/files/graph_table.h"
#include "host/files/input_error.h"
#include "host/files/json_file.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <nodalis/nodalis.h>

#include <algorithm>
#include <utility>

namespace corvane
{

namespace
{

/// The file of the first matrix in a folder of "compute".
QString firstMatrixIn(const QDir &folder)
{
    const QString summary = folder.filePath(QStringLiteral("summary.json"));
    if (!QFileInfo::exists(summary))
        throw InputError(folder.path(), QStringLiteral("its files"),
                         QStringLiteral("no summary.json"),
                         QStringLiteral("a folder that Corvane compute wrote, or a matrix"));
    const QJsonArray slices = readJson(summary).value(QStringLiteral("slices")).toArray();
    const QString file = slices.at(0).toObject().value(QStringLiteral("connectivity")).toString();
    if (file.isEmpty())
        throw InputError(summary, QStringLiteral("slices"), QStringLiteral("no matrix"),
                         QStringLiteral("one or more"));
    return folder.filePath(file);
}

} // namespace

ComparedSubject readComparedSubject(const QString &path)
{
    const QFileInfo info(path);
    const QString file = info.isDir() ? firstMatrixIn(QDir(path)) : path;
    const QString name =
        info.isDir() ? QDir(info.absoluteFilePath()).dirName() : info.completeBaseName();
    GraphTable table = readGraphTable(file);
    return {name, std::move(table.weights), table.notes};
}

int paddedSize(const std::vector<ComparedSubject> &subjects)
{
    Eigen::Index size = 0;
    for (std::size_t k = 1; k < subjects.size(); ++k)
        size = std::max(size, subjects[k].matrix.rows());
    return static_cast<int>(size);
}

Eigen::MatrixXf groupDistances(const std::vector<ComparedSubject> &subjects,
                               const ProgressWatch &watch)
{
    std::vector<Eigen::VectorXd> spectra;
    for (const ComparedSubject &subject : subjects) {
        spectra.push_back(nodalis::distances::spectrum(subject.matrix));
        tellProgress(watch, qint64(spectra.size()), qint64(subjects.size()));
    }
    const int size = paddedSize(subjects);
    const auto count = static_cast<Eigen::Index>(subjects.size());
    Eigen::MatrixXf distances(count, count);
    for (Eigen::Index j = 0; j < count; ++j) {
        for (Eigen::Index i = 0; i <= j; ++i) {
            distances(i, j) = nodalis::distances::between_spectra(
                spectra[static_cast<std::size_t>(i)], spectra[static_cast<std::size_t>(j)], size);
            distances(j, i) = distances(i, j);
        }
    }
    return distances;
}

void keepSpanningTrees(std::vector<ComparedSubject> &subjects)
{
    for (ComparedSubject &subject : subjects)
        subject.matrix = spanningTrees({subject.matrix}).weights.front();
}

} // namespace corvane
