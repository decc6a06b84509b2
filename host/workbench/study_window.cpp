// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/study_window.h"

#include "ui_study_window.h"

#include "host/files/input_error.h"
#include "host/import/cleaning_choice.h"
#include "host/study/last_inputs.h"
#include "host/workbench/group_form.h"
#include "host/workbench/study_table.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QHeaderView>
#include <QThread>
#include <QUrl>

namespace corvane
{

namespace
{

/// Below the study's folder.
const auto groupPage = QStringLiteral("group/group.html");

/// Options as QProcess::splitCommand() reads them.
QString commandText(const QJsonObject &options)
{
    QStringList words;
    for (auto option = options.begin(); option != options.end(); ++option) {
        QString value = option.value().toString();
        words += QStringLiteral("--") + option.key();
        if (!option.value().isString())
            continue;
        const bool isOneWord = !value.isEmpty() && QProcess::splitCommand(value).value(0) == value;
        value.replace(QLatin1Char('"'), QLatin1String("\"\"\""));
        words += isOneWord ? value : QLatin1Char('"') + value + QLatin1Char('"');
    }
    return words.join(QLatin1Char(' '));
}

} // namespace

StudyWindow::StudyWindow(QWidget *parent, const QString &program)
    : QDialog(parent), m_ui(new Ui::StudyWindow), m_table(new StudyTable(this)),
      m_filter(new StudyFilter(m_table)), m_run(nullptr, program)
{
    m_ui->setupUi(this);
    m_ui->rows->setModel(m_filter);
    QHeaderView *const lines = m_ui->rows->verticalHeader();
    lines->setDefaultSectionSize(lines->minimumSectionSize());
    m_ui->status->addItem(tr("any status"));
    for (const char *status : {"done", "excluded", "missing", "failed", "open"})
        m_ui->status->addItem(QLatin1String(status), QLatin1String(status));
    m_ui->clean->addItem(tr("choose one"));
    for (const QString &name : strategyNames()) {
        m_ui->clean->addItem(name);
        m_ui->clean->setItemData(m_ui->clean->count() - 1, strategyText(name), Qt::ToolTipRole);
    }
    m_ui->processes->setMaximum(std::max(1, QThread::idealThreadCount()));
    m_ui->processes->setValue(m_ui->processes->maximum());

    connect(m_ui->study, &FileField::changed, this, [this] {
        load();
        fillForms();
    });
    connect(m_ui->reload, &QPushButton::clicked, this, &StudyWindow::load);
    connect(m_ui->text, &QLineEdit::textChanged, m_filter, &StudyFilter::setText);
    connect(m_ui->status, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this] { m_filter->setStatus(m_ui->status->currentData().toString()); });
    connect(m_ui->rows->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &StudyWindow::showRow);
    connect(m_filter, &QAbstractItemModel::modelReset, this, &StudyWindow::showRow);
    connect(m_ui->report, &QPushButton::clicked, this,
            [this] { openBelowStudy(m_table->pageOf(currentRow())); });
    connect(m_ui->rows, &QTableView::doubleClicked, m_ui->report, &QPushButton::click);
    connect(m_ui->files, &QPushButton::clicked, this,
            [this] { openBelowStudy(m_table->filesOf(currentRow())); });
    connect(m_ui->explore, &QPushButton::clicked, this, [this] {
        const int row = currentRow();
        Q_EMIT resultChosen(m_ui->study->path() + QLatin1Char('/') + m_table->filesOf(row),
                            m_table->matricesOf(row));
    });
    connect(m_ui->studyReport, &QPushButton::clicked, this,
            [this] { openBelowStudy(QStringLiteral("index.html")); });
    connect(m_ui->dataset, &FileField::changed, this,
            [this] { m_ui->group->showColumnsOf(m_ui->dataset->path()); });
    for (FileField *field : {m_ui->dataset, m_ui->atlas})
        connect(field, &FileField::changed, this, &StudyWindow::enable);
    connect(m_ui->clean, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &StudyWindow::enable);
    connect(m_ui->compute, &QPushButton::clicked, this, &StudyWindow::compute);
    connect(m_ui->group, &GroupForm::runWanted, this, &StudyWindow::testGroup);
    connect(m_ui->group, &GroupForm::reportWanted, this, [this] { openBelowStudy(groupPage); });
    connect(m_ui->cancel, &QPushButton::clicked, &m_run, &CohortRun::cancel);
    connect(&m_run, &CohortRun::progressed, this, &StudyWindow::showProgress);
    connect(&m_run, &CohortRun::said, m_ui->said, &QPlainTextEdit::appendPlainText);
    connect(&m_run, &CohortRun::ended, this, &StudyWindow::showEnd);
    load();
}

