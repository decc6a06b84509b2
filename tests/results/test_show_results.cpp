// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graph_measures.h"
#include "results/graph_features_model.h"
#include "tests/results/results_fixture.h"

#include <QTableView>
#include <QTest>

namespace
{

class ShowResults : public ResultsFixture
{
};

TEST_F(ShowResults, MakesATopLevelWindowThatGoesWhenItIsClosed)
{
    object->showResults();
    const QPointer<ConnectivityObjectUI> shown = openDialog();
    ASSERT_FALSE(shown.isNull());
    EXPECT_EQ(shown->parent(), nullptr);
    EXPECT_TRUE(shown->isWindow());
    EXPECT_TRUE(shown->isVisible());
    EXPECT_TRUE(shown->testAttribute(Qt::WA_DeleteOnClose));
    EXPECT_EQ(shown->connectivityObject, object.get());
    shown->close();
    EXPECT_TRUE(QTest::qWaitFor([&shown] { return shown.isNull(); }));
}

TEST_F(ShowResults, TwiceInARowGivesOneDialog)
{
    object->showResults();
    const QPointer<ConnectivityObjectUI> first = openDialog();
    first->hide();
    object->showResults();
    EXPECT_TRUE(first->isVisible());
    first->setObjectName("the first");
    object->showResults();
    EXPECT_EQ(openDialog()->objectName(), "the first");
    delete first;
    EXPECT_TRUE(openDialog().isNull());
}

TEST_F(ShowResults, ADialogThatIsCoveredOrMinimisedComesToTheFront)
{
    expectComesToFront(&dialog(), [this] { object->showResults(); });
}

TEST_F(ShowResults, AfterClosingThereIsAnother)
{
    dialog().setObjectName("the first");
    closeDialog();
    EXPECT_TRUE(openDialog().isNull());
    EXPECT_NE(dialog().objectName(), "the first");
}

TEST_F(ShowResults, EscapeClosesItForGood)
{
    const QPointer<ConnectivityObjectUI> shown = &dialog();
    QTest::keyClick(shown.data(), Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&shown] { return shown.isNull(); }));
}

TEST_F(ShowResults, TheDialogGoesWithItsResult)
{
    const QPointer<ConnectivityObjectUI> shown = &dialog();
    object.reset();
    EXPECT_TRUE(shown.isNull());
}

TEST_F(ShowResults, ADialogWithoutAResultIsEmpty)
{
    ConnectivityObjectUI empty(nullptr, nullptr);
    empty.show();
    empty.plotCircular(true);
    EXPECT_TRUE(empty.findChildren<QWidget *>("CircularPlotWindow").isEmpty());
    EXPECT_FALSE(empty.findChild<QWidget *>("groupbox_CircularPlot")->isEnabled());

    const auto *const table = empty.findChild<QTableView *>("tblView_GraphFeatures");
    auto *const model = qobject_cast<GraphFeaturesModel *>(table->model());
    for (QPushButton *const button : table->findChildren<QPushButton *>())
        button->click();
    for (const GraphMeasure &measure : graphMeasures())
        EXPECT_FALSE(model->result(model->featureIndex(measure.key)).isValid()) << measure.key;
}

} // namespace
