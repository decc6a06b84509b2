// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/option_values.h"
#include "host/commands/result_options.h"
#include "host/explorer/figure.h"
#include "host/files/progress.h"
#include "host/workbench/application.h"

#include <QCommandLineParser>
#include <cstdio>

namespace corvane
{

namespace
{

QString text(const char *value)
{
    return QLatin1String(value);
}

void addOptions(QCommandLineParser &parser)
{
    const auto names = [](const QStringList &values) { return values.join(QStringLiteral(", ")); };
    parser.addOptions({
        {text("view"),
         QStringLiteral("What is drawn: %1.").arg(names(valueNames(networkViewNames))),
         text("name"), text("matrix")},
        {text("matrix"),
         QStringLiteral("Which matrix, by its name in the connectome window. The "
                        "first without."),
         text("name")},
        {text("minus"), QStringLiteral("Take off that matrix, by its name."), text("name")},
        {text("order"),
         QStringLiteral("The order of nodes: %1.").arg(names(valueNames(nodeOrderingNames))),
         text("name"), text("network")},
        {text("density"),
         QStringLiteral("Draw the strongest edges, that share of all pairs. 0.05 without."),
         text("share")},
        {text("weight"), QStringLiteral("Draw edges of at least that absolute value."),
         text("value")},
        {text("tree"),
         QStringLiteral("Draw the spanning tree and the strongest edges to that share."),
         text("share")},
        {text("signs"),
         QStringLiteral("Edges of which sign: %1.").arg(names(valueNames(edgeSignsNames))),
         text("name"), text("both")},
        {text("components"),
         QStringLiteral("Draw networks that a group test found, by their rows in components.tsv, "
                        "from 1."),
         text("numbers")},
        {text("node"), QStringLiteral("The selected node."), text("name")},
        {text("other"), QStringLiteral("The other node of the selected edge."), text("name")},
        {text("alone"), QStringLiteral("Only edges of the selected node.")},
        {text("width"), QStringLiteral("The width of the figure; 120 without."), text("mm")},
        {text("point-size"), QStringLiteral("The size of its texts; 8 without."), text("points")},
        {text("dpi"), QStringLiteral("Dots per inch of PNG; 300 without."), text("number")},
        {text("dark"), QStringLiteral("On dark paper.")},
        {text("out"), QStringLiteral("The file: .png, .svg or .pdf, or .tsv for the numbers."),
         text("file")},
    });
}

EdgeThreshold thresholdOf(const QCommandLineParser &parser)
{
    EdgeThreshold threshold;
    QStringList given;
    for (const NamedValue<ThresholdKind> &kind : thresholdKindNames) {
        if (!parser.isSet(text(kind.name)))
            continue;
        given += QStringLiteral("--") + text(kind.name);
        threshold.kind = kind.value;
        threshold.value = *numberValue(parser, kind.name, 0);
        if (kind.value != ThresholdKind::Weight && threshold.value > 1)
            throw UsageError(QStringLiteral("--%1: found \"%2\", expected a share from 0 to 1")
                                 .arg(text(kind.name), parser.value(text(kind.name))));
    }
    if (given.size() > 1)
        throw UsageError(given.join(QStringLiteral(" and ")) +
                         QStringLiteral(" exclude each other: give one of them"));
    threshold.signs = chosenValue(parser, text("signs"), edgeSignsNames);
    return threshold;
}

std::vector<int> componentsOf(const QCommandLineParser &parser)
{
    std::vector<int> components;
    if (!parser.isSet(text("components")))
        return components;
    for (const QString &number : parser.value(text("components")).split(QLatin1Char(','))) {
        bool isNumber = false;
        components.push_back(number.toInt(&isNumber));
        if (!isNumber || components.back() < 1)
            throw UsageError(QStringLiteral("--components: found \"%1\", expected numbers from 1 "
                                            "with commas between them")
                                 .arg(number));
    }
    return components;
}

FigureRequest requestOf(const QCommandLineParser &parser)
{
    FigureRequest request;
    request.result = resultRequest(parser);
    request.kind = chosenValue(parser, text("view"), networkViewNames);
    ViewSettings &view = request.view;
    view.matrix = parser.value(text("matrix"));
    view.minus = parser.value(text("minus"));
    view.ordering = chosenValue(parser, text("order"), nodeOrderingNames);
    view.threshold = thresholdOf(parser);
    view.components = componentsOf(parser);
    view.node = parser.value(text("node"));
    view.other = parser.value(text("other"));
    view.alone = parser.isSet(text("alone"));
    FigureFormat &format = request.format;
    format.width = numberValue(parser, "width", 10).value_or(format.width);
    format.pointSize = numberValue(parser, "point-size", 1).value_or(format.pointSize);
    format.dotsPerInch = int(wholeValue(parser, "dpi", 30).value_or(format.dotsPerInch));
    if (format.width > 2000 || format.pointSize > 200 || format.dotsPerInch > 2400)
        throw UsageError(QStringLiteral("at most 2000 for --width, 200 for --point-size and 2400 "
                                        "for --dpi"));
    format.dark = parser.isSet(text("dark"));
    return request;
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Draws a finished result as the connectome window does, without a window."));
    addResultOptions(parser);
    addOptions(parser);
    if (!parseArguments(parser, arguments, {resultArgument()}))
        return Done;
    const QString out = requiredValue(parser, QStringLiteral("out"));
    const FigureRequest request = requestOf(parser);
    TerminalSteps steps;
    steps.begin(QStringLiteral("drawing"));
    const QString drawn = writeFigure(request, out);
    steps.end();
    std::printf("%s: %s\n", out.toUtf8().constData(), drawn.toUtf8().constData());
    return Done;
}

std::unique_ptr<QCoreApplication> makeApplication(const QStringList &, int &argc, char **argv)
{
    argc = 1; // the arguments are those of a command, none is Qt's
    return makePictureApplication(argc, argv, false);
}

} // namespace

Command figureCommand()
{
    return {"figure",
            "Corvane figure RESULT [--view matrix|ring|brain|nodes|evidence|measures]\n"
            "                  [--run NAME] [--matrix NAME [--minus NAME]]\n"
            "                  [--order network|hemisphere|similarity|file]\n"
            "                  [--density SHARE | --weight X | --tree SHARE |\n"
            "                  --components 1,2,...] [--signs both|positive|negative]\n"
            "                  [--node NAME [--other NAME] [--alone]] [--labels F]\n"
            "                  [--centroids F] [--atlas F] [--width MM] [--point-size PT]\n"
            "                  [--dpi N] [--dark] --out FILE.png|svg|pdf|tsv",
            "Draws a result as the connectome window does, or writes its numbers.", run,
            makeApplication};
}

} // namespace corvane
