// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/node_facts.h"

#include "host/files/input_error.h"

#include <QHash>
#include <QRegularExpression>
#include <algorithm>

namespace corvane
{

QString networkOfName(const QString &name)
{
    static const QRegularExpression form(
        QStringLiteral("\\A\\d+Networks_[LR]H_([^_]+)(?:_.*)?\\z"));
    return form.match(name).captured(1);
}

QString hemisphereOfName(const QString &name)
{
    static const QRegularExpression form(
        QStringLiteral("(?:\\A|[_\\-. ])(lh|rh|l|r|left|right)(?:[_\\-. ]|\\z)"),
        QRegularExpression::CaseInsensitiveOption);
    const QString side = form.match(name).captured(1);
    return side.isEmpty() ? QString() : hemisphereName(side);
}

QString hemisphereName(const QString &text)
{
    const QString lower = text.toLower();
    for (const char *const left : {"l", "lh", "left"})
        if (lower == QLatin1String(left))
            return QStringLiteral("Left");
    for (const char *const right : {"r", "rh", "right"})
        if (lower == QLatin1String(right))
            return QStringLiteral("Right");
    return text;
}

void takeLabels(std::vector<ResultNode> &nodes, const LabelTable &labels, const QString &path)
{
    QHash<QString, const LabelEntry *> entries;
    for (const auto &[label, entry] : labels)
        entries.insert(entry.name.isEmpty() ? QString::number(label) : entry.name, &entry);
    bool areNamed = nodes.empty();
    for (ResultNode &node : nodes) {
        const LabelEntry *const entry = entries.value(node.name, nullptr);
        if (entry == nullptr)
            continue;
        areNamed = true;
        if (node.network.isEmpty())
            node.network = entry->network;
        if (node.hemisphere.isEmpty())
            node.hemisphere = hemisphereName(entry->hemisphere);
    }
    if (!areNamed)
        throw InputError(path, QStringLiteral("names"), QStringLiteral("none of the nodes"),
                         QStringLiteral("names such as %1").arg(quoted(nodes.front().name)));
}

void takeNames(std::vector<ResultNode> &nodes)
{
    const bool hasNetworks = std::any_of(
        nodes.begin(), nodes.end(), [](const ResultNode &node) { return !node.network.isEmpty(); });
    for (ResultNode &node : nodes) {
        if (!hasNetworks)
            node.network = networkOfName(node.name);
        if (node.hemisphere.isEmpty())
            node.hemisphere = hemisphereOfName(node.name);
    }
}

} // namespace corvane
