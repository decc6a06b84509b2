// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/import_check.h"

#include <QWidget>

class QPushButton;
class QTableWidget;

namespace corvane
{

/// The files that VOIs are made of, in their order: each with what it is, the names of its labels,
/// and what was found in it. Files are chosen in a dialog or dropped, typed and taken away.
class VoiSourceList : public QWidget
{
    Q_OBJECT

public:
    explicit VoiSourceList(QWidget *parent = nullptr);

    std::vector<VoiSource> sources() const;
    void setSources(const std::vector<VoiSource> &sources);

    /// Adds files by what they are: images of labels, masks, tables of places. A table of labels
    /// goes to the atlas that is chosen, or to the last one.
    void add(const QStringList &files);

    /// What is told of each source; more or fewer than there are have no effect.
    void setChecks(const std::vector<FieldCheck> &checks);

Q_SIGNALS:
    void changed();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void addRow(const VoiSource &source);
    void chooseFiles();
    void chooseLabels();
    void removeChosen();
    void enableButtons();
    int atlasRow() const;

    QTableWidget *m_table;
    QPushButton *m_labels;
    QPushButton *m_remove;
};

} // namespace corvane
