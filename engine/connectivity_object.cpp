// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/connectivity_object.h"

#include <QVariant>
#include <utility>

ConnectivityObject::ConnectivityObject(QString name, QObject *parent)
    : QObject(parent), m_name(std::move(name))
{
}

void ConnectivityObject::setUnsaved(bool unsaved)
{
    setProperty("unsavedResults", unsaved ? m_name : QString());
}

void ConnectivityObject::setMatrices(const std::vector<Eigen::MatrixXf> &matrices)
{
    m_matrices = matrices;
}

QMap<int, QString> ConnectivityObject::volumeNames() const
{
    return m_subject ? m_subject->protocol().volumeNames : QMap<int, QString>();
}

void ConnectivityObject::setSpanningTrees(SpanningTrees trees)
{
    m_mstMatrices = std::move(trees.weights);
    m_mstTrees = std::move(trees.trees);
    m_mstComputed = true;
}

void ConnectivityObject::computeMinimumSpanningTrees()
{
    if (!m_mstComputed)
        setSpanningTrees(spanningTrees(m_matrices));
}

void ConnectivityObject::connectivityObjectUIDestroyed(QObject *)
{
    ui = nullptr;
}

// Here, so that the class's virtual table is linked only into what uses the class: its destructor
// stands with the windows.
#include "moc_connectivity_object.cpp" // NOLINT(bugprone-suspicious-include)
