// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/commands.h"
#include "host/commands/console.h"
#include "host/files/disk.h"
#include "host/files/file_kind.h"
#include "host/files/housekeeping.h"
#include "host/files/input_error.h"
#include "host/session/host_version.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <system_error>
#include <vector>

namespace corvane
{

namespace
{

/// The command of a name, or null.
const Command *commandOf(const QString &name)
{
    for (const Command &command : commands())
        if (name == QLatin1String(command.name))
            return &command;
    return nullptr;
}

/// Whether the arguments ask for what runs without the name of a command: there are none, or they
/// begin with one of its options, or with a file or folder.
bool asksForNoCommand(const QStringList &arguments)
{
    if (commandWithoutName().run == nullptr)
        return false;
    if (arguments.isEmpty())
        return true;
    const QString &first = arguments.front();
    if (commandOf(first) != nullptr)
        return false;
    for (const char *option : {"--plugins", "--start"})
        if (first.section(QLatin1Char('='), 0, 0) == QLatin1String(option))
            return true;
    return fileKind(first) != FileKind::Other || QFileInfo::exists(first);
}

QByteArray usageOf(const Command &command)
{
    return QByteArray("  ") + command.synopsis + "\n      " + command.purpose + '\n';
}

QByteArray usage()
{
    QByteArray text = "Usage:\n";
    if (commandWithoutName().run != nullptr)
        text += usageOf(commandWithoutName());
    for (const Command &command : commands())
        text += usageOf(command);
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
    waitIfEnding();
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
int runApplication(QStringList arguments, int &argc, char **argv)
{
    const bool hasNoCommand = asksForNoCommand(arguments);
    const Command *const command = hasNoCommand          ? &commandWithoutName()
                                   : arguments.isEmpty() ? nullptr
                                                         : commandOf(arguments.front());
    const auto application = command != nullptr ? command->makeApplication(arguments, argc, argv)
                                                : makePlainApplication(arguments, argc, argv);
    // Applications take the user's locale over; numbers keep their point in all of them.
    std::setlocale(LC_NUMERIC, "C");
    // Without those that Qt took for itself; an application that was shown none has taken none.
    if (argc > 1)
        arguments = QCoreApplication::arguments().mid(1);
    return hasNoCommand ? command->run(arguments) : run(arguments);
}

/// Without the help of anything that might ask for memory again.
void tellOfMissingMemory()
{
    std::fputs("Corvane: there is not enough memory for this\n", stderr);
}

/// Memory may run out where no exception is let through, as in much of Qt.
[[noreturn]] void endWithMessage()
{
    try {
        if (const std::exception_ptr error = std::current_exception())
            std::rethrow_exception(error);
    } catch (const std::bad_alloc &) {
        tellOfMissingMemory();
        std::_Exit(BadInput);
    } catch (...) {
        // As it was.
    }
    std::abort();
}

/// Whatever goes wrong ends as one line and an exit status.
int guardedRun(const Console &console, int &argc, char **argv)
{
    try {
        startHousekeeping();
        return runApplication(console.arguments(argc, argv), argc, argv);
    } catch (const UsageError &error) {
        printError({}, error.what());
        return WrongUsage;
    } catch (const std::bad_alloc &) {
        waitIfEnding();
        tellOfMissingMemory();
    } catch (const std::system_error &error) {
        const bool isThread = error.code() == std::errc::resource_unavailable_try_again;
        printError({}, isThread ? "the system gives no further thread for this" : error.what());
    } catch (const std::exception &error) {
        printError({}, error.what());
    } catch (...) {
        printError({}, "an error that does not say what it is");
    }
    return BadInput;
}

} // namespace

std::unique_ptr<QCoreApplication> makePlainApplication(const QStringList &, int &argc, char **argv)
{
    return std::make_unique<QCoreApplication>(argc, argv);
}

QString synopsisOf(const QString &command)
{
    const Command *const found = commandOf(command);
    return found != nullptr ? QString::fromUtf8(found->synopsis) : QString();
}

} // namespace corvane

int main(int argc, char **argv)
{
    std::set_terminate(corvane::endWithMessage);
    const corvane::Console console;
    corvane::surviveFullFiles();
    const int status = corvane::guardedRun(console, argc, argv);
    corvane::waitIfEnding();
    return status;
}
