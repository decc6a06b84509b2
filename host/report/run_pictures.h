// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/connectome_files.h"
#include "host/painting/page_picture.h"

/// @file
/// The pictures of a run's page. All need a QGuiApplication.

namespace corvane
{

/// Curves of FD, of the table's DVARS and of the cleaned nodes' DVARS, as far as they are known.
/// With a scale the series count as if their median before cleaning were that.
PagePicture motionPicture(const Connectome &connectome, std::optional<double> dvarsScale);

/// The series of all nodes before and after cleaning.
PagePicture carpetPicture(const Connectome &connectome);

PagePicture designPicture(const Connectome &connectome);
PagePicture coveragePicture(const Connectome &connectome, double least);

PagePicture matrixPicture(const Connectome &connectome, const PartMatrix &matrix);
PagePicture ringPicture(const Connectome &connectome, const PartMatrix &matrix);

/// How often which correlation comes, before and after cleaning.
PagePicture correlationsPicture(const Eigen::MatrixXd &uncleaned, const Eigen::MatrixXd &cleaned);

/// The values above the diagonal that are numbers.
std::vector<double> pairValues(const Eigen::MatrixXd &matrix);

} // namespace corvane
