// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QStringList>
#include <QXmlStreamAttributes>
#include <vector>

namespace corvane
{

/// What a page holds, read as XML.
struct PageContents {
    QString fault; ///< of its XML; empty for none
    QString text;
    QStringList headings;                       ///< h1 and h2
    std::vector<QStringList> rows;              ///< of all tables: the texts of their cells
    std::vector<QXmlStreamAttributes> pictures; ///< of all img
    QStringList targets;                        ///< of all links
    QStringList elements;                       ///< names of all elements

    /// The first row with that text in its first cell; empty without one.
    QStringList row(const QString &first) const;
};

PageContents readPage(const QByteArray &page);

} // namespace corvane
