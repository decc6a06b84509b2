// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/group_form.h"

#include "ui_group_form.h"

#include "host/files/input_error.h"
#include "host/files/tsv_table.h"

#include <QFileInfo>
#include <QProcess>

namespace corvane
{

GroupForm::GroupForm(QWidget *parent) : QWidget(parent), m_ui(new Ui::GroupForm)
{
    m_ui->setupUi(this);
    for (QCheckBox *test : findChildren<QCheckBox *>())
        connect(test, &QCheckBox::toggled, this, &GroupForm::showNeeds);
    for (QLineEdit *text : {m_ui->formula, m_ui->contrast, m_ui->threshold})
        connect(text, &QLineEdit::textChanged, this, &GroupForm::showNeeds);
    connect(m_ui->run, &QPushButton::clicked, this, &GroupForm::runWanted);
    connect(m_ui->groupReport, &QPushButton::clicked, this, &GroupForm::reportWanted);
    showColumnsOf({});
    showNeeds();
}

GroupForm::~GroupForm() = default;

void GroupForm::showColumnsOf(const QString &dataset)
{
    const QString path = dataset + QStringLiteral("/participants.tsv");
    QStringList columns{QStringLiteral("mean_fd"), QStringLiteral("degrees_of_freedom")};
    QString fault;
    if (!dataset.isEmpty() && QFileInfo::exists(path)) {
        try {
            QStringList own = TsvTable(path).columns();
            own.removeAll(QStringLiteral("participant_id"));
            columns = own + columns;
        } catch (const InputError &error) {
            fault = QLatin1Char('\n') + QString::fromUtf8(error.what());
        }
    } else if (!dataset.isEmpty()) {
        fault = tr("\nThe dataset has no participants.tsv, which would give more.");
    }
    m_ui->columns->setText(tr("It may name %1.").arg(columns.join(QStringLiteral(", "))) + fault);
}

QStringList GroupForm::tests() const
{
    QStringList names;
    for (const QCheckBox *test : findChildren<QCheckBox *>())
        if (test->isChecked())
            names += test->objectName();
    return names;
}

bool GroupForm::hasModel() const
{
    return m_ui->glm->isChecked() || m_ui->nbs->isChecked();
}

bool GroupForm::isComplete() const
{
    const bool hasTexts =
        !m_ui->formula->text().trimmed().isEmpty() && !m_ui->contrast->text().trimmed().isEmpty();
    const bool hasThreshold =
        !m_ui->nbs->isChecked() || !m_ui->threshold->text().trimmed().isEmpty();
    return !tests().isEmpty() && (!hasModel() || hasTexts) && hasThreshold;
}

QStringList GroupForm::options() const
{
    QStringList options{QStringLiteral("--test=") + tests().join(QLatin1Char(',')),
                        QStringLiteral("--permutations=") +
                            QString::number(m_ui->permutations->value())};
    const auto add = [&options](const QString &option, const QLineEdit *text) {
        const QString value = text->text().trimmed();
        if (!value.isEmpty())
            options += option + value;
    };
    add(QStringLiteral("--formula="), m_ui->formula);
    add(QStringLiteral("--contrast="), m_ui->contrast);
    if (m_ui->nbs->isChecked())
        add(QStringLiteral("--threshold="), m_ui->threshold);
    return options + QStringList{QStringLiteral("--plots"), QStringLiteral("--page")} +
           QProcess::splitCommand(m_ui->furtherOptions->text());
}

void GroupForm::enable(bool canRun, bool hasReport)
{
    m_canRun = canRun;
    m_ui->groupReport->setEnabled(hasReport);
    showNeeds();
}

void GroupForm::showNeeds()
{
    m_ui->threshold->setEnabled(m_ui->nbs->isChecked());
    m_ui->run->setEnabled(m_canRun && isComplete());
}

} // namespace corvane
