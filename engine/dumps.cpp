// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/dumps.h"

#include "dataset/plugin_settings.h"

#include <QString>
#include <nodalis/nodalis.h>

namespace dump_names
{
const QString connectivity = QStringLiteral("/correlation_mtx_%1.csv");
const QString treatmentPass1 = QStringLiteral("/correlation_mtx_%1_treatment_pass_1.csv");
const QString treatmentPass2 = QStringLiteral("/correlation_mtx_%1_treatment_pass_2.csv");
const QString minimumSpanningTrees = QStringLiteral("/correlation_mtx_%1_mst.csv");
} // namespace dump_names

namespace
{

void dump(const Eigen::MatrixXf &matrix, const QString &name)
{
    const QString path = PluginSettings::instance()->dumpFolder + name;
    nodalis::to_csv(matrix, path.toStdString());
}

} // namespace

void dumpTimeseries(const Eigen::MatrixXf &timeseries)
{
    if (PluginSettings::instance()->dumpAll)
        dump(timeseries, QStringLiteral("/connectivity_ts.csv"));
}

void dumpMatrices(const QString &nameTemplate, const std::vector<Eigen::MatrixXf> &matrices)
{
    if (!PluginSettings::instance()->dumpAll)
        return;
    for (std::size_t i = 0; i < matrices.size(); ++i)
        dump(matrices[i], nameTemplate.arg(i));
}
