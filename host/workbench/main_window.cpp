// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/main_window.h"

#include "dataset/scoped_dialog.h"
#include "host/session/log.h"
#include "host/session/session.h"
#include "host/workbench/about_box.h"
#include "host/workbench/course_pane.h"
#include "host/workbench/document_tabs.h"
#include "host/workbench/dropped_files.h"
#include "host/workbench/file_names.h"
#include "host/workbench/file_opener.h"
#include "host/workbench/guide.h"
#include "host/workbench/key_list.h"
#include "host/workbench/log_pane.h"
#include "host/workbench/message_boxes.h"
#include "host/workbench/recent_files.h"
#include "host/workbench/run_pane.h"
#include "host/workbench/voi_list.h"
#include "host/workbench/voi_overlay.h"
#include "host/workbench/volume_view.h"
#include "host/workbench/window_buttons.h"
#include "plots/plain_text.h"
#ifdef CORVANE_IMPORT
#include "host/workbench/explore_run_dialog.h"
#include "host/workbench/result_opener.h"
#include "host/workbench/study_window.h"
#endif

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTextDocumentFragment>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace corvane
{

namespace
{

const QString geometryKey = QStringLiteral("window/geometry");
const QString stateKey = QStringLiteral("window/state");
const QString partsKey = QStringLiteral("window/parts");
const QString neurologicalKey = QStringLiteral("view/neurological");

/// An object of a plugin that holds results which exist nowhere else has this property: their name.
constexpr auto unsavedResults = "unsavedResults";

QString menuText(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

MainWindow::MainWindow(Session &session, QWidget *parent)
    : QMainWindow(parent), m_workspace(session.workspace()),
      m_buttons(std::make_unique<WindowButtonStyle>()), m_log(new LogPane(session, this)),
      m_vois(new VoiList(this)), m_run(new RunPane(this)), m_recent(new RecentFilesMenu(this)),
      m_files(new FileOpener(m_workspace, *m_recent, this))
{
    setObjectName(QStringLiteral("mainWindow"));
    setAcceptDrops(true);
    addDockWidget(Qt::BottomDockWidgetArea, m_log);
    addDockWidget(Qt::RightDockWidgetArea, m_vois);
    addDockWidget(Qt::RightDockWidgetArea, m_run);
    for (QDockWidget *pane : findChildren<QDockWidget *>())
        pane->setStyle(m_buttons.get());
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    makeCentre();
    makeFileMenu();
    makeViewMenu();
    makePluginsMenu();
    makeHelpMenu();
    statusBar();
    restore();

    // Plugins change the workspace many times in a row: the window follows once, when they are
    // done.
    m_refreshSoon.setSingleShot(true);
    connect(&m_refreshSoon, &QTimer::timeout, this, &MainWindow::refresh);
    connect(&m_workspace, &Workspace::changed, &m_refreshSoon, [this] { m_refreshSoon.start(0); });
    connect(&session, &Session::messageShown, this,
            [this](const QString &text) { showInBox(this, text); });
    connect(m_files, &FileOpener::opened, this, &MainWindow::refresh);
    connect(m_files, &FileOpener::failed, this, &MainWindow::showMessageBox);
    connect(&m_fileWatch, &QTimer::timeout, this, &MainWindow::closeShortened);
    m_fileWatch.start(1000);
    refresh();
}

MainWindow::~MainWindow() = default;

// ---- what there is

void MainWindow::makeCentre()
{
    auto *const centre = new QWidget(this);
    auto *const layout = new QVBoxLayout(centre);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_tabs = new DocumentTabs(m_workspace, *m_buttons, centre);
    m_pages = new QStackedWidget(centre);
    m_pages->addWidget(makeWelcome());
    m_pages->addWidget(makeVolumePage());
    layout->addWidget(m_tabs);
    layout->addWidget(m_pages, 1);
    setCentralWidget(centre);
}

QWidget *MainWindow::makeWelcome()
{
    auto *const page = new QWidget;
    auto *const layout = new QVBoxLayout(page);
    auto *const text =
        new QLabel(tr("<h2>No anatomy is open</h2>"
                      "<p>Open one (.vmr, NIfTI or NRRD), or drop files on this window.</p>"));
    text->setAlignment(Qt::AlignCenter);
    text->setWordWrap(true);
    auto *const buttons = new QWidget;
    buttons->setMinimumWidth(280);
    auto *const column = new QVBoxLayout(buttons);
    const auto addButton = [&](const QString &label, const char *name, void (FileOpener::*act)()) {
        auto *const button = new QPushButton(label);
        button->setObjectName(QString::fromLatin1(name));
        connect(button, &QPushButton::clicked, m_files, act);
        column->addWidget(button);
        return button;
    };
    m_welcomeOpen = addButton(tr("&Open..."), "welcomeOpen", &FileOpener::choose);
#ifdef CORVANE_IMPORT
    addButton(tr("&Import Scans, Atlas and Events..."), "welcomeImport", &FileOpener::importFiles);
    addButton(tr("Import a Pipe&line's Folder..."), "welcomeFolder", &FileOpener::chooseDataset);
    addButton(tr("Open the &Example Dataset"), "welcomeExample", &FileOpener::openExample);
#endif
    layout->addStretch();
    layout->addWidget(text);
    layout->addWidget(buttons, 0, Qt::AlignCenter);
    layout->addStretch();
    return page;
}

QWidget *MainWindow::makeVolumePage()
{
    m_parts = new QSplitter(Qt::Vertical);
    m_parts->setObjectName(QStringLiteral("volumeSplitter"));
    m_volume = new VolumeView;
    m_course = new CoursePane(m_workspace);
    m_parts->addWidget(m_volume);
    m_parts->addWidget(m_course);
    m_parts->setStretchFactor(0, 1);
    m_parts->setChildrenCollapsible(false);
    connect(m_volume, &VolumeView::crossMoved, this, &MainWindow::showCourse);
    connect(m_vois, &VoiList::jumped, m_volume, &VolumeView::setCross);
    connect(m_vois, &VoiList::overlayChanged, this,
            [this] { m_volume->setVois(m_vois->overlay(), m_vois->names(), m_vois->opacity()); });
    connect(m_vois, &VoiList::chosenChanged, this, &MainWindow::showVoiCourse);
    connect(m_run, &RunPane::overlayChanged, this,
            [this] { m_volume->setRun(m_run->overlay(), m_run->opacity()); });
    return m_parts;
}

void MainWindow::makeFileMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&File"));
    QAction *const open = menu->addAction(tr("&Open..."), m_files, &FileOpener::choose);
    open->setShortcut(QKeySequence::Open);
    menu->addMenu(m_recent);
    menu->addSeparator();
#ifdef CORVANE_IMPORT
    QAction *const import = menu->addAction(tr("&Import..."), m_files, &FileOpener::importFiles);
    import->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_I));
    QAction *const folder =
        menu->addAction(tr("Import &Folder..."), m_files, &FileOpener::chooseDataset);
    folder->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_I));
    menu->addAction(tr("Open &Example Dataset"), m_files, &FileOpener::openExample);
    menu->addAction(tr("Open &Study..."), this, &MainWindow::openStudy);
    makeResults();
    menu->addAction(tr("Open &Result..."), m_results, &ResultOpener::choose);
    m_explore = menu->addAction(tr("E&xplore Connections..."), this, &MainWindow::exploreRun);
    connect(m_vois, &VoiList::exploreAsked, this, &MainWindow::exploreRun);
    menu->addSeparator();
