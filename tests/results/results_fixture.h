// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dataset/subject.h"
#include "engine/connectivity_object.h"
#include "results/connectivity_object_ui.h"
#include "tests/gui_test.h"
#include "tests/support/modal_driver.h"
#include "tests/support/qt_printers.h"

#include <Eigen/Core>
#include <QAbstractButton>
#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

class GraphFeaturesModel;
class QTableView;

/// A symmetric matrix with a zero diagonal and weights between 0 and 1, another for each seed.
Eigen::MatrixXf weights(int nodes, unsigned seed);

/// One interval of a protocol.
struct Interval {
    int start;
    QString name;
    int isEvent = 0;
};

/// A finished result with its results dialog, worked with clicks as a user would. The record starts
/// without a protocol, with the VOIs "V0" and on.
class ResultsFixture : public testing::Test
{
protected:
    ResultsFixture();
    ~ResultsFixture() override;

    // The result. What the dialog reads at its start is set before its first use.
    void setNodes(int count);      ///< VOIs, all of them seeds
    void addTimeseries(int count); ///< of one to three voxels and five volumes each
    /// Uses the protocol from now on, with a matrix of `nodes` per interval.
    void setIntervals(const QVector<Interval> &intervals, int nodes = 6);
    void setMatrices(const std::vector<Eigen::MatrixXf> &matrices);

    // The dialog. Made and shown at its first use.
    ConnectivityObjectUI &dialog();
    QPointer<ConnectivityObjectUI> openDialog() const; ///< null when there is none
    void closeDialog();                                ///< as a user does; it is gone then

    template <typename Widget>
    Widget *find(const char *name)
    {
        auto *const widget = dialog().findChild<Widget *>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    void showPage(const QWidget *widget); ///< the tab that holds it
    void click(const char *buttonName);   ///< on its tab, which comes to the front
    void click(QAbstractButton *button);

    template <typename Window>
    QList<Window *> windows()
    {
        return dialog().findChildren<Window *>(QString(), Qt::FindDirectChildrenOnly);
    }
    template <typename Window>
    Window *window()
    {
        EXPECT_EQ(windows<Window>().size(), 1);
        return windows<Window>().value(0);
    }

    /// Covers a window by another and minimises it, has it shown by `show`, and looks whether it is
    /// in front then.
    void expectComesToFront(QWidget *window, const std::function<void()> &show);

    // The table of measures
    QTableView *features();
    GraphFeaturesModel &featuresModel();
    int rowOf(const QString &key);
    QPushButton *computeButton(const QString &key);
    QPushButton *inspectButton(const QString &key); ///< may be null
    void compute(const QString &key);               ///< clicks it
    void inspect(const QString &key);
    QVariant result(const QString &key);

    QSharedPointer<Subject> subject{new Subject};
    std::unique_ptr<ConnectivityObject> object;
    QTemporaryDir folder;
    ModalDriver modals;
};
