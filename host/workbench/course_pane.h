// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/cube_voxel.h"
#include "host/files/voi_file.h"
#include "host/workbench/time_course_view.h"

#include <QWidget>

class QLabel;

namespace corvane
{

class BeforeCleaning;
class TimeCourseReader;
class Workspace;

/// The courses of the linked run, below the slices: at the cross-hair, before the cleaning, and of
/// a chosen VOI. They are read aside; what is shown stays until they are there.
class CoursePane : public QWidget
{
    Q_OBJECT

public:
    explicit CoursePane(const Workspace &workspace, QWidget *parent = nullptr);

    /// Takes over which run and protocol the workspace holds now. Courses are asked for below.
    void refresh();
    void showAt(const CubeVoxel &cross);
    /// The mean over a VOI of a set; none for null.
    void showVoi(const VoiSet *set, std::size_t voi = 0);

private:
    const Workspace &m_workspace;
    QLabel *m_name;
    TimeCourseView *m_view;
    BeforeCleaning *m_before;
    TimeCourseReader *m_reader;
    TimeCourseReader *m_voiReader;
    CubeVoxel m_cross{};
    VoiCourse m_voi; ///< of the chosen VOI, once it is read
};

} // namespace corvane
