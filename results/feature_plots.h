// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "results/feature_values.h"

#include <QString>

#include <vector>

class LinePlot;
class QWidget;
class Subject;
class TimeseriesLinePlot;

/// A window with the values of a measure, one line per matrix over the subject's nodes. With a
/// protocol in use its lines are named after their conditions. Not shown yet.
LinePlot *plotPerNode(const QString &title, const FeatureValues &values, const Subject &subject,
                      QWidget *parent);

/// A window with one value per matrix over the conditions of the subject's protocol. Not shown yet.
TimeseriesLinePlot *plotPerSlice(const QString &title, const std::vector<float> &values,
                                 const Subject &subject, QWidget *parent);
