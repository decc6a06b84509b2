// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace corvane
{

/// Nodes that stand side by side in a picture and belong together: a network.
struct NodeGroup {
    QString name;
    int first = 0; ///< position of the first one in the picture
    int count = 0;
};

} // namespace corvane
