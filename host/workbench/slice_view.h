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
    GreyWindow window;
    CubeVoxel cross{Vmr::size / 2, Vmr::size / 2, Vmr::size / 2};
    bool crossShown = true;
    double zoom = 1;
    int revision = 0; ///< changes with everything above that changes the colour of a voxel
};

/// One slice with the cross-hair. The mouse or the arrow keys move the cross-hair (ten voxels with
/// Shift), the wheel or PageUp and PageDown go through the slices, Ctrl and the wheel or + and -
/// zoom. Dragging with the right button changes window and level, with the middle one it moves a
/// zoomed picture.
class SliceView : public QWidget
{
    Q_OBJECT

public:
    /// The scene outlives the view. It may be null while no volume is open.
    SliceView(SlicePlane plane, const SliceScene &scene, QWidget *parent = nullptr);

    /// The scene has changed. Brings the cross-hair back into a zoomed picture.
    void follow();

    /// The voxel under a place of the widget, with the cross-hair's coordinate through the picture.
    /// It may lie outside the cube.
    CubeVoxel voxelAt(const QPointF &place) const;
    /// The place of a voxel's middle.
    QPointF placeOf(const CubeVoxel &voxel) const;

    QSize sizeHint() const override { return {360, 360}; }
    QSize minimumSizeHint() const override { return {120, 120}; }

Q_SIGNALS:
    void picked(const CubeVoxel &voxel);
    void pointedAt(const CubeVoxel &voxel); ///< by the mouse
    void pointedAway();
    void windowDragged(const GreyWindow &window);
    void zoomed(double factor);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    double pixelsPerVoxel() const;
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
