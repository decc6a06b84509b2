// SPDX-License-Identifier: GPL-3.0-or-later
//
// The volume, its VOIs and its time course in the main window, by mouse and keys.
#include "host/session/session.h"
#include "host/workbench/main_window.h"
#include "host/workbench/run_overlay.h"
#include "host/workbench/slice_view.h"
#include "host/workbench/time_course_view.h"
#include "host/workbench/voi_overlay.h"
#include "host/workbench/volume_view.h"
#include "tests/host/support/host_files.h"
#include "tests/support/no_further_thread.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QStatusBar>
#include <QTest>
#include <QThreadPool>
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

    QAction *action(const QString &text) const
    {
        for (const QMenu *menu : window.findChildren<QMenu *>())
            for (QAction *entry : menu->actions())
                if (entry->text() == text)
                    return entry;
        ADD_FAILURE() << "no " << text.toStdString();
        return nullptr;
    }
    /// The menu of a right click, while it is open.
    QMenu *shownMenu() const
    {
        for (QMenu *menu : window.findChildren<QMenu *>(QStringLiteral("shownThingMenu")))
            if (menu->isVisible())
                return menu;
        return nullptr;
    }
    static void chooseEntry(QMenu *menu, const QString &text)
    {
        for (QAction *entry : menu->actions())
            if (entry->text() == text)
                QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                                  menu->actionGeometry(entry).center());
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

TEST_F(VolumeViewTest, WithoutAFurtherThreadNothingIsLeftWaiting)
{
    const NoFurtherThread refused;
    view->showVolume(0, zeroVmr());
    click(sagittal, {40, 90, 0});
    EXPECT_THAT(cross(), ElementsAre(40, 90, 128));
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(10000));
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

// ---- the run over the slices

class RunShown : public VolumeViewTest
{
protected:
    RunShown()
    {
        VtcInfo info = smallVtcInfo();
        info.nrOfVolumes = 5;
        std::vector<short> samples(static_cast<std::size_t>(info.sampleCount()));
        for (std::size_t n = 0; n < samples.size(); ++n)
            samples[n] = static_cast<short>(100 + n);
        putBytes(folder.path("a.vtc"), vtcBytes(info, samples));
        VoiSet set = smallVoiSet();
        set.vois[0].voxels = {{57, 52, 59}, {60, 52, 59}};
        writeVoiFile(folder.path("areas.voi"), set);
        window.openFiles({folder.path("a.vtc"), folder.path("areas.voi")});
    }

    void showRun()
    {
        QTest::mouseClick(child<QCheckBox>("runShown"), Qt::LeftButton, Qt::NoModifier,
                          QPoint(8, 8));
        ASSERT_TRUE(QTest::qWaitFor([&] { return view->scene().run != nullptr; }));
    }
    double valueShown() const
    {
        return view->scene().run ? view->scene().run->valueAt({57, 52, 59}).value_or(-1) : -1;
    }
};

TEST_F(RunShown, ItsMeanLiesOverTheSlicesWhenAsked)
{
    EXPECT_EQ(view->scene().run, nullptr);
    showRun();
    EXPECT_EQ(valueShown(), 102);
    view->setCross({57, 52, 59});
    EXPECT_EQ(text("intensity"), QStringLiteral("0 (left hippocampus), run 102"));
    EXPECT_FALSE(child<QSlider>("runTime")->isEnabled());

    child<QSlider>("runOpacity")->setValue(80);
    EXPECT_EQ(view->scene().runOpacity, 0.8);
    const QRgb hot = view->scene().run->colourAt({63, 55, 62});
    QTest::keyClick(child<QComboBox>("runColours"), Qt::Key_Down);
    EXPECT_NE(view->scene().run->colourAt({63, 55, 62}), hot);

    QTest::mouseClick(child<QCheckBox>("runShown"), Qt::LeftButton, Qt::NoModifier, QPoint(8, 8));
    EXPECT_EQ(view->scene().run, nullptr);
}

TEST_F(RunShown, ASliderGoesThroughItsVolumes)
{
    showRun();
    QTest::mouseClick(child<QCheckBox>("runMean"), Qt::LeftButton, Qt::NoModifier, QPoint(8, 8));
    ASSERT_TRUE(QTest::qWaitFor([&] { return valueShown() == 100; }));
    auto *const time = child<QSlider>("runTime");
    EXPECT_EQ(time->maximum(), 5);
    time->setFocus();
    QTest::keyClick(time, Qt::Key_Right);
    ASSERT_TRUE(QTest::qWaitFor([&] { return valueShown() == 101; }));
    EXPECT_EQ(child<QSpinBox>("runVolume")->value(), 2);
    EXPECT_EQ(text("runSeconds"), QStringLiteral("0.72 s"));
    QTest::keyClick(time, Qt::Key_End);
    ASSERT_TRUE(QTest::qWaitFor([&] { return valueShown() == 104; }));
}

