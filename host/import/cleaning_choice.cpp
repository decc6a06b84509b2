// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/cleaning_choice.h"

#include "host/extract/run_cleaning.h"
#include "host/files/file_kind.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace corvane
{

namespace
{

QString text(std::string_view view)
{
    return QString::fromUtf8(view.data(), int(view.size()));
}

/// The entities of a name but desc.
QStringList entitiesOf(const QString &path)
{
    QStringList entities;
    for (const QString &part : nameWithoutEnding(path).split(QLatin1Char('_')))
        if (part.contains(QLatin1Char('-')) && !part.startsWith(QLatin1String("desc-")))
            entities += part;
    return entities;
}

} // namespace

QStringList strategyNames()
{
    QStringList names;
    for (const signals::Strategy &strategy : signals::strategies())
        if (strategy.name.find(':') == std::string_view::npos)
            names += text(strategy.name);
    return names;
}

QString strategyText(const QString &name)
{
    for (const signals::Strategy &strategy : signals::strategies())
        if (text(strategy.name) == name)
            return strategy.censoring.empty()
                       ? text(strategy.regressors)
                       : QStringLiteral("%1\nleft out: %2")
                             .arg(text(strategy.regressors), text(strategy.censoring));
    return {};
}

std::shared_ptr<const CleaningRequest> cleaningOf(const CleaningChoice &choice)
{
    CleaningRequest request;
    request.confounds = choice.confounds;
    request.strategy.strategy = choice.strategy.toStdString();
    request.strategy.fd_threshold = choice.fdThreshold;
    return std::make_shared<const CleaningRequest>(request);
}

CleaningChoice choiceOf(const CleaningRequest &request)
{
    return {request.confounds, QString::fromStdString(request.strategy.strategy),
            request.strategy.fd_threshold};
}

QString confoundsBeside(const QString &run)
{
    const QStringList ofRun = entitiesOf(run);
    const QDir folder = QFileInfo(run).dir();
    QString best;
    int most = 0;
    for (const QString &name : folder.entryList({QStringLiteral("*_desc-confounds_timeseries.tsv"),
                                                 QStringLiteral("*_desc-confounds_regressors.tsv")},
                                                QDir::Files)) {
        const QStringList entities = entitiesOf(name);
        const bool belongs =
            std::all_of(entities.begin(), entities.end(),
                        [&](const QString &entity) { return ofRun.contains(entity); });
        if (!belongs || entities.size() < most)
            continue;
        best = entities.size() > most ? folder.filePath(name) : QString();
        most = entities.size();
    }
    return best;
}

} // namespace corvane
