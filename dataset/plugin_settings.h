// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The two diagnostics that a person can switch on in the file
/// `Documents/CVExtensions/Plugins_64/tessera_plugin.ini` of the home folder: a verbose log file,
/// and a folder for the intermediate matrices of a compute. The plugin only reads that file.
///
/// One for the process, made at its first use and never destroyed. Written on the GUI thread only,
/// when a dialog is created; read without a lock from every thread.
class PluginSettings
{
public:
    static PluginSettings *instance();

    /// Resets everything, reads the file, and turns each wish into a working setting: makes this
    /// run's dump folder, installs the message handler. Every problem turns its diagnostic off
    /// without a word.
    void read();

    bool messageHandlerInstalled = false; ///< tested before installing; nothing sets it
    bool verboseLogging = false;
    QString logDir; ///< folder of the log file, as read
    bool dumpAll = false;
    QString dumpOutputDir; ///< parent of the dump folder, as read
    QString dumpFolder;    ///< this run's dump folder

private:
    PluginSettings() = default;
    void reset();
    void makeDumpFolder();
    void startLogging();
};

/// Local date and time at which the library was loaded, "ddMMyyyy_hhmmss".
extern const QString loadStamp;