TEST_F(RunShown, GoesWithTheRun)
{
    showRun();
    workspace.closeDocument(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->scene().run == nullptr; }));
    EXPECT_FALSE(child<QCheckBox>("runShown")->isVisible());
}

TEST_F(RunShown, ChoosingAVoiDrawsItsMeanCourseBesideTheVoxels)
{
    auto *const list = child<QListWidget>("voiList");
    view->setCross({57, 52, 59});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !timeCourse->scene().samples.empty(); }));
    EXPECT_THAT(timeCourse->scene().voi.samples, IsEmpty());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                      list->visualItemRect(list->item(0)).center());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !timeCourse->scene().voi.samples.empty(); }));
    EXPECT_THAT(timeCourse->scene().samples, ElementsAre(100, 101, 102, 103, 104));
    EXPECT_THAT(timeCourse->scene().voi.samples, ElementsAre(102.5, 103.5, 104.5, 105.5, 106.5));
    EXPECT_EQ(timeCourse->scene().voi.name, QStringLiteral("left hippocampus"));
    timeCourse->setFocus();
    QTest::keyClick(timeCourse, Qt::Key_Home);
    EXPECT_EQ(timeCourse->markedText(),
              QStringLiteral("Volume 1 (0 s): 100, mean of left hippocampus: 102.5"));

    // It stays when the cross-hair moves, also out of the run.
    view->setCross({200, 200, 200});
    ASSERT_TRUE(QTest::qWaitFor([&] { return timeCourse->scene().samples.empty(); }));
    EXPECT_EQ(timeCourse->scene().voi.samples.size(), 5U);
    EXPECT_EQ(timeCourse->markedText(),
              QStringLiteral("Volume 1 (0 s), mean of left hippocampus: 102.5"));
    // By keyboard too; one that is empty has none.
    list->setFocus();
    QTest::keyClick(list, Qt::Key_End);
    ASSERT_TRUE(QTest::qWaitFor([&] { return timeCourse->scene().voi.samples.empty(); }));
}

TEST_F(RunShown, TheCourseOfAVoiIsDrawnInItsColour)
{
    TimeCourseView plot;
    plot.resize(640, 200);
    TimeCourseScene scene;
    scene.repetitionTime = 2;
    scene.voi = {QStringLiteral("area"), QColor(255, 0, 0), std::vector<double>(50, 3)};
    const auto pixels = [&] {
        plot.show(scene);
        const QImage image = plot.grab().toImage();
        QList<QColor> column;
        for (int y = 40; y < 150; ++y)
            column += image.pixelColor(400, y);
        return column;
    };
    const auto isRed = [](const QColor &pixel) { return pixel.red() - pixel.blue() > 80; };
    const QList<QColor> inRed = pixels();
    EXPECT_TRUE(std::any_of(inRed.begin(), inRed.end(), isRed));
    // White on white is darkened.
    scene.voi.colour = Qt::white;
    const QList<QColor> inWhite = pixels();
    EXPECT_FALSE(std::any_of(inWhite.begin(), inWhite.end(), isRed));
    EXPECT_TRUE(std::any_of(inWhite.begin(), inWhite.end(),
                            [](const QColor &pixel) { return pixel.lightness() < 190; }));
}

TEST_F(RunShown, ARightClickHasThePictureAndTheTableOfTheCourse)
{
    view->setCross({57, 52, 59});
    auto *const list = child<QListWidget>("voiList");
    list->setCurrentRow(0);
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return !timeCourse->scene().samples.empty() && !timeCourse->scene().voi.samples.empty();
    }));
    Prt prt;
    prt.conditions = {{QStringLiteral("left"), {{1, 2}}}};
    writePrtFile(folder.path("a.prt"), prt);
    window.openFiles({folder.path("a.prt")});
    ASSERT_TRUE(QTest::qWaitFor([&] { return timeCourse->scene().conditions.size() == 1; }));
    QContextMenuEvent asked(QContextMenuEvent::Mouse, QPoint(50, 50),
                            timeCourse->mapToGlobal(QPoint(50, 50)));
    QCoreApplication::sendEvent(timeCourse, &asked);
    QMenu *const menu = shownMenu();
    ASSERT_NE(menu, nullptr);
    chooseEntry(menu, QStringLiteral("Copy &Table"));
    EXPECT_EQ(QApplication::clipboard()->text(),
              QStringLiteral("volume\tseconds\tcross-hair\tmean of left hippocampus\tcondition\n"
                             "1\t0\t100\t102.5\tleft\n2\t0.72\t101\t103.5\tleft\n"
                             "3\t1.44\t102\t104.5\tn/a\n4\t2.16\t103\t105.5\tn/a\n"
                             "5\t2.88\t104\t106.5\tn/a\n"));
}

