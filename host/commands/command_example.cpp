// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/example_study/example_study.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "host/import/example_dataset.h"

#include <iostream>

namespace corvane
{

namespace
{

void writeSubject(const QString &folder)
{
    ImportReport report;
    {
        TerminalProgress progress(QStringLiteral("writing the example"));
        report = writeExample(folder, progress.watch());
    }
    printReport(report);
}

int participantsOf(const QCommandLineParser &parser)
{
    const QString text = parser.value(QStringLiteral("subjects"));
    const std::optional<qint64> number = wholeNumber(text);
    if (!number || *number < 2 || *number > mostStudyParticipants || *number % 2 != 0)
        throw UsageError(
            QStringLiteral("--subjects: found %1, expected an even number from 2 to %2")
                .arg(quoted(text))
                .arg(mostStudyParticipants));
    return int(*number);
}

void writeStudy(const QString &folder, const QCommandLineParser &parser)
{
    ExampleStudyRequest request;
    request.folder = folder;
    if (parser.isSet(QStringLiteral("subjects")))
        request.participants = participantsOf(parser);
    {
        TerminalProgress progress(QStringLiteral("writing the study"));
        writeExampleStudy(request, progress.watch());
    }
    std::cout << studySummary(request).toStdString() << '\n';
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes the example dataset of one subject into a folder and imports it; or "
                       "a study of two groups as a preprocessing pipeline leaves it."));
    const auto folder = QStringLiteral("DIR");
    parser.addPositionalArgument(folder, QStringLiteral("The folder for the files."));
    parser.addOptions(
        {{QStringLiteral("study"),
          QStringLiteral("A study instead of one subject, in a folder that is empty "
                         "or not there yet.")},
         {QStringLiteral("subjects"),
          QStringLiteral("How many the study has, half of them in each group: an even "
                         "number, %1 unless it is given.")
              .arg(mostStudyParticipants),
          QStringLiteral("N")}});
    if (!parseArguments(parser, arguments, {folder}))
        return Done;
    const QString target = parser.positionalArguments().front();
    if (parser.isSet(QStringLiteral("study")))
        writeStudy(target, parser);
    else if (parser.isSet(QStringLiteral("subjects")))
        throw UsageError(QStringLiteral("--subjects: only for --study"));
    else
        writeSubject(target);
    return Done;
}

} // namespace

Command exampleCommand()
{
    return {"example", "Corvane example [--study [--subjects N]] DIR",
            "Writes the example dataset and imports it, or a study of two groups.", run};
}

} // namespace corvane
