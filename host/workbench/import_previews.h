// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/import/import_plan.h"

#include <QImage>
#include <QWidget>

/// @file
/// The pictures of the import dialog.

namespace corvane
{

/// Three slices of the anatomy through the middle of the run, with the lattice of the run and the
/// VOIs drawn over them.
class GridPreview : public QWidget
{
    Q_OBJECT

public:
    explicit GridPreview(QWidget *parent = nullptr);

    void show(const ImportPlan &plan);
    void clear();
    using QWidget::show;

    QSize sizeHint() const override { return {540, 190}; }
    QSize minimumSizeHint() const override { return {300, 110}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QList<QImage> m_slices;
    FunctionalGrid m_grid;
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
