// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/volumes_ahead.h"

namespace corvane
{

namespace
{

/// One volume is in use, the others are filled.
constexpr std::size_t bufferCount = 4;

} // namespace

VolumesAhead::VolumesAhead(NiftiStream &run)
    : m_run(run),
      m_buffers(bufferCount, std::vector<char>(std::size_t(run.header().bytesPerVolume()))),
      m_thread([this] { readAll(); })
{
}

VolumesAhead::~VolumesAhead()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

const char *VolumesAhead::next()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    ++m_taken;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_read >= m_taken || m_failure; });
    if (m_read < m_taken)
        std::rethrow_exception(m_failure);
    return m_buffers[std::size_t(m_taken - 1) % bufferCount].data();
}

void VolumesAhead::readAll()
{
    const NiftiHeader &header = m_run.header();
    for (qint64 volume = 0; volume < header.dim[3]; ++volume) {
        {
            // The buffer of the volume that was taken last is in use.
            std::unique_lock<std::mutex> lock(m_mutex);
            m_changed.wait(lock,
                           [&] { return m_stop || volume - m_taken + 1 < qint64(bufferCount); });
            if (m_stop)
                return;
        }
        std::exception_ptr failure;
        try {
            m_run.read(m_buffers[std::size_t(volume) % bufferCount].data(),
                       header.voxelsPerVolume());
        } catch (...) {
            failure = std::current_exception();
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_failure = failure;
        m_read += failure ? 0 : 1;
        m_changed.notify_all();
        if (failure)
            return;
    }
}

} // namespace corvane
