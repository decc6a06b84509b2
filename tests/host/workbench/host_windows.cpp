// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/workbench/host_windows.h"

#include "host/explorer/explorer_window.h"
#include "host/explorer/export_dialog.h"
#include "host/import/example_dataset.h"
#include "host/session/log.h"
#include "host/session/session.h"
#include "host/tour/tour.h"
#include "host/workbench/background_work.h"
#include "host/workbench/explore_run_dialog.h"
#include "host/workbench/import_dialog.h"
#include "host/workbench/key_list.h"
#include "host/workbench/main_window.h"
#include "host/workbench/runs_dialog.h"
#include "host/workbench/study_window.h"
#include "host/workbench/time_course_view.h"
#include "tests/host/explorer/result_folder.h"
#include "tests/host/support/host_files.h"
#include "tests/support/modal_driver.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QSemaphore>
#include <QSettings>
#include <QTest>

namespace corvane
{

namespace
{

/// The main window, shown.
struct Workbench {
    Workbench()
    {
        QSettings().clear();
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    Session session;
    MainWindow window{session};
};

void emptyWorkbench(const LookAtWindow &look)
{
    Workbench workbench;
    look(workbench.window);
}

/// A ball of tissue that gets brighter outward.
Vmr headVmr()
{
    const auto voxels =
        std::make_shared<std::vector<uchar>>(static_cast<std::size_t>(Vmr::voxelCount));
    const auto square = [](std::size_t coordinate) {
        return (double(coordinate) - 128) * (double(coordinate) - 128);
    };
    for (std::size_t n = 0; n < voxels->size(); ++n) {
        const double r = square(n & 255) + square(n >> 8 & 255) + square(n >> 16);
        (*voxels)[n] = r < 90 * 90 ? static_cast<uchar>(60 + 0.015 * r + double(n % 31)) : uchar(0);
    }
    Vmr vmr;
    vmr.voxels = std::shared_ptr<const void>(voxels, voxels->data());
    vmr.space = VmrSpace();
    vmr.space->directions = {{{0, -1, 0}, {0, 0, -1}, {-1, 0, 0}}};
    vmr.space->origin = {128, 128, 128};
    return vmr;
}

/// All kinds of files, with the cross-hair in a VOI and in the run.
void fullWorkbench(const LookAtWindow &look)
{
    const TemporaryFolder folder;
    writeVmr(folder.path("head.vmr"), headVmr());
    VoiSet set;
    set.vois = {{QStringLiteral("left hippocampus"), 220, 60, 60, {{{128, 128, 128}}}},
                {QStringLiteral("right hippocampus"), 60, 60, 220, {{{131, 128, 110}}}},
                {QStringLiteral("nothing left of it"), 60, 160, 60, {}}};
    writeVoiFile(folder.path("areas.voi"), set);
    writePrtFile(folder.path("blocks.prt"), turnsPrt());
    putBytes(folder.path("run.vtc"), middleVtcBytes());

    Workbench workbench;
    workbench.window.openFiles({folder.path("head.vmr"), folder.path("areas.voi"),
                                folder.path("run.vtc"), folder.path("blocks.prt")});
    const auto *const course =
        workbench.window.findChild<TimeCourseView *>(QStringLiteral("timeCourse"));
    ASSERT_TRUE(QTest::qWaitFor([course] { return !course->scene().samples.empty(); }));
    look(workbench.window);
}

/// 1280 x 720 without the frame of a window: nothing of the import has to be scrolled there.
constexpr QSize smallScreen(1260, 660);

void importDialog(const LookAtWindow &look)
{
    ImportDialog dialog;
    dialog.resize(smallScreen);
    dialog.show();
    look(dialog);
}

void studyWindow(const LookAtWindow &look)
{
    const TemporaryFolder folder;
    putBytes(folder.path("participants_connectome.tsv"),
             "participant_id\tsession_id\trun\tatlas_id\tstatus\tkept\treason\n"
             "sub-01\ta\tsub-01_ses-a_task-rest\tExample\tdone\t190\tn/a\n"
             "sub-02\ta\tsub-02_ses-a_task-rest\tExample\texcluded\t20\ttoo little is left\n");
    StudyWindow window;
    window.openStudy(folder.path());
    window.show();
    look(window);
}

/// With all controls of a result of several matrices, once everything is computed.
void connectomeWindow(const LookAtWindow &look)
{
    QSettings().clear();
    const ExampleResult files;
    ResultRequest request;
    request.path = files.path();
    ExplorerWindow window(request);
    window.show();
    while (window.model().isBusy())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    window.model().select(2, 5);
    QCoreApplication::processEvents(); // the status bar makes room for what it tells now
    look(window);
}

void exportDialog(const LookAtWindow &look)
{
    const ExampleResult files;
    ResultRequest request;
    request.path = files.path();
    ExplorerModel model(request, std::make_shared<const NetworkResult>(readResult(request)));
    ExportDialog dialog(model, NetworkView::Ring, false);
    dialog.show();
    look(dialog);
}

void exploreRunDialog(const LookAtWindow &look)
{
    QSettings().clear();
    ExploreRunDialog dialog({QStringLiteral("/data/sub-01/sub-01_T1w.vmr"),
                             QStringLiteral("/data/sub-01/rest.vtc"),
                             QStringLiteral("/data/sub-01/areas.voi"),
                             QStringLiteral("/data/sub-01/blocks.prt"), 14, false});
    dialog.show();
    look(dialog);
}

QPushButton *importButton(const ImportDialog &dialog)
{
    for (QAbstractButton *button : dialog.findChild<QDialogButtonBox *>()->buttons())
        if (button->text() == QStringLiteral("&Import"))
            return qobject_cast<QPushButton *>(button);
    return nullptr;
}

/// The example's files, made once for all windows.
ImportRequest exampleRequest()
{
    static const TemporaryFolder folder;
    static const ImportRequest request = [] {
        writeExample(folder.path());
        ImportRequest files;
        files.anatomy = folder.path("sub-01_T1w.nii.gz");
        files.functional = folder.path("sub-01_task-movement_bold.nii.gz");
        files.voiSources = {
            {VoiSource::Atlas, folder.path("sub-01_dseg.nii.gz"), folder.path("sub-01_dseg.tsv")}};
        files.events = folder.path("sub-01_task-movement_events.tsv");
        files.folder = folder.path();
        files.name = QStringLiteral("example");
        return files;
    }();
    return request;
}

/// The dialog with its previews, before an import that would replace files.
void withFilledDialog(const std::function<void(ImportDialog &)> &action)
{
    ImportDialog dialog;
    dialog.setRequest(exampleRequest());
    dialog.resize(smallScreen);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitFor([&dialog] { return importButton(dialog)->isEnabled(); }, 30000));
    action(dialog);
}

void runsDialog(const LookAtWindow &look)
{
    ImportRequest second;
    second.functional = QStringLiteral("/data/sub-02_task-rest_bold.nii.gz");
    second.name = QStringLiteral("sub-02_task-rest_bold");
    std::vector<BidsImport> runs = runsOfRequests({exampleRequest(), second});
    runs.back().reason = QStringLiteral("no table of confounds; found: none");
    RunsDialog dialog(QStringLiteral("/data"), runs);
    dialog.show();
    look(dialog);
}

void filledImportDialog(const LookAtWindow &look)
{
    withFilledDialog([&look](ImportDialog &dialog) { look(dialog); });
}

void replaceQuestion(const LookAtWindow &look)
{
    withFilledDialog([&look](ImportDialog &dialog) {
        ModalDriver driver;
        driver.expect<QMessageBox>([&look](QMessageBox &box) {
            look(box);
            QTest::mouseClick(box.button(QMessageBox::No), Qt::LeftButton);
        });
        QTest::mouseClick(importButton(dialog), Qt::LeftButton);
    });
}

void progress(const LookAtWindow &look)
{
    Workbench workbench;
    QSemaphore seen;
    ModalDriver driver;
    driver.expect<QProgressDialog>([&](QProgressDialog &dialog) {
        look(dialog);
        seen.release();
    });
    runBehindProgress(&workbench.window, QStringLiteral("Example Dataset"),
                      [&seen](const ProgressWatch &watch) {
                          watch(30, 100);
                          seen.acquire();
                      });
}

void message(const LookAtWindow &look)
{
    Workbench workbench;
    ModalDriver driver;
    driver.expect<QMessageBox>([&look](QMessageBox &box) {
        look(box);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    showMessage(
        QStringLiteral("/data/sub-01/sub-01_task-rest.vtc: data: found 1200 bytes, expected "
                       "2400 bytes (100 x 2 x 2 x 3 samples of 2 bytes)"));
}

void about(const LookAtWindow &look)
{
    Workbench workbench;
    ModalDriver driver;
    driver.expect<QMessageBox>([&look](QMessageBox &box) {
        EXPECT_TRUE(box.text().contains(QStringLiteral("Corvane 3.0.0")));
        look(box);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    for (QAction *action : workbench.window.menuBar()->actions().constLast()->menu()->actions())
        if (action->menuRole() == QAction::AboutRole)
            action->trigger();
}

void keyList(const LookAtWindow &look)
{
    Workbench workbench;
    ModalDriver driver;
    driver.expect<KeyList>([&look](KeyList &keys) {
        look(keys);
        QTest::keyClick(&keys, Qt::Key_Escape);
    });
    for (QAction *action : workbench.window.menuBar()->actions().constLast()->menu()->actions())
        if (action->text() == QStringLiteral("&Keys"))
            action->trigger();
}

void tourCard(const LookAtWindow &look)
{
    Workbench workbench;
    Tour tour({{QString(),
                QStringLiteral("Start the plugin"),
                QStringLiteral("The Plugins menu lists every plugin with its author. Choosing one "
                               "starts it; if it cannot run, the log says why."),
                [&workbench] { return &workbench.window; },
                {}}});
    tour.playForPeople(QStringLiteral("The example stays open."));
    tour.start();
    const auto card = []() -> QWidget * {
        for (QWidget *top : QApplication::topLevelWidgets())
            if (qobject_cast<TourCard *>(top) && top->isVisible())
                return top;
        return nullptr;
    };
    ASSERT_TRUE(QTest::qWaitFor([&card] { return card() != nullptr; }));
    look(*card());
}

} // namespace

const std::vector<HostWindow> &hostWindows()
{
    static const std::vector<HostWindow> all{{"EmptyWorkbench", emptyWorkbench},
                                             {"FullWorkbench", fullWorkbench},
                                             {"ImportDialog", importDialog},
                                             {"FilledImportDialog", filledImportDialog},
                                             {"RunsDialog", runsDialog},
                                             {"ReplaceQuestion", replaceQuestion},
                                             {"Study", studyWindow},
                                             {"Connectome", connectomeWindow},
                                             {"ExportFigure", exportDialog},
                                             {"ExploreRun", exploreRunDialog},
                                             {"Progress", progress},
                                             {"Message", message},
                                             {"About", about},
                                             {"KeyList", keyList},
                                             {"TourCard", tourCard}};
    return all;
}

} // namespace corvane
