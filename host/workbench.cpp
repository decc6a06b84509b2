// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench.h"

#include "host/application.h"
#include "host/commands.h"
#include "host/log.h"
#include "host/main_window.h"
#include "host/workspace.h"

#ifdef CORVANE_IMPORT
#include "host/example_dataset.h"
#include "host/input_error.h"
#include "host/progress.h"
#include "host/resample_anatomy.h"
#include "host/tour_steps.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <optional>
#endif

#include <QStyle>

#include <cstdio>

namespace corvane
{

namespace
{

bool thereIsADisplay()
{
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    return true;
#else
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
#endif
}

/// What Qt warns of in windows that nobody sees is not for the command line.
void printErrorsOnly(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", text.toUtf8().constData());
}

/// An application whose windows look the same on each machine.
std::unique_ptr<QCoreApplication> applicationOfOneLook(int &argc, char **argv)
{
    qSetGlobalQHashSeed(0);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication::setStyle(QStringLiteral("Fusion"));
    auto application = std::make_unique<Application>(argc, argv);
    QApplication::setPalette(QApplication::style()->standardPalette());
    QApplication::setFont(QFont(QStringLiteral("Liberation Sans"), 10));
    return application;
}

} // namespace

std::unique_ptr<QCoreApplication> makeWindowApplication(int &argc, char **argv)
{
    if (!thereIsADisplay())
        throw UsageError(QStringLiteral("there is no display to open a window on (neither DISPLAY "
                                        "nor WAYLAND_DISPLAY is set); Corvane --help tells what "
                                        "works without one"));
    return std::make_unique<Application>(argc, argv);
}

int runWorkbench(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QString plugins = QStringLiteral("plugins");
    const QString start = QStringLiteral("start");
    parser.addOption(
        {plugins, QStringLiteral("The folder of the plugins."), QStringLiteral("folder")});
    parser.addOption({start, QStringLiteral("A plugin to start."), QStringLiteral("name")});
    if (!parser.parse(QStringList(QStringLiteral("Corvane")) + arguments))
        throw UsageError(parser.errorText());

#ifdef CORVANE_IMPORT
    workspace().setAnatomyOpener(openForeignAnatomy);
#endif
    MainWindow window(workspace());
    window.show();
    // With the event loop running: what goes wrong is told in windows.
    QTimer::singleShot(0, &window, [&] {
        window.loadPluginFolder(parser.isSet(plugins) ? parser.value(plugins)
                                                      : defaultPluginFolder());
        if (!parser.positionalArguments().isEmpty())
            window.openFiles(parser.positionalArguments());
        if (parser.isSet(start))
            window.startPlugin(parser.value(start));
    });
    return QCoreApplication::exec();
}

std::unique_ptr<QCoreApplication> makePictureApplication(int &argc, char **argv)
{
    qInstallMessageHandler(printErrorsOnly);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    argc = 1; // the arguments are those of a command, none is Qt's
    return applicationOfOneLook(argc, argv);
}

#ifdef CORVANE_IMPORT
std::unique_ptr<QCoreApplication> makeTourApplication(int &argc, char **argv)
{
    qInstallMessageHandler(printErrorsOnly);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    return applicationOfOneLook(argc, argv);
}

int runTour(const QStringList &arguments)
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

    const QDir folder(requiredValue(parser, QStringLiteral("out")));
    if (!QDir().mkpath(folder.path()))
        throw InputError(folder.path(), QStringLiteral("output folder"),
                         QStringLiteral("a place where none can be made"),
                         QStringLiteral("a folder that can be written to"));
    // The user's own settings stay out of the pictures, and the tour out of them.
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    workspace().setAnatomyOpener(openForeignAnatomy);
    MainWindow window(workspace());
    const QString pluginFolder =
        parser.isSet(plugins) ? parser.value(plugins) : defaultPluginFolder();
    window.loadPluginFolder(pluginFolder);
    if (!window.pluginNames().contains(tourPlugin()))
        throw InputError(pluginFolder, QStringLiteral("plugins"),
                         quoted(window.pluginNames().join(QStringLiteral(", "))),
                         quoted(tourPlugin()));
    const QTemporaryDir dataset;
    const QTemporaryDir exports;
    writeExample(dataset.path());
    window.resize(MainWindow::usualSize());
    window.show();
    std::vector<TourStep> steps = workflowSteps(window, dataset.path(), exports.path());
    std::optional<Progress> progress(std::in_place, QStringLiteral("playing the tour"),
                                     qint64(steps.size()));
    Tour tour(std::move(steps));
    tour.setFolder(folder.path());
    QObject::connect(&tour, &Tour::stepped, &window, [&](int done) { progress->update(done); });
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
    std::printf("%s: %d pictures, captions.md\n", folder.path().toUtf8().constData(),
                tour.pictures());
    return Done;
}
#endif

} // namespace corvane
