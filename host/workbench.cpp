// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench.h"

#include "host/application.h"
#include "host/commands.h"
#include "host/log.h"
#include "host/main_window.h"
#include "host/workspace.h"

#ifdef CORVANE_IMPORT
#include "host/resample_anatomy.h"
#endif

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

#ifdef CORVANE_IMPORT
Vmr openForeignAnatomy(const QString &path)
{
    QStringList notes;
    Vmr vmr = openAnatomy(path, notes).vmr;
    for (const QString &note : qAsConst(notes))
        logText(note);
    return vmr;
}
#endif

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

} // namespace corvane
