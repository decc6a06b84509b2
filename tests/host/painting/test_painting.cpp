// SPDX-License-Identifier: GPL-3.0-or-later
// Matrices and networks painted off any screen.
#include "host/painting/colour_map.h"
#include "host/painting/labels.h"
#include "host/painting/matrix_painting.h"
#include "host/painting/ring_painting.h"

#include <QImage>
#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

NetworkPicture network(int nodes)
{
    NetworkPicture picture;
    picture.title = QStringLiteral("A network");
    picture.values.resize(nodes, nodes);
    for (int i = 0; i < nodes; ++i) {
        picture.names += QStringLiteral("Region %1").arg(i);
        for (int j = 0; j < nodes; ++j)
            picture.values(i, j) = i == j ? 1 : std::sin(i + j);
    }
    return picture;
}

using PaintPicture = void (*)(QPainter &, const QRectF &, const NetworkPicture &);

/// The picture in a square of that side, with a frame of 50 green pixels that it must leave alone.
QImage painted(PaintPicture paint, const NetworkPicture &picture, int side)
{
    QImage image(side + 100, side + 100, QImage::Format_RGB32);
    image.fill(Qt::green);
    QPainter painter(&image);
    paint(painter, QRectF(50, 50, side, side), picture);
    return image;
}

int countPixels(const QImage &image, const QColor &colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == colour ? 1 : 0;
    return count;
}

int greenPixels(int side)
{
    return (side + 100) * (side + 100) - side * side;
}

TEST(ColourMap, BlueOverWhiteToRed)
{
    EXPECT_EQ(divergingColour(-2, 2), QColor(33, 102, 172));
    EXPECT_EQ(divergingColour(0, 2), QColor(255, 255, 255));
    EXPECT_EQ(divergingColour(2, 2), QColor(178, 24, 43));
    EXPECT_EQ(divergingColour(50, 2), QColor(178, 24, 43));
    EXPECT_EQ(divergingColour(0.5, 2), QColor(253, 219, 199));
    EXPECT_EQ(divergingColour(NAN, 2), QColor(200, 200, 200));
    EXPECT_EQ(divergingColour(1, 0), QColor(255, 255, 255));
}

TEST(Labels, NoTwoOverlapAtAnyNumberOfNodes)
{
    for (const double spacing : {0.3, 1.0, 2.25, 7.0, 9.0, 40.0}) {
        const LabelFit fit = fitLabels(spacing);
        EXPECT_LE(fit.fontSize, spacing * fit.every) << spacing;
        EXPECT_GE(fit.fontSize, 7);
        EXPECT_LE(fit.fontSize, 14);
    }
    EXPECT_EQ(fitLabels(40).every, 1);
    EXPECT_EQ(fitLabels(9).every, 1);
    EXPECT_GT(fitLabels(2).every, 1);
}

TEST(Ring, TheStrongestEdgesComeLast)
{
    Eigen::MatrixXd values(4, 4);
    values << 1, 0.2, -0.9, NAN, //
        0.2, 1, 0.5, 0.5,        //
        -0.9, 0.5, 1, 0,         //
        NAN, 0.5, 0, 1;
    const std::vector<RingEdge> edges = strongestEdges(values, 3);
    ASSERT_EQ(edges.size(), 3U);
    EXPECT_EQ(edges[2].from, 0);
    EXPECT_EQ(edges[2].to, 2);
    EXPECT_EQ(edges[2].value, -0.9);
    EXPECT_EQ(edges[1].to, 2);
    EXPECT_EQ(edges[0].to, 3);
    EXPECT_EQ(strongestEdges(values, 100).size(), 5U);
}

TEST(Ring, ManyNodesShowAsManyEdgesAsForty)
{
    EXPECT_EQ(edgesInRing(0), 0U);
    EXPECT_EQ(edgesInRing(1), 0U);
    EXPECT_EQ(edgesInRing(16), 120U);
    EXPECT_EQ(edgesInRing(400), 780U);
}

TEST(MatrixPainting, ACellHasTheColourOfItsValue)
{
    NetworkPicture picture;
    picture.names = QStringList{QStringLiteral("a"), QStringLiteral("b")};
    picture.values.resize(2, 2);
    picture.values << 1, -1, NAN, 1;
    const QImage image = painted(paintMatrix, picture, 600);
    const int red = countPixels(image, {178, 24, 43});
    const int blue = countPixels(image, {33, 102, 172});
    const int grey = countPixels(image, {200, 200, 200});
    EXPECT_GT(blue, 200 * 200);
    EXPECT_NEAR(grey, blue, 0.02 * blue);
    EXPECT_NEAR(red, 2 * blue, 0.02 * blue);
}

TEST(MatrixPainting, AnyNumberOfNodesStaysInItsArea)
{
    for (const int nodes : {0, 1, 16, 400}) {
        const QImage image = painted(paintMatrix, network(nodes), 700);
        EXPECT_EQ(countPixels(image, Qt::green), greenPixels(700)) << nodes;
    }
}

TEST(RingPainting, AnyNumberOfNodesStaysInItsArea)
{
    for (const int nodes : {0, 1, 2, 16, 400}) {
        const QImage image = painted(paintRing, network(nodes), 700);
        EXPECT_EQ(countPixels(image, Qt::green), greenPixels(700)) << nodes;
    }
}

TEST(RingPainting, TheScaleHasAllItsColours)
{
    // A ring without edges, so that all colour is that of the scale.
    NetworkPicture picture = network(3);
    picture.values.setConstant(NAN);
    const QImage image = painted(paintRing, picture, 500);
    int reddish = 0;
    int bluish = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            reddish += colour.red() > colour.blue() + 50 && colour.green() < 200 ? 1 : 0;
            bluish += colour.blue() > colour.red() + 50 && colour.green() < 220 ? 1 : 0;
        }
    EXPECT_GT(reddish, 500);
    EXPECT_GT(bluish, 500);
}

TEST(RingPainting, EdgesHaveTheColoursOfTheirSigns)
{
    NetworkPicture picture = network(3);
    picture.values.setConstant(1);
    const QImage positive = painted(paintRing, picture, 500);
    picture.values.setConstant(-1);
    const QImage negative = painted(paintRing, picture, 500);
    EXPECT_GT(countPixels(positive, {178, 24, 43}), countPixels(negative, {178, 24, 43}) + 300);
    EXPECT_GT(countPixels(negative, {33, 102, 172}), countPixels(positive, {33, 102, 172}) + 300);
}

} // namespace
} // namespace corvane
