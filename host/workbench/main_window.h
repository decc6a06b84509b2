// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/session/plugin_loader.h"

#include <QMainWindow>
#include <QTimer>
#include <vector>

class QPushButton;
class QSplitter;
class QStackedWidget;

namespace corvane
{

class CoursePane;
class DocumentTabs;
class FileOpener;
class LogPane;
class RecentFilesMenu;
class ResultOpener;
class RunPane;
class StudyWindow;
class Session;
class VoiList;
class VolumeView;
class WindowButtonStyle;
class Workspace;

/// The workbench's one main window: a view of a session, which plugins change behind its back.
/// It never keeps a pointer into the workspace: whenever that has changed it takes over anew.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(Session &session, QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Files of every kind, see FileOpener::open().
    void openFiles(const QStringList &paths);

    /// Loads the plugins of a folder and lists them in the Plugins menu.
    void loadPluginFolder(const QString &folder);
    QStringList pluginNames() const;
    /// The folder that was given.
    const QString &pluginFolder() const { return m_pluginFolder; }
    /// Starts the plugin of that name. One that does not start is told in the log; false then, and
    /// when there is none.
    bool startPlugin(const QString &name);

    /// Whether nothing is open: no document, no VOIs, no protocol.
    bool isEmpty() const;

    /// The size of the first start, where the screen has room for it.
    static QSize usualSize() { return {1100, 850}; }

    /// The program whose commands compute; this one unless another is set.
    void setProgram(const QString &program) { m_program = program; }

    const LogPane &log() const { return *m_log; }

    /// The Help menu, for what the program adds to it behind the guide and the keys.
    QMenu &helpMenu() { return *m_helpMenu; }

    /// Says something in a box over the active window, and in the log.
    void showMessageBox(const QString &text);

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void makeCentre();
    QWidget *makeWelcome();
    QWidget *makeVolumePage();
    void makeResults();
    void makeFileMenu();
    void makeViewMenu();
    void makePluginsMenu();
    void makeHelpMenu();
    void restore();

    void refresh();
    void closeShortened();
    enum Page { WelcomePage, VolumePage };
    void showPage(Page page);
    void showCourse();
    void showVoiCourse();
    void addSliceChoice(QMenu &menu);
    void addConventions(QMenu &menu);
    void showNames();
    void askAboutMismatches();
    bool mayLoseResults();
    void openStudy();
    void exploreRun();
    void closeDocument();
    void showDocument(int step);
    void start(Plugin &plugin);
    void showKeys();

    Workspace &m_workspace;
    std::unique_ptr<WindowButtonStyle> m_buttons; ///< of the panes and tabs
    std::vector<std::unique_ptr<Plugin>> m_plugins;
    QString m_pluginFolder;
    QString m_program;
    QTimer m_refreshSoon;
    QTimer m_fileWatch;
    LogPane *m_log;
    VoiList *m_vois;
    RunPane *m_run;
    RecentFilesMenu *m_recent;
    FileOpener *m_files;
    DocumentTabs *m_tabs = nullptr;
    QStackedWidget *m_pages = nullptr; ///< one of each Page
    QPushButton *m_welcomeOpen = nullptr;
    QSplitter *m_parts = nullptr; ///< of the volume's page
    VolumeView *m_volume = nullptr;
    CoursePane *m_course = nullptr;
    int m_shownVoiLoads = -1;
    QString m_checkedLoads;   ///< what was loaded when subjects and spaces were compared last
    QStringList m_mismatches; ///< those that the user knows of and keeps
    bool m_isAsking = false;
    ResultOpener *m_results = nullptr;
    QAction *m_explore = nullptr;
    StudyWindow *m_study = nullptr; ///< made when it is first asked for
    QMenu *m_pluginsMenu = nullptr;
    QMenu *m_helpMenu = nullptr;
    QList<QAction *> m_documentActions; ///< of use only while a document is open
};

} // namespace corvane
