// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/workbench/command_run.h"

#include <QDialog>

#include <memory>
#include <optional>

namespace Ui
{
class ExploreRunDialog;
}

namespace corvane
{

class Workspace;

/// The files of a run that is open with its VOIs.
struct OpenRun {
    QString anatomy, vtc, voi;
    QString protocol; ///< empty without
    int vois = 0;
    bool isMismatched = false; ///< files say that they do not belong together, and are kept
};

/// What is open; nothing unless an anatomy has both a run and VOIs.
std::optional<OpenRun> openRun(const Workspace &workspace);

/// From the run that is open to a finished result for the connectome window: asks what is computed
/// of all VOIs and where the files go, and computes them in a process of its own.
class ExploreRunDialog : public QDialog
{
    Q_OBJECT

public:
    /// `program` computes; empty for this one.
    explicit ExploreRunDialog(OpenRun run, QWidget *parent = nullptr, const QString &program = {});
    ~ExploreRunDialog() override;

    /// Where the result is, once the dialog was accepted.
    QString folder() const;

    /// While it computes this asks the process to end, and the dialog stays.
    void reject() override;

private:
    QStringList arguments() const;
    bool mayReplace();
    void compute();
    void showEnd(const QString &fault);
    void enable();

    std::unique_ptr<Ui::ExploreRunDialog> m_ui;
    QPushButton *m_compute;
    const OpenRun m_run;
    CommandRun m_program;
};

} // namespace corvane
