// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/plugin/entry_fixture.h"

#include "dataset/tessera.h"
#include "plugin/exports.h"
#include "plugin/host_functions.h"

#include <QApplication>

namespace
{

/// The functions of the fake host: the plugin's own table is bound anew to the exports below.
HostFunctionTable answers;

} // namespace

void zqGetVersionOfCorvaneZQ(int *major, int *minor, int *third)
{
    answers.zqGetVersionOfCorvaneZQ(major, minor, third);
}

void *zqGetCurrentVMR(int *dimX, int *dimY, int *dimZ)
{
    return answers.zqGetCurrentVMR(dimX, dimY, dimZ);
}

void zqShowLogPane()
{
    answers.zqShowLogPane();
}

void zqLogText(const char *text)
{
    answers.zqLogText(text);
}

void zqMessageBox(const char *text)
{
    answers.zqMessageBox(text);
}

EntryFixture::EntryFixture() : plugin(createPlugin())
{
    answers = hostFunctions();
    host.addVmr("/data/brain.vmr");
}

EntryFixture::~EntryFixture()
{
    qDeleteAll(dialogs());
}

QList<Tessera *> EntryFixture::dialogs()
{
    QList<Tessera *> all;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *dialog = qobject_cast<Tessera *>(widget))
            all.append(dialog);
    }
    return all;
}
