// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/explore_run_dialog.h"

#include "ui_explore_run_dialog.h"

#include "dataset/counted.h"
#include "engine/compute_settings.h"
#include "host/session/workspace.h"
#include "host/workbench/file_names.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>

namespace corvane
{

namespace
{

const QString measureKey = QStringLiteral("exploreRun/measure");
const QString valuesKey = QStringLiteral("exploreRun/values");
const QString protocolKey = QStringLiteral("exploreRun/protocol");

void choose(QComboBox *box, const QString &data)
{
    box->setCurrentIndex(std::max(0, box->findData(data)));
}

} // namespace

std::optional<OpenRun> openRun(const Workspace &workspace)
{
    const LinkedVtc *const vtc = workspace.linkedVtc();
    const LoadedVois *const vois = workspace.vois();
    if (workspace.currentVmr() == nullptr || vtc == nullptr || vois == nullptr)
        return std::nullopt;
    return OpenRun{workspace.documentPath(workspace.currentDocument()),
                   vtc->file.path(),
                   workspace.voiPath(),
                   workspace.protocolPath(),
                   int(vois->set.vois.size()),
                   !workspace.mismatches().empty()};
}

ExploreRunDialog::ExploreRunDialog(OpenRun run, QWidget *parent, const QString &program)
    : QDialog(parent), m_ui(std::make_unique<Ui::ExploreRunDialog>()), m_run(std::move(run)),
      m_program(program)
{
    m_ui->setupUi(this);
    m_compute = m_ui->buttons->addButton(tr("&Compute and Explore"), QDialogButtonBox::AcceptRole);
    m_compute->setObjectName(QStringLiteral("compute"));
    m_compute->setDefault(true);
    m_ui->run->setText(tr("%1, connections of all %2")
                           .arg(namesTogether({m_run.vtc, m_run.voi}), counted(m_run.vois, "VOI")));
    const QString measures[] = {tr("correlation"), tr("partial correlation")};
    for (std::size_t n = 0; n < std::size(measureNames); ++n)
        m_ui->measure->addItem(measures[n], QLatin1String(measureNames[n].name));
    // The window can leave out a sign, but not bring one back.
    m_ui->values->addItem(tr("with their signs"), QStringLiteral("signed"));
    m_ui->values->addItem(tr("absolute"), QStringLiteral("absolute"));
    m_ui->values->addItem(tr("positive ones"), QStringLiteral("positive"));
    m_ui->values->addItem(tr("negative ones"), QStringLiteral("negative"));
    const QSettings settings;
    choose(m_ui->measure, settings.value(measureKey).toString());
    choose(m_ui->values, settings.value(valuesKey).toString());
    m_ui->protocol->setChecked(!m_run.protocol.isEmpty() && settings.value(protocolKey).toBool());
    m_ui->protocol->setToolTip(m_run.protocol.isEmpty() ? tr("No protocol is loaded") : QString());
    const QFileInfo vtc(m_run.vtc);
    m_ui->folder->setPath(
        vtc.dir().filePath(vtc.completeBaseName() + QStringLiteral("_connections")));
    connect(m_ui->folder, &FileField::changed, this, &ExploreRunDialog::enable);
    connect(m_ui->buttons, &QDialogButtonBox::accepted, this, &ExploreRunDialog::compute);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &ExploreRunDialog::reject);
    connect(&m_program, &CommandRun::said, m_ui->said, &QLabel::setText);
    connect(&m_program, &CommandRun::ended, this, &ExploreRunDialog::showEnd);
    enable();
    m_compute->setFocus();
}

ExploreRunDialog::~ExploreRunDialog() = default;

QString ExploreRunDialog::folder() const
{
    return m_ui->folder->path();
}

QStringList ExploreRunDialog::arguments() const
{
    const auto option = [](const char *name) { return QStringLiteral("--") + QLatin1String(name); };
    QStringList words{QStringLiteral("compute"),
                      option("anatomy"),
                      m_run.anatomy,
                      option("vtc"),
                      m_run.vtc,
                      option("voi"),
                      m_run.voi,
                      option("measure"),
                      m_ui->measure->currentData().toString(),
                      option("values"),
                      m_ui->values->currentData().toString(),
                      option("names"),
                      option("out"),
                      folder()};
    if (m_ui->protocol->isChecked())
        words += {option("use-protocol"), option("prt"), m_run.protocol};
    if (m_run.isMismatched)
        words += option("allow-mismatch");
    return words;
}

bool ExploreRunDialog::mayReplace()
{
    return !QFileInfo::exists(QDir(folder()).filePath(QStringLiteral("summary.json"))) ||
           QMessageBox::question(this, windowTitle(),
                                 tr("Replace the result that is in this folder?\n\n%1")
                                     .arg(QDir::toNativeSeparators(folder())),
                                 QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

void ExploreRunDialog::compute()
{
    if (!m_compute->isEnabled() || !mayReplace())
        return;
    QSettings settings;
    settings.setValue(measureKey, m_ui->measure->currentData());
    settings.setValue(valuesKey, m_ui->values->currentData());
    if (!m_run.protocol.isEmpty())
        settings.setValue(protocolKey, m_ui->protocol->isChecked());
    m_ui->said->setText(tr("Computing..."));
    m_program.start(arguments());
    enable();
}

void ExploreRunDialog::showEnd(const QString &fault)
{
    if (fault.isEmpty()) {
        accept();
        return;
    }
    m_ui->said->setText(fault);
    enable();
}

void ExploreRunDialog::reject()
{
    if (m_program.isRunning())
        m_program.cancel();
    else
        QDialog::reject();
}

void ExploreRunDialog::enable()
{
    const bool isFree = !m_program.isRunning();
    m_compute->setEnabled(isFree && !folder().isEmpty());
    for (QWidget *widget :
         {static_cast<QWidget *>(m_ui->measure), static_cast<QWidget *>(m_ui->values),
          static_cast<QWidget *>(m_ui->folder)})
        widget->setEnabled(isFree);
    m_ui->protocol->setEnabled(isFree && !m_run.protocol.isEmpty());
    m_ui->progress->setEnabled(!isFree);
    m_ui->progress->setRange(0, isFree ? 1 : 0);
    m_ui->folder->setMessage(
        folder().isEmpty() ? tr("missing: a folder for the result") : QString(), true);
}

} // namespace corvane
