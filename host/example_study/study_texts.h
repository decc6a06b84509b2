// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/example_study/participants.h"

/// @file
/// The texts of the example study: what tells of the dataset, of those who took part and of the
/// images.

namespace corvane::example_study
{

QByteArray datasetDescription();
QByteArray participantsTable(int count);
QByteArray participantsJson();
/// index, name, network and hemisphere of each node.
QByteArray atlasTable();
QByteArray plantedEdgesTable();
QByteArray readme(int participants);

QByteArray boldJson(Task task);
QByteArray maskJson();
QByteArray eventsTable(const Participant &participant);

} // namespace corvane::example_study
