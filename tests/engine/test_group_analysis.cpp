// SPDX-License-Identifier: GPL-3.0-or-later
//
// The selection of finished subjects and their comparison.
#include "dataset/plugin_settings.h"
#include "engine/connectivity_object.h"
#include "statistics/distances.h"
#include "tests/gui_test.h"
#include "tests/support/dataset_fixture.h"

#include <QCheckBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTest>
#include <nodalis/nodalis.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace
{

class Group : public DatasetFixture
{
protected:
    /// A finished subject with so many nodes, with trees or without, with seeds from `first` on.
    void add(int nodes, bool trees = true, int first = 0)
    {
        const int row = addReadyRow();
        selectProfile(row);
        find<QCheckBox>("chkBox_ShowResults")->setChecked(false);
        if (!trees)
            click("chkBox_ComputeMST");
        QVector<int> seeds;
        for (int voi = first; voi < first + nodes; ++voi)
            seeds.append(voi);
        selectSeeds(seeds);
        compute();
    }
    void select(int item)
    {
        showTab(results());
        QTest::mouseClick(results()->viewport(), Qt::LeftButton, {},
                          results()->visualItemRect(results()->item(item)).center());
    }
    void selectAll()
    {
        for (int item = 0; item < results()->count(); ++item)
            select(item);
    }
    void compare() { click("btn_ComputeGraphDistance"); }
    bool isEnabled(const char *name) { return find<QWidget>(name)->isEnabled(); }
    QString output() { return find<QPlainTextEdit>("plain_GraphResults")->toPlainText(); }

    /// All connections of one weight.
    static Eigen::MatrixXf weights(int nodes, float weight)
    {
        Eigen::MatrixXf matrix = Eigen::MatrixXf::Constant(nodes, nodes, weight);
        matrix.diagonal().setZero();
        return matrix;
    }
    QVector<int> selection()
    {
        QVector<int> indices;
        for (const QListWidgetItem *item : results()->selectedItems())
            indices.append(item->data(Qt::UserRole).toInt());
        return indices;
    }
    /// The table of the selected subjects, in the order of the selection.
    QString table(int padSize, bool trees = false)
    {
        const QVector<int> indices = selection();
        QString text;
        for (int i = 0; i < indices.size(); ++i) {
            for (int j = 0; j < indices.size(); ++j) {
                float distance = 0.0f;
                if (j >= i) {
                    const ConnectivityObject *const a = object(indices.at(i));
                    const ConnectivityObject *const b = object(indices.at(j));
                    Eigen::MatrixXf first = trees ? a->mstMatrices()[0] : a->matrices()[0];
                    Eigen::MatrixXf second = trees ? b->mstMatrices()[0] : b->matrices()[0];
                    distance = nodalis::distances::spectral_euclidean(first, second, padSize);
                }
                text += QString::number(double(distance), 'g', 6) + '\t';
            }
            text += '\n';
        }
        return text;
    }
};

TEST_F(Group, StateOfTheTabFollowsTheSelection)
{
    for (int i = 0; i < 3; ++i)
        add(3);
    const auto expectOpen = [this](bool enabled) {
        EXPECT_EQ(isEnabled("btn_OpenSubject"), enabled);
        EXPECT_EQ(isEnabled("btn_ReleaseSubject"), enabled);
        EXPECT_EQ(isEnabled("btn_ReleaseAllSubjects"), enabled);
    };
    select(0);
    expectOpen(true);
    EXPECT_FALSE(isEnabled("btn_ComputeGraphDistance"));
    EXPECT_FALSE(isEnabled("cbox_GraphDistance"));
    select(2);
    expectOpen(true);
    EXPECT_TRUE(isEnabled("btn_ComputeGraphDistance"));
    EXPECT_TRUE(isEnabled("cbox_GraphDistance"));
    select(1);
    EXPECT_TRUE(isEnabled("btn_ComputeGraphDistance"));
    select(0);
    select(1);
    EXPECT_FALSE(isEnabled("btn_ComputeGraphDistance"));
    EXPECT_TRUE(isEnabled("cbox_GraphDistance")) << "with one it keeps its state";
    select(2);
    expectOpen(false);
    EXPECT_FALSE(isEnabled("btn_ComputeGraphDistance"));
    EXPECT_FALSE(isEnabled("cbox_GraphDistance"));
}

TEST_F(Group, FinishedComputeDisablesTheComparison)
{
    add(3);
    add(3);
    selectAll();
    EXPECT_TRUE(isEnabled("btn_ComputeGraphDistance"));
    add(3);
    EXPECT_FALSE(isEnabled("btn_ComputeGraphDistance"));
    EXPECT_FALSE(isEnabled("cbox_GraphDistance"));
}

TEST_F(Group, TwoOfEqualSize)
{
    add(4, true, 0);
    add(4, true, 5);
    selectAll();
    compare();
    const QString text = output();
    EXPECT_EQ(text, "Will full the full-weighted connectivity matrices.\n"
                    "Computing distance score...\n" +
                        table(4));
    const QStringList lines = text.split('\n');
    ASSERT_EQ(lines.size(), 5);
    const QStringList first = lines.at(2).split('\t');
    const QStringList second = lines.at(3).split('\t');
    ASSERT_EQ(first.size(), 3);
    EXPECT_EQ(first.at(0), "0");
    EXPECT_GT(first.at(1).toDouble(), 0.0);
    EXPECT_EQ(first.at(2), "") << "a tab behind the last cell too";
    EXPECT_EQ(second.at(0), "0");
    EXPECT_EQ(second.at(1), "0");
    EXPECT_EQ(lines.at(4), "") << "a line feed behind the last row too";
}

TEST_F(Group, DistancesAreThoseThatTheGroupStatisticsTake)
{
    for (const int first : {0, 4, 2})
        add(4, true, first);
    selectAll();
    compare();
    const Eigen::MatrixXd distances =
        statistics::all_distances(3, [this](Eigen::Index i, Eigen::Index j) {
            Eigen::MatrixXf a = object(int(i))->matrices()[0];
            Eigen::MatrixXf b = object(int(j))->matrices()[0];
            return double(nodalis::distances::spectral_euclidean(a, b, 4));
        });
    const QStringList lines = output().split('\n');
    ASSERT_EQ(lines.size(), 6);
    for (int i = 0; i < 3; ++i) {
        const QStringList cells = lines.at(2 + i).split('\t');
        for (int j = i + 1; j < 3; ++j) {
            EXPECT_EQ(cells.at(j), QString::number(distances(i, j), 'g', 6));
            EXPECT_GT(distances(i, j), 0.0);
        }
    }
}

TEST_F(Group, RowsStandInTheOrderOfTheSelection)
{
    add(3);
    add(4, true, 3);
    add(5, true, 6);
    for (const int item : {2, 0, 1})
        select(item);
    compare();
    const int padSize = [this] {
        int size = 0;
        const QVector<int> indices = selection();
        for (int k = 1; k < indices.size(); ++k)
            size = std::max(size, int(object(indices.at(k))->matrices()[0].rows()));
        return size;
    }();
    EXPECT_EQ(output(), "Group matrix sizes do not match. They will be padded with zeros.\n"
                        "Will full the full-weighted connectivity matrices.\n"
                        "Computing distance score...\n" +
                            table(padSize));
}

TEST_F(Group, PaddingLeavesOutTheFirst)
{
    add(6);
    add(3);
    add(4);
    selectAll();
    ASSERT_EQ(selection(), (QVector<int>{0, 1, 2})) << "the largest is the first";
    compare();
    EXPECT_TRUE(output().endsWith(table(4)));
}

TEST_F(Group, PaddingLeavesOutTheFirstWhereTheDistanceDependsOnIt)
{
    for (int i = 0; i < 3; ++i)
        add(3);
    // The zeros of the padding stand between the positive and the negative eigenvalues, of which
    // the second has 2 and 1, the third 1 and 3.
    object(0)->setMatrices({weights(6, 1.0f)});
    object(1)->setMatrices({weights(3, -1.0f)});
    object(2)->setMatrices({weights(4, 1.0f)});
    selectAll();
    ASSERT_EQ(selection(), (QVector<int>{0, 1, 2}));
    compare();
    ASSERT_NE(table(4), table(6));
    EXPECT_TRUE(output().endsWith(table(4)));
}

TEST_F(Group, NotANumberIsTheLibrarysMatter)
{
    add(3);
    add(3, true, 4);
    Eigen::MatrixXf matrix = weights(3, 0.5f);
    matrix(0, 1) = std::numeric_limits<float>::quiet_NaN();
    object(0)->setMatrices({matrix});
    selectAll();
    compare();
    EXPECT_TRUE(output().endsWith(table(3)));
}

TEST_F(Group, FilteredMatricesAreComparedOnDemand)
{
    add(4, true, 0);
    add(5, true, 3);
    selectAll();
    click("cbox_grp_useFilteredMatrix");
    compare();
    EXPECT_EQ(output(), "Group matrix sizes do not match. They will be padded with zeros.\n"
                        "Will use the MST-filtered connectivity matrices.\n"
                        "Computing distance score...\n" +
                            table(5, true));
    EXPECT_NE(table(5, true), table(5, false));
}

TEST_F(Group, SubjectWithoutTreesEndsTheFilteredComparison)
{
    add(4);
    add(4, false);
    add(4);
    selectAll();
    click("cbox_grp_useFilteredMatrix");
    compare();
    EXPECT_EQ(output(), "Will use the MST-filtered connectivity matrices.\n"
                        "Subject is missing MST configuraiton. Aborting comparison.");
    click("cbox_grp_useFilteredMatrix");
    compare();
    EXPECT_TRUE(output().endsWith(table(4)));
}

TEST_F(Group, OutputOfEarlierRunsStays)
{
    add(3);
    add(3, true, 4);
    selectAll();
    compare();
    const QString once = output();
    compare();
    EXPECT_EQ(output(), once + "\n" + once);
}

TEST_F(Group, OnlyTheFirstSliceIsCompared)
{
    fake_host::Protocol protocol;
    protocol.conditions = {{"A", {{1, 12}, {20, 30}}}};
    const QString prt = addProtocol("task.prt", protocol);
    fake_host::Vtc vtc = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, 40);
    vtc.linkProtocol(hostPath(prt));
    click("cbox_UseProtocol");
    find<QCheckBox>("chkBox_ShowResults")->setChecked(false);
    for (int first : {0, 4}) {
        const int row = addRow();
        finishRow(row, addVtc("task.vtc", vtc), addVois("set.voi"));
        computeRow(row, {first, first + 1, first + 2});
    }
    ASSERT_EQ(object(0)->matrices().size(), 2u);
    selectAll();
    compare();
    EXPECT_TRUE(output().endsWith(table(3)));
}

