// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

#include <tuple>

namespace corvane
{

/// Which row of a study it is. Labels are empty without the entity.
struct RowName {
    QString participant; ///< label, without "sub-"
    QString session, task, space;
    QString folder; ///< below the study: "sub-01/ses-a/func"
    QString prefix; ///< "sub-01_task-rest_space-T1w"
    QString atlas;  ///< letters and digits

    /// What its outputs are called: "sub-01_task-rest_space-T1w_atlas-A".
    QString stem() const { return prefix + QStringLiteral("_atlas-") + atlas; }
};

/// In the order of the study's table.
inline bool operator<(const RowName &a, const RowName &b)
{
    return std::tie(a.participant, a.session, a.prefix, a.atlas) <
           std::tie(b.participant, b.session, b.prefix, b.atlas);
}

/// Where hidden files of a row stand, below the study's folder.
QString recordPath(const QString &out, const RowName &name);
QString lockPath(const QString &out, const RowName &name);

QJsonObject jsonOf(const RowName &name);
RowName rowName(const QJsonObject &json);

} // namespace corvane
