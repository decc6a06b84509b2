// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/import_dialog.h"

#include "engine/run_aside.h"
#include "host/files/events_table.h"
#include "host/files/file_kind.h"
#include "host/import/cleaning_choice.h"
#include "host/import/import_name.h"
#include "host/import/import_provenance.h"
#include "host/import/write_import.h"
#include "host/session/log.h"
#include "host/workbench/background_work.h"
#include "host/workbench/import_choices.h"
#include "ui_import_dialog.h"

#include <QDir>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>

namespace corvane
{

namespace
{

QTableWidgetItem *numberItem(qint64 number)
{
    auto *const item = new QTableWidgetItem(QString::number(number));
    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return item;
}

} // namespace

ImportDialog::ImportDialog(QWidget *parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::ImportDialog>())
{
    m_ui->setupUi(this);
    m_import = m_ui->buttons->addButton(tr("&Import"), QDialogButtonBox::AcceptRole);
    m_import->setDefault(true);
    // With its frame not beyond a small screen, or the buttons are out of reach.
    const QSize frame(20, 60);
    resize(QSize(1220, 700).boundedTo(screen()->availableSize() - frame));
    const QString orAll = tr(";;All files (*)");
    m_ui->anatomy->setFilter(fileFilter(tr("Images"), {FileKind::Nifti, FileKind::Nrrd}) + orAll);
    m_ui->functional->setFilter(fileFilter(tr("Runs"), {FileKind::Nifti}) + orAll);
    m_ui->vois->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_ui->vois->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    const QStringList strategies = strategyNames();
    for (const QString &name : strategies) {
        m_ui->strategy->addItem(name);
        m_ui->strategy->setItemData(m_ui->strategy->count() - 1, strategyText(name),
                                    Qt::ToolTipRole);
    }
    restoreChoices();
    connectFields();

    // Not at every letter of a path.
    m_planSoon.setSingleShot(true);
    m_planSoon.setInterval(300);
    connect(&m_planSoon, &QTimer::timeout, this, &ImportDialog::startPlanning);
    connect(&m_planning, &QFutureWatcherBase::finished, this, &ImportDialog::showOutcome);
    inputChanged();
    startPlanning();
}

// A plan that is still being made ends soon, and nobody waits for it.
ImportDialog::~ImportDialog()
{
    if (m_stop)
        *m_stop = true;
}

void ImportDialog::connectFields()
{
    for (FileField *field :
         {m_ui->anatomy, m_ui->functional, m_ui->events, m_ui->confounds, m_ui->folder})
        connect(field, &FileField::changed, this, &ImportDialog::inputChanged);
    connect(m_ui->voiSources, &VoiSourceList::changed, this, &ImportDialog::inputChanged);
    for (QLineEdit *line : {m_ui->name, m_ui->subject, m_ui->space})
        connect(line, &QLineEdit::textChanged, this, &ImportDialog::inputChanged);
    for (QDoubleSpinBox *box : {m_ui->repetitionTime, m_ui->fdThreshold})
        connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
                &ImportDialog::inputChanged);
    connect(m_ui->resolution, QOverload<int>::of(&QSpinBox::valueChanged), this,
            &ImportDialog::inputChanged);
    for (QComboBox *box : {m_ui->voiGrid, m_ui->strategy})
        connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                &ImportDialog::inputChanged);
    connect(m_ui->buttons, &QDialogButtonBox::accepted, this, &ImportDialog::runImport);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

// ---- what is remembered

void ImportDialog::restoreChoices()
{
    const ImportChoices choices = rememberedChoices();
    m_ui->voiGrid->setCurrentIndex(choices.voiGrid == VoiGrid::Functional ? 0 : 1);
    m_ui->strategy->setCurrentText(choices.strategy);
    m_ui->fdThreshold->setValue(choices.fdThreshold);
    m_ui->voiSources->setSources(choices.voiSources);
}

