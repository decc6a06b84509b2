// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome_files.h"
#include "tests/host/support/host_files.h"

namespace corvane
{

/// A run with its atlas and confounds, in files of a folder.
class ExampleRun
{
public:
    /// Two voxels for each node, below each other. The names of nodes 0 and 1 hold what HTML gives
    /// a meaning; nodes of odd numbers are of the second network. The mask takes both voxels of the
    /// last node away. Volume 0 is non-steady and volume 10 moves.
    ExampleRun(int nodes, int volumes);

    /// Cleaned by a strategy, with volumes of FD above 0.5 mm left out.
    const ConnectomeRequest &request() const { return m_request; }
    ConnectomeRequest &request() { return m_request; }
    QString folder() const { return m_folder.path(); }

private:
    TemporaryFolder m_folder;
    ConnectomeRequest m_request;
};

} // namespace corvane
