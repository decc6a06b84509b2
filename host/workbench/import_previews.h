// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/import_plan.h"
#include "host/workbench/run_overlay.h"
#include "host/workbench/time_course_reader.h"
#include "host/workbench/voi_overlay.h"

#include <QImage>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QSlider;

/// @file
/// The pictures of the import dialog.

namespace corvane
{

class GridPicture;

/// Three slices of the anatomy through the middle of the run, with the lattice of the run, its mean
/// and the VOIs drawn over them, and controls for these. The mean is read on a thread of its own
/// and comes when it is there.
class GridPreview : public QWidget
{
    Q_OBJECT

public:
    explicit GridPreview(QWidget *parent = nullptr);
    ~GridPreview() override;

    void show(const ImportPlan &plan);
    void clear();
    using QWidget::show;

    /// The mean of the run that is drawn; null before it is read.
    std::shared_ptr<const RunOverlay> run() const { return m_run; }

private:
    void makeControls();
    void takeMean(const std::vector<double> &mean);
    void paint();

    GridPicture *m_picture;
    QWidget *m_controls;
    QCheckBox *m_showsVois;
    QCheckBox *m_showsRun;
    QSlider *m_opacity;
    QComboBox *m_colours;
    Vmr m_anatomy;
    FunctionalGrid m_grid;
    std::shared_ptr<const VoiOverlay> m_vois;
    std::vector<double> m_mean;
    std::shared_ptr<const RunOverlay> m_run;
    TimeCourseReader m_reader;
};

/// The conditions of a protocol, one row each, over the volumes of the run. It is as large as all
/// of them need: for a scroll area.
class ConditionTimeline : public QWidget
{
    Q_OBJECT

public:
    explicit ConditionTimeline(QWidget *parent = nullptr);

    void show(const Prt &protocol, int volumes);
    using QWidget::show;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int namesWidth() const;

    Prt m_protocol;
    int m_volumes = 0;
};

/// Framewise displacement over the volumes of a run, with the threshold, and the volumes that are
/// left out shaded.
class MotionPreview : public QWidget
{
    Q_OBJECT

public:
    explicit MotionPreview(QWidget *parent = nullptr);

    void show(const VolumeChoice &choice);
    using QWidget::show;

    QSize sizeHint() const override { return {300, 50}; }
    QSize minimumSizeHint() const override { return {200, 40}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    VolumeChoice m_choice;
};

} // namespace corvane
