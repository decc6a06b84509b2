// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>
#include <vector>

class QWidget;

namespace corvane
{

struct BidsImport;
struct ImportRequest;
class RecentFilesMenu;
class Workspace;

/// Opens what the user gives the program: in the workspace, or by way of the import.
class FileOpener : public QObject
{
    Q_OBJECT

public:
    FileOpener(Workspace &workspace, RecentFilesMenu &recent, QWidget *window);

    /// Files of every kind: an anatomy becomes a document, a .vtc is linked to the current one, a
    /// .voi or .prt is loaded. What has to be imported first goes to the import, a pipeline's
    /// folder to the list of its runs. What cannot be opened is told in one message.
    void open(const QStringList &paths);

    /// Asks for files first.
    void choose();
    /// With the import built: its dialog, a pipeline's folder, and the example.
    void importFiles();
    void chooseDataset();
    void openExample();

Q_SIGNALS:
    void opened(); ///< the workspace holds what could be opened
    void failed(const QString &faults);

private:
    void openOne(const QString &path);
    QStringList openNow(const QStringList &paths);
    void rememberOpened(const QString &path);
    void importRequest(const ImportRequest &request);
    void openImported(const QStringList &files);
    void importRuns(const QString &what, std::vector<BidsImport> runs);
    void importDataset(const QString &dataset, const QStringList &participants);

    Workspace &m_workspace;
    RecentFilesMenu &m_recent;
    QWidget *m_window;                  ///< that dialogs belong to
    QHash<int, QStringList> m_subjects; ///< files that were opened, by the position of the document
};

} // namespace corvane
