// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plots/line_plot.h"
#include "plots/my_label.h"
#include "tests/gui_test.h"
#include "tests/support/qt_printers.h"

#include <QApplication>
#include <QCheckBox>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QGridLayout>
#include <QTest>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>

#include <gtest/gtest.h>

/// The names on the X axis of a shown chart that are not empty, as they are read on it, without the
/// invisible characters that tell them apart or fill them up.
inline QStringList shownNames(const QtCharts::QChart &chart)
{
    const auto *const axis =
        qobject_cast<QtCharts::QBarCategoryAxis *>(chart.axes(Qt::Horizontal).value(0));
    QStringList shown;
    for (const QGraphicsItem *item : chart.scene()->items(Qt::AscendingOrder)) {
        const auto *const text = dynamic_cast<const QGraphicsTextItem *>(item);
        // Labels are turned as the axis says; its title is not.
        if (!text || !axis || !text->isVisible() || text->rotation() != axis->labelsAngle())
            continue;
        QString name = text->toPlainText().remove(QChar(0x200b));
        while (name.endsWith(' '))
            name.chop(1);
        if (!name.isEmpty())
            shown += name;
    }
    return shown;
}

/// The titles of a shown chart and of its axes as they are read on it.
inline QStringList shownTitles(const QtCharts::QChart &chart)
{
    QStringList shown;
    for (const QGraphicsItem *item : chart.scene()->items(Qt::AscendingOrder)) {
        const auto *const text = dynamic_cast<const QGraphicsTextItem *>(item);
        if (text && text->isVisible() && text->font().bold())
            shown += text->toPlainText();
    }
    return shown;
}

/// A line plot and the way to its parts.
class LinePlotTest : public testing::Test
{
protected:
    LinePlotTest()
    {
        window.setWindowTitle(QStringLiteral("Plot: Degree"));
        window.prepareChart();
    }

    /// Shows the window and leaves the mouse in the middle of its chart.
    void show()
    {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        bringMouseTo(window, window.rect().center());
    }

    QtCharts::QChartView *view() const { return window.findChild<QtCharts::QChartView *>(); }
    QtCharts::QChart *chart() const { return view()->chart(); }
    QtCharts::QLineSeries *line(int row) const
    {
        return qobject_cast<QtCharts::QLineSeries *>(chart()->series().value(row));
    }
    QPen pen(int row, const char *property) const
    {
        return line(row)->property(property).value<QPen>();
    }

    QGridLayout *grid() const
    {
        return window.findChild<QGridLayout *>(QStringLiteral("gridLayoutAll"));
    }
    template <typename Widget>
    Widget *inLegend(int row, int column) const
    {
        QLayoutItem *item = grid()->itemAtPosition(row, column);
        return item == nullptr ? nullptr : qobject_cast<Widget *>(item->widget());
    }
    MyLabel *colorBox(int row) const { return inLegend<MyLabel>(row, 0); }
    MyLabel *nameLabel(int row) const { return inLegend<MyLabel>(row, 1); }
    QCheckBox *checkBox(int row) const { return inLegend<QCheckBox>(row, 2); }

    template <typename Widget>
    Widget *named(const char *name) const
    {
        return window.findChild<Widget *>(QLatin1String(name));
    }

    void click(QWidget *widget, QPoint at)
    {
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, widget->mapTo(&window, at));
    }
    void moveMouseTo(QWidget *widget)
    {
        QTest::mouseMove(window.windowHandle(), widget->mapTo(&window, widget->rect().center()));
    }

    /// Whether all points of all lines lie in the frame of the axes.
    testing::AssertionResult allPointsAreInThePlotArea() const
    {
        const QRectF area = chart()->plotArea().adjusted(-0.5, -0.5, 0.5, 0.5);
        for (QtCharts::QAbstractSeries *series : chart()->series()) {
            auto *points = qobject_cast<QtCharts::QLineSeries *>(series);
            for (const QPointF &point : points->pointsVector()) {
                const QPointF place = chart()->mapToPosition(point, points);
                if (!area.contains(place)) {
                    return testing::AssertionFailure()
                           << "point " << point.x() << ", " << point.y() << " of "
                           << qPrintable(points->name()) << " lies at " << place.x() << ", "
                           << place.y();
                }
            }
        }
        return testing::AssertionSuccess();
    }

    LinePlot window{QStringLiteral("Degree")};
};
