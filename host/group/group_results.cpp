// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/group_results.h"

namespace corvane
{

namespace
{

QString listed(const std::vector<std::string> &names)
{
    QStringList list;
    for (const std::string &name : names)
        list += QString::fromStdString(name);
    return list.join(QStringLiteral(", "));
}

QStringList sessionNotes(const GroupResults &results)
{
    QStringList notes;
    if (results.icc && !results.icc->incomplete.empty())
        notes +=
            QStringLiteral("left out of the intraclass correlations, for lack of a session: ") +
            listed(results.icc->incomplete);
    for (const FingerprintResult &result : results.fingerprints)
        if (!result.incomplete.empty())
            notes += QStringLiteral("left out of the fingerprint of %1 and %2: %3")
                         .arg(QString::fromStdString(result.first),
                              QString::fromStdString(result.second), listed(result.incomplete));
    return notes;
}

} // namespace

GroupResults testGroup(const GroupData &data, const GroupRequest &request, const StepWatch &steps)
{
    GroupResults results;
    results.notes = data.notes;
    if (request.asksForModel())
        for (const QString &contrast : request.contrasts)
            results.contrasts.push_back(testContrast(data, request, contrast, steps));
    for (const ContrastResult &contrast : results.contrasts)
        results.notes += contrast.notes;
    if (request.asks(GroupTest::Distance))
        results.distance =
            testDistances(data, request, beginStep(steps, QStringLiteral("distances")));
    if (request.asks(GroupTest::Icc)) {
        beginStep(steps, QStringLiteral("intraclass correlations"));
        results.icc = testReliability(data);
    }
    if (request.asks(GroupTest::Fingerprint)) {
        beginStep(steps, QStringLiteral("fingerprint"));
        results.fingerprints = testFingerprints(data, request);
    }
    if (request.asks(GroupTest::QcFc)) {
        beginStep(steps, QStringLiteral("QC-FC"));
        results.qcfc = testMotion(data);
        results.notes += motionNotes(data);
    }
    results.notes += sessionNotes(results);
    return results;
}

} // namespace corvane
