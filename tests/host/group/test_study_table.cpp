// SPDX-License-Identifier: GPL-3.0-or-later
// The table of a group from a study's folder.
#include "host/files/input_error.h"
#include "host/group/group_data.h"
#include "host/group/study_table.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

/// A folder as a study leaves it, made by hand.
class Study : public testing::Test
{
protected:
    void write(const QString &name, const QByteArray &text) const
    {
        const QString path = m_folder.filePath(name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    /// A line of the study's table.
    static QByteArray row(const char *participant, const char *session, const char *task,
                          const char *atlas, const char *status, const char *fd = "0.1")
    {
        const QByteArray run =
            QByteArray(participant) +
            (QByteArray(session) == "n/a" ? QByteArray() : QByteArray("_ses-") + session) +
            "_task-" + task + "_space-T1w";
        return QByteArray(participant) + '\t' + session + '\t' + task + "\tT1w\t" + run + '\t' +
               atlas + '\t' + status + "\t200\t0\t3\t197\t20\t177\t394\t" + fd + "\t0.05\t" +
               (QByteArray(status) == "done" ? "n/a" : "too much motion") + '\n';
    }

    void writeStudy(const QByteArray &rows) const
    {
        write(QStringLiteral("participants_connectome.tsv"),
              "participant_id\tsession_id\ttask_id\tspace_id\trun\tatlas_id\tstatus\tvolumes\t"
              "non_steady\tcensored\tkept\trank\tdegrees_of_freedom\tseconds_kept\t"
              "mean_fd_before\tmean_fd_after\treason\n" +
                  rows);
    }

    StudySelection selection() const
    {
        StudySelection some;
        some.out = m_folder.path();
        return some;
    }

    StudySelection withPeople(const QByteArray &text) const
    {
        write(QStringLiteral("people.tsv"), text);
        StudySelection some = selection();
        some.participants = m_folder.filePath(QStringLiteral("people.tsv"));
        return some;
    }

    static QStringList column(const TsvTable &table, const char *name)
    {
        QStringList cells;
        for (int row = 0; row < table.rowCount(); ++row)
            cells += table.cell(row, table.requiredColumn(QLatin1String(name)));
        return cells;
    }

    static QStringList list(std::initializer_list<const char *> texts)
    {
        QStringList all;
        for (const char *text : texts)
            all += QString::fromUtf8(text);
        return all;
    }

    static QString faultOf(const StudySelection &selection)
    {
        try {
            readStudyTable(selection);
        } catch (const InputError &error) {
            return QString::fromUtf8(error.what());
        }
        return QStringLiteral("none");
    }

    QTemporaryDir m_folder;
};

TEST_F(Study, RowsThatAreDoneWithWhatIsKnownOfTheirParticipants)
{
    writeStudy(row("sub-01", "n/a", "rest", "A", "done", "0.11") +
               row("sub-02", "n/a", "rest", "A", "excluded") +
               row("sub-03", "n/a", "rest", "A", "done", "0.13") +
               row("sub-04", "n/a", "rest", "A", "done"));
    const StudyTable study = readStudyTable(withPeople(
        "participant_id\tage\tmean_fd\tgroup\nsub-03\t33\t9\tP\n01\t31\t9\tC\nsub-02\t32\t9\tC\n"
        "sub-09\t39\t9\tP\n"));
    EXPECT_EQ(column(study.table, "participant_id"), list({"sub-01", "sub-03", "sub-04"}));
    EXPECT_EQ(column(study.table, "age"), list({"31", "33", "n/a"}));
    EXPECT_EQ(column(study.table, "group"), list({"C", "P", "n/a"}));
    EXPECT_EQ(column(study.table, "mean_fd"), list({"0.11", "0.13", "0.1"}))
        << "the ledger's, not that of participants.tsv";
    EXPECT_EQ(column(study.table, "degrees_of_freedom"), list({"177", "177", "177"}));
    EXPECT_EQ(study.table.cell(0, study.table.column(QStringLiteral("matrix"))),
              QStringLiteral("sub-01/func/sub-01_task-rest_space-T1w_atlas-A_stat-"
                             "pearsoncorrelation_relmat.tsv"));
    EXPECT_EQ(study.table.column(QStringLiteral("matrix_uncleaned")), -1);
    EXPECT_EQ(study.table.place(1), QStringLiteral("line 4"));
    EXPECT_EQ(study.left, list({"sub-02_task-rest_space-T1w is left out: excluded, too much motion",
                                "sub-09 is left out: no run in the study"}));
}

TEST_F(Study, AnAtlasATaskAndASessionAreChosen)
{
    writeStudy(row("sub-01", "a", "rest", "A", "done") + row("sub-01", "b", "rest", "A", "done") +
               row("sub-01", "a", "rest", "B", "done") + row("sub-02", "a", "rest", "A", "done") +
               row("sub-02", "b", "nback", "A", "done"));
    StudySelection some = selection();
    EXPECT_TRUE(faultOf(some).contains(
        QStringLiteral("atlas_id: found A, B, expected one of them, by --atlas-name")))
        << faultOf(some).toStdString();
    some.atlas = QStringLiteral("A");
    EXPECT_TRUE(faultOf(some).contains(QStringLiteral("task_id: found nback, rest")));
    some.task = QStringLiteral("rest");
    EXPECT_TRUE(faultOf(some).contains(QStringLiteral("session_id: found a, b")));
    some.session = QStringLiteral("a");
    const StudyTable one = readStudyTable(some);
    EXPECT_EQ(column(one.table, "participant_id"), list({"sub-01", "sub-02"}));
    EXPECT_EQ(column(one.table, "matrix").front(),
              QStringLiteral("sub-01/ses-a/func/sub-01_ses-a_task-rest_space-T1w_atlas-A_stat-"
                             "pearsoncorrelation_relmat.tsv"));
    some.session.clear();
    some.allSessions = true;
    EXPECT_EQ(column(readStudyTable(some).table, "session_id"), list({"a", "b", "a"}));
    some.atlas = QStringLiteral("C");
    EXPECT_TRUE(faultOf(some).contains(QStringLiteral("expected atlas-name A or B, ")))
        << faultOf(some).toStdString();
}

TEST_F(Study, WhatCannotBeAGroupIsTold)
{
    EXPECT_TRUE(faultOf(selection()).contains(QStringLiteral("participants_connectome.tsv")));
    writeStudy("");
    EXPECT_TRUE(faultOf(selection()).contains(QStringLiteral("a row for each run")));
    writeStudy(row("sub-01", "n/a", "rest", "A", "failed"));
    EXPECT_TRUE(
        faultOf(selection()).contains(QStringLiteral("found failed, expected rows that are done")));
    writeStudy(row("sub-01", "n/a", "rest", "A", "done"));
    EXPECT_TRUE(faultOf(withPeople("participant_id\tage\nsub-01\t1\n01\t2\n"))
                    .contains(QStringLiteral("line 3: found a second row of sub-01")));
    EXPECT_TRUE(
        faultOf(withPeople("name\tage\nsub-01\t1\n")).contains(QStringLiteral("participant_id")));
}

TEST_F(Study, ItsMatricesMakeTheDataOfAGroup)
{
    QByteArray rows, people = "participant_id\tgroup\n";
    for (int i = 1; i <= 6; ++i) {
        const QByteArray number = "0" + QByteArray::number(i);
        const QByteArray participant = "sub-" + number;
        rows +=
            row(participant.constData(), "n/a", "rest", "A", "done", ("0." + number).constData());
        people += participant + '\t' + (i % 2 == 0 ? "P" : "C") + '\n';
        for (const char *kind : {"stat-pearsoncorrelation", "desc-uncleaned"}) {
            const QByteArray r = "0." + QByteArray::number(kind[0] == 's' ? i : i + 1);
            write(QStringLiteral("%1/func/%1_task-rest_space-T1w_atlas-A_%2_relmat.tsv")
                      .arg(QString::fromUtf8(participant), QLatin1String(kind)),
                  "Node\ta\tb\tc\na\t1\t" + r + "\t0.1\nb\t" + r + "\t1\t0.2\nc\t0.1\t0.2\t1\n");
        }
    }
    writeStudy(rows);
    GroupRequest request;
    request.study = withPeople(people);
    request.formula = QStringLiteral("group");
    request.tests = {GroupTest::Glm, GroupTest::QcFc};
    const GroupData data = readGroupData(request);
    ASSERT_EQ(data.participants.size(), 6U);
    EXPECT_TRUE(data.isFisherZ);
    EXPECT_NEAR(data.edges(3, 0), std::atanh(0.4), 1e-12);
    EXPECT_NEAR(data.motion.uncleaned(3, 0), std::atanh(0.5), 1e-12);
    EXPECT_NEAR(data.motion.meanFd(3), 0.04, 1e-12);
    EXPECT_EQ(data.motion.meanDegreesOfFreedom, 177);
    EXPECT_EQ(data.design.matrix(3, 1), 1);
}

} // namespace

} // namespace corvane
