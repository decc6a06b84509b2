// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/runs_dialog.h"

#include "dataset/counted.h"
#include "host/files/file_kind.h"
#include "host/files/input_error.h"
#include "host/import/cleaning_choice.h"
#include "host/import/import_provenance.h"
#include "host/session/log.h"
#include "host/workbench/background_work.h"
#include "host/workbench/import_choices.h"
#include "host/workbench/message_line.h"
#include "plots/plain_text.h"
#include "ui_runs_dialog.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>

#include <algorithm>

namespace corvane
{

namespace
{

enum Column { RunColumn, AnatomyColumn, MaskColumn, AtlasColumn, EventsColumn, ConfoundsColumn };

QString nameOf(const BidsImport &import)
{
    if (!import.request.name.isEmpty())
        return import.request.name;
    return import.run.prefix.isEmpty() ? QStringLiteral("sub-") + import.run.participant
                                       : import.run.prefix;
}

QTableWidgetItem *fileItem(const QString &path, const QString &instead = {})
{
    auto *const item = new QTableWidgetItem(path.isEmpty() ? instead : QFileInfo(path).fileName());
    item->setToolTip(path.isEmpty() ? QString() : asToolTip(path));
    return item;
}

QString atlasText(const std::vector<VoiSource> &sources)
{
    QStringList names;
    for (const VoiSource &source : sources)
        if (source.kind != VoiSource::Mask)
            names += QFileInfo(source.file).fileName();
    return names.join(QStringLiteral(", "));
}

/// What a run's files are called where it goes.
QStringList plannedPaths(const BidsImport &import)
{
    QStringList paths;
    for (const FileKind kind : {FileKind::Vmr, FileKind::Vtc, FileKind::Voi, FileKind::Prt})
        paths += QDir(import.request.folder).filePath(fileName(import.request.name, kind));
    return paths;
}

} // namespace

RunsDialog::RunsDialog(const QString &what, std::vector<BidsImport> runs, QWidget *parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::RunsDialog>()), m_runs(std::move(runs))
{
    m_ui->setupUi(this);
    m_import = m_ui->buttons->addButton(tr("&Import"), QDialogButtonBox::AcceptRole);
    m_import->setDefault(true);
    const QSize frame(20, 60);
    resize(QSize(1100, 640).boundedTo(screen()->availableSize() - frame));
    m_ui->strategy->addItems(strategyNames());
    const ImportChoices choices = rememberedChoices();
    m_ui->strategy->setCurrentText(choices.strategy);
    m_ui->voiSources->setSources(choices.voiSources);
    m_ui->folder->setPath(folderOfSubjects());
    m_ui->voiSources->setToolTip(tr("Optional: in place of what belongs to each run"));
    const auto usable = std::count_if(m_runs.begin(), m_runs.end(),
                                      [](const BidsImport &run) { return run.reason.isEmpty(); });
    m_ui->summary->setText(
        tr("%1: %2, %3 can be imported")
            .arg(what, counted(qint64(m_runs.size()), "run"), QString::number(usable)));
    fill();
    connect(m_ui->runs, &QTableWidget::itemChanged, this, &RunsDialog::enableImport);
    connect(m_ui->tickAll, &QPushButton::clicked, this, [this] { tick(true); });
    connect(m_ui->tickNone, &QPushButton::clicked, this, [this] { tick(false); });
    connect(m_ui->folder, &FileField::changed, this, &RunsDialog::enableImport);
    connect(m_ui->buttons, &QDialogButtonBox::accepted, this, &RunsDialog::runImports);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    enableImport();
}

RunsDialog::~RunsDialog() = default;

void RunsDialog::fill()
{
    QTableWidget *const table = m_ui->runs;
    table->setRowCount(int(m_runs.size()));
    // Names begin alike and end with what tells them apart.
    table->setTextElideMode(Qt::ElideLeft);
    table->setWordWrap(false);
    for (int row = 0; row < table->rowCount(); ++row) {
        const BidsImport &import = m_runs[std::size_t(row)];
        auto *const name = new QTableWidgetItem(nameOf(import));
        const bool isUsable = import.reason.isEmpty();
        name->setCheckState(isUsable ? Qt::Checked : Qt::Unchecked);
        table->setItem(row, RunColumn, name);
        if (!isUsable) {
            name->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            auto *const reason = new QTableWidgetItem(import.reason);
            reason->setForeground(faultColour(palette()));
            reason->setToolTip(asToolTip(import.reason));
            table->setItem(row, AnatomyColumn, reason);
            table->setSpan(row, AnatomyColumn, 1, ConfoundsColumn);
            continue;
        }
        const ImportRequest &request = import.request;
        name->setToolTip(asToolTip(request.functional));
        table->setItem(row, AnatomyColumn, fileItem(request.anatomy, tr("the run's mean")));
        table->setItem(row, MaskColumn, fileItem(import.run.mask));
        table->setItem(row, AtlasColumn, new QTableWidgetItem(atlasText(request.voiSources)));
        table->setItem(row, EventsColumn, fileItem(request.events));
        table->setItem(row, ConfoundsColumn, fileItem(request.confounds));
    }
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    table->horizontalHeader()->setStretchLastSection(true);
    table->resizeColumnToContents(RunColumn);
    for (int column = AnatomyColumn; column <= ConfoundsColumn; ++column)
        table->setColumnWidth(column, 150);
}

void RunsDialog::tick(bool ticked)
{
    for (int row = 0; row < m_ui->runs->rowCount(); ++row)
        if (m_runs[std::size_t(row)].reason.isEmpty())
            m_ui->runs->item(row, RunColumn)->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
}

void RunsDialog::enableImport()
{
    const std::size_t count = tickedRuns().size();
    m_import->setEnabled(count > 0 && !m_ui->folder->path().isEmpty());
    m_ui->folder->setMessage(
        m_ui->folder->path().isEmpty() ? tr("missing: a folder for the subjects") : QString(),
        true);
}

std::vector<BidsImport> RunsDialog::tickedRuns() const
{
    std::vector<BidsImport> ticked;
    for (int row = 0; row < m_ui->runs->rowCount(); ++row)
        if (m_ui->runs->item(row, RunColumn)->checkState() == Qt::Checked)
            ticked.push_back(m_runs[std::size_t(row)]);
    return ticked;
}

BidsImport RunsDialog::asChosen(BidsImport run) const
{
    const std::vector<VoiSource> common = m_ui->voiSources->sources();
    if (!common.empty())
        run.request.voiSources = common;
    if (m_ui->strategy->currentIndex() > 0)
        run.request.cleaning =
            cleaningOf({run.request.confounds, m_ui->strategy->currentText(), {}});
    run.request.folder = QDir(m_ui->folder->path()).filePath(run.request.folder);
    return run;
}

bool RunsDialog::mayReplace(const std::vector<BidsImport> &runs)
{
    QStringList present;
    for (const BidsImport &run : runs)
        for (const QString &path : plannedPaths(run))
            if (QFileInfo::exists(path))
                present += path;
    if (present.isEmpty())
        return true;
    constexpr int shown = 5;
    const int count = present.size();
    present = present.mid(0, shown);
    if (count > shown)
        present += tr("and %1 more").arg(count - shown);
    return QMessageBox::question(
               this, tr("Import"),
               tr("Replace what is already there?\n\n%1").arg(present.join(QLatin1Char('\n'))),
               QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

void RunsDialog::runImports()
{
    if (!m_import->isEnabled())
        return;
    std::vector<BidsImport> runs;
    for (const BidsImport &run : tickedRuns())
        runs.push_back(asChosen(run));
    if (!mayReplace(runs))
        return;
    ImportedRuns imported;
    const WorkOutcome outcome = runBehindProgress(
        this, tr("Import"), [&](const ProgressWatch &watch) { importRuns(runs, watch, imported); });
    for (const ImportReport &report : imported.reports) {
        for (const QString &line : report.notes + report.summary)
            logText(line);
        QStringList files;
        for (const QString &file : report.files)
            if (fileKind(file) != FileKind::Prt)
                files += file;
        m_imported.push_back(files);
    }
    QStringList faults;
    for (const ImportedRuns::Fault &fault : imported.faults)
        faults += QStringLiteral("%1: %2").arg(nameOf(runs[fault.run]), fault.text);
    if (outcome.stopped)
        logText(tr("The import was cancelled; what was done before stays."));
    else if (!outcome.fault.isEmpty())
        faults += outcome.fault;
    if (!faults.isEmpty()) {
        for (const QString &line : qAsConst(faults))
            logText(line);
        QMessageBox box(
            QMessageBox::Warning, tr("Import"),
            tr("%1 could not be imported:\n\n%2")
                .arg(counted(faults.size(), "run"), faults.mid(0, 10).join(QLatin1Char('\n'))),
            QMessageBox::Ok, this);
        box.setTextFormat(Qt::PlainText);
        box.exec();
    }
    if (m_imported.empty())
        return;
    ImportChoices choices = rememberedChoices();
    choices.folder = m_ui->folder->path();
    choices.strategy =
        m_ui->strategy->currentIndex() > 0 ? m_ui->strategy->currentText() : QString();
    choices.voiSources = m_ui->voiSources->sources();
    rememberChoices(choices);
    accept();
}

std::vector<BidsImport> runsOfDataset(const QString &dataset, const QStringList &participants)
{
    RunFilter filter;
    filter.participants = participants;
    filter.confoundsNeeded = false;
    ImportRequest common;
    common.folder = QStringLiteral("/");
    std::vector<BidsImport> runs = bidsImports(dataset, filter, common);
    for (BidsImport &run : runs)
        run.request.folder.remove(0, 1);
    return runs;
}

std::vector<BidsImport> runsOfRequests(const std::vector<ImportRequest> &requests)
{
    std::vector<BidsImport> runs;
    for (const ImportRequest &request : requests) {
        runs.push_back({{}, request, {}});
        runs.back().request.folder = QFileInfo(proposedFolder(request)).fileName();
    }
    return runs;
}

} // namespace corvane
