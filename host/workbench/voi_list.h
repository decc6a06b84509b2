// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/voi_file.h"
#include "host/workbench/volume_slices.h"

#include <QDockWidget>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QSlider;

namespace corvane
{

/// The loaded VOIs as a pane of the main window: shows and hides each, and takes the cross-hair to
/// one by a double click or Return.
class VoiList : public QDockWidget
{
    Q_OBJECT

public:
    explicit VoiList(QWidget *parent = nullptr);

    /// Lists the VOIs of a set, none for null. One with the same names keeps what is hidden.
    void setVois(const VoiSet *set);
    /// Without an anatomy that they lie in, nothing is listed.
    void setAnatomyOpen(bool isOpen);
    /// Offers to explore the connections between the VOIs; before the first call it does not.
    void setExplorable(bool isExplorable);

    /// Where the shown VOIs lie; null when none is.
    std::shared_ptr<const VoiOverlay> overlay() const { return m_overlay; }
    double opacity() const;
    const QStringList &names() const { return m_names; }
    const VoiSet &vois() const { return m_set; }
    /// The VOI whose row is chosen, by its place in the set.
    std::optional<std::size_t> chosen() const;

Q_SIGNALS:
    void overlayChanged();
    void jumped(const CubeVoxel &voxel);
    /// Another VOI is chosen, or what is chosen is of another set.
    void chosenChanged();
    /// The connections between the VOIs are to be explored.
    void exploreAsked();

private:
    void fill(const VoiSet &set);
    void showHint();
    void showAll(bool shown);
    void makeOverlay();
    void jump(QListWidgetItem *item);

    QLabel *m_hint;
    QWidget *m_listing; ///< all but the hint
    bool m_isAnatomyOpen = false;
    bool m_isLoaded = false;
    QListWidget *m_list;
    QPushButton *m_showAll;
    QPushButton *m_hideAll;
    QPushButton *m_explore;
    QSlider *m_opacity;
    QStringList m_names;
    std::vector<std::optional<CubeVoxel>> m_centres;
    VoiSet m_set;
    std::shared_ptr<const VoiOverlay> m_overlay;
};

} // namespace corvane
