// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/subject.h"

#include <utility>

void Subject::setScheme(const ConnectivityScheme &scheme)
{
    m_scheme.kind = scheme.kind;
    m_scheme.voiIndex = scheme.voiIndex;
    m_scheme.seedVois = scheme.seedVois;
}

void Subject::setPrtFile(const QString &path)
{
    m_hasProtocol = true;
    prtFile = path;
}

QString Subject::linkedProtocolFile() const
{
    const char *text = vtcHeader.linkedProtocolFile;
    return QString::fromLatin1(
        text, static_cast<int>(qstrnlen(text, sizeof vtcHeader.linkedProtocolFile)));
}

void Subject::appendTimeseries(Eigen::MatrixXf voxelsByVolumes)
{
    m_timeseries.push_back(std::move(voxelsByVolumes));
}

bool Subject::isComplete() const
{
    return !m_name.isEmpty() && !m_vtcFile.isEmpty() && !m_voiFile.isEmpty();
}

QString Subject::describe() const
{
    QString text;
    text += QStringLiteral("  Name: %1\n").arg(m_name);
    text += QStringLiteral("   VTC: %1\n").arg(m_vtcFile);
    text += QStringLiteral("   VOI: %1\n").arg(m_voiFile);
    text += QStringLiteral("Loaded: %1\n")
                .arg(dataLoaded ? QStringLiteral("Yes") : QStringLiteral("No"));
    text += QStringLiteral("Num TS: %1\n").arg(m_timeseries.size());
    return text;
}

Subject *defaultProfile()
{
    static auto *const profile = new Subject;
    profile->profileFlag = true;
    return profile;
}
