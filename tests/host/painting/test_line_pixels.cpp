// SPDX-License-Identifier: GPL-3.0-or-later
// Lines on pixels: shares of pixels computed here, and the same lines by a QPainter.
#include "host/painting/line_pixels.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <gmock/gmock.h>
#include <random>

namespace corvane
{
namespace
{

PixelLine straight(const QPointF &from, const QPointF &to, double width, const QColor &colour)
{
    return {from, (from + to) / 2, to, width, colour};
}

QImage painted(const QSize &size, const std::vector<PixelLine> &lines)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    paintLines(image, lines);
    return image;
}

/// The largest difference of any of the four bytes of a pixel.
int difference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
}

TEST(LinePixels, APixelHasTheShareThatIsCovered)
{
    // From y 9.75 to 10.75, and with its ends from x 4.5 to 20.5.
    const QImage image = painted({30, 20}, {straight({5, 10.25}, {20, 10.25}, 1, Qt::black)});
    for (int x = 5; x < 20; ++x) {
        EXPECT_EQ(qAlpha(image.pixel(x, 8)), 0);
        EXPECT_EQ(qAlpha(image.pixel(x, 9)), 64) << x;
        EXPECT_EQ(qAlpha(image.pixel(x, 10)), 191) << x;
        EXPECT_EQ(qAlpha(image.pixel(x, 11)), 0);
    }
    EXPECT_EQ(qAlpha(image.pixel(3, 10)), 0);
    EXPECT_EQ(qAlpha(image.pixel(4, 10)), 96);
    EXPECT_EQ(qAlpha(image.pixel(20, 10)), 96);
    EXPECT_EQ(qAlpha(image.pixel(21, 10)), 0);
}

TEST(LinePixels, ASlopeCoversWhatASampleOfEachPixelSays)
{
    for (const QPointF &to : {QPointF(37.3, 30.1), QPointF(30.6, 38.2), QPointF(3.2, 37.7)}) {
        const QPointF from(20.4, 4.8);
        const double width = 2.6;
        const QImage image = painted({42, 42}, {straight(from, to, width, Qt::black)});
        const QPointF way = (to - from) / std::hypot((to - from).x(), (to - from).y());
        const double length = QPointF::dotProduct(to - from, way);
        for (int y = 0; y < 42; ++y)
            for (int x = 0; x < 42; ++x) {
                int inside = 0;
                for (int n = 0; n < 1024; ++n) {
                    const QPointF place = QPointF(x + (n % 32 + 0.5) / 32, y + (n / 32 + 0.5) / 32);
                    const double along = QPointF::dotProduct(place - from, way);
                    const double aside =
                        QPointF::dotProduct(place - from, QPointF(-way.y(), way.x()));
                    inside += std::abs(aside) < width / 2 && along > -width / 2 &&
                              along < length + width / 2;
                }
                EXPECT_NEAR(qAlpha(image.pixel(x, y)), 255 * inside / 1024.0, 4) << x << ' ' << y;
            }
    }
}

TEST(LinePixels, CurvesAreThoseOfAPainter)
{
    // As edges of a ring: from rim to rim, bent towards the middle.
    std::mt19937 random(3);
    const QPointF middle(100, 100);
    const auto rim = [&](double turn) {
        return middle + 90 * QPointF(std::sin(6.283185 * turn), -std::cos(6.283185 * turn));
    };
    for (int n = 0; n < 60; ++n) {
        const double first = double(random() % 1000) / 1000;
        const double second = double(random() % 1000) / 1000;
        const double apart = std::abs(first - second);
        const QPointF from = rim(first);
        const QPointF to = rim(second);
        const QPointF control =
            middle + (1 - 2 * std::min(apart, 1 - apart)) * ((from + to) / 2 - middle);
        const QColor colour(200, 40, 60, 150);
        const QImage image = painted({200, 200}, {{from, control, to, 2.5, colour}});
        QImage other(200, 200, QImage::Format_ARGB32_Premultiplied);
        other.fill(Qt::transparent);
        QPainterPath path(from);
        path.quadTo(control, to);
        QPainter painter(&other);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(colour, 2.5));
        painter.drawPath(path);
        painter.end();
        double sum = 0;
        double all = 0;
        int worst = 0;
        for (int y = 0; y < 200; ++y)
            for (int x = 0; x < 200; ++x) {
                sum += qAlpha(image.pixel(x, y)) - qAlpha(other.pixel(x, y));
                all += qAlpha(other.pixel(x, y));
                worst = std::max(worst, difference(image.pixel(x, y), other.pixel(x, y)));
            }
        EXPECT_LE(worst, 30) << n;
        EXPECT_LE(std::abs(sum), 0.02 * all) << n;
    }
}

TEST(LinePixels, TheLaterIsAboveTheEarlier)
{
    const std::vector<PixelLine> lines{straight({2, 10}, {18, 10}, 4, Qt::red),
                                       straight({10, 2}, {10, 18}, 4, Qt::blue)};
    const QImage image = painted({20, 20}, lines);
    EXPECT_EQ(image.pixelColor(10, 10), QColor(Qt::blue));
    EXPECT_EQ(image.pixelColor(4, 10), QColor(Qt::red));
    const QImage other = painted({20, 20}, {lines[1], lines[0]});
    EXPECT_EQ(other.pixelColor(10, 10), QColor(Qt::red));
}

TEST(LinePixels, SeeThroughOnesAreMixed)
{
    const QColor half(255, 0, 0, 128);
    const QImage image = painted(
        {20, 20}, {straight({2, 10}, {18, 10}, 4, Qt::blue), straight({10, 2}, {10, 18}, 4, half)});
    EXPECT_EQ(qAlpha(image.pixel(10, 10)), 255);
    EXPECT_NEAR(qRed(image.pixel(10, 10)), 128, 1);
    EXPECT_NEAR(qBlue(image.pixel(10, 10)), 127, 1);
    EXPECT_EQ(qAlpha(image.pixel(10, 4)), 128);
}

TEST(LinePixels, LinesThatLeaveTheImageAreCut)
{
    std::vector<PixelLine> lines;
    std::mt19937 random(5);
    const auto place = [&] {
        const double x = double(random() % 300);
        return QPointF(x, double(random() % 300));
    };
    for (int n = 0; n < 60; ++n)
        lines.push_back({place(), place(), place(), 3, QColor(20, 90, 200, 120)});
    const QImage whole = painted({300, 300}, lines).copy(100, 120, 80, 70);
    for (PixelLine &line : lines)
        for (QPointF *point : {&line.from, &line.control, &line.to})
            *point -= QPointF(100, 120);
    const QImage part = painted({80, 70}, lines);
    for (int y = 0; y < 70; ++y)
        for (int x = 1; x < 79; ++x)
            EXPECT_LE(difference(part.pixel(x, y), whole.pixel(x, y)), 3) << x << ' ' << y;
}

TEST(LinePixels, APointIsASquareAndNothingPaintsNothing)
{
    const QImage image = painted({20, 20}, {straight({10, 10}, {10, 10}, 4, Qt::black)});
    int covered = 0;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            covered += qAlpha(image.pixel(x, y));
    EXPECT_EQ(covered, 16 * 255);
    EXPECT_EQ(painted({1, 1}, {}).pixel(0, 0), 0U);
}

} // namespace
} // namespace corvane
