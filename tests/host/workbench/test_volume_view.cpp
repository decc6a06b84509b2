// SPDX-License-Identifier: GPL-3.0-or-later
//
// The volume, its VOIs and its time course in the main window, by mouse and keys.
#include "host/session/session.h"
#include "host/workbench/main_window.h"
#include "host/workbench/slice_view.h"
#include "host/workbench/time_course_view.h"
#include "host/workbench/voi_overlay.h"
#include "host/workbench/volume_view.h"
#include "tests/host/support/host_files.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QWheelEvent>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class VolumeViewTest : public testing::Test
{
protected:
    VolumeViewTest()
    {
        QSettings().clear();
        writeVmr(anatomy, zeroVmr());
        window.resize(1200, 900);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        window.openFiles({anatomy});
    }

    template <typename Widget>
    Widget *child(const char *name) const
    {
        auto *const found = window.findChild<Widget *>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    const CubeVoxel &cross() const { return view->scene().cross; }
    QString text(const char *label) const { return child<QLabel>(label)->text(); }
    void click(SliceView *slice, const CubeVoxel &voxel)
    {
        QTest::mouseClick(slice, Qt::LeftButton, Qt::NoModifier, slice->placeOf(voxel).toPoint());
    }
    void turnWheel(SliceView *slice, int angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWheelEvent event(QPointF(5, 5), slice->mapToGlobal(QPoint(5, 5)), QPoint(),
                          QPoint(0, angle), Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(slice, &event);
    }

    const TemporaryFolder folder;
    const QString anatomy = folder.path("head.vmr");
    Session session;
    Workspace &workspace = session.workspace();
    MainWindow window{session};
    VolumeView *view = window.findChild<VolumeView *>();
    SliceView *sagittal = child<SliceView>("Sagittal slice");
    SliceView *coronal = child<SliceView>("Coronal slice");
    SliceView *axial = child<SliceView>("Axial slice");
    TimeCourseView *timeCourse = child<TimeCourseView>("timeCourse");
};

} // namespace

TEST(VolumeView, ReadsTheWholeVolumeBeforeItsSlicesAreAskedFor)
{
    // A mapped file that gets room for a page when that page is looked at.
    const int file = memfd_create("volume", 0);
    Vmr vmr;
    const auto bytes = static_cast<std::size_t>(vmr.byteCount());
    ASSERT_EQ(ftruncate(file, vmr.byteCount()), 0);
    vmr.voxels = {mmap(nullptr, bytes, PROT_READ, MAP_SHARED, file, 0),
                  [bytes](void *data) { munmap(data, bytes); }};
    const auto bytesRead = [file] {
        struct stat state = {};
        fstat(file, &state);
        return 512 * state.st_blocks;
    };
    VolumeView view;
    EXPECT_EQ(bytesRead(), 0);
    view.showVolume(0, vmr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return bytesRead() == vmr.byteCount(); }));
    close(file);
}

TEST_F(VolumeViewTest, TheMouseMovesTheCrossHairInEachPlane)
{
    click(sagittal, {40, 90, 0});
    EXPECT_THAT(cross(), ElementsAre(40, 90, 128));
    click(coronal, {0, 100, 77});
    EXPECT_THAT(cross(), ElementsAre(40, 100, 77));
    click(axial, {200, 0, 33});
    EXPECT_THAT(cross(), ElementsAre(200, 100, 33));
    EXPECT_EQ(child<QSpinBox>("crossX")->value(), 200);
    EXPECT_EQ(child<QSpinBox>("crossZ")->value(), 33);
}

TEST_F(VolumeViewTest, APlaceOutsideTheVolumeIsItsEdge)
{
    // The slices are wider than high.
    ASSERT_GT(axial->width(), axial->height() + 20);
    QTest::mouseClick(axial, Qt::LeftButton, Qt::NoModifier, QPoint(1, axial->height() / 2));
    EXPECT_EQ(cross()[2], 0);
    QTest::mouseClick(axial, Qt::LeftButton, Qt::NoModifier,
                      QPoint(axial->width() - 2, axial->height() / 2));
    EXPECT_EQ(cross()[2], 255);
}

