// SPDX-License-Identifier: GPL-3.0-or-later
//
// The comparison of finished subjects by the spectral distance of their first matrices.
#include "dataset/tessera.h"
#include "dataset/verbose_log.h"
#include "engine/connectivity_object.h"
#include "ui_tessera.h"

#include <nodalis/nodalis.h>

#include <algorithm>

namespace
{

using Objects = QVector<ConnectivityObject *>;

struct Sizes {
    bool differ = false;
    int padSize = 0; ///< the largest of all but the first, which the distance is told to pad to
};

/// Compares the first matrices; an object without one raises the list's out-of-range error.
Sizes compareSizes(const Objects &objects)
{
    Sizes sizes;
    const Eigen::MatrixXf first = objects.first()->matrices().at(0);
    for (int k = 1; k < objects.size(); ++k) {
        const Eigen::MatrixXf matrix = objects.at(k)->matrices().at(0);
        if (matrix.rows() != first.rows() || matrix.cols() != first.cols())
            sizes.differ = true;
        sizes.padSize = std::max(sizes.padSize, static_cast<int>(matrix.rows()));
    }
    return sizes;
}

/// The upper triangle with the diagonal; 0 below it.
Eigen::MatrixXf distancesOf(const QVector<Eigen::MatrixXf> &selected, int padSize)
{
    const int count = selected.size();
    Eigen::MatrixXf distances = Eigen::MatrixXf::Zero(count, count);
    for (int i = 0; i < count; ++i) {
        Eigen::MatrixXf a = selected.at(i);
        for (int j = i; j < count; ++j) {
            Eigen::MatrixXf b = selected.at(j);
            distances(i, j) = nodalis::distances::spectral_euclidean(a, b, padSize);
        }
    }
    return distances;
}

QString tableText(const Eigen::MatrixXf &distances)
{
    QString text;
    for (Eigen::Index row = 0; row < distances.rows(); ++row) {
        for (Eigen::Index column = 0; column < distances.cols(); ++column) {
            const auto distance = static_cast<double>(distances(row, column));
            text += QStringLiteral("%1\t").arg(QString::number(distance, 'g', 6));
        }
        text += QLatin1Char('\n');
    }
    return text;
}

} // namespace

void Tessera::group_SelectedSubjects()
{
    verboseLog("void __cdecl Tessera::group_SelectedSubjects(void)");
    const int selected = ui->list_ConnObjs->selectedItems().size();
    verboseLog("select subjects = ", selected);

    ui->btn_OpenSubject->setEnabled(selected >= 1);
    ui->btn_ReleaseSubject->setEnabled(selected >= 1);
    ui->btn_ReleaseAllSubjects->setEnabled(selected >= 1);
    ui->btn_ComputeGraphDistance->setEnabled(selected >= 2);
    // With one subject the choice of the metric keeps its state.
    if (selected != 1)
        ui->cbox_GraphDistance->setEnabled(selected >= 2);
}

void Tessera::group_ComputeDistance()
{
    verboseLog("void __cdecl Tessera::group_ComputeDistance(void)");
    const bool useMst = ui->cbox_grp_useFilteredMatrix->isChecked();
    Objects objects;
    const QList<QListWidgetItem *> items = ui->list_ConnObjs->selectedItems();
    for (const QListWidgetItem *item : items)
        objects.append(connectivityObjects.at(item->data(Qt::UserRole).toInt()));
    if (objects.isEmpty())
        return;

    QPlainTextEdit *const output = ui->plain_GraphResults;
    const Sizes sizes = compareSizes(objects);
    if (sizes.differ) {
        output->appendPlainText(
            tr("Group matrix sizes do not match. They will be padded with zeros."));
    }

    QVector<Eigen::MatrixXf> selected;
    if (useMst) {
        output->appendPlainText(tr("Will use the MST-filtered connectivity matrices."));
        for (const ConnectivityObject *object : qAsConst(objects)) {
            if (!object->mstComputed()) {
                output->appendPlainText(
                    tr("Subject is missing MST configuraiton. Aborting comparison."));
                return;
            }
            selected.append(object->mstMatrices().at(0));
        }
    } else {
        output->appendPlainText(tr("Will full the full-weighted connectivity matrices."));
        for (const ConnectivityObject *object : qAsConst(objects))
            selected.append(object->matrices().at(0));
    }

    output->appendPlainText(tr("Computing distance score..."));
    output->appendPlainText(tableText(distancesOf(selected, sizes.padSize)));
}
