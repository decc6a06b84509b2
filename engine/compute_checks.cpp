// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/compute_checks.h"

#include "dataset/counted.h"
#include "dataset/subject.h"
#include "engine/assembly.h"
#include "engine/compute_settings.h"

#include <utility>

namespace
{

constexpr int mostNamed = 5;

/// The first few texts of a list, and how many more there are.
QString listed(const QStringList &texts, const QString &separator = QStringLiteral(", "))
{
    const QString some = QStringList(texts.mid(0, mostNamed)).join(separator);
    const int more = texts.size() - mostNamed;
    return more > 0 ? QStringLiteral("%1 and %2 more").arg(some, QString::number(more)) : some;
}

NodeFault faultOf(const Eigen::MatrixXf &block, Eigen::Index node, bool isEmpty)
{
    const auto row = block.row(node).array();
    if (isEmpty)
        return NodeFault::Empty;
    if (!row.allFinite())
        return NodeFault::NotFinite;
    return (row == row(0)).all() ? NodeFault::Constant : NodeFault::None;
}

/// One interval of the protocol, as far as the run has it.
struct Slice {
    QString name; ///< `interval 3 ("task")`
    int from;     ///< volumes from 1, both ends included
    int to;
    int used; ///< volumes within the run
    bool isEvent;
    Eigen::MatrixXf block;
};

std::vector<Slice> slicesOf(const Subject &subject, const Eigen::MatrixXf &timeseries)
{
    const SubjectProtocol protocol = subject.protocol();
    const QStringList names = protocol.volumeNames.values();
    const QList<int> events = protocol.volumeEvents.values();
    std::vector<Slice> slices;
    for (const auto &[from, to] : sliceIntervals(protocol)) {
        const int number = static_cast<int>(slices.size());
        Slice slice;
        slice.name = QStringLiteral("interval %1 (\"%2\")")
                         .arg(QString::number(number + 1), names.value(number));
        slice.from = from;
        slice.to = to;
        slice.isEvent = events.value(number) != 0;
        slice.block = blockOfInterval(timeseries, {from, to});
        slice.used = static_cast<int>(slice.block.cols());
        slices.push_back(std::move(slice));
    }
    return slices;
}

class Warnings
{
public:
    Warnings(const Subject &subject, const Eigen::MatrixXf &timeseries, QStringList names)
        : m_subject(subject), m_timeseries(timeseries), m_names(std::move(names)),
          m_faults(nodeFaults(subject, timeseries))
    {
    }

    QStringList all()
    {
        ofNodes(NodeFault::Empty, "without voxels");
        ofNodes(NodeFault::NotFinite, "with values that are not finite");
        ofNodes(NodeFault::Constant, "with the same value in every volume");
        if (!m_subject.useProtocol()) {
            tooFewVolumes({static_cast<int>(m_timeseries.cols())}, {QStringLiteral("the run")});
            return m_lines;
        }
        const std::vector<Slice> slices = slicesOf(m_subject, m_timeseries);
        ofIntervals(slices);
        return m_lines;
    }

private:
    bool isPartial() const
    {
        return m_subject.measure() == static_cast<int>(ConnectivityMeasure::PartialCorrelation);
    }

    QString nodeName(std::size_t node) const
    {
        return QStringLiteral("\"%1\"").arg(m_names.value(static_cast<int>(node)));
    }

    /// Nodes that have no correlations in the whole run.
    void ofNodes(NodeFault fault, const char *what)
    {
        QStringList names;
        for (std::size_t node = 0; node < m_faults.size(); ++node)
            if (m_faults[node] == fault)
                names += nodeName(node);
        if (names.isEmpty())
            return;
        const QString consequence = isPartial() ? QStringLiteral("no partial correlation is known")
                                    : names.size() == 1
                                        ? QStringLiteral("it has no connections")
                                        : QStringLiteral("they have no connections");
        m_lines += QStringLiteral("%1 %2: %3; %4")
                       .arg(counted(names.size(), "node"), QLatin1String(what), listed(names),
                            consequence);
    }

