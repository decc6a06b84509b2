// SPDX-License-Identifier: GPL-3.0-or-later
//
// The exports of time series and matrices.
#include "results/connectivity_object_ui.h"

#include "dataset/subject.h"
#include "engine/connectivity_object.h"
#include "plots/plot_source.h"
#include "plots/save_dialog.h"

#include <nodalis/nodalis.h>

#include <algorithm>

namespace
{

const QLatin1String csvEnding(".csv");

QString askForCsv(QWidget *dialog)
{
    return askForTarget(dialog, QStringLiteral("Comma-separated values (*.csv)"), csvEnding);
}

/// The chosen path without ".csv", wherever that stands in it. To it the endings are added.
QString baseOf(QString path)
{
    return path.remove(csvEnding, Qt::CaseSensitive);
}

/// Silent whatever comes of it. A matrix without entries makes no file. Whether there is one.
bool writeCsv(const Eigen::MatrixXf &matrix, const QString &path)
{
    return matrix.size() > 0 && nodalis::to_csv(matrix, path.toStdString());
}

} // namespace

void ConnectivityObjectUI::data_exportTimeseries()
{
    const QString path = askForCsv(this);
    if (path.isEmpty())
        return; // the dialog itself may be gone
    const QString base = baseOf(path);
    const std::vector<Eigen::MatrixXf> timeseries = subject().timeseries();
    const QStringList labels = subject().voiLabels(true);
    const int count = std::min(int(timeseries.size()), labels.size());
    for (int voi = 0; voi < count; ++voi)
        writeCsv(timeseries[std::size_t(voi)], base + "_" + labels[voi] + csvEnding);
}

void ConnectivityObjectUI::data_exportConnectivityMatrix()
{
    const QString path = askForCsv(this);
    if (path.isEmpty())
        return;
    const QString base = baseOf(path);
    const Matrices all = matrices();
    if (!subject().useProtocol()) {
        if (!all.empty() && writeCsv(all.front(), base)) // the library adds the ending
            connectivityObject->setUnsaved(false);
        return;
    }
    const QStringList names = subject().protocol().volumeNames.values();
    bool isSaved = true;
    for (int slice = 0; slice < int(all.size()); ++slice)
        isSaved &= writeCsv(all[std::size_t(slice)], base + "_" + QString::number(slice) + "_" +
                                                         nameAt(names, slice) + csvEnding);
    if (isSaved)
        connectivityObject->setUnsaved(false);
}

void ConnectivityObjectUI::data_exportMSTMatrix()
{
    askForCsv(this);
}
