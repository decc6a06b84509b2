// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/report/page_reader.h"

#include <QXmlStreamReader>

namespace corvane
{

QStringList PageContents::row(const QString &first) const
{
    for (const QStringList &cells : rows)
        if (cells.first() == first)
            return cells;
    return {};
}

PageContents readPage(const QByteArray &page)
{
    PageContents contents;
    QXmlStreamReader reader(page);
    QString *cell = nullptr;
    bool inHeading = false;
    bool inStyle = false;
    while (!reader.atEnd()) {
        reader.readNext();
        const QString name = reader.name().toString();
        const bool isCell = name == QLatin1String("td") || name == QLatin1String("th");
        const bool isHeading = name == QLatin1String("h1") || name == QLatin1String("h2");
        if (reader.isStartElement()) {
            contents.elements += name;
            if (name == QLatin1String("tr"))
                contents.rows.emplace_back();
            if (isCell) {
                contents.rows.back() += QString();
                cell = &contents.rows.back().last();
            }
            if (isHeading) {
                contents.headings += QString();
                inHeading = true;
            }
            inStyle = inStyle || name == QLatin1String("style");
            if (name == QLatin1String("img"))
                contents.pictures.push_back(reader.attributes());
            if (name == QLatin1String("a"))
                contents.targets += reader.attributes().value(QLatin1String("href")).toString();
        } else if (reader.isEndElement()) {
            if (isCell)
                cell = nullptr;
            if (isHeading)
                inHeading = false;
            if (name == QLatin1String("style"))
                inStyle = false;
        } else if (reader.isCharacters() && !inStyle) {
            contents.text += reader.text();
            if (cell != nullptr)
                *cell += reader.text();
            if (inHeading)
                contents.headings.last() += reader.text();
        }
    }
    contents.fault = reader.errorString();
    return contents;
}

} // namespace corvane
