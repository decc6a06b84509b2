// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/compute/compute.h"

#include "dataset/counted.h"
#include "engine/compute_checks.h"
#include "engine/compute_steps.h"
#include "host/files/csv_text.h"
#include "host/files/input_error.h"
#include "host/files/series_table.h"
#include "host/session/workspace.h"
#include "plugin/host_data.h"
#include "plugin/host_functions.h"

#include <QFileInfo>

#include <stdexcept>
#include <utility>

namespace corvane
{

namespace
{

/// Keeps the texts of a session for as long as it lives.
class LogKeeper
{
public:
    explicit LogKeeper(Session &session)
    {
        QObject::connect(&session, &Session::logged, &m_listener,
                         [this](const QString &text) { add(text); });
    }

    /// What was said, each line once, without those that only tell what goes on.
    QStringList said() const
    {
        QStringList lines = m_said;
        lines.removeDuplicates(); // a file is opened more than once
        return lines;
    }

    /// The host's own words for what went wrong last: it says them before the plugin says that it
    /// failed.
    std::string reason() const
    {
        for (int i = m_said.size() - 1; i >= 0; --i) {
            if (!m_said.at(i).startsWith(QLatin1String("Plugin>")))
                return m_said.at(i).toStdString();
        }
        return m_said.isEmpty() ? std::string() : m_said.last().toStdString();
    }

private:
    void add(const QString &text)
    {
        const QString line = text.trimmed();
        if (!line.startsWith(QLatin1String("** ")))
            m_said.append(line);
    }

    QStringList m_said;
    QObject m_listener;
};

/// A document that is open for as long as it lives.
class OpenDocument
{
public:
    OpenDocument(Workspace &workspace, const QString &path)
        : m_workspace(workspace), m_position(workspace.openVmr(path))
    {
    }
    ~OpenDocument() { m_workspace.closeDocument(m_position); }
    OpenDocument(const OpenDocument &) = delete;
    OpenDocument &operator=(const OpenDocument &) = delete;

