// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/study_table.h"

#include "host/files/input_error.h"

#include <QDir>
#include <QFileInfo>
#include <map>
#include <optional>
#include <set>

namespace corvane
{

namespace
{

const QString missing = QStringLiteral("n/a");

QString prefixed(const QString &participant)
{
    const QString prefix = QStringLiteral("sub-");
    return participant.startsWith(prefix) ? participant : prefix + participant;
}

/// The study's own table, by names of columns.
class StudyRows
{
public:
    explicit StudyRows(const QString &out)
        : m_table(out + QStringLiteral("/participants_connectome.tsv"))
    {
    }

    const QString &path() const { return m_table.path(); }
    int count() const { return m_table.rowCount(); }
    QString place(int row) const { return m_table.place(row); }
    QString cell(int row, const char *column) const
    {
        return m_table.cell(row, m_table.requiredColumn(QLatin1String(column)));
    }

    /// The label of a row, empty without.
    QString label(int row, const char *column) const
    {
        const QString text = cell(row, column);
        return text == missing ? QString() : text;
    }

private:
    TsvTable m_table;
};

/// One of the things that rows of a group have in common.
struct Choice {
    const char *column;
    const char *option;
    QString wanted; ///< empty for whatever there is
};

std::vector<Choice> choicesOf(const StudySelection &selection)
{
    std::vector<Choice> choices{{"atlas_id", "atlas-name", selection.atlas},
                                {"space_id", "space", selection.space},
                                {"task_id", "task-id", selection.task}};
    if (!selection.allSessions || !selection.session.isEmpty())
        choices.push_back({"session_id", "session-id", selection.session});
    return choices;
}

bool isWanted(const StudyRows &rows, int row, const std::vector<Choice> &choices)
{
    for (const Choice &choice : choices)
        if (!choice.wanted.isEmpty() && rows.label(row, choice.column) != choice.wanted)
            return false;
    return true;
}

QStringList labelsOf(const StudyRows &rows, const std::vector<int> &which, const char *column)
{
    std::set<QString> labels;
    for (const int row : which)
        labels.insert(rows.cell(row, column));
    return {labels.begin(), labels.end()};
}

std::vector<int> wantedRows(const StudyRows &rows, const std::vector<Choice> &choices)
{
    std::vector<int> wanted;
    std::vector<int> all;
    for (int row = 0; row < rows.count(); ++row) {
        all.push_back(row);
        if (isWanted(rows, row, choices))
            wanted.push_back(row);
    }
    if (!wanted.empty())
        return wanted;
    QStringList there;
    for (const Choice &choice : choices)
        there += QStringLiteral("%1 %2").arg(
            QLatin1String(choice.option),
            labelsOf(rows, all, choice.column).join(QStringLiteral(" or ")));
    throw InputError(rows.path(), QStringLiteral("rows"), QStringLiteral("none of that kind"),
                     all.empty() ? QStringLiteral("a row for each run")
                                 : there.join(QStringLiteral(", ")));
}

void requireOneKind(const StudyRows &rows, const std::vector<int> &which,
                    const std::vector<Choice> &choices)
{
    for (const Choice &choice : choices) {
        const QStringList labels = labelsOf(rows, which, choice.column);
        if (labels.size() > 1)
            throw InputError(
                rows.path(), QLatin1String(choice.column), labels.join(QStringLiteral(", ")),
                QStringLiteral("one of them, by --%1").arg(QLatin1String(choice.option)));
    }
}

/// Below the study's folder, what a row's files begin with.
QString stemOf(const StudyRows &rows, int row)
{
    const QString session = rows.label(row, "session_id");
    return rows.cell(row, "participant_id") +
           (session.isEmpty() ? QString() : QStringLiteral("/ses-") + session) +
           QStringLiteral("/func/") + rows.cell(row, "run") + QStringLiteral("_atlas-") +
           rows.cell(row, "atlas_id");
}

/// What participants.tsv knows of each, in its columns.
class People
{
public:
    explicit People(const QString &path)
    {
        if (path.isEmpty())
            return;
        m_table.emplace(path);
        const int column = m_table->requiredColumn(QStringLiteral("participant_id"));
        for (int row = 0; row < m_table->rowCount(); ++row) {
            const QString participant = prefixed(m_table->cell(row, column));
            if (!m_rows.emplace(participant, row).second)
                throw InputError(path, m_table->place(row),
                                 QStringLiteral("a second row of ") + participant,
                                 QStringLiteral("one row for each participant"));
            m_order += participant;
        }
    }

