// SPDX-License-Identifier: GPL-3.0-or-later
//
// The compute: from the selected subject to its finished result in the list.
#include "dataset/scoped_dialog.h"
#include "dataset/tessera.h"
#include "dataset/verbose_log.h"
#include "engine/assembly.h"
#include "engine/compute_error.h"
#include "engine/connectivity_object.h"
#include "engine/dumps.h"
#include "engine/measures.h"
#include "engine/sign_treatment.h"
#include "plugin/host_log.h"
#include "ui_tessera.h"

#include <QFutureWatcher>
#include <QMessageBox>
#include <QProgressDialog>
#include <QtConcurrent>
#include <nodalis/nodalis.h>

#include <optional>

namespace
{

using Matrices = std::vector<Eigen::MatrixXf>;

MeasureFunction measureOf(const Subject &subject)
{
    switch (subject.measure()) {
    case 1:
        return correlationMatrix;
    case 2:
        return partialCorrelationMatrix;
    default:
        return {};
    }
}

/// On the pool thread.
Matrices work(const Subject *subject, const MeasureFunction &measure,
              const Eigen::MatrixXf &timeseries)
{
    try {
        return connectivityWorker(subject, measure, timeseries);
    } catch (const std::exception &error) {
        throw ComputeError(error.what());
    }
}

/// Runs the measure on a pool thread behind a modal progress dialog. Nothing when it was cancelled,
/// or when the dialogs are gone; the worker has ended in every case. Throws ComputeError when the
/// measure failed.
std::optional<Matrices> computeBehindProgress(const Subject *subject,
                                              const MeasureFunction &measure,
                                              const Eigen::MatrixXf &timeseries, QWidget *parent)
{
    const ScopedDialog progress(new QProgressDialog(parent));
    progress->setLabelText(QProgressDialog::tr("Processing..."));

    using Watcher = QFutureWatcher<Matrices>;
    Watcher watcher;
    QObject::connect(&watcher, &Watcher::finished, progress.get(), &QProgressDialog::reset);
    QObject::connect(progress.get(), &QProgressDialog::canceled, &watcher, &Watcher::cancel);
    QObject::connect(&watcher, &Watcher::progressRangeChanged, progress.get(),
                     &QProgressDialog::setRange);
    QObject::connect(&watcher, &Watcher::progressValueChanged, progress.get(),
                     &QProgressDialog::setValue);

    watcher.setFuture(QtConcurrent::run(work, subject, measure, timeseries));
    progress->exec();
    // After a Cancel the worker still runs to its end.
    watcher.waitForFinished();
    if (watcher.isCanceled() || !progress)
        return {};
    return watcher.result();
}

/// Both treatment passes, with the dumps before, between and after them.
void treat(Matrices &matrices, int matrixValues)
{
    dumpMatrices(dump_names::connectivity, matrices);
    for (Eigen::MatrixXf &matrix : matrices)
        treatSigns(matrix, matrixValues);
    dumpMatrices(dump_names::treatmentPass1, matrices);
    for (Eigen::MatrixXf &matrix : matrices)
        nodalis::treatment(matrix);
    dumpMatrices(dump_names::treatmentPass2, matrices);
}

} // namespace

void Tessera::computeConnectivity()
{
    if (currentSubject != -1)
        computeSubjectConnectivity(currentSubject);
}

void Tessera::computeSubjectConnectivity(int index)
{
    // Held to the end: the dialog and its rows may be gone when the worker ends.
    const QSharedPointer<Subject> subject = subjectsModel->sharedSubjectAt(index);
    subject->setUseProtocol(ui->cbox_UseProtocol->isChecked());
    const QString name = subject->name();
    if (refuseDuplicate(name))
        return;

    const QVector<int> seeds = subject->scheme().seedVois;
    const std::vector<int> selection(seeds.begin(), seeds.end());
    if (PluginSettings::instance()->verboseLogging) {
        verboseLog("");
        verboseLog("Available vois: ", subject->voiCount(true));
        verboseLog("Selected vois: ", selection.size());
        verboseLog("");
    }

    const Eigen::MatrixXf timeseries = subject->averagedTimeseries(selection);
    dumpTimeseries(timeseries);

    std::optional<Matrices> matrices;
    try {
        matrices = computeBehindProgress(subject.data(), measureOf(*subject), timeseries, this);
    } catch (const ComputeError &error) {
        logToHost("Plugin> The measure failed: %s. Nothing was computed for %s.", error.what(),
                  name.toUtf8().constData());
    }
    if (!matrices)
        return;

    treat(*matrices, subject->matrixValues());
    addResult(subject, name, *matrices);
}

bool Tessera::refuseDuplicate(const QString &name)
{
    bool taken = false;
    for (const ConnectivityObject *object : qAsConst(connectivityObjects)) {
        if (QString::compare(object->name(), name, Qt::CaseSensitive) == 0)
            taken = true;
    }
    if (!taken)
        return false;
    const ScopedDialog box(new QMessageBox(this));
    box->setWindowTitle(tr("Cannot continue..."));
    box->setText(tr("Duplicate subject name found. Aborting."));
    box->exec();
    return true;
}

void Tessera::addResult(const QSharedPointer<Subject> &subject, const QString &name,
                        const std::vector<Eigen::MatrixXf> &matrices)
{
    auto *const object = new ConnectivityObject(name, this);
    object->setSubject(subject);
    object->setMatrices(matrices);
    if (subject->computeMst()) {
        object->computeMinimumSpanningTrees();
        dumpMatrices(dump_names::minimumSpanningTrees, object->mstMatrices());
    }
    if (ui->chkBox_ShowResults->isChecked())
        object->showResults();

    connectivityObjects.append(object);
    auto *const item = new QListWidgetItem(name);
    item->setData(Qt::UserRole, connectivityObjects.size() - 1);
    ui->list_ConnObjs->addItem(item);

    ui->tab_Graphs->setEnabled(true);
    ui->cbox_GraphDistance->setEnabled(false);
    ui->btn_ComputeGraphDistance->setEnabled(false);
    subject->setComputed(true);
    ui->btn_Compute->setEnabled(false);
}