// ---- looking

TEST_F(VolumeViewTest, TheWindowFitsASmallScreenOfManyPixelsForEachPoint)
{
    // 1600 x 1000 with a scale of 2, less the frame.
    putBytes(folder.path("a.vtc"), smallVtcBytes());
    window.openFiles({folder.path("a.vtc")});
    EXPECT_LE(window.minimumSizeHint().width(), 796);
    EXPECT_LE(window.minimumSizeHint().height(), 474);
}

TEST_F(VolumeViewTest, ADoubleClickOrReturnFillsThePaneWithOneSlice)
{
    const QSize small = axial->size();
    QTest::mouseDClick(axial, Qt::LeftButton, Qt::NoModifier, QPoint(60, 60));
    EXPECT_FALSE(sagittal->isVisible());
    EXPECT_FALSE(child<QSpinBox>("crossX")->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return axial->height() > 1.5 * small.height(); }));
    EXPECT_EQ(axial->size(), view->size());
    EXPECT_EQ(action(QStringLiteral("A&xial Slice Alone"))->isChecked(), true);
    QTest::keyClick(axial, Qt::Key_Return);
    EXPECT_TRUE(sagittal->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return axial->size() == small; }));
    EXPECT_TRUE(action(QStringLiteral("&Three Slices"))->isChecked());
    // From the keyboard alone.
    QTest::keyClick(&window, Qt::Key_3, Qt::ControlModifier);
    EXPECT_TRUE(coronal->isVisible());
    EXPECT_FALSE(axial->isVisible());
    QTest::keyClick(&window, Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(axial->isVisible());
}

TEST_F(VolumeViewTest, FitsTheSlicesToTheHead)
{
    auto voxels = std::make_shared<std::vector<uchar>>(static_cast<std::size_t>(Vmr::voxelCount));
    for (std::size_t k = 40; k < 120; ++k)
        for (std::size_t j = 60; j < 160; ++j)
            for (std::size_t i = 30; i < 90; ++i)
                (*voxels)[i + 256 * (j + 256 * k)] = uchar(50 + (i + j + k) % 100);
    Vmr vmr;
    vmr.voxels = std::shared_ptr<const void>(voxels, voxels->data());
    writeVmr(folder.path("small.vmr"), vmr);
    window.openFiles({folder.path("small.vmr")});
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->scene().zoom > 1; }));
    for (const SliceView *slice : {sagittal, coronal, axial}) {
        for (const CubeVoxel &corner : {CubeVoxel{30, 60, 40}, CubeVoxel{89, 159, 119}})
            EXPECT_TRUE(slice->rect().contains(slice->placeOf(corner).toPoint()));
        const QPointF middle = slice->placeOf({60, 110, 80});
        EXPECT_NEAR(middle.x(), slice->width() / 2.0, slice->width() / 50.0);
        EXPECT_NEAR(middle.y(), slice->height() / 2.0, slice->height() / 50.0);
    }
    // As large as one of them allows.
    double filled = 0;
    for (const SliceView *slice : {sagittal, coronal, axial}) {
        const QPointF size = slice->placeOf({89, 159, 119}) - slice->placeOf({30, 60, 40});
        filled = std::max({filled, size.x() / slice->width(), size.y() / slice->height()});
    }
    EXPECT_GT(filled, 0.85);
    // Another tab and back: still fitted. One slice alone has more room.
    const double zoom = view->scene().zoom;
    QTest::keyClick(&window, Qt::Key_4, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return axial->placeOf({89, 110, 80}).y() - axial->placeOf({30, 110, 80}).y() >
               0.8 * axial->height();
    }));
    QTest::keyClick(&window, Qt::Key_1, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::abs(view->scene().zoom - zoom) < 0.01; }));
    workspace.setCurrentDocument(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->scene().zoom == 1; }));
    workspace.setCurrentDocument(1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->scene().zoom > 1; }));
    EXPECT_NEAR(view->scene().zoom, zoom, 0.01);
    EXPECT_NEAR(axial->placeOf({60, 110, 80}).x(), axial->width() / 2.0, axial->width() / 50.0);
}