    int position() const { return m_position; }

private:
    Workspace &m_workspace;
    int m_position;
};

/// A host function has failed; the host said why in one line.
class HostFailure : public std::runtime_error
{
public:
    explicit HostFailure(const LogKeeper &log) : std::runtime_error(log.reason()) {}
};

/// A record with the settings of a request.
QSharedPointer<Subject> subjectOf(const ComputeRequest &request)
{
    auto subject = QSharedPointer<Subject>::create();
    subject->setMeasure(static_cast<int>(request.measure));
    subject->setMatrixValues(static_cast<int>(request.matrixValues));
    subject->setComputeMst(request.computeMst);
    subject->setUseProtocol(request.useProtocol);
    return subject;
}

/// The file that names the nodes.
const QString &nodesFile(const ComputeRequest &request)
{
    return request.timeseries.isEmpty() ? request.voi : request.timeseries;
}

void takeNamedProtocol(Subject &subject, const ComputeRequest &request, const LogKeeper &log)
{
    if (request.prt.isEmpty())
        return;
    if (!host_data::loadProtocolFile(subject, request.prt.toUtf8().constData()))
        throw HostFailure(log);
    subject.setPrtFile(request.prt);
}

void chooseFiles(Subject &subject, const ComputeRequest &request, const Workspace &workspace,
                 const LogKeeper &log)
{
    subject.setName(QFileInfo(request.vtc).completeBaseName());
    subject.setVtcFile(request.vtc);
    subject.linkProtocol();
    if (workspace.linkedVtc() == nullptr)
        throw HostFailure(log);
    if (!host_data::voiFileIsOneMillimetre(request.voi.toUtf8().constData())) {
        if (workspace.vois() == nullptr)
            throw HostFailure(log);
        const VOIsHeader &header = workspace.vois()->header;
        throw InputError(request.voi, QStringLiteral("resolution"),
                         QStringLiteral("%1 x %2 x %3 mm")
                             .arg(static_cast<double>(header.resolutionX))
                             .arg(static_cast<double>(header.resolutionY))
                             .arg(static_cast<double>(header.resolutionZ)),
                         QStringLiteral("VOIs of 1.0 mm"));
    }
    subject.setVoiFile(request.voi);
    takeNamedProtocol(subject, request, log);
    if (request.useProtocol && !subject.hasProtocol()) {
        throw InputError(request.vtc, QStringLiteral("linked protocol"), QStringLiteral("none"),
                         QStringLiteral("one, or a protocol given with --prt"));
    }
}

/// What files say against each other is a fault, or a warning where that is allowed.
QStringList checkedMismatches(const ComputeRequest &request, const Workspace &workspace)
{
    QStringList warnings;
    for (const ProvenanceMismatch &mismatch : workspace.mismatches()) {
        if (!request.allowMismatch)
            throw InputError(mismatch.file, mismatch.key, quoted(mismatch.found),
                             QStringLiteral("%1 as in %2; or --allow-mismatch")
                                 .arg(quoted(mismatch.expected), printable(mismatch.other, 4096)));
        warnings += mismatch.text();
    }
    return warnings;
}

/// By the host's own path: the record's text may be cut or lack characters.
QString protocolInUse(const Subject &subject, const ComputeRequest &request,
                      const Workspace &workspace)
{
    if (!request.prt.isEmpty())
        return request.prt;
    return subject.hasProtocol() ? workspace.linkedVtc()->file.info().linkedProtocol : QString();
}

/// The request's seeds, or all there are: `count` VOIs, or columns.
void chooseNodes(Subject &subject, const ComputeRequest &request, int count, const char *unit)
{
    ConnectivityScheme scheme = subject.scheme();
    scheme.seedVois = request.seeds;
    for (const int seed : request.seeds) {
        if (seed < 0 || seed >= count) {
            throw InputError(nodesFile(request), QStringLiteral("seed %1").arg(seed),
                             counted(count, unit),
                             QStringLiteral("a number from 0 to %1").arg(count - 1));
        }
    }
    if (request.seeds.isEmpty()) {
        for (int voi = 0; voi < count; ++voi)
            scheme.seedVois.append(voi);
    }
    subject.setScheme(scheme);
}

std::vector<ComputedNode> describeNodes(const Subject &subject, const LoadedVois &vois)
{
    std::vector<ComputedNode> nodes;
    for (const int seed : subject.scheme().seedVois) {
        const Voi &voi = vois.set.vois.at(static_cast<std::size_t>(seed));
        nodes.push_back({seed, voi.name, static_cast<int>(voi.voxels.size())});
    }
    return nodes;
}

/// Refuses a partial correlation that is not defined, and tells how to do without its nodes.
void requireDefined(const ComputeRequest &request, const std::vector<ComputedNode> &nodes,
                    const std::vector<NodeFault> &faults, const QStringList &warnings)
{
    QStringList others;
    for (std::size_t node = 0; node < nodes.size(); ++node)
        if (faults[node] == NodeFault::None)
            others += QString::number(nodes[node].voi);
    if (static_cast<std::size_t>(others.size()) == nodes.size())
        return;
    const QString instead =
        others.size() < 2
            ? QStringLiteral("nodes that have one (no two of these do)")
            : QStringLiteral("nodes that have one: --seeds ") + others.join(QLatin1Char(','));
    throw InputError(nodesFile(request), QStringLiteral("partial correlation"),
                     warnings.join(QStringLiteral("; ")),
                     instead + QStringLiteral("; or --allow-singular for a matrix of zeros"));
}

/// The matrices, with thousandths of them as progress.
std::vector<Eigen::MatrixXf> measured(const Subject &subject, const Eigen::MatrixXf &timeseries,
                                      const ProgressWatch &watch)
{
    return measureSlices(subject, timeseries, [&watch](double share) {
        tellProgress(watch, qint64(share * 1000), 1000);
    });
}

/// From the node matrix to the finished slices.
std::vector<ComputedSlice> computeSlices(const Subject &subject, const ComputeRequest &request,
                                         const Eigen::MatrixXf &timeseries, const StepWatch &steps)
{
    const QString measure = QLatin1String(nameOf(request.measure, measureNames));
    std::vector<Eigen::MatrixXf> matrices =
        measured(subject, timeseries, beginStep(steps, measure));
    if (request.computeMst)
        beginStep(steps, QStringLiteral("spanning trees"));
    ComputedMatrices computed = finishSlices(subject, std::move(matrices));
    const QStringList names = subject.protocol().volumeNames.values();
    const QList<int> events = subject.protocol().volumeEvents.values();
    std::vector<ComputedSlice> slices;
    for (std::size_t i = 0; i < computed.connectivity.size(); ++i) {
        ComputedSlice slice;
        if (subject.useProtocol()) {
            slice.condition = names.value(static_cast<int>(i));
            slice.event = events.value(static_cast<int>(i)) != 0;
        }
        slice.connectivity = std::move(computed.connectivity[i]);
        if (subject.computeMst()) {
            slice.mst = std::move(computed.trees.weights[i]);
            slice.tree = std::move(computed.trees.trees[i]);
        }
        slices.push_back(std::move(slice));
    }
    return slices;
}

/// All of a result but what is computed, from a run and its VOIs.
ComputeResult loadRun(Session &session, const ComputeRequest &request, const LogKeeper &log)
{
    const Workspace &workspace = session.workspace();
    const OpenDocument document(session.workspace(), request.anatomy);
    ComputeResult result;
    result.subject = subjectOf(request);
    Subject &subject = *result.subject;
    subject.setDocumentId(document.position());
    chooseFiles(subject, request, workspace, log);
    if (!subject.load())
        throw HostFailure(log);
    workspace.linkedVtc()->file.requireIntact();
    const QStringList mismatched = checkedMismatches(request, workspace);
    // They are read once more, and none are there when that fails.
    const int vois = subject.voiCount(true);
    if (workspace.vois() == nullptr)
        throw HostFailure(log);
    chooseNodes(subject, request, vois, "VOI");

    result.nodes = describeNodes(subject, *workspace.vois());
    result.repetitionTime = workspace.linkedVtc()->file.info().repetitionTime;
    result.vtcChecksum = workspace.linkedVtc()->file.info().checksum;
    result.cleaning = workspace.linkedVtc()->file.info().cleaning;
    result.protocolFile = protocolInUse(subject, request, workspace);
    result.warnings = log.said() + mismatched;
    return result;
}

/// A volume without any value would leave every node without connections.
void requireValues(const SeriesTable &table, const QString &path)
{
    for (Eigen::Index volume = 0; volume < table.values.cols(); ++volume)
        if (table.values.col(volume).array().isNaN().all())
            throw InputError(path, QStringLiteral("volume %1").arg(volume + 1),
                             QStringLiteral("no value in any column"),
                             QStringLiteral("numbers; leave out the lines of volumes that are not "
                                            "to count"));
}

/// The same from a table of courses, each as if it were the only voxel of a VOI.
ComputeResult loadCourses(const ComputeRequest &request, const LogKeeper &log)
{
    const SeriesTable table = readSeriesTable(request.timeseries);
    requireValues(table, request.timeseries);
    ComputeResult result;
    result.subject = subjectOf(request);
    Subject &subject = *result.subject;
    subject.setName(QFileInfo(request.timeseries).completeBaseName());
    subject.voiNames = table.names;
    for (Eigen::Index node = 0; node < table.values.rows(); ++node)
        subject.appendTimeseries(table.values.row(node));
    takeNamedProtocol(subject, request, log);
    if (request.useProtocol && !subject.hasProtocol())
        throw InputError(request.timeseries, QStringLiteral("protocol"), QStringLiteral("none"),
                         QStringLiteral("one given with --prt"));
    chooseNodes(subject, request, table.names.size(), "column");

    for (const int seed : subject.scheme().seedVois)
        result.nodes.push_back({seed, table.names[seed], std::nullopt});
    result.protocolFile = request.prt;
    result.warnings = log.said() + table.notes;
    return result;
}

/// The nodes that are called so, in the order of the names.
std::vector<int> nodesNamed(const QStringList &names, const ComputeRequest &request,
                            const std::vector<ComputedNode> &nodes)
{
    std::vector<int> found;
    for (const QString &name : names) {
        const std::size_t before = found.size();
        for (std::size_t node = 0; node < nodes.size(); ++node)
            if (nodes[node].name == name)
                found.push_back(static_cast<int>(node));
        if (found.size() > before)
            continue;
        QStringList known;
        for (const ComputedNode &node : nodes)
            known += QString::fromUtf8(csvField(node.name));
        throw InputError(nodesFile(request), QStringLiteral("seed ") + quoted(name),
                         QStringLiteral("no node of that name"),
                         QStringLiteral("of these: ") + known.join(QStringLiteral(", ")));
    }
    return found;
}

} // namespace

ComputeResult compute(Session &session, const ComputeRequest &request, const StepWatch &steps)
{
    if (!bindHostFunctions())
        throw std::runtime_error("this program must be named Corvane: it offers its functions "
                                 "under that name only");
    const LogKeeper log(session);
    beginStep(steps, QStringLiteral("reading"));
    ComputeResult result =
        request.timeseries.isEmpty() ? loadRun(session, request, log) : loadCourses(request, log);
    result.seedRows = nodesNamed(request.seedNames, request, result.nodes);

    const Subject &subject = *result.subject;
    const QVector<int> seeds = subject.scheme().seedVois;
    result.timeseries = subject.averagedTimeseries({seeds.begin(), seeds.end()});
    QStringList names;
    for (const ComputedNode &node : result.nodes)
        names += node.name;
    const QStringList withoutMeaning = computeWarnings(subject, result.timeseries, names);
    if (request.measure == ConnectivityMeasure::PartialCorrelation && !request.allowSingular)
        requireDefined(request, result.nodes, nodeFaults(subject, result.timeseries),
                       withoutMeaning);
    result.slices = computeSlices(subject, request, result.timeseries, steps);
    result.warnings += withoutMeaning;
    if (request.matrixValues == MatrixValues::Signed)
        result.warnings += QStringLiteral(
            "signed: of the measures only degree, strength and eigenvector centrality take "
            "negative weights into account, the others see the positive ones; there are no "
            "spanning trees");
    return result;
}

} // namespace corvane
