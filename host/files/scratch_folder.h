// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/hidden_path.h"

namespace corvane
{

/// A folder of one's own in the system's folder for temporary files. It goes with this object, when
/// a signal ends the process, or when another one is made after this process was killed.
class ScratchFolder
{
public:
    /// Throws InputError.
    ScratchFolder();

    const QString &path() const { return m_hidden.path(); }
    QString filePath(const QString &name) const;

private:
    HiddenPath m_hidden;
};

} // namespace corvane
