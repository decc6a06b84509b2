// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/session/session.h"
#include "host/workbench/main_window.h"
#include "tests/host/module/module_subjects.h"
#include "tests/host/support/host_files.h"
#include "tests/support/modal_driver.h"
#include "tests/support/qt_printers.h"

#include <Eigen/Core>
#include <QPointer>
#include <QPushButton>
#include <QStringList>
#include <QVector>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

class QListWidget;
class QMenu;

namespace corvane
{

/// What the module holds of a finished subject.
struct FinishedSubject {
    QString name;
    QVector<int> seeds;
    QStringList nodes;     ///< names of the seeds
    QStringList intervals; ///< names of the slices
    QVector<int> events;   ///< 1 for each slice that is a trigger
    std::vector<Eigen::MatrixXf> matrices;
    std::vector<Eigen::MatrixXf> trees;
};

/// The workbench and the plugin's module, loaded by the workbench into a program named as the host,
/// and worked with clicks and keys as a user would. As for every host, the module's functions are
/// out of reach: its windows and widgets are found by the names of their classes and objects.
class ModuleSession : public testing::Test
{
protected:
    ModuleSession();
    ~ModuleSession() override;

    TemporaryFolder folder; ///< outlives the session, which keeps files of it open

    // The workbench
    void openWorkbench(const QStringList &anatomies); ///< with the plugins of the build
    void closeWorkbench();                            ///< as a user does; it is gone then
    /// Closing asks while results were not exported; not after this.
    static void takeResultsForExported();
    void startPlugin(); ///< from its menu
    std::string logged() const;
    Session session;
    std::unique_ptr<MainWindow> workbench;

    /// From the next main dialog on, each compute writes its steps into a folder of its own.
    void turnDumpsOn();
    /// The dumps of the last compute by their names; they are gone then.
    QMap<QString, QByteArray> takeDumps();

    // Windows and widgets
    static QList<QWidget *> windowsOf(const char *className); ///< that are visible
    static QWidget *windowOf(const char *className);          ///< the only one
    static QWidget *mainDialog() { return windowOf("Tessera"); }
    static QWidget *resultsDialog() { return windowOf("ConnectivityObjectUI"); }
    /// The windows that the module has made, visible or not, by their classes.
    static QStringList moduleWindows();

    template <typename Widget>
    static Widget *find(const QWidget *window, const char *name)
    {
        auto *const widget =
            window != nullptr ? window->findChild<Widget *>(QLatin1String(name)) : nullptr;
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    static void showPage(const QWidget *widget); ///< the tab that holds it, with a click
    static void click(QWidget *widget);          ///< on its tab, which comes to the front
    static void click(const QWidget *window, const char *name);
    /// Clicks through the window, so that everything comes of it that comes of a real click.
    static void clickAt(QWidget *widget, const QPoint &at, Qt::MouseButton button = Qt::LeftButton);
    /// Opens the context menu of a widget and chooses an entry.
    void chooseFromMenu(QWidget *widget, const QString &entry);
    /// Acts on the context menu that opens next.
    void whenMenuOpens(const std::function<void(QMenu &)> &act);
    /// Types a path into the file dialog that `start` opens.
    void exportTo(const QString &path, const std::function<void()> &start);

    // The dataset
    int addRow(const QString &name);
    QWidget *cell(int row, int column);
    QPushButton *fileButton(int row, int column);
    void chooseAnatomy(int row, const QString &vmr);
    void chooseFile(int row, int column, const QString &path);
    int addSubject(const QString &name, const SubjectFiles &files);

    // The compute
    void selectProfile(const QString &name);
    void chooseVois(const QVector<int> &vois);
    void setUseProtocol(bool use);
    void compute(); ///< of the selected profile; it must show its progress
    QListWidget *results();
    static FinishedSubject finished(int index);
    void openResults(int index); ///< with a double click in the list

    // The measures of a results dialog
    static QPushButton *measureButton(const QWidget *dialog, const QString &key,
                                      const QString &text);

    ModalDriver modals;

private:
    QString m_dumps;
    int m_dumpFolders = 0;
};

enum SubjectColumn { NameColumn, VmrColumn, VtcColumn, VoiColumn, PrtColumn };

} // namespace corvane
