// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/application.h"

#include "host/session/log.h"

#include <QFont>
#include <QFontMetrics>
#include <QSettings>
#include <QStyle>

#include <cstdio>
#include <exception>
#include <utility>

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

/// What Qt warns of in windows that nobody sees is not for the command line.
void printErrorsOnly(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", text.toUtf8().constData());
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
        m_caught = std::current_exception();
        report(name, QString::fromUtf8(error.what()));
    } catch (...) {
        m_caught = std::current_exception();
        report(name, QStringLiteral("an error that does not say what it is"));
    }
    return false;
}

void Application::throwCaught()
{
    if (m_caught)
        std::rethrow_exception(std::exchange(m_caught, nullptr));
}

std::unique_ptr<QCoreApplication> makePictureApplication(int &argc, char **argv, bool canBeWatched)
{
    qInstallMessageHandler(printErrorsOnly);
    if (!canBeWatched || !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qSetGlobalQHashSeed(0);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication::setStyle(QStringLiteral("Fusion"));
    auto application = std::make_unique<Application>(argc, argv);
    QApplication::setPalette(QApplication::style()->standardPalette());
    // Where nothing else says what stands for a font that is not there.
    QFont::insertSubstitution(QStringLiteral("Arial"), QStringLiteral("Liberation Sans"));
    QApplication::setFont(QFont(QStringLiteral("Liberation Sans"), 10));
    if (!QFontMetrics(QApplication::font()).inFont(QLatin1Char('a')))
        std::fputs("no font is installed: pictures have no letters\n", stderr);
    return application;
}

void keepSettingsIn(const QString &folder)
{
    for (const QSettings::Format format : {QSettings::NativeFormat, QSettings::IniFormat})
        QSettings::setPath(format, QSettings::UserScope, folder);
    QSettings::setDefaultFormat(QSettings::IniFormat); // the native one of Windows has no path
}

} // namespace corvane
