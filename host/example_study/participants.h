// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/example_study/draws.h"
#include "host/example_study/nodes.h"

#include <QByteArray>

/// @file
/// Who takes part in the example study, and the runs of each.

namespace corvane::example_study
{

constexpr int volumeCount = 160;
constexpr double repetitionTime = 2; ///< seconds

constexpr std::array<const char *, 2> sessionNames{"a", "b"};

enum Task { Rest, NBack };
constexpr std::array<const char *, 2> taskNames{"rest", "nback"};

struct Participant {
    int number; ///< from 1 on
    Group group;
    int age;
    char sex;            ///< 'F' or 'M'
    double restlessness; ///< how much the head moves, 1 for the usual

    QByteArray label() const; ///< "sub-01"
};

/// Depends on the number alone: the first six of a study are the same as in one of six.
Participant participant(int number);

struct Run {
    Participant of;
    int session; ///< 0 or 1
    Task task;

    /// "sub-01_ses-a_task-rest"
    QByteArray name() const;
    Owner owner() const;
    /// Whether the head moves so much that censoring leaves too little of it.
    bool isRestless() const;
};

struct TaskBlock {
    double onset;    ///< seconds
    double duration; ///< seconds
    int load;        ///< how many letters back: 0 or 2
};

/// Blocks of the task by turns; every other participant of a group begins with the harder one.
std::vector<TaskBlock> taskBlocks(const Participant &participant);

} // namespace corvane::example_study
