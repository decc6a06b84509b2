// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/cleaning_ledger.h"
#include "host/workbench/condition_colours.h"
#include "host/workbench/time_course_view.h"

#include <QCoreApplication>
#include <QImage>
#include <QKeyEvent>
#include <QSettings>
#include <gtest/gtest.h>
#include <limits>
#include <set>

namespace corvane
{

namespace
{

QImage picture(const std::vector<double> &samples, const QSize &size)
{
    TimeCourseView view;
    view.resize(size);
    TimeCourseScene scene;
    scene.samples = samples;
    scene.repetitionTime = 2;
    view.show(std::move(scene));
    QImage image(size, QImage::Format_RGB32);
    view.render(&image);
    return image;
}

/// The line of the samples in the middle column, which is darker than the grid.
bool hasLine(const QImage &image)
{
    for (int y = 0; y < image.height() * 3 / 4; ++y)
        if (qGray(image.pixel(image.width() / 2, y)) < 100)
            return true;
    return false;
}

// One value throughout, however large, stands in the middle of a range of its own.
TEST(TimeCourseViewTest, DrawsVoxelsThatNeverChange)
{
    for (double value : {0.0, 100.0, -3.0e4, 1e30, -std::numeric_limits<double>::max() / 4})
        EXPECT_TRUE(hasLine(picture(std::vector<double>(20, value), {400, 200}))) << value;
}

TEST(TimeCourseViewTest, TellsHowTheRunWasCleaned)
{
    TimeCourseView view;
    TimeCourseScene scene;
    scene.samples = {1, 2, 3};
    scene.repetitionTime = 2;
    view.show(scene);
    EXPECT_EQ(view.caption(), QStringLiteral("Volume (one each 2 s)"));
    CleaningLedger ledger;
    ledger.method = QStringLiteral("36P, order joint");
    ledger.volumes = 200;
    ledger.kept = 154;
    ledger.degreesOfFreedom = 110;
    scene.cleaning = ledgerText(ledger);
    view.show(scene);
    EXPECT_EQ(view.caption(),
              QStringLiteral("Volume (one each 2 s), cleaned: 36P, order joint: 154 of 200 volumes "
                             "kept, 110 degrees of freedom left"));
}

// The second line has a colour of its own, a name, and room on the axis.
TEST(TimeCourseViewTest, DrawsTheCourseBeforeTheCleaningWithItsName)
{
    TimeCourseView view;
    view.resize(600, 200);
    TimeCourseScene scene;
    scene.samples = {1, 2, 3, 2};
    scene.repetitionTime = 2;
    const auto reds = [&](bool above) {
        view.show(scene);
        QImage image(view.size(), QImage::Format_RGB32);
        view.render(&image);
        const int border = view.fontMetrics().height() + 6;
        int count = 0;
        for (int y = above ? 0 : border; y < (above ? border : image.height()); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QColor colour(image.pixel(x, y));
                count += colour.red() > 150 && colour.green() < 110 && colour.blue() < 110;
            }
        return count;
    };
    EXPECT_EQ(reds(false) + reds(true), 0);
    scene.before = {10, 20, 30, 15};
    EXPECT_GT(reds(false), 300);
    EXPECT_GT(reds(true), 10);
    QKeyEvent home(QEvent::KeyPress, Qt::Key_Home, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &home);
    EXPECT_EQ(view.markedText(), QStringLiteral("Volume 1 (0 s): 1, before cleaning 10"));
}

TEST(TimeCourseViewTest, DrawsNothingWhereThereIsNoRoom)
{
    const std::vector<double> samples = {1, 2, 3};
    for (const QSize &size : {QSize(300, 10), QSize(300, 40), QSize(20, 200), QSize(1, 1)})
        EXPECT_FALSE(picture(samples, size).isNull());
}

/// What is painted behind a volume of a run with these conditions, each of two volumes.
QRgb bandAt(const QStringList &names, int volume)
{
    TimeCourseView view;
    view.resize(600, 200);
    TimeCourseScene scene;
    scene.samples = std::vector<double>(8, 5);
    scene.repetitionTime = 2;
    int first = 1;
    for (const QString &name : names) {
        scene.conditions.push_back({name, {{first, first + 1}}});
        first += 2;
    }
    view.show(std::move(scene));
    QImage image(view.size(), QImage::Format_RGB32);
    view.render(&image);
    return image.pixel(600 * (2 * volume + 2) / 18 + 20, 60);
}

TEST(TimeCourseViewTest, GivesAConditionOneColourInEveryRun)
{
    QSettings().clear();
    const QStringList names{QStringLiteral("rest"), QStringLiteral("go"), QStringLiteral("stop")};
    const QColor rest = conditionColour(names[0]);
    const QColor go = conditionColour(names[1]);
    EXPECT_NE(rest, go);
    EXPECT_NE(bandAt(names, 1), bandAt(names, 3));
    // In another run they come in another order, and not all of them.
    EXPECT_EQ(bandAt({names[1], names[0]}, 1), bandAt(names, 3));
    EXPECT_EQ(bandAt({names[1], names[0]}, 3), bandAt(names, 1));
    EXPECT_EQ(conditionColour(names[1]), go);
    // Many names have many colours, and each keeps its own.
    std::set<QRgb> colours;
    for (int n = 0; n < 30; ++n)
        colours.insert(conditionColour(QString::number(n)).rgb());
    EXPECT_EQ(colours.size(), 30U);
    EXPECT_EQ(conditionColour(names[0]), rest);
    // The list of names ends somewhere; the oldest makes room.
    for (int n = 0; n < 300; ++n)
        conditionColour(QStringLiteral("more %1").arg(n));
    EXPECT_EQ(QSettings().value(QStringLiteral("conditionColours")).toStringList().size(), 256);
}

} // namespace

} // namespace corvane
