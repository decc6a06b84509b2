// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/document_tabs.h"

#include "host/session/workspace.h"
#include "host/workbench/window_buttons.h"
#include "plots/plain_text.h"

#include <QAbstractButton>
#include <QFileInfo>
#include <QSignalBlocker>
#include <QStyle>

namespace corvane
{

DocumentTabs::DocumentTabs(Workspace &workspace, WindowButtonStyle &buttons, QWidget *parent)
    : QTabBar(parent), m_workspace(workspace), m_buttons(buttons)
{
    setObjectName(QStringLiteral("documentTabs"));
    setAccessibleName(tr("Open documents"));
    setDocumentMode(true);
    setExpanding(false);
    setElideMode(Qt::ElideMiddle);
    setTabsClosable(true);
    connect(this, &QTabBar::currentChanged, this, [this](int index) {
        if (index >= 0)
            m_workspace.setCurrentDocument(position(index));
    });
    connect(this, &QTabBar::tabCloseRequested, this, &DocumentTabs::closeTab);
}

QList<int> DocumentTabs::openDocuments(const Workspace &workspace)
{
    QList<int> open;
    for (int position = 0; position < workspace.documentCount(); ++position)
        if (workspace.documentType(position) != ClosedDocument)
            open += position;
    return open;
}

void DocumentTabs::refresh()
{
    const QSignalBlocker blocker(this);
    const QList<int> open = openDocuments(m_workspace);
    for (int index = count() - 1; index >= 0; --index)
        if (!open.contains(position(index)))
            removeTab(index);
    for (int index = 0; index < open.size(); ++index) {
        if (index < count() && position(index) == open[index])
            continue;
        const QFileInfo file(m_workspace.documentPath(open[index]));
        QString label = file.fileName();
        insertTab(index, label.replace(QLatin1Char('&'), QLatin1String("&&")));
        setTabData(index, open[index]);
        setTabToolTip(index, asToolTip(file.filePath()));
        const auto side = static_cast<ButtonPosition>(
            style()->styleHint(QStyle::SH_TabBar_CloseButtonPosition, nullptr, this));
        if (QWidget *const button = tabButton(index, side)) {
            button->setAccessibleName(tr("Close %1").arg(file.fileName()));
            button->setStyle(&m_buttons);
        }
    }
    setCurrentIndex(open.indexOf(m_workspace.currentDocument()));
    setVisible(!open.isEmpty());
}

void DocumentTabs::closeTab(int index)
{
    const bool wasCurrent = position(index) == m_workspace.currentDocument();
    const int neighbour = index + 1 < count() ? index + 1 : index - 1;
    const int next = neighbour >= 0 ? position(neighbour) : -1;
    m_workspace.closeDocument(position(index));
    if (wasCurrent && next >= 0)
        m_workspace.setCurrentDocument(next);
}

} // namespace corvane
