// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTabBar>
#include <QVariant>

namespace corvane
{

class WindowButtonStyle;
class Workspace;

/// The open documents of the workspace, one tab each; the current one is the current tab.
class DocumentTabs : public QTabBar
{
    Q_OBJECT

public:
    DocumentTabs(Workspace &workspace, WindowButtonStyle &buttons, QWidget *parent = nullptr);

    /// Takes over what is open and current in the workspace.
    void refresh();

    /// Positions of the open documents of a workspace.
    static QList<int> openDocuments(const Workspace &workspace);

private:
    void closeTab(int index);
    int position(int index) const { return tabData(index).toInt(); }

    Workspace &m_workspace;
    WindowButtonStyle &m_buttons; ///< outlives the tabs
};

} // namespace corvane
