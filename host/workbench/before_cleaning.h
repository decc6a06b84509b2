// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/workbench/time_course_reader.h"

#include <QCheckBox>
#include <optional>

namespace corvane
{

/// The box that asks for the time course before the cleaning. It is there for cleaned runs, and can
/// be ticked while the run that was imported is at hand; else its tool tip says why not.
class BeforeCleaning : public QCheckBox
{
    Q_OBJECT

public:
    explicit BeforeCleaning(QWidget *parent = nullptr);

    /// Which file is shown; null for none.
    void setRun(const VtcFile *vtc);

    /// Reads the course at a voxel, if the box is ticked, and hands it to the receiver from the
    /// event loop, unless something else is asked for or forgotten before.
    void ask(const CubeVoxel &voxel, const TimeCourseReader::Receiver &receiver);
    void forget() { m_reader.forget(); }

private:
    void checkRun();

    std::optional<VtcInfo> m_info; ///< of the cleaned file
    TimeCourseReader m_reader;
};

} // namespace corvane