void ImportDialog::rememberChoices() const
{
    ImportChoices choices;
    choices.voiGrid = request().voiGrid;
    if (m_ui->strategy->currentIndex() > 0)
        choices.strategy = m_ui->strategy->currentText();
    choices.fdThreshold = m_ui->fdThreshold->value();
    choices.voiSources = m_ui->voiSources->sources();
    choices.folder = QFileInfo(QDir::cleanPath(m_ui->folder->path())).path();
    corvane::rememberChoices(choices);
}

// ---- input

ImportRequest ImportDialog::request() const
{
    ImportRequest request;
    request.anatomy = m_ui->anatomy->path();
    request.functional = m_ui->functional->path();
    request.voiSources = m_ui->voiSources->sources();
    request.events = m_ui->events->path();
    request.provenance = {m_ui->subject->text().trimmed(), m_ui->space->text().trimmed()};
    if (m_ui->resolution->value() > 0)
        request.resolution = m_ui->resolution->value();
    if (m_ui->repetitionTime->value() > 0)
        request.repetitionTime = m_ui->repetitionTime->value();
    request.voiGrid = m_ui->voiGrid->currentIndex() == 0 ? VoiGrid::Functional : VoiGrid::Anatomy;
    request.confounds = m_ui->confounds->path();
    request.cleaning = cleaning();
    request.name = m_ui->name->text();
    request.folder = m_ui->folder->path();
    return request;
}

/// Null without a table or a strategy.
std::shared_ptr<const CleaningRequest> ImportDialog::cleaning() const
{
    if (m_ui->confounds->path().isEmpty() || m_ui->strategy->currentIndex() == 0)
        return nullptr;
    CleaningChoice choice{m_ui->confounds->path(), m_ui->strategy->currentText(), {}};
    if (m_ui->fdThreshold->value() > 0)
        choice.fdThreshold = m_ui->fdThreshold->value();
    return cleaningOf(choice);
}

void ImportDialog::setRequest(const ImportRequest &request)
{
    m_ui->anatomy->setPath(request.anatomy);
    m_ui->functional->setPath(request.functional);
    m_ui->voiSources->setSources(request.voiSources);
    m_ui->events->setPath(request.events);
    m_ui->subject->setText(request.provenance.subject);
    m_ui->space->setText(request.provenance.space);
    m_ui->resolution->setValue(request.resolution.value_or(0));
    m_ui->repetitionTime->setValue(request.repetitionTime.value_or(0));
    m_ui->voiGrid->setCurrentIndex(request.voiGrid == VoiGrid::Functional ? 0 : 1);
    if (!request.confounds.isEmpty())
        m_ui->confounds->setPath(request.confounds);
    if (request.cleaning) {
        const CleaningChoice choice = choiceOf(*request.cleaning);
        m_ui->confounds->setPath(choice.confounds);
        m_ui->strategy->setCurrentText(choice.strategy);
        m_ui->fdThreshold->setValue(choice.fdThreshold.value_or(0));
    }
    if (!request.folder.isEmpty())
        m_ui->folder->setPath(request.folder);
    if (!request.name.isEmpty())
        m_ui->name->setText(request.name);
}

void ImportDialog::setFiles(const ImportRequest &request)
{
    ImportRequest files = request;
    const ImportRequest now = this->request();
    if (files.voiSources.empty())
        files.voiSources = now.voiSources;
    files.voiGrid = now.voiGrid;
    setRequest(files);
}

/// The table beside the run stands there until the user gives another.
void ImportDialog::suggestConfounds()
{
    const QString suggestion = confoundsBeside(m_ui->functional->path());
    if (suggestion == m_suggestedConfounds)
        return;
    const bool follows = m_ui->confounds->path() == m_suggestedConfounds;
    m_suggestedConfounds = suggestion;
    if (follows)
        m_ui->confounds->setPath(suggestion);
}

/// The name follows the run until the user gives another.
void ImportDialog::suggestName()
{
    const QString suggestion = defaultImportName(m_ui->functional->path());
    const bool follows = m_ui->name->text() == m_suggestedName;
    m_suggestedName = suggestion;
    if (follows)
        m_ui->name->setText(suggestion);
}

