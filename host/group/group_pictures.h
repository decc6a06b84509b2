// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/output_folder.h"
#include "host/group/group_results.h"
#include "host/painting/page_picture.h"

namespace corvane
{

/// p values below this count as significant in pictures and pages.
constexpr double significantP = 0.05;

/// A picture of what a test found.
struct GroupPicture {
    QString file;    ///< name: "contrast_1_t.png"
    QString caption; ///< what it shows
    PagePicture picture;
};

/// For each contrast the t or F of all edges as a matrix, the significant edges (by max-T) as a
/// ring, and for each threshold the significant networks. All need a QGuiApplication.
std::vector<GroupPicture> contrastPictures(const GroupData &data, const ContrastResult &result,
                                           int number);

/// For QC-FC a cloud of all edges, r against the distance of their nodes, with and without
/// cleaning on the same scale. None without distances.
std::vector<GroupPicture> motionPictures(const GroupData &data,
                                         const std::vector<QcFcResult> &results);

/// The networks of one threshold that are significant by their extent or their intensity.
std::vector<const statistics::Component *>
significantNetworks(const statistics::NetworkResult &network);

/// Writes all of them. Throws InputError.
void writeGroupPictures(const OutputFolder &folder, const GroupData &data,
                        const GroupResults &results);

} // namespace corvane
