// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dataset/subject.h"
#include "engine/spanning_trees.h"

#include <Eigen/Core>
#include <QMap>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

class ConnectivityObjectUI;

/// The finished result of one subject: its connectivity matrices, one per slice, after both
/// treatment passes, and the minimum spanning tree of each when they were asked for.
///
/// Made by a compute as a child of the main dialog, with which it dies. It has at most one results
/// dialog at a time. GUI thread only. Getters return deep copies and do not test for emptiness.
class ConnectivityObject : public QObject
{
    Q_OBJECT

public:
    ConnectivityObject(QString name, QObject *parent);
    /// Deletes the results dialog first, if there is one. Defined beside showResults.
    ~ConnectivityObject() override;

    /// The subject's record, null before it is set. It is kept for the life of this object, also
    /// when its row leaves the table, and stays live: it may have changed since the compute, so
    /// that readers bound themselves by the matrices.
    Subject *subject() const { return m_subject.data(); }
    void setSubject(const QSharedPointer<Subject> &subject) { m_subject = subject; }

    /// The subject's name at the time of the compute.
    QString name() const { return m_name; }

    /// Set once, right after construction.
    void setMatrices(const std::vector<Eigen::MatrixXf> &matrices);
    std::vector<Eigen::MatrixXf> matrices() const { return m_matrices; }

    /// Per matrix the connections kept by its spanning tree, with their weights. Empty until the
    /// trees are computed.
    std::vector<Eigen::MatrixXf> mstMatrices() const { return m_mstMatrices; }
    /// Per matrix 1 where its spanning tree has a connection. Empty until the trees are computed.
    std::vector<Eigen::MatrixXi> mstTrees() const { return m_mstTrees; }
    bool mstComputed() const { return m_mstComputed; }
    /// Takes over the spanning tree of each matrix, computed before.
    void setSpanningTrees(SpanningTrees trees);
    /// Computes the spanning tree of each matrix, unless they are there.
    void computeMinimumSpanningTrees();

    /// Names of the slices by interval start, from the subject's protocol.
    QMap<int, QString> volumeNames() const;

    /// Whether its matrices exist nowhere else. A host that asks before it quits finds the name of
    /// such a result as the property "unsavedResults".
    void setUnsaved(bool unsaved);

    /// Shows the results dialog, making it when there is none.
    void showResults();

public slots:
    void connectivityObjectUIDestroyed(QObject *qobject);

private:
    QString m_name;
    QSharedPointer<Subject> m_subject;
    Eigen::MatrixXf reservedMatrix; // the three reserved fields are neither filled nor read
    std::vector<Eigen::MatrixXf> m_matrices;
    std::vector<std::string> reservedNames;
    std::vector<Eigen::MatrixXf> m_mstMatrices;
    std::vector<Eigen::MatrixXi> m_mstTrees;
    bool m_mstComputed = false;
    QStringList reservedLabels;
    ConnectivityObjectUI *ui = nullptr; ///< deletes itself when closed
};
