// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands.h"
#include "host/host_version.h"
#include "host/input_error.h"
#ifdef CORVANE_WORKBENCH
#include "host/workbench.h"
#endif

#include <QCoreApplication>
#include <QFileInfo>
#include <QTextCodec>
#include <csignal>
#include <cstdio>
#include <new>
#include <vector>

namespace corvane
{

namespace
{

struct Command {
    const char *name;
    int (*run)(const QStringList &arguments);
    const char *synopsis; ///< its further lines indented as in the usage of the program
    const char *purpose;
};

/// The commands of this build.
const std::vector<Command> &commands()
{
    static const std::vector<Command> all{
#ifdef CORVANE_COMMAND_EXAMPLE
        {"example", runExample, "Corvane example DIR",
         "Writes the example dataset and imports it."},
#endif
#ifdef CORVANE_COMMAND_IMPORT
        {"import", runImport,
         R"(Corvane import --anatomy F --functional F [--atlas F [--labels F]] [--events F]
                 [--resolution N] [--tr SECONDS] [--voi-grid functional|anatomy]
                 [--name NAME] --out DIR)",
         "Makes .vmr, .vtc, .voi and .prt files from NIfTI, NRRD and TSV files."},
#endif
#ifdef CORVANE_COMMAND_COMPUTE
        {"compute", runCompute,
         R"(Corvane compute --anatomy F --vtc F --voi F [--prt F] [--use-protocol]
                  [--seeds all|0,3,5] [--measure correlation|partial-correlation]
                  [--values absolute|positive|negative] [--no-mst] [--plots] --out DIR)",
         "Computes connectivity, spanning trees and graph measures; with --plots, draws them."},
#endif
#ifdef CORVANE_COMMAND_GRAPH
        {"graph", runGraph, "Corvane graph MATRIX.csv [--mst] --out DIR",
         "Computes the graph measures of a matrix."},
#endif
#ifdef CORVANE_COMMAND_TOUR
        {"tour", runTour, "Corvane tour [--plugins DIR] --out DIR",
         "Plays the whole workflow on the example dataset, with a picture of each step."},
#endif
    };
    return all;
}

/// The command of a name, or null.
const Command *commandOf(const QString &name)
{
    for (const Command &command : commands())
        if (name == QLatin1String(command.name))
            return &command;
    return nullptr;
}

#ifdef CORVANE_WORKBENCH
/// Whether the arguments ask for the program with windows: there are none, or they begin with one
/// of its options or with a file.
bool asksForWorkbench(const QStringList &arguments)
{
    if (arguments.isEmpty())
        return true;
    const QString &first = arguments.front();
    if (commandOf(first) != nullptr)
        return false;
    for (const char *option : {"--plugins", "--start"})
        if (first.section(QLatin1Char('='), 0, 0) == QLatin1String(option))
            return true;
    for (const char *ending : {".vmr", ".vtc", ".voi", ".prt", ".nii", ".nii.gz", ".nrrd", ".nhdr"})
        if (first.endsWith(QLatin1String(ending), Qt::CaseInsensitive))
            return true;
    return QFileInfo(first).isFile();
}

/// Whether a command is to draw, which takes an application with windows.
bool asksForPictures(const QStringList &arguments)
{
    return !arguments.isEmpty() && arguments.front() == QLatin1String("compute") &&
           arguments.contains(QStringLiteral("--plots"));
}
#endif

QByteArray usage()
{
    QByteArray text = "Usage:\n";
#ifdef CORVANE_WORKBENCH
    text += R"(  Corvane [--plugins DIR] [--start PLUGIN] [FILE...]
      Opens the workbench with these files: .vmr, NIfTI or NRRD, .vtc, .voi, .prt.
)";
#endif
    for (const Command &command : commands())
        text += QByteArray("  ") + command.synopsis + "\n      " + command.purpose + '\n';
    return text + "  Corvane COMMAND --help\n"
                  "      Tells all options of a command.\n"
                  "  Corvane --help | --version\n"
                  "\n"
                  "Exit status: 0 done, 1 the input is bad, 2 wrong usage.\n";
}

