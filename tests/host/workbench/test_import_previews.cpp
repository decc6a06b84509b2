// SPDX-License-Identifier: GPL-3.0-or-later
//
// The pictures of the import dialog.
#include "host/workbench/import_previews.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"

#include <QCheckBox>
#include <QComboBox>
#include <QSlider>
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

/// The slices, without the controls.
QImage pictureOf(const GridPreview &preview)
{
    return preview.findChild<QWidget *>(QStringLiteral("gridPicture"))->grab().toImage();
}

} // namespace

TEST(GridPreviewTest, AMaskIsSeenAtOnce)
{
    GridPreview preview;
    preview.resize(768, 300);
    preview.show(maskPlan());
    const QImage image = pictureOf(preview);
    // In the middle of the second picture, between the lines of the grid, and outside the ball.
    const int side = std::min(image.width() / 3, image.height());
    const QPoint middle = image.rect().center();
    EXPECT_GT(qGray(image.pixel(middle + QPoint(5, 5))), 200);
    EXPECT_LT(qGray(image.pixel(middle - QPoint(side / 2 - 12, side / 2 - 12))), 60);
}

TEST(GridPreviewTest, LettersAtTheEdgesTellTheSides)
{
    GridPreview preview;
    preview.resize(768, 300);
    ImportPlan plan = maskPlan();
    preview.show(plan);
    const QImage placed = pictureOf(preview);
    plan.anatomy.space.reset();
    preview.show(plan);
    const QImage unknown = pictureOf(preview);
    // At the four edges of each picture there is a letter, and none in a volume that says nothing.
    const int side = std::min(placed.width() / 3, placed.height());
    for (int n = 0; n < 3; ++n) {
        QRect picture(0, 0, side, side);
        picture.moveCenter(placed.rect().center() + QPoint((n - 1) * side, 0));
        for (const QPoint &place : {QPoint(picture.left() + 8, picture.center().y()),
                                    QPoint(picture.right() - 8, picture.center().y()),
                                    QPoint(picture.center().x(), picture.top() + 8),
                                    QPoint(picture.center().x(), picture.bottom() - 8)}) {
            const QRect box(place - QPoint(7, 7), QSize(14, 14));
            EXPECT_NE(placed.copy(box), unknown.copy(box)) << n << ' ' << place.x();
        }
    }
}

TEST(GridPreviewTest, TheMeanOfTheRunLiesOverTheAnatomyWhenAsked)
{
    const TemporaryFolder folder;
    // 8 x 8 x 8 voxels, two volumes whose mean is 5 everywhere.
    NiftiParts run;
    run.setSize({8, 8, 8, 2});
    std::vector<float> samples(2 * 512, 4.0F);
    std::fill(samples.begin() + 512, samples.end(), 6.0F);
    setSamples(run, samples);
    putBytes(folder.path("run.nii"), niftiBytes(run));
    ImportPlan plan = maskPlan();
    plan.request.functional = folder.path("run.nii");
    plan.grid.sourceSize = {8, 8, 8};
    GridPreview preview;
    preview.resize(768, 300);
    preview.show(plan);
    auto *const box = preview.findChild<QCheckBox *>(QStringLiteral("previewRun"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return box->isEnabled(); }));
    ASSERT_NE(preview.run(), nullptr);
    EXPECT_EQ(preview.run()->valueAt({128, 128, 128}), std::optional(5.0));
    EXPECT_EQ(preview.run()->valueAt({10, 10, 10}), std::nullopt);
    const QImage without = pictureOf(preview);
    box->click();
    const QImage with = pictureOf(preview);
    EXPECT_NE(with, without);
    preview.findChild<QSlider *>(QStringLiteral("previewOpacity"))->setValue(10);
    EXPECT_NE(pictureOf(preview), with);
    preview.findChild<QSlider *>(QStringLiteral("previewOpacity"))->setValue(60);
    EXPECT_EQ(pictureOf(preview), with);
    preview.findChild<QComboBox *>(QStringLiteral("previewColours"))->setCurrentIndex(1);
    EXPECT_NE(pictureOf(preview), with);
}

} // namespace corvane
