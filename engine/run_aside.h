// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QException>
#include <QFuture>
#include <QFutureInterface>
#include <QtConcurrent>

#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>

/// Whether the system starts a thread when it is asked for one now.
inline bool systemStartsThreads()
{
    try {
        std::thread([] {}).join();
        return true;
    } catch (const std::system_error &) {
        return false;
    }
}

/// `QtConcurrent::run`; when the system starts no thread, the work is done here before this
/// returns. The pool does not tell that it could have none, and what it was given would wait for
/// ever. The future has the result, or throws what the work threw: a `QException`, or
/// `QUnhandledException` for any other.
template <typename Work>
QFuture<std::invoke_result_t<Work>> runAside(QThreadPool *pool, Work work)
{
    if (systemStartsThreads())
        return QtConcurrent::run(pool, std::move(work));
    using Result = std::invoke_result_t<Work>;
    QFutureInterface<Result> done;
    done.reportStarted();
    try {
        if constexpr (std::is_void_v<Result>)
            work();
        else
            done.reportResult(work());
    } catch (const QException &error) {
        done.reportException(error);
    } catch (...) {
        done.reportException(QUnhandledException());
    }
    done.reportFinished();
    return done.future();
}
