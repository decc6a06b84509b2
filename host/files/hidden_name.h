// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/process_identity.h"

#include <QString>

#include <chrono>
#include <optional>

/// @file
/// Names of files and folders that stand beside a user's while the program works on them. They
/// begin with ".corvane-" and name the process, so that another one, perhaps on another machine,
/// can tell what is left behind from what is in work.

namespace corvane
{

struct HiddenName {
    ProcessIdentity owner;
    quint64 number = 0; ///< which of its owner's

    /// ".corvane-HOST-BOOT-PROCESS-START-NUMBER"
    QString text() const;

    /// Unset for other names.
    static std::optional<HiddenName> of(const QString &text);

    /// Whether nobody works there any more. On this machine, since the process is gone; on another,
    /// since its folder was last touched that long ago, where a running process touches it every
    /// half a minute.
    bool isLeftBehind(std::chrono::seconds sinceTouched) const;
};

/// The name with which all of them begin.
constexpr auto hiddenPrefix = ".corvane-";

/// A path without the hidden folders in it: where the file is for its user, once it is there.
QString shownPath(const QString &path);

} // namespace corvane
