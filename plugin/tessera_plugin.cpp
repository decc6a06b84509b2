// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/tessera_plugin.h"

#include "dataset/tessera.h"
#include "plots/bring_to_front.h"
#include "plugin/exports.h"
#include "plugin/host_data.h"
#include "plugin/host_functions.h"
#include "plugin/host_log.h"
#include "plugin/maker.h"

namespace
{

/// Every 2.8.x passes, and everything later.
bool versionIsSupported(int major, int minor, int third)
{
    return major > 2 || (major == 2 && minor > 8) || (major == 2 && minor == 8 && third >= 0);
}

void writeStartUpLines()
{
    logToHost("\n Starting %s Plugin %s, using Nodalis", getPluginName(), getPluginVersion());
    logToHost("\n* Please check our support website (%s) for frequent updates.", maker::supportUrl);
    logToHost("\n* For questions, suggestions and bugs please contact %s.", maker::contact);
}

} // namespace

Tessera_Plugin::Tessera_Plugin() = default;
Tessera_Plugin::~Tessera_Plugin() = default;

bool Tessera_Plugin::initPlugin()
{
    if (!bindHostFunctions())
        return false;
    const HostFunctionTable &host = hostFunctions();

    int major = 0;
    int minor = 0;
    int third = 0;
    host.zqGetVersionOfCorvaneZQ(&major, &minor, &third);
    if (!versionIsSupported(major, minor, third)) {
        host.zqMessageBox(
            "Can not execute this plugin - CorvaneZQ version 2.8 or higher required.");
        return false;
    }

    int dimX = 0;
    int dimY = 0;
    int dimZ = 0;
    if (host.zqGetCurrentVMR(&dimX, &dimY, &dimZ) == nullptr) {
        host.zqMessageBox("This plugin requires a VMR to operate. Make sure that a VMR is open and "
                          "that its window is selected.");
        return false;
    }
    if (dimX != 256 || dimY != 256 || dimZ != 256) {
        host.zqMessageBox("This plugin requires a VMR with \"256\" dimensions, preferentially a "
                          "VMR in Talairach space.");
        return false;
    }

    host.zqShowLogPane();
    writeStartUpLines();
    dialog = nullptr;
    return true;
}

bool Tessera_Plugin::execute()
{
    hostFunctions().zqLogText("Executing plugin...");
    if (dialog == nullptr) {
        dialog = new Tessera(nullptr);
        dialog->setAttribute(Qt::WA_DeleteOnClose, true);
        dialog->plugin = this;
    }
    bringToFront(dialog);
    return true;
}

QHash<int, QString> Tessera_Plugin::vmrDocuments()
{
    return host_data::vmrDocuments();
}

void Tessera_Plugin::setCurrentDocument(int id)
{
    host_data::setCurrentDocument(id);
}

bool Tessera_Plugin::loadSubject(Subject &subject)
{
    return host_data::loadSubject(subject);
}

int Tessera_Plugin::readVOINames(Subject &subject)
{
    return host_data::readVOINames(subject);
}

bool Tessera_Plugin::loadProtocolFile(Subject &subject, const char *path)
{
    return host_data::loadProtocolFile(subject, path);
}

bool Tessera_Plugin::linkVTCProtocol(Subject &subject)
{
    return host_data::linkVTCProtocol(subject);
}

bool Tessera_Plugin::voiFileIsOneMillimetre(const char *path)
{
    return host_data::voiFileIsOneMillimetre(path);
}
