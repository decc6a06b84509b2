// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QXmlStreamWriter>
#include <vector>

namespace corvane
{

/// What stands in a cell of a table.
struct PageCell {
    QString text;
    QString link = {};           ///< relative; empty for none
    const char *style = nullptr; ///< a class of the page's style: "number", "done" ..

    PageCell(const QString &shown) : text(shown) {}
    PageCell(const QString &shown, const char *itsStyle) : text(shown), style(itsStyle) {}
    PageCell(const QString &shown, const QString &target) : text(shown), link(target) {}
};

/// An HTML page in one file: it holds its style and its pictures, has no script, and asks for
/// nothing from anywhere. It is well-formed XML too. Texts may hold anything: what HTML gives a
/// meaning is escaped, characters that no page may hold are shown as U+FFFD.
class HtmlPage
{
public:
    explicit HtmlPage(const QString &title);

    void open(const char *name, const char *style = nullptr);
    void close();
    void text(const QString &shown);

    /// An element with nothing but a text.
    void element(const char *name, const QString &shown, const char *style = nullptr);
    /// A heading that links of the page can lead to.
    void section(const QString &heading, const QString &id);
    void paragraph(const QString &shown) { element("p", shown); }
    void link(const QString &target, const QString &shown);
    /// A line of links to sections: pairs of id and text.
    void contents(const std::vector<std::pair<QString, QString>> &sections);
    void list(const QStringList &lines, const char *style = nullptr);

    /// A PNG, with what it shows for those who do not see it, and a caption. `size` is in pixels of
    /// the page.
    void picture(const QByteArray &png, const QSize &size, const QString &alternative,
                 const QString &caption);

    /// A table that scrolls by itself where the page is narrow. The headings of columns of numbers
    /// stand at their right.
    void openTable(const QStringList &columns, int numbersFrom = 1000);
    void row(const std::vector<PageCell> &cells);
    void closeTable();

    /// Something that is shown after a click on its summary, or from the beginning.
    void openDetails(const QString &summary, bool isOpen);

    /// The page, with everything closed that is open.
    QByteArray finish();

private:
    QByteArray m_bytes;
    QXmlStreamWriter m_writer;
};

} // namespace corvane
