// SPDX-License-Identifier: GPL-3.0-or-later
//
// The pictures of the import dialog.
#include "host/workbench/import_previews.h"
#include "tests/host/support/host_files.h"

#include <QTest>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

/// A plan whose anatomy is a mask: a ball of ones.
ImportPlan maskPlan()
{
    const auto voxels =
        std::make_shared<std::vector<uchar>>(static_cast<std::size_t>(Vmr::voxelCount));
    const auto square = [](std::size_t coordinate) {
        return (double(coordinate) - 128) * (double(coordinate) - 128);
    };
    for (std::size_t n = 0; n < voxels->size(); ++n)
        if (square(n & 255) + square(n >> 8 & 255) + square(n >> 16) < 60 * 60)
            (*voxels)[n] = 1;
    ImportPlan plan;
    plan.anatomy.voxels = std::shared_ptr<const void>(voxels, voxels->data());
    plan.anatomy.space = VmrSpace{{{{0, -1, 0}, {0, 0, -1}, {-1, 0, 0}}}, {128, 128, 128}};
    plan.grid.start = {48, 48, 48};
    plan.grid.size = {8, 8, 8};
    plan.grid.resolution = 20;
    return plan;
}

} // namespace

TEST(GridPreviewTest, AMaskIsSeenAtOnce)
{
    GridPreview preview;
    preview.resize(768, 300);
    preview.show(maskPlan());
    const QImage image = preview.grab().toImage();
    // In the middle of the second picture, between the lines of the grid, and outside the ball.
    EXPECT_GT(qGray(image.pixel(384 + 5, 128 + 5)), 200);
    EXPECT_LT(qGray(image.pixel(256 + 8, 8)), 40);
}

} // namespace corvane
