// SPDX-License-Identifier: GPL-3.0-or-later
// Where nodes and edges stand in pictures of networks: places computed here from the picture's
// rules.
#include "host/painting/brain_painting.h"
#include "host/painting/category_colours.h"
#include "host/painting/colour_map.h"
#include "host/painting/course_painting.h"
#include "host/painting/matrix_painting.h"
#include "host/painting/measure_painting.h"
#include "host/painting/outline_path.h"
#include "host/painting/picture_colours.h"
#include "host/painting/ring_painting.h"
#include "host/painting/volume_axis.h"

#include <QImage>
#include <QPicture>
#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

const QRectF area(40, 30, 600, 500);

NetworkPicture network(int nodes)
{
    NetworkPicture picture;
    picture.title = QStringLiteral("A network");
    picture.values = Eigen::MatrixXd::Zero(nodes, nodes);
    for (int node = 0; node < nodes; ++node)
        picture.names += QStringLiteral("Region %1").arg(node);
    picture.edges.emplace();
    return picture;
}

template <typename Picture>
QImage painted(void (*paint)(QPainter &, const QRectF &, const Picture &), const Picture &picture,
               const QColor &paper = Qt::white)
{
    QImage image(700, 600, QImage::Format_RGB32);
    image.fill(Qt::green);
    QPainter painter(&image);
    painter.setBackground(paper);
    paint(painter, area, picture);
    return image;
}

template <typename Picture, typename Layout>
auto layoutOf(Layout (*layout)(const QPainter &, const QRectF &, const Picture &),
              const Picture &picture)
{
    QImage image(10, 10, QImage::Format_RGB32);
    const QPainter painter(&image);
    return layout(painter, area, picture);
}

TEST(MatrixPicture, HasDrawnEdgesAboveItsDiagonalAndAllValuesBelow)
{
    NetworkPicture picture = network(10);
    picture.values(2, 7) = picture.values(7, 2) = 0.9;
    picture.values(3, 8) = picture.values(8, 3) = -0.5;
    picture.edges->push_back({2, 7, 0.9});
    const QImage image = painted(paintMatrix, picture);
    const MatrixLayout layout = layoutOf(matrixLayout, picture);
    const auto colourAt = [&](int row, int column) {
        // A tenth of the map's side, without asking the layout for the cell.
        const double side = layout.map.width() / 10;
        return image.pixelColor(int(layout.map.left() + (column + 0.5) * side),
                                int(layout.map.top() + (row + 0.5) * side));
    };
    EXPECT_EQ(colourAt(2, 7), divergingColour(0.9, 1));
    EXPECT_EQ(colourAt(7, 2), divergingColour(0.9, 1));
    EXPECT_EQ(colourAt(8, 3), divergingColour(-0.5, 1));
    EXPECT_EQ(colourAt(3, 8), QColor(Qt::white));
}

TEST(MatrixPicture, NamesNeverOverlapHoweverLong)
{
    for (const int letters : {1, 10, 20, 40, 80})
        for (int nodes = 2; nodes < 80; ++nodes) {
            NetworkPicture picture = network(nodes);
            for (QString &name : picture.names)
                name = name.leftJustified(letters, QLatin1Char('m'));
            const MatrixLayout layout = layoutOf(matrixLayout, picture);
            if (layout.fit.every > nodes) // none is shown
                continue;
            EXPECT_GE(layout.map.height() / nodes * layout.fit.every, layout.fit.fontSize)
                << nodes << " nodes of " << letters << " letters";
        }
}

TEST(MatrixPicture, ShowsARangeOfNodes)
{
    NetworkPicture picture = network(100);
    picture.edges.reset();
    picture.values(52, 13) = 1;
    picture.rows = {50, 5};
    picture.columns = {10, 5};
    const MatrixLayout layout = layoutOf(matrixLayout, picture);
    const QImage image = painted(paintMatrix, picture);
    const QPointF place(layout.map.left() + layout.map.width() * 3.5 / 5,
                        layout.map.top() + layout.map.height() * 2.5 / 5);
    EXPECT_EQ(image.pixelColor(place.toPoint()), divergingColour(1, 1));
    EXPECT_EQ(layout.rowAt(place.y()), 52);
    EXPECT_EQ(layout.columnAt(place.x()), 13);
    EXPECT_EQ(layout.rowAt(layout.map.bottom() + 1), -1);
    EXPECT_EQ(layout.columnAt(layout.map.left() - 1), -1);
    EXPECT_TRUE(layout.cell(52, 13).contains(place));
}

