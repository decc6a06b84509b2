// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/run_files.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "host/files/listing.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <iterator>

namespace corvane
{

namespace
{

bool isDesc(const QString &entity)
{
    return entity.startsWith(QLatin1String("desc-"));
}

/// How many entities of a name are a run's; none if one is not.
std::optional<int> sharedEntities(const BidsName &name, const BidsName &run)
{
    int shared = 0;
    for (const QString &entity : name.entities) {
        if (isDesc(entity))
            continue;
        if (!run.entities.contains(entity))
            return std::nullopt;
        ++shared;
    }
    return shared;
}

/// The folder and those above it, ending with the dataset's own: "sub-01/func", "sub-01", "".
QStringList upwardsFrom(QString folder)
{
    QStringList folders{folder};
    while (!folder.isEmpty()) {
        const int slash = folder.lastIndexOf(QLatin1Char('/'));
        folder = slash < 0 ? QString() : folder.left(slash);
        folders += folder;
    }
    return folders;
}

QString below(const QString &dataset, const QString &folder)
{
    return folder.isEmpty() ? dataset : QDir(dataset).filePath(folder);
}

std::vector<BidsName> parsed(const QStringList &names)
{
    std::vector<BidsName> all;
    std::transform(names.begin(), names.end(), std::back_inserter(all), bidsName);
    return all;
}

} // namespace

ListedFolder listed(const QString &path)
{
    return {path, parsed(namesInFolder(path, {QStringLiteral("*")}, Listed::Everything))};
}

std::vector<BidsName> filesOf(const ListedFolder &folder, const QString &desc,
                              const QStringList &suffixes, const QStringList &endings)
{
    std::vector<BidsName> found;
    std::copy_if(folder.files.begin(), folder.files.end(), std::back_inserter(found),
                 [&](const BidsName &name) {
                     return suffixes.contains(name.suffix) && endings.contains(name.ending) &&
                            name.label(QStringLiteral("desc")) == desc;
                 });
    return found;
}

std::vector<BidsName> closestTo(const BidsName &run, const std::vector<BidsName> &names)
{
    std::vector<BidsName> closest;
    int most = -1;
    for (const BidsName &name : names) {
        const std::optional<int> shared = sharedEntities(name, run);
        if (!shared || *shared < most)
            continue;
        if (*shared > most)
            closest.clear();
        most = *shared;
        closest.push_back(name);
    }
    return closest;
}

std::vector<BidsName> onGridOf(const BidsName &run, const std::vector<BidsName> &names)
{
    std::vector<BidsName> found;
    std::copy_if(names.begin(), names.end(), std::back_inserter(found), [&](const BidsName &name) {
        for (const char *entity : {"space", "res", "den"})
            if (name.label(QLatin1String(entity)) != run.label(QLatin1String(entity)))
                return false;
        return true;
    });
    return found;
}

std::optional<double> Sidecars::repetitionTime(const QString &folder, const BidsName &run)
{
    for (const QString &place : upwardsFrom(folder)) {
        std::vector<BidsName> fitting;
        for (const BidsName &name : boldSidecars(place))
            if (std::all_of(name.entities.begin(), name.entities.end(),
                            [&](const QString &entity) { return run.entities.contains(entity); }))
                fitting.push_back(name);
        std::stable_sort(fitting.begin(), fitting.end(), [](const BidsName &a, const BidsName &b) {
            return a.entities.size() > b.entities.size();
        });
        for (const BidsName &name : fitting)
            if (const auto time = timeIn(QDir(below(m_dataset, place)).filePath(name.file)))
                return time;
    }
    return std::nullopt;
}

const std::vector<BidsName> &Sidecars::boldSidecars(const QString &folder)
{
    auto known = m_folders.find(folder);
    if (known == m_folders.end())
        known = m_folders.insert(
            folder, parsed(namesInFolder(below(m_dataset, folder), {QStringLiteral("*bold.json")},
                                         Listed::Everything)));
    return *known;
}

std::optional<double> Sidecars::timeIn(const QString &path)
{
    const auto known = m_times.constFind(path);
    if (known != m_times.constEnd())
        return *known;
    QJsonParseError fault{};
    const QJsonDocument document =
        QJsonDocument::fromJson(InputFile(path).all(largestText), &fault);
    if (!document.isObject())
        throw InputError(path, QStringLiteral("byte %1").arg(fault.offset),
                         document.isNull() ? fault.errorString() : QStringLiteral("no object"),
                         QStringLiteral("a JSON object"));
    const QJsonValue value = document.object().value(QStringLiteral("RepetitionTime"));
    std::optional<double> time;
    if (!value.isUndefined()) {
        if (value.toDouble() <= 0)
            throw InputError(path, QStringLiteral("RepetitionTime"),
                             value.isDouble() ? QString::number(value.toDouble())
                                              : QStringLiteral("no number"),
                             QStringLiteral("seconds above 0"));
        time = value.toDouble();
    }
    m_times.insert(path, time);
    return time;
}

} // namespace corvane
