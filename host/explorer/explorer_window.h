// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/network_views.h"

#include <QMainWindow>

class QDockWidget;
class QLabel;
class QLineEdit;
class QPushButton;

namespace Ui
{
class ExplorerBar;
}

namespace corvane
{

class CopiedTable;
class EdgeTableModel;
class NodeTableModel;

/// The connectome window: a finished result in linked views, which can be docked anywhere; their
/// arrangement is kept. One selection goes through all of them.
class ExplorerWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Reads the result. Throws InputError.
    explicit ExplorerWindow(const ResultRequest &request, QWidget *parent = nullptr);
    ~ExplorerWindow() override;

    /// Shows another result in the same window. Throws InputError, and then shows what it showed.
    void openResult(const ResultRequest &request);

    ExplorerModel &model() { return *m_model; }

    /// The size of the first start, where the screen has room for it.
    static QSize usualSize() { return {1380, 900}; }

Q_SIGNALS:
    /// A node with a known place was selected: mm to the right, to the front and up.
    void placeSelected(double x, double y, double z);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void makeDocks();
    void fillDocks();
    QWidget *makeNodes();
    QWidget *makeEvidence();
    void makeMenus();
    void fillBar();
    void connectBar();
    void restore();

    NetworkView viewWithFocus() const;
    void exportView();
    void copyCommand();
    void chooseResult();
    void findNode();
    void searchFor(const QString &text);
    void findNext();

    void takeThreshold();
    void showThreshold();
    void showDrawn();
    void showSelection();
    void showComponents();
    void showLeftOut();
    void showInSlices();

    std::unique_ptr<ExplorerModel> m_model;
    std::unique_ptr<Ui::ExplorerBar> m_bar;
    QList<QDockWidget *> m_docks; ///< in the order of networkViewNames
    QList<NetworkCanvas *> m_canvases;
    NodeTableModel *m_nodeModel = nullptr;
    EdgeTableModel *m_edgeModel = nullptr;
    CopiedTable *m_nodes = nullptr;
    CopiedTable *m_edges = nullptr;
    QLineEdit *m_search = nullptr;
    QPushButton *m_slices = nullptr;
    QLabel *m_measureLabel = nullptr;
    QLabel *m_pointedLabel = nullptr;
    QLabel *m_selectedLabel = nullptr;
    QMenu *m_viewMenu = nullptr;
    bool m_isFollowing = false; ///< the tables are set from the selection, not by the user
};

} // namespace corvane
