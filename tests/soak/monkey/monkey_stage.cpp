// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/soak/monkey/monkey_stage.h"

#include "host/explorer/explorer_window.h"
#include "host/workbench/screen_fit.h"
#include "host/workbench/study_window.h"
#include "tests/soak/monkey/monkey_watch.h"

#include <QDir>
#include <QListWidget>
#include <QTableWidget>
#include <QTimer>

namespace monkey
{

namespace
{

QString firstOf(const QString &folder, const QString &pattern)
{
    const QStringList found = QDir(folder).entryList({pattern}, QDir::Files, QDir::Name);
    return found.isEmpty() ? QString() : QDir(folder).filePath(found.first());
}

QString folderOf(const QString &folder)
{
    return QDir(folder).exists() ? folder : QString();
}

} // namespace

Files::Files(const QString &folder)
{
    const QString subject = folder + "/subject";
    vmr = firstOf(subject, "*.vmr");
    vtc = firstOf(subject, "*.vtc");
    voi = firstOf(subject, "*.voi");
    const QDir open(folder + "/import");
    for (const QString &name : open.entryList(QDir::Files, QDir::Name))
        toImport += open.filePath(name);
    dataset = folderOf(folder + "/dataset");
    study = folderOf(folder + "/study");
    result = folderOf(folder + "/result");
    if (result.isEmpty())
        result = folderOf(study + "/sub-01/func");
}

QStringList Files::all() const
{
    QStringList paths = {vmr, vtc, voi, QStringLiteral("nowhere.vmr"), dataset, study, result};
    paths += toImport;
    paths.removeAll(QString());
    return paths;
}

Stage::Stage(const Files &files, int kind)
{
    const bool isEmpty = kind == 2 || kind == 6;
    openWorkbench(isEmpty ? QStringList() : QStringList{files.vmr});
    new corvane::ScreenFit(*workbench);
    m_tour = std::make_unique<corvane::GuidedTour>(*workbench, QStringLiteral(CORVANE_PROGRAM));
    if (!isEmpty)
        workbench->openFiles({files.voi, files.vtc});
    if (kind < 2)
        analyse(files, kind == 1);
    if (kind == 2)
        showLater([this, files] { workbench->openFiles(files.toImport); });
    if (kind == 3 && !files.dataset.isEmpty())
        showLater([this, files] { workbench->openFiles({files.dataset}); });
    if (kind == 4 && !files.study.isEmpty()) {
        auto *const study = new corvane::StudyWindow(workbench.get(), CORVANE_PROGRAM);
        study->openStudy(files.study);
        study->show();
    }
    if (kind == 5 && !files.result.isEmpty()) {
        corvane::ResultRequest request;
        request.path = files.result;
        auto *const explorer = new corvane::ExplorerWindow(request, workbench.get());
        explorer->setWindowFlag(Qt::Window);
        explorer->show();
    }
    if (kind == 6)
        m_tour->start();
    // From here on modal dialogs are for the events alone.
    modals.setFallback([](QDialog &) {});
}

/// In the event loop, since a modal dialog may come of it.
void Stage::showLater(std::function<void()> action)
{
    QTimer::singleShot(0, workbench.get(), std::move(action));
}

void Stage::analyse(const Files &files, bool useProtocol)
{
    startPlugin();
    setUseProtocol(useProtocol);
    addSubject("monkey", {files.vmr, files.vtc, files.voi, QString()});
    if (testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed())
        return; // which is told at the end
    selectProfile("monkey");
    chooseVois({0, 1, 2, 3, 4, 5});
    compute();
    if (windowsOf("ConnectivityObjectUI").isEmpty()) {
        noteFinding(QStringLiteral("the subject of the data was not computed"));
        return;
    }
    const QWidget *const results = resultsDialog();
    click(results, "btn_CircularPlotConnMtx");
    click(results, "btn_PlotConnMtx");
    for (const char *measure : {"degree", "strength"}) {
        click(measureButton(results, measure, "compute"));
        click(measureButton(results, measure, "inspect"));
    }
}

} // namespace monkey