    /// Partial correlation of blocks with no more volumes than nodes.
    void tooFewVolumes(const std::vector<int> &volumes, const QStringList &blocks)
    {
        const int nodes = static_cast<int>(m_timeseries.rows());
        QStringList few;
        for (std::size_t b = 0; b < volumes.size(); ++b)
            if (volumes[b] < nodes + 1)
                few += QStringLiteral("%1 has %2")
                           .arg(blocks[static_cast<int>(b)], QString::number(volumes[b]));
        if (isPartial() && nodes > 0 && !few.isEmpty())
            m_lines += QStringLiteral("partial correlation of %1 takes at least %2: %3")
                           .arg(counted(nodes, "node"), counted(nodes + 1, "volume"), listed(few));
    }

    void ofIntervals(const std::vector<Slice> &slices)
    {
        const int volumes = static_cast<int>(m_timeseries.cols());
        QStringList cut;
        QStringList gone;
        QStringList names;
        QStringList unknown;
        std::vector<int> lengths;
        for (const Slice &slice : slices) {
            const QString range =
                QStringLiteral("%1, volumes %2 to %3")
                    .arg(slice.name, QString::number(slice.from), QString::number(slice.to));
            if (slice.used == 0)
                gone += range;
            else if (slice.used < qint64(slice.to) - slice.from + 1)
                cut += range;
            if (slice.isEvent || slice.used == 0)
                continue;
            names += slice.name;
            lengths.push_back(slice.used);
            const QStringList nodes = nodesWithoutValues(slice.block);
            if (!nodes.isEmpty())
                unknown += QStringLiteral("%1: %2").arg(slice.name, listed(nodes));
        }
        add(cut, QStringLiteral("cut off at the end of the run, which has %1")
                     .arg(counted(volumes, "volume")));
        add(gone, QStringLiteral("beyond the end of the run, which has %1, and without connections")
                      .arg(counted(volumes, "volume")));
        tooFewVolumes(lengths, names);
        add(unknown, QStringLiteral("in which nodes have no connections, since their values do not "
                                    "change or are not finite"));
    }

    /// Those of a block that have values over the run.
    QStringList nodesWithoutValues(const Eigen::MatrixXf &block) const
    {
        QStringList names;
        for (std::size_t node = 0; node < m_faults.size(); ++node)
            if (m_faults[node] == NodeFault::None &&
                faultOf(block, static_cast<Eigen::Index>(node), false) != NodeFault::None)
                names += nodeName(node);
        return names;
    }

    void add(const QStringList &intervals, const QString &what)
    {
        if (!intervals.isEmpty())
            m_lines += QStringLiteral("%1 %2: %3")
                           .arg(counted(intervals.size(), "interval"), what,
                                listed(intervals, QStringLiteral("; ")));
    }

    const Subject &m_subject;
    const Eigen::MatrixXf &m_timeseries;
    const QStringList m_names;
    const std::vector<NodeFault> m_faults;
    QStringList m_lines;
};

} // namespace

std::vector<NodeFault> nodeFaults(const Subject &subject, const Eigen::MatrixXf &timeseries)
{
    const QVector<int> seeds = subject.scheme().seedVois;
    std::vector<NodeFault> faults;
    for (Eigen::Index node = 0; node < timeseries.rows(); ++node) {
        const bool isEmpty = subject.emptyVois.contains(seeds.value(static_cast<int>(node), -1));
        faults.push_back(timeseries.cols() == 0 ? NodeFault::None
                                                : faultOf(timeseries, node, isEmpty));
    }
    return faults;
}

QStringList computeWarnings(const Subject &subject, const Eigen::MatrixXf &timeseries,
                            const QStringList &names)
{
    // Without a run the failure of its load has been told.
    return timeseries.cols() > 0 ? Warnings(subject, timeseries, names).all() : QStringList();
}
