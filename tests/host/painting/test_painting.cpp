// SPDX-License-Identifier: GPL-3.0-or-later
// Matrices, networks and the course of a run painted off any screen.
#include "host/painting/carpet_painting.h"
#include "host/painting/category_colours.h"
#include "host/painting/colour_map.h"
#include "host/painting/coverage_painting.h"
#include "host/painting/curve_painting.h"
#include "host/painting/design_painting.h"
#include "host/painting/grey_cells.h"
#include "host/painting/histogram_painting.h"
#include "host/painting/labels.h"
#include "host/painting/matrix_painting.h"
#include "host/painting/ring_painting.h"
#include "host/painting/scatter_painting.h"
#include "host/painting/volume_axis.h"

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

/// The picture in a square of that side, with a frame of 50 green pixels that it must leave alone.
template <typename Picture>
QImage painted(void (*paint)(QPainter &, const QRectF &, const Picture &), const Picture &picture,
               int side)
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

// ---- networks of nodes

NetworkPicture groupedNetwork(int nodes)
{
    NetworkPicture picture = network(nodes);
    picture.values.setConstant(NAN);
    picture.title.clear();
    picture.groups = {{QStringLiteral("Visual"), 0, nodes / 2},
                      {QStringLiteral("Limbic"), nodes / 2, nodes - nodes / 2}};
    return picture;
}

TEST(CategoryColours, NoTwoOfTwentyAreAlike)
{
    for (int a = 0; a < 20; ++a)
        for (int b = 0; b < a; ++b) {
            const QColor one = categoryColour(a);
            const QColor other = categoryColour(b);
            EXPECT_GT(std::abs(one.red() - other.red()) + std::abs(one.green() - other.green()) +
                          std::abs(one.blue() - other.blue()),
                      25)
                << a << " and " << b;
        }
}

TEST(MatrixPainting, NetworksHaveTheirColoursInProportion)
{
    NetworkPicture picture = groupedNetwork(16);
    picture.groups[0].count = 4;
    picture.groups[1] = {QStringLiteral("Limbic"), 4, 12};
    const QImage image = painted(paintMatrix, picture, 600);
    const int first = countPixels(image, categoryColour(0));
    const int second = countPixels(image, categoryColour(1));
    EXPECT_GT(first, 500);
    EXPECT_NEAR(second, 3 * first, 0.1 * second);
    picture.groups.clear();
    const QImage plain = painted(paintMatrix, picture, 600);
    EXPECT_EQ(countPixels(plain, categoryColour(0)), 0);
}

TEST(MatrixPainting, NetworksStandAtTheLeftWhereNodesAreTooMany)
{
    // The bar above the map alone, then one at its left as well.
    const int few = countPixels(painted(paintMatrix, groupedNetwork(16), 600), categoryColour(1));
    const int many = countPixels(painted(paintMatrix, groupedNetwork(400), 600), categoryColour(1));
    EXPECT_GT(many, few * 3 / 2);
}

TEST(RingPainting, NetworksAreArcsOutsideTheirNodes)
{
    NetworkPicture picture = groupedNetwork(16);
    picture.groups = {{QStringLiteral("a"), 0, 4}, {QStringLiteral("b"), 4, 12}};
    const QImage image = painted(paintRing, picture, 500);
    // Clockwise from the top: the first quarter is at the upper right.
    int first = 0;
    int others = 0;
    int wrong = 0;
    int legend = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const bool inFirstQuarter = x > 330 && y < 220;
            const QColor colour = image.pixelColor(x, y);
            first += inFirstQuarter && colour == categoryColour(0) ? 1 : 0;
            others += colour == categoryColour(1) ? 1 : 0;
            wrong += inFirstQuarter && colour == categoryColour(1) ? 1 : 0;
            const bool inLegend = y > 450;
            legend += inLegend && colour == categoryColour(0) ? 1 : 0;
            wrong += !inLegend && (x < 270 || y > 340) && colour == categoryColour(0) ? 1 : 0;
        }
    EXPECT_EQ(legend, 11 * 11);
    EXPECT_GT(first, 300);
    EXPECT_GT(others, 2 * first);
    EXPECT_EQ(wrong, 0);
}

TEST(NetworkPictures, WithNetworksStayInTheirArea)
{
    for (const int nodes : {2, 16, 400}) {
        NetworkPicture picture = groupedNetwork(nodes);
        picture.groups[0].name = QString(80, QLatin1Char('W'));
        EXPECT_EQ(countPixels(painted(paintMatrix, picture, 700), Qt::green), greenPixels(700));
        EXPECT_EQ(countPixels(painted(paintRing, picture, 700), Qt::green), greenPixels(700));
    }
}

