// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaType>

#include <vector>

/// Values of a graph measure: one inner list per connectivity matrix, one value per node. Travels
/// in a QVariant, where it can be read as a list of lists too.
using FeatureValues = std::vector<std::vector<float>>;

Q_DECLARE_METATYPE(FeatureValues)
