// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/import_check.h"

#include <QDialog>
#include <QFutureWatcher>
#include <QTimer>
#include <atomic>
#include <memory>

class QPushButton;

namespace Ui
{
class ImportDialog;
}

namespace corvane
{

/// The import of one subject: asks for its files, shows what goes where, and imports them with a
/// progress that can be cancelled. Nothing is written before all of it is done.
class ImportDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ImportDialog(QWidget *parent = nullptr);
    ~ImportDialog() override;

    /// What the dialog asks for now.
    ImportRequest request() const;
    void setRequest(const ImportRequest &request);
    /// Fills in files alone; choices that are remembered from the last import stay.
    void setFiles(const ImportRequest &request);

    /// The files that were made, but for the protocol, which the run
    /// names; empty before the import.
    const QStringList &importedFiles() const { return m_importedFiles; }

private:
    std::shared_ptr<const CleaningRequest> cleaning() const;
    void connectFields();
    void restoreChoices();
    void rememberChoices() const;
    void suggestConfounds();
    void suggestName();
    void suggestFolder();
    void suggestProvenance();
    void inputChanged();
    void startPlanning();
    void showOutcome();
    void showMessages(const ImportCheck &check);
    void showPlan(const ImportPlan &plan);
    void showCleaning(const ImportPlan &plan);
    void showVois(const ImportPlan &plan);
    void clearPlan();
    void runImport();

    std::unique_ptr<Ui::ImportDialog> m_ui;
    QPushButton *m_import;
    QString m_suggestedName;
    QString m_suggestedConfounds;
    QString m_suggestedFolder;
    QTimer m_planSoon;
    QFutureWatcher<CheckedImport> m_planning;
    std::shared_ptr<std::atomic_bool> m_stop; ///< set when the planning that runs is of no use
    std::shared_ptr<const ImportPlan> m_plan; ///< what is shown, null when nothing is
    bool m_planIsOld = false; ///< the input has changed since the last planning began
    QStringList m_importedFiles;
};

} // namespace corvane
