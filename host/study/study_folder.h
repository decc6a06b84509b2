// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/file_lock.h"

#include <QStringList>

#include <functional>
#include <memory>

/// @file
/// What processes that work on one study share: its folder and its lock.

namespace corvane
{

/// Makes a folder of the study when it is missing. Throws InputError.
void makeStudyFolder(const QString &path);

/// Removes what processes that are gone have left in work in a folder of the study.
void tidyStudyFolder(const QString &path);

/// The folders of participants in a study, "sub-01", ascending.
QStringList participantFolders(const QString &out);

/// Waits for the lock of the whole study, which is held for moments, and returns it. `tell` gets a
/// line when that takes a while. Throws InputError when nothing can be written there, or after ten
/// minutes.
std::unique_ptr<FileLock> lockStudy(const QString &out,
                                    const std::function<void(const QString &line)> &tell);

} // namespace corvane
