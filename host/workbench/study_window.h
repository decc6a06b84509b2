// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/workbench/cohort_run.h"

#include <QDialog>

#include <memory>

namespace Ui
{
class StudyWindow;
}

namespace corvane
{

class StudyFilter;
class StudyTable;

/// A study: the table of its runs with what became of each, their pages and files, and the step
/// that computes what is not there yet.
class StudyWindow : public QDialog
{
    Q_OBJECT

public:
    /// `program` computes; empty for this one.
    explicit StudyWindow(QWidget *parent = nullptr, const QString &program = {});
    ~StudyWindow() override;

    /// Shows the study in that folder, which may be empty yet.
    void openStudy(const QString &folder);

Q_SIGNALS:
    /// The matrices of a row are to be looked at: their folder, and the beginning of their names.
    void resultChosen(const QString &folder, const QString &run);

private:
    void load();
    void fillForms();
    void showRow();
    int currentRow() const;
    void openBelowStudy(const QString &path);
    void compute();
    void testGroup();
    void showProgress(int done, int all);
    void showEnd(const QString &fault);
    void enable();

    std::unique_ptr<Ui::StudyWindow> m_ui;
    StudyTable *m_table;
    StudyFilter *m_filter;
    CohortRun m_run;
};

} // namespace corvane