#endif
    QAction *const close = menu->addAction(tr("&Close"), this, &MainWindow::closeDocument);
    // Not the platform's standard alone: some have another or none.
    close->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::CTRL | Qt::Key_F4)});
    m_documentActions += close;
    QAction *const quit = menu->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
}

void MainWindow::makeViewMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&View"));
    QAction *const next = menu->addAction(tr("&Next Document"), this, [this] { showDocument(1); });
    next->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_PageDown));
    QAction *const previous =
        menu->addAction(tr("&Previous Document"), this, [this] { showDocument(-1); });
    previous->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_PageUp));
    menu->addSeparator();
    QAction *const in = menu->addAction(tr("Zoom &In"), this, [this] { m_volume->zoomBy(1.25); });
    in->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)});
    QAction *const out =
        menu->addAction(tr("Zoom &Out"), this, [this] { m_volume->zoomBy(1 / 1.25); });
    out->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Minus));
    QAction *const whole =
        menu->addAction(tr("&Whole Slices"), this, [this] { m_volume->setZoom(1); });
    whole->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_0));
    QAction *const automatic = menu->addAction(tr("&Automatic Window and Level"), m_volume,
                                               &VolumeView::setAutomaticWindow);
    automatic->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A));
    QAction *const cross = menu->addAction(tr("&Cross-hair"));
    cross->setCheckable(true);
    cross->setChecked(true);
    cross->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_H));
    connect(cross, &QAction::toggled, m_volume, &VolumeView::setCrossShown);
    QAction *const fit = menu->addAction(tr("&Fit to the Head"), m_volume, &VolumeView::fitToHead);
    fit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    m_documentActions += {next, previous, in, out, whole, automatic, cross, fit};
    menu->addSeparator();
    addSliceChoice(*menu);
    menu->addSeparator();
    addConventions(*menu);
    menu->addSeparator();
    QAction *const vois = m_vois->toggleViewAction();
    vois->setText(tr("&Volumes of Interest"));
    menu->addAction(vois);
    QAction *const run = m_run->toggleViewAction();
    run->setText(tr("Functional &Run"));
    menu->addAction(run);
    QAction *const log = m_log->toggleViewAction();
    log->setText(tr("&Log"));
    menu->addAction(log);
}