// ---- the course of a run, in a square of 500 pixels at (50, 50)

const QRectF square(50, 50, 500, 500);
const QColor band(246, 199, 178);

/// The pixel in the middle of a volume, at a height of the plot from 0 at the bottom to 1.
QColor at(const QImage &image, int volume, int volumes, double height)
{
    const QRectF plot = volumeArea(square);
    const double x =
        (volumePlace(plot, volume, volumes) + volumePlace(plot, volume + 1, volumes)) / 2;
    return image.pixelColor(int(x), int(plot.bottom() - height * plot.height()));
}

bool isLine(const QColor &colour)
{
    return colour.blue() > colour.red() + 60;
}

/// The height of the topmost pixel of the curve above a volume, so many pixels to the right of its
/// middle; -1 where there is none.
double heightOf(const QImage &image, int volume, int volumes, int right = 0)
{
    const QRectF plot = volumeArea(square);
    const double x =
        (volumePlace(plot, volume, volumes) + volumePlace(plot, volume + 1, volumes)) / 2;
    for (int y = int(plot.top()); y < plot.bottom() - 2; ++y)
        if (isLine(image.pixelColor(int(x) + right, y)))
            return (plot.bottom() - y) / plot.height();
    return -1;
}

CurvePicture curve(const std::vector<double> &values)
{
    CurvePicture picture;
    picture.title = QStringLiteral("a curve");
    picture.values = Eigen::Map<const Eigen::ArrayXd>(values.data(), Eigen::Index(values.size()));
    picture.leftOut.assign(values.size(), false);
    return picture;
}

TEST(CurvePainting, TheLineStandsAtItsValues)
{
    const CurvePicture picture = curve({1, 1, 1, 4, 4, 4, 4, 4, 2, 2});
    const double top = curveTop(picture);
    EXPECT_NEAR(top, 4.2, 1e-9);
    const QImage image = painted(paintCurve, picture, 500);
    EXPECT_NEAR(heightOf(image, 1, 10), 1 / top, 0.02);
    EXPECT_NEAR(heightOf(image, 5, 10), 4 / top, 0.02);
    EXPECT_NEAR(heightOf(image, 9, 10), 2 / top, 0.02);
    EXPECT_EQ(countPixels(image, Qt::green), greenPixels(500));
}

TEST(CurvePainting, VolumesLeftOutAreBandsAndMissingValuesAreGaps)
{
    CurvePicture picture = curve({1, 1, 1, NAN, 1, 1, 1, 1, 1, 1});
    picture.leftOut[3] = true;
    picture.leftOut[9] = true;
    const QImage image = painted(paintCurve, picture, 500);
    for (int volume = 0; volume < 10; ++volume)
        EXPECT_EQ(at(image, volume, 10, 0.2) == band, volume == 3 || volume == 9) << volume;
    EXPECT_EQ(heightOf(image, 3, 10), -1);
    EXPECT_GT(heightOf(image, 2, 10), 0.8);
    EXPECT_GT(heightOf(image, 9, 10), 0.8);
}

TEST(CurvePainting, AFewSpikesDoNotStretchTheScale)
{
    std::vector<double> values(100, 0.1);
    values[40] = 30;
    CurvePicture picture = curve(values);
    EXPECT_NEAR(curveTop(picture), 0.4, 1e-9);
    picture.threshold = 0.5;
    EXPECT_NEAR(curveTop(picture), 1, 1e-9);
    const QImage image = painted(paintCurve, picture, 500);
    // An arrow at the top, wider than the line, tells of the spike, a dashed line of the threshold.
    EXPECT_GT(heightOf(image, 40, 100), 0.97);
    EXPECT_GT(heightOf(image, 40, 100, 3), 0.95);
    EXPECT_EQ(heightOf(image, 80, 100), heightOf(image, 20, 100));
    int dashes = 0;
    for (int volume = 0; volume < 100; ++volume) {
        const QColor colour = at(image, volume, 100, 0.5);
        dashes += colour.red() > colour.blue() + 60 ? 1 : 0;
    }
    EXPECT_GT(dashes, 30);
}

