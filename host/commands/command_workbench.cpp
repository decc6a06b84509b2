// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/anatomy_opener.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/console.h"
#include "host/files/scratch_folder.h"
#include "host/session/session.h"
#include "host/workbench/application.h"
#include "host/workbench/main_window.h"
#include "host/workbench/screen_fit.h"
#include "host/workbench/stall_watch.h"
#ifdef CORVANE_IMPORT
#include "host/tour/guided_tour.h"
#endif

#include <QCommandLineParser>
#include <QTimer>

#include <optional>

namespace corvane
{

namespace
{

/// Opens the main window with the files of the arguments and runs until it is closed.
int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QString plugins = QStringLiteral("plugins");
    const QString start = QStringLiteral("start");
    parser.addOption(
        {plugins, QStringLiteral("The folder of the plugins."), QStringLiteral("folder")});
    parser.addOption({start, QStringLiteral("A plugin to start."), QStringLiteral("name")});
    const QString tour = QStringLiteral("tour");
    parser.addOption({tour, QStringLiteral("Plays the guided tour and ends with it.")});
    if (!parser.parse(QStringList(QStringLiteral("Corvane")) + arguments))
        throw UsageError(parser.errorText());
    refuseRepeatedOptions(parser);

    // What a tour opens and where its windows stand is not for the user's own settings.
    std::optional<ScratchFolder> settings;
    if (parser.isSet(tour))
        keepSettingsIn(settings.emplace().path());
    Session session(anatomyOpener());
    MainWindow window(session);
#ifdef CORVANE_IMPORT
    auto *const guidedTour = new GuidedTour(window);
#endif
    new ScreenFit(window);
    window.show();
    const StallWatch stalls;
    // With the event loop running: what goes wrong is told in windows.
    QTimer::singleShot(0, &window, [&] {
        window.loadPluginFolder(parser.isSet(plugins) ? parser.value(plugins)
                                                      : defaultPluginFolder());
        if (!parser.positionalArguments().isEmpty())
            window.openFiles(parser.positionalArguments());
        if (parser.isSet(start))
            window.startPlugin(parser.value(start));
#ifdef CORVANE_IMPORT
        if (parser.isSet(tour)) {
            QObject::connect(guidedTour, &GuidedTour::ended, &window, &QCoreApplication::quit);
            guidedTour->start();
        }
#endif
    });
    return QCoreApplication::exec();
}

std::unique_ptr<QCoreApplication> makeApplication(const QStringList &, int &argc, char **argv)
{
    if (!thereIsADisplay())
        throw UsageError(QStringLiteral("there is no display to open a window on (neither DISPLAY "
                                        "nor WAYLAND_DISPLAY is set); Corvane --help tells what "
                                        "works without one"));
    leaveOwnConsole();
    return std::make_unique<Application>(argc, argv);
}

} // namespace

Command workbenchCommand()
{
    return {nullptr, "Corvane [--plugins DIR] [--start PLUGIN] [--tour] [FILE...]",
            "Opens the workbench with these files: .vmr, NIfTI or NRRD, .vtc, .voi, .prt; what has "
            "to be imported first, and folders, lead to the import.",
            run, makeApplication};
}

} // namespace corvane
