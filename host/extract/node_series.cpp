// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/node_series.h"

#include "dataset/counted.h"
#include "host/extract/volumes_ahead.h"
#include "host/files/input_error.h"
#include "host/files/sample_conversion.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

/// The stretches without the n-th of their voxels where `gone` has the n-th flag.
std::vector<Stretch> without(const std::vector<Stretch> &stretches, const std::vector<bool> &gone)
{
    std::vector<Stretch> left;
    std::size_t n = 0;
    for (const Stretch &stretch : stretches) {
        bool goesOn = false;
        for (qint64 i = 0; i < stretch.length; ++i, ++n) {
            if (!gone[n] && goesOn)
                ++left.back().length;
            else if (!gone[n])
                left.push_back({stretch.start + i, 1, stretch.node});
            goesOn = !gone[n];
        }
    }
    return left;
}

/// Adds up the samples of nodes, volume by volume. What is added is how far each sample is from
/// the voxel's first one: so a voxel that never changes adds exactly nothing.
class NodeSums
{
public:
    NodeSums(const NiftiHeader &header, const NodeMap &map)
        : m_header(header), m_stretches(map.stretches), m_sums(header.dim[3], map.nodes.size())
    {
        m_sums.setZero();
    }

    void add(qint64 volume, const char *samples)
    {
        if (volume == 0)
            begin(samples);
        std::size_t n = 0; // of the voxel with which a stretch begins
        for (const Stretch &stretch : m_stretches) {
            const double *const values = convert(samples, stretch);
            const double *const first = m_first.data() + n;
            double sum = 0;
            for (qint64 i = 0; i < stretch.length; ++i) {
                const double change = values[i] - first[i];
                m_changed[n + std::size_t(i)] |= std::uint8_t(change != 0);
                sum += change;
            }
            if (!std::isfinite(sum))
                findBroken(values, stretch.length, n);
            m_sums(volume, stretch.node) += sum;
            n += std::size_t(stretch.length);
        }
    }

    /// How many voxels turned non-finite, of those that were finite in the first volume, and what
    /// is left without them.
    qint64 brokenCount() const { return std::count(m_broken.begin(), m_broken.end(), true); }
    std::vector<Stretch> unbroken() const { return without(m_stretches, m_broken); }

    NodeSeries means() const
    {
        NodeSeries series;
        series.used.assign(std::size_t(m_sums.cols()), 0);
        Eigen::RowVectorXd firsts = Eigen::RowVectorXd::Zero(m_sums.cols());
        std::size_t n = 0;
        for (const Stretch &stretch : m_stretches)
            for (qint64 i = 0; i < stretch.length; ++i, ++n)
                if (m_changed[n] != 0) {
                    ++series.used[std::size_t(stretch.node)];
                    firsts[stretch.node] += m_first[n];
                }
        series.values.resize(m_sums.rows(), m_sums.cols());
        for (Eigen::Index node = 0; node < m_sums.cols(); ++node) {
            // 0/0 for a node without voxels: a mean that is none.
            const auto count = double(series.used[std::size_t(node)]);
            series.values.col(node) = m_sums.col(node).array() / count + firsts[node] / count;
        }
        return series;
    }

private:
    /// Takes the first sample of each voxel and leaves out those that are not finite.
    void begin(const char *samples)
    {
        std::vector<bool> broken;
        for (const Stretch &stretch : m_stretches) {
            const double *const values = convert(samples, stretch);
            for (qint64 i = 0; i < stretch.length; ++i) {
                broken.push_back(!std::isfinite(values[i]));
                if (!broken.back())
                    m_first.push_back(values[i]);
            }
        }
        m_stretches = without(m_stretches, broken);
        m_changed.assign(m_first.size(), 0);
        m_broken.assign(m_first.size(), false);
    }

    const double *convert(const char *samples, const Stretch &stretch)
    {
        m_values.resize(std::max(m_values.size(), std::size_t(stretch.length)));
        toDouble(m_header, samples + stretch.start * m_header.sampleSize, stretch.length,
                 m_values.data());
        return m_values.data();
    }

    void findBroken(const double *values, qint64 length, std::size_t n)
    {
        for (qint64 i = 0; i < length; ++i)
            if (!std::isfinite(values[i]))
                m_broken[n + std::size_t(i)] = true;
    }

    const NiftiHeader &m_header;
    std::vector<Stretch> m_stretches;
    Eigen::MatrixXd m_sums; ///< volumes x nodes
    // One entry for each voxel of the stretches.
    std::vector<double> m_first;
    std::vector<std::uint8_t> m_changed;
    std::vector<bool> m_broken;
    std::vector<double> m_values; ///< of a stretch
};

NodeSums addUp(const QString &path, const NiftiHeader &header, const NodeMap &map,
               const ProgressWatch &watch, QStringList &notes)
{
    NiftiStream run(path);
    if (!(run.header() == header))
        throw InputError(path, QStringLiteral("header"),
                         QStringLiteral("another run than a moment ago"),
                         QStringLiteral("the file to stay as it is"));
    NodeSums sums(header, map);
    {
        VolumesAhead volumes(run);
        for (qint64 volume = 0; volume < header.dim[3]; ++volume) {
            sums.add(volume, volumes.next());
            tellProgress(watch, volume + 1, header.dim[3]);
        }
    }
    run.finish(notes);
    return sums;
}

} // namespace

std::vector<double> NodeSeries::coverage(const std::vector<Node> &nodes) const
{
    std::vector<double> shares;
    for (std::size_t node = 0; node < nodes.size(); ++node)
        shares.push_back(used[node] > 0 ? double(used[node]) / nodes[node].wholeVoxels : 0);
    return shares;
}

NodeSeries readNodeSeries(const QString &path, const NiftiHeader &header, const NodeMap &map,
                          const ProgressWatch &watch, QStringList &notes)
{
    const NodeSums sums = addUp(path, header, map, watch, notes);
    const qint64 broken = sums.brokenCount();
    if (broken == 0)
        return sums.means();
    NodeMap finite = map;
    finite.stretches = sums.unbroken();
    notes += QStringLiteral("%1: %2 not finite behind the first volume and left out: the run was "
                            "read a second time")
                 .arg(printable(path, 4096), counted(broken, "voxel is", "voxels are"));
    QStringList saidBefore;
    return addUp(path, header, finite, watch, saidBefore).means();
}

} // namespace corvane