/// All three slices, or one that fills the pane.
void MainWindow::addSliceChoice(QMenu &menu)
{
    const struct {
        QString text;
        std::optional<SlicePlane> plane;
    } choices[] = {{tr("&Three Slices"), std::nullopt},
                   {tr("&Sagittal Slice Alone"), SlicePlane::Sagittal},
                   {tr("Co&ronal Slice Alone"), SlicePlane::Coronal},
                   {tr("A&xial Slice Alone"), SlicePlane::Axial}};
    auto *const group = new QActionGroup(this);
    int key = Qt::Key_1;
    for (const auto &choice : choices) {
        QAction *const action = menu.addAction(choice.text);
        action->setCheckable(true);
        action->setChecked(!choice.plane);
        action->setShortcut(QKeySequence(Qt::CTRL | key++));
        group->addAction(action);
        connect(action, &QAction::triggered, m_volume,
                [this, plane = choice.plane] { m_volume->showAlone(plane); });
        connect(m_volume, &VolumeView::aloneChanged, action, [this, action, plane = choice.plane] {
            action->setChecked(m_volume->alone() == plane);
        });
        m_documentActions += action;
    }
}

/// Which side of the patient is on the left of the slices. The choice is kept.
void MainWindow::addConventions(QMenu &menu)
{
    auto *const group = new QActionGroup(this);
    const bool isNeurological = QSettings().value(neurologicalKey).toBool();
    for (const bool neurological : {false, true}) {
        QAction *const action =
            menu.addAction(neurological ? tr("N&eurological: Left on the Left")
                                        : tr("Ra&diological: Right on the Left"));
        action->setCheckable(true);
        action->setChecked(neurological == isNeurological);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, neurological] {
            QSettings().setValue(neurologicalKey, neurological);
            m_volume->setNeurological(neurological);
        });
    }
    m_volume->setNeurological(isNeurological);
}

