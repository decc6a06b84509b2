// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/explorer_window.h"

#include "host/explorer/export_dialog.h"
#include "host/explorer/network_tables.h"
#include "host/painting/picture_colours.h"
#include "ui_explorer_bar.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFileDialog>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QMetaMethod>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSettings>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSortFilterProxyModel>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <cmath>

namespace corvane
{

namespace
{

const QString geometryKey = QStringLiteral("explorer/geometry");
const QString stateKey = QStringLiteral("explorer/state");
const QString folderKey = QStringLiteral("explorer/folder");

/// The slider's steps are finer where networks are sparse.
constexpr double sliderSteps = 1000;

double shareOf(int step)
{
    return std::pow(step / sliderSteps, 2);
}

int stepOf(double share)
{
    return int(std::lround(std::sqrt(std::clamp(share, 0.0, 1.0)) * sliderSteps));
}

QString dockTitle(NetworkView view)
{
    switch (view) {
    case NetworkView::Matrix:
        return ExplorerWindow::tr("Matrix");
    case NetworkView::Ring:
        return ExplorerWindow::tr("Ring");
    case NetworkView::Brain:
        return ExplorerWindow::tr("Brain");
    case NetworkView::Nodes:
        return ExplorerWindow::tr("Nodes and Edges");
    case NetworkView::Evidence:
        return ExplorerWindow::tr("Evidence");
    case NetworkView::Measures:
        break;
    }
    return ExplorerWindow::tr("Measures over Density");
}

template <typename Value, std::size_t Count>
void fillBox(QComboBox *box, const NamedValue<Value> (&values)[Count], const QStringList &texts)
{
    for (std::size_t n = 0; n < Count; ++n)
        box->addItem(texts[int(n)], int(values[n].value));
}

std::unique_ptr<ExplorerModel> readModel(const ResultRequest &request)
{
    return std::make_unique<ExplorerModel>(
        request, std::make_shared<const NetworkResult>(readResult(request)));
}

} // namespace

ExplorerWindow::ExplorerWindow(const ResultRequest &request, QWidget *parent)
    : QMainWindow(parent), m_model(readModel(request)), m_bar(std::make_unique<Ui::ExplorerBar>())
{
    setObjectName(QStringLiteral("explorerWindow"));
    setDockNestingEnabled(true);
    auto *const toolBar = new QToolBar(tr("Threshold Bar"), this);
    toolBar->setObjectName(QStringLiteral("thresholdBar"));
    auto *const bar = new QWidget;
    m_bar->setupUi(bar);
    toolBar->addWidget(bar);
    addToolBar(toolBar);
    fillBox(m_bar->orderBox, nodeOrderingNames,
            {tr("by network"), tr("by hemisphere"), tr("by similarity"), tr("of the file")});
    fillBox(m_bar->kindBox, thresholdKindNames,
            {tr("density"), tr("weight"), tr("tree + density")});
    fillBox(m_bar->signsBox, edgeSignsNames, {tr("both"), tr("positive"), tr("negative")});

    m_measureLabel = new QLabel;
    m_measureLabel->setObjectName(QStringLiteral("measureLabel"));
    m_pointedLabel = new QLabel;
    m_selectedLabel = new QLabel;
    m_selectedLabel->setObjectName(QStringLiteral("selectedLabel"));
    statusBar()->addWidget(m_pointedLabel, 1);
    statusBar()->addPermanentWidget(m_selectedLabel);
    statusBar()->addPermanentWidget(m_measureLabel);

    makeDocks();
    makeMenus();
    connectBar();
    fillDocks();
    restore();
}

ExplorerWindow::~ExplorerWindow()
{
    // Views look at the model: they go first.
    for (QDockWidget *dock : qAsConst(m_docks))
        delete dock->widget();
}

void ExplorerWindow::openResult(const ResultRequest &request)
{
    std::unique_ptr<ExplorerModel> model = readModel(request);
    for (QDockWidget *dock : qAsConst(m_docks))
        delete dock->widget();
    m_model = std::move(model);
    fillDocks();
}

// ---- what there is

void ExplorerWindow::makeDocks()
{
    for (const NamedValue<NetworkView> &view : networkViewNames) {
        auto *const dock = new QDockWidget(dockTitle(view.value), this);
        dock->setObjectName(QLatin1String(view.name) + QStringLiteral("Dock"));
        m_docks += dock;
    }
    // Pictures above, what tells more of them below.
    addDockWidget(Qt::TopDockWidgetArea, m_docks[0]);
    splitDockWidget(m_docks[0], m_docks[4], Qt::Vertical);
    splitDockWidget(m_docks[0], m_docks[1], Qt::Horizontal);
    splitDockWidget(m_docks[4], m_docks[3], Qt::Horizontal);
    const QSize screenSize = screen()->availableSize();
    const bool isLarge = screenSize.width() >= usualSize().width() && screenSize.height() >= 800;
    if (isLarge) {
        splitDockWidget(m_docks[1], m_docks[2], Qt::Horizontal);
        splitDockWidget(m_docks[3], m_docks[5], Qt::Horizontal);
    } else {
        tabifyDockWidget(m_docks[1], m_docks[2]);
        tabifyDockWidget(m_docks[3], m_docks[5]);
        m_docks[1]->raise();
        m_docks[3]->raise();
    }
}

void ExplorerWindow::fillDocks()
{
    m_canvases = {new MatrixCanvas(*m_model), new RingCanvas(*m_model), new BrainCanvas(*m_model),
                  new MeasuresCanvas(*m_model)};
    m_docks[0]->setWidget(m_canvases[0]);
    m_docks[1]->setWidget(m_canvases[1]);
    m_docks[2]->setWidget(m_canvases[2]);
    m_docks[3]->setWidget(makeNodes());
    m_docks[4]->setWidget(makeEvidence());
    m_docks[5]->setWidget(m_canvases[3]);
    for (NetworkCanvas *canvas : qAsConst(m_canvases)) {
        connect(canvas, &NetworkCanvas::pointedAt, m_pointedLabel, &QLabel::setText);
        canvas->setContextMenuPolicy(Qt::ActionsContextMenu);
        canvas->addActions(m_viewMenu->actions());
    }
    ExplorerModel *const model = m_model.get();
    connect(model, &ExplorerModel::drawnChanged, this, &ExplorerWindow::showDrawn);
    connect(model, &ExplorerModel::measuresChanged, this, &ExplorerWindow::showDrawn);
    connect(model, &ExplorerModel::selectionChanged, this, &ExplorerWindow::showSelection);
    connect(model, &ExplorerModel::failed, this,
            [this](const QString &fault) { statusBar()->showMessage(fault, 20000); });
    fillBar();
    showDrawn();
    showSelection();
    setWindowTitle(tr("%1 - Connectome").arg(m_model->result().title));
    if (!m_model->result().notes.isEmpty())
        statusBar()->showMessage(m_model->result().notes.join(QStringLiteral("; ")), 15000);
}

QWidget *ExplorerWindow::makeNodes()
{
    auto *const page = new QWidget;
    auto *const layout = new QVBoxLayout(page);
    layout->setContentsMargins(4, 4, 4, 4);
    m_search = new QLineEdit;
    m_search->setObjectName(QStringLiteral("searchEdit"));
    m_search->setPlaceholderText(tr("Find a node (Ctrl+F)"));
    m_search->setAccessibleName(tr("Find a node"));
    m_search->setClearButtonEnabled(true);
    for (QToolButton *clear : m_search->findChildren<QToolButton *>())
        clear->setAccessibleName(tr("Clear"));
    m_nodeModel = new NodeTableModel(*m_model, page);
    m_edgeModel = new EdgeTableModel(*m_model, page);
    m_nodes = new CopiedTable(*m_model, m_nodeModel);
    m_nodes->setObjectName(QStringLiteral("nodeTable"));
    m_nodes->setAccessibleName(tr("Nodes and their measures"));
    m_edges = new CopiedTable(*m_model, m_edgeModel);
    m_edges->setObjectName(QStringLiteral("edgeTable"));
    m_edges->setAccessibleName(tr("Edges that are drawn"));
    m_edges->setSelectionMode(QAbstractItemView::SingleSelection);
    auto *const tabs = new QTabWidget;
    tabs->addTab(m_nodes, tr("&Nodes"));
    tabs->addTab(m_edges, tr("&Edges"));
    for (CopiedTable *table : {m_nodes, m_edges})
        table->resizeColumnsToContents();
    layout->addWidget(m_search);
    layout->addWidget(tabs, 1);
    connect(m_search, &QLineEdit::textChanged, this, &ExplorerWindow::searchFor);
    connect(m_search, &QLineEdit::returnPressed, this, &ExplorerWindow::findNext);
    const auto onKey = [this](Qt::Key key, auto act) {
        connect(new QShortcut(key, m_search, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, this, act);
    };
    onKey(Qt::Key_Down, [this] { m_nodes->setFocus(); });
    onKey(Qt::Key_Escape, [this] {
        m_search->clear();
        m_model->select(-1);
    });
    // One node, or two of an edge, in the order in which they were chosen.
    connect(m_nodes->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (m_isFollowing)
            return;
        std::vector<int> chosen;
        for (const QModelIndex &row : m_nodes->selectionModel()->selectedRows())
            chosen.push_back(m_nodes->sorted().mapToSource(row).row());
        if (chosen.empty())
            return;
        const bool isPair = chosen.size() == 2;
        m_model->select(chosen.front(), isPair ? chosen.back() : -1);
    });
    connect(m_edges->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &row) {
                if (m_isFollowing || !row.isValid())
                    return;
                const NetworkEdge &edge =
                    m_edgeModel->edge(m_edges->sorted().mapToSource(row).row());
                m_model->select(edge.from, edge.to);
            });
    return page;
}

