// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/results/results_fixture.h"

#include "results/graph_features_model.h"

#include <QTabWidget>
#include <QTableView>
#include <QTest>

#include <random>

Eigen::MatrixXf weights(int nodes, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> weight(0.01f, 0.99f);
    Eigen::MatrixXf matrix = Eigen::MatrixXf::Zero(nodes, nodes);
    for (int i = 0; i < nodes; ++i) {
        for (int j = i + 1; j < nodes; ++j)
            matrix(i, j) = matrix(j, i) = weight(random);
    }
    return matrix;
}

ResultsFixture::ResultsFixture()
    : object(std::make_unique<ConnectivityObject>(QStringLiteral("Subject 1"), nullptr))
{
    subject->setName(QStringLiteral("Subject 1"));
    subject->setVtcFile(QStringLiteral("/data/run.vtc"));
    subject->setVoiFile(QStringLiteral("/data/atlas.voi"));
    object->setSubject(subject);
    setNodes(6);
    setMatrices({weights(6, 0)});
}

ResultsFixture::~ResultsFixture()
{
    object.reset();
    EXPECT_TRUE(openDialog().isNull()) << "a results dialog outlives its result";
}

void ResultsFixture::setNodes(int count)
{
    ConnectivityScheme scheme;
    subject->voiNames.clear();
    for (int voi = 0; voi < count; ++voi) {
        subject->voiNames.append(QStringLiteral("V%1").arg(voi));
        scheme.seedVois.append(voi);
    }
    subject->setScheme(scheme);
}

void ResultsFixture::addTimeseries(int count)
{
    for (int voi = 0; voi < count; ++voi)
        subject->appendTimeseries(weights(5, 100u + unsigned(voi)).topRows(1 + voi % 3));
}

void ResultsFixture::setIntervals(const QVector<Interval> &intervals, int nodes)
{
    SubjectProtocol protocol(QStringLiteral("task"), 1, intervals.size());
    std::vector<Eigen::MatrixXf> matrices;
    for (const Interval &interval : intervals) {
        protocol.volumeNames.insert(interval.start, interval.name);
        protocol.volumeEvents.insert(interval.start, interval.isEvent);
        matrices.push_back(weights(nodes, unsigned(interval.start)));
    }
    subject->setProtocol(protocol);
    subject->setUseProtocol(true);
    setMatrices(matrices);
}

void ResultsFixture::setMatrices(const std::vector<Eigen::MatrixXf> &matrices)
{
    object->setMatrices(matrices);
}

ConnectivityObjectUI &ResultsFixture::dialog()
{
    if (openDialog().isNull()) {
        object->showResults();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(openDialog()));
    }
    return *openDialog();
}

QPointer<ConnectivityObjectUI> ResultsFixture::openDialog() const
{
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        if (auto *const dialog = qobject_cast<ConnectivityObjectUI *>(widget))
            return dialog;
    }
    return nullptr;
}

void ResultsFixture::closeDialog()
{
    const QPointer<ConnectivityObjectUI> closing = openDialog();
    click("pushButton");
    EXPECT_TRUE(QTest::qWaitFor([&closing] { return closing.isNull(); }));
}

void ResultsFixture::showPage(const QWidget *widget)
{
    auto *const tabs = find<QTabWidget>("tabWidget");
    for (int tab = 0; tab < tabs->count(); ++tab) {
        if (tabs->widget(tab)->isAncestorOf(widget))
            tabs->setCurrentIndex(tab);
    }
}

void ResultsFixture::click(const char *buttonName)
{
    click(find<QAbstractButton>(buttonName));
}

void ResultsFixture::click(QAbstractButton *button)
{
    showPage(button);
    ASSERT_TRUE(button->isVisible()) << qPrintable(button->objectName());
    QTest::mouseClick(button, Qt::LeftButton, {}, {button->height() / 2, button->height() / 2});
}

void ResultsFixture::expectComesToFront(QWidget *window, const std::function<void()> &show)
{
    QWidget other;
    other.resize(window->size());
    for (const Qt::WindowStates state :
         {Qt::WindowStates(Qt::WindowNoState), Qt::WindowStates(Qt::WindowMinimized),
          Qt::WindowMinimized | Qt::WindowMaximized}) {
        window->setWindowState(state);
        other.show();
        other.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
        takeMessages();
        show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window)) << int(state);
        EXPECT_EQ(window->windowState() & ~Qt::WindowActive, state & ~Qt::WindowMinimized);
        EXPECT_TRUE(window->isVisible());
        // This platform keeps no order of windows. It says so when it is asked for one.
        EXPECT_TRUE(takeWarnings().contains("This plugin does not support raise()")) << int(state);
    }
    window->setWindowState(Qt::WindowNoState);
}

QTableView *ResultsFixture::features()
{
    return find<QTableView>("tblView_GraphFeatures");
}

GraphFeaturesModel &ResultsFixture::featuresModel()
{
    return *qobject_cast<GraphFeaturesModel *>(features()->model());
}

int ResultsFixture::rowOf(const QString &key)
{
    const GraphFeaturesModel &model = featuresModel();
    for (int row = 0; row < model.rowCount(); ++row) {
        const QWidget *const button =
            features()->indexWidget(model.index(row, GraphFeaturesModel::ComputeColumn));
        if (button && button->property("measure") == key)
            return row;
    }
    ADD_FAILURE() << "no row of " << qPrintable(key);
    return -1;
}

QPushButton *ResultsFixture::computeButton(const QString &key)
{
    return qobject_cast<QPushButton *>(features()->indexWidget(
        featuresModel().index(rowOf(key), GraphFeaturesModel::ComputeColumn)));
}

QPushButton *ResultsFixture::inspectButton(const QString &key)
{
    return qobject_cast<QPushButton *>(features()->indexWidget(
        featuresModel().index(rowOf(key), GraphFeaturesModel::ResultColumn)));
}

void ResultsFixture::compute(const QString &key)
{
    click(computeButton(key));
}

void ResultsFixture::inspect(const QString &key)
{
    ASSERT_NE(inspectButton(key), nullptr);
    ASSERT_TRUE(inspectButton(key)->isEnabled());
    click(inspectButton(key));
}

QVariant ResultsFixture::result(const QString &key)
{
    return featuresModel().result(featuresModel().featureIndex(key));
}