TEST(RingPicture, DrawsItsEdgesAlone)
{
    NetworkPicture picture = network(8);
    picture.values.setConstant(0.9);
    picture.edges->push_back({0, 4, 1.0});
    const RingLayout ring = layoutOf(ringLayout, picture);
    const QImage image = painted(paintRing, picture);
    // From the top to the bottom through the centre; the pair 2 and 6 would cross it.
    EXPECT_EQ(image.pixelColor(ring.centre.toPoint()), divergingColour(1, 1));
    EXPECT_EQ(image.pixelColor((ring.centre + QPointF(ring.radius / 2, 0)).toPoint()),
              QColor(Qt::white));
    for (int node = 0; node < 8; ++node) {
        const double angle = node * 3.141592653589793 / 4;
        const QPointF at = ring.centre + ring.radius * QPointF(std::sin(angle), -std::cos(angle));
        EXPECT_EQ(ring.nodeAt(at), node);
        EXPECT_NEAR(ring.place(node, ring.radius).x(), at.x(), 1e-9);
    }
    EXPECT_EQ(ring.nodeAt(ring.centre), -1);
}

TEST(RingPicture, EdgesOnPixelsLookAsOneAfterTheOther)
{
    // A recording of the painter's calls has no pixels: played, it strokes one path after the
    // other.
    NetworkPicture picture = network(60);
    for (int n = 0; n < 1500; ++n)
        picture.edges->push_back({n % 60, (n * 7 + 1 + n / 60) % 60, 0.2 + 0.8 * n / 1500});
    const QImage layered = painted(paintRing, picture);
    QPicture recorded;
    {
        QPainter painter(&recorded);
        paintRing(painter, area, picture);
    }
    QImage plain(700, 600, QImage::Format_RGB32);
    plain.fill(Qt::green);
    {
        QPainter painter(&plain);
        painter.drawPicture(0, 0, recorded);
    }
    const RingLayout ring = layoutOf(ringLayout, picture);
    int worst = 0;
    const int reach = int(ring.radius * 0.8);
    for (int y = -reach; y < reach; ++y)
        for (int x = -reach; x < reach; ++x) {
            const QPoint at = ring.centre.toPoint() + QPoint(x, y);
            if (x * x + y * y < reach * reach)
                worst = std::max(worst, std::abs(qRed(layered.pixel(at)) - qRed(plain.pixel(at))));
        }
    EXPECT_LE(worst, 12);
    EXPECT_LT(qGreen(layered.pixel(ring.centre.toPoint())), 200) << "there are edges";
}

TEST(RingPicture, NoTwoNamesOfNetworksOverlap)
{
    // Two hundred networks of two nodes: far more than there is room for. The inked parts of the
    // ring's rim around must leave paper between them.
    NetworkPicture picture = network(400);
    for (int n = 0; n < 200; ++n)
        picture.groups.push_back({QStringLiteral("Network"), 2 * n, 2});
    const RingLayout ring = layoutOf(ringLayout, picture);
    const QImage image = painted(paintRing, picture);
    const double distance = ring.radius + 11 + 4 + 4 + 10;
    int names = 0;
    int inked = 0;
    bool before = false;
    const int steps = 7200;
    for (int step = 0; step < steps; ++step) {
        const double angle = 2 * 3.141592653589793 * step / steps;
        bool isInk = false;
        for (double more = 0; more < 8; more += 0.5) {
            const QPointF at =
                ring.centre + (distance + more) * QPointF(std::sin(angle), -std::cos(angle));
            isInk = isInk || qGray(image.pixel(at.toPoint())) < 128;
        }
        names += isInk && !before ? 1 : 0;
        inked += isInk ? 1 : 0;
        before = isInk;
    }
    EXPECT_GT(names, 30);
    EXPECT_LT(names, 200);
    EXPECT_LT(inked, steps * 0.8);
}

BrainPicture threeNodes()
{
    BrainPicture picture;
    picture.network = network(3);
    picture.places = {Eigen::Vector3d(-40, 0, 0), Eigen::Vector3d(40, 50, 20), std::nullopt};
    return picture;
}