TEST(CurvePainting, WithoutValuesThereIsAnEmptyPlot)
{
    for (const std::vector<double> &values :
         {std::vector<double>{}, std::vector<double>{NAN, NAN}, std::vector<double>{0, 0, 0}}) {
        const QImage image = painted(paintCurve, curve(values), 300);
        EXPECT_EQ(countPixels(image, Qt::green), greenPixels(300));
    }
}

CarpetPicture carpet()
{
    CarpetPicture picture;
    picture.values = Eigen::MatrixXd::Zero(4, 10);
    picture.values.row(0).setConstant(-3);
    picture.values.row(1).setConstant(3);
    picture.values.row(3).setConstant(NAN);
    picture.values(0, 5) = picture.values(1, 5) = picture.values(2, 5) = NAN;
    picture.limit = 2;
    picture.leftOut.assign(10, false);
    picture.leftOut[5] = true;
    return picture;
}

TEST(CarpetPainting, NodesRunFromTheTopInGreyValues)
{
    const QImage image = painted(paintCarpet, carpet(), 500);
    EXPECT_EQ(at(image, 2, 10, 0.875), QColor(Qt::black));
    EXPECT_EQ(at(image, 2, 10, 0.625), QColor(Qt::white));
    const QColor grey = at(image, 2, 10, 0.375);
    EXPECT_NEAR(grey.red(), 128, 10);
    EXPECT_EQ(grey.red(), grey.blue());
    EXPECT_EQ(at(image, 2, 10, 0.125), QColor(214, 226, 240));
    EXPECT_EQ(at(image, 5, 10, 0.875), band);
    EXPECT_NE(at(image, 6, 10, 0.875), band);
    EXPECT_EQ(countPixels(image, Qt::green), greenPixels(500));
}

TEST(CarpetPainting, NetworksStandBesideTheirNodes)
{
    CarpetPicture picture = carpet();
    picture.groups = {{QStringLiteral("one"), 0, 1}, {QStringLiteral("three"), 1, 3}};
    const QImage image = painted(paintCarpet, picture, 500);
    const int one = countPixels(image, categoryColour(0));
    const int three = countPixels(image, categoryColour(1));
    EXPECT_GT(one, 500);
    EXPECT_NEAR(three, 3 * one, 0.1 * three);
}

TEST(GreyCells, TablesLargerThanThePictureAreAveraged)
{
    Eigen::MatrixXd table(4, 6);
    table << 1, 3, 5, 7, NAN, 9, //
        3, 5, 7, 9, NAN, NAN,    //
        0, 0, 0, 0, 0, 0,        //
        2, 2, 2, 2, 2, 2;
    Eigen::MatrixXd wanted(2, 3);
    wanted << 3, 7, 9, //
        1, 1, 1;
    EXPECT_EQ(reduced(table, 2, 3), wanted);
    EXPECT_EQ(reduced(table, 100, 100).cols(), 6);
    EXPECT_TRUE(std::isnan(reduced(table.block(0, 4, 2, 2), 2, 1)(1, 0)));
    EXPECT_EQ(reduced(Eigen::MatrixXd(0, 0), 5, 5).size(), 0);
}

TEST(CarpetPainting, ManyNodesAndVolumesStayInTheirArea)
{
    for (const auto &[nodes, volumes] : {std::pair(0, 0), {1, 1}, {400, 1200}, {2000, 3000}}) {
        CarpetPicture picture;
        picture.values = Eigen::MatrixXd::Ones(nodes, volumes);
        picture.leftOut.assign(std::size_t(volumes), false);
        const QImage image = painted(paintCarpet, picture, 300);
        EXPECT_EQ(countPixels(image, Qt::green), greenPixels(300)) << nodes;
    }
}

TEST(DesignPainting, EachColumnHasItsOwnScale)
{
    DesignPicture picture;
    picture.names = QStringList{QStringLiteral("small"), QStringLiteral("large")};
    picture.columns.resize(2, 2);
    picture.columns << -0.001, 500, //
        0.0005, -500;
    const QImage image = painted(paintDesign, picture, 400);
    const auto grey = [&](int x, int y) { return image.pixelColor(50 + x, 50 + y).red(); };
    EXPECT_EQ(grey(100, 60), 0);
    EXPECT_NEAR(grey(100, 240), 191, 4);
    EXPECT_EQ(grey(300, 60), 255);
    EXPECT_EQ(grey(300, 240), 0);
    EXPECT_EQ(countPixels(image, Qt::green), greenPixels(400));
}

