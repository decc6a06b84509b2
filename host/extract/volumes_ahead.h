// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/nifti_stream.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace corvane
{

/// Reads the volumes of a run on a thread of its own, a few ahead of whoever takes them, so that
/// unpacking and computing go on at the same time.
class VolumesAhead
{
public:
    /// `run` stands at its first sample, outlives this object and is not touched until then.
    explicit VolumesAhead(NiftiStream &run);
    ~VolumesAhead();
    VolumesAhead(const VolumesAhead &) = delete;
    VolumesAhead &operator=(const VolumesAhead &) = delete;

    /// The samples of the next volume as they are stored, valid until the next call. To be called
    /// once for each volume of the run. Throws what reading threw.
    const char *next();

private:
    void readAll();

    NiftiStream &m_run;
    std::vector<std::vector<char>> m_buffers;
    std::mutex m_mutex; ///< guards all below
    std::condition_variable m_changed;
    qint64 m_read = 0;  ///< volumes
    qint64 m_taken = 0; ///< volumes that next() was called for
    bool m_stop = false;
    std::exception_ptr m_failure;
    std::thread m_thread; ///< last, so that it begins when all else is there
};

} // namespace corvane
