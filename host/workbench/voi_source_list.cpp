// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/voi_source_list.h"

#include "host/derivatives/run_companions.h"
#include "host/files/file_kind.h"
#include "host/files/input_error.h"
#include "host/import/file_role.h"
#include "host/workbench/dropped_files.h"
#include "host/workbench/message_line.h"
#include "host/workbench/user_folder.h"
#include "plots/plain_text.h"

#include <QComboBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableWidget>

namespace corvane
{

namespace
{

enum Column { KindColumn, FileColumn, LabelsColumn, FoundColumn };

FileRole readableRole(const QString &file)
{
    try {
        return roleOf(file);
    } catch (const InputError &) {
        return FileRole::None; // its row tells why
    }
}

/// What a file that nothing else is known of is taken for: its row can say otherwise.
VoiSource sourceOf(const QString &file)
{
    if (fileKind(file) == FileKind::Table)
        return {VoiSource::Spheres, file};
    if (readableRole(file) == FileRole::Mask)
        return {VoiSource::Mask, file};
    return {VoiSource::Atlas, file, labelsOf(file)};
}

} // namespace

VoiSourceList::VoiSourceList(QWidget *parent) : QWidget(parent), m_table(new QTableWidget(0, 4))
{
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_table->setObjectName(QStringLiteral("voiSources"));
    m_table->setAccessibleName(tr("Files that VOIs are made of"));
    m_table->setHorizontalHeaderLabels({tr("VOIs of"), tr("File"), tr("Names"), tr("Found")});
    m_table->setToolTip(tr("Optional: images of labels, masks, tables of places; files can be "
                           "dropped here"));
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 12);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(KindColumn, QHeaderView::ResizeToContents);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setTabKeyNavigation(false);
    m_table->setWordWrap(false);
    m_table->setTextElideMode(Qt::ElideLeft); // names end with what tells them apart
    m_table->setAcceptDrops(false);
    layout->addWidget(m_table, 1);
    auto *const buttons = new QVBoxLayout;
    const auto button = [&](const QString &text, const char *name, void (VoiSourceList::*act)()) {
        auto *const made = new QPushButton(text);
        made->setObjectName(QLatin1String(name));
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, act);
        buttons->addWidget(made);
        return made;
    };
    button(tr("Add &VOIs..."), "addSource", &VoiSourceList::chooseFiles);
    m_labels = button(tr("&Names..."), "sourceLabels", &VoiSourceList::chooseLabels);
    m_remove = button(tr("Re&move"), "removeSource", &VoiSourceList::removeChosen);
    buttons->addStretch();
    layout->addLayout(buttons);
    setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(m_table);
    setAcceptDrops(true);
    setFixedHeight(4 * (fontMetrics().height() + 12)); // more are scrolled
    connect(m_table, &QTableWidget::itemSelectionChanged, this, &VoiSourceList::enableButtons);
    connect(m_table, &QTableWidget::cellChanged, this, [this](int, int column) {
        if (column == FileColumn || column == LabelsColumn)
            Q_EMIT changed();
    });
    enableButtons();
}

std::vector<VoiSource> VoiSourceList::sources() const
{
    std::vector<VoiSource> all;
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const auto *const kind = qobject_cast<QComboBox *>(m_table->cellWidget(row, KindColumn));
        const QString file = m_table->item(row, FileColumn)->text().trimmed();
        if (!file.isEmpty())
            all.push_back({static_cast<VoiSource::Kind>(kind->currentIndex()), file,
                           m_table->item(row, LabelsColumn)->text().trimmed()});
    }
    return all;
}

void VoiSourceList::setSources(const std::vector<VoiSource> &sources)
{
    {
        const QSignalBlocker blocker(m_table);
        m_table->setRowCount(0);
        for (const VoiSource &source : sources)
            addRow(source);
    }
    enableButtons();
    Q_EMIT changed();
}