QWidget *ExplorerWindow::makeEvidence()
{
    auto *const page = new QWidget;
    auto *const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 4);
    auto *const canvas = new EvidenceCanvas(*m_model);
    m_canvases += canvas;
    m_slices = new QPushButton(tr("Show in the Sli&ces"));
    m_slices->setObjectName(QStringLiteral("slicesButton"));
    m_slices->setToolTip(
        tr("Moves the cross-hair of the workbench from one node to the other, where "
           "the result was opened there"));
    connect(m_slices, &QPushButton::clicked, this, &ExplorerWindow::showInSlices);
    layout->addWidget(canvas, 1);
    layout->addWidget(m_slices, 0, Qt::AlignLeft);
    return page;
}

void ExplorerWindow::makeMenus()
{
    QMenu *const file = menuBar()->addMenu(tr("&File"));
    QAction *const open =
        file->addAction(tr("&Open Result..."), this, &ExplorerWindow::chooseResult);
    open->setShortcut(QKeySequence::Open);
    file->addSeparator();
    QAction *const exporting =
        file->addAction(tr("&Export Figure..."), this, &ExplorerWindow::exportView);
    exporting->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    QAction *const command =
        file->addAction(tr("Copy as Comman&d"), this, &ExplorerWindow::copyCommand);
    command->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    file->addSeparator();
    QAction *const close = file->addAction(tr("&Close"), this, &QWidget::close);
    close->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::CTRL | Qt::Key_F4)});
    QMenu *const edit = menuBar()->addMenu(tr("&Edit"));
    QAction *const find = edit->addAction(tr("&Find a Node"), this, &ExplorerWindow::findNode);
    find->setShortcut(QKeySequence::Find);
    QMenu *const view = menuBar()->addMenu(tr("&View"));
    int number = 0;
    for (QDockWidget *dock : qAsConst(m_docks)) {
        QAction *const go =
            view->addAction(tr("Go to %1").arg(dock->windowTitle()), this, [this, dock] {
                dock->show();
                dock->raise();
                auto *const canvas = dock->findChild<NetworkCanvas *>();
                (canvas != nullptr ? static_cast<QWidget *>(canvas) : m_nodes)->setFocus();
            });
        go->setShortcut(QKeySequence(Qt::CTRL | (Qt::Key_1 + number++)));
    }
    view->addSeparator();
    for (QDockWidget *dock : qAsConst(m_docks))
        view->addAction(dock->toggleViewAction());
    m_viewMenu = new QMenu(this);
    m_viewMenu->addActions({exporting, command});
}

