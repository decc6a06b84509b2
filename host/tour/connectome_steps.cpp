// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/tour/connectome_steps.h"

#include "host/explorer/explorer_window.h"
#include "host/tour/user_input.h"
#include "host/workbench/main_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

namespace corvane
{

namespace
{

constexpr auto connectome = "corvane::ExplorerWindow";
constexpr auto runDialog = "corvane::ExploreRunDialog";

/// The connectome window, once all of what it was asked for is there.
ExplorerWindow *explorer()
{
    auto *const window = qobject_cast<ExplorerWindow *>(windowOf(connectome));
    return window != nullptr && !window->model().isBusy() ? window : nullptr;
}

QWidget *whole()
{
    return explorer();
}

/// A control of the connectome window, once all is there.
StepList::Find inExplorer(const char *name)
{
    return [=] { return explorer() != nullptr ? part(connectome, name) : nullptr; };
}

/// Goes to a view by the menu: the reader may have closed it, or have it in a tab.
void goTo(StepList &steps, const char *text)
{
    steps.openMenu(
        []() -> QMenuBar * { return explorer() != nullptr ? explorer()->menuBar() : nullptr; },
        "View");
    steps.chooseEntry(text);
}

void chooseItem(QWidget *widget, int item)
{
    auto *const box = qobject_cast<QComboBox *>(widget);
    while (box->currentIndex() != item)
        pressKey(box, box->currentIndex() < item ? Qt::Key_Down : Qt::Key_Up);
}

void setNumber(QWidget *box, const char *text)
{
    auto *const line = box->findChild<QLineEdit *>();
    enterText(line, QString::fromLatin1(text));
    pressKey(line, Qt::Key_Return);
}

} // namespace

void addConnectomeSteps(StepList &steps, MainWindow &window, const QString &exports)
{
    steps.openMenu([bar = window.menuBar()] { return bar; }, "File");
    steps.chooseEntry("Explore Connections");
    steps.act(inWindow(runDialog, "protocol"), [](QWidget *box) {
        if (!qobject_cast<QCheckBox *>(box)->isChecked())
            click(box);
    });
    // A picture shows no folder of this machine: the whole path is given behind it.
    steps.act(inWindow(runDialog, "folder"), [](QWidget *field) {
        enterText(field->findChild<QLineEdit *>(), QStringLiteral("connections"));
    });
    steps.picture("connectome-run", "From the run to all of its connections",
                  "The plugin takes two to ten areas. File > Explore Connections, also a button "
                  "below the list of VOIs, takes all of them: it computes the run that is open, "
                  "here with a matrix for each interval of the protocol, keeps the result in a "
                  "folder and shows it.",
                  inWindow(runDialog, "folder"), [exports](QWidget *field) {
                      enterText(field->findChild<QLineEdit *>(),
                                QDir(exports).filePath(QStringLiteral("connections")));
                  });
    steps.act(inWindow(runDialog, "compute"), [](QWidget *button) { click(button); });
    steps.act(whole, [](QWidget *found) { found->resize(1040, 740); });
    steps.picture("connectome", "The connectome window",
                  "The same network in views that belong together: matrix, ring, brain, tables, "
                  "the evidence of an edge, and measures over density. Each can be moved, put into "
                  "a tab or closed. File > Open Result opens any finished result here, also the "
                  "test of a group, whose edges have the colours of t.",
                  whole);
    steps.act(inExplorer("thresholdBox"), [](QWidget *box) { setNumber(box, "30"); });
    steps.picture("connectome-threshold", "What is drawn, and what follows from it",
                  "The threshold is a density, a weight, or a spanning tree and a density. The bar "
                  "always says what is drawn. The graph measures in the table of nodes are those "
                  "of the edges that are drawn, and follow while the threshold moves.",
                  whole);
    goTo(steps, "Go to Ring");
    steps.act(inExplorer("ringCanvas"), [](QWidget *canvas) {
        const int node = explorer()->model().drawn().edges.front().from;
        click(canvas, qobject_cast<RingCanvas *>(canvas)->placeOf(node).toPoint());
    });
    steps.act(inExplorer("aloneBox"), [](QWidget *box) { click(box); });
    steps.picture("connectome-node", "One selection in all views",
                  "A click on a node selects it everywhere, and the cross-hair of the workbench "
                  "goes there. \"Only the selected node\" leaves its edges alone. Arrow keys move "
                  "the selection, Ctrl+F finds a node by its name, Esc clears the selection.",
                  whole);
    steps.act(inExplorer("aloneBox"), [](QWidget *box) { click(box); });
    goTo(steps, "Go to Matrix");
    steps.act(inExplorer("matrixCanvas"), [](QWidget *canvas) {
        const NetworkEdge strongest = explorer()->model().drawn().edges.front();
        auto *const matrix = qobject_cast<MatrixCanvas *>(canvas);
        click(matrix, matrix->cellOf(strongest.from, strongest.to).center().toPoint());
    });
    goTo(steps, "Go to Evidence");
    steps.picture("connectome-evidence", "What is behind an edge",
                  "A click in the matrix selects an edge: below are the time courses of both "
                  "nodes, their scatter, and the value with what is known of its degrees of "
                  "freedom. \"Show in the Slices\" takes the cross-hair from one node to the "
                  "other.",
                  whole);
    goTo(steps, "Go to Measures");
    steps.picture("connectome-measures", "No single threshold has to be believed",
                  "Each measure over densities of 5 to 40 %, for the network and in red for the "
                  "selected node. The number in a title is the area below the curve, divided by "
                  "the range of densities.",
                  [] {
                      return explorer() != nullptr && !explorer()->model().curves().steps.empty()
                                 ? whole()
                                 : nullptr;
                  });
    steps.act(inExplorer("matrixBox"), [](QWidget *box) { chooseItem(box, 1); });
    steps.act(inExplorer("minusBox"), [](QWidget *box) { chooseItem(box, 1); });
    goTo(steps, "Go to Brain");
    steps.picture("connectome-difference", "One interval minus another",
                  "\"minus\" takes another matrix off: red edges are stronger here, blue ones "
                  "there. All differences from the same matrix share one scale, and the slider "
                  "goes through the intervals.",
                  whole);
    steps.openMenu(
        []() -> QMenuBar * { return explorer() != nullptr ? explorer()->menuBar() : nullptr; },
        "File");
    steps.chooseEntry("Export Figure");
    steps.act(inWindow("corvane::ExportDialog", "fileEdit"),
              [](QWidget *line) { enterText(line, QStringLiteral("difference.svg")); });
    steps.act(inWindow("corvane::ExportDialog", "commandEdit"),
              [](QWidget *line) { qobject_cast<QLineEdit *>(line)->end(false); });
    steps.picture("connectome-export", "A figure, and the command that makes it",
                  "PNG, SVG and PDF at a width in millimetres with texts of a size in points, or "
                  "the numbers as a table. The line below makes the same file without a window: "
                  "Copy as Command, for a script that makes all figures of a paper again.",
                  inWindow("corvane::ExportDialog", "copyButton"), [](QWidget *button) {
                      click(button->window()->findChild<QWidget *>(QStringLiteral("copyButton")));
                  });
    steps.act([] { return windowOf("corvane::ExportDialog"); },
              [](QWidget *dialog) { dialog->close(); });
    // Not closed: that would keep the arrangement of the tour for the next window.
    steps.act(whole, [](QWidget *found) { found->deleteLater(); });
}

} // namespace corvane