void print(std::FILE *stream, const QByteArray &text)
{
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stream);
}

/// One line on standard error, whatever the message holds.
void printError(const QString &command, const char *message)
{
    constexpr int longest = 8192;
    const QString prefix = command.isEmpty() ? QString() : QLatin1Char(' ') + command;
    print(stderr, QStringLiteral("Corvane%1: %2\n")
                      .arg(prefix, printable(QString::fromUtf8(message), longest))
                      .toUtf8());
}

int runCommand(const QStringList &arguments)
{
    const Command *const found = commandOf(arguments.front());
    if (found == nullptr)
        throw UsageError(QStringLiteral("unknown command %1, and no file of that name; see "
                                        "Corvane --help")
                             .arg(quoted(arguments.front())));
    try {
        return found->run(arguments);
    } catch (const UsageError &error) {
        printError(arguments.front(), error.what());
        return WrongUsage;
    }
}

int run(const QStringList &arguments)
{
    if (arguments.isEmpty()) {
        print(stderr, usage());
        return WrongUsage;
    }
    const QString &first = arguments.front();
    if (first == QLatin1String("--help") || first == QLatin1String("-h")) {
        print(stdout, usage());
        return Done;
    }
    if (first == QLatin1String("--version") || first == QLatin1String("-v")) {
        print(stdout, QStringLiteral("Corvane %1.%2.%3 (Tessera %4)\n")
                          .arg(hostVersion[0])
                          .arg(hostVersion[1])
                          .arg(hostVersion[2])
                          .arg(QStringLiteral(TESSERA_VERSION))
                          .toUtf8());
        return Done;
    }
    return runCommand(arguments);
}

/// Makes the application that the arguments ask for, and runs it.
int runApplication(int &argc, char **argv)
{
    QStringList arguments;
    for (int n = 1; n < argc; ++n)
        arguments += QString::fromLocal8Bit(argv[n]);
#ifdef CORVANE_WORKBENCH
    if (asksForWorkbench(arguments)) {
        const std::unique_ptr<QCoreApplication> application = makeWindowApplication(argc, argv);
        return runWorkbench(QCoreApplication::arguments().mid(1));
    }
#endif
#ifdef CORVANE_COMMAND_TOUR
    if (!arguments.isEmpty() && arguments.front() == QLatin1String("tour")) {
        const std::unique_ptr<QCoreApplication> application = makeTourApplication(argc, argv);
        return run(QCoreApplication::arguments().mid(1));
    }
#endif
#ifdef CORVANE_WORKBENCH
    if (asksForPictures(arguments)) {
        const std::unique_ptr<QCoreApplication> application = makePictureApplication(argc, argv);
        return run(arguments);
    }
#endif
    const QCoreApplication application(argc, argv);
    return run(QCoreApplication::arguments().mid(1));
}

/// Whatever goes wrong ends as one line and an exit status.
int guardedRun(int &argc, char **argv)
{
    try {
        return runApplication(argc, argv);
    } catch (const UsageError &error) {
        printError({}, error.what());
        return WrongUsage;
    } catch (const std::bad_alloc &) {
        // Without the help of anything that might ask for memory again.
        std::fputs("Corvane: there is not enough memory for this\n", stderr);
    } catch (const std::exception &error) {
        printError({}, error.what());
    } catch (...) {
        printError({}, "an error that does not say what it is");
    }
    return BadInput;
}

} // namespace

QString synopsisOf(const QString &command)
{
    const Command *const found = commandOf(command);
    return found != nullptr ? QString::fromUtf8(found->synopsis) : QString();
}

} // namespace corvane

int main(int argc, char **argv)
{
#ifndef Q_OS_WIN
    // Paths and arguments are UTF-8, also where the user's locale says otherwise.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
#endif
#ifdef SIGXFSZ
    // A file that may not grow is an error of writing, not the end of the process.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    return corvane::guardedRun(argc, argv);
}
