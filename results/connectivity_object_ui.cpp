// SPDX-License-Identifier: GPL-3.0-or-later
//
// The results dialog itself.
#include "results/connectivity_object_ui.h"

#include "dataset/verbose_log.h"
#include "engine/connectivity_object.h"
#include "plots/plain_text.h"
#include "plots/plot_source.h"
#include "results/nodes_table.h"
#include "ui_connectivity_object_ui.h"

#include <QIcon>

namespace
{

/// A path may be wider than the label, so that it is its tool tip too.
void showPath(QLabel *label, const QString &path)
{
    label->setText(path);
    label->setToolTip(asToolTip(path));
}

} // namespace

ConnectivityObjectUI::ConnectivityObjectUI(ConnectivityObject *object, QWidget *parent)
    : QDialog(parent), connectivityObject(object), ui(std::make_unique<Ui::ConnectivityObjectUI>())
{
    ui->setupUi(this);
    // Not in the form: Qt takes a control that is made inside a disabled group for a plain widget,
    // and does not tell a screen reader its kind.
    circularPlot_disableOptions();
    ui->pushButton->setIcon(QIcon::fromTheme(QStringLiteral("window-close")));
    prepareGraphFeatures();
    prepareNodesTable();
    ui->tab_Filter->setEnabled(false);
    ui->tab_Nodes->setEnabled(false);
    showPath(ui->lbl_VOI_filename, subject().voiFile());
    showPath(ui->lbl_VTC_filename, subject().vtcFile());

    QxtSpanSlider *const spanner = ui->widget_CircPlot_Spanner;
    spanner->setRange(0, 1000);
    spanner->setSpan(0, 1000);
    spanner->setOrientation(Qt::Horizontal);
}

ConnectivityObjectUI::~ConnectivityObjectUI() = default;

ConnectivityObject *connectivityObjectOf(const QWidget *plotWindow)
{
    const auto *const dialog = qobject_cast<ConnectivityObjectUI *>(plotWindow->parent());
    return dialog ? dialog->connectivityObject : nullptr;
}

const Subject &ConnectivityObjectUI::subject() const
{
    static const Subject none;
    const Subject *const shown = connectivityObject ? connectivityObject->subject() : nullptr;
    return shown ? *shown : none;
}

ConnectivityObjectUI::Matrices ConnectivityObjectUI::matrices() const
{
    return connectivityObject ? connectivityObject->matrices() : Matrices();
}

void ConnectivityObjectUI::prepareNodesTable()
{
    const QStringList labels; // no node can be left out yet
    fillNodesTable(ui->tblView_Nodes, labels);
    if (PluginSettings::instance()->verboseLogging) {
        verboseLog("void __cdecl ConnectivityObjectUI::prepareNodesTable(void)");
        verboseLog("labels = (", labels.join(QStringLiteral(", ")), ")");
    }
}
