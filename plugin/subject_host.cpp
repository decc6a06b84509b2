// SPDX-License-Identifier: GPL-3.0-or-later
//
// The members of Subject that go to the host.
#include "dataset/subject.h"
#include "plugin/host_data.h"

#include <QDebug>

int Subject::voiCount(bool all)
{
    if (!all && !m_scheme.seedVois.isEmpty())
        return m_scheme.seedVois.size();
    return host_data::readVOINames(*this);
}

QStringList Subject::voiLabels(bool all) const
{
    if (all || m_scheme.seedVois.isEmpty())
        return voiNames;
    QStringList labels;
    for (const int seed : m_scheme.seedVois)
        labels.append(voiNames.value(seed, QString::number(seed)));
    return labels;
}

bool Subject::linkProtocol()
{
    if (!host_data::linkVTCProtocol(*this))
        return false;
    m_hasProtocol = true;
    m_protocolAutoloaded = true;
    qDebug().noquote().nospace() << "Linked proto file: " << linkedProtocolFile();
    setPrtFile(linkedProtocolFile());
    return true;
}

bool Subject::load()
{
    dataLoaded = host_data::loadSubject(*this);
    return dataLoaded;
}
