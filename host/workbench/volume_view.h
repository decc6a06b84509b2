// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/workbench/slice_view.h"
#include "host/workbench/time_course_reader.h"

#include <map>
#include <memory>

class QGridLayout;

namespace Ui
{
class SliceControls;
}

namespace corvane
{

/// The current volume: three slices through its cross-hair, and the controls for what they show.
/// Each document has a cross-hair, a window and a zoom of its own.
class VolumeView : public QWidget
{
    Q_OBJECT

public:
    explicit VolumeView(QWidget *parent = nullptr);
    ~VolumeView() override;

    /// Shows a document of the workspace; its position there tells it from the others.
    void showVolume(int document, const Vmr &vmr);
    /// `names` are those of the VOIs in the order of their labels.
    void setVois(std::shared_ptr<const VoiOverlay> vois, const QStringList &names, double opacity);

    /// The linked run over the slices; null for nothing.
    void setRun(std::shared_ptr<const RunOverlay> run, double opacity);

    void focusSlices();
    const SliceScene &scene() const { return m_scene; }
    void setCross(const CubeVoxel &voxel);
    void setCrossShown(bool shown);
    void setWindow(const GreyWindow &window);
    void setAutomaticWindow();
    void setZoom(double zoom); ///< 1 shows whole slices, 16 is the most
    void zoomBy(double factor) { setZoom(m_scene.zoom * factor); }
    /// Zooms and moves the slices so that the head fills them. It is looked for on another thread.
    void fitToHead();
    /// The patient's left is on the left of the slices (neurological), else on the right.
    void setNeurological(bool neurological);
    /// Fills the pane with one slice, or shows all three and the controls again.
    void showAlone(std::optional<SlicePlane> plane);
    std::optional<SlicePlane> alone() const { return m_alone; }

Q_SIGNALS:
    void crossMoved();
    void aloneChanged();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Look {
        CubeVoxel cross;
        GreyWindow window;
        double zoom;
        std::optional<CubeBox> fit;
    };

    void connectControls();
    void follow();
    void showBox(const CubeBox &box);
    void fitAgain();
    void goToTyped();
    void tellCross();
    void tellMouse(const CubeVoxel &voxel);
    QString describe(const CubeVoxel &voxel) const;

    std::unique_ptr<Ui::SliceControls> m_ui;
    SliceScene m_scene;
    QList<SliceView *> m_slices;
    QGridLayout *m_layout;
    QWidget *m_controls;
    std::optional<SlicePlane> m_alone;
    std::optional<CubeBox> m_fit; ///< what the slices were fitted to, until they are zoomed
    TimeCourseReader m_fitReader;
    int m_document = -1;
    std::map<int, Look> m_looks; ///< of the documents that are not shown now
    QStringList m_voiNames;
};

} // namespace corvane
