// SPDX-License-Identifier: GPL-3.0-or-later
// Reading what pipelines and other packages tell of each volume.
#include "host/files/confounds_table.h"
#include "signals/strategies.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"
#include "tests/host/support/recordings.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::ElementsAre;

/// A table under that name, read.
class ConfoundsFile : public testing::Test
{
protected:
    signals::ConfoundsTable read(const char *name, const QByteArray &bytes)
    {
        putBytes(m_folder.path(name), bytes);
        return readConfounds(m_folder.path(name), m_notes);
    }
    /// What is said behind the path.
    std::string refusal(const char *name, const QByteArray &bytes)
    {
        const std::string text = errorOf([&] { read(name, bytes); });
        const std::string path = m_folder.path(name).toStdString() + ": ";
        return text.rfind(path, 0) == 0 ? text.substr(path.size()) : text;
    }

    TemporaryFolder m_folder;
    QStringList m_notes;
};

TEST_F(ConfoundsFile, ColumnsAreThoseOfTheFirstLine)
{
    const signals::ConfoundsTable table =
        read("a.tsv", "csf\tcsf_derivative1\ttrans_x\r\n1.5\tn/a\t-2e-3\r\n2\t0.5\t0\r\n");
    EXPECT_THAT(table.names, ElementsAre("csf", "csf_derivative1", "trans_x"));
    ASSERT_EQ(table.values.rows(), 2);
    ASSERT_EQ(table.values.cols(), 3);
    EXPECT_EQ(table.values(0, 0), 1.5);
    EXPECT_TRUE(std::isnan(table.values(0, 1)));
    EXPECT_EQ(table.values(0, 2), -2e-3);
    EXPECT_EQ(table.values(1, 1), 0.5);
    EXPECT_FALSE(table.components.has_value());
    EXPECT_EQ(joined(m_notes), "");
}

TEST_F(ConfoundsFile, QuotationMarksAndCommentsAreNoPartOfIt)
{
    const signals::ConfoundsTable table =
        read("a.tsv", "# made by hand\n\"csf\"\t\"trans_x\"\n\"1.5\"\t2\n");
    EXPECT_THAT(table.names, ElementsAre("csf", "trans_x"));
    EXPECT_EQ(table.values(0, 0), 1.5);
    EXPECT_THAT(joined(m_notes),
                testing::HasSubstr("1 comment line above the names of the columns skipped"));
}

TEST_F(ConfoundsFile, TheJsonBesideItTellsOfComponents)
{
    putBytes(m_folder.path("sub-01_desc-confounds_timeseries.json"), R"json({
        "csf": {"Method": "Mean"},
        "a_comp_cor_00": {"Method": "aCompCor", "Mask": "combined", "Retained": true},
        "dropped_3": {"Method": "aCompCor", "Mask": "WM", "Retained": false},
        "t_comp_cor_00": {"Method": "tCompCor"},
        "Description": "of no use"})json");
    const signals::ConfoundsTable table =
        read("sub-01_desc-confounds_timeseries.tsv", "a_comp_cor_00\n1\n2\n");
    ASSERT_TRUE(table.components.has_value());
    const std::vector<signals::Component> &found = *table.components;
    ASSERT_EQ(found.size(), 4U);
    EXPECT_EQ(found[0].name, "a_comp_cor_00");
    EXPECT_EQ(found[0].method, "aCompCor");
    EXPECT_EQ(found[0].mask, "combined");
    EXPECT_TRUE(found[0].retained);
    EXPECT_EQ(found[2].name, "dropped_3");
    EXPECT_FALSE(found[2].retained);
    EXPECT_EQ(found[3].mask, "");
    EXPECT_TRUE(found[3].retained) << "older files do not say";
}

TEST_F(ConfoundsFile, NumbersWithoutNamesAreMotionParameters)
{
    const signals::ConfoundsTable table =
        read("mc.par", "# made by a package\n  0.1  -2e-4 0 1 2 3 \n\n0.2\t0 0 1 2 3.5\n");
    EXPECT_THAT(table.names, ElementsAre("p1", "p2", "p3", "p4", "p5", "p6"));
    ASSERT_EQ(table.values.rows(), 2);
    EXPECT_EQ(table.values(0, 1), -2e-4);
    EXPECT_EQ(table.values(1, 5), 3.5);
}

TEST_F(ConfoundsFile, AFirstLineWithAnyOtherWordHoldsNames)
{
    const signals::ConfoundsTable table = read("a.tsv", "1\tcsf\n2\t3\n");
    EXPECT_THAT(table.names, ElementsAre("1", "csf"));
    EXPECT_EQ(table.values.rows(), 1);
}

TEST_F(ConfoundsFile, OneColumnOfNumbersIsATableToo)
{
    EXPECT_EQ(read("fd.txt", "0\n0.25\n").values.rows(), 2);
}

TEST_F(ConfoundsFile, WhatIsNoNumberIsRefusedWithItsPlace)
{
    EXPECT_EQ(refusal("a.tsv", "csf\ttrans_x\n1\t2\n3\tmuch\n"),
              R"(line 3, trans_x: found "much", expected a number or "n/a")");
    EXPECT_EQ(refusal("a.tsv", "csf\ttrans_x\n1\tinf\n"),
              R"(line 2, trans_x: found "inf", expected a number or "n/a")");
    EXPECT_EQ(refusal("a.tsv", "csf\ttrans_x\n1\t\n"),
              R"(line 2, trans_x: found "", expected a number or "n/a")");
    EXPECT_EQ(refusal("a.par", "0 0 0\n0 n/a 0\n"),
              R"(line 2, column 2: found "n/a", expected a number)");
}

