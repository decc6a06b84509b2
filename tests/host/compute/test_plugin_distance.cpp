// SPDX-License-Identifier: GPL-3.0-or-later
//
// The command "distance" beside the group comparison of the plugin's dialog, on the same matrices.
#include "engine/connectivity_object.h"
#include "tests/gui_test.h"
#include "tests/host/support/program.h"
#include "tests/support/dataset_fixture.h"

#include <QCheckBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTest>
#include <nodalis/nodalis.h>

namespace
{

class PluginDistance : public DatasetFixture
{
protected:
    /// A finished subject with so many nodes, with seeds from `first` on.
    void add(int nodes, int first)
    {
        const int row = addReadyRow();
        selectProfile(row);
        find<QCheckBox>("chkBox_ShowResults")->setChecked(false);
        QVector<int> seeds;
        for (int voi = first; voi < first + nodes; ++voi)
            seeds.append(voi);
        selectSeeds(seeds);
        compute();
    }
    void selectAll()
    {
        showTab(results());
        for (int item = 0; item < results()->count(); ++item)
            QTest::mouseClick(results()->viewport(), Qt::LeftButton, {},
                              results()->visualItemRect(results()->item(item)).center());
    }

    /// All connections of one weight.
    static Eigen::MatrixXf weights(int nodes, float weight)
    {
        Eigen::MatrixXf matrix = Eigen::MatrixXf::Constant(nodes, nodes, weight);
        matrix.diagonal().setZero();
        return matrix;
    }

    /// The last lines of the plugin's text box, in which there is a cell behind the last tab.
    std::vector<QStringList> shown()
    {
        click("btn_ComputeGraphDistance");
        const QStringList lines = find<QPlainTextEdit>("plain_GraphResults")
                                      ->toPlainText()
                                      .split('\n', Qt::SkipEmptyParts);
        std::vector<QStringList> rows;
        for (int row = 0; row < count(); ++row)
            rows.push_back(lines.at(lines.size() - count() + row).split('\t'));
        return rows;
    }
    /// What the command prints of the same subjects in the same order, without names.
    std::vector<QStringList> printed(const QStringList &options)
    {
        const QTemporaryDir tables;
        QStringList words{QStringLiteral("distance")};
        for (const QListWidgetItem *item : results()->selectedItems()) {
            const int index = item->data(Qt::UserRole).toInt();
            const QString path = tables.filePath(QStringLiteral("%1.csv").arg(words.size()));
            EXPECT_TRUE(nodalis::to_csv(object(index)->matrices()[0], path.toStdString()));
            words += path;
        }
        const corvane::ProgramRun run = corvane::runCorvane(words + options);
        EXPECT_EQ(run.status, 0) << run.errors.constData();
        const QStringList lines = QString::fromUtf8(run.output).split('\n', Qt::SkipEmptyParts);
        EXPECT_EQ(lines.size(), count() + 1);
        std::vector<QStringList> rows;
        for (const QString &line : lines.mid(1))
            rows.push_back(line.split('\t').mid(1));
        return rows;
    }
    void expectTheSame(const QStringList &options = {})
    {
        const std::vector<QStringList> box = shown();
        const std::vector<QStringList> table = printed(options);
        ASSERT_EQ(table.size(), box.size());
        for (int i = 0; i < count(); ++i) {
            ASSERT_EQ(table[std::size_t(i)].size(), count());
            for (int j = i; j < count(); ++j) {
                EXPECT_EQ(table[std::size_t(i)][j], box[std::size_t(i)][j]) << i << ", " << j;
                EXPECT_EQ(table[std::size_t(j)][i], box[std::size_t(i)][j]) << j << ", " << i;
                EXPECT_EQ(table[std::size_t(i)][j] == QStringLiteral("0"), i == j);
            }
        }
    }
    int count() { return results()->selectedItems().size(); }
};

TEST_F(PluginDistance, IsThatOfTheCommandForMatricesAndTrees)
{
    add(4, 0);
    add(5, 3);
    add(3, 6);
    selectAll();
    ASSERT_EQ(count(), 3);
    expectTheSame();
    click("cbox_grp_useFilteredMatrix");
    expectTheSame({QStringLiteral("--mst")});
}

/// The zeros of the padding stand between positive and negative eigenvalues, so that distances
/// depend on how many they are; the first and largest subject has no say in it.
TEST_F(PluginDistance, IsPaddedAsThatOfTheCommand)
{
    for (int i = 0; i < 3; ++i)
        add(3, 0);
    object(0)->setMatrices({weights(6, 1.0f)});
    object(1)->setMatrices({weights(3, -1.0f)});
    object(2)->setMatrices({weights(4, 1.0f)});
    selectAll();
    ASSERT_EQ(count(), 3);
    expectTheSame();
}

} // namespace
