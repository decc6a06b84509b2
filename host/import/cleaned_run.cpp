// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/cleaned_run.h"

#include "host/files/input_error.h"
#include "host/files/vtc_series_writer.h"
#include "signals/cleaning.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

using Eigen::Index;
using Eigen::MatrixXd;

/// Voxels that are cleaned together.
constexpr qint64 blockLength = 512;

std::optional<double> known(double value)
{
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

QString intervalText(const QString &condition, const std::pair<int, int> &interval)
{
    return QStringLiteral("%1 %2-%3")
        .arg(quoted(condition), QString::number(interval.first), QString::number(interval.second));
}

/// The places, from 1, of the kept volumes within an interval; the second below the first when
/// there is none.
std::pair<int, int> placesWithin(const std::pair<int, int> &interval,
                                 const std::vector<Index> &kept)
{
    const auto first = std::lower_bound(kept.begin(), kept.end(), Index(interval.first - 1));
    const auto end = std::lower_bound(first, kept.end(), Index(interval.second));
    return {int(first - kept.begin()) + 1, int(end - kept.begin())};
}

MatrixXd seriesOf(const VtcFile &run, qint64 first, qint64 count)
{
    const qint64 volumes = run.info().nrOfVolumes;
    const auto read = [&](const auto *samples) {
        MatrixXd series(volumes, count);
        std::copy_n(samples + first * volumes, volumes * count, series.data());
        return series;
    };
    return run.info().type == VtcInfo::Short ? read(run.shortSamples()) : read(run.floatSamples());
}

/// A block of series, cleaned, with their means; what is not finite throughout has no values.
class BlockCleaner
{
public:
    explicit BlockCleaner(const signals::Design &design) : m_design(design) {}

    Eigen::MatrixXf cleaned(const MatrixXd &series)
    {
        Eigen::MatrixXf result(Index(m_design.rows.size()), series.cols());
        std::vector<Index> work;
        for (Index voxel = 0; voxel < series.cols(); ++voxel) {
            if (!series.col(voxel).allFinite()) {
                result.col(voxel).setConstant(std::numeric_limits<float>::quiet_NaN());
                ++m_broken;
            } else if ((series.col(voxel).array() == series(0, voxel)).all()) {
                result.col(voxel).setConstant(float(series(0, voxel)));
            } else {
                work.push_back(voxel);
            }
        }
        const signals::Cleaned cleaned =
            signals::clean(MatrixXd(series(Eigen::all, work)), m_design);
        result(Eigen::all, work) = (cleaned.series.rowwise() + cleaned.means).cast<float>();
        return result;
    }

    qint64 broken() const { return m_broken; }

private:
    const signals::Design &m_design;
    qint64 m_broken = 0;
};

} // namespace

RunCleaning planImportCleaning(const CleaningRequest &request, int volumes, double repetitionTime,
                               QStringList &notes)
{
    if (request.settings.standardize != signals::Standardize::none)
        throw signals::UsageError("an import keeps the unit of the run: --standardize is for "
                                  "series of nodes");
    return planCleaning(request, volumes, repetitionTime, notes);
}

CleaningLedger ledgerOf(const CleaningRequest &request, const RunCleaning &cleaning)
{
    const signals::Ledger &ledger = cleaning.design.ledger;
    CleaningLedger result;
    result.method = cleaningText(request, cleaning).left(CleaningLedger::longestMethod);
    result.volumes = int(ledger.volumes);
    result.nonSteady = int(ledger.non_steady);
    result.censored = int(ledger.censored);
    result.kept = int(ledger.kept);
    result.rank = int(ledger.rank);
    result.degreesOfFreedom = ledger.degrees;
    result.secondsKept = ledger.seconds;
    result.meanFdBefore = known(ledger.mean_fd_before);
    result.meanFdAfter = known(ledger.mean_fd_after);
    return result;
}

Prt renumberedProtocol(const Prt &protocol, const std::vector<Index> &kept, QStringList &notes)
{
    Prt result = protocol;
    QStringList told;
    for (PrtCondition &condition : result.conditions) {
        std::vector<std::pair<int, int>> left;
        for (const std::pair<int, int> &interval : condition.intervals) {
            const std::pair<int, int> places = placesWithin(interval, kept);
            const int before = interval.second - interval.first + 1;
            const int after = places.second - places.first + 1;
            if (after > 0)
                left.push_back(places);
            if (after < before)
                told += after > 0 ? QStringLiteral("protocol: %1 keeps %2 of %3 volumes, now %4-%5")
                                        .arg(intervalText(condition.name, interval))
                                        .arg(after)
                                        .arg(before)
                                        .arg(places.first)
                                        .arg(places.second)
                                  : QStringLiteral("protocol: %1 is gone: none of its volumes is "
                                                   "kept")
                                        .arg(intervalText(condition.name, interval));
        }
        condition.intervals = left;
    }
    if (!told.isEmpty())
        notes += QStringLiteral("protocol: counts the volumes that are kept, not those of the run");
    notes += told;
    return result;
}

qint64 writeCleanedRun(const QString &path, const VtcInfo &info, const VtcFile &run,
                       const signals::Design &design, const ProgressWatch &watch)
{
    const qint64 voxels = run.info().sampleCount() / run.info().nrOfVolumes;
    VtcSeriesWriter writer(path, info);
    BlockCleaner cleaner(design);
    for (qint64 first = 0; first < voxels; first += blockLength) {
        const qint64 count = std::min(blockLength, voxels - first);
        const Eigen::MatrixXf block = cleaner.cleaned(seriesOf(run, first, count));
        writer.add(block.data(), block.size());
        tellProgress(watch, first + count, voxels);
    }
    run.requireIntact();
    writer.commit();
    return cleaner.broken();
}

} // namespace corvane