void VoiSourceList::addRow(const VoiSource &source)
{
    const int row = m_table->rowCount();
    m_table->insertRow(row);
    auto *const kind = new QComboBox;
    kind->addItems({tr("atlas"), tr("mask"), tr("spheres")});
    kind->setAccessibleName(tr("What the file is"));
    kind->setCurrentIndex(source.kind);
    connect(kind, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &VoiSourceList::changed);
    m_table->setCellWidget(row, KindColumn, kind);
    m_table->setItem(row, FileColumn, new QTableWidgetItem(source.file));
    m_table->setItem(row, LabelsColumn, new QTableWidgetItem(source.labels));
    auto *const found = new QTableWidgetItem;
    found->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    m_table->setItem(row, FoundColumn, found);
    m_table->selectRow(row);
}

void VoiSourceList::add(const QStringList &files)
{
    std::vector<VoiSource> all = sources();
    for (const QString &file : files) {
        if (readableRole(file) != FileRole::Labels) {
            all.push_back(sourceOf(file));
            continue;
        }
        const int row = atlasRow();
        if (row >= 0 && row < static_cast<int>(all.size()))
            all[static_cast<std::size_t>(row)].labels = file;
    }
    setSources(all);
}

/// The chosen atlas, else the last one; -1 without one.
int VoiSourceList::atlasRow() const
{
    const std::vector<VoiSource> all = sources();
    const int chosen = m_table->currentRow();
    if (chosen >= 0 && chosen < static_cast<int>(all.size()) &&
        all[static_cast<std::size_t>(chosen)].kind == VoiSource::Atlas)
        return chosen;
    for (int row = static_cast<int>(all.size()) - 1; row >= 0; --row)
        if (all[static_cast<std::size_t>(row)].kind == VoiSource::Atlas)
            return row;
    return -1;
}

void VoiSourceList::setChecks(const std::vector<FieldCheck> &checks)
{
    const QSignalBlocker blocker(m_table);
    std::size_t next = 0; // rows without a file are no sources
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const bool isSource = !m_table->item(row, FileColumn)->text().trimmed().isEmpty();
        const FieldCheck check = isSource && next < checks.size() ? checks[next] : FieldCheck();
        next += isSource;
        const bool isFault = !check.fault.isEmpty();
        QTableWidgetItem *const found = m_table->item(row, FoundColumn);
        found->setText(isFault ? check.fault : check.found);
        found->setToolTip(found->text().isEmpty() ? QString() : asToolTip(found->text()));
        found->setForeground(isFault ? QBrush(faultColour(palette()))
                                     : palette().brush(QPalette::Text));
        m_table->item(row, FileColumn)
            ->setToolTip(asToolTip(m_table->item(row, FileColumn)->text()));
    }
    m_table->viewport()->update();
}

void VoiSourceList::chooseFiles()
{
    const QStringList files = QFileDialog::getOpenFileNames(
        this, tr("VOIs"), userFolder(),
        fileFilter(tr("Labels, masks and places"),
                   {FileKind::Nifti, FileKind::Nrrd, FileKind::Table}) +
            tr(";;All files (*)"));
    if (files.isEmpty())
        return;
    rememberUserFolder(files.front());
    add(files);
}

void VoiSourceList::chooseLabels()
{
    const int row = atlasRow();
    if (row < 0)
        return;
    const QString file = QFileDialog::getOpenFileName(this, tr("Names of the labels"), userFolder(),
                                                      fileFilter(tr("Tables"), {FileKind::Table}) +
                                                          tr(";;All files (*)"));
    if (file.isEmpty())
        return;
    rememberUserFolder(file);
    m_table->item(row, LabelsColumn)->setText(file);
}

void VoiSourceList::removeChosen()
{
    {
        // The table tells of another selection while the row is half gone.
        const QSignalBlocker blocker(m_table);
        m_table->removeRow(m_table->currentRow());
    }
    enableButtons();
    Q_EMIT changed();
}

void VoiSourceList::enableButtons()
{
    m_labels->setEnabled(atlasRow() >= 0);
    m_remove->setEnabled(m_table->currentRow() >= 0);
}

void VoiSourceList::dragEnterEvent(QDragEnterEvent *event)
{
    if (!droppedFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void VoiSourceList::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    add(droppedFiles(event->mimeData()));
}

} // namespace corvane
