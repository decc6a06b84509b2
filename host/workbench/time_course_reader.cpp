// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/time_course_reader.h"

#include <QtConcurrent>
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
    m_watcher.waitForFinished();
}

void TimeCourseReader::ask(const VtcFile &vtc, const CubeVoxel &voxel, Receiver receiver)
{
    m_asked = [vtc, voxel] { return timeCourseAt(vtc, voxel); };
    m_receiver = std::move(receiver);
    if (!m_isReading)
        read();
}

void TimeCourseReader::forget()
{
    m_asked = nullptr;
    m_receiver = nullptr;
}

void TimeCourseReader::read()
{
    m_isReading = true;
    m_watcher.setFuture(QtConcurrent::run(&m_thread, std::exchange(m_asked, nullptr)));
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
