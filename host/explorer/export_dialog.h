// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/explorer_model.h"

#include <QDialog>

namespace Ui
{
class ExportDialog;
}

namespace corvane
{

/// Writes a view as a figure or a table, and tells the command that makes the same file.
class ExportDialog : public QDialog
{
    Q_OBJECT

public:
    ExportDialog(ExplorerModel &model, NetworkView kind, bool dark, QWidget *parent = nullptr);
    ~ExportDialog() override;

    /// The command line of what the dialog is set to.
    QString command() const;

private:
    NetworkView kind() const;
    FigureFormat format() const;
    void follow();
    void chooseFile();
    void save();

    ExplorerModel &m_model;
    std::unique_ptr<Ui::ExportDialog> m_ui;
};

} // namespace corvane
