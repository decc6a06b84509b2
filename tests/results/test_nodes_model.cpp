// SPDX-License-Identifier: GPL-3.0-or-later
#include "results/nodes_model.h"

#include "dataset/plugin_settings.h"
#include "results/nodes_table.h"
#include "tests/results/results_fixture.h"

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>

namespace
{

class NodesModelTest : public testing::Test
{
protected:
    void fill() { model.setLabels({"V1", "V2", "MT"}); }

    NodesModel model;
};

/// A model that gives the root item flags, as this one does, is nothing that the tester knows.
const char *const flagsOfTheRoot = "FAIL! flags == Qt::ItemIsDropEnabled || flags == 0 () returned "
                                   "FALSE";

TEST_F(NodesModelTest, KeepsTheRulesOfModels)
{
    for (const bool filled : {false, true}) {
        if (filled)
            fill();
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::Warning);
        for (const QString &warning : takeWarnings())
            EXPECT_TRUE(warning.startsWith(flagsOfTheRoot)) << qPrintable(warning);
    }
}

TEST_F(NodesModelTest, Size)
{
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 2);
    fill();
    EXPECT_EQ(model.rowCount(), 3);
    EXPECT_EQ(model.columnCount(), 2);
    EXPECT_EQ(model.rowCount(model.index(0, 0)), 0);
    EXPECT_EQ(model.columnCount(model.index(0, 0)), 0);
}

TEST_F(NodesModelTest, DataOfEachRoleAndColumn)
{
    fill();
    for (int row = 0; row < 3; ++row) {
        const QString label = QStringList{"V1", "V2", "MT"}[row];
        for (int role = 0; role < Qt::UserRole + 2; ++role) {
            const bool isText = role == Qt::DisplayRole || role == Qt::EditRole;
            EXPECT_EQ(model.data(model.index(row, 0), role), isText ? QVariant(label) : QVariant());
            EXPECT_EQ(model.data(model.index(row, 1), role),
                      role == Qt::TextAlignmentRole ? QVariant(4) : QVariant());
        }
    }
    EXPECT_EQ(model.data(model.index(0, 1), Qt::TextAlignmentRole).userType(), int(QMetaType::Int));
}

TEST_F(NodesModelTest, ARowBeyondTheLabelsHasNoText)
{
    fill();
    const QModelIndex last = model.index(2, 0);
    model.setLabels({"V1"});
    EXPECT_FALSE(model.data(last).isValid());
    EXPECT_FALSE(model.data(QModelIndex()).isValid());
}

TEST_F(NodesModelTest, TakesEveryValueAndKeepsNone)
{
    fill();
    QSignalSpy changes(&model, &NodesModel::dataChanged);
    EXPECT_TRUE(model.setData(model.index(0, 0), "other"));
    EXPECT_TRUE(model.setData(model.index(0, 1), true, Qt::CheckStateRole));
    EXPECT_TRUE(model.setData(QModelIndex(), 1));
    EXPECT_EQ(model.data(model.index(0, 0)), "V1");
    EXPECT_TRUE(changes.isEmpty());
}

TEST_F(NodesModelTest, NewLabelsAreNotSignalled)
{
    int signalled = 0;
    const auto count = [&signalled] { ++signalled; };
    QObject::connect(&model, &NodesModel::layoutChanged, &model, count);
    QObject::connect(&model, &NodesModel::modelReset, &model, count);
    QObject::connect(&model, &NodesModel::rowsInserted, &model, count);
    QObject::connect(&model, &NodesModel::dataChanged, &model, count);
    fill();
    EXPECT_EQ(signalled, 0);
}

TEST_F(NodesModelTest, Headers)
{
    EXPECT_EQ(model.headerData(0, Qt::Horizontal), "Node");
    EXPECT_EQ(model.headerData(1, Qt::Horizontal), "Inclusion");
    EXPECT_FALSE(model.headerData(0, Qt::Vertical).isValid());
    EXPECT_FALSE(model.headerData(0, Qt::Horizontal, Qt::EditRole).isValid());
    EXPECT_FALSE(model.headerData(-1, Qt::Horizontal).isValid());
    EXPECT_FALSE(model.headerData(2, Qt::Horizontal).isValid());
}

TEST_F(NodesModelTest, Flags)
{
    fill();
    const Qt::ItemFlags base = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    EXPECT_EQ(model.flags(QModelIndex()), Qt::ItemIsEnabled);
    EXPECT_EQ(model.flags(model.index(1, 0)), base | Qt::ItemIsEditable);
    EXPECT_EQ(model.flags(model.index(1, 1)), base);
}

TEST(NodesTable, HasACheckedBoxForTheInclusionOfEachNode)
{
    QTableView view;
    const QStringList labels = {"V1", "V2", "MT"};
    fillNodesTable(&view, labels);
    auto *const model = qobject_cast<NodesModel *>(view.model());
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->QObject::parent(), &view);
    ASSERT_EQ(model->rowCount(), 3);
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(model->index(row, 0).data(), labels[row]);
        EXPECT_EQ(view.indexWidget(model->index(row, 0)), nullptr);
        const auto *const box = qobject_cast<QCheckBox *>(view.indexWidget(model->index(row, 1)));
        ASSERT_NE(box, nullptr) << row;
        EXPECT_EQ(box->property("row"), QVariant(row));
        EXPECT_TRUE(box->isChecked());
        EXPECT_EQ(box->text(), "");
        EXPECT_EQ(box->styleSheet(), "margin-left:50%; margin-right:50%;");
    }
    EXPECT_EQ(view.horizontalHeader()->sectionResizeMode(0), QHeaderView::Stretch);
    EXPECT_EQ(view.horizontalHeader()->sectionResizeMode(1), QHeaderView::ResizeToContents);
}

class NodesPage : public ResultsFixture
{
};

TEST_F(NodesPage, ShowsTwoHeadersAndNoRows)
{
    const auto *const view = find<QTableView>("tblView_Nodes");
    auto *const model = qobject_cast<NodesModel *>(view->model());
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->QObject::parent(), view);
    EXPECT_EQ(model->rowCount(), 0);
    const QHeaderView *const header = view->horizontalHeader();
    ASSERT_EQ(header->count(), 2);
    EXPECT_EQ(header->sectionResizeMode(0), QHeaderView::Stretch);
    EXPECT_EQ(header->sectionResizeMode(1), QHeaderView::ResizeToContents);
    showPage(view);
    EXPECT_TRUE(view->isVisible());
    EXPECT_FALSE(view->isEnabled());
    EXPECT_GT(header->sectionSize(0), header->sectionSize(1));
}

TEST_F(NodesPage, IsLoggedWhenLoggingIsOn)
{
    dialog();
    closeDialog();
    const auto lines = [] {
        QStringList texts;
        for (const LoggedMessage &message : takeMessages()) {
            if (message.type == QtDebugMsg)
                texts += message.text;
        }
        return texts;
    };
    EXPECT_TRUE(lines().isEmpty());
    PluginSettings::instance()->verboseLogging = true;
    dialog();
    PluginSettings::instance()->verboseLogging = false;
    EXPECT_EQ(lines(), QStringList({"void __cdecl ConnectivityObjectUI::prepareNodesTable(void)",
                                    "labels = ()"}));
}

} // namespace
