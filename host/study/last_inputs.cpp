// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/last_inputs.h"

#include "host/study/row_record.h"
#include "host/study/study_folder.h"

namespace corvane
{

std::optional<StudyInputs> lastInputs(const QString &out)
{
    std::optional<RowRecord> last;
    for (const QString &participant : participantFolders(out))
        for (RowRecord &record : recordsOf(out, participant))
            if (!last || record.ended > last->ended)
                last = std::move(record);
    if (!last)
        return std::nullopt;
    StudyInputs inputs{last->dataset, {}, {}, last->options};
    for (const InputStamp &stamp : last->inputs) {
        if (stamp.role == QLatin1String("atlas"))
            inputs.atlas = pathOf(stamp, last->dataset);
        else if (stamp.role == QLatin1String("labels"))
            inputs.labels = pathOf(stamp, last->dataset);
    }
    return inputs;
}

} // namespace corvane