void MainWindow::makePluginsMenu()
{
    m_pluginsMenu = menuBar()->addMenu(tr("&Plugins"));
    m_pluginsMenu->setObjectName(QStringLiteral("pluginsMenu"));
    m_pluginsMenu->setToolTipsVisible(true);
    m_pluginsMenu->addAction(tr("No plugins"))->setEnabled(false);
}

void MainWindow::makeHelpMenu()
{
    m_helpMenu = menuBar()->addMenu(tr("&Help"));
    const auto open = [this](QWidget *about) {
        const QString fault = openGuide(guidePageOf(about));
        if (!fault.isEmpty())
            showMessageBox(fault);
    };
    // Windows that belong to this one have its keys.
    QAction *const guide = m_helpMenu->addAction(tr("&User's Guide"), this, [this, open] {
        QWidget *const front = QApplication::activeWindow();
        open(front != nullptr ? front : this);
    });
    guide->setShortcut(QKeySequence(Qt::Key_F1));
    auto *const helpKey = new HelpKey(this);
    connect(helpKey, &HelpKey::pressed, this, open);
    qApp->installEventFilter(helpKey);
    m_helpMenu->addAction(tr("&Keys"), this, &MainWindow::showKeys);
    m_helpMenu->addSeparator();
    QAction *const action =
        m_helpMenu->addAction(tr("&About Corvane"), this, [this] { showAbout(this); });
    action->setMenuRole(QAction::AboutRole);
}

void MainWindow::restore()
{
    const QSettings settings;
    resize(usualSize().boundedTo(screen()->availableSize()));
    resizeDocks({m_log}, {110}, Qt::Vertical);
    resizeDocks({m_vois}, {240}, Qt::Horizontal);
    restoreGeometry(settings.value(geometryKey).toByteArray());
    restoreState(settings.value(stateKey).toByteArray());
    m_parts->restoreState(settings.value(partsKey).toByteArray());
}

// ---- what is open

void MainWindow::refresh()
{
    m_tabs->refresh();
    const int current = m_workspace.currentDocument();
    const bool isOpen = m_workspace.documentType(current) != ClosedDocument;
    m_vois->setAnatomyOpen(isOpen);
    for (QAction *action : qAsConst(m_documentActions))
        action->setEnabled(isOpen);
    if (m_shownVoiLoads != m_workspace.voiLoads()) {
        m_shownVoiLoads = m_workspace.voiLoads();
        const LoadedVois *const vois = m_workspace.vois();
        m_vois->setVois(vois != nullptr ? &vois->set : nullptr);
    }
#ifdef CORVANE_IMPORT
    const bool hasRun = openRun(m_workspace).has_value();
    m_explore->setEnabled(hasRun);
    m_vois->setExplorable(hasRun);
#endif
    if (const Vmr *const vmr = m_workspace.currentVmr())
        m_volume->showVolume(current, *vmr);
    const LinkedVtc *const vtc = m_workspace.linkedVtc();
    m_course->refresh();
    m_run->setRun(vtc != nullptr ? &vtc->file : nullptr);
    showVoiCourse();
    showPage(isOpen ? VolumePage : WelcomePage);
    showCourse();
    setWindowFilePath(isOpen ? m_workspace.documentPath(current) : QString());
    showNames();
    askAboutMismatches();
}

/// The title and the panes tell what they show.
void MainWindow::showNames()
{
    const int current = m_workspace.currentDocument();
    const bool isOpen = m_workspace.documentType(current) != ClosedDocument;
    const LinkedVtc *const vtc = m_workspace.linkedVtc();
    const QString run = vtc != nullptr ? vtc->file.path() : QString();
    const QString protocol = m_workspace.protocolPath();
    QStringList files{m_workspace.documentPath(current), run, m_workspace.voiPath(), protocol};
    files.removeAll(QString());
    setWindowTitle(isOpen ? QStringLiteral("%1 - Corvane").arg(namesTogether(files))
                          : QStringLiteral("Corvane"));
    m_vois->setWindowTitle(m_workspace.voiPath().isEmpty()
                               ? tr("Volumes of Interest")
                               : tr("VOIs: %1").arg(namesTogether({m_workspace.voiPath()})));
    m_vois->toggleViewAction()->setText(tr("&Volumes of Interest")); // else it has the title
}