TEST_F(VolumeViewTest, TheKeysMoveTheCrossHairAndStopAtTheEdge)
{
    QTest::keyClick(coronal, Qt::Key_Right);
    QTest::keyClick(coronal, Qt::Key_Up);
    QTest::keyClick(coronal, Qt::Key_PageDown, Qt::ShiftModifier);
    EXPECT_THAT(cross(), ElementsAre(138, 127, 129));
    child<QSpinBox>("crossY")->setValue(250);
    EXPECT_EQ(cross()[1], 250);
    QTest::keyClick(sagittal, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(cross()[1], 255);
}

TEST_F(VolumeViewTest, TheWheelGoesThroughTheSlicesAlsoInSmallSteps)
{
    turnWheel(axial, -120);
    EXPECT_EQ(cross()[1], 129);
    turnWheel(axial, 60);
    EXPECT_EQ(cross()[1], 129);
    turnWheel(axial, 60);
    EXPECT_EQ(cross()[1], 128);
}

TEST_F(VolumeViewTest, ZoomKeepsTheCrossHairInSight)
{
    view->setCross({250, 128, 5});
    turnWheel(sagittal, 240, Qt::ControlModifier);
    EXPECT_NEAR(view->scene().zoom, 1.5625, 1e-9);
    EXPECT_EQ(child<QSpinBox>("zoom")->value(), 156);
    for (int n = 0; n < 30; ++n)
        QTest::keyClick(&window, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(view->scene().zoom, 16);
    for (SliceView *slice : {sagittal, coronal, axial})
        EXPECT_TRUE(slice->rect().contains(slice->placeOf(cross()).toPoint()));
    view->setCross({10, 10, 10});
    for (SliceView *slice : {sagittal, coronal, axial})
        EXPECT_TRUE(slice->rect().contains(slice->placeOf(cross()).toPoint()));
    QTest::keyClick(&window, Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(view->scene().zoom, 1);
    EXPECT_EQ(sagittal->voxelAt(QPointF(sagittal->width(), sagittal->height()) / 2)[0], 128);
}

TEST_F(VolumeViewTest, TellsWhatTheMousePointsAt)
{
    QTest::mouseMove(axial, axial->placeOf({60, 0, 70}).toPoint());
    EXPECT_EQ(text("mouse"), QStringLiteral("60, 128, 70: 0"));
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(axial, &leave);
    EXPECT_EQ(text("mouse"), QString());
}

TEST_F(VolumeViewTest, DraggingWithTheRightButtonChangesWindowAndLevel)
{
    view->setWindow({100, 50});
    const QPoint start(50, 50);
    QTest::mousePress(axial, Qt::RightButton, Qt::NoModifier, start);
    QMouseEvent drag(QEvent::MouseMove, start + QPoint(axial->width() / 2, 0), Qt::NoButton,
                     Qt::RightButton, Qt::NoModifier);
    QCoreApplication::sendEvent(axial, &drag);
    QTest::mouseRelease(axial, Qt::RightButton);
    EXPECT_NEAR(view->scene().window.width, 100, 0.5);
    EXPECT_EQ(view->scene().window.level, 100);
    EXPECT_EQ(child<QSpinBox>("window")->value(), qRound(view->scene().window.width));
    QTest::mouseClick(child<QPushButton>("automatic"), Qt::LeftButton);
    EXPECT_EQ(view->scene().window, GreyWindow());
}

TEST_F(VolumeViewTest, EachDocumentKeepsItsOwnLook)
{
    view->setCross({1, 2, 3});
    view->setWindow({10, 20});
    view->setZoom(2);
    window.openFiles({anatomy});
    EXPECT_THAT(cross(), ElementsAre(128, 128, 128));
    EXPECT_EQ(view->scene().zoom, 1);
    workspace.setCurrentDocument(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->scene().zoom == 2.0; }));
    EXPECT_THAT(cross(), ElementsAre(1, 2, 3));
    EXPECT_EQ(view->scene().window, (GreyWindow{10, 20}));
}

TEST_F(VolumeViewTest, ListsShowsHidesAndJumpsToVois)
{
    VoiSet set;
    set.vois = {Voi(), Voi(), Voi()};
    set.vois[0].name = QStringLiteral("one");
    set.vois[0].voxels = {{10, 20, 30}};
    set.vois[1].name = QStringLiteral("two");
    set.vois[1].voxels = {{40, 50, 60}};
    set.vois[2].name = QStringLiteral("three");
    writeVoiFile(folder.path("areas.voi"), set);
    window.openFiles({folder.path("areas.voi")});

    auto *const list = child<QListWidget>("voiList");
    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(list->item(2)->text(), QStringLiteral("three (empty)"));
    list->setFocus();
    list->setCurrentRow(1);
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_THAT(cross(), ElementsAre(40, 50, 60));
    EXPECT_EQ(text("intensity"), QStringLiteral("0 (two)"));

    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_EQ(list->item(1)->checkState(), Qt::Unchecked);
    EXPECT_EQ(text("intensity"), QStringLiteral("0"));
    EXPECT_EQ(view->scene().vois->labelAt(CubeVoxel{10, 20, 30}), 1);

    // A plugin that loads the same VOIs again leaves the choice alone.
    QSignalSpy filled(list->model(), &QAbstractItemModel::rowsInserted);
    workspace.loadVois(folder.path("areas.voi"));
    ASSERT_TRUE(filled.wait());
    EXPECT_EQ(list->item(1)->checkState(), Qt::Unchecked);
    QTest::mouseClick(child<QPushButton>("hideAllVois"), Qt::LeftButton);
    EXPECT_EQ(view->scene().vois, nullptr);
    QTest::mouseClick(child<QPushButton>("showAllVois"), Qt::LeftButton);
    EXPECT_EQ(text("intensity"), QStringLiteral("0 (two)"));

    EXPECT_THROW(workspace.loadVois(folder.path("none.voi")), InputError);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->count() == 0; }));
    EXPECT_EQ(view->scene().vois, nullptr);
}

