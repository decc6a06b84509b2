// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/time_course_reader.h"

#include "engine/run_aside.h"

#include <utility>

namespace corvane
{

TimeCourseReader::TimeCourseReader(QObject *parent) : QObject(parent)
{
    m_thread.setMaxThreadCount(1);
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &TimeCourseReader::deliver);
}

TimeCourseReader::~TimeCourseReader()
{
    forget();
    m_watcher.waitForFinished();
}

void TimeCourseReader::ask(const VtcFile &vtc, const CubeVoxel &voxel, Receiver receiver)
{
    ask([vtc, voxel](const std::atomic<bool> &) { return timeCourseAt(vtc, voxel); },
        std::move(receiver));
}

void TimeCourseReader::ask(Reading reading, Receiver receiver)
{
    forget();
    m_asked = std::move(reading);
    m_receiver = std::move(receiver);
    if (!m_isReading)
        read();
}

void TimeCourseReader::forget()
{
    if (m_isOutdated)
        *m_isOutdated = true;
    m_asked = nullptr;
    m_receiver = nullptr;
}

void TimeCourseReader::read()
{
    m_isReading = true;
    m_isOutdated = std::make_shared<std::atomic<bool>>(false);
    m_watcher.setFuture(
        runAside(&m_thread, [reading = std::exchange(m_asked, nullptr), isOutdated = m_isOutdated] {
            return reading(*isOutdated);
        }));
}

void TimeCourseReader::deliver()
{
    m_isReading = false;
    if (m_asked) {
        read();
    } else if (m_receiver) {
        const Receiver receiver = std::exchange(m_receiver, nullptr);
        receiver(m_watcher.result());
    }
}

} // namespace corvane