TEST(DesignPainting, AnyNumberOfColumnsStaysInItsArea)
{
    for (const int columns : {0, 1, 60, 500}) {
        DesignPicture picture;
        picture.columns = Eigen::MatrixXd::Ones(30, columns);
        for (int column = 0; column < columns; ++column)
            picture.names += QString(100, QLatin1Char('w'));
        const QImage image = painted(paintDesign, picture, 300);
        EXPECT_EQ(countPixels(image, Qt::green), greenPixels(300)) << columns;
    }
}

// ---- coverage

CoveragePicture coverage()
{
    CoveragePicture picture;
    for (AtlasView &view : picture.views) {
        view.values.resize(2, 2);
        view.values << 1, 0.2, 0.8, 1;
        view.width = view.height = 100;
    }
    picture.coverage = {1, 0.2, 1, 1};
    picture.least = 0.5;
    return picture;
}

TEST(CoveragePainting, NodesBelowTheLimitAreRed)
{
    EXPECT_EQ(coverageColour(0.49, 0.5), QColor(200, 30, 40));
    EXPECT_EQ(coverageColour(0, 0), QColor(200, 30, 40));
    EXPECT_EQ(coverageColour(NAN, 0), QColor(200, 30, 40));
    EXPECT_EQ(coverageColour(1, 0.5), QColor(222, 226, 110));
    EXPECT_NE(coverageColour(0.6, 0.5), coverageColour(0.9, 0.5));
}

TEST(CoveragePainting, ViewsShowTheNodesWhereTheyAre)
{
    const QImage image = painted(paintCoverage, coverage(), 500);
    const int full = countPixels(image, coverageColour(1, 0.5));
    const int lost = countPixels(image, coverageColour(0.2, 0.5));
    // In the views two squares to one, in the bars three full ones to one of a fifth.
    EXPECT_GT(lost, 3 * 40 * 40);
    EXPECT_GT(full, 2 * lost);
    EXPECT_EQ(countPixels(image, Qt::green), greenPixels(500));

    // At the right of the first row.
    const auto firstRow = [&](const QColor &colour) {
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y) == colour)
                    return y;
        return -1;
    };
    EXPECT_EQ(firstRow(coverageColour(0.2, 0.5)), firstRow(coverageColour(1, 0.5)));

    CoveragePicture viewsOnly = coverage();
    viewsOnly.coverage.clear();
    const QImage views = painted(paintCoverage, viewsOnly, 500);
    EXPECT_NEAR(countPixels(views, coverageColour(1, 0.5)),
                2 * countPixels(views, coverageColour(0.2, 0.5)), 600);
}

TEST(CoveragePainting, BarsRiseFromTheLeft)
{
    CoveragePicture picture = coverage();
    for (AtlasView &view : picture.views)
        view.values.setConstant(NAN);
    const QImage image = painted(paintCoverage, picture, 500);
    int lastRed = 0;
    int firstFull = image.width();
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == coverageColour(0.2, 0.5))
                lastRed = std::max(lastRed, x);
            if (image.pixelColor(x, y) == coverageColour(1, 0.5))
                firstFull = std::min(firstFull, x);
        }
    EXPECT_GT(lastRed, 60);
    EXPECT_GT(firstFull, lastRed);
}

// ---- distributions

TEST(HistogramPainting, StepsStandWhereTheValuesAre)
{
    HistogramPicture picture;
    picture.title = QStringLiteral("r");
    picture.low = -1;
    picture.high = 1;
    picture.samples = {{QStringLiteral("low"), std::vector<double>(50, -0.9), Qt::blue},
                       {QStringLiteral("high"), {0.9, 0.91, 7, NAN}, Qt::red}};
    const QImage image = painted(paintHistogram, picture, 400);
    int blueRight = 0;
    int blueLeft = 0;
    int redRight = 0;
    for (int y = 100; y < 350; ++y)
        for (int x = 50; x < 450; ++x) {
            const QColor colour = image.pixelColor(x, y);
            const bool isBlue = colour.blue() > colour.red() + 30;
            const bool isRed = colour.red() > colour.blue() + 30;
            blueLeft += isBlue && x < 250 ? 1 : 0;
            blueRight += isBlue && x >= 250 ? 1 : 0;
            redRight += isRed && x >= 250 ? 1 : 0;
        }
    EXPECT_GT(blueLeft, 500);
    EXPECT_EQ(blueRight, 0);
    EXPECT_GT(redRight, 500);
    EXPECT_EQ(countPixels(image, Qt::green), greenPixels(400));
}