/// Likewise a folder for the subject, beside those of earlier imports.
void ImportDialog::suggestFolder()
{
    const QString suggestion =
        m_ui->functional->path().isEmpty() ? QString() : proposedFolder(request());
    const bool follows = m_ui->folder->path() == m_suggestedFolder;
    m_suggestedFolder = suggestion;
    if (follows)
        m_ui->folder->setPath(suggestion);
}

/// What the names say stands in the empty fields.
void ImportDialog::suggestProvenance()
{
    ImportRequest files = request();
    files.provenance = {};
    const Provenance found = provenanceOf(files);
    const QString unknown = tr("not known");
    m_ui->subject->setPlaceholderText(found.subject.isEmpty() ? unknown : found.subject);
    m_ui->space->setPlaceholderText(found.space.isEmpty() ? unknown : found.space);
}

void ImportDialog::inputChanged()
{
    // Each suggestion is an input that comes here again.
    suggestConfounds();
    suggestName();
    suggestFolder();
    suggestProvenance();
    const bool hasTable = !m_ui->confounds->path().isEmpty();
    m_ui->strategy->setEnabled(hasTable);
    m_ui->fdThreshold->setEnabled(hasTable && m_ui->strategy->currentIndex() > 0);
    m_import->setEnabled(false);
    m_planIsOld = true;
    if (m_stop)
        *m_stop = true;
    m_planSoon.start();
}

// ---- plan

void ImportDialog::startPlanning()
{
    if (m_planning.isRunning())
        return; // showOutcome comes back here
    m_planIsOld = false;
    m_ui->state->setText(tr("Looking at the files..."));
    m_stop = std::make_shared<std::atomic_bool>(false);
    m_planning.setFuture(
        runAside(QThreadPool::globalInstance(), [asked = request(), stop = m_stop] {
            CheckedImport outcome;
            const QString fault = faultOf(
                [&] { outcome = checkImport(asked, [stop](qint64, qint64) { return !*stop; }); });
            if (!fault.isEmpty())
                outcome.check.other = fault;
            return outcome;
        }));
}

void ImportDialog::clearPlan()
{
    m_plan.reset();
    m_ui->grids->clear();
    m_ui->vois->setRowCount(0);
    m_ui->conditions->show(Prt(), 0);
    m_ui->motion->hide();
    m_ui->notes->clear();
}

void ImportDialog::showOutcome()
{
    if (m_planIsOld) {
        startPlanning();
        return;
    }
    const CheckedImport outcome = m_planning.result();
    showMessages(outcome.check);
    m_plan = outcome.plan;
    if (m_plan != nullptr)
        showPlan(*m_plan);
    else
        clearPlan();
    const bool isReady = m_plan != nullptr && !outcome.check.hasFaults();
    if (!outcome.check.other.isEmpty())
        m_ui->state->setText(outcome.check.other);
    else if (m_ui->functional->path().isEmpty())
        m_ui->state->setText(tr("Choose a functional run to see what goes where."));
    else if (!isReady && m_plan == nullptr)
        m_ui->state->setText(
            tr("Nothing can be shown before the run and the anatomy can be read."));
    else if (!isReady)
        m_ui->state->setText(
            tr("%1\nWhat is wrong stands beside its field.").arg(m_ui->state->text()));
    m_import->setEnabled(isReady);
}

/// Missing fields are no fault before anything is chosen.
void ImportDialog::showMessages(const ImportCheck &check)
{
    const auto tell = [](auto *field, const FieldCheck &found) {
        const bool isFault = !found.fault.isEmpty();
        field->setMessage(isFault ? found.fault : found.found, isFault);
    };
    tell(m_ui->anatomy, check.anatomy);
    tell(m_ui->functional, check.functional);
    tell(m_ui->events, check.events);
    tell(m_ui->confounds, check.confounds);
    m_ui->voiSources->setChecks(check.voiSources);
    const bool isEmpty = m_ui->functional->path().isEmpty();
    tell(m_ui->folder, isEmpty ? FieldCheck() : check.folder);
    m_ui->nameMessage->show(isEmpty ? QString() : check.name.fault, true);
}

