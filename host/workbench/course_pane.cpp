// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/course_pane.h"

#include "host/session/workspace.h"
#include "host/workbench/before_cleaning.h"
#include "host/workbench/file_names.h"
#include "host/workbench/time_course_reader.h"
#include "host/workbench/voi_overlay.h"
#include "plots/plain_text.h"

#include <QLabel>
#include <QVBoxLayout>

namespace corvane
{

CoursePane::CoursePane(const Workspace &workspace, QWidget *parent)
    : QWidget(parent), m_workspace(workspace), m_name(new QLabel), m_view(new TimeCourseView),
      m_before(new BeforeCleaning), m_reader(new TimeCourseReader(this)),
      m_voiReader(new TimeCourseReader(this))
{
    m_name->setObjectName(QStringLiteral("courseName"));
    m_name->setTextFormat(Qt::PlainText);
    m_name->setIndent(4);
    m_name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(m_name);
    rows->addWidget(m_view, 1);
    rows->addWidget(m_before);
    connect(m_before, &QCheckBox::toggled, this, [this] { showAt(m_cross); });
}

void CoursePane::refresh()
{
    const LinkedVtc *const vtc = m_workspace.linkedVtc();
    const QString run = vtc != nullptr ? vtc->file.path() : QString();
    const QString protocol = m_workspace.protocolPath();
    m_before->setRun(vtc != nullptr ? &vtc->file : nullptr);
    m_name->setText(
        protocol.isEmpty()
            ? namesTogether({run})
            : tr("%1, protocol %2").arg(namesTogether({run}), namesTogether({protocol})));
    m_name->setToolTip(vtc != nullptr ? asToolTip(run) : QString());
    m_name->setVisible(vtc != nullptr);
}

void CoursePane::showAt(const CubeVoxel &cross)
{
    m_cross = cross;
    TimeCourseScene scene;
    // Intervals in another unit than volumes have no place on this axis.
    const LoadedProtocol *const protocol = m_workspace.protocol();
    if (protocol != nullptr && protocol->prt.timeUnit == 1)
        scene.conditions = protocol->prt.conditions;
    const LinkedVtc *const vtc = m_workspace.linkedVtc();
    if (vtc == nullptr) {
        m_reader->forget();
        m_before->forget();
        scene.hint = tr("No functional run is linked to this anatomy. Open a .vtc file to see the "
                        "time course at the cross-hair.");
        m_view->show(std::move(scene));
        return;
    }
    scene.repetitionTime = vtc->file.info().repetitionTime;
    scene.voi = m_voi;
    scene.hint = tr("The cross-hair lies outside the functional run.");
    if (vtc->file.info().cleaning)
        scene.cleaning = ledgerText(*vtc->file.info().cleaning);
    // What is shown stays until the samples are there; the course before the cleaning follows.
    m_before->forget();
    m_reader->ask(
        vtc->file, cross,
        [this, cross, scene = std::move(scene)](const TimeCourseReader::Samples &samples) {
            TimeCourseScene complete = scene;
            complete.samples = samples;
            complete.voi = m_voi; // it may have come in the meantime
            m_view->show(complete);
            m_before->ask(cross, [this, complete](const TimeCourseReader::Samples &before) {
                TimeCourseScene both = complete;
                both.before = before;
                both.voi = m_voi;
                m_view->show(std::move(both));
            });
        });
}

void CoursePane::showVoi(const VoiSet *set, std::size_t voi)
{
    const LinkedVtc *const vtc = m_workspace.linkedVtc();
    const auto take = [this](const VoiCourse &course) {
        m_voi = course;
        TimeCourseScene scene = m_view->scene();
        scene.voi = course;
        m_view->show(std::move(scene));
    };
    if (vtc == nullptr || set == nullptr) {
        m_voiReader->forget();
        take({});
        return;
    }
    const Voi &chosen = set->vois[voi];
    std::vector<CubeVoxel> voxels;
    voxels.reserve(chosen.voxels.size());
    for (const auto &voxel : chosen.voxels)
        voxels.push_back(cubeVoxel(*set, voxel));
    const VoiCourse course{chosen.name, QColor(chosen.r, chosen.g, chosen.b), {}};
    m_voiReader->ask(
        [vtc = vtc->file, voxels = std::move(voxels)](const std::atomic<bool> &isOutdated) {
            return meanCourseOf(vtc, voxels, isOutdated);
        },
        [take, course](const TimeCourseReader::Samples &samples) {
            take({course.name, course.colour, samples});
        });
}

} // namespace corvane