TEST(StripPainting, ADotForEachValueInTheColourOfItsSample)
{
    HistogramPicture picture;
    picture.low = 0;
    picture.high = 10;
    picture.samples = {{QStringLiteral("done"), {1, 1, 5, NAN}, Qt::blue},
                       {QStringLiteral("others"), {9}, Qt::red}};
    const QImage image = painted(paintStrip, picture, 400);
    const int blue = countPixels(image, Qt::blue);
    const int red = countPixels(image, Qt::red);
    EXPECT_GT(red, 15);
    EXPECT_NEAR(blue, 3 * red, red);
    EXPECT_EQ(countPixels(image, Qt::green), greenPixels(400));
    picture.samples[0].values.assign(5000, 5);
    EXPECT_EQ(countPixels(painted(paintStrip, picture, 400), Qt::green), greenPixels(400));
}

TEST(VolumeAxis, StepsAreRound)
{
    EXPECT_EQ(roundStep(250, 10), 50);
    EXPECT_EQ(roundStep(100, 10), 10);
    EXPECT_NEAR(roundStep(0.31, 4), 0.1, 1e-12);
    EXPECT_EQ(roundStep(0, 5), 1);
    EXPECT_EQ(roundStep(NAN, 5), 1);
}

// ---- pairs of numbers

QImage paintedScatter(const ScatterPicture &picture)
{
    QImage image(600, 500, QImage::Format_RGB32);
    image.fill(Qt::green);
    QPainter painter(&image);
    paintScatter(painter, QRectF(50, 50, 500, 400), picture);
    return image;
}

/// Pixels that are more blue than red, as points are.
int bluePixels(const QImage &image, const QRect &area)
{
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            count += colour.blue() > colour.red() + 60 ? 1 : 0;
        }
    return count;
}

TEST(ScatterPainting, PointsStandWhereTheirNumbersAre)
{
    ScatterPicture picture;
    picture.xs.resize(3);
    picture.ys.resize(3);
    picture.xs << 0, 10, NAN;
    picture.ys << 0, 10, 5;
    const QImage rising = paintedScatter(picture);
    const QRect lowerLeft(130, 300, 150, 95), upperLeft(130, 90, 150, 95);
    EXPECT_GT(bluePixels(rising, lowerLeft), 20);
    EXPECT_EQ(bluePixels(rising, upperLeft), 0);
    picture.ys << 10, 0, 5;
    const QImage falling = paintedScatter(picture);
    EXPECT_EQ(bluePixels(falling, lowerLeft), 0);
    EXPECT_GT(bluePixels(falling, upperLeft), 20);
}

TEST(ScatterPainting, TheLineIsThatOfLeastSquares)
{
    ScatterPicture picture;
    picture.xs = Eigen::ArrayXd::LinSpaced(5, 0, 4);
    picture.ys.resize(5);
    picture.ys << 0, 2, 0, 2, 1; // slope 0.2, 0.6 at 0
    picture.low = 0;
    picture.high = 2;
    const int without = countPixels(paintedScatter(picture), {178, 24, 43});
    EXPECT_EQ(without, 0);
    picture.hasLine = true;
    const QImage image = paintedScatter(picture);
    // The first and the last column of pixels in which the line has its full colour.
    double first = -1, last = -1;
    for (int x = 0; x < image.width(); ++x)
        for (int y = 0; y < image.height(); ++y)
            if (image.pixelColor(x, y) == QColor(178, 24, 43)) {
                first = first < 0 ? y : first;
                last = y;
            }
    // y runs over 316 pixels, from 0 at 402 to 2 at 86.
    EXPECT_NEAR(first, 402 - 316 * (0.6 - 0.16 * 0.2) / 2, 4);
    EXPECT_NEAR(last, 402 - 316 * (0.6 + 4.16 * 0.2) / 2, 4);
}

TEST(ScatterPainting, AnyNumberOfPointsStaysInItsArea)
{
    for (const int points : {0, 1, 2, 80000}) {
        ScatterPicture picture;
        picture.title = QStringLiteral("A cloud");
        picture.x = picture.y = picture.foot = QStringLiteral("a name");
        picture.hasLine = true;
        picture.xs = Eigen::ArrayXd::LinSpaced(points, 0, 400).sin();
        picture.ys = Eigen::ArrayXd::LinSpaced(points, 0, 700).cos();
        picture.low = -0.5; // half of them are beyond
        picture.high = 0.5;
        EXPECT_EQ(countPixels(paintedScatter(picture), Qt::green), 600 * 500 - 500 * 400) << points;
    }
}

} // namespace
} // namespace corvane