/// The bar shows what the model is set to.
void ExplorerWindow::fillBar()
{
    const NetworkResult &result = m_model->result();
    const QSignalBlocker blockers[] = {
        QSignalBlocker(m_bar->runBox),       QSignalBlocker(m_bar->matrixBox),
        QSignalBlocker(m_bar->matrixSlider), QSignalBlocker(m_bar->minusBox),
        QSignalBlocker(m_bar->orderBox),     QSignalBlocker(m_bar->kindBox),
        QSignalBlocker(m_bar->signsBox),     QSignalBlocker(m_bar->aloneBox)};
    m_bar->runBox->clear();
    m_bar->runBox->addItems(result.runs);
    m_bar->runBox->setCurrentText(result.run);
    for (QWidget *widget :
         {static_cast<QWidget *>(m_bar->runLabel), static_cast<QWidget *>(m_bar->runBox)})
        widget->setVisible(result.runs.size() > 1);
    m_bar->matrixBox->clear();
    m_bar->minusBox->clear();
    m_bar->minusBox->addItem(tr("nothing"));
    for (const ResultMatrix &matrix : result.matrices) {
        m_bar->matrixBox->addItem(matrix.name);
        m_bar->minusBox->addItem(matrix.name, matrix.name);
    }
    m_bar->matrixSlider->setRange(0, int(result.matrices.size()) - 1);
    m_bar->matrixSlider->setValue(0);
    const bool hasSeveral = result.matrices.size() > 1;
    for (QWidget *widget :
         {static_cast<QWidget *>(m_bar->matrixSlider), static_cast<QWidget *>(m_bar->minusLabel),
          static_cast<QWidget *>(m_bar->minusBox)})
        widget->setVisible(hasSeveral);
    const ViewSettings &settings = m_model->settings();
    m_bar->orderBox->setCurrentIndex(m_bar->orderBox->findData(int(settings.ordering)));
    m_bar->kindBox->setCurrentIndex(m_bar->kindBox->findData(int(settings.threshold.kind)));
    m_bar->signsBox->setCurrentIndex(m_bar->signsBox->findData(int(settings.threshold.signs)));
    m_bar->aloneBox->setChecked(settings.alone);
    m_bar->componentsButton->setVisible(!result.contrasts.empty());
    m_bar->componentsButton->setEnabled(!result.components.empty());
    m_bar->componentsButton->setText(
        result.components.empty() ? tr("No networks found")
                                  : tr("Net&works found (%1)...").arg(result.components.size()));
    m_bar->leftOutButton->setVisible(!result.contrasts.empty());
    m_bar->leftOutButton->setText(tr("&Left out (%1)...").arg(result.leftOut.size()));
    showThreshold();
}

