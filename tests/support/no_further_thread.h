// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

#include <pthread.h>

/// As long as it lives the system refuses to start threads, since each would take a stack as large
/// as all the memory that there can be. Linux only.
class NoFurtherThread
{
public:
    NoFurtherThread()
    {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t huge;
        pthread_getattr_default_np(&huge);
        pthread_attr_setstacksize(&huge, std::size_t{1} << 47);
        pthread_setattr_default_np(&huge);
        pthread_attr_destroy(&huge);
    }
    ~NoFurtherThread()
    {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    NoFurtherThread(const NoFurtherThread &) = delete;
    NoFurtherThread &operator=(const NoFurtherThread &) = delete;

private:
    pthread_attr_t m_before = {};
};
