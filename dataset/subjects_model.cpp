// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/subjects_model.h"

SubjectsModel::SubjectsModel(QObject *parent)
    : QAbstractTableModel(parent), headers{tr("Subject"), tr("VMR"), tr("VTC"), tr("VOI"),
                                           tr("PRT")}
{
}

SubjectsModel::~SubjectsModel() = default;

int SubjectsModel::rowCount(const QModelIndex &) const
{
    return subjectCount;
}

int SubjectsModel::columnCount(const QModelIndex &) const
{
    return headers.size();
}

QVariant SubjectsModel::data(const QModelIndex &index, int role) const
{
    const bool shown = role == Qt::DisplayRole || role == Qt::EditRole;
    if (!shown || !index.isValid() || index.column() != 0 || index.row() >= subjectCount)
        return {};
    return subjects.at(index.row())->name();
}

bool SubjectsModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const QString name = value.toString();
    if (role != Qt::EditRole || name.isEmpty() || !index.isValid() || index.row() >= subjectCount)
        return true;
    subjectAt(index.row()).setName(name);
    emit subjectNameChanged(name, index.row());
    return true;
}

QVariant SubjectsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= headers.size())
        return {};
    return headers.at(section);
}

Qt::ItemFlags SubjectsModel::flags(const QModelIndex &index) const
{
    if (!index.isValid() || index.row() >= subjectCount)
        return Qt::ItemIsEnabled;
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (subjects.at(index.row())->editable())
        flags |= Qt::ItemIsEditable;
    return flags;
}

int SubjectsModel::appendSubject()
{
    // The view's cell widgets follow the rows only when they are announced; layoutChanged alone
    // would leave them where they are.
    beginInsertRows(QModelIndex(), subjectCount, subjectCount);
    ++subjectCount;
    const auto subject = QSharedPointer<Subject>::create();
    subject->setName(tr("Subject %1").arg(subjectCount));
    subjects.append(subject);
    endInsertRows();
    emit layoutChanged();
    return subjectCount;
}

void SubjectsModel::removeSubjectAt(int row)
{
    beginRemoveRows(QModelIndex(), row, row);
    subjects.remove(row);
    --subjectCount;
    endRemoveRows();
    emit layoutChanged();
}

Subject &SubjectsModel::subjectAt(int row)
{
    return *subjects.at(row);
}

QSharedPointer<Subject> SubjectsModel::sharedSubjectAt(int row) const
{
    return subjects.at(row);
}
