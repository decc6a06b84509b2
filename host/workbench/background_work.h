// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/progress.h"

#include <QString>
#include <functional>

class QWidget;

namespace corvane
{

struct WorkOutcome {
    QString fault;        ///< the text of the exception that ended the work, empty when it is done
    bool stopped = false; ///< the user asked it to stop, and it did
};

/// What an action throws, as a text; empty when it throws nothing.
QString faultOf(const std::function<void()> &action);

/// Runs a work on another thread behind a modal progress dialog with a Cancel button, and returns
/// when it has ended. A work that cannot stop is asked all the same and may ignore it; the dialog
/// stays as long as it does.
WorkOutcome runBehindProgress(QWidget *parent, const QString &title,
                              const std::function<void(const ProgressWatch &)> &work);

} // namespace corvane
