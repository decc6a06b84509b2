// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/ring_geometry.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

constexpr double pi = 3.14159265358979323846;
constexpr QSize chartSize(660, 660);

/// volatile, or g++ 12 drops two such conversions side by side.
double single(double value)
{
    const volatile float narrow = float(value);
    return double(narrow);
}

TEST(RingNodes, has_its_first_node_one_step_past_angle_zero_and_its_last_at_a_full_turn)
{
    for (const quint32 n : {1u, 2u, 3u, 10u, 116u}) {
        const Ring ring = makeRing(n);
        ASSERT_EQ(ring.angles.size(), int(n));
        ASSERT_EQ(ring.positions.size(), int(n));
        for (int k = 0; k < int(n); ++k) {
            const double angle = 2 * pi * (k + 1) / n;
            EXPECT_NEAR(ring.angles[k], angle, 2e-5) << k << " of " << n;
            EXPECT_NEAR(ring.positions[k].x(), 320 + 640.0 / 3 * std::cos(angle), 5e-3);
            EXPECT_NEAR(ring.positions[k].y(), 320 + 640.0 / 3 * std::sin(angle), 5e-3);
        }
    }
}

TEST(RingNodes, is_computed_in_single_precision_but_for_sine_and_cosine)
{
    const Ring ring = makeRing(3);
    const float step = 120.0f * 0.017453292f;
    EXPECT_EQ(ring.angles[0], double(step));
    EXPECT_EQ(ring.angles[1], double(step + step));
    EXPECT_EQ(ring.angles[2], double(step + step + step));
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(ring.positions[k].x(),
                  single(std::cos(ring.angles[k]) * 213.3333282470703 + 320.0));
        EXPECT_EQ(ring.positions[k].y(),
                  single(std::sin(ring.angles[k]) * 213.3333282470703 + 320.0));
    }
}

TEST(RingNodes, without_nodes_is_empty)
{
    EXPECT_TRUE(makeRing(0).angles.isEmpty());
    EXPECT_TRUE(makeRing(0).positions.isEmpty());
}

TEST(EdgeControlPoint, lies_halfway_to_a_point_ten_units_above_the_centre)
{
    EXPECT_EQ(edgeControlPoint({100, 200}, {300, 400}), QPointF(260, 315));
    EXPECT_EQ(edgeControlPoint({300, 400}, {100, 200}), QPointF(260, 315));
    // A chord through the centre is bent all the same.
    EXPECT_EQ(edgeControlPoint({120, 320}, {520, 320}), QPointF(320, 325));
    EXPECT_EQ(edgeControlPoint({320, 330}, {320, 330}), QPointF(320, 330));
}

TEST(MirroredNode, is_told_for_each_position)
{
    const auto all = [](int n) {
        std::vector<int> nodes;
        for (int k = 0; k < n; ++k)
            nodes.push_back(mirroredNode(k, n));
        return nodes;
    };
    EXPECT_EQ(all(1), std::vector<int>({0}));
    EXPECT_EQ(all(2), std::vector<int>({0, 1}));
    EXPECT_EQ(all(3), std::vector<int>({1, 0, 2}));
    EXPECT_EQ(all(10), std::vector<int>({8, 7, 6, 5, 4, 3, 2, 1, 0, 9}));
}

TEST(LabelPlacement, depends_on_the_side_of_the_centre)
{
    struct Row {
        const char *side;
        QPointF node;
        double rotation; // beyond the angle's degrees, or in all where there is no turn
        bool turned;
        QPointF outwards; // from the node to the label
    };
    // The centre of the chart is (330, 330); 3, 4 and 5 make whole numbers.
    const Row rows[] = {
        {"left, below", {330 - 30, 330 + 40}, 180, true, {-36.0 * 2, 48.0 * 2}},
        {"left, above", {330 - 40, 330 - 30}, 180, true, {-48.0 * 2, -36.0 * 2}},
        {"right, below", {330 + 30, 330 + 40}, 0, true, {36.0 * 1.25, 48.0 * 1.25}},
        {"right, above", {330 + 40, 330 - 30}, 0, true, {48.0 * 1.25, -36.0 * 1.25}},
        {"straight left", {230, 330}, 0, false, {-60.0 + 5, 0.0 + 5}},
        {"straight right", {430, 330}, 0, false, {60.0 + 5, 0.0 + 5}},
        {"straight down", {330, 430}, 0, false, {0.0 + 5, 60.0 + 5}},
        {"straight up", {330, 230}, 0, false, {0.0 + 5, -60.0 + 5}},
    };
    constexpr double angle = 0.7;
    for (const Row &row : rows) {
        const LabelPlacement placement = placeLabel(angle, row.node, chartSize);
        const double turn = row.turned ? angle * 180.0 / 3.14156 : 0.0;
        EXPECT_DOUBLE_EQ(placement.rotation, turn + row.rotation) << row.side;
        EXPECT_NEAR(placement.position.x(), row.node.x() + row.outwards.x(), 5e-5) << row.side;
        EXPECT_NEAR(placement.position.y(), row.node.y() + row.outwards.y(), 5e-5) << row.side;
    }
}

TEST(LabelPlacement, takes_the_centre_from_the_charts_size)
{
    const LabelPlacement placement = placeLabel(0.0, {60, 80}, QSize(40, 60));
    // From (20, 30), (40, 50) points to the right and downwards.
    const double length = std::hypot(40.0, 50.0);
    EXPECT_NEAR(placement.position.x(), 60 + 40 / length * 60 * 1.25, 5e-5);
    EXPECT_NEAR(placement.position.y(), 80 + 50 / length * 60 * 1.25, 5e-5);
}

} // namespace