TEST(BrainPicture, LeftIsLeftAndTheFrontIsUpFromAboveAndLeftFromTheSide)
{
    BrainPicture picture = threeNodes();
    picture.network.groups = {{QStringLiteral("a"), 0, 1}, {QStringLiteral("b"), 1, 2}};
    const BrainLayout layout = brainLayout(area, picture);
    const QImage image = painted(paintBrain, picture);
    for (int panel = 0; panel < 3; ++panel)
        for (int node = 0; node < 2; ++node) {
            const QPointF place = layout.place(panel, *picture.places[std::size_t(node)]);
            EXPECT_EQ(image.pixelColor(place.toPoint()), categoryColour(node)) << panel;
            EXPECT_EQ(layout.panelAt(place), panel);
            EXPECT_EQ(layout.nodeAt(place + QPointF(2, 2), picture, 5), node);
            EXPECT_EQ(layout.nodeAt(place + QPointF(20, 20), picture, 5), -1);
        }
    const auto apart = [&](int panel) {
        return QPointF(layout.place(panel, *picture.places[1]) -
                       layout.place(panel, *picture.places[0])) /
               layout.scale;
    };
    // 80 mm to the right, 50 to the front and 20 up.
    EXPECT_NEAR(apart(0).x(), 80, 1e-9);
    EXPECT_NEAR(apart(0).y(), -50, 1e-9);
    EXPECT_NEAR(apart(1).x(), 80, 1e-9);
    EXPECT_NEAR(apart(1).y(), -20, 1e-9);
    EXPECT_NEAR(apart(2).x(), -50, 1e-9);
    EXPECT_NEAR(apart(2).y(), -20, 1e-9);
}

TEST(BrainPicture, DrawsEdgesBetweenPlacesAndNoneToNodesWithout)
{
    BrainPicture picture = threeNodes();
    const QImage none = painted(paintBrain, picture);
    picture.network.edges->push_back({1, 2, 1});
    picture.network.foot = QString();
    const QPointF middle = (brainLayout(area, picture).place(0, *picture.places[0]) +
                            brainLayout(area, picture).place(0, *picture.places[1])) /
                           2;
    EXPECT_EQ(painted(paintBrain, picture).pixelColor(middle.toPoint()), QColor(Qt::white));
    picture.network.edges->push_back({0, 1, 1});
    EXPECT_EQ(painted(paintBrain, picture).pixelColor(middle.toPoint()), divergingColour(1, 1));
}

TEST(OutlinePath, GoesAroundAShapeAndItsHoles)
{
    ShapeMask shape{40, 30, std::vector<bool>(1200, false)};
    for (int y = 5; y < 25; ++y)
        for (int x = 10; x < 35; ++x)
            shape.cells[std::size_t(y * 40 + x)] = x < 16 || x > 24 || y < 10 || y > 19;
    shape.cells[0] = true; // too small
    const QPainterPath path = outlineOf(shape);
    EXPECT_NEAR(path.boundingRect().left(), 10, 0.5);
    EXPECT_NEAR(path.boundingRect().right(), 35, 0.5);
    EXPECT_NEAR(path.boundingRect().top(), 5, 0.5);
    EXPECT_NEAR(path.boundingRect().bottom(), 25, 0.5);
    EXPECT_TRUE(path.contains(QPointF(12, 7)));
    EXPECT_FALSE(path.contains(QPointF(20, 15)));
    EXPECT_TRUE(outlineOf({3, 3, std::vector<bool>(9, false)}).isEmpty());
}

TEST(OutlinePath, CellsThatTouchAtACornerEndToo)
{
    ShapeMask shape{8, 8, std::vector<bool>(64, false)};
    for (int n = 0; n < 8; ++n)
        shape.cells[std::size_t(n * 8 + n)] = true;
    EXPECT_EQ(outlineOf(shape, 4).toSubpathPolygons().size(), 8);
}

