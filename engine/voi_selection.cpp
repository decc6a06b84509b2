// SPDX-License-Identifier: GPL-3.0-or-later
//
// The choice of the VOIs that become the nodes of a subject's matrices.
#include "dataset/scoped_dialog.h"
#include "dataset/tessera.h"
#include "dataset/verbose_log.h"
#include "ui_tessera.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{

constexpr int minimumVois = 2;
constexpr int maximumVois = 10;

/// Freezes the list at the limit and allows Ok between the bounds.
void applyLimit(QListWidget *list, QPushButton *ok)
{
    const int selected = list->selectedItems().size();
    list->setSelectionMode(selected < maximumVois ? QAbstractItemView::MultiSelection
                                                  : QAbstractItemView::NoSelection);
    ok->setEnabled(selected >= minimumVois && selected <= maximumVois);
}

/// A click that reached the limit froze the list when the button went down; this thaws it when the
/// button comes up, so that an item can be taken back. What counts is the state of Ok.
void rearm(QListWidget *list)
{
    if (list->selectionMode() == QAbstractItemView::NoSelection)
        list->setSelectionMode(QAbstractItemView::MultiSelection);
}

/// One item per VOI, with its index in the file's order as data; the seeds are selected.
void fillList(QListWidget *list, const QStringList &labels, const QVector<int> &seeds)
{
    for (int voi = 0; voi < labels.size(); ++voi) {
        auto *const item = new QListWidgetItem(labels.at(voi), list);
        item->setData(Qt::UserRole, voi);
        item->setSelected(seeds.contains(voi));
    }
}

QVector<int> selectedVois(const QListWidget *list)
{
    QVector<int> vois;
    const QList<QListWidgetItem *> items = list->selectedItems();
    for (const QListWidgetItem *item : items)
        vois.append(item->data(Qt::UserRole).toInt());
    return vois;
}

} // namespace

void Tessera::configurationSeedToSeedVOIs(bool)
{
    verboseLog("void __cdecl Tessera::configurationSeedToSeedVOIs(bool)");
    if (currentSubject == -1)
        return;
    // The count first: it is what reads the names.
    const QSharedPointer<Subject> subject = subjectsModel->sharedSubjectAt(currentSubject);
    ConnectivityScheme scheme = subject->scheme();
    const int count = subject->voiCount(true);

    const ScopedDialog dialog(new QDialog(this));
    dialog->setWindowTitle(tr("Select VOIs"));
    dialog->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
    auto *const label = new QLabel(tr("Select the VOIs (max 10) to include to your analysis."));
    auto *const list = new QListWidget;
    list->setSelectionMode(QAbstractItemView::MultiSelection);
    list->setAccessibleName(tr("VOIs"));
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton *const ok = buttons->button(QDialogButtonBox::Ok);
    ok->setEnabled(false);
    auto *const selectNone = new QPushButton(tr("Select None"));
    selectNone->setFlat(true);
    buttons->addButton(selectNone, QDialogButtonBox::ResetRole);

    auto *const layout = new QVBoxLayout(dialog.get());
    layout->addWidget(label);
    layout->addWidget(list);
    layout->addWidget(buttons);
    // The box orders its buttons anew with each one that is added, and loses the first ones.
    setTabOrder(list, selectNone);
    setTabOrder(selectNone, ok);
    setTabOrder(ok, buttons->button(QDialogButtonBox::Cancel));
    fillList(list, subject->voiLabels(true).mid(0, count), scheme.seedVois);

    // Only now, so that the selection made above does not run the rules: Ok waits for a change.
    connect(buttons, &QDialogButtonBox::accepted, dialog.get(), &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, dialog.get(), &QDialog::reject);
    connect(selectNone, &QPushButton::clicked, list, &QListWidget::clearSelection);
    connect(list, &QListWidget::itemClicked, list, [list] { rearm(list); });
    // To move the current item is not to select it: this reads the selection and changes nothing.
    connect(list, &QListWidget::currentItemChanged, list, [list] { selectedVois(list); });
    connect(list, &QListWidget::itemSelectionChanged, list, [list, ok] { applyLimit(list, ok); });

    const int result = dialog->exec();
    if (!dialog)
        return; // the main dialog was closed meanwhile
    if (result == QDialog::Accepted) {
        scheme.seedVois = selectedVois(list);
        subject->setScheme(scheme);
    }
    ui->btn_Compute->setEnabled(!scheme.seedVois.isEmpty());
}