    const QStringList &participants() const { return m_order; }

    /// Those that the study's rows do not have themselves.
    QStringList columns(const QStringList &taken) const
    {
        QStringList names;
        for (const QString &name : m_table ? m_table->columns() : QStringList())
            if (!taken.contains(name))
                names += name;
        return names;
    }

    QString cell(const QString &participant, const QString &column) const
    {
        const auto found = m_rows.find(participant);
        return found == m_rows.end() ? missing
                                     : m_table->cell(found->second, m_table->column(column));
    }

private:
    std::optional<TsvTable> m_table;
    std::map<QString, int> m_rows;
    QStringList m_order;
};

bool haveUncleaned(const StudyRows &rows, const std::vector<int> &which, const QString &out)
{
    for (const int row : which)
        if (!QFileInfo::exists(QDir(out).filePath(stemOf(rows, row) +
                                                  QStringLiteral("_desc-uncleaned_relmat.tsv"))))
            return false;
    return true;
}

std::vector<TextLine> joined(const StudyRows &rows, const std::vector<int> &which,
                             const People &people, const StudySelection &selection)
{
    QStringList head{QStringLiteral("participant_id"), QStringLiteral("session_id"),
                     QStringLiteral("matrix"), QStringLiteral("mean_fd"),
                     QStringLiteral("degrees_of_freedom")};
    const bool hasUncleaned = haveUncleaned(rows, which, selection.out);
    if (hasUncleaned)
        head += QStringLiteral("matrix_uncleaned");
    const QStringList others = people.columns(head);
    const QChar tab = QLatin1Char('\t');
    std::vector<TextLine> lines{{1, (head + others).join(tab)}};
    for (const int row : which) {
        const QString participant = rows.cell(row, "participant_id");
        const QString stem = stemOf(rows, row);
        QStringList cells{participant, rows.cell(row, "session_id"),
                          stem + QStringLiteral("_stat-%1_relmat.tsv").arg(selection.measure),
                          rows.cell(row, "mean_fd_before"), rows.cell(row, "degrees_of_freedom")};
        if (hasUncleaned)
            cells += stem + QStringLiteral("_desc-uncleaned_relmat.tsv");
        for (const QString &column : others)
            cells += people.cell(participant, column);
        // The study's table has a line of names and one for each row.
        lines.push_back({row + 2, cells.join(tab)});
    }
    return lines;
}

QStringList whoLeft(const StudyRows &rows, const std::vector<int> &wanted, const People &people)
{
    QStringList left;
    std::set<QString> known;
    for (const int row : wanted) {
        const QString participant = rows.cell(row, "participant_id");
        known.insert(participant);
        const QString status = rows.cell(row, "status");
        if (status != QStringLiteral("done"))
            left += QStringLiteral("%1 is left out: %2, %3")
                        .arg(rows.cell(row, "run"), status, rows.cell(row, "reason"));
    }
    for (const QString &participant : people.participants())
        if (known.count(participant) == 0)
            left += participant + QStringLiteral(" is left out: no run in the study");
    return left;
}

} // namespace

StudyTable readStudyTable(const StudySelection &selection)
{
    const StudyRows rows(selection.out);
    const std::vector<Choice> choices = choicesOf(selection);
    const std::vector<int> wanted = wantedRows(rows, choices);
    requireOneKind(rows, wanted, choices);
    std::vector<int> done;
    for (const int row : wanted)
        if (rows.cell(row, "status") == QStringLiteral("done"))
            done.push_back(row);
    if (done.empty())
        throw InputError(rows.path(), QStringLiteral("status"),
                         labelsOf(rows, wanted, "status").join(QStringLiteral(", ")),
                         QStringLiteral("rows that are done"));
    const People people(selection.participants);
    return {TsvTable(rows.path(), joined(rows, done, people, selection)),
            whoLeft(rows, wanted, people)};
}

} // namespace corvane