void ExplorerWindow::connectBar()
{
    const auto chosen = QOverload<int>::of(&QComboBox::currentIndexChanged);
    connect(m_bar->runBox, chosen, this, [this](int index) {
        ResultRequest request = m_model->request();
        request.run = m_bar->runBox->itemText(index);
        try {
            openResult(request);
        } catch (const std::exception &error) {
            QMessageBox::warning(this, windowTitle(), QString::fromUtf8(error.what()));
        }
    });
    connect(m_bar->matrixBox, chosen, this, [this](int index) {
        m_bar->matrixSlider->setValue(index);
        m_model->setMatrix(m_bar->matrixBox->itemText(index));
    });
    connect(m_bar->matrixSlider, &QSlider::valueChanged, m_bar->matrixBox,
            &QComboBox::setCurrentIndex);
    connect(m_bar->minusBox, chosen, this,
            [this](int index) { m_model->setMinus(m_bar->minusBox->itemData(index).toString()); });
    connect(m_bar->orderBox, chosen, this,
            [this] { m_model->setOrdering(NodeOrdering(m_bar->orderBox->currentData().toInt())); });
    connect(m_bar->kindBox, chosen, this, [this] {
        EdgeThreshold threshold = m_model->settings().threshold;
        const bool wasWeight = threshold.kind == ThresholdKind::Weight;
        threshold.kind = ThresholdKind(m_bar->kindBox->currentData().toInt());
        const std::vector<NetworkEdge> &drawn = m_model->drawn().edges;
        // What is drawn stays about the same: the weight of its weakest edge, or its share.
        if (threshold.kind == ThresholdKind::Weight && !drawn.empty())
            threshold.value = std::floor(std::abs(drawn.back().value) * 1000) / 1000;
        else if (wasWeight)
            threshold.value =
                std::round(1000.0 * double(drawn.size()) /
                           double(std::max<std::size_t>(1, m_model->shown().ranked.pairs()))) /
                1000;
        m_model->setThreshold(threshold);
        showThreshold();
    });
    connect(m_bar->thresholdSlider, &QSlider::valueChanged, this, [this](int step) {
        EdgeThreshold threshold = m_model->settings().threshold;
        threshold.value = threshold.kind == ThresholdKind::Weight
                              ? m_model->shown().limit * step / sliderSteps
                              : shareOf(step);
        m_model->setThreshold(threshold);
        showThreshold();
    });
    connect(m_bar->thresholdBox, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &ExplorerWindow::takeThreshold);
    connect(m_bar->signsBox, chosen, this, [this] {
        EdgeThreshold threshold = m_model->settings().threshold;
        threshold.signs = EdgeSigns(m_bar->signsBox->currentData().toInt());
        m_model->setThreshold(threshold);
    });
    connect(m_bar->aloneBox, &QCheckBox::toggled, this,
            [this](bool alone) { m_model->setAlone(alone); });
    connect(m_bar->componentsButton, &QPushButton::clicked, this, &ExplorerWindow::showComponents);
    connect(m_bar->leftOutButton, &QPushButton::clicked, this, &ExplorerWindow::showLeftOut);
}

