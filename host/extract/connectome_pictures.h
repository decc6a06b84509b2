// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome_files.h"
#include "host/painting/network_picture.h"

namespace corvane
{

/// A matrix as pictures show it: nodes ordered by network where the atlas has networks.
NetworkPicture networkPicture(const ConnectomeNames &names, const Connectome &connectome,
                              const PartMatrix &matrix);

/// Draws matrix and ring of each measure of the whole run into PNG files. Needs a QGuiApplication.
/// Throws InputError.
void writeConnectomePictures(const OutputFolder &folder, const ConnectomeNames &names,
                             const Connectome &connectome);

} // namespace corvane
