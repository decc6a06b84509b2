// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>

class Subject;

/// @file
/// How one subject's data come over from the host, which alone reads files. Every operation runs
/// synchronously on the GUI thread, copies what it needs into the `Subject` at once and keeps
/// nothing of the host's by reference. Failures go to the host's log. `Subject` and
/// `Tessera_Plugin` both use these functions.

namespace host_data
{

/// The open VMR documents: document id to bare file name. Leaves the last of them current.
QHash<int, QString> vmrDocuments();

/// Makes the document current in the host.
void setCurrentDocument(int id);

/// Loads VTC and VOI file of the subject into the host and copies the voxels' time series: appends
/// one matrix (voxels x volumes) per VOI, one row of zeros for a VOI without voxels, whose index is
/// appended to `emptyVois`. A VOI that the host does not give is left out. A voxel outside the VTC
/// has samples of 0; one log line per VOI says how many there are. Returns false on a failure,
/// without taking back what was read before it.
bool loadSubject(Subject &subject);

/// Replaces `voiNames` by the names in the VOI file and returns the number of VOIs. 0 without a
/// VOI file, when nothing is asked of the host, and on a failure.
int readVOINames(Subject &subject);

/// Loads a protocol file into the host and parses it into the subject.
bool loadProtocolFile(Subject &subject, const char *path);

/// Links the subject's VTC to the host's current VMR and parses the protocol that it names. False
/// when it names none, which is not an error, and on a failure.
bool linkVTCProtocol(Subject &subject);

/// True exactly when the host can load the VOI file and its resolution is 1.0 on each axis.
bool voiFileIsOneMillimetre(const char *path);

} // namespace host_data
