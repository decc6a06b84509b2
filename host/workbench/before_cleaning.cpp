// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/before_cleaning.h"

#include "host/files/input_error.h"
#include "plots/plain_text.h"
#ifdef CORVANE_IMPORT
#include "host/import/uncleaned_course.h"
#endif

namespace corvane
{

namespace
{

#ifdef CORVANE_IMPORT
constexpr bool canReadRuns = true;
#else
constexpr bool canReadRuns = false;

TimeCourseReader::Samples uncleanedCourseAt(const VtcInfo &, const std::array<int, 3> &,
                                            const std::atomic<bool> &)
{
    return {};
}
#endif

} // namespace

BeforeCleaning::BeforeCleaning(QWidget *parent)
    : QCheckBox(tr("Show the course &before cleaning"), parent)
{
    setObjectName(QStringLiteral("beforeCleaning"));
    hide();
}

void BeforeCleaning::setRun(const VtcFile *vtc)
{
    m_info.reset();
    if (vtc != nullptr && vtc->info().cleaning)
        m_info = vtc->info();
    setVisible(canReadRuns && m_info);
    checkRun();
}

void BeforeCleaning::checkRun()
{
    std::optional<QString> fault;
    if (m_info)
        fault = m_info->uncleaned
                    ? uncleanedFault(*m_info->uncleaned)
                    : tr("The file does not say of which run it was made. Import the run again.");
    setEnabled(m_info && !fault);
    setToolTip(asToolTip(fault.value_or(
        tr("Draws the same voxel of the run that was imported, at the volumes that were kept."))));
}

void BeforeCleaning::ask(const CubeVoxel &voxel, const TimeCourseReader::Receiver &receiver)
{
    m_reader.forget();
    if (!isChecked() || !isEnabled() || !m_info)
        return;
    const auto point = latticePointAt(*m_info, voxel);
    if (!point)
        return;
    const auto read = [info = *m_info, point = *point](const std::atomic<bool> &isOutdated) {
        try {
            return uncleanedCourseAt(info, point, isOutdated);
        } catch (const std::exception &) {
            return TimeCourseReader::Samples(); // the box tells why
        }
    };
    m_reader.ask(read, [this, receiver](const TimeCourseReader::Samples &samples) {
        if (samples.empty())
            checkRun();
        receiver(samples);
    });
}

} // namespace corvane
