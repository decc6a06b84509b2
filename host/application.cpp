// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/application.h"

#include "host/log.h"

#include <exception>

namespace corvane
{

namespace
{

void report(const char *receiver, const QString &what)
{
    logText(QStringLiteral("An error was caught in %1: %2. What it was doing is not finished; "
                           "everything else goes on.")
                .arg(QString::fromLatin1(receiver), what));
}

} // namespace

Application::Application(int &argc, char **argv) : QApplication(argc, argv)
{
    setOrganizationName(QStringLiteral("Corvane"));
    setApplicationName(QStringLiteral("Corvane"));
    setAttribute(Qt::AA_UseHighDpiPixmaps);
}

bool Application::notify(QObject *receiver, QEvent *event)
{
    // Asked before: the receiver may be gone when the exception arrives.
    const char *const name = receiver->metaObject()->className();
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception &error) {
        report(name, QString::fromUtf8(error.what()));
    } catch (...) {
        report(name, QStringLiteral("an error that does not say what it is"));
    }
    return false;
}

} // namespace corvane
