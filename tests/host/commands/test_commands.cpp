// SPDX-License-Identifier: GPL-3.0-or-later
//
// Subcommands that succeed and fail as the tests of the command line ask.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/files/input_error.h"
#include "host/files/output_folder.h"
#include "host/files/progress.h"
#include "tests/host/support/host_files.h"

#include <cstdio>
#include <memory>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace corvane
{

namespace
{

void requireMemory(bool isThere)
{
    if (!isThere)
        throw std::bad_alloc();
}

/// Where nothing may be thrown.
void runOutOfMemory() noexcept
{
    requireMemory(false);
}

/// Throws what its argument says.
int runExample(const QStringList &arguments)
{
    const QString way = arguments.value(1);
    if (way == QLatin1String("input error"))
        throw InputError(QStringLiteral("a%1\nb.vtc"), QStringLiteral("line 3"),
                         QStringLiteral("\"x\""), QStringLiteral("\"y\""));
    if (way == QLatin1String("bad_alloc"))
        throw std::bad_alloc();
    if (way == QLatin1String("bad_alloc where nothing may be thrown"))
        runOutOfMemory();
    if (way == QLatin1String("no thread"))
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    if (way == QLatin1String("lines"))
        throw std::runtime_error("first\nsecond");
    if (way == QLatin1String("long"))
        throw std::runtime_error(std::string(100000, 'x'));
    throw 7;
}

/// Writes a volume.
int runImport(const QStringList &arguments)
{
    TerminalProgress progress(QStringLiteral("writing"));
    progress.show(1, 2);
    writeVmr(arguments.value(1), zeroVmr());
    return Done;
}

/// Prints the name of a protocol.
int runCompute(const QStringList &arguments)
{
    std::puts(readPrtFile(arguments.value(1)).name.toUtf8().constData());
    return Done;
}

/// Writes into a folder until it is gone. Past the host's own writers, which would wait for the
/// end.
[[noreturn]] void writeOnAndOn(const OutputFolder &folder)
{
    for (int number = 0;; ++number) {
        QFile file(folder.path(QString::number(number)));
        if (!file.open(QIODevice::WriteOnly) || file.write("text") != 4)
            throw InputError(file.fileName(), QStringLiteral("writing"), file.errorString(),
                             QStringLiteral("a folder"));
    }
}

/// Writes into a folder until a signal ends it. With "thread" another thread writes, as for the
/// windows, while this one handles events; with "late" nothing holds up the error.
int runTour(const QStringList &arguments)
{
    auto folder = std::make_unique<OutputFolder>(arguments.value(1), arguments.front());
    if (arguments.value(2) == QLatin1String("thread")) {
        std::thread([&] {
            try {
                writeOnAndOn(*folder);
            } catch (const InputError &) {
                // A dialog would tell it.
            }
        }).detach();
        return QCoreApplication::exec();
    }
    if (arguments.value(2) == QLatin1String("late"))
        writeOnAndOn(*folder.release());
    writeOnAndOn(*folder);
}

/// Takes one argument and an option.
int runGraph(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.addOption({QStringLiteral("out"), QStringLiteral("Where to."), QStringLiteral("DIR")});
    if (!parseArguments(parser, arguments, {QStringLiteral("MATRIX.csv")}))
        return Done;
    const QString text = parser.positionalArguments().front() + QStringLiteral(" to ") +
                         requiredValue(parser, QStringLiteral("out"));
    std::puts(text.toUtf8().constData());
    return Done;
}

} // namespace

const std::vector<Command> &commands()
{
    static const std::vector<Command> all{
        {"example", "Corvane example WAY", "Throws.", runExample},
        {"import", "Corvane import FILE", "Writes.", runImport},
        {"compute", "Corvane compute FILE", "Prints.", runCompute},
        {"graph", "Corvane graph MATRIX.csv --out DIR", "Parses.", runGraph},
        {"tour", "Corvane tour DIR [thread|late]", "Writes on and on.", runTour}};
    return all;
}

const Command &commandWithoutName()
{
    static const Command none{};
    return none;
}

} // namespace corvane
