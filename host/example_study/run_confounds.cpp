// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/run_confounds.h"

#include "host/import/example_confounds.h"
#include "signals/confounds.h"
#include "signals/drift.h"
#include "signals/dvars.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>

namespace corvane::example_study
{

namespace
{

using namespace example;
using Eigen::ArrayXd;
using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

constexpr int digits = 6;
constexpr double highPass = 0.008; ///< Hz
constexpr Index componentCount = 5;
/// Above these a volume is an outlier.
constexpr double mostDisplacement = 0.5; ///< mm
constexpr double mostDvars = 1.5;

/// Series of voxels in the mask, of all tissues or of one: volumes x voxels.
template <typename Choose>
MatrixXd seriesOf(const Brain &brain, const Samples &samples, const std::vector<int> &mask,
                  Choose choose)
{
    std::vector<int> chosen;
    for (const int v : mask)
        if (choose(brain.voxels[std::size_t(v)].tissue))
            chosen.push_back(v);
    MatrixXd series(volumeCount, Index(chosen.size()));
    for (std::size_t n = 0; n < chosen.size(); ++n)
        series.col(Index(n)) = samples.row(chosen[n]).cast<double>().transpose();
    return series;
}

/// Volume by volume, so that the sum is the same on every machine.
VectorXd meanOf(const MatrixXd &series)
{
    VectorXd sum = VectorXd::Zero(series.rows());
    for (const auto voxel : series.colwise())
        sum += voxel;
    return sum / double(series.cols());
}

/// The cosines as they stand in the table: the function of the library may differ in its last bit
/// from machine to machine.
MatrixXd cosinesOfRun()
{
    const MatrixXd cosines = signals::cosines(
        volumeCount, signals::cosines_below(volumeCount, repetitionTime, highPass));
    return ((cosines * 1e6).array() + 0.5).floor() / 1e6;
}

double asTold(double value)
{
    return QByteArray::number(value, 'g', digits).toDouble();
}

/// Components of one mask, in the table and in the JSON beside it.
void addComponents(ConfoundsText &table, QJsonObject &facts, const char *stem, const char *mask,
                   const MatrixXd &series, const MatrixXd &cosines)
{
    const MainComponents components = mainComponents(series, cosines, componentCount);
    double explained = 0;
    for (Index n = 0; n < componentCount; ++n) {
        const QByteArray name = numbered(stem, n);
        table.add(name, components.series.col(n));
        explained += components.shares[n];
        facts.insert(
            QString::fromLatin1(name),
            QJsonObject{{QStringLiteral("CumulativeVarianceExplained"), asTold(explained)},
                        {QStringLiteral("Mask"), QString::fromLatin1(mask)},
                        {QStringLiteral("Method"), QStringLiteral("aCompCor")},
                        {QStringLiteral("Retained"), true},
                        {QStringLiteral("SingularValue"), asTold(components.singularValues[n])},
                        {QStringLiteral("VarianceExplained"), asTold(components.shares[n])}});
    }
}

void addMarks(ConfoundsText &table, const char *stem, const std::vector<Index> &volumes)
{
    for (std::size_t n = 0; n < volumes.size(); ++n)
        table.add(numbered(stem, Index(n)), VectorXd::Unit(volumeCount, volumes[n]));
}

std::vector<Index> outliers(const ArrayXd &displacement, const ArrayXd &dvars)
{
    std::vector<Index> volumes;
    for (Index t = 1; t < volumeCount; ++t)
        if (displacement[t] > mostDisplacement || dvars[t] > mostDvars)
            volumes.push_back(t);
    return volumes;
}

} // namespace

ConfoundsFiles confoundsOf(const Brain &brain, const Samples &samples, const std::vector<int> &mask,
                           const MatrixXd &motion)
{
    const auto of = [&](auto choose) { return seriesOf(brain, samples, mask, choose); };
    const MatrixXd whole = of([](Tissue) { return true; });
    const MatrixXd fluid = of([](Tissue tissue) { return tissue == Fluid; });
    const MatrixXd white = of([](Tissue tissue) { return tissue == White; });
    MatrixXd both(volumeCount, fluid.cols() + white.cols());
    both << fluid, white;
    const MatrixXd cosines = cosinesOfRun();
    const signals::Dvars dvars = signals::dvars(whole);
    const ArrayXd displacement = signals::framewise_displacement(motion);

    ConfoundsText table(digits);
    table.addExpanded("global_signal", meanOf(whole));
    table.addExpanded("csf", meanOf(fluid));
    table.addExpanded("white_matter", meanOf(white));
    table.add("csf_wm", meanOf(both));
    table.add("std_dvars", dvars.standardised);
    table.add("dvars", dvars.plain);
    table.add("framewise_displacement", displacement);
    QJsonObject facts;
    for (const char *name : {"csf", "global_signal", "white_matter"})
        facts.insert(QString::fromLatin1(name),
                     QJsonObject{{QStringLiteral("Method"), QStringLiteral("Mean")}});
    addComponents(table, facts, "c_comp_cor_", "CSF", fluid, cosines);
    addComponents(table, facts, "w_comp_cor_", "WM", white, cosines);
    addComponents(table, facts, "a_comp_cor_", "combined", both, cosines);
    for (Index k = 0; k < cosines.cols(); ++k)
        table.add(numbered("cosine", k), cosines.col(k));
    std::vector<Index> beginning;
    for (Index t = 0; t < unsteadyVolumes; ++t)
        beginning.push_back(t);
    addMarks(table, "non_steady_state_outlier", beginning);
    for (Index parameter = 0; parameter < 6; ++parameter)
        table.addExpanded(
            QByteArray::fromStdString(signals::motion_columns()[std::size_t(parameter)]),
            motion.col(parameter));
    addMarks(table, "motion_outlier", outliers(displacement, dvars.standardised));
    return {table.text(), QJsonDocument(facts).toJson()};
}

} // namespace corvane::example_study
