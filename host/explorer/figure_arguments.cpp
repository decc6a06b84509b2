// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/view_settings.h"

#include "host/files/text_check.h"

namespace corvane
{

namespace
{

QString numberText(double number)
{
    return QString::fromLatin1(shortestDecimal(number));
}

} // namespace

QStringList figureArguments(const FigureRequest &request, const QString &out)
{
    QStringList arguments{QStringLiteral("figure"), request.result.path};
    const auto add = [&](const char *option, const QString &value) {
        if (!value.isEmpty())
            arguments << QStringLiteral("--") + QLatin1String(option) << value;
    };
    const ViewSettings usual;
    const ViewSettings &view = request.view;
    add("run", request.result.run);
    add("labels", request.result.labels);
    add("centroids", request.result.centroids);
    add("atlas", request.result.atlas);
    add("view", QLatin1String(nameOf(request.kind, networkViewNames)));
    add("matrix", view.matrix);
    add("minus", view.minus);
    if (view.ordering != usual.ordering)
        add("order", QLatin1String(nameOf(view.ordering, nodeOrderingNames)));
    if (view.components.empty())
        add(nameOf(view.threshold.kind, thresholdKindNames), numberText(view.threshold.value));
    if (view.threshold.signs != EdgeSigns::Both)
        add("signs", QLatin1String(nameOf(view.threshold.signs, edgeSignsNames)));
    QStringList components;
    for (const int component : view.components)
        components += QString::number(component);
    add("components", components.join(QLatin1Char(',')));
    add("node", view.node);
    add("other", view.other);
    if (view.alone)
        arguments += QStringLiteral("--alone");
    const FigureFormat format;
    if (request.format.width != format.width)
        add("width", numberText(request.format.width));
    if (request.format.pointSize != format.pointSize)
        add("point-size", numberText(request.format.pointSize));
    if (request.format.dotsPerInch != format.dotsPerInch)
        add("dpi", QString::number(request.format.dotsPerInch));
    if (request.format.dark)
        arguments += QStringLiteral("--dark");
    add("out", out);
    return arguments;
}

} // namespace corvane
