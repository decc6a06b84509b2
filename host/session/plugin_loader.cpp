// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/session/plugin_loader.h"

#include "host/files/input_error.h"
#include "host/session/host_version.h"
#include "host/session/library_file.h"
#include "host/session/log.h"
#include "host/session/session.h"
#include "plugin/plugin_interface.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QRegularExpression>

// The class's type information is in the plugins alone.
#if defined(__GNUC__)
#define CALLS_PLUGIN __attribute__((no_sanitize("vptr")))
#else
#define CALLS_PLUGIN
#endif

namespace corvane
{

namespace
{

QString versionText()
{
    return QStringLiteral("%1.%2.%3").arg(hostVersion[0]).arg(hostVersion[1]).arg(hostVersion[2]);
}

/// What a plugin throws, as a PluginError with the name of the step.
template <typename Action>
auto guarded(const QString &step, Action action) -> decltype(action())
{
    try {
        return action();
    } catch (const std::exception &error) {
        throw PluginError(QStringLiteral("%1 failed: %2")
                              .arg(step, printable(QString::fromUtf8(error.what()), 1000)));
    } catch (...) {
        throw PluginError(
            QStringLiteral("%1 failed with an error that does not say what it is").arg(step));
    }
}

/// A library that calls a function of the host that is not there was made for another host.
QString loadFault(const QString &systemText)
{
    static const QRegularExpression missing(QStringLiteral("undefined symbol: (zq\\w+)"));
    const QRegularExpressionMatch match = missing.match(systemText);
    if (match.hasMatch())
        return QStringLiteral("was built for another version of the host: it needs %1, which "
                              "version %2 does not have")
            .arg(match.captured(1), versionText());
    return QStringLiteral("cannot be loaded: ") + printable(systemText, 1000);
}

template <typename Function>
Function required(QLibrary &library, const char *name)
{
    const auto function = reinterpret_cast<Function>(library.resolve(name));
    if (function == nullptr)
        throw PluginError(
            QStringLiteral("is no plugin: it does not export %1").arg(QString::fromLatin1(name)));
    return function;
}

QString textOf(QLibrary &library, const char *name)
{
    const auto function = required<const char *(*)()>(library, name);
    const char *const text = guarded(QString::fromLatin1(name), function);
    if (text == nullptr)
        throw PluginError(
            QStringLiteral("is no plugin: %1 gives no text").arg(QString::fromLatin1(name)));
    return QString::fromUtf8(text);
}

/// Collects the messages that the plugins' session shows while it lives.
class Overheard
{
public:
    Overheard()
    {
        if (Session *const session = Session::current())
            QObject::connect(session, &Session::messageShown, &m_listener,
                             [this](const QString &text) { m_texts += text.simplified(); });
    }

    const QStringList &texts() const { return m_texts; }

private:
    QStringList m_texts;
    QObject m_listener;
};

} // namespace

Plugin::Plugin(const QString &path) : m_path(path)
{
    const QString fault = libraryFault(path);
    if (!fault.isEmpty())
        throw PluginError(fault);
    QLibrary library(path);
    library.setLoadHints(QLibrary::PreventUnloadHint | QLibrary::ResolveAllSymbolsHint);
    if (!library.load())
        throw PluginError(loadFault(library.errorString()));
    m_create = required<Create>(library, "createPlugin");
    m_name = textOf(library, "getPluginName");
    m_author = textOf(library, "getAuthor");
    if (m_name.isEmpty())
        throw PluginError(QStringLiteral("is no plugin: its name is empty"));
}

Plugin::~Plugin()
{
    discard();
}

CALLS_PLUGIN void Plugin::discard()
{
    delete std::exchange(m_object, nullptr);
}

CALLS_PLUGIN void Plugin::initialise()
{
    m_object = guarded(QStringLiteral("createPlugin"), m_create);
    if (m_object == nullptr)
        throw PluginError(QStringLiteral("createPlugin gives no plugin"));
    const Overheard overheard;
    const bool ready = guarded(QStringLiteral("initPlugin"),
                               [this]() CALLS_PLUGIN { return m_object->initPlugin(); });
    if (ready)
        return;
    const QStringList &texts = overheard.texts();
    throw PluginError(texts.isEmpty()
                          ? QStringLiteral("it refuses to run in version %1 of this host and does "
                                           "not say why")
                                .arg(versionText())
                          : QStringLiteral("it refuses: ") + texts.join(QLatin1Char(' ')));
}

CALLS_PLUGIN void Plugin::start()
{
    bool done = false;
    try {
        if (m_object == nullptr)
            initialise();
        done = guarded(QStringLiteral("execute"),
                       [this]() CALLS_PLUGIN { return m_object->execute(); });
    } catch (...) {
        discard();
        throw;
    }
    if (!done)
        throw PluginError(QStringLiteral("execute reports a failure"));
}

std::vector<std::unique_ptr<Plugin>> loadPlugins(const QString &folder)
{
    std::vector<std::unique_ptr<Plugin>> plugins;
    const QDir directory(folder);
    if (!directory.exists()) {
        logText(QStringLiteral("There is no plugin folder %1.").arg(folder));
        return plugins;
    }
    for (const QString &file : directory.entryList(QDir::Files, QDir::Name)) {
        if (!QLibrary::isLibrary(file))
            continue;
        try {
            plugins.push_back(std::make_unique<Plugin>(directory.absoluteFilePath(file)));
        } catch (const PluginError &error) {
            logText(QStringLiteral("%1 %2.").arg(printable(directory.filePath(file), 4096),
                                                 QString::fromUtf8(error.what())));
        }
    }
    return plugins;
}

QString defaultPluginFolder()
{
    QString named = qEnvironmentVariable("CORVANE_PLUGINS");
    if (!named.isEmpty())
        return named;
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/../lib/corvane/plugins"));
}

} // namespace corvane