void ExplorerWindow::restore()
{
    const QSettings settings;
    resize(usualSize().boundedTo(screen()->availableSize()));
    resizeDocks({m_docks[0], m_docks[4]}, {3, 2}, Qt::Vertical);
    resizeDocks({m_docks[0], m_docks[1], m_docks[2]}, {1, 1, 1}, Qt::Horizontal);
    resizeDocks({m_docks[4], m_docks[3], m_docks[5]}, {1, 1, 1}, Qt::Horizontal);
    restoreGeometry(settings.value(geometryKey).toByteArray());
    restoreState(settings.value(stateKey).toByteArray());
}

void ExplorerWindow::closeEvent(QCloseEvent *event)
{
    QSettings settings;
    settings.setValue(geometryKey, saveGeometry());
    settings.setValue(stateKey, saveState());
    QMainWindow::closeEvent(event);
}

// ---- files

NetworkView ExplorerWindow::viewWithFocus() const
{
    for (const NetworkCanvas *canvas : m_canvases)
        if (canvas->hasFocus())
            return canvas->kind();
    return m_nodes->hasFocus() ? NetworkView::Nodes : NetworkView::Matrix;
}

void ExplorerWindow::exportView()
{
    ExportDialog dialog(*m_model, viewWithFocus(), isDark(palette().color(QPalette::Base)), this);
    dialog.exec();
}

void ExplorerWindow::copyCommand()
{
    const NetworkView kind = viewWithFocus();
    FigureFormat format;
    format.dark = isDark(palette().color(QPalette::Base));
    const QString file =
        QLatin1String(nameOf(kind, networkViewNames)) +
        (kind == NetworkView::Nodes ? QStringLiteral(".tsv") : QStringLiteral(".png"));
    QApplication::clipboard()->setText(
        commandText(QStringList(QStringLiteral("Corvane")) +
                    figureArguments(m_model->figureRequest(kind, format), file)));
    statusBar()->showMessage(
        tr("Copied the command for the view %1").arg(QLatin1String(nameOf(kind, networkViewNames))),
        5000);
}

