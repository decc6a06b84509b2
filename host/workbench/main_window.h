// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/session/plugin_loader.h"
#include "host/workbench/time_course_view.h"

#include <QHash>
#include <QMainWindow>
#include <QTimer>
#include <vector>

class QLabel;
class QPushButton;
class QSplitter;
class QStackedWidget;

namespace corvane
{

class DocumentTabs;
class LogPane;
class RecentFilesMenu;
class ResultOpener;
class RunPane;
class StudyWindow;
class Session;
class BeforeCleaning;
struct BidsImport;
struct ImportRequest;
class TimeCourseReader;
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

    /// Opens files of every kind: an anatomy becomes a document, a .vtc is linked to the current
    /// one, a .voi or .prt is loaded. What has to be imported first goes to the import, a
    /// pipeline's folder to the list of its runs. What cannot be opened is told in one message.
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
    void showTimeCourse();
    void readVoiCourse();
    void addSliceChoice(QMenu &menu);
    void addConventions(QMenu &menu);
    void showNames();
    void askAboutMismatches();
    bool mayLoseResults();
    bool askUser(const QString &text);
    void rememberOpened(const QString &path);
    void open(const QString &path);
    QStringList openNow(const QStringList &paths);
    void chooseFiles();
    void importFiles();
    void importRequest(const ImportRequest &request);
    void openImported(const QStringList &files);
    void importRuns(const QString &what, std::vector<BidsImport> runs);
    void importDataset(const QString &dataset, const QStringList &participants);
    void chooseDataset();
    void openExample();
    void openStudy();
    void exploreRun();
    void closeDocument();
    void showDocument(int step);
    void start(Plugin &plugin);
    void about();
    void showKeys();
    void showBox(const QString &text);

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
    DocumentTabs *m_tabs = nullptr;
    QStackedWidget *m_pages = nullptr; ///< one of each Page
    QPushButton *m_welcomeOpen = nullptr;
    QSplitter *m_parts = nullptr; ///< of the volume's page
    VolumeView *m_volume = nullptr;
    TimeCourseView *m_timeCourse = nullptr;
    BeforeCleaning *m_before = nullptr;
    TimeCourseReader *m_reader;
    TimeCourseReader *m_voiReader;
    VoiCourse m_voiCourse; ///< of the chosen VOI, once it is read
    int m_shownVoiLoads = -1;
    QLabel *m_courseName = nullptr;
    QString m_checkedLoads;   ///< what was loaded when subjects and spaces were compared last
    QStringList m_mismatches; ///< those that the user knows of and keeps
    bool m_isAsking = false;
    QHash<int, QStringList> m_subjects; ///< files that were opened, by the position of the document
    RecentFilesMenu *m_recent = nullptr;
    ResultOpener *m_results = nullptr;
    QAction *m_explore = nullptr;
    StudyWindow *m_study = nullptr; ///< made when it is first asked for
    QMenu *m_pluginsMenu = nullptr;
    QMenu *m_helpMenu = nullptr;
    QList<QAction *> m_documentActions; ///< of use only while a document is open
};

} // namespace corvane
