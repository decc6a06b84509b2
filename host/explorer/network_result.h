// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QString>
#include <QStringList>
#include <limits>
#include <optional>
#include <vector>

/// @file
/// A finished result as the connectome window takes it, whatever command wrote it: plain numbers
/// and names, without files.

namespace corvane
{

struct ResultNode {
    QString name;
    QString network = {};    ///< empty where unknown
    QString hemisphere = {}; ///< "Left", "Right", or as the table has it; empty where unknown
    std::optional<Eigen::Vector3d> place = {}; ///< its middle in mm: to the right, to the front, up
    double coverage = std::numeric_limits<double>::quiet_NaN(); ///< share of its voxels that count
    std::optional<qint64> voxels = {};                          ///< of the run that have its label
    std::optional<qint64> usedVoxels = {};                      ///< of these, those that count
};

/// What the numbers of a matrix are, as far as pictures and intervals ask.
enum class ValueKind {
    Correlation,        ///< from -1 to 1
    PartialCorrelation, ///< likewise, given all other nodes
    FisherZ,
    Statistic, ///< t or F of a group
    Other
};

struct ResultMatrix {
    QString name;    ///< "Pearson, whole run", "Pearson, condition faces", "Patients: t"
    QString measure; ///< "Pearson correlation"
    ValueKind kind = ValueKind::Other;
    Eigen::MatrixXd values; ///< nodes x nodes, symmetric, NaN where there is none
    double limit = 1;       ///< of its scale of colours, above 0
    /// Degrees of freedom of each value, those of the part; unset where they are not known.
    std::optional<double> degrees = {};
    bool degreesAreEstimate = false;
    bool isShrunk = false;         ///< no interval is known then
    std::vector<int> volumes = {}; ///< of the file, that it is made of; empty for all kept ones
    int contrast = -1;             ///< of a group's result, which of its contrasts
};

struct ConditionBand {
    QString name;
    int first = 0, last = 0; ///< volumes of the file, from 0, both belong to it
};

/// The series that matrices of a run are made of.
struct ResultSeries {
    Eigen::MatrixXd values;    ///< kept volumes x nodes
    std::vector<int> volumes;  ///< of the file, one for each row
    std::vector<bool> leftOut; ///< one for each volume of the file
    std::vector<ConditionBand> bands;
    double repetitionTime = 0; ///< seconds; 0 where it is not known
    bool isBandPassed = false; ///< degrees of freedom are those of the band already
    QStringList regressors;    ///< columns of the design
};

/// A network that a group test found.
struct ResultComponent {
    int contrast = 0;
    double threshold = 0;
    QString side;
    double intensity = 0, pExtent = 1, pIntensity = 1;
    std::vector<std::pair<int, int>> edges;
};

struct GroupContrast {
    QString name;
    QString statistic;                             ///< "t" or "F"
    Eigen::MatrixXd effect, values, p, pFamily, q; ///< nodes x nodes, NaN where there is none
    double degrees = 0;
};

struct NetworkResult {
    QString folder;
    QString title;
    QString run; ///< which of the folder's runs; empty where there is but one kind
    QStringList runs;
    bool hasNames = true; ///< false: nodes are called by their numbers, since nothing names them
    std::vector<ResultNode> nodes;
    std::vector<ResultMatrix> matrices;
    std::optional<ResultSeries> series = {};
    QStringList ledger = {};  ///< lines for people
    QStringList leftOut = {}; ///< of a group: who and what, one line each
    std::vector<GroupContrast> contrasts = {};
    std::vector<ResultComponent> components = {};
    QString atlasFile = {}; ///< an image whose outline the brain has; empty without
    QStringList notes = {}; ///< what the user should look at
};

} // namespace corvane