void ExplorerWindow::chooseResult()
{
    QSettings settings;
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Open a Result"),
                                                             settings.value(folderKey).toString());
    if (folder.isEmpty())
        return;
    settings.setValue(folderKey, folder);
    try {
        openResult({folder});
    } catch (const std::exception &error) {
        QMessageBox::warning(this, windowTitle(), QString::fromUtf8(error.what()));
    }
}

// ---- nodes

void ExplorerWindow::findNode()
{
    m_docks[3]->show();
    m_docks[3]->raise();
    m_search->setFocus();
    m_search->selectAll();
}

void ExplorerWindow::searchFor(const QString &text)
{
    m_nodes->sorted().setFilterFixedString(text);
    if (text.isEmpty() || m_nodes->sorted().rowCount() == 0)
        return;
    m_model->select(m_nodes->sorted().mapToSource(m_nodes->sorted().index(0, 0)).row());
}

/// The node after the selected one among those that were found, the first after the last.
void ExplorerWindow::findNext()
{
    const QSortFilterProxyModel &found = m_nodes->sorted();
    if (found.rowCount() == 0)
        return;
    const int node = m_model->node();
    const int row = node < 0 ? -1 : found.mapFromSource(m_nodeModel->index(node, 0)).row();
    m_model->select(found.mapToSource(found.index((row + 1) % found.rowCount(), 0)).row());
}

// ---- the model has changed

void ExplorerWindow::takeThreshold()
{
    EdgeThreshold threshold = m_model->settings().threshold;
    const double value = m_bar->thresholdBox->value();
    threshold.value = threshold.kind == ThresholdKind::Weight ? value : value / 100;
    m_model->setThreshold(threshold);
    showThreshold();
}

void ExplorerWindow::showThreshold()
{
    const EdgeThreshold &threshold = m_model->settings().threshold;
    const bool isWeight = threshold.kind == ThresholdKind::Weight;
    const QSignalBlocker box(m_bar->thresholdBox);
    const QSignalBlocker slider(m_bar->thresholdSlider);
    const double limit = m_model->shown().limit;
    m_bar->thresholdBox->setDecimals(isWeight ? 3 : 1);
    m_bar->thresholdBox->setRange(0, isWeight ? std::max(limit, threshold.value) : 100);
    m_bar->thresholdBox->setSingleStep(isWeight ? limit / 50 : 1);
    m_bar->thresholdBox->setSuffix(isWeight ? QString() : QStringLiteral(" %"));
    m_bar->thresholdBox->setValue(isWeight ? threshold.value : 100 * threshold.value);
    m_bar->thresholdSlider->setValue(isWeight
                                         ? int(std::lround(threshold.value / limit * sliderSteps))
                                         : stepOf(threshold.value));
    const bool isUsed = m_model->settings().components.empty();
    for (QWidget *widget :
         {static_cast<QWidget *>(m_bar->kindBox), static_cast<QWidget *>(m_bar->thresholdSlider),
          static_cast<QWidget *>(m_bar->thresholdBox), static_cast<QWidget *>(m_bar->signsBox)})
        widget->setEnabled(isUsed);
}

void ExplorerWindow::showDrawn()
{
    m_bar->drawnLabel->setText(m_model->drawnText());
    m_bar->drawnLabel->setToolTip(m_model->drawnText());
    m_selectedLabel->setText(m_model->selectionText()); // its value is that of the matrix
    const NetworkMeasures &measures = m_model->measures();
    const int efficiency = measures.columns.indexOf(QStringLiteral("global_efficiency"));
    const int clustering = measures.columns.indexOf(QStringLiteral("clustering_coeff"));
    const auto number = [&](int measure) {
        const double value = measures.whole[measure];
        return std::isnan(value) ? tr("n/a") : QString::number(value, 'g', 3);
    };
    if (efficiency >= 0 && clustering >= 0)
        m_measureLabel->setText(tr("global efficiency %1, mean clustering %2")
                                    .arg(number(efficiency), number(clustering)));
}

