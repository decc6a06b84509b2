// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/table.h"

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{

Index Table::rows() const
{
    return columns.empty() ? 0 : static_cast<Index>(columns.front().values.size());
}

const Column &Table::column(const std::string &name) const
{
    const Column *found = nullptr;
    std::vector<std::string> names;
    for (const Column &column : columns) {
        names.push_back(column.name);
        if (column.name == name) {
            if (found != nullptr) {
                throw Error("the table has two columns named " + name);
            }
            found = &column;
        }
    }
    if (found == nullptr) {
        throw Error("the table has no column " + name + "; it has " + joined(names));
    }
    return *found;
}

Table Table::with_rows(const std::vector<Index> &rows) const
{
    Table part;
    for (const Column &column : columns) {
        Column values{column.name, {}};
        for (const Index row : rows) {
            values.values.push_back(column.values.at(row));
        }
        part.columns.push_back(std::move(values));
    }
    return part;
}

bool is_missing(const std::string &value)
{
    std::string text = trimmed(value);
    for (char &letter : text) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    return text.empty() || text == "n/a" || text == "na" || text == "nan";
}

void require_rectangular(const Table &table)
{
    for (const Column &column : table.columns) {
        if (column.name.empty()) {
            throw Error("a column of the table has no name");
        }
        if (static_cast<Index>(column.values.size()) != table.rows()) {
            throw Error("the column " + column.name + " has " +
                        counted(static_cast<Index>(column.values.size()), "row") + ", the column " +
                        table.columns.front().name + " has " + std::to_string(table.rows()));
        }
    }
}

} // namespace statistics
