// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/study_table.h"

#include "host/files/text_check.h"
#include "host/files/tsv_table.h"

#include <QColor>
#include <QFileInfo>

#include <algorithm>

namespace corvane
{

namespace
{

constexpr const char *states[] = {"done", "excluded", "missing", "failed", "open"};

/// Pale, with black text upon it in every palette.
QColor colourOf(const QString &status)
{
    if (status == QLatin1String("done"))
        return {214, 240, 220};
    if (status == QLatin1String("excluded"))
        return {255, 233, 196};
    if (status == QLatin1String("failed"))
        return {250, 212, 212};
    return {228, 231, 235};
}

/// "mean_fd_before" as people write it.
QString heading(QString column)
{
    if (column.endsWith(QLatin1String("_id")))
        column.chop(3);
    column.replace(QLatin1Char('_'), QLatin1Char(' '));
    column.replace(QLatin1String(" fd "), QLatin1String(" FD "));
    return column.left(1).toUpper() + column.mid(1);
}

} // namespace

StudyTable::StudyTable(QObject *parent) : QAbstractTableModel(parent) {}

void StudyTable::read(const QString &folder)
{
    beginResetModel();
    m_folder = folder;
    m_columns.clear();
    m_rows.clear();
    try {
        const QString path = folder + QStringLiteral("/participants_connectome.tsv");
        if (QFileInfo::exists(path)) {
            const TsvTable table(path);
            for (const char *needed : {"participant_id", "run", "atlas_id", "status", "reason"})
                table.requiredColumn(QLatin1String(needed));
            m_columns = table.columns();
            for (int row = 0; row < table.rowCount(); ++row) {
                m_rows.emplace_back();
                for (int column = 0; column < m_columns.size(); ++column)
                    m_rows.back() += table.cell(row, column);
            }
        }
    } catch (...) {
        endResetModel();
        throw;
    }
    endResetModel();
}

int StudyTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int StudyTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_columns.size();
}

QVariant StudyTable::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const QString &cell = m_rows[std::size_t(index.row())][index.column()];
    const std::optional<double> number = finiteNumber(cell);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return number && role == Qt::DisplayRole && cell.size() > 8
                   ? QString::number(*number, 'g', 5)
                   : cell;
    case sortRole:
        return number ? QVariant(*number) : QVariant(cell);
    case Qt::TextAlignmentRole:
        return int((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case Qt::BackgroundRole:
    case Qt::ForegroundRole:
        if (m_columns[index.column()] != QLatin1String("status"))
            return {};
        return role == Qt::BackgroundRole ? colourOf(cell) : QColor(Qt::black);
    default:
        return {};
    }
}

QVariant StudyTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    return orientation == Qt::Vertical ? QVariant(section + 1)
                                       : QVariant(heading(m_columns[section]));
}

QString StudyTable::text(int row, const char *column) const
{
    const int place = m_columns.indexOf(QLatin1String(column));
    const QString cell = place < 0 ? QString() : m_rows[std::size_t(row)][place];
    return cell == QLatin1String("n/a") ? QString() : cell;
}

bool StudyTable::isInRunName(int column) const
{
    const QString &name = m_columns[column];
    return name == QLatin1String("session_id") || name == QLatin1String("task_id") ||
           name == QLatin1String("space_id");
}

QString StudyTable::summary() const
{
    QStringList parts;
    for (const char *state : states) {
        int count = 0;
        for (int row = 0; row < rowCount(); ++row)
            count += text(row, "status") == QLatin1String(state) ? 1 : 0;
        if (count > 0)
            parts += QStringLiteral("%1 %2").arg(count).arg(QLatin1String(state));
    }
    return parts.join(QStringLiteral(", "));
}

QString StudyTable::filesOf(int row) const
{
    const QString session = text(row, "session_id");
    return text(row, "participant_id") +
           (session.isEmpty() ? QString() : QStringLiteral("/ses-") + session) +
           QStringLiteral("/func");
}

QString StudyTable::matricesOf(int row) const
{
    return QStringLiteral("%1_atlas-%2").arg(text(row, "run"), text(row, "atlas_id"));
}

QString StudyTable::pageOf(int row) const
{
    for (const QString &page :
         {QStringLiteral("%1/%2_atlas-%3_report.html")
              .arg(filesOf(row), text(row, "run"), text(row, "atlas_id")),
          text(row, "participant_id") + QStringLiteral(".html"), QStringLiteral("index.html")})
        if (QFileInfo::exists(m_folder + QLatin1Char('/') + page))
            return page;
    return {};
}

StudyFilter::StudyFilter(StudyTable *table) : QSortFilterProxyModel(table), m_table(table)
{
    setSourceModel(table);
    setSortRole(StudyTable::sortRole);
}

void StudyFilter::setText(const QString &text)
{
    m_text = text;
    invalidateFilter();
}

void StudyFilter::setStatus(const QString &status)
{
    m_status = status;
    invalidateFilter();
}

bool StudyFilter::filterAcceptsRow(int row, const QModelIndex &) const
{
    if (!m_status.isEmpty() && m_table->text(row, "status") != m_status)
        return false;
    for (int column = 0; column < m_table->columnCount(); ++column)
        if (m_table->data(m_table->index(row, column), Qt::ToolTipRole)
                .toString()
                .contains(m_text, Qt::CaseInsensitive))
            return true;
    return m_text.isEmpty();
}

} // namespace corvane
