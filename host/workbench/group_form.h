// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QWidget>

#include <memory>

namespace Ui
{
class GroupForm;
}

namespace corvane
{

/// What is to be asked about the group of a study.
class GroupForm : public QWidget
{
    Q_OBJECT

public:
    explicit GroupForm(QWidget *parent = nullptr);
    ~GroupForm() override;

    /// The columns that a formula may name: those of the dataset's participants.tsv, and what the
    /// study's ledger adds.
    void showColumnsOf(const QString &dataset);
    /// The options of `Corvane cohort ... group`.
    QStringList options() const;
    /// What can be done now: `canRun` without regard to what the form lacks.
    void enable(bool canRun, bool hasReport);

Q_SIGNALS:
    void runWanted();
    void reportWanted();

private:
    QStringList tests() const;
    bool hasModel() const;
    bool isComplete() const;
    void showNeeds();

    std::unique_ptr<Ui::GroupForm> m_ui;
    bool m_canRun = false;
};

} // namespace corvane
