// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/compute_row.h"

#include "host/files/input_error.h"
#include "host/files/listing.h"
#include "host/files/output_file.h"
#include "host/files/process_identity.h"
#include "host/report/run_page.h"
#include "host/study/row_state.h"
#include "host/study/slurm_job.h"
#include "host/study/study_folder.h"

#include <QDir>
#include <QFile>

#include <new>

namespace corvane
{

namespace
{

std::vector<InputStamp> stampsOf(const StudyRow &row, const QString &dataset)
{
    std::vector<InputStamp> stamps;
    for (const RowInput &input : inputsOf(row.request))
        stamps.push_back(stampOf(input.role, input.path, dataset));
    return stamps;
}

/// Adds the sums of the whole files. A file that changed while it was read is an error.
void completeStamps(const StudyRow &row, const QString &dataset, std::vector<InputStamp> &stamps)
{
    const std::vector<RowInput> inputs = inputsOf(row.request);
    for (std::size_t n = 0; n < inputs.size(); ++n) {
        stamps[n].sum = sumOf(inputs[n].path);
        if (!stamps[n].isLike(stampOf(inputs[n].role, inputs[n].path, dataset)))
            throw InputError(inputs[n].path, QStringLiteral("reading"),
                             QStringLiteral("another file than a moment ago"),
                             QStringLiteral("one that nobody writes"));
    }
}

/// Without the folder of the dataset, which is the same in all rows.
QString reasonText(const char *what, const QString &dataset)
{
    return QString::fromUtf8(what).replace(dataset + QLatin1Char('/'), QString());
}

void makeRow(const StudyRow &row, const StudySettings &settings, RowRecord &record)
{
    record.inputs = stampsOf(row, settings.dataset);
    OutputFolder folder(settings.out + QLatin1Char('/') + row.name.folder, writerOf(row.name));
    const Connectome connectome = writeRow(row, settings.dataset, settings.pages, folder);
    completeStamps(row, settings.dataset, record.inputs);
    record.ledger = ledgerJson(connectome.cleaning.design.ledger);
    record.notes = connectome.notes;
    record.outputs = namesInFolder(folder.path(), {QStringLiteral("*")}, Listed::Files);
    // Of two sets of files the record of neither may stand while they change.
    QFile::remove(recordPath(settings.out, row.name));
    record.notes += folder.commit();
    record.status = RowStatus::Done;
}

/// What an earlier call made of the row goes.
void removeOutputs(const StudyRow &row, const StudySettings &settings,
                   const std::optional<RowRecord> &before)
{
    if (!before || before->outputs.isEmpty())
        return;
    OutputFolder nothing(settings.out + QLatin1Char('/') + row.name.folder, writerOf(row.name));
    QFile::remove(recordPath(settings.out, row.name));
    (void)nothing.commit();
}

/// Makes the row, or says in the record why not.
void tryRow(const StudyRow &row, const StudySettings &settings, RowRecord &record)
{
    const auto end = [&](RowStatus status, const char *what) {
        record.status = status;
        record.reason = reasonText(what, settings.dataset);
    };
    if (!row.reason.isEmpty()) {
        record.status = RowStatus::Missing;
        record.reason = row.reason;
        return;
    }
    try {
        makeRow(row, settings, record);
    } catch (const signals::Refused &refusal) {
        end(RowStatus::Excluded, refusal.what());
        record.ledger = ledgerJson(refusal.ledger());
    } catch (const std::bad_alloc &) {
        end(RowStatus::Failed, "there is not enough memory for this run");
    } catch (const std::exception &error) {
        end(RowStatus::Failed, error.what());
    }
}

} // namespace

QString writerOf(const RowName &name)
{
    return QStringLiteral("cohort ") + name.stem();
}

QString runPageName(const RowName &name)
{
    return runPageName(ConnectomeNames{name.prefix, name.atlas, {}});
}

Connectome writeRow(const StudyRow &row, const QString &dataset, bool withPage,
                    const OutputFolder &folder)
{
    Connectome connectome = makeConnectome(row.request);
    const ConnectomeNames names = namesOf(row, dataset);
    writeConnectomeTables(folder, row.request, names, connectome);
    if (withPage)
        writeFile(folder.path(runPageName(names)), runPage(row.request, names, connectome));
    return connectome;
}

RowRecord begunRecord(const StudyRow &row, const StudySettings &settings)
{
    const ProcessIdentity process = thisProcess();
    RowRecord record;
    record.name = row.name;
    record.dataset = settings.dataset;
    record.options = settings.options;
    record.settings = settingsSum(settings.options);
    record.repetitionTime = row.request.repetitionTime;
    record.begun = QDateTime::currentDateTimeUtc();
    record.host = QString::fromStdString(process.host);
    record.process = process.number;
    record.job = slurmJob().number;
    return record;
}

RowRecord computeRow(const StudyRow &row, const StudySettings &settings,
                     const std::optional<RowRecord> &before)
{
    RowRecord record = begunRecord(row, settings);
    tryRow(row, settings, record);
    if (record.status != RowStatus::Done)
        removeOutputs(row, settings, before);
    record.ended = QDateTime::currentDateTimeUtc();
    makeStudyFolder(settings.out + QLatin1Char('/') + row.name.folder);
    writeRecord(settings.out, record);
    return record;
}

} // namespace corvane