TEST_F(VolumeViewTest, ShowsNamesOfVoisAsTheyAreWritten)
{
    VoiSet set;
    set.vois = {Voi()};
    set.vois[0].name = QStringLiteral("<b>left</b>");
    set.vois[0].voxels = {{40, 90, 128}};
    writeVoiFile(folder.path("areas.voi"), set);
    window.openFiles({folder.path("areas.voi")});
    click(sagittal, {40, 90, 0});
    QTest::mouseMove(sagittal, sagittal->placeOf({40, 90, 0}).toPoint());
    for (const char *const label : {"intensity", "mouse"}) {
        EXPECT_TRUE(text(label).endsWith(QStringLiteral("0 (<b>left</b>)"))) << label;
        EXPECT_EQ(child<QLabel>(label)->textFormat(), Qt::PlainText) << label;
    }
}

TEST_F(VolumeViewTest, ListsVoisInTheirColoursSelectedOrNot)
{
    writeVoiFile(folder.path("areas.voi"), smallVoiSet());
    window.openFiles({folder.path("areas.voi")});
    const QIcon icon = child<QListWidget>("voiList")->item(0)->icon();
    for (QIcon::Mode mode : {QIcon::Normal, QIcon::Selected})
        EXPECT_EQ(icon.pixmap(16, mode).toImage().pixel(8, 8), qRgb(255, 0, 0));
}

TEST_F(VolumeViewTest, ShowsTheTimeCourseAtTheCrossHairWithTheProtocol)
{
    EXPECT_THAT(timeCourse->scene().samples, IsEmpty());
    EXPECT_TRUE(timeCourse->scene().hint.contains(QStringLiteral(".vtc")));

    const VtcInfo info = smallVtcInfo();
    putBytes(folder.path("a.vtc"), vtcBytes(info, numberedSamples<short>(info)));
    Prt prt;
    prt.conditions = {{QStringLiteral("left"), {{1, 2}}}, {QStringLiteral("right"), {{2, 9}}}};
    writePrtFile(folder.path("a.prt"), prt);
    window.openFiles({folder.path("a.vtc"), folder.path("a.prt")});
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return timeCourse->scene().hint ==
               QStringLiteral("The cross-hair lies outside the functional run.");
    }));
    EXPECT_THAT(timeCourse->scene().samples, IsEmpty());
    view->setCross({60, 52, 62});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !timeCourse->scene().samples.empty(); }));
    EXPECT_THAT(timeCourse->scene().samples, ElementsAre(8, 9, 10, 11));
    EXPECT_EQ(timeCourse->scene().conditions.size(), 2U);

    timeCourse->setFocus();
    QTest::keyClick(timeCourse, Qt::Key_Right);
    QTest::keyClick(timeCourse, Qt::Key_Right);
    EXPECT_EQ(timeCourse->markedText(), QStringLiteral("Volume 2 (0.72 s): 9, left, right"));
    EXPECT_EQ(timeCourse->accessibleDescription(), timeCourse->markedText());
    QTest::keyClick(timeCourse, Qt::Key_End);
    EXPECT_EQ(timeCourse->markedText(), QStringLiteral("Volume 4 (2.16 s): 11, right"));
}

TEST_F(VolumeViewTest, PaintsProtocolBandsBehindTheSamples)
{
    TimeCourseView plot;
    plot.resize(640, 200);
    TimeCourseScene scene;
    scene.samples.assign(100, 0);
    scene.repetitionTime = 2;
    scene.conditions = {{QStringLiteral("rest"), {{1, 50}}}};
    plot.show(scene);
    const QImage image = plot.grab().toImage();
    const QRgb base = plot.palette().color(QPalette::Base).rgb();
    // Above the line of zeros, in the first and in the second half.
    EXPECT_NE(image.pixel(200, 50), base);
    EXPECT_EQ(image.pixel(600, 50), base);
}

TEST_F(VolumeViewTest, PaintsEverySampleThereCanBe)
{
    TimeCourseView plot;
    plot.resize(400, 150);
    const double infinite = std::numeric_limits<double>::infinity();
    const std::vector<double> rows[] = {
        {5},
        {0, 0, 0},
        {infinite, -infinite},
        {std::numeric_limits<double>::quiet_NaN(), 1, 2, infinite, 3},
        {-32768, 32767},
        {1e-30, 2e-30},
        {-3e38, 3e38},
    };
    for (const auto &samples : rows) {
        TimeCourseScene scene;
        scene.samples = samples;
        scene.repetitionTime = 1;
        plot.show(scene);
        EXPECT_FALSE(plot.grab().isNull());
    }
}

} // namespace corvane