TEST_F(Group, EmptyMatricesAreCompared)
{
    for (int i = 0; i < 2; ++i) {
        selectProfile(addReadyRow());
        compute(); // without seeds
    }
    selectAll();
    compare();
    EXPECT_TRUE(output().endsWith("0\t0\t\n0\t0\t\n"));
}

TEST_F(Group, ResultWithoutMatricesRaises)
{
    fake_host::Protocol protocol;
    protocol.conditions = {{"A", {}}};
    const QString prt = addProtocol("empty.prt", protocol);
    fake_host::Vtc vtc = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, 40);
    vtc.linkProtocol(hostPath(prt));
    click("cbox_UseProtocol");
    find<QCheckBox>("chkBox_ShowResults")->setChecked(false);
    for (int i = 0; i < 2; ++i) {
        const int row = addRow();
        finishRow(row, addVtc("empty.vtc", vtc), addVois("set.voi"));
        computeRow(row, {0, 1});
    }
    selectAll();
    EXPECT_THROW(dialog().group_ComputeDistance(), std::out_of_range);
}

TEST_F(Group, MatricesThatDifferInTheirColumnsAloneAreOfOtherSizes)
{
    add(3);
    add(3, true, 4);
    object(1)->setMatrices({Eigen::MatrixXf::Zero(3, 4)});
    selectAll();
    EXPECT_THROW(dialog().group_ComputeDistance(), std::invalid_argument) << "the library's";
    EXPECT_TRUE(output().startsWith("Group matrix sizes do not match."));
}

TEST_F(Group, WithoutASelectionNothingIsCompared)
{
    add(3);
    dialog().group_ComputeDistance(); // its button is disabled
    EXPECT_EQ(output(), "");
}

TEST_F(Group, LogsItsSignatures)
{
    add(3);
    add(3);
    PluginSettings::instance()->verboseLogging = true;
    takeMessages();
    selectAll();
    compare();
    PluginSettings::instance()->verboseLogging = false;
    QStringList texts;
    for (const LoggedMessage &message : takeMessages())
        texts.append(message.text);
    EXPECT_EQ(
        texts,
        (QStringList{"void __cdecl Tessera::group_SelectedSubjects(void)", "select subjects = 1",
                     "void __cdecl Tessera::group_SelectedSubjects(void)", "select subjects = 2",
                     "void __cdecl Tessera::group_ComputeDistance(void)"}));
}

} // namespace