void ImportDialog::showPlan(const ImportPlan &plan)
{
    const FunctionalGrid &grid = plan.grid;
    m_ui->state->setText(tr("%1 x %2 x %3 samples, %4 mm apart, %5; %6 volumes, one each %7 s")
                             .arg(QString::number(grid.size[0]), QString::number(grid.size[1]),
                                  QString::number(grid.size[2]), QString::number(grid.resolution),
                                  grid.copied ? tr("copied as they are") : tr("interpolated"),
                                  QString::number(plan.keptVolumes()),
                                  QString::number(plan.repetitionTime)));
    m_ui->grids->show(plan);
    showVois(plan);
    m_ui->conditions->show(plan.protocol, plan.keptVolumes());
    showCleaning(plan);
    const QStringList notes = plan.notes + shortIntervalNotes(plan.protocol);
    m_ui->notes->setPlainText(notes.isEmpty() ? tr("Nothing to note.")
                                              : notes.join(QLatin1Char('\n')));
}

void ImportDialog::showCleaning(const ImportPlan &plan)
{
    m_ui->motion->setVisible(plan.cleaning != nullptr);
    if (plan.cleaning) {
        m_ui->motion->show(plan.volumeChoice());
        m_ui->state->setText(
            tr("%1\nCleaned: %2").arg(m_ui->state->text(), ledgerText(*plannedVtc(plan).cleaning)));
    }
}

void ImportDialog::showVois(const ImportPlan &plan)
{
    const auto &vois = plan.vois.vois;
    m_ui->vois->setRowCount(static_cast<int>(vois.size()));
    for (std::size_t n = 0; n < vois.size(); ++n) {
        const int row = static_cast<int>(n);
        const LabelCount &count = plan.labelCounts[n];
        auto *const name = new QTableWidgetItem(vois[n].name);
        QPixmap square(16, 16);
        square.fill(QColor(vois[n].r, vois[n].g, vois[n].b));
        name->setIcon(QIcon(square));
        m_ui->vois->setItem(row, 0, name);
        m_ui->vois->setItem(row, 1, numberItem(count.insideRun));
        m_ui->vois->setItem(row, 2, numberItem(count.inAtlas - count.insideRun));
        m_ui->vois->setItem(row, 3, numberItem(static_cast<qint64>(vois[n].voxels.size())));
    }
}

// ---- import

void ImportDialog::runImport()
{
    if (!m_import->isEnabled())
        return;
    // What is shown is what is written.
    const std::shared_ptr<const ImportPlan> plan = m_plan;
    QStringList present;
    for (const PlannedFile &file : plan->files)
        if (QFileInfo::exists(QDir(plan->request.folder).filePath(file.name)))
            present += file.name;
    if (!present.isEmpty() &&
        QMessageBox::question(this, tr("Import"),
                              tr("Replace what is already in the folder?\n\n%1")
                                  .arg(present.join(QStringLiteral(", "))),
                              QMessageBox::Yes | QMessageBox::No,
                              QMessageBox::No) != QMessageBox::Yes)
        return;

    ImportReport report;
    const WorkOutcome outcome =
        runBehindProgress(this, tr("Import"),
                          [&](const ProgressWatch &watch) { report = writeImport(*plan, watch); });
    if (outcome.stopped) {
        logText(tr("The import was cancelled; nothing was written."));
        return;
    }
    if (!outcome.fault.isEmpty()) {
        QMessageBox box(QMessageBox::Warning, tr("Import"), outcome.fault, QMessageBox::Ok, this);
        box.setTextFormat(Qt::PlainText);
        box.exec();
        return;
    }
    rememberChoices();
    for (const QString &line : report.notes + report.summary)
        logText(line);
    for (const QString &file : report.files)
        if (fileKind(file) != FileKind::Prt)
            m_importedFiles += file;
    accept();
}

} // namespace corvane
