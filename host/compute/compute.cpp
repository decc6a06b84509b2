// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/compute/compute.h"

#include "engine/assembly.h"
#include "engine/measures.h"
#include "engine/sign_treatment.h"
#include "engine/spanning_trees.h"
#include "host/files/input_error.h"
#include "host/session/log.h"
#include "host/session/workspace.h"
#include "plugin/host_data.h"
#include "plugin/host_functions.h"

#include <QFileInfo>
#include <nodalis/treatment.h>

#include <stdexcept>
#include <utility>

namespace corvane
{

namespace
{

/// Keeps the host's texts for as long as it lives, instead of showing them.
class LogKeeper
{
public:
    LogKeeper()
        : m_log(setLogSink([this](const QString &text) { add(text); })),
          m_messages(setMessageSink([this](const QString &text) { add(text); }))
    {
    }
    ~LogKeeper()
    {
        setLogSink(std::move(m_log));
        setMessageSink(std::move(m_messages));
    }
    LogKeeper(const LogKeeper &) = delete;
    LogKeeper &operator=(const LogKeeper &) = delete;

    /// What was said, without the lines that only tell what goes on.
    QStringList said() const { return m_said; }

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
    TextSink m_log;
    TextSink m_messages;
};

/// A host function has failed; the host said why in one line.
class HostFailure : public std::runtime_error
{
public:
    explicit HostFailure(const LogKeeper &log) : std::runtime_error(log.reason()) {}
};

void chooseFiles(Subject &subject, const ComputeRequest &request, const LogKeeper &log)
{
    subject.setName(QFileInfo(request.vtc).completeBaseName());
    subject.setDocumentId(workspace().openVmr(request.anatomy));
    subject.setVtcFile(request.vtc);
    subject.linkProtocol();
    if (workspace().linkedVtc() == nullptr)
        throw HostFailure(log);
    if (!host_data::voiFileIsOneMillimetre(request.voi.toUtf8().constData())) {
        if (workspace().vois() == nullptr)
            throw HostFailure(log);
        const VOIsHeader &header = workspace().vois()->header;
        throw InputError(request.voi, QStringLiteral("resolution"),
                         QStringLiteral("%1 x %2 x %3 mm")
                             .arg(static_cast<double>(header.resolutionX))
                             .arg(static_cast<double>(header.resolutionY))
                             .arg(static_cast<double>(header.resolutionZ)),
                         QStringLiteral("VOIs of 1.0 mm"));
    }
    subject.setVoiFile(request.voi);
    if (!request.prt.isEmpty()) {
        if (!host_data::loadProtocolFile(subject, request.prt.toUtf8().constData()))
            throw HostFailure(log);
        subject.setPrtFile(request.prt);
    }
    if (request.useProtocol && !subject.hasProtocol()) {
        throw InputError(request.vtc, QStringLiteral("linked protocol"), QStringLiteral("none"),
                         QStringLiteral("one, or a protocol given with --prt"));
    }
}

void chooseNodes(Subject &subject, const ComputeRequest &request)
{
    const int count = subject.voiCount(true);
    ConnectivityScheme scheme = subject.scheme();
    scheme.seedVois = request.seeds;
    for (const int seed : request.seeds) {
        if (seed < 0 || seed >= count) {
            throw InputError(request.voi, QStringLiteral("seed %1").arg(seed),
                             QStringLiteral("%1 VOIs").arg(count),
                             QStringLiteral("a number from 0 to %1").arg(count - 1));
        }
    }
    if (request.seeds.isEmpty()) {
        for (int voi = 0; voi < count; ++voi)
            scheme.seedVois.append(voi);
    }
    subject.setScheme(scheme);
}

std::vector<ComputedNode> describeNodes(const Subject &subject)
{
    const QStringList labels = subject.voiLabels(false);
    const QVector<int> seeds = subject.scheme().seedVois;
    std::vector<ComputedNode> nodes;
    for (int k = 0; k < seeds.size(); ++k) {
        const VOIRecord &record =
            workspace().vois()->records.at(static_cast<std::size_t>(seeds.at(k)));
        nodes.push_back({seeds.at(k), labels.at(k), record.voxelCount});
    }
    return nodes;
}

/// From the node matrix to the finished slices, as the main dialog's compute does it.
std::vector<ComputedSlice> computeSlices(const Subject &subject, const Eigen::MatrixXf &timeseries)
{
    const MeasureFunction measure =
        subject.measure() == 2 ? partialCorrelationMatrix : correlationMatrix;
    std::vector<Eigen::MatrixXf> matrices = connectivityWorker(&subject, measure, timeseries);
    for (Eigen::MatrixXf &matrix : matrices) {
        treatSigns(matrix, subject.matrixValues());
        nodalis::treatment(matrix);
    }
    const SpanningTrees trees = subject.computeMst() ? spanningTrees(matrices) : SpanningTrees{};

    const QStringList names = subject.protocol().volumeNames.values();
    const QList<int> events = subject.protocol().volumeEvents.values();
    std::vector<ComputedSlice> slices;
    for (std::size_t i = 0; i < matrices.size(); ++i) {
        ComputedSlice slice;
        if (subject.useProtocol()) {
            slice.condition = names.value(static_cast<int>(i));
            slice.event = events.value(static_cast<int>(i)) != 0;
        }
        slice.connectivity = std::move(matrices[i]);
        if (subject.computeMst())
            slice.mst = trees.weights[i];
        slices.push_back(std::move(slice));
    }
    return slices;
}

} // namespace

ComputeResult compute(const ComputeRequest &request)
{
    if (!bindHostFunctions())
        throw std::runtime_error("this program must be named Corvane: it offers its functions "
                                 "under that name only");
    const LogKeeper log;
    const auto record = QSharedPointer<Subject>::create();
    Subject &subject = *record;
    subject.setMeasure(request.measure);
    subject.setMatrixValues(request.matrixValues);
    subject.setComputeMst(request.computeMst);
    subject.setUseProtocol(request.useProtocol);
    chooseFiles(subject, request, log);
    if (!subject.load())
        throw HostFailure(log);
    workspace().linkedVtc()->file.requireIntact();
    chooseNodes(subject, request);

    const QVector<int> seeds = subject.scheme().seedVois;
    ComputeResult result;
    result.subject = record;
    result.nodes = describeNodes(subject);
    result.timeseries = subject.averagedTimeseries({seeds.begin(), seeds.end()});
    result.slices = computeSlices(subject, result.timeseries);
    result.repetitionTime = workspace().linkedVtc()->file.info().repetitionTime;
    result.vtcChecksum = workspace().linkedVtc()->file.info().checksum;
    result.protocolFile = subject.prtFile;
    result.warnings = log.said();
    return result;
}

} // namespace corvane
