// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/voi_list.h"

#include "host/workbench/voi_overlay.h"

#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

namespace corvane
{

namespace
{

QIcon colourIcon(const Voi &voi)
{
    QPixmap square(32, 32);
    square.fill(QColor(voi.r, voi.g, voi.b));
    QIcon icon(square);
    // Else the colour of the selection would be mixed into that of the VOI.
    icon.addPixmap(square, QIcon::Selected);
    return icon;
}

} // namespace

VoiList::VoiList(QWidget *parent) : QDockWidget(tr("Volumes of Interest"), parent)
{
    setObjectName(QStringLiteral("voiPane"));
    auto *const content = new QWidget(this);
    auto *const column = new QVBoxLayout(content);

    m_hint = new QLabel;
    m_hint->setObjectName(QStringLiteral("voiHint"));
    m_hint->setWordWrap(true);
    m_hint->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    column->addWidget(m_hint);
    m_listing = new QWidget;
    column->addWidget(m_listing, 1);
    auto *const layout = new QVBoxLayout(m_listing);
    layout->setContentsMargins(0, 0, 0, 0);

    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("voiList"));
    m_list->setAccessibleName(tr("Volumes of interest"));
    m_list->setAccessibleDescription(
        tr("Arrow keys choose the VOI whose mean course is drawn, Space shows or hides one, Return "
           "takes the cross-hair to it."));
    m_list->setStatusTip(tr("Click or arrow keys: mean course. Double click or Return: go there. "
                            "Check box or Space: show or hide."));
    m_list->setUniformItemSizes(true);
    connect(m_list, &QListWidget::itemActivated, this, &VoiList::jump);
    connect(m_list, &QListWidget::itemChanged, this, &VoiList::makeOverlay);
    connect(m_list, &QListWidget::itemSelectionChanged, this, &VoiList::chosenChanged);
    layout->addWidget(m_list, 1);

    auto *const buttons = new QHBoxLayout;
    m_showAll = new QPushButton(tr("&Show All"));
    m_showAll->setObjectName(QStringLiteral("showAllVois"));
    m_hideAll = new QPushButton(tr("Hi&de All"));
    m_hideAll->setObjectName(QStringLiteral("hideAllVois"));
    connect(m_showAll, &QPushButton::clicked, this, [this] { showAll(true); });
    connect(m_hideAll, &QPushButton::clicked, this, [this] { showAll(false); });
    buttons->addWidget(m_showAll);
    buttons->addWidget(m_hideAll);
    layout->addLayout(buttons);

    auto *const opacityRow = new QHBoxLayout;
    auto *const label = new QLabel(tr("Opaci&ty"));
    m_opacity = new QSlider(Qt::Horizontal);
    m_opacity->setObjectName(QStringLiteral("voiOpacity"));
    m_opacity->setAccessibleName(tr("Opacity of the VOIs in percent"));
    m_opacity->setRange(0, 100);
    m_opacity->setValue(50);
    label->setBuddy(m_opacity);
    connect(m_opacity, &QSlider::valueChanged, this, &VoiList::overlayChanged);
    opacityRow->addWidget(label);
    opacityRow->addWidget(m_opacity);
    layout->addLayout(opacityRow);
    m_explore = new QPushButton(tr("E&xplore Connections..."));
    m_explore->setObjectName(QStringLiteral("exploreVois"));
    m_explore->hide();
    connect(m_explore, &QPushButton::clicked, this, &VoiList::exploreAsked);
    layout->addWidget(m_explore);
    setWidget(content);
    setVois(nullptr);
}

double VoiList::opacity() const
{
    return m_opacity->value() / 100.0;
}

void VoiList::setVois(const VoiSet *set)
{
    fill(set != nullptr ? *set : VoiSet());
    m_isLoaded = set != nullptr;
    for (QWidget *widget : {static_cast<QWidget *>(m_list), static_cast<QWidget *>(m_showAll),
                            static_cast<QWidget *>(m_hideAll), static_cast<QWidget *>(m_opacity)})
        widget->setEnabled(m_isLoaded);
    showHint();
    makeOverlay();
    Q_EMIT chosenChanged();
}

