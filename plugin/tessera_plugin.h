// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/plugin_interface.h"

#include <QHash>
#include <QPointer>
#include <QString>

class Subject;
class Tessera;

/// The plugin as the host sees it: decides whether it may run, and opens the main dialog.
///
/// One per `createPlugin`. All members run on the host's GUI thread.
class TESSERA_EXPORT_TYPE Tessera_Plugin : public CVZQPluginInterface
{
public:
    TESSERA_EXPORT_MEMBER Tessera_Plugin();
    TESSERA_EXPORT_MEMBER ~Tessera_Plugin() override; ///< leaves the dialog alone

    /// Shows the main dialog, creating it when there is none. Always true.
    TESSERA_EXPORT_MEMBER bool execute() override;
    /// Binds the host's functions, passes the version gate, requires an open VMR of 256 x 256 x 256
    /// and writes the start-up lines. False when the plugin may not run; a message box of the host
    /// says why, unless this is no host.
    TESSERA_EXPORT_MEMBER bool initPlugin() override;

    // The host data access on a subject; see plugin/host_data.h.
    QHash<int, QString> vmrDocuments();
    void setCurrentDocument(int id);
    bool loadSubject(Subject &subject);
    int readVOINames(Subject &subject);
    bool loadProtocolFile(Subject &subject, const char *path);
    bool linkVTCProtocol(Subject &subject);
    bool voiFileIsOneMillimetre(const char *path);

private:
    QPointer<Tessera> dialog; ///< deletes itself when closed
};
