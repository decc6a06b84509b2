// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/files/input_error.h"
#include "host/files/output_folder.h"
#include "host/files/progress.h"
#include "host/files/scratch_folder.h"
#include "host/import/example_dataset.h"
#include "host/import/resample_anatomy.h"
#include "host/session/session.h"
#include "host/tour/tour_steps.h"
#include "host/workbench/application.h"
#include "host/workbench/main_window.h"

#include <QFileDialog>

#include <cstdio>
#include <optional>

namespace corvane
{

namespace
{

/// Plays the whole workflow on the example dataset and writes a picture and a caption of each step.
int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Plays the whole workflow on the example dataset, and writes a picture and "
                       "a caption of each step."));
    const QString plugins = QStringLiteral("plugins");
    parser.addOptions(
        {{QStringLiteral("out"), QStringLiteral("The folder for the pictures."),
          QStringLiteral("folder")},
         {plugins, QStringLiteral("The folder of the plugins."), QStringLiteral("folder")}});
    if (!parseArguments(parser, arguments))
        return Done;

    const QString folder = requiredValue(parser, QStringLiteral("out"));
    OutputFolder pictures(folder, arguments.front());
    // The user's own settings stay out of the pictures, and the tour out of them.
    const ScratchFolder settings;
    keepSettingsIn(settings.path());
    Session session(openForeignAnatomy);
    MainWindow window(session);
    const QString pluginFolder =
        parser.isSet(plugins) ? parser.value(plugins) : defaultPluginFolder();
    window.loadPluginFolder(pluginFolder);
    if (!window.pluginNames().contains(tourPlugin()))
        throw InputError(pluginFolder, QStringLiteral("plugins"),
                         quoted(window.pluginNames().join(QStringLiteral(", "))),
                         quoted(tourPlugin()));
    const ScratchFolder dataset;
    const ScratchFolder exports;
    QFileDialog().setDirectory(dataset.path()); // not where the user's own dialogs were last
    writeExample(dataset.path(), TerminalProgress(QStringLiteral("writing the example")).watch());
    window.resize(MainWindow::usualSize());
    window.show();
    std::vector<TourStep> steps = workflowSteps(window, dataset.path(), exports.path());
    const auto stepCount = static_cast<qint64>(steps.size());
    std::optional<TerminalProgress> progress(std::in_place, QStringLiteral("playing the tour"));
    Tour tour(std::move(steps));
    tour.setFolder(pictures.path());
    QObject::connect(&tour, &Tour::stepped, &window,
                     [&](int done) { progress->show(done, stepCount); });
    QString fault;
    QObject::connect(&tour, &Tour::finished, &window, [&](const QString &text) {
        fault = text;
        QCoreApplication::quit();
    });
    tour.start();
    QCoreApplication::exec();
    progress.reset();
    if (!fault.isEmpty())
        throw std::runtime_error(fault.toStdString());
    for (const QString &line : pictures.commit())
        std::fprintf(stderr, "%s\n", line.toUtf8().constData());
    std::printf("%s: %d pictures, captions.md\n", folder.toUtf8().constData(), tour.pictures());
    return Done;
}

/// The tour can be watched where the environment names a platform.
std::unique_ptr<QCoreApplication> makeApplication(const QStringList &, int &argc, char **argv)
{
    return makePictureApplication(argc, argv, true);
}

} // namespace

Command tourCommand()
{
    return {"tour", "Corvane tour [--plugins DIR] --out DIR",
            "Plays the whole workflow on the example dataset, with a picture of each step.", run,
            makeApplication};
}

} // namespace corvane