/// Files of different subjects or spaces are kept only when the user says so. Plugins load files
/// too, and have finished when this is asked.
void MainWindow::askAboutMismatches()
{
    const LinkedVtc *const vtc = m_workspace.linkedVtc();
    const QString loads = QStringLiteral("%1 %2").arg(
        QString::number(m_workspace.voiLoads()), vtc != nullptr ? vtc->file.path() : QString());
    if (m_isAsking || loads == m_checkedLoads)
        return;
    m_checkedLoads = loads;
    for (const ProvenanceMismatch &mismatch : m_workspace.mismatches()) {
        if (m_mismatches.contains(mismatch.text()))
            continue;
        logText(mismatch.text());
        const bool isVois = mismatch.file == m_workspace.voiPath();
        m_isAsking = true;
        const bool keeps = askInBox(
            this, tr("%1.\n\nUse it all the same? \"No\" closes it.").arg(mismatch.text()));
        m_isAsking = false;
        if (keeps) {
            m_mismatches += mismatch.text();
            continue;
        }
        if (isVois)
            m_workspace.unloadVois();
        else
            m_workspace.unlinkVtc();
        return; // what is left is looked at after the change
    }
}

/// Files are used where they lie: another program that shortens one takes it away.
void MainWindow::closeShortened()
{
    const QStringList said = m_workspace.closeShortened();
    if (!said.isEmpty())
        showMessageBox(said.join(QLatin1Char('\n')));
}

/// The keyboard begins with what a page is for.
void MainWindow::showPage(Page page)
{
    if (m_pages->currentIndex() == page && m_pages->focusWidget() != nullptr)
        return;
    m_pages->setCurrentIndex(page);
    if (page == VolumePage)
        m_volume->focusSlices();
    else
        m_welcomeOpen->setFocus();
}

void MainWindow::showCourse()
{
    m_course->showAt(m_volume->scene().cross);
}

void MainWindow::showVoiCourse()
{
    const std::optional<std::size_t> chosen = m_vois->chosen();
    m_course->showVoi(chosen ? &m_vois->vois() : nullptr, chosen.value_or(0));
}

void MainWindow::openFiles(const QStringList &paths)
{
    m_files->open(paths);
}

#ifdef CORVANE_IMPORT
/// The node that is selected in a connectome window is where the cross-hair goes.
void MainWindow::makeResults()
{
    m_results = new ResultOpener(this);
    connect(m_results, &ResultOpener::failed, this, &MainWindow::showMessageBox);
    connect(m_results, &ResultOpener::placeSelected, this, [this](const WorldPlace &place) {
        const Vmr *const vmr = m_workspace.currentVmr();
        if (vmr == nullptr || !vmr->space)
            return;
        const CubeVoxel voxel = voxelAtWorld(*vmr, place);
        if (std::all_of(voxel.begin(), voxel.end(),
                        [](int index) { return index >= 0 && index < Vmr::size; }))
            m_volume->setCross(voxel);
    });
}

/// One window for all studies, which goes on computing while it is closed.
void MainWindow::openStudy()
{
    if (m_study == nullptr) {
        m_study = new StudyWindow(this, m_program);
        connect(m_study, &StudyWindow::resultChosen, m_results, &ResultOpener::open);
    }
    m_study->show();
    m_study->raise();
    m_study->activateWindow();
}

/// Of what is open, the connections between all VOIs.
void MainWindow::exploreRun()
{
    const std::optional<OpenRun> run = openRun(m_workspace);
    if (!run)
        return;
    const ScopedDialog dialog(new ExploreRunDialog(*run, this, m_program));
    if (dialog->exec() == QDialog::Accepted && dialog)
        m_results->open(dialog->folder());
}
#endif