TEST(CoursePictures, LeaveOutVolumesAndHaveBandsForConditions)
{
    CoursePicture picture;
    picture.title = QStringLiteral("a - b");
    picture.names = QStringList{QStringLiteral("a"), QStringLiteral("b")};
    picture.first = Eigen::ArrayXd::LinSpaced(20, -1, 1);
    picture.second = -picture.first;
    picture.leftOut.assign(20, false);
    picture.leftOut[4] = true;
    picture.bands = {{QStringLiteral("go"), 10, 14}};
    const QImage image = painted(paintCourses, picture);
    const double left = area.left() + 24;
    const double right = area.right() - axisRight;
    const auto at = [&](double volume, int y) {
        return image.pixelColor(int(left + (right - left) * (volume + 0.5) / 20), y);
    };
    const int y = int(area.bottom() - axisNumbers - 8);
    EXPECT_EQ(at(4, y), QColor(246, 199, 178));
    EXPECT_EQ(at(7, y), QColor(Qt::white));
    EXPECT_NE(at(12, y), QColor(Qt::white));
    EXPECT_EQ(at(16, y), QColor(Qt::white));
}

TEST(MeasurePictures, CurvesStandAtTheirValues)
{
    MeasurePicture picture;
    picture.densities = {0.1, 0.2, 0.3};
    picture.curves = {{QStringLiteral("Degree"), Eigen::Array3d(1, 4, 2), 2.75, {}, 0}};
    const QImage image = painted(paintMeasures, picture);
    // One plot for all: its frame is the area without title, foot and axes.
    const QRectF plot(area.left() + 46, area.top() + 30 + 22, area.width() - 46 - 24,
                      area.height() - 30 - 24 - 22 - 24);
    const double top = 4 * 1.08;
    const QPointF peak(plot.center().x(), plot.bottom() - plot.height() * 4 / top);
    EXPECT_GT(image.pixelColor(peak.toPoint()).blue(), image.pixelColor(peak.toPoint()).red() + 60);
    EXPECT_EQ(image.pixelColor((peak - QPointF(0, 6)).toPoint()), QColor(Qt::white));
    EXPECT_NE(image.pixelColor((peak + QPointF(0, 40)).toPoint()), QColor(Qt::white)) << "shaded";
}

TEST(DarkPictures, HaveDarkPaperAndLightInk)
{
    NetworkPicture picture = network(30);
    picture.values(3, 8) = picture.values(8, 3) = 1;
    picture.edges->push_back({3, 8, 1});
    BrainPicture brain = threeNodes();
    const std::vector<QImage> images{painted(paintMatrix, picture, darkPaper()),
                                     painted(paintRing, picture, darkPaper()),
                                     painted(paintBrain, brain, darkPaper())};
    for (const QImage &image : images) {
        int dark = 0, light = 0;
        for (int y = 30; y < 530; ++y)
            for (int x = 40; x < 640; ++x) {
                dark += image.pixelColor(x, y) == darkPaper() ? 1 : 0;
                light += qGray(image.pixel(x, y)) > 200 ? 1 : 0;
            }
        EXPECT_GT(dark, 150000);
        EXPECT_GT(light, 100);
        EXPECT_LT(light, 20000);
    }
}

TEST(PictureFoot, ALongTextIsWrittenWhole)
{
    // Its last word leaves ink, which is not there without it.
    const QRectF foot(10, 10, 230, 40);
    const auto inked = [&](const QString &text) {
        QImage image(300, 120, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setFont(QFont(QStringLiteral("Liberation Sans")));
        paintFoot(painter, foot, text);
        painter.end();
        QRect ink;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (qGray(image.pixel(x, y)) < 160)
                    ink |= QRect(x, y, 1, 1);
        return std::pair(ink, image);
    };
    const QString text =
        QStringLiteral("network 1 of d (greater, threshold 2.5, p 0.0396 by extent, "
                       "0.0198 by intensity): 43 edges. It is the network that is "
                       "significant, not its ");
    EXPECT_NE(inked(text + QStringLiteral("edges.")).second, inked(text).second);
    EXPECT_LE(inked(text + QStringLiteral("edges.")).first.bottom(), foot.bottom() + 1);
}

TEST(ColourMap, OnDarkHasADarkMiddleAndTheSameHues)
{
    EXPECT_EQ(divergingColour(0, 1, true), darkPaper());
    EXPECT_GT(divergingColour(1, 1, true).red(), divergingColour(1, 1, true).blue() + 60);
    EXPECT_GT(divergingColour(-1, 1, true).blue(), divergingColour(-1, 1, true).red() + 60);
    EXPECT_GT(qGray(divergingColour(1, 1, true).rgb()), qGray(divergingColour(0.5, 1, true).rgb()));
}

} // namespace
} // namespace corvane
