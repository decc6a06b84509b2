// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/prt_file.h"

#include <QColor>
#include <QWidget>
#include <vector>

namespace corvane
{

/// The mean course of a VOI.
struct VoiCourse {
    QString name;
    QColor colour;
    std::vector<double> samples; ///< one per volume; empty: there is none
};

/// What a time course view shows.
struct TimeCourseScene {
    std::vector<double> samples; ///< one per volume; empty without any: `hint` is shown instead
    std::vector<double> before;  ///< the same volumes before the cleaning; empty: not shown
    VoiCourse voi;               ///< drawn beside them
    double repetitionTime = 0;   ///< seconds
    std::vector<PrtCondition> conditions;
    QString hint;
    QString cleaning; ///< what was done to the run, in one line; empty for nothing
};

/// The samples of one voxel over the volumes, with the intervals of the protocol as bands behind
/// them. The mouse or the arrow keys read single volumes.
class TimeCourseView : public QWidget
{
    Q_OBJECT

public:
    explicit TimeCourseView(QWidget *parent = nullptr);

    void show(TimeCourseScene scene);
    using QWidget::show;

    const TimeCourseScene &scene() const { return m_scene; }
    /// What stands below the plot: the unit of its axis, and how the run was cleaned.
    QString caption() const;
    /// What the marker tells of its volume; empty without one.
    QString markedText() const;
    /// All that is drawn, a row for each volume, with tabs between the cells.
    QByteArray table() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    struct Frame;

    /// A line of the plot.
    struct Course {
        QString name;
        QColor colour;
        const std::vector<double> *samples;
    };

    int volumes() const
    {
        return static_cast<int>(std::max(m_scene.samples.size(), m_scene.voi.samples.size()));
    }
    std::vector<Course> courses() const;
    Frame frame() const;
    void mark(int volume);
    QString conditionsAt(int volume) const;
    void paintBands(QPainter &painter, const Frame &frame) const;
    void paintAxes(QPainter &painter, const Frame &frame) const;
    void paintSamples(QPainter &painter, const Frame &frame, const std::vector<double> &samples,
                      const QColor &colour) const;
    double paintCourseNames(QPainter &painter, const Frame &frame) const;
    void paintLegend(QPainter &painter, const Frame &frame) const;
    void paintMarker(QPainter &painter, const Frame &frame) const;

    TimeCourseScene m_scene;
    int m_marked = 0; ///< volume from 1, 0 for none
};

} // namespace corvane
