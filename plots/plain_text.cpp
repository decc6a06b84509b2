// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/plain_text.h"

#include <QTextDocument>

QString asToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

QString asRichText(const QString &text)
{
    return text.toHtmlEscaped();
}
