// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/bids_import.h"

#include <QDialog>
#include <memory>

class QPushButton;

namespace Ui
{
class RunsDialog;
}

namespace corvane
{

/// Runs with what belongs to each, to be ticked and imported together. One that cannot be imported
/// is told with the reason and stops no other.
class RunsDialog : public QDialog
{
    Q_OBJECT

public:
    /// The folders of the requests are those below the one that the user chooses; `what` says in a
    /// line where the runs are from.
    RunsDialog(const QString &what, std::vector<BidsImport> runs, QWidget *parent = nullptr);
    ~RunsDialog() override;

    /// The files of each run that was imported, but for the protocol, which the run names.
    const std::vector<QStringList> &imported() const { return m_imported; }

private:
    void fill();
    void tick(bool ticked);
    void enableImport();
    std::vector<BidsImport> tickedRuns() const;
    BidsImport asChosen(BidsImport run) const;
    bool mayReplace(const std::vector<BidsImport> &runs);
    void runImports();

    std::unique_ptr<Ui::RunsDialog> m_ui;
    std::vector<BidsImport> m_runs;
    QPushButton *m_import;
    std::vector<QStringList> m_imported;
};

/// The runs of a pipeline's folder, of these participants or of all. Throws InputError.
std::vector<BidsImport> runsOfDataset(const QString &dataset, const QStringList &participants);

/// Runs that were given as single files.
std::vector<BidsImport> runsOfRequests(const std::vector<ImportRequest> &requests);

} // namespace corvane