void MainWindow::closeDocument()
{
    Q_EMIT m_tabs->tabCloseRequested(m_tabs->currentIndex());
}

void MainWindow::showDocument(int step)
{
    if (m_tabs->count() > 0)
        m_tabs->setCurrentIndex((m_tabs->currentIndex() + step + m_tabs->count()) %
                                m_tabs->count());
}

// ---- plugins

void MainWindow::loadPluginFolder(const QString &folder)
{
    m_pluginFolder = folder;
    m_plugins = loadPlugins(folder);
    if (m_plugins.empty())
        return;
    m_pluginsMenu->clear();
    for (const std::unique_ptr<Plugin> &plugin : m_plugins) {
        const QString author = QTextDocumentFragment::fromHtml(plugin->author()).toPlainText();
        const QString label = author.isEmpty()
                                  ? plugin->name()
                                  : tr("%1 (by %2)", "plugin, author").arg(plugin->name(), author);
        QAction *const action = m_pluginsMenu->addAction(menuText(label));
        action->setData(plugin->name());
        action->setToolTip(asToolTip(plugin->path()));
        connect(action, &QAction::triggered, this, [this, &plugin] { start(*plugin); });
    }
}

bool MainWindow::isEmpty() const
{
    return DocumentTabs::openDocuments(m_workspace).isEmpty() && m_workspace.vois() == nullptr &&
           m_workspace.protocol() == nullptr;
}

QStringList MainWindow::pluginNames() const
{
    QStringList names;
    for (const std::unique_ptr<Plugin> &plugin : m_plugins)
        names += plugin->name();
    return names;
}

bool MainWindow::startPlugin(const QString &name)
{
    for (QAction *action : m_pluginsMenu->actions()) {
        if (action->data().toString() == name) {
            action->trigger();
            return true;
        }
    }
    logText(tr("There is no plugin of the name \"%1\".").arg(name));
    return false;
}

void MainWindow::start(Plugin &plugin)
{
    try {
        plugin.start();
    } catch (const PluginError &error) {
        logText(tr("%1 did not start: %2", "plugin, reason")
                    .arg(plugin.name(), QString::fromUtf8(error.what())));
    }
}

// ---- the window

void MainWindow::showMessageBox(const QString &text)
{
    logText(text);
    showInBox(this, text);
}

void MainWindow::showKeys()
{
    const ScopedDialog keys(new KeyList(*menuBar(), this));
    keys->exec();
}

/// One question for all results that exist nowhere else.
bool MainWindow::mayLoseResults()
{
    QStringList names;
    for (const QWidget *window : QApplication::topLevelWidgets())
        for (const QObject *part : window->findChildren<QObject *>()) {
            const QString name = part->property(unsavedResults).toString();
            if (!name.isEmpty())
                names += name;
        }
    names.removeDuplicates(); // a window may be a part of another one
    return names.isEmpty() ||
           askInBox(this, tr("Results that exist nowhere else are open: %1.\n\nQuit all the same?")
                              .arg(names.join(QStringLiteral(", "))));
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (!mayLoseResults()) {
        event->ignore();
        return;
    }
    // The session ends with this window. A window of a plugin that wants to stay keeps it.
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window != this && window->isVisible() && !window->close()) {
            event->ignore();
            return;
        }
    }
    QSettings settings;
    settings.setValue(geometryKey, saveGeometry());
    settings.setValue(stateKey, saveState());
    settings.setValue(partsKey, m_parts->saveState());
    QMainWindow::closeEvent(event);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!droppedFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    const QStringList paths = droppedFiles(event->mimeData());
    event->acceptProposedAction();
    // The window that the files come from waits until the drop is done.
    QTimer::singleShot(0, this, [this, paths] { openFiles(paths); });
}

} // namespace corvane
