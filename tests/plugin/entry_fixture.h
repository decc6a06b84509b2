// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/plugin_interface.h"
#include "tests/support/fake_host.h"

#include <QList>

#include <gtest/gtest.h>

#include <memory>

class Tessera;

// What this program offers under the names of the host: what the start of the plugin calls. The
// fake host of the fixture answers.
extern "C" {
__attribute__((visibility("default"))) void zqGetVersionOfCorvaneZQ(int *major, int *minor,
                                                                    int *third);
__attribute__((visibility("default"))) void *zqGetCurrentVMR(int *dimX, int *dimY, int *dimZ);
__attribute__((visibility("default"))) void zqShowLogPane();
__attribute__((visibility("default"))) void zqLogText(const char *text);
__attribute__((visibility("default"))) void zqMessageBox(const char *text);
}

/// A new plugin object in a program that is named as the host and has one VMR open.
class EntryFixture : public testing::Test
{
protected:
    EntryFixture();
    ~EntryFixture() override; ///< destroys the dialogs

    static QList<Tessera *> dialogs(); ///< the main dialogs that exist

    fake_host::FakeHost host;
    std::unique_ptr<CVZQPluginInterface> plugin;
};