StudyWindow::~StudyWindow() = default;

void StudyWindow::openStudy(const QString &folder)
{
    m_ui->study->setPath(folder);
    load();
    fillForms();
}

/// What the study was computed with stands in its records.
void StudyWindow::fillForms()
{
    const std::optional<StudyInputs> inputs = lastInputs(m_ui->study->path());
    if (!inputs)
        return;
    m_ui->dataset->setPath(inputs->dataset);
    m_ui->atlas->setPath(inputs->atlas);
    m_ui->labels->setPath(inputs->labels);
    QJsonObject options = inputs->options;
    const QString strategy = options.take(QStringLiteral("clean")).toString();
    if (m_ui->clean->findText(strategy) < 0)
        m_ui->clean->addItem(strategy); // columns:a,b
    m_ui->clean->setCurrentText(strategy);
    m_ui->options->setText(commandText(options));
}

void StudyWindow::load()
{
    const QString folder = m_ui->study->path();
    try {
        m_table->read(folder);
        m_ui->summary->setText(m_table->rowCount() > 0 ? m_table->summary()
                               : folder.isEmpty()
                                   ? tr("Choose the folder of a study, or one for a new study.")
                                   : tr("There is no study in this folder yet."));
    } catch (const InputError &error) {
        m_ui->summary->setText(QString::fromUtf8(error.what()));
    }
    // The name of a run holds these.
    for (int column = 0; column < m_table->columnCount(); ++column)
        m_ui->rows->setColumnHidden(column, m_table->isInRunName(column));
    m_ui->rows->resizeColumnsToContents();
    showRow();
}

int StudyWindow::currentRow() const
{
    const QModelIndexList rows = m_ui->rows->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : m_filter->mapToSource(rows.first()).row();
}

void StudyWindow::showRow()
{
    const int row = currentRow();
    m_ui->reason->setText(row < 0 ? QString() : m_table->text(row, "reason"));
    enable();
}

void StudyWindow::enable()
{
    const int row = currentRow();
    const QString folder = m_ui->study->path();
    const auto exists = [&](const QString &path) {
        return !path.isEmpty() && QFileInfo::exists(folder + QLatin1Char('/') + path);
    };
    m_ui->report->setEnabled(row >= 0 && exists(m_table->pageOf(row)));
    m_ui->files->setEnabled(row >= 0 && exists(m_table->filesOf(row)));
    m_ui->explore->setEnabled(row >= 0 && m_table->text(row, "status") == QLatin1String("done"));
    m_ui->studyReport->setEnabled(!folder.isEmpty() && exists(QStringLiteral("index.html")));
    m_ui->reload->setEnabled(!folder.isEmpty());
    m_ui->compute->setEnabled(!m_run.isRunning() && !folder.isEmpty() &&
                              !m_ui->dataset->path().isEmpty() && !m_ui->atlas->path().isEmpty() &&
                              m_ui->clean->currentIndex() > 0);
    m_ui->group->enable(!m_run.isRunning() && m_table->rowCount() > 0 &&
                            !m_ui->dataset->path().isEmpty(),
                        exists(groupPage));
    m_ui->cancel->setEnabled(m_run.isRunning());
    m_ui->progress->setEnabled(m_run.isRunning());
    m_ui->progress->setTextVisible(m_run.isRunning());
}

void StudyWindow::openBelowStudy(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(
        QFileInfo(m_ui->study->path() + QLatin1Char('/') + path).absoluteFilePath()));
}

void StudyWindow::compute()
{
    QStringList options{QStringLiteral("--atlas"), m_ui->atlas->path()};
    if (!m_ui->labels->path().isEmpty())
        options += {QStringLiteral("--labels"), m_ui->labels->path()};
    options += {QStringLiteral("--clean"), m_ui->clean->currentText(), QStringLiteral("--nprocs"),
                QString::number(m_ui->processes->value())};
    options += QProcess::splitCommand(m_ui->options->text());
    m_ui->said->clear();
    m_run.start(m_ui->dataset->path(), m_ui->study->path(), options);
    enable();
}

void StudyWindow::testGroup()
{
    m_ui->said->clear();
    m_run.startGroup(m_ui->dataset->path(), m_ui->study->path(), m_ui->group->options());
    enable();
}

void StudyWindow::showProgress(int done, int all)
{
    m_ui->progress->setRange(0, all);
    m_ui->progress->setValue(done);
}

void StudyWindow::showEnd(const QString &fault)
{
    m_ui->progress->setRange(0, 1);
    m_ui->progress->setValue(fault.isEmpty() ? 1 : 0);
    if (!fault.isEmpty())
        m_ui->said->appendPlainText(fault);
    load();
}

} // namespace corvane