TEST_F(VolumeViewTest, ShowsLeftAndRightByTheConventionThatIsChosen)
{
    Vmr vmr = zeroVmr();
    vmr.space = VmrSpace{{{{0, -1, 0}, {0, 0, -1}, {-1, 0, 0}}}, {128, 128, 128}};
    writeVmr(folder.path("placed.vmr"), vmr);
    window.openFiles({folder.path("placed.vmr")});
    const CubeVoxel right{128, 128, 60};
    EXPECT_LT(axial->placeOf(right).x(), axial->width() / 2.0);
    action(QStringLiteral("N&eurological: Left on the Left"))->trigger();
    EXPECT_GT(axial->placeOf(right).x(), axial->width() / 2.0);
    EXPECT_GT(coronal->placeOf(right).x(), coronal->width() / 2.0);
    // Clicks and keys go where they point.
    click(axial, right);
    EXPECT_EQ(cross()[2], 60);
    QTest::keyClick(axial, Qt::Key_Right);
    EXPECT_EQ(cross()[2], 59);
    EXPECT_EQ(axial->voxelAt(axial->placeOf({10, 0, 20})), (CubeVoxel{10, 128, 20}));
    // Kept for the next time.
    Session other;
    const MainWindow later(other);
    EXPECT_TRUE(later.findChild<VolumeView *>()->scene().neurological);
}

TEST_F(VolumeViewTest, GoesToMillimetresThatAreTyped)
{
    Vmr vmr = zeroVmr();
    vmr.space = VmrSpace{{{{0, -1, 0}, {0, 0, -1}, {-1, 0, 0}}}, {128, 128, 128}};
    writeVmr(folder.path("placed.vmr"), vmr);
    window.openFiles({folder.path("placed.vmr")});
    auto *const world = child<QLineEdit>("world");
    EXPECT_EQ(world->text(), QStringLiteral("R 0.0  A 0.0  S 0.0 mm"));
    const auto type = [&](const QString &place) {
        world->selectAll();
        QTest::keyClicks(world, place);
        QTest::keyClick(world, Qt::Key_Return);
    };
    type(QStringLiteral("-42 -22 54"));
    EXPECT_EQ(cross(), (CubeVoxel{150, 74, 170}));
    EXPECT_EQ(world->text(), QStringLiteral("L 42.0  P 22.0  S 54.0 mm"));
    EXPECT_EQ(window.statusBar()->currentMessage(), QString());
    type(QStringLiteral("900 0 0"));
    EXPECT_EQ(window.statusBar()->currentMessage(),
              QStringLiteral("R 900.0  A 0.0  S 0.0 mm lies outside the volume."));
    EXPECT_EQ(world->text(), QStringLiteral("L 42.0  P 22.0  S 54.0 mm"));
    type(QStringLiteral("left of it"));
    EXPECT_TRUE(window.statusBar()->currentMessage().contains(QStringLiteral("three numbers")));
    // A volume that does not say where it lies has none.
    workspace.setCurrentDocument(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !world->isEnabled(); }));
}

TEST_F(VolumeViewTest, ARightClickOnASliceHasItsPictureAndItsTable)
{
    const QPoint place(50, 50);
    QTest::mouseClick(axial, Qt::RightButton, Qt::NoModifier, place);
    QMenu *menu = shownMenu();
    ASSERT_NE(menu, nullptr);
    chooseEntry(menu, QStringLiteral("&Copy Picture"));
    EXPECT_EQ(QApplication::clipboard()->pixmap().size(), axial->grab().size());
    ASSERT_TRUE(QTest::qWaitFor([this] { return shownMenu() == nullptr; }));

    // The key for menus.
    QContextMenuEvent asked(QContextMenuEvent::Keyboard, place, axial->mapToGlobal(place));
    QCoreApplication::sendEvent(axial, &asked);
    menu = shownMenu();
    ASSERT_NE(menu, nullptr);
    chooseEntry(menu, QStringLiteral("Copy &Table"));
    EXPECT_EQ(QApplication::clipboard()->text().toUtf8(),
              sliceTable(zeroVmr(), SlicePlane::Axial, cross()[1]));
    ASSERT_TRUE(QTest::qWaitFor([this] { return shownMenu() == nullptr; }));

    // A drag is none.
    QTest::mousePress(axial, Qt::RightButton, Qt::NoModifier, place);
    QTest::mouseRelease(axial, Qt::RightButton, Qt::NoModifier, place + QPoint(60, 0));
    EXPECT_EQ(shownMenu(), nullptr);
}

} // namespace corvane
