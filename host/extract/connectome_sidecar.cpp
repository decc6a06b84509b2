// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/connectome_sidecar.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace corvane
{

namespace
{

QString key(const char *name)
{
    return QLatin1String(name);
}

QJsonArray sourcesOf(const ConnectomeRequest &request, const ConnectomeNames &names)
{
    QJsonArray sources;
    for (const QString &path :
         {request.run, request.atlas, request.mask, request.cleaning.confounds,
          request.cleaning.censor, request.events})
        if (!path.isEmpty())
            sources.append(sourceText(path, names.datasetRoot));
    return sources;
}

template <typename Number>
QJsonArray numbersOf(const std::vector<Number> &values)
{
    QJsonArray numbers;
    for (const Number value : values)
        numbers.append(int(value));
    return numbers;
}

QJsonValue edge(double frequency)
{
    return frequency > 0 ? QJsonValue(frequency) : QJsonValue(QJsonValue::Null);
}

QJsonObject cleaningJson(const ConnectomeRequest &request, const RunCleaning &cleaning)
{
    const signals::Settings &settings = request.cleaning.settings;
    const signals::Thresholds &thresholds = cleaning.selection.thresholds;
    QJsonArray regressors;
    for (const std::string &name : cleaning.selection.regressors.names)
        regressors.append(QString::fromStdString(name));
    return {{key("Summary"), cleaningText(request.cleaning, cleaning)},
            {key("Strategy"), QString::fromStdString(request.cleaning.strategy.strategy)},
            {key("Order"), QLatin1String(signals::name(settings.order))},
            {key("Regressors"), regressors},
            {key("HighPass"), edge(cleaning.design.band.high_pass)},
            {key("LowPass"), edge(cleaning.design.band.low_pass)},
            {key("Detrend"), settings.detrend},
            {key("Standardize"), QLatin1String(nameOf(settings.standardize, standardizeNames))},
            {key("FDThreshold"), thresholds.fd},
            {key("StdDVARSThreshold"), thresholds.std_dvars},
            {key("MinSegment"), int(thresholds.min_segment)}};
}

/// What is the same beside every table.
QJsonObject commonJson(const ConnectomeRequest &request, const ConnectomeNames &names,
                       const Connectome &connectome)
{
    QJsonArray uncovered;
    for (std::size_t node = 0; node < connectome.nodes.size(); ++node)
        if (!connectome.isCovered(node))
            uncovered.append(connectome.nodes[node].name);
    return {{key("RepetitionTime"), connectome.repetitionTime},
            {key("Sources"), sourcesOf(request, names)},
            {key("NodeFiles"), QJsonArray{sourceText(request.atlas, names.datasetRoot)}},
            {key("MinCoverage"), request.minCoverage},
            {key("UncoveredNodes"), uncovered},
            {key("Cleaning"), cleaningJson(request, connectome.cleaning)},
            {key("Ledger"), ledgerJson(connectome.cleaning.design.ledger)},
            {key("SoftwareVersion"), QStringLiteral(TESSERA_VERSION)}};
}

QJsonArray intervalsOf(const Part &part)
{
    QJsonArray intervals;
    for (const signals::Window &window : part.windows)
        intervals.append(QJsonArray{int(window.first), int(window.first + window.length - 1)});
    return intervals;
}

/// The volumes that a part's matrix is made of.
QJsonObject partJson(const ConnectomeRequest &request, const Connectome &connectome,
                     const Part &part)
{
    std::vector<Eigen::Index> volumes;
    for (const Eigen::Index row : part.rows)
        volumes.push_back(connectome.cleaned.volumes[std::size_t(row)]);
    QJsonObject json{{key("Intervals"), intervalsOf(part)},
                     {key("Volumes"), numbersOf(volumes)},
                     {key("EffectiveVolumes"), part.effective},
                     {key("DegreesOfFreedom"), connectome.cleaned.degrees * part.effective /
                                                   double(connectome.cleaned.volumes.size())},
                     {key("Filled"), part.filled}};
    if (part.condition.isEmpty()) {
        json.insert(key("Window"), request.parts.window.value_or(0));
        json.insert(key("Step"), request.parts.step);
        json.insert(key("Taper"), QLatin1String(nameOf(request.parts.taper, taperNames)));
    } else {
        json.insert(key("Condition"), part.condition);
        json.insert(key("Delay"), request.parts.delay);
        json.insert(key("CentredIntervals"), part.centreIntervals);
        json.insert(key("Note"),
                    QStringLiteral("Without regressors of the task the matrix of a condition "
                                   "holds the shared response to the stimulus."));
    }
    return json;
}

QJsonObject matrixJson(const ConnectomeRequest &request, const ConnectomeNames &names,
                       const Connectome &connectome, const PartMatrix &matrix)
{
    const RelationshipFacts &facts = factsOf(matrix.relationship);
    QJsonObject json = commonJson(request, names, connectome);
    json.insert(key("RelationshipMeasure"), QLatin1String(facts.measure));
    json.insert(key("Directed"), false);
    json.insert(key("Weighted"), true);
    json.insert(key("ValidDiagonal"), facts.hasTrueDiagonal);
    if (matrix.matrix.shrinkage)
        json.insert(key("LedoitWolfShrinkage"), *matrix.matrix.shrinkage);
    if (matrix.relationship == Relationship::FisherZ)
        json.insert(key("ClippedPairs"), int(matrix.matrix.clipped));
    if (!matrix.part.entity.isEmpty())
        json.insert(key("Part"), partJson(request, connectome, matrix.part));
    return json;
}

QByteArray bytesOf(const QJsonObject &json)
{
    return QJsonDocument(json).toJson();
}

} // namespace

QString sourceText(const QString &path, const QString &root)
{
    if (!root.isEmpty()) {
        const QString relative = QDir(QFileInfo(root).absoluteFilePath())
                                     .relativeFilePath(QFileInfo(path).absoluteFilePath());
        if (!relative.startsWith(QLatin1String("..")) && QDir::isRelativePath(relative))
            return QStringLiteral("bids:input:") + relative;
    }
    return QFileInfo(path).fileName();
}

QByteArray seriesSidecar(const ConnectomeRequest &request, const ConnectomeNames &names,
                         const Connectome &connectome)
{
    QJsonObject json = commonJson(request, names, connectome);
    json.insert(key("Volumes"), numbersOf(connectome.cleaned.volumes));
    return bytesOf(json);
}

QByteArray matrixSidecar(const ConnectomeRequest &request, const ConnectomeNames &names,
                         const Connectome &connectome, const PartMatrix &matrix)
{
    return bytesOf(matrixJson(request, names, connectome, matrix));
}

QByteArray uncleanedSidecar(const ConnectomeRequest &request, const ConnectomeNames &names,
                            const Connectome &connectome, const PartMatrix &matrix)
{
    QJsonObject json = matrixJson(request, names, connectome, matrix);
    json.insert(key("Uncleaned"), true);
    json.insert(key("Description"),
                QStringLiteral("The same volumes and nodes without cleaning; ledger and cleaning "
                               "are those of the cleaned matrix beside it."));
    return bytesOf(json);
}

} // namespace corvane
