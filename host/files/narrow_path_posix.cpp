// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/narrow_path.h"

namespace corvane
{

std::string narrowPath(const QString &path)
{
    return path.toStdString();
}

} // namespace corvane
