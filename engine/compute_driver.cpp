// SPDX-License-Identifier: GPL-3.0-or-later
//
// The compute: from the selected subject to its finished result in the list.
#include "dataset/scoped_dialog.h"
#include "dataset/tessera.h"
#include "dataset/verbose_log.h"
#include "engine/compute_checks.h"
#include "engine/compute_error.h"
#include "engine/compute_steps.h"
#include "engine/connectivity_object.h"
#include "engine/dumps.h"
#include "engine/run_aside.h"
#include "plugin/host_log.h"
#include "ui_tessera.h"

#include <QFutureWatcher>
#include <QMessageBox>
#include <QProgressDialog>

#include <optional>
#include <utility>

namespace
{

using Matrices = std::vector<Eigen::MatrixXf>;

/// On the pool thread.
Matrices work(const Subject *subject, const Eigen::MatrixXf &timeseries)
{
    try {
        return measureSlices(*subject, timeseries);
    } catch (const std::exception &error) {
        throw ComputeError(error.what());
    }
}

/// Runs the measure on a pool thread behind a modal progress dialog. Nothing when it was cancelled,
/// or when the dialogs are gone; the worker has ended in every case. Throws ComputeError when the
/// measure failed.
std::optional<Matrices> measureBehindProgress(const Subject *subject,
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

    watcher.setFuture(runAside(QThreadPool::globalInstance(),
                               [subject, timeseries] { return work(subject, timeseries); }));
    progress->exec();
    // After a Cancel the worker still runs to its end.
    watcher.waitForFinished();
    if (watcher.isCanceled() || !progress)
        return {};
    return watcher.result();
}

void dumpStep(ComputeStep step, const Matrices &matrices)
{
    switch (step) {
    case ComputeStep::Measure:
        dumpMatrices(dump_names::connectivity, matrices);
        break;
    case ComputeStep::SignTreatment:
        dumpMatrices(dump_names::treatmentPass1, matrices);
        break;
    case ComputeStep::Treatment:
        dumpMatrices(dump_names::treatmentPass2, matrices);
        break;
    case ComputeStep::SpanningTrees:
        dumpMatrices(dump_names::minimumSpanningTrees, matrices);
        break;
    }
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

    std::optional<Matrices> measured;
    try {
        measured = measureBehindProgress(subject.data(), timeseries, this);
    } catch (const ComputeError &error) {
        logToHost("Plugin> The measure failed: %s. Nothing was computed for %s.", error.what(),
                  name.toUtf8().constData());
    }
    if (!measured)
        return;
    for (const QString &warning : computeWarnings(*subject, timeseries, subject->voiLabels(false)))
        logToHost("Plugin> %s: %s", name.toUtf8().constData(), warning.toUtf8().constData());
    addResult(subject, name, finishSlices(*subject, std::move(*measured), dumpStep));
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
                        const ComputedMatrices &computed)
{
    auto *const object = new ConnectivityObject(name, this);
    object->setSubject(subject);
    object->setMatrices(computed.connectivity);
    object->setUnsaved(true);
    if (subject->computeMst())
        object->setSpanningTrees(computed.trees);
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
