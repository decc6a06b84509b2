// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/soak/monkey/monkey_stage.h"

#include "host/workbench/result_opener.h"
#include "host/workbench/screen_fit.h"
#include "host/workbench/study_window.h"
#include "tests/soak/monkey/monkey_watch.h"

#include <QAction>
#include <QDir>
#include <QDirIterator>
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

Stage::Stage(const Files &given, int kind)
{
    Files files = given;
    const QDir subject(copied(QFileInfo(given.vmr).path()));
    for (QString *path : {&files.vmr, &files.vtc, &files.voi})
        *path = subject.filePath(QFileInfo(*path).fileName());
    const bool isEmpty = kind == 2 || kind == 6;
    openWorkbench(isEmpty ? QStringList() : QStringList{files.vmr});
    new corvane::ScreenFit(*workbench);
    workbench->setProgram(QStringLiteral(CORVANE_PROGRAM));
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
        choose("Open &Study...");
        workbench->findChild<corvane::StudyWindow *>()->openStudy(copied(files.study));
    }
    if (kind == 5 && !files.result.isEmpty())
        workbench->findChild<corvane::ResultOpener *>()->open(files.result);
    if (kind == 6)
        m_tour->start();
    if (kind == 7)
        showLater([this] { choose("E&xplore Connections..."); });
    // From here on modal dialogs are for the events alone.
    modals.setFallback([](QDialog &) {});
}

/// In the event loop, since a modal dialog may come of it.
void Stage::showLater(std::function<void()> action)
{
    QTimer::singleShot(0, workbench.get(), std::move(action));
}

/// A folder with all that is in it, in the folder of this stage.
QString Stage::copied(const QString &path) const
{
    const QDir from(path);
    const QString copy = folder.path(from.dirName());
    QDirIterator files(path, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString to = copy + QLatin1Char('/') + from.relativeFilePath(files.next());
        QDir().mkpath(QFileInfo(to).path());
        QFile::copy(files.filePath(), to);
    }
    return copy;
}

/// From the menus of the workbench.
void Stage::choose(const char *entry)
{
    for (QAction *action : workbench->findChildren<QAction *>())
        if (action->text() == QLatin1String(entry)) {
            action->trigger();
            return;
        }
    noteFinding(QStringLiteral("there is no menu entry %1").arg(QLatin1String(entry)));
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
