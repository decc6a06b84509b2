// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/histogram.h"

#include <QGraphicsLayout>
#include <QImage>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>
#include <QtCharts/QLegend>

#include <gtest/gtest.h>

using namespace QtCharts;

namespace
{

TEST(Histogram, has_a_bare_chart)
{
    const Histogram histogram;
    EXPECT_TRUE(histogram.renderHints().testFlag(QPainter::Antialiasing));
    EXPECT_TRUE(histogram.autoFillBackground());
    const QChart *chart = histogram.chart();
    ASSERT_NE(chart, nullptr);
    EXPECT_FALSE(chart->legend()->isVisible());
    EXPECT_TRUE(chart->axes().isEmpty());
    EXPECT_TRUE(chart->series().isEmpty());
    EXPECT_EQ(chart->backgroundRoundness(), 0.0);
    EXPECT_EQ(chart->margins(), QMargins(2, 2, 2, 2));
    qreal left = 1;
    qreal top = 1;
    qreal right = 1;
    qreal bottom = 1;
    chart->layout()->getContentsMargins(&left, &top, &right, &bottom);
    EXPECT_EQ(left, 0.0);
    EXPECT_EQ(top, 0.0);
    EXPECT_EQ(right, 0.0);
    EXPECT_EQ(bottom, 0.0);
    EXPECT_EQ(chart->font().family(), "Arial");
    EXPECT_EQ(chart->font().pointSize(), 6);
}

TEST(Histogram, holds_ten_zeroes_that_are_in_no_chart)
{
    const Histogram histogram;
    const auto sets = histogram.findChildren<QBarSet *>();
    ASSERT_EQ(sets.size(), 1);
    EXPECT_EQ(sets[0]->label(), "");
    ASSERT_EQ(sets[0]->count(), 10);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(sets[0]->at(i), 0.0);
    const auto series = histogram.findChildren<QBarSeries *>();
    ASSERT_EQ(series.size(), 1);
    EXPECT_EQ(series[0]->count(), 0);
    EXPECT_EQ(series[0]->chart(), nullptr);
}

TEST(Histogram, is_blank)
{
    Histogram histogram;
    histogram.setFixedSize(300, 200);
    histogram.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&histogram));
    const QImage picture = histogram.viewport()->grab().toImage();
    const QColor paper = picture.pixelColor(picture.rect().center());
    EXPECT_EQ(paper, QColor(Qt::white));
    // Everything within the frame's outermost line is paper.
    for (int y = 2; y < picture.height() - 2; ++y) {
        for (int x = 2; x < picture.width() - 2; ++x)
            ASSERT_EQ(picture.pixelColor(x, y), paper) << x << ", " << y;
    }
}

TEST(Histogram, declares_its_signal_and_its_slot)
{
    const QMetaObject &meta = Histogram::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod signal = meta.method(meta.methodOffset());
    const QMetaMethod slot = meta.method(meta.methodOffset() + 1);
    EXPECT_EQ(signal.methodType(), QMetaMethod::Signal);
    EXPECT_EQ(signal.methodSignature(), "barValue(QString)");
    EXPECT_EQ(slot.methodType(), QMetaMethod::Slot);
    EXPECT_EQ(slot.methodSignature(), "barHovered(bool,int,QBarSet*)");
}

TEST(Histogram, takes_the_hovering_of_a_bar_series_and_reports_nothing)
{
    Histogram histogram;
    EXPECT_NE(QMetaType::type("QBarSet*"), int(QMetaType::UnknownType));
    QSignalSpy values(&histogram, &Histogram::barValue);
    QBarSeries series;
    QBarSet set{QString()};
    ASSERT_TRUE(QObject::connect(&series, SIGNAL(hovered(bool, int, QBarSet *)), &histogram,
                                 SLOT(barHovered(bool, int, QBarSet *)), Qt::QueuedConnection));
    for (bool status : {true, false})
        emit series.hovered(status, 3, &set);
    QCoreApplication::processEvents();
    histogram.barHovered(true, 0, nullptr);
    EXPECT_EQ(values.size(), 0);
}

} // namespace
