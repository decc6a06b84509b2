// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/html_page.h"

namespace corvane
{

namespace
{

/// Without quotes and angle brackets, which would be escaped here and not read as such.
constexpr auto pageStyle = R"(
:root { color-scheme: light; }
* { box-sizing: border-box; }
body { margin: 0; background: #fff; color: #1c1e21; line-height: 1.5;
  font-family: Liberation Sans, Arial, Helvetica, sans-serif; font-size: 16px; }
main { max-width: 1360px; margin: 0 auto; padding: 24px 20px 64px; }
h1 { font-size: 1.7rem; line-height: 1.25; margin: 0 0 4px; overflow-wrap: anywhere; }
h2 { font-size: 1.25rem; margin: 44px 0 10px; padding-bottom: 5px; border-bottom: 2px solid #e3e6ea; }
h3 { font-size: 1.02rem; margin: 24px 0 6px; }
p { margin: 8px 0; max-width: 78ch; }
p, li, summary, figcaption { overflow-wrap: anywhere; }
a { color: #0a559c; }
.lead { font-size: 1.05rem; color: #4a5058; }
nav { margin: 14px 0 0; font-size: 0.95rem; }
nav a { display: inline-block; margin-right: 16px; padding: 2px 0; }
.facts { display: grid; grid-template-columns: repeat(auto-fit, minmax(150px, 1fr)); gap: 12px;
  margin: 20px 0; padding: 0; }
.fact { border: 1px solid #dde1e6; border-radius: 6px; padding: 10px 14px; }
.fact strong { display: block; font-size: 1.4rem; font-weight: 600; line-height: 1.3; }
.fact span { color: #4a5058; font-size: 0.9rem; }
.notes { background: #fff7e8; border-left: 4px solid #d98a00; padding: 8px 14px 8px 34px; margin: 16px 0; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; margin: 8px 0; font-size: 0.93rem; }
th, td { text-align: left; vertical-align: top; padding: 5px 12px 5px 4px; border-bottom: 1px solid #e3e6ea; }
th { border-bottom: 2px solid #b9c0c8; vertical-align: bottom; }
td.number { white-space: nowrap; }
.number { text-align: right; font-variant-numeric: tabular-nums; }
.name { white-space: nowrap; }
.wide { min-width: 16em; overflow-wrap: anywhere; }
.done, .excluded, .missing, .failed { font-weight: 600; white-space: nowrap; }
.done { color: #1a6b34; }
.excluded { color: #8a5300; }
.missing { color: #5a6068; }
.failed { color: #b01e28; }
.faint { color: #70767e; }
figure { margin: 18px 0; }
figure .scroll { border: 1px solid #e3e6ea; border-radius: 4px; padding: 6px; }
figure img { display: block; max-width: 100%; height: auto; margin: 0 auto; }
figcaption { color: #4a5058; font-size: 0.93rem; margin-top: 6px; max-width: 92ch; }
.pair { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 480px), 1fr)); gap: 0 24px; }
.pair figure { min-width: 0; }
details { margin: 10px 0; }
summary { cursor: pointer; color: #0a559c; }
footer { margin-top: 56px; color: #70767e; font-size: 0.9rem; border-top: 1px solid #e3e6ea; padding-top: 10px; }
@media (max-width: 700px) {
  main { padding: 16px 12px 48px; }
  th, td { padding: 5px 8px 5px 2px; }
  .name { white-space: normal; overflow-wrap: anywhere; min-width: 10em; }
  .wide { min-width: 9em; }
  figure img { max-width: none; width: 700px; }
  .pair figure img { width: 500px; }
  .fit figure img { width: auto; max-width: 100%; }
}
@media print { main { max-width: none; } figure, tr { break-inside: avoid; } nav { display: none; } }
)";

QString latin(const char *text)
{
    return QString::fromLatin1(text);
}

/// Whether a page may hold the character; pairs of halves are looked at as a whole.
bool isAllowed(uint character)
{
    return character == '\t' || character == '\n' || (character >= 0x20 && character < 0x7f) ||
           (character >= 0xa0 && character <= 0xfffd) || character >= 0x10000;
}

QString allowed(const QString &text)
{
    const QVector<uint> characters = text.toUcs4();
    QString result;
    result.reserve(text.size());
    for (const uint character : characters) {
        const bool isHalf = character >= 0xd800 && character < 0xe000;
        const uint shown = isAllowed(character) && !isHalf ? character : 0xfffd;
        result += QString::fromUcs4(&shown, 1);
    }
    return result;
}

} // namespace

HtmlPage::HtmlPage(const QString &title) : m_writer(&m_bytes)
{
    m_writer.writeDTD(QStringLiteral("<!DOCTYPE html>"));
    m_writer.writeCharacters(QStringLiteral("\n"));
    m_writer.writeStartElement(QStringLiteral("html"));
    m_writer.writeAttribute(QStringLiteral("lang"), QStringLiteral("en"));
    open("head");
    m_writer.writeEmptyElement(QStringLiteral("meta"));
    m_writer.writeAttribute(QStringLiteral("charset"), QStringLiteral("utf-8"));
    m_writer.writeEmptyElement(QStringLiteral("meta"));
    m_writer.writeAttribute(QStringLiteral("name"), QStringLiteral("viewport"));
    m_writer.writeAttribute(QStringLiteral("content"),
                            QStringLiteral("width=device-width, initial-scale=1"));
    element("title", title);
    element("style", QString::fromLatin1(pageStyle));
    close();
    open("body");
    open("main");
}

void HtmlPage::open(const char *name, const char *style)
{
    m_writer.writeStartElement(latin(name));
    if (style != nullptr)
        m_writer.writeAttribute(QStringLiteral("class"), latin(style));
}

void HtmlPage::close()
{
    // An element of XML without contents may be closed in one tag, one of HTML may not.
    m_writer.writeCharacters(QString());
    m_writer.writeEndElement();
}

void HtmlPage::text(const QString &shown)
{
    m_writer.writeCharacters(allowed(shown));
}

void HtmlPage::element(const char *name, const QString &shown, const char *style)
{
    open(name, style);
    text(shown);
    close();
}

void HtmlPage::section(const QString &heading, const QString &id)
{
    open("h2");
    m_writer.writeAttribute(QStringLiteral("id"), id);
    text(heading);
    close();
}

void HtmlPage::link(const QString &target, const QString &shown)
{
    open("a");
    m_writer.writeAttribute(QStringLiteral("href"), allowed(target));
    text(shown);
    close();
}

void HtmlPage::contents(const std::vector<std::pair<QString, QString>> &sections)
{
    open("nav");
    for (const auto &[id, title] : sections) {
        link(QLatin1Char('#') + id, title);
        text(QStringLiteral(" "));
    }
    close();
}

void HtmlPage::list(const QStringList &lines, const char *style)
{
    open("ul", style);
    for (const QString &line : lines)
        element("li", line);
    close();
}

void HtmlPage::picture(const QByteArray &png, const QSize &size, const QString &alternative,
                       const QString &caption)
{
    open("figure");
    open("div", "scroll");
    m_writer.writeEmptyElement(QStringLiteral("img"));
    m_writer.writeAttribute(QStringLiteral("alt"), allowed(alternative));
    m_writer.writeAttribute(QStringLiteral("width"), QString::number(size.width()));
    m_writer.writeAttribute(QStringLiteral("height"), QString::number(size.height()));
    m_writer.writeAttribute(QStringLiteral("src"), QStringLiteral("data:image/png;base64,") +
                                                       QString::fromLatin1(png.toBase64()));
    close();
    element("figcaption", caption);
    close();
}

void HtmlPage::openTable(const QStringList &columns, int numbersFrom)
{
    open("div", "scroll");
    open("table");
    open("thead");
    open("tr");
    for (int column = 0; column < columns.size(); ++column)
        element("th", columns[column], column >= numbersFrom ? "number" : nullptr);
    close();
    close();
    open("tbody");
}

void HtmlPage::row(const std::vector<PageCell> &cells)
{
    open("tr");
    for (const PageCell &cell : cells) {
        open("td", cell.style);
        if (cell.link.isEmpty())
            text(cell.text);
        else
            link(cell.link, cell.text);
        close();
    }
    close();
    m_writer.writeCharacters(QStringLiteral("\n"));
}

void HtmlPage::closeTable()
{
    close();
    close();
    close();
}

void HtmlPage::openDetails(const QString &summary, bool isOpen)
{
    open("details");
    if (isOpen)
        m_writer.writeAttribute(QStringLiteral("open"), QStringLiteral("open"));
    element("summary", summary);
}

QByteArray HtmlPage::finish()
{
    element("footer", QStringLiteral("Made by Corvane ") + QStringLiteral(TESSERA_VERSION) +
                          QStringLiteral(". For research, not for diagnosis."));
    m_writer.writeEndDocument();
    return m_bytes;
}

} // namespace corvane
