// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/workbench/volume_slices.h"

#include <QWidget>
#include <memory>

namespace corvane
{

/// What the three slices of a volume show together.
struct SliceScene {
    Vmr vmr;
    std::shared_ptr<const VoiOverlay> vois;
    double voiOpacity = 0.5;
    std::shared_ptr<const RunOverlay> run;
    double runOpacity = 0.5;
    GreyWindow window;
    CubeVoxel cross{Vmr::size / 2, Vmr::size / 2, Vmr::size / 2};
    bool crossShown = true;
    double zoom = 1;
    bool neurological = false; ///< the patient's left is on the left; else on the right
    int revision = 0;          ///< changes with everything above that changes the colour of a voxel
};

/// One slice with the cross-hair. The mouse or the arrow keys move the cross-hair (ten voxels with
/// Shift), the wheel or PageUp and PageDown go through the slices, Ctrl and the wheel or + and -
/// zoom. Dragging with the right button changes window and level, with the middle one it moves a
/// zoomed picture; a right click has a menu for its picture and table. A double click or Return
/// asks for a slice that fills the pane.
class SliceView : public QWidget
{
    Q_OBJECT

public:
    /// The scene outlives the view. It may be null while no volume is open.
    SliceView(SlicePlane plane, const SliceScene &scene, QWidget *parent = nullptr);

    /// The scene has changed. Brings the cross-hair back into a zoomed picture.
    void follow();
    /// Brings a place of the cube, in voxels, into the middle.
    void showMiddle(const std::array<double, 3> &place);

    SlicePlane plane() const { return m_plane; }
    /// What a zoom of 1 makes of a voxel, in pixels.
    double pixelsAtOne() const { return std::min(width(), height()) / double(Vmr::size); }
    /// The voxel under a place of the widget, with the cross-hair's coordinate through the picture.
    /// It may lie outside the cube.
    CubeVoxel voxelAt(const QPointF &place) const;
    /// The place of a voxel's middle.
    QPointF placeOf(const CubeVoxel &voxel) const;

    QSize sizeHint() const override { return {360, 360}; }
    QSize minimumSizeHint() const override { return {120, 96}; }

Q_SIGNALS:
    void picked(const CubeVoxel &voxel);
    void pointedAt(const CubeVoxel &voxel); ///< by the mouse
    void pointedAway();
    void windowDragged(const GreyWindow &window);
    void zoomed(double factor);
    void fillAsked(); ///< to fill the pane with this slice, or to have the others back

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    double pixelsPerVoxel() const;
    /// 1 where the cube's axis runs to the right of the widget, -1 in a picture that is turned
    /// over.
    int sense() const { return isMirrored(m_scene.vmr, m_plane, m_scene.neurological) ? -1 : 1; }
    void popupMenu(const QPoint &globalPlace);
    bool hasVolume() const { return m_scene.vmr.voxels != nullptr; }
    void pick(const QPointF &place);
    void step(int axis, int voxels);
    void paintCross(QPainter &painter) const;
    void paintLetters(QPainter &painter) const;

    const PlaneAxes m_axes;
    const SlicePlane m_plane;
    const SliceScene &m_scene;
    QPointF m_centre{Vmr::size / 2.0, Vmr::size / 2.0}; ///< in the middle of the widget, in voxels
    double m_lastZoom = 1;
    QImage m_image;
    int m_imageRevision = -1;
    int m_imagePosition = -1;
    int m_wheelAngle = 0; ///< not yet used, in eighths of a degree
    QPointF m_dragStart;
    QPointF m_dragCentre;
    GreyWindow m_dragWindow;
};

} // namespace corvane

Q_DECLARE_METATYPE(corvane::CubeVoxel)
