// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRunnable>
#include <QSemaphore>
#include <QThreadPool>

/// For its life the global thread pool has one thread, which is busy until it is released, so that
/// whatever is started waits in the queue.
class BusyPool
{
public:
    BusyPool() : m_threads(pool()->maxThreadCount())
    {
        pool()->waitForDone();
        pool()->setMaxThreadCount(1);
        pool()->start(new Task(m_release));
    }
    ~BusyPool()
    {
        release();
        pool()->waitForDone();
        pool()->setMaxThreadCount(m_threads);
    }
    BusyPool(const BusyPool &) = delete;
    BusyPool &operator=(const BusyPool &) = delete;

    void release()
    {
        if (!m_released)
            m_release.release();
        m_released = true;
    }

private:
    class Task : public QRunnable
    {
    public:
        explicit Task(QSemaphore &release) : m_release(release) {}
        void run() override { m_release.acquire(); }

    private:
        QSemaphore &m_release;
    };

    static QThreadPool *pool() { return QThreadPool::globalInstance(); }

    QSemaphore m_release;
    bool m_released = false;
    int m_threads;
};
