// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/import_dialog.h"

#include "host/files/file_kind.h"
#include "host/import/cleaning_choice.h"
#include "host/import/import_name.h"
#include "host/import/write_import.h"
#include "host/session/log.h"
#include "host/workbench/background_work.h"
#include "ui_import_dialog.h"

#include <QDir>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QtConcurrent>

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
    // Not beyond a small screen, or the buttons are out of reach.
    resize(QSize(900, 760).boundedTo(screen()->availableSize()));
    const QString orAll = tr(";;All files (*)");
    const QString images = fileFilter(tr("Images"), {FileKind::Nifti, FileKind::Nrrd}) + orAll;
    m_ui->anatomy->setFilter(images);
    m_ui->atlas->setFilter(images);
    m_ui->functional->setFilter(fileFilter(tr("Runs"), {FileKind::Nifti}) + orAll);
    m_ui->vois->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_ui->vois->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);

    for (FileField *field : {m_ui->anatomy, m_ui->functional, m_ui->atlas, m_ui->labels,
                             m_ui->events, m_ui->confounds, m_ui->folder})
        connect(field, &FileField::changed, this, &ImportDialog::inputChanged);
    connect(m_ui->name, &QLineEdit::textChanged, this, &ImportDialog::inputChanged);
    connect(m_ui->repetitionTime, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &ImportDialog::inputChanged);
    connect(m_ui->resolution, QOverload<int>::of(&QSpinBox::valueChanged), this,
            &ImportDialog::inputChanged);
    connect(m_ui->voiGrid, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &ImportDialog::inputChanged);
    const QStringList strategies = strategyNames();
    for (const QString &name : strategies) {
        m_ui->strategy->addItem(name);
        m_ui->strategy->setItemData(m_ui->strategy->count() - 1, strategyText(name),
                                    Qt::ToolTipRole);
    }
    connect(m_ui->strategy, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &ImportDialog::inputChanged);
    connect(m_ui->fdThreshold, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &ImportDialog::inputChanged);
    connect(m_ui->buttons, &QDialogButtonBox::accepted, this, &ImportDialog::runImport);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    // Not at every letter of a path.
    m_planSoon.setSingleShot(true);
    m_planSoon.setInterval(300);
    connect(&m_planSoon, &QTimer::timeout, this, &ImportDialog::startPlanning);
    connect(&m_planning, &QFutureWatcherBase::finished, this, &ImportDialog::showPlan);
    inputChanged();
    startPlanning();
}

// A plan that is still being made ends on its own, and nobody waits for it.
ImportDialog::~ImportDialog() = default;

// ---- input

ImportRequest ImportDialog::request() const
{
    ImportRequest request;
    request.anatomy = m_ui->anatomy->path();
    request.functional = m_ui->functional->path();
    if (!m_ui->atlas->path().isEmpty())
        request.voiSources = {{VoiSource::Atlas, m_ui->atlas->path(), m_ui->labels->path()}};
    request.events = m_ui->events->path();
    if (m_ui->resolution->value() > 0)
        request.resolution = m_ui->resolution->value();
    if (m_ui->repetitionTime->value() > 0)
        request.repetitionTime = m_ui->repetitionTime->value();
    request.voiGrid = m_ui->voiGrid->currentIndex() == 0 ? VoiGrid::Functional : VoiGrid::Anatomy;
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
    const VoiSource atlas = request.voiSources.empty() ? VoiSource() : request.voiSources.front();
    m_ui->atlas->setPath(atlas.file);
    m_ui->labels->setPath(atlas.labels);
    m_ui->events->setPath(request.events);
    m_ui->resolution->setValue(request.resolution.value_or(0));
    m_ui->repetitionTime->setValue(request.repetitionTime.value_or(0));
    m_ui->voiGrid->setCurrentIndex(request.voiGrid == VoiGrid::Functional ? 0 : 1);
    if (request.cleaning) {
        const CleaningChoice choice = choiceOf(*request.cleaning);
        m_ui->confounds->setPath(choice.confounds);
        m_ui->strategy->setCurrentText(choice.strategy);
        m_ui->fdThreshold->setValue(choice.fdThreshold.value_or(0));
    }
    m_ui->folder->setPath(request.folder);
    if (!request.name.isEmpty())
        m_ui->name->setText(request.name);
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

void ImportDialog::inputChanged()
{
    suggestConfounds();
    const bool hasTable = !m_ui->confounds->path().isEmpty();
    m_ui->strategy->setEnabled(hasTable);
    m_ui->fdThreshold->setEnabled(hasTable && m_ui->strategy->currentIndex() > 0);
    // The name follows the run until the user gives another.
    const QString suggestion = defaultImportName(m_ui->functional->path());
    if (m_ui->name->text() == m_suggestedName && suggestion != m_suggestedName) {
        m_suggestedName = suggestion;
        m_ui->name->setText(suggestion); // comes here again
        return;
    }
    m_suggestedName = suggestion;
    m_import->setEnabled(false);
    m_planIsOld = true;
    m_planSoon.start();
}

// ---- plan

void ImportDialog::startPlanning()
{
    if (m_planning.isRunning())
        return; // showPlan comes back here
    m_planIsOld = false;
    const ImportRequest asked = request();
    if (asked.anatomy.isEmpty() || asked.functional.isEmpty()) {
        clearPlan(tr("Choose an anatomy and a functional run to see what goes where."));
        return;
    }
    clearPlan(tr("Looking at the files..."));
    m_planning.setFuture(QtConcurrent::run([asked] {
        PlanOutcome outcome;
        outcome.fault =
            faultOf([&] { outcome.plan = std::make_shared<const ImportPlan>(planImport(asked)); });
        return outcome;
    }));
}

void ImportDialog::clearPlan(const QString &state)
{
    m_plan.reset();
    m_import->setEnabled(false);
    m_ui->state->setText(state);
    m_ui->grids->clear();
    m_ui->vois->setRowCount(0);
    m_ui->conditions->show(Prt(), 0);
    m_ui->motion->hide();
    m_ui->notes->clear();
}

void ImportDialog::showPlan()
{
    if (m_planIsOld) {
        startPlanning();
        return;
    }
    const PlanOutcome outcome = m_planning.result();
    if (outcome.plan == nullptr) {
        clearPlan(outcome.fault);
        return;
    }
    m_plan = outcome.plan;
    const ImportPlan &plan = *m_plan;
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
    m_ui->notes->setPlainText(plan.notes.isEmpty() ? tr("Nothing to note.")
                                                   : plan.notes.join(QLatin1Char('\n')));
    const bool isName = isImportName(m_ui->name->text());
    m_import->setEnabled(isName && !m_ui->folder->path().isEmpty());
    if (!isName)
        m_ui->state->setText(tr("The name of the files is missing or cannot be used."));
    else if (m_ui->folder->path().isEmpty())
        m_ui->state->setText(m_ui->state->text() + tr(". Choose a folder to import into."));
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
    for (const QString &line : report.notes + report.summary)
        logText(line);
    for (const QString &file : report.files)
        if (fileKind(file) != FileKind::Prt)
            m_importedFiles += file;
    accept();
}

} // namespace corvane
