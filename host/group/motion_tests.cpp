// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/motion_tests.h"

#include "dataset/counted.h"

namespace corvane
{

namespace
{

statistics::QcFc qcFcOf(const statistics::EdgeData &edges, const MotionData &motion)
{
    return statistics::qcfc(edges, motion.meanFd, motion.covariates, motion.columns,
                            motion.distances);
}

} // namespace

std::vector<QcFcResult> testMotion(const GroupData &data)
{
    std::vector<QcFcResult> results{{"cleaned", qcFcOf(data.edges, data.motion)}};
    if (data.motion.uncleaned.rows() > 0)
        results.push_back({"uncleaned", qcFcOf(data.motion.uncleaned, data.motion)});
    return results;
}

QStringList motionNotes(const GroupData &data)
{
    if (data.edges.rows() >= statistics::qcfc_few_subjects)
        return {};
    return {QStringLiteral("QC-FC says little about %1; it needs %2 or more")
                .arg(counted(qint64(data.edges.rows()), "participant"))
                .arg(statistics::qcfc_few_subjects)};
}

} // namespace corvane
