// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/compute/group_distances.h"
#include "host/compute/matrix_table.h"
#include "host/files/input_error.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cstdio>

namespace corvane
{

namespace
{

std::vector<ComparedSubject> readAll(const QStringList &paths, const ProgressWatch &watch)
{
    std::vector<ComparedSubject> subjects;
    for (const QString &path : paths) {
        subjects.push_back(readComparedSubject(path));
        tellProgress(watch, qint64(subjects.size()), paths.size());
    }
    return subjects;
}

/// The names of files and folders, or their paths as they were given where names are not enough.
QStringList namesOf(const std::vector<ComparedSubject> &subjects, const QStringList &paths)
{
    QStringList names;
    for (const ComparedSubject &subject : subjects)
        names += subject.name;
    QStringList different = names;
    return different.removeDuplicates() == 0 ? names : paths;
}

/// Six digits with tabs between them, as the plugin shows them.
void print(const Eigen::MatrixXf &distances, const QStringList &names)
{
    QString text;
    for (const QString &name : names)
        text += QLatin1Char('\t') + printable(name, 4096);
    text += QLatin1Char('\n');
    for (Eigen::Index row = 0; row < distances.rows(); ++row) {
        text += printable(names[static_cast<int>(row)], 4096);
        for (Eigen::Index column = 0; column < distances.cols(); ++column)
            text += QLatin1Char('\t') +
                    QString::number(static_cast<double>(distances(row, column)), 'g', 6);
        text += QLatin1Char('\n');
    }
    std::printf("%s", text.toUtf8().constData());
}

void tell(const std::vector<ComparedSubject> &subjects)
{
    bool areEqual = true;
    for (const ComparedSubject &subject : subjects) {
        for (const QString &note : subject.notes)
            std::fprintf(stderr, "%s\n", note.toUtf8().constData());
        areEqual = areEqual && subject.matrix.rows() == subjects.front().matrix.rows();
    }
    if (!areEqual)
        std::fprintf(stderr,
                     "The matrices have different sizes: they are padded with zeros to %d nodes, "
                     "the most that any but the first has\n",
                     paddedSize(subjects));
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the spectral distance of each pair of subjects, as the plugin's "
                       "group comparison has it."));
    const auto subject = QStringLiteral("SUBJECT");
    parser.addPositionalArgument(
        subject, QStringLiteral("A folder that Corvane compute wrote, of which the first matrix "
                                "counts, or a matrix as Corvane graph takes it; two or more."));
    parser.addOptions({
        {QStringLiteral("mst"),
         QStringLiteral("Of the minimum spanning trees instead of the whole matrices.")},
        {QStringLiteral("out"),
         QStringLiteral("A file for the table, with all digits and commas between them."),
         QStringLiteral("file")},
    });
    if (!parseArguments(parser, arguments, {subject, subject}, {}, AndMore::Allowed))
        return Done;
    if (parser.isSet(QStringLiteral("out")))
        requiredValue(parser, QStringLiteral("out"));

    const QStringList paths = parser.positionalArguments();
    TerminalSteps steps;
    std::vector<ComparedSubject> subjects = readAll(paths, steps.begin(QStringLiteral("reading")));
    if (parser.isSet(QStringLiteral("mst"))) {
        steps.begin(QStringLiteral("spanning trees"));
        keepSpanningTrees(subjects);
    }
    const Eigen::MatrixXf distances =
        groupDistances(subjects, steps.begin(QStringLiteral("distances")));
    steps.end();
    const QStringList names = namesOf(subjects, paths);
    if (parser.isSet(QStringLiteral("out")))
        writeMatrixTable(parser.value(QStringLiteral("out")), distances, names, names);
    tell(subjects);
    print(distances, names);
    return Done;
}

} // namespace

Command distanceCommand()
{
    return {"distance", "Corvane distance SUBJECT SUBJECT... [--mst] [--out FILE]",
            "Compares subjects by the spectra of their matrices, as the plugin does.", run};
}

} // namespace corvane
