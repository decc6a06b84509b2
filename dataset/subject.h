// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dataset/connectivity_scheme.h"
#include "dataset/protocol.h"
#include "plugin/host_records.h"

#include <Eigen/Core>
#include <QString>
#include <QStringList>
#include <QVector>

#include <vector>

class Tessera_Plugin;

/// One row of the dataset: its analysis settings, the files chosen for it, the records that the
/// host filled in about those files, and the time series read from the host.
///
/// A plain value; copying it copies every field, the matrices deeply.
class Subject
{
public:
    // Settings
    ConnectivityScheme scheme() const { return m_scheme; }
    void setScheme(const ConnectivityScheme &scheme);
    int measure() const { return m_measure; } ///< 1 correlation, 2 partial correlation
    void setMeasure(int measure) { m_measure = measure; }
    int matrixValues() const { return m_matrixValues; } ///< 0 absolute, 1 positive, 2 negative
    void setMatrixValues(int values) { m_matrixValues = values; }
    bool computeMst() const { return m_computeMst; }
    void setComputeMst(bool compute) { m_computeMst = compute; }

    // State of the row
    bool editable() const { return m_editable; } ///< the name cell may be edited
    void setEditable(bool editable) { m_editable = editable; }
    bool computed() const { return m_computed; }
    void setComputed(bool computed) { m_computed = computed; }
    bool useProtocol() const { return m_useProtocol; } ///< as it stood at the last compute
    void setUseProtocol(bool use) { m_useProtocol = use; }

    // Files
    int documentId() const { return m_documentId; } ///< the host's id of the VMR, -1 for none
    void setDocumentId(int id) { m_documentId = id; }
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    QString vtcFile() const { return m_vtcFile; }
    void setVtcFile(const QString &path) { m_vtcFile = path; }
    QString voiFile() const { return m_voiFile; }
    void setVoiFile(const QString &path) { m_voiFile = path; }
    /// Also sets hasProtocol.
    void setPrtFile(const QString &path);
    bool hasProtocol() const { return m_hasProtocol; }
    bool protocolAutoloaded() const { return m_protocolAutoloaded; }
    /// The path that the VTC's header names, read as Latin-1.
    QString linkedProtocolFile() const;

    // Data
    SubjectProtocol protocol() const { return m_protocol; }
    void setProtocol(const SubjectProtocol &protocol) { m_protocol = protocol; }
    /// One matrix per VOI in VOI order, voxels x volumes. A deep copy.
    std::vector<Eigen::MatrixXf> timeseries() const { return m_timeseries; }
    void appendTimeseries(Eigen::MatrixXf voxelsByVolumes);

    /// True when name, VTC and VOI file are all chosen. A protocol plays no part.
    bool isComplete() const;
    /// Five lines for verbose logs.
    QString describe() const;

    // Through the host; defined beside the host data access.

    /// Number of chosen seeds, or, with `all` or without seeds, the number of VOIs in the VOI file,
    /// asked from the host, which also rewrites voiNames. 0 when the host fails.
    int voiCount(bool all);
    /// Names of the chosen seeds in their order, or, with `all` or without seeds, all names known
    /// from the last voiCount. A seed without a name is labelled by its number.
    QStringList voiLabels(bool all) const;
    /// Takes the protocol that the VTC names, and its path as prtFile. False when there is none, or
    /// the host fails.
    bool linkProtocol();
    /// Fetches the VOIs' time series from the host; stores and returns whether that succeeded.
    bool load();

    /// Mean time course of each selected VOI: one row per entry of `selection`, in its order, one
    /// column per volume. The plain mean over voxels in single precision. The number of volumes is
    /// that of the first VOI; an empty selection gives no rows; an index without a matrix gives a
    /// row of NaN.
    Eigen::MatrixXf averagedTimeseries(std::vector<int> selection) const;

    Tessera_Plugin *plugin = nullptr; ///< back pointer, never set on defaultProfile

    // Filled through the host.
    QString prtFile;         ///< bare name when chosen by hand, full path when auto-loaded
    QStringList voiNames;    ///< names, with " (empty)" behind those without voxels
    QVector<int> emptyVois;  ///< indices of VOIs without voxels, ascending
    bool dataLoaded = false; ///< result of the last load
    VTCHeader vtcHeader{};
    VOIsHeader voisHeader{};
    VOIRecord voiRecord{}; ///< scratch space of the last `zqGetVOI`
    ProtocolHeader protocolHeader{};
    bool profileFlag = true; ///< carried along, read by nothing

private:
    ConnectivityScheme m_scheme;
    int m_measure = 1;
    int m_matrixValues = 0;
    std::vector<Eigen::MatrixXf> m_timeseries;
    bool m_computeMst = true;
    int m_documentId = -1;
    QString m_name;
    QString m_vtcFile;
    QString m_voiFile;
    bool m_hasProtocol = false;
    bool m_protocolAutoloaded = false;
    bool m_editable = true;
    bool m_computed = false;
    SubjectProtocol m_protocol;
    bool m_useProtocol = false;
};

/// The process-wide record behind the profile "All", made at its first use and never destroyed.
Subject *defaultProfile();
