// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/workbench/run_overlay.h"
#include "host/workbench/time_course_reader.h"

#include <QDockWidget>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QSlider;
class QSpinBox;

namespace corvane
{

/// The linked run as a pane of the main window: whether it is shown over the slices, its mean or
/// one of its volumes, in which colours and how strongly.
class RunPane : public QDockWidget
{
    Q_OBJECT

public:
    explicit RunPane(QWidget *parent = nullptr);

    /// The run that is linked; null for none. What is shown of it is read on a thread of its own.
    void setRun(const VtcFile *vtc);

    /// What is shown; null for nothing.
    std::shared_ptr<const RunOverlay> overlay() const { return m_overlay; }
    double opacity() const;

Q_SIGNALS:
    void overlayChanged();

private:
    void makeControls();
    void choose();
    void tellTime();
    void makeOverlay();

    QLabel *m_hint;
    QWidget *m_controls;
    QCheckBox *m_isShown;
    QCheckBox *m_isMean;
    QSlider *m_time;
    QSpinBox *m_volume;
    QLabel *m_seconds;
    QComboBox *m_colours;
    QSlider *m_opacity;
    std::optional<VtcFile> m_vtc;
    std::vector<double> m_values; ///< of what is chosen, once they are read
    std::shared_ptr<const RunOverlay> m_overlay;
    TimeCourseReader m_reader;
};

} // namespace corvane
