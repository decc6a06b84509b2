// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>

#include <map>
#include <utility>
#include <vector>

/// One condition of a stimulation protocol.
struct ProtocolCondition {
    QString name;
    int intervalCount = 0;
    int index = 0;                              ///< position in the host's list, from 0
    std::vector<std::pair<int, int>> intervals; ///< (from, to), both ends included, host's order
    int isEvent = 0; ///< 1 when some interval is a single point and the time unit is 1
};

/// The parsed protocol of a subject.
///
/// The three maps share their keys, the interval starts. Their i-th entries in ascending order
/// belong to slice i of a compute with protocol.
struct SubjectProtocol {
    SubjectProtocol() = default;
    SubjectProtocol(const QString &protocolName, int unit, int count)
        : name(protocolName), timeUnit(unit), conditionCount(count)
    {
    }

    QString name;
    int timeUnit = 0; ///< 1: a one-point interval marks an event
    int conditionCount = 0;
    std::map<int, ProtocolCondition> conditions; ///< by condition index
    std::map<int, int> volumeConditions;         ///< interval start to condition index
    QMap<int, QString> volumeNames;              ///< interval start to condition name
    QMap<int, int> volumeEvents;                 ///< interval start to the condition's isEvent
    bool eventRelated = false;                   ///< some interval of some condition is an event
};
