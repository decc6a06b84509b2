// SPDX-License-Identifier: GPL-3.0-or-later
#include "results/wrapped_tool_tips.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

bool WrappedToolTips::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                                const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const QString text = index.data(Qt::ToolTipRole).toString();
    if (event->type() != QEvent::ToolTip || text.isEmpty())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    // Rich text is broken into lines, and only that.
    QToolTip::showText(event->globalPos(), Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal),
                       view->viewport(), option.rect);
    return true;
}
