// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/background_work.h"

#include "engine/run_aside.h"

#include <QEventLoop>
#include <QFutureWatcher>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <atomic>
#include <new>
#include <system_error>

namespace corvane
{

namespace
{

/// Stays until the work has ended, also when it is cancelled or closed: the other windows are of no
/// use before that, and another work of the same window would have to end first.
class WorkDialog : public QProgressDialog
{
public:
    using QProgressDialog::QProgressDialog;

    void reject() override { Q_EMIT canceled(); }
};

} // namespace

QString faultOf(const std::function<void()> &action)
{
    try {
        action();
    } catch (const std::bad_alloc &) {
        return QProgressDialog::tr("There is not enough memory for this.");
    } catch (const std::system_error &error) {
        if (error.code() == std::errc::resource_unavailable_try_again)
            return QProgressDialog::tr("The system gives no further thread for this.");
        return QString::fromUtf8(error.what());
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    } catch (...) {
        return QProgressDialog::tr("An error that does not say what it is.");
    }
    return {};
}

WorkOutcome runBehindProgress(QWidget *parent, const QString &title,
                              const std::function<void(const ProgressWatch &)> &work)
{
    WorkDialog progress(QProgressDialog::tr("Working..."), QString(), 0, 100, parent);
    auto *const cancel = new QPushButton(QProgressDialog::tr("&Cancel"));
    progress.setCancelButton(cancel);
    // Qt's own would hide the dialog.
    QObject::disconnect(&progress, SIGNAL(canceled()), &progress, SLOT(cancel()));
    progress.setMinimumWidth(360);
    progress.setObjectName(QStringLiteral("workProgress"));
    progress.setWindowTitle(title);
    progress.findChild<QProgressBar *>()->setAccessibleName(title);
    progress.setWindowModality(Qt::ApplicationModal);
    progress.setMinimumDuration(0);
    progress.setAutoReset(false);
    progress.setAutoClose(false);

    std::atomic<bool> stop{false};
    std::atomic<int> percent{0};
    QFutureWatcher<QString> watcher;
    QEventLoop loop;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, &progress, [&] {
        if (!stop)
            progress.setValue(percent);
    });
    QObject::connect(&progress, &QProgressDialog::canceled, &progress, [&] {
        stop = true;
        progress.setLabelText(QProgressDialog::tr("Stopping..."));
        cancel->setEnabled(false);
    });
    QObject::connect(&watcher, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
    const ProgressWatch watch = [&](qint64 done, qint64 total) {
        percent = static_cast<int>(100 * done / std::max<qint64>(total, 1));
        return !stop;
    };
    progress.setValue(0);
    watcher.setFuture(
        runAside(QThreadPool::globalInstance(), [&] { return faultOf([&] { work(watch); }); }));
    tick.start(50);
    loop.exec();
    const QString fault = watcher.result();
    return {fault, stop && !fault.isEmpty()};
}

} // namespace corvane
