// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/file_opener.h"

#include "host/files/file_kind.h"
#include "host/files/input_error.h"
#include "host/session/log.h"
#include "host/session/workspace.h"
#include "host/workbench/recent_files.h"
#include "host/workbench/user_folder.h"
#ifdef CORVANE_IMPORT
#include "dataset/scoped_dialog.h"
#include "host/import/given_files.h"
#include "host/workbench/example_files.h"
#include "host/workbench/import_dialog.h"
#include "host/workbench/runs_dialog.h"
#endif

#include <QApplication>
#include <QFileDialog>
#include <algorithm>

namespace corvane
{

namespace
{

/// The cursor of a program at work, while it lives.
class BusyCursor
{
public:
    BusyCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QApplication::restoreOverrideCursor(); }
    BusyCursor(const BusyCursor &) = delete;
    BusyCursor &operator=(const BusyCursor &) = delete;
};

/// Files that are opened together: a run is linked to the anatomy that comes with it, and takes the
/// place of the protocol from before.
int turnOf(const QString &path)
{
    const FileKind kind = fileKind(path);
    if (kind == FileKind::Vtc)
        return 1;
    return kind == FileKind::Voi || kind == FileKind::Prt ? 2 : 0;
}

} // namespace

FileOpener::FileOpener(Workspace &workspace, RecentFilesMenu &recent, QWidget *window)
    : QObject(window), m_workspace(workspace), m_recent(recent), m_window(window)
{
    connect(&m_recent, &RecentFilesMenu::chosen, this, &FileOpener::open);
}

void FileOpener::open(const QStringList &paths)
{
    QStringList faults;
#ifdef CORVANE_IMPORT
    const GivenFiles given = sortGivenFiles(paths);
    faults = given.faults + openNow(given.toOpen);
    std::vector<ImportRequest> requests;
    if (!given.toImport.isEmpty()) {
        rememberUserFolder(given.toImport.front());
        requests = requestsOf(given.toImport, faults);
    }
#else
    faults = openNow(paths);
#endif
    if (!faults.isEmpty())
        Q_EMIT failed(faults.join(QLatin1Char('\n')));
#ifdef CORVANE_IMPORT
    if (!given.dataset.isEmpty())
        importDataset(given.dataset, given.participants);
    if (requests.size() == 1)
        importRequest(requests.front());
    else if (!requests.empty())
        importRuns(tr("Files that were opened together"), runsOfRequests(requests));
#endif
}

void FileOpener::openOne(const QString &path)
{
    switch (fileKind(path)) {
    case FileKind::Vtc:
        m_workspace.linkVtc(path);
        break;
    case FileKind::Voi:
        m_workspace.loadVois(path);
        break;
    case FileKind::Prt:
        m_workspace.loadProtocol(path);
        break;
    default:
        m_workspace.openVmr(path);
    }
}

QStringList FileOpener::openNow(const QStringList &paths)
{
    QStringList sorted = paths;
    std::stable_sort(sorted.begin(), sorted.end(), [](const QString &left, const QString &right) {
        return turnOf(left) < turnOf(right);
    });
    QStringList faults;
    {
        const BusyCursor busy;
        for (const QString &path : qAsConst(sorted)) {
            try {
                openOne(path);
                rememberOpened(path);
                logText(tr("Opened %1.").arg(QFileInfo(path).fileName()));
            } catch (const InputError &error) {
                faults += QString::fromUtf8(error.what());
            } catch (const std::bad_alloc &) {
                faults += tr("%1: there is not enough memory to open it").arg(path);
            }
        }
    }
    // Where the dialogs of plugins begin, which ask for the same files once more.
    if (!sorted.isEmpty()) {
        QFileDialog().setDirectory(QFileInfo(sorted.front()).absolutePath());
        rememberUserFolder(sorted.front());
    }
    Q_EMIT opened();
    return faults;
}

/// Recent are whole subjects: an anatomy with what was opened on it.
void FileOpener::rememberOpened(const QString &path)
{
    QStringList &files = m_subjects[m_workspace.currentDocument()];
    const FileKind kind = fileKind(path);
    const bool isAnatomy = turnOf(path) == 0;
    if (isAnatomy)
        files.clear();
    files.erase(std::remove_if(files.begin(), files.end(),
                               [&](const QString &file) { return fileKind(file) == kind; }),
                files.end());
    files += path;
    m_recent.add(files);
}

void FileOpener::choose()
{
    const QStringList paths = QFileDialog::getOpenFileNames(
        m_window, tr("Open"), userFolder(),
        QStringList{fileFilter(tr("All files of this program"),
                               {FileKind::Vmr, FileKind::Vtc, FileKind::Voi, FileKind::Prt,
                                FileKind::Nifti, FileKind::Nrrd, FileKind::Table}),
                    fileFilter(tr("Anatomies"), {FileKind::Vmr, FileKind::Nifti, FileKind::Nrrd}),
                    fileFilter(tr("Time courses"), {FileKind::Vtc}),
                    fileFilter(tr("Volumes of interest"), {FileKind::Voi}),
                    fileFilter(tr("Protocols"), {FileKind::Prt}), tr("All files (*)")}
            .join(QStringLiteral(";;")));
    if (paths.isEmpty())
        return;
    rememberUserFolder(paths.front());
    open(paths);
}

#ifdef CORVANE_IMPORT
void FileOpener::importFiles()
{
    importRequest({});
}

/// The import, with its fields filled as far as the request goes.
void FileOpener::importRequest(const ImportRequest &request)
{
    const ScopedDialog dialog(new ImportDialog(m_window));
    dialog->setAttribute(Qt::WA_DeleteOnClose, false);
    dialog->setFiles(request);
    if (dialog->exec() == QDialog::Accepted && dialog)
        openImported(dialog->importedFiles());
}

/// Dialogs go on where the scans are, not where their import has put its files.
void FileOpener::openImported(const QStringList &files)
{
    const QString folder = userFolder();
    open(files);
    rememberUserFolder(folder);
}

/// The first of the runs that were imported is shown, all are among the recent ones.
void FileOpener::importRuns(const QString &what, std::vector<BidsImport> runs)
{
    const ScopedDialog dialog(new RunsDialog(what, std::move(runs), m_window));
    if (dialog->exec() != QDialog::Accepted || !dialog)
        return;
    const std::vector<QStringList> imported = dialog->imported();
    for (auto files = imported.rbegin(); files != imported.rend(); ++files)
        m_recent.add(*files);
    openImported(imported.front());
}

void FileOpener::importDataset(const QString &dataset, const QStringList &participants)
{
    std::vector<BidsImport> runs;
    try {
        const BusyCursor busy;
        runs = runsOfDataset(dataset, participants);
    } catch (const InputError &error) {
        Q_EMIT failed(QString::fromUtf8(error.what()));
        return;
    }
    importRuns(dataset, std::move(runs));
}

void FileOpener::chooseDataset()
{
    const QString folder =
        QFileDialog::getExistingDirectory(m_window, tr("Import Folder"), userFolder());
    if (folder.isEmpty())
        return;
    rememberUserFolder(folder);
    open({folder});
}

void FileOpener::openExample()
{
    const QString folder = exampleFolder(m_window);
    if (!folder.isEmpty())
        open(exampleFiles(folder));
}
#endif

} // namespace corvane