std::optional<std::size_t> VoiList::chosen() const
{
    const QList<QListWidgetItem *> selected = m_list->selectedItems();
    if (selected.isEmpty())
        return std::nullopt;
    return static_cast<std::size_t>(m_list->row(selected.constFirst()));
}

void VoiList::setAnatomyOpen(bool isOpen)
{
    m_isAnatomyOpen = isOpen;
    showHint();
}

void VoiList::setExplorable(bool isExplorable)
{
    m_explore->show();
    m_explore->setEnabled(isExplorable);
    m_explore->setToolTip(isExplorable ? tr("Computes the connections between the VOIs in the "
                                            "functional run and shows them")
                                       : tr("Needs a functional run and its VOIs"));
}

void VoiList::showHint()
{
    m_listing->setVisible(m_isAnatomyOpen);
    m_hint->setVisible(!m_isAnatomyOpen || !m_isLoaded);
    m_hint->setText(m_isAnatomyOpen
                        ? tr("No VOIs are loaded. Open a .voi file, or let a plugin load one.")
                        : tr("VOIs are listed here when an anatomy is open."));
    static_cast<QBoxLayout *>(widget()->layout())
        ->setStretchFactor(m_hint, m_isAnatomyOpen ? 0 : 1);
}

void VoiList::fill(const VoiSet &set)
{
    const QSignalBlocker blocker(m_list);
    m_set = set;
    QStringList names;
    for (const Voi &voi : set.vois)
        names += voi.name;
    const bool sameNames = names == m_names;
    m_names = names;

    std::vector<Qt::CheckState> states(set.vois.size(), Qt::Checked);
    if (sameNames)
        for (std::size_t n = 0; n < states.size(); ++n)
            states[n] = m_list->item(static_cast<int>(n))->checkState();
    const int currentRow = sameNames ? m_list->currentRow() : 0;
    const bool isChosen = sameNames && chosen().has_value();
    m_list->clear();
    m_centres.clear();
    for (std::size_t n = 0; n < set.vois.size(); ++n) {
        const Voi &voi = set.vois[n];
        const QString label = voi.voxels.empty() ? tr("%1 (empty)").arg(voi.name) : voi.name;
        auto *const item = new QListWidgetItem(colourIcon(voi), label, m_list);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(states[n]);
        m_centres.push_back(centreOf(set, n));
    }
    // Where the keyboard begins, but none is chosen before the user does.
    m_list->setCurrentRow(currentRow, isChosen ? QItemSelectionModel::ClearAndSelect
                                               : QItemSelectionModel::NoUpdate);
}

void VoiList::showAll(bool shown)
{
    {
        const QSignalBlocker blocker(m_list);
        for (int row = 0; row < m_list->count(); ++row)
            m_list->item(row)->setCheckState(shown ? Qt::Checked : Qt::Unchecked);
    }
    m_list->viewport()->update();
    makeOverlay();
}

void VoiList::makeOverlay()
{
    std::vector<bool> shown;
    shown.reserve(static_cast<std::size_t>(m_list->count()));
    for (int row = 0; row < m_list->count(); ++row)
        shown.push_back(m_list->item(row)->checkState() == Qt::Checked);
    const bool any = std::find(shown.begin(), shown.end(), true) != shown.end();
    m_overlay = any ? std::make_shared<const VoiOverlay>(m_set, shown) : nullptr;
    Q_EMIT overlayChanged();
}

void VoiList::jump(QListWidgetItem *item)
{
    const auto &centre = m_centres[static_cast<std::size_t>(m_list->row(item))];
    if (centre)
        Q_EMIT jumped(*centre);
}

} // namespace corvane
