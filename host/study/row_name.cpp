// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/row_name.h"

namespace corvane
{

namespace
{

struct Field {
    const char *key;
    QString RowName::*text;
};

constexpr Field fields[] = {{"participant", &RowName::participant},
                            {"session", &RowName::session},
                            {"task", &RowName::task},
                            {"space", &RowName::space},
                            {"folder", &RowName::folder},
                            {"prefix", &RowName::prefix},
                            {"atlas", &RowName::atlas}};

QString hiddenFile(const QString &out, const RowName &name, const char *ending)
{
    return QStringLiteral("%1/%2/.corvane-row-%3%4")
        .arg(out, name.folder, name.stem(), QLatin1String(ending));
}

} // namespace

QString recordPath(const QString &out, const RowName &name)
{
    return hiddenFile(out, name, ".json");
}

QString lockPath(const QString &out, const RowName &name)
{
    return hiddenFile(out, name, ".lock");
}

QJsonObject jsonOf(const RowName &name)
{
    QJsonObject json;
    for (const Field &field : fields)
        json.insert(QLatin1String(field.key), name.*field.text);
    return json;
}

RowName rowName(const QJsonObject &json)
{
    RowName name;
    for (const Field &field : fields)
        name.*field.text = json[QLatin1String(field.key)].toString();
    return name;
}

} // namespace corvane
