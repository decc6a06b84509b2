// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/row_state.h"

#include "host/files/input_error.h"
#include "host/study/compute_row.h"

#include <QFileInfo>

#include <algorithm>

namespace corvane
{

namespace
{

struct Role {
    const char *name;
    QString &(*path)(ConnectomeRequest &request);
};

/// In the order in which sidecars name sources.
constexpr Role roles[] = {
    {"bold", [](ConnectomeRequest &request) -> QString & { return request.run; }},
    {"atlas", [](ConnectomeRequest &request) -> QString & { return request.atlas; }},
    {"labels", [](ConnectomeRequest &request) -> QString & { return request.labels; }},
    {"mask", [](ConnectomeRequest &request) -> QString & { return request.mask; }},
    {"confounds",
     [](ConnectomeRequest &request) -> QString & { return request.cleaning.confounds; }},
    {"events", [](ConnectomeRequest &request) -> QString & { return request.events; }}};

/// The role of the first input that is not as it was; empty when there is none.
QString changedInput(const StudyRow &row, const RowRecord &record, const QString &dataset)
{
    const std::vector<RowInput> inputs = inputsOf(row.request);
    for (const RowInput &input : inputs) {
        const auto before =
            std::find_if(record.inputs.begin(), record.inputs.end(),
                         [&](const InputStamp &stamp) { return stamp.role == input.role; });
        try {
            if (before == record.inputs.end() ||
                !before->isLike(stampOf(input.role, input.path, dataset)))
                return input.role;
        } catch (const InputError &) {
            return input.role;
        }
    }
    for (const InputStamp &stamp : record.inputs)
        if (std::none_of(inputs.begin(), inputs.end(),
                         [&](const RowInput &input) { return input.role == stamp.role; }))
            return stamp.role;
    return {};
}

QString goneOutput(const RowRecord &record, const QString &out)
{
    for (const QString &name : record.outputs)
        if (!QFileInfo::exists(QStringLiteral("%1/%2/%3").arg(out, record.name.folder, name)))
            return name;
    return {};
}

} // namespace

std::vector<RowInput> inputsOf(const ConnectomeRequest &request)
{
    ConnectomeRequest copy = request;
    std::vector<RowInput> inputs;
    for (const Role &role : roles)
        if (!role.path(copy).isEmpty())
            inputs.push_back({QLatin1String(role.name), role.path(copy)});
    return inputs;
}

void setInput(ConnectomeRequest &request, const QString &role, const QString &path)
{
    for (const Role &known : roles)
        if (role == QLatin1String(known.name))
            known.path(request) = path;
}

QString whyToMake(const StudyRow &row, const std::optional<RowRecord> &record,
                  const StudySettings &settings, const QString &settingsNow)
{
    if (!record)
        return QStringLiteral("new");
    if (!row.reason.isEmpty())
        return record->status == RowStatus::Missing && record->reason == row.reason
                   ? QString()
                   : QStringLiteral("changed: ") + row.reason;
    if (record->status == RowStatus::Failed)
        return QStringLiteral("failed before");
    if (record->settings != settingsNow)
        return QStringLiteral("changed: settings");
    if (record->repetitionTime != row.request.repetitionTime)
        return QStringLiteral("changed: repetition time");
    if (settings.pages && record->status == RowStatus::Done &&
        !record->outputs.contains(runPageName(row.name)))
        return QStringLiteral("without page");
    const QString changed = changedInput(row, *record, settings.dataset);
    if (!changed.isEmpty())
        return QStringLiteral("changed: ") + changed;
    const QString gone = goneOutput(*record, settings.out);
    return gone.isEmpty() ? QString() : QStringLiteral("gone: ") + gone;
}

} // namespace corvane
