// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/tour/tour_steps.h"

#include "host/files/file_kind.h"
#include "host/tour/connectome_steps.h"
#include "host/tour/user_input.h"
#include "host/workbench/example_files.h"
#include "host/workbench/main_window.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>

namespace corvane
{

namespace
{

void enlarge(QWidget *window)
{
    window->resize(window->size() * 1.2);
}

/// The first part; its members are what a user can do.
class Workflow : public StepList
{
public:
    Workflow(MainWindow &window, QString dataset, QString exports)
        : m_window(window), m_dataset(std::move(dataset)), m_exports(std::move(exports))
    {
    }

    void add();

private:
    void openFiles();
    void startPlugin();
    void addSubject(int row, const QString &name);
    void compute(const QString &name, int item, const QList<int> &vois);
    void results();
    void compare();

    void openMenu(const char *menu)
    {
        StepList::openMenu([bar = m_window.menuBar()] { return bar; }, menu);
    }
    void chooseFile(const QString &path);

    MainWindow &m_window;
    QString m_dataset;
    QString m_exports;
};

const auto pressed = [](QWidget *widget) { click(widget); };

/// The example's anatomy is the one that was opened last. Others may be open, and the plugin lists
/// them in no order.
void chooseNewestDocument(QComboBox *box)
{
    int newest = 1; // behind "select"
    for (int item = 2; item < box->count(); ++item)
        if (box->itemData(item).toInt() > box->itemData(newest).toInt())
            newest = item;
    for (int item = 0; item < newest; ++item)
        pressKey(box, Qt::Key_Down);
}

/// Enters a path in the file dialog that is open and presses its Open or Save button.
void Workflow::chooseFile(const QString &path)
{
    act([] { return part("QFileDialog", "fileNameEdit"); },
        [path](QWidget *line) {
            // The example lies in a hidden folder, of which the dialog knows no files else.
            auto *const dialog = qobject_cast<QFileDialog *>(line->window());
            dialog->setFilter(dialog->filter() | QDir::Hidden);
            enterText(line, path);
        });
    act(
        []() -> QWidget * {
            const QWidget *const dialog = windowOf("QFileDialog");
            const auto *const buttons =
                dialog != nullptr ? dialog->findChild<QDialogButtonBox *>() : nullptr;
            if (buttons == nullptr)
                return nullptr;
            for (auto which : {QDialogButtonBox::Open, QDialogButtonBox::Save})
                if (QPushButton *const button = buttons->button(which))
                    return button->isEnabled() ? button : nullptr;
            return nullptr;
        },
        pressed);
}

// ---- the workflow

void Workflow::openFiles()
{
    openMenu("File");
    picture("open-menu", "Open the files of a subject",
            "The workbench begins empty. Open asks for the files of a subject: an anatomy (.vmr, "
            "NIfTI or NRRD), its functional run (.vtc), volumes of interest (.voi) and a protocol "
            "(.prt). Files can also be dropped on the window. Import makes them from NIfTI and TSV "
            "files, and Open Example Dataset has them ready.",
            [] { return static_cast<QWidget *>(openedMenu()); });
    chooseEntry("Open...");
    QStringList files;
    for (const QString &file : exampleFiles(m_dataset))
        files += QStringLiteral("\"%1\"").arg(file);
    chooseFile(files.join(QLatin1Char(' ')));
    act(inWindow("corvane::MainWindow", "voiList"),
        [](QWidget *list) { doubleClickItem(qobject_cast<QListWidget *>(list), 4); });
    picture("workbench", "The anatomy, the areas and the time course",
            "Three slices go through the cross-hair; click or use the arrow keys to move it. The "
            "list at the right shows and hides the volumes of interest, and a double click takes "
            "the cross-hair to one. Below are the samples of the run at the cross-hair, with the "
            "conditions of the protocol as bands behind them.",
            [window = &m_window] { return static_cast<QWidget *>(window); });
}

void Workflow::startPlugin()
{
    openMenu("Plugins");
    picture("plugins-menu", "Start the plugin",
            "The Plugins menu lists every plugin with its author. Choosing one starts it; if it "
            "cannot run, the log says why.",
            [] { return static_cast<QWidget *>(openedMenu()); });
    chooseEntry(tourPlugin().toUtf8().constData());
    picture("dataset", "An empty dataset",
            "The plugin opens its own window. It begins with an empty dataset: each subject is a "
            "row of the table. \"use protocol\" splits each run into the intervals of its "
            "protocol, so that every interval gets a connectivity matrix of its own.",
            inWindow("Tessera", "cbox_UseProtocol"), pressed);
}

void Workflow::addSubject(int row, const QString &name)
{
    const auto cell = [row](const char *kind, int fromLeft) {
        return [=]() -> QWidget * {
            QWidget *const table = part("Tessera", "tbl_Subjects");
            QList<QWidget *> widgets;
            if (table != nullptr)
                for (QWidget *widget : table->findChildren<QWidget *>())
                    if (widget->inherits(kind) && widget->property("row") == QVariant(row))
                        widgets += widget;
            std::sort(widgets.begin(), widgets.end(),
                      [](QWidget *left, QWidget *right) { return left->x() < right->x(); });
            QWidget *const found = widgets.value(fromLeft);
            return found != nullptr && found->isEnabled() ? found : nullptr;
        };
    };
    const auto editor = []() -> QWidget * {
        QWidget *const table = part("Tessera", "tbl_Subjects");
        return table != nullptr ? table->findChild<QLineEdit *>() : nullptr;
    };
    const QStringList files = exampleFiles(m_dataset);
    const auto file = [&files](FileKind kind) {
        return *std::find_if(files.begin(), files.end(),
                             [kind](const QString &path) { return fileKind(path) == kind; });
    };

    act(inWindow("Tessera", "btn_AddSubject"), pressed);
    act(inWindow("Tessera", "tbl_Subjects"),
        [row](QWidget *table) { doubleClickItem(qobject_cast<QAbstractItemView *>(table), row); });
    act(editor, [name](QWidget *line) {
        enterText(line, name);
        pressKey(line, Qt::Key_Return);
    });
    act(cell("QComboBox", 0),
        [](QWidget *box) { chooseNewestDocument(qobject_cast<QComboBox *>(box)); });
    if (row == 0)
        picture("new-subject", "A subject and its files",
                "Add subject makes a row. Type a name, choose the anatomy among the open ones, "
                "then press \"select\" for the run (VTC) and for the volumes of interest (VOI).",
                inWindow("Tessera", "tbl_Subjects"));
    act(cell("QPushButton", 0), pressed);
    chooseFile(file(FileKind::Vtc));
    act(cell("QPushButton", 1), pressed);
    chooseFile(file(FileKind::Voi));
    if (row == 1)
        picture("two-subjects", "A dataset of two subjects",
                "As soon as a row has its files it is loaded and locked. The protocol came with "
                "the run: its button says \"ok - autoloaded\". The log of the workbench tells "
                "what was loaded, and what could not be. Here one recording stands for both "
                "subjects.",
                [] { return part("Tessera", "tbl_Subjects"); });
}

void Workflow::compute(const QString &name, int item, const QList<int> &vois)
{
    const bool first = item == 1;
    act(inWindow("Tessera", "tabWidget"),
        [](QWidget *tabs) { clickTab(qobject_cast<QTabWidget *>(tabs)->tabBar(), 1); });
    act(inWindow("Tessera", "cBox_connectivityProfile"),
        [](QWidget *box) { pressKey(box, Qt::Key_Down); });
    act(
        [name]() -> QWidget * {
            const auto *const box =
                qobject_cast<QComboBox *>(part("Tessera", "cBox_connectivityProfile"));
            return box != nullptr && box->currentText() == name
                       ? part("Tessera", "btn_ConfigureVOIs")
                       : nullptr;
        },
        pressed);

    const auto voiList = []() -> QWidget * {
        const QWidget *const dialog = QApplication::activeModalWidget();
        return dialog != nullptr ? dialog->findChild<QListWidget *>() : nullptr;
    };
    for (int voi : vois)
        act(voiList, [voi](QWidget *list) { clickItem(qobject_cast<QListWidget *>(list), voi); });
    if (first)
        picture("voi-selection", "The areas that become nodes",
                "\"select\" beside \"Seed to seed\" asks for the volumes of interest to connect: "
                "two to ten of them. Each becomes a node, with the mean of its voxels as its time "
                "course.",
                voiList);
    act(
        []() -> QWidget * {
            const QWidget *const dialog = QApplication::activeModalWidget();
            const auto *const buttons =
                dialog != nullptr ? dialog->findChild<QDialogButtonBox *>() : nullptr;
            return buttons != nullptr ? buttons->button(QDialogButtonBox::Ok) : nullptr;
        },
        pressed);
    if (first)
        picture("settings", "What is computed",
                "Choose the subject at the top, then the measure, what becomes of negative "
                "values, and whether a minimum spanning tree is taken. Compute starts the work "
                "for this subject.",
                inWindow("Tessera", "btn_Compute"));
    act(
        []() -> QWidget * {
            QWidget *const button = part("Tessera", "btn_Compute");
            const bool isFree = QApplication::activeModalWidget() == nullptr;
            return button != nullptr && button->isEnabled() && isFree ? button : nullptr;
        },
        pressed);
}

void Workflow::results()
{
    constexpr auto dialog = "ConnectivityObjectUI";
    picture("results", "The results of a subject",
            "When the compute is done the results open: the matrix as a table of colours, the "
            "circular plot, graph measures and the exports.",
            inWindow(dialog, "btn_CircularPlotConnMtx"), pressed);
    const auto ring = [] { return windowOf("CircularPlot"); };
    act(ring, enlarge);
    picture("ring", "The circular plot",
            "Nodes stand on a ring, their connections are drawn between them, those of the minimum "
            "spanning tree in red. The slider below goes through the intervals of the protocol; "
            "the settings in the results dialog choose which strengths are drawn and how. Here the "
            "window is made larger than it opens, so that long names have room.",
            ring);
    closeWindow("CircularPlot");
    act(inWindow(dialog, "btn_PlotConnMtx"), pressed);
    picture("browser", "The matrix browser",
            "The same matrices as a table of colours. The overview at the right shows which part "
            "of a large matrix is in sight.",
            [] { return windowOf("ViewMatrix"); });
    closeWindow("ViewMatrix");

    const auto tab = [=](int index) {
        act(inWindow(dialog, "tabWidget"), [index](QWidget *tabs) {
            clickTab(qobject_cast<QTabWidget *>(tabs)->tabBar(), index);
        });
    };
    // A measure per node has a button in its row that says "inspect" and has a title to plot.
    const auto featureButton = [=](const QString &text) {
        return [=]() -> QWidget * {
            QWidget *const table = part(dialog, "tblView_GraphFeatures");
            if (table == nullptr)
                return nullptr;
            for (QPushButton *button : table->findChildren<QPushButton *>())
                if (button->text() == text && button->isVisible() &&
                    button->property("measure") == QVariant(QStringLiteral("clustering_coeff")))
                    return button->isEnabled() ? button : nullptr;
            return nullptr;
        };
    };
    tab(1);
    act(featureButton(QStringLiteral("compute")), pressed);
    picture("measures", "Graph measures",
            "\"compute\" fills a row of the table, \"inspect\" then shows its values as lines. "
            "The measures are those of the whole matrix, not of its spanning tree.",
            featureButton(QStringLiteral("inspect")), pressed);
    picture("line-plot", "A measure per node and condition",
            "One line for each interval of the protocol, one point for each node. The legend "
            "shows and hides lines; a right click saves the picture, or the numbers of the first "
            "line.",
            [] { return windowOf("LinePlot"); });
    closeWindow("LinePlot");
    tab(4);
    picture("exports", "Exports",
            "Time series and matrices go into text files with comma-separated values: one file "
            "for each volume of interest, and one for each interval of the protocol.",
            inWindow(dialog, "btn_exportConnectivityMatrix"), pressed);
    chooseFile(QDir(m_exports).filePath(QStringLiteral("connectivity.csv")));
    act(
        [=]() -> QWidget * {
            return QApplication::activeModalWidget() == nullptr ? windowOf(dialog) : nullptr;
        },
        [](QWidget *window) { window->close(); });
}

void Workflow::compare()
{
    act(inWindow("Tessera", "tabWidget"),
        [](QWidget *tabs) { clickTab(qobject_cast<QTabWidget *>(tabs)->tabBar(), 2); });
    for (int item = 0; item < 2; ++item)
        act(inWindow("Tessera", "list_ConnObjs"),
            [item](QWidget *list) { clickItem(qobject_cast<QListWidget *>(list), item); });
    act(inWindow("Tessera", "btn_ComputeGraphDistance"), pressed);
    picture("distance", "How far two subjects are apart",
            "Finished subjects are listed here; a double click opens their results again. For the "
            "selected ones Compute gives the table of their distances, from the eigenvalues of "
            "their matrices: 0 for the same network, more the more they differ. Here the two "
            "differ in the areas that were chosen.",
            inWindow("Tessera", "plain_GraphResults"));
    closeWindow("Tessera");
}

void Workflow::add()
{
    const QString first = QStringLiteral("Anna");
    const QString second = QStringLiteral("Ben");
    openFiles();
    startPlugin();
    addSubject(0, first);
    addSubject(1, second);
    compute(first, 1, {0, 2, 4, 6, 8, 10});
    results();
    compute(second, 2, {1, 3, 5, 7, 12, 13});
    act([] { return windowOf("ConnectivityObjectUI"); }, [](QWidget *window) { window->close(); });
    compare();
}

} // namespace

std::vector<TourStep> workflowSteps(MainWindow &window, const QString &dataset,
                                    const QString &exports)
{
    Workflow steps(window, dataset, exports);
    steps.add();
    addConnectomeSteps(steps, window, exports);
    return steps.take();
}

QString tourPlugin()
{
    return QStringLiteral("Tessera Analysis");
}

} // namespace corvane