void ExplorerWindow::showSelection()
{
    m_selectedLabel->setText(m_model->selectionText());
    m_isFollowing = true;
    QItemSelection rows;
    for (const int node : {m_model->other(), m_model->node()}) {
        if (node < 0)
            continue;
        const QModelIndex row = m_nodes->sorted().mapFromSource(m_nodeModel->index(node, 0));
        rows.select(row, row);
        if (row.isValid())
            m_nodes->scrollTo(row);
    }
    m_nodes->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect |
                                                QItemSelectionModel::Rows);
    m_isFollowing = false;
    const int node = m_model->node();
    const std::optional<Eigen::Vector3d> place =
        node < 0 ? std::nullopt : m_model->result().nodes[std::size_t(node)].place;
    // On its own the window has no slices.
    m_slices->setEnabled(
        place && isSignalConnected(QMetaMethod::fromSignal(&ExplorerWindow::placeSelected)));
    if (place)
        Q_EMIT placeSelected(place->x(), place->y(), place->z());
}

/// From one node of the edge to the other with each call.
void ExplorerWindow::showInSlices()
{
    if (m_model->node() < 0)
        return;
    if (m_model->other() >= 0)
        m_model->select(m_model->other(), m_model->node());
    else
        showSelection();
}

// ---- groups

void ExplorerWindow::showComponents()
{
    QDialog dialog(this);
    dialog.setWindowTitle(tr("Networks Found"));
    auto *const layout = new QVBoxLayout(&dialog);
    auto *const text =
        new QLabel(tr("Ticked networks are drawn in place of the threshold. It is the "
                      "network that is significant, not any of its edges."));
    text->setWordWrap(true);
    auto *const list = new QListWidget;
    list->setObjectName(QStringLiteral("componentList"));
    list->setAccessibleName(tr("Networks found"));
    const std::vector<int> &chosen = m_model->settings().components;
    int number = 0;
    for (const ResultComponent &component : m_model->result().components) {
        ++number;
        auto *const item = new QListWidgetItem(
            tr("%1: %2, threshold %3, %4 edges, p %5 by extent, %6 by intensity")
                .arg(m_model->result().contrasts[std::size_t(component.contrast)].name,
                     component.side, QString::number(component.threshold),
                     QString::number(component.edges.size()),
                     QString::number(component.pExtent, 'g', 3),
                     QString::number(component.pIntensity, 'g', 3)),
            list);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        const bool isChosen = std::find(chosen.begin(), chosen.end(), number) != chosen.end();
        item->setCheckState(isChosen ? Qt::Checked : Qt::Unchecked);
    }
    connect(list, &QListWidget::itemChanged, this, [this, list] {
        std::vector<int> components;
        for (int row = 0; row < list->count(); ++row)
            if (list->item(row)->checkState() == Qt::Checked)
                components.push_back(row + 1);
        m_model->setComponents(components);
        showThreshold();
    });
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    layout->addWidget(text);
    layout->addWidget(list, 1);
    layout->addWidget(buttons);
    dialog.resize(640, 360);
    dialog.exec();
}

void ExplorerWindow::showLeftOut()
{
    QDialog dialog(this);
    dialog.setWindowTitle(tr("Left Out"));
    auto *const layout = new QVBoxLayout(&dialog);
    auto *const text =
        new QPlainTextEdit(m_model->result().leftOut.isEmpty()
                               ? tr("Nothing was left out: all rows and nodes are in the test.")
                               : m_model->result().leftOut.join(QLatin1Char('\n')));
    text->setObjectName(QStringLiteral("leftOutText"));
    text->setAccessibleName(tr("What was left out of the test"));
    text->setReadOnly(true);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    layout->addWidget(text, 1);
    layout->addWidget(buttons);
    dialog.resize(560, 320);
    dialog.exec();
}

} // namespace corvane