TEST_F(ConfoundsFile, RowsOfUnequalLengthAreRefused)
{
    EXPECT_EQ(refusal("a.tsv", "csf\ttrans_x\n1\n"),
              "line 2: found 1 cell, expected 2, one for each column, with tabs between them");
    EXPECT_EQ(refusal("a.par", "0 0 0\n0 0\n"),
              "line 2: found 2 numbers, expected 3, as in the first line");
    EXPECT_EQ(refusal("a.par", "0 0 0\n0 0 0 0\n"),
              "line 2: found 4 numbers, expected 3, as in the first line");
}

TEST_F(ConfoundsFile, AnEmptyFileIsRefused)
{
    EXPECT_EQ(refusal("a.tsv", "\n\n"),
              "content: found no line, expected a line with the names of the columns");
    EXPECT_EQ(refusal("a.par", "# nothing\n"),
              "content: found no line, expected a line with the names of the columns");
}

TEST_F(ConfoundsFile, ADamagedJsonIsRefusedByItsName)
{
    putBytes(m_folder.path("a.json"), R"({"csf": )");
    const std::string text = errorOf([&] { read("a.tsv", "csf\n1\n"); });
    EXPECT_THAT(text, testing::StartsWith(m_folder.path("a.json").toStdString() + ": byte "));
    EXPECT_THAT(text, testing::HasSubstr("expected a JSON object"));
    putBytes(m_folder.path("a.json"), "[1]");
    EXPECT_THAT(errorOf([&] { read("a.tsv", "csf\n1\n"); }),
                testing::HasSubstr("found no object, expected a JSON object"));
}

TEST_F(ConfoundsFile, VolumesToLeaveOut)
{
    const QString path = m_folder.path("censor.txt");
    putBytes(path, "0\n1\n0\n");
    EXPECT_THAT(signals::positions(readCensorFile(path, 3)), ElementsAre(1));
    const std::string name = path.toStdString();
    EXPECT_EQ(errorOf([&] { readCensorFile(path, 4); }),
              name + ": content: found 3 lines, expected 4, one for each volume of the run");
    EXPECT_EQ(errorOf([&] { readCensorFile(path, 2); }),
              name + ": content: found 3 lines, expected 2, one for each volume of the run");
    putBytes(path, "0\n2\n0\n");
    EXPECT_EQ(errorOf([&] { readCensorFile(path, 3); }),
              name + R"(: line 2: found "2", expected 0 for a volume that stays or 1 for one )"
                     "that goes");
}

/// Two real tables, and which columns and volumes the usual Python tool takes of them.
struct RealTable {
    const char *name;
    const char *file;
    const char *strategy;
};

void PrintTo(const RealTable &table, std::ostream *stream)
{
    *stream << table.name;
}

class RealConfounds : public testing::TestWithParam<RealTable>
{
};

QString reference(const char *name)
{
    return QString::fromUtf8(referenceFolder()) + QStringLiteral("/reference/confounds/") +
           QString::fromUtf8(name);
}

TEST_P(RealConfounds, GiveTheColumnsAndVolumesOfAStrategy)
{
    if (!QFile::exists(reference("expected.json")))
        GTEST_SKIP() << "the folder of reference numbers is missing";
    const QJsonObject wanted = QJsonDocument::fromJson(bytesOf(reference("expected.json")))
                                   .object()[QLatin1String(GetParam().name)]
                                   .toObject();
    QStringList notes;
    signals::StrategyRequest request;
    request.strategy = GetParam().strategy;
    request.volumes = 30;
    const signals::Selection found =
        signals::select(readConfounds(reference(GetParam().file), notes), request);

    QJsonArray columns;
    for (const std::string &column : found.regressors.names)
        columns.append(QString::fromStdString(column));
    QJsonArray kept;
    for (const Eigen::Index volume : signals::positions(found.volumes.kept()))
        kept.append(int(volume));
    EXPECT_EQ(columns, wanted[QLatin1String("columns")].toArray());
    EXPECT_EQ(kept, wanted[QLatin1String("sample_mask")].toArray());
    EXPECT_FALSE(columns.isEmpty());
}

constexpr auto older = "fmriprep14_desc-confounds_regressors.tsv";
constexpr auto newer = "fmriprep21_desc-confounds_timeseries.tsv";
INSTANTIATE_TEST_SUITE_P(Tables, RealConfounds,
                         testing::Values(RealTable{"fmriprep14_simple", older, "simple"},
                                         RealTable{"fmriprep14_scrubbing", older, "scrubbing"},
                                         RealTable{"fmriprep14_compcor", older, "compcor"},
                                         RealTable{"fmriprep21_simple_global_signal-basic", newer,
                                                   "simple-gsr"},
                                         RealTable{"fmriprep21_scrubbing", newer, "scrubbing"},
                                         RealTable{"fmriprep21_compcor", newer, "compcor"}));

} // namespace
} // namespace corvane
