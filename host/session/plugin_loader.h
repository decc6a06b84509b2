// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <memory>
#include <stdexcept>
#include <vector>

/// @file
/// The libraries of the plugin folder. A library that was loaded is never unloaded: it may have
/// made types, strings and windows known that outlive it.

class CVZQPluginInterface;

namespace corvane
{

/// Why a library cannot be used or a plugin did not start: one line.
class PluginError : public std::runtime_error
{
public:
    explicit PluginError(const QString &text) : std::runtime_error(text.toStdString()) {}
};

/// A library that is a plugin.
class Plugin
{
public:
    /// Loads a library and reads its exports. Throws PluginError when it is no plugin.
    explicit Plugin(const QString &path);
    ~Plugin(); ///< deletes the plugin's object, not the library
    Plugin(const Plugin &) = delete;
    Plugin &operator=(const Plugin &) = delete;

    const QString &path() const { return m_path; }
    const QString &name() const { return m_name; }
    const QString &author() const { return m_author; } ///< may hold HTML

    /// Makes the plugin's object and initialises it, unless an earlier start has done that, and
    /// executes it. Throws PluginError when the plugin refuses or throws; its object is then
    /// deleted and the next start begins anew. One whose execution only reports a failure stays.
    void start();

private:
    using Create = CVZQPluginInterface *(*)();

    void initialise();
    void discard();

    QString m_path;
    QString m_name;
    QString m_author;
    Create m_create = nullptr;
    CVZQPluginInterface *m_object = nullptr;
};

/// The plugins of a folder in the order of their file names. Each library in it that cannot be used
/// gets a line in the log; so does a folder that is not there.
std::vector<std::unique_ptr<Plugin>> loadPlugins(const QString &folder);

/// The folder that the environment variable CORVANE_PLUGINS names, else the one that is installed
/// with the program.
QString defaultPluginFolder();

} // namespace corvane
