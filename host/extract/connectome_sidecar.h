// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome_files.h"

/// @file
/// What the JSON beside a table says: what it holds, how it was made, and what that cost.

namespace corvane
{

/// An input as sidecars and pages name it: "bids:input:" and where it stands below the root, else
/// its name.
QString sourceText(const QString &path, const QString &root);

QByteArray seriesSidecar(const ConnectomeRequest &request, const ConnectomeNames &names,
                         const Connectome &connectome);

QByteArray matrixSidecar(const ConnectomeRequest &request, const ConnectomeNames &names,
                         const Connectome &connectome, const PartMatrix &matrix);

/// Of the matrix of the same volumes before cleaning.
QByteArray uncleanedSidecar(const ConnectomeRequest &request, const ConnectomeNames &names,
                            const Connectome &connectome, const PartMatrix &matrix);

} // namespace corvane
