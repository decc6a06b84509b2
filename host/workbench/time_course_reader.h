// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/workbench/time_course.h"

#include <QFutureWatcher>
#include <QObject>
#include <QThreadPool>
#include <atomic>
#include <functional>
#include <memory>

namespace corvane
{

/// Reads time courses on a thread of its own. Samples are read where they lie, on a disk or network
/// that may be slow, and the window that shows them shall not wait for it. Of several voxels that
/// are asked for during one reading only the last counts.
class TimeCourseReader : public QObject
{
    Q_OBJECT

public:
    using Samples = std::vector<double>;
    using Receiver = std::function<void(const Samples &)>;

    /// Gives samples; nobody wants them any more once its argument is true. Throws nothing.
    using Reading = std::function<Samples(const std::atomic<bool> &)>;

    explicit TimeCourseReader(QObject *parent = nullptr);
    ~TimeCourseReader() override;

    /// Reads what timeCourseAt gives and hands it to the receiver, from the event loop, unless
    /// something else is asked for or forgotten before. The run may be closed in the meantime.
    void ask(const VtcFile &vtc, const CubeVoxel &voxel, Receiver receiver);
    /// The same with another reading than timeCourseAt.
    void ask(Reading reading, Receiver receiver);
    void forget();

private:
    void read();
    void deliver();

    Reading m_asked;     ///< empty unless a reading is still to begin
    Receiver m_receiver; ///< empty when nothing is waited for
    bool m_isReading = false;
    std::shared_ptr<std::atomic<bool>> m_isOutdated; ///< of the reading under way
    QThreadPool m_thread;
    QFutureWatcher<Samples> m_watcher;
};

} // namespace corvane
