// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/nrrd_header.h"

#include <Eigen/Geometry>
#include <QString>
#include <optional>
#include <vector>

namespace corvane
{

/// Where the run lies of which a cleaned time course was made, and how the one is found in the
/// other.
struct UncleanedRun {
    QString path;
    qint64 bytes = 0;                                    ///< of the file
    QString signature;                                   ///< runSignature of the file
    Eigen::Affine3d toRun = Eigen::Affine3d::Identity(); ///< lattice index to voxel of the run
    std::vector<int> volumes;                            ///< that were kept, from 1, ascending
};

/// The names of the keys that hold it. They stand in a header all together, or none of them.
QStringList uncleanedKeys();

/// The first rule that it breaks beside a course of so many volumes.
std::optional<BrokenRule> brokenRule(const UncleanedRun &run, int volumes);

/// "5-20 23", the form in which volumes are written.
QString volumesText(const std::vector<int> &volumes);

/// Writes the keys; the path stands there as it is.
void addUncleaned(NrrdWriter &header, const UncleanedRun &run);

/// The run of a header, unset when it has none of the keys. Throws InputError when some are missing
/// or are of another form.
std::optional<UncleanedRun> readUncleaned(const NrrdHeader &header);

/// SHA-1 of the first and the last 64 KiB of a file, in 40 hexadecimal digits. The last bytes of
/// packed files are a sum over all that they hold. Throws InputError when it cannot be read.
QString runSignature(const QString &path);

/// Why the run cannot be used, as a sentence: it is not there, or not what it was. Unset when it
/// can.
std::optional<QString> uncleanedFault(const UncleanedRun &run);

} // namespace corvane
