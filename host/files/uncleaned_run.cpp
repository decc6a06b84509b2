// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/uncleaned_run.h"

#include "host/files/input_error.h"
#include "host/files/limits.h"
#include "host/files/text_check.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

constexpr auto pathKey = "uncleaned run";
constexpr auto bytesKey = "uncleaned run bytes";
constexpr auto signatureKey = "uncleaned run signature";
constexpr auto transformKey = "uncleaned run transform";
constexpr auto volumesKey = "uncleaned run volumes";
constexpr qint64 signedPart = 1 << 16;

QString name(const char *key)
{
    return QString::fromLatin1(key);
}

QString volumesRule()
{
    return QStringLiteral("ascending volumes and ranges of volumes, as in \"5-20 23\"");
}

QString transformText(const Eigen::Affine3d &transform)
{
    QStringList numbers;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            numbers += QString::fromLatin1(shortestDecimal(transform(row, column)));
    return numbers.join(QLatin1Char(' '));
}

Eigen::Affine3d readTransform(const NrrdHeader &header)
{
    const QStringList words = header.words(name(transformKey), 12);
    Eigen::Affine3d transform = Eigen::Affine3d::Identity();
    for (int n = 0; n < 12; ++n) {
        const std::optional<double> number = finiteNumber(words[n]);
        if (!number)
            header.fail(name(transformKey), quoted(words[n]), QStringLiteral("a finite number"));
        transform(n / 4, n % 4) = *number;
    }
    return transform;
}

/// A volume or a range of volumes behind those before.
void addRange(const NrrdHeader &header, const QString &range, std::vector<int> &volumes)
{
    const QStringList ends = range.split(QLatin1Char('-'));
    const std::optional<qint64> first = wholeNumber(ends.first());
    const std::optional<qint64> last = wholeNumber(ends.last());
    const int before = volumes.empty() ? 0 : volumes.back();
    // More than a header can count are none of a run.
    constexpr qint64 most = 10'000'000;
    if (ends.size() > 2 || !first || !last || *first <= before || *last < *first || *last > most)
        header.fail(name(volumesKey), quoted(range), volumesRule());
    for (qint64 volume = *first; volume <= *last; ++volume)
        volumes.push_back(static_cast<int>(volume));
}

std::vector<int> readVolumes(const NrrdHeader &header)
{
    std::vector<int> volumes;
    for (const QString &range : header.text(name(volumesKey)).split(QLatin1Char(' ')))
        addRange(header, range, volumes);
    return volumes;
}

} // namespace

QStringList uncleanedKeys()
{
    return {name(pathKey), name(bytesKey), name(signatureKey), name(transformKey),
            name(volumesKey)};
}

std::optional<BrokenRule> brokenRule(const UncleanedRun &run, int volumes)
{
    static const QRegularExpression signature(QStringLiteral("\\A[0-9a-f]{40}\\z"));
    if (run.path.isEmpty() || !run.path.isValidUtf16() || run.path.contains(QChar(0)))
        return BrokenRule{pathKey, quoted(run.path), QStringLiteral("a path")};
    if (run.bytes < 0)
        return BrokenRule{bytesKey, QString::number(run.bytes), QStringLiteral("0 or more")};
    if (!signature.match(run.signature).hasMatch())
        return BrokenRule{signatureKey, quoted(run.signature),
                          QStringLiteral("40 lower-case hexadecimal digits")};
    if (!run.toRun.matrix().allFinite())
        return BrokenRule{transformKey, QStringLiteral("nan"), QStringLiteral("finite numbers")};
    if (run.volumes.size() != std::size_t(volumes))
        return BrokenRule{volumesKey, QStringLiteral("%1 volumes").arg(run.volumes.size()),
                          QStringLiteral("the %1 of the file").arg(volumes)};
    return std::nullopt;
}

QString volumesText(const std::vector<int> &volumes)
{
    QStringList ranges;
    for (std::size_t first = 0; first < volumes.size();) {
        std::size_t last = first;
        while (last + 1 < volumes.size() && volumes[last + 1] == volumes[last] + 1)
            ++last;
        ranges += last > first ? QStringLiteral("%1-%2").arg(volumes[first]).arg(volumes[last])
                               : QString::number(volumes[first]);
        first = last + 1;
    }
    return ranges.join(QLatin1Char(' '));
}

void addUncleaned(NrrdWriter &header, const UncleanedRun &run)
{
    header.key(pathKey, run.path)
        .key(bytesKey, QString::number(run.bytes))
        .key(signatureKey, run.signature)
        .key(transformKey, transformText(run.toRun))
        .key(volumesKey, volumesText(run.volumes));
}

std::optional<UncleanedRun> readUncleaned(const NrrdHeader &header)
{
    const QStringList keys = uncleanedKeys();
    if (std::none_of(keys.begin(), keys.end(), [&](const QString &key) { return header.has(key); }))
        return std::nullopt;
    UncleanedRun run;
    run.path = header.text(name(pathKey));
    const std::optional<qint64> bytes = wholeNumber(header.text(name(bytesKey)));
    if (!bytes)
        header.fail(name(bytesKey), QStringLiteral("a whole number, 0 or more"));
    run.bytes = *bytes;
    run.signature = header.text(name(signatureKey));
    run.toRun = readTransform(header);
    run.volumes = readVolumes(header);
    return run;
}

QString runSignature(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    if (!file.open(QIODevice::ReadOnly))
        throw InputError(path, QStringLiteral("reading"), file.errorString(),
                         QStringLiteral("a readable file"));
    hash.addData(file.read(signedPart));
    file.seek(std::max<qint64>(0, file.size() - signedPart));
    hash.addData(file.read(signedPart));
    return QString::fromLatin1(hash.result().toHex());
}

std::optional<QString> uncleanedFault(const UncleanedRun &run)
{
    const QString shown = printable(run.path, 4096);
    if (!QFileInfo(run.path).isFile())
        return QStringLiteral("The run is not at %1 any more.").arg(shown);
    try {
        if (QFileInfo(run.path).size() == run.bytes && runSignature(run.path) == run.signature)
            return std::nullopt;
    } catch (const InputError &error) {
        return QString::fromUtf8(error.what());
    }
    return QStringLiteral("The run at %1 has changed since it was imported.").arg(shown);
}

} // namespace corvane
