// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/participants.h"

namespace corvane::example_study
{

QByteArray Participant::label() const
{
    return "sub-" + QByteArray::number(number).rightJustified(2, '0');
}

Participant participant(int number)
{
    // Two in turn, a control and a patient, are of one age within two years and of one sex.
    const int pair = (number - 1) / 2;
    const Group group = number % 2 == 1 ? Control : Patient;
    Draws ofPair(Draw::Participant, {static_cast<std::uint32_t>(pair), 1, 0});
    Draws own(Draw::Participant, {static_cast<std::uint32_t>(number), 0, 0});
    const int age = static_cast<int>(ofPair.between(21, 48));
    const double restlessness = group == Control ? own.between(0.6, 1.3) : own.between(0.9, 1.9);
    return {number, group, age + static_cast<int>(own.between(-1, 2)), pair % 2 == 0 ? 'F' : 'M',
            restlessness};
}

QByteArray Run::name() const
{
    return of.label() + "_ses-" + sessionNames[std::size_t(session)] + "_task-" +
           taskNames[std::size_t(task)];
}

Owner Run::owner() const
{
    return {static_cast<std::uint32_t>(of.number), static_cast<std::uint32_t>(session + 1),
            static_cast<std::uint32_t>(task + 1)};
}

bool Run::isRestless() const
{
    struct Restless {
        int participant;
        int session;
        Task task;
    };
    constexpr Restless all[] = {{6, 1, Rest}, {14, 0, Rest}, {14, 1, Rest}, {20, 0, NBack}};
    for (const Restless &run : all)
        if (run.participant == of.number && run.session == session && run.task == task)
            return true;
    return false;
}

std::vector<TaskBlock> taskBlocks(const Participant &participant)
{
    std::vector<TaskBlock> blocks;
    const int first = (participant.number - 1) / 2 % 2;
    for (int block = 0; block < 8; ++block)
        blocks.push_back({10.0 + 38 * block, 26, (block + first) % 2 == 0 ? 0 : 2});
    return blocks;
}

} // namespace corvane::example_study
