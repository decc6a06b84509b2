// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/design.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

/// A column of the table as the model takes it.
struct Variable {
    bool is_category = false;
    /// Column name of a number in the design.
    std::string name;
    Eigen::VectorXd numbers;
    Category category;
    /// For each included row the number of its level.
    std::vector<std::size_t> level_of;
};

using Variables = std::map<std::string, Variable>;

/// A factor of a term with its way of coding: the full one has a column for the first level, too.
struct CodedFactor {
    std::string column;
    bool full = false;

    bool operator<(const CodedFactor &other) const
    {
        return column != other.column ? column < other.column : full < other.full;
    }
};

using Coding = std::set<CodedFactor>;

struct DesignColumn {
    std::string name;
    Eigen::VectorXd values;
};

std::set<std::string> columns_in(const Formula &formula)
{
    std::set<std::string> columns;
    for (const Term &term : formula.terms) {
        for (const Factor &factor : term) {
            columns.insert(factor.column);
        }
    }
    return columns;
}

/// Sorts the rows into included ones and missing values.
void find_rows(const Table &table, const std::set<std::string> &columns, Design &design)
{
    for (Index row = 0; row < table.rows(); ++row) {
        bool complete = true;
        for (const std::string &name : columns) {
            if (is_missing(table.column(name).values[row])) {
                design.missing.push_back({row, name});
                complete = false;
            }
        }
        if (complete) {
            design.rows.push_back(row);
        }
    }
    if (design.rows.empty()) {
        throw Error("no row of the table has all of " + joined({columns.begin(), columns.end()}));
    }
}

bool is_text(const std::string &value)
{
    return !is_missing(value) && !number_in(value);
}

bool holds_text(const Column &column)
{
    return std::any_of(column.values.begin(), column.values.end(), is_text);
}

/// Why a column with numbers in it is a category: a slip of the pen, more often than not.
std::string reason(const Column &column)
{
    const auto begin = column.values.begin();
    const auto text = std::find_if(begin, column.values.end(), is_text);
    const bool mixed = text != column.values.end() &&
                       std::any_of(begin, column.values.end(),
                                   [](const std::string &value) { return bool(number_in(value)); });
    return mixed ? " (" + column.name + " is a category, since " + trimmed(*text) + " in row " +
                       std::to_string(text - begin) + " is no number)"
                 : "";
}

Variable category(const Column &column, const Factor &factor, const std::vector<Index> &rows)
{
    std::map<std::string, Index> counts;
    for (const Index row : rows) {
        ++counts[trimmed(column.values[row])];
    }
    Variable variable;
    variable.is_category = true;
    variable.category.column = column.name;
    std::vector<std::string> &levels = variable.category.levels;
    for (const auto &[level, count] : counts) {
        if (count == 1) {
            throw Error("only one subject has " + column.name + " = " + level +
                        "; a group needs at least two" + reason(column));
        }
        levels.push_back(level);
    }
    if (levels.size() < 2) {
        throw Error("all subjects have " + column.name + " = " + levels.front() +
                    "; a category needs at least two levels" + reason(column));
    }
    if (factor.reference) {
        const auto found = std::find(levels.begin(), levels.end(), *factor.reference);
        if (found == levels.end()) {
            throw Error(column.name + " has no level " + *factor.reference + "; it has " +
                        joined(levels));
        }
        std::rotate(levels.begin(), found, found + 1);
    }
    for (const std::string &level : levels) {
        variable.category.counts.push_back(counts[level]);
    }
    for (const Index row : rows) {
        const auto found = std::find(levels.begin(), levels.end(), trimmed(column.values[row]));
        variable.level_of.push_back(static_cast<std::size_t>(found - levels.begin()));
    }
    return variable;
}

Variable number(const Column &column, const Factor &factor, const std::vector<Index> &rows)
{
    Variable variable;
    variable.name = column.name;
    variable.numbers.resize(static_cast<Index>(rows.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        variable.numbers(static_cast<Index>(i)) = *number_in(column.values[rows[i]]);
    }
    if (factor.kind == Factor::Kind::centred) {
        variable.name = "center(" + column.name + ")";
        variable.numbers.array() -= variable.numbers.mean();
    }
    return variable;
}

Variables variables_of(const Formula &formula, const Table &table, const std::vector<Index> &rows)
{
    Variables variables;
    for (const Term &term : formula.terms) {
        for (const Factor &factor : term) {
            if (variables.count(factor.column) > 0) {
                continue;
            }
            const Column &column = table.column(factor.column);
            const bool text = holds_text(column);
            if (text && factor.kind == Factor::Kind::centred) {
                throw Error("center(" + column.name + "): the column holds text, not numbers");
            }
            variables[factor.column] = text || factor.kind == Factor::Kind::category
                                           ? category(column, factor, rows)
                                           : number(column, factor, rows);
        }
    }
    return variables;
}

/// Joins codings that differ by one reduced factor: the columns of `a` without the first level
/// times something, and those of the something alone, are those of all levels times it.
void simplify(std::vector<Coding> &codings)
{
    for (std::size_t s = 0; s < codings.size(); ++s) {
        for (std::size_t l = s + 1; l < codings.size(); ++l) {
            Coding difference;
            std::set_difference(codings[l].begin(), codings[l].end(), codings[s].begin(),
                                codings[s].end(), std::inserter(difference, difference.end()));
            if (difference.size() == 1 && codings[l].size() == codings[s].size() + 1) {
                codings[l].erase(*difference.begin());
                codings[l].insert({difference.begin()->column, true});
                codings.erase(codings.begin() + static_cast<std::ptrdiff_t>(s));
                simplify(codings);
                return;
            }
        }
    }
}

/// How the categories of each term are coded so that together the columns span what the formula
/// says and nothing twice. A term of the categories a and b stands for the products of all subsets
/// of {a, b}, each without first levels; those that an earlier term has are left out.
class Codings
{
public:
    explicit Codings(bool intercept)
    {
        if (intercept) {
            m_used.insert({{}, {}});
        }
    }

    /// The codings of the next term, by its categories and its numbers.
    std::vector<Coding> of(const std::vector<std::string> &categories,
                           const std::set<std::string> &numbers)
    {
        std::vector<Coding> codings;
        for (const std::set<std::string> &subset : subsets(categories)) {
            if (m_used.insert({numbers, subset}).second) {
                Coding coding;
                for (const std::string &column : subset) {
                    coding.insert({column, false});
                }
                codings.push_back(coding);
            }
        }
        simplify(codings);
        return codings;
    }

private:
    /// Smaller ones first.
    static std::vector<std::set<std::string>> subsets(const std::vector<std::string> &items)
    {
        if (items.size() > 10) {
            throw Error("an interaction of " + std::to_string(items.size()) +
                        " categories is more than a design can hold");
        }
        std::vector<std::set<std::string>> all;
        for (std::uint32_t chosen = 0; chosen < (1U << items.size()); ++chosen) {
            std::set<std::string> subset;
            for (std::size_t i = 0; i < items.size(); ++i) {
                if ((chosen >> i & 1U) != 0) {
                    subset.insert(items[i]);
                }
            }
            all.push_back(subset);
        }
        std::stable_sort(all.begin(), all.end(),
                         [](const auto &a, const auto &b) { return a.size() < b.size(); });
        return all;
    }

    std::set<std::pair<std::set<std::string>, std::set<std::string>>> m_used;
};

/// The columns of one factor.
std::vector<DesignColumn> coded(const Variable &variable, bool full)
{
    if (!variable.is_category) {
        return {{variable.name, variable.numbers}};
    }
    std::vector<DesignColumn> columns;
    const Category &category = variable.category;
    for (std::size_t level = full ? 0 : 1; level < category.levels.size(); ++level) {
        Eigen::VectorXd values(static_cast<Index>(variable.level_of.size()));
        for (Index row = 0; row < values.size(); ++row) {
            values(row) = variable.level_of[row] == level ? 1.0 : 0.0;
        }
        columns.push_back({category.column + "[" + category.levels[level] + "]", values});
    }
    return columns;
}

/// The products of the factors' columns; the first factor varies fastest.
std::vector<DesignColumn> products(const Term &term, const Coding &coding,
                                   const Variables &variables)
{
    std::vector<DesignColumn> columns;
    for (const Factor &factor : term) {
        const Variable &variable = variables.at(factor.column);
        const bool full = coding.count({factor.column, true}) > 0;
        if (variable.is_category && !full && coding.count({factor.column, false}) == 0) {
            continue;
        }
        const std::vector<DesignColumn> own = coded(variable, full);
        if (columns.empty()) {
            columns = own;
            continue;
        }
        std::vector<DesignColumn> longer;
        for (const DesignColumn &right : own) {
            for (const DesignColumn &left : columns) {
                // Adding 0 makes the 0 of a negative number times 0 a plain one.
                longer.push_back({left.name + ":" + right.name,
                                  left.values.array() * right.values.array() + 0.0});
            }
        }
        columns = longer;
    }
    return columns;
}

std::vector<DesignColumn> all_columns(const Formula &formula, const Variables &variables,
                                      Index rows)
{
    std::vector<DesignColumn> all;
    if (formula.intercept) {
        all.push_back({"(Intercept)", Eigen::VectorXd::Ones(rows)});
    }
    Codings codings(formula.intercept);
    for (const Term &term : formula.terms) {
        std::vector<std::string> categories;
        std::set<std::string> numbers;
        for (const Factor &factor : term) {
            if (variables.at(factor.column).is_category) {
                categories.push_back(factor.column);
            } else {
                numbers.insert(factor.column);
            }
        }
        for (const Coding &coding : codings.of(categories, numbers)) {
            const std::vector<DesignColumn> columns = products(term, coding, variables);
            all.insert(all.end(), columns.begin(), columns.end());
        }
    }
    return all;
}

/// For each included row its combination of the levels of a term's categories.
std::vector<std::string> cells_of(const Term &term, const Variables &variables)
{
    std::vector<std::string> cells;
    for (const Factor &factor : term) {
        const Variable &variable = variables.at(factor.column);
        if (!variable.is_category) {
            continue;
        }
        cells.resize(variable.level_of.size());
        for (std::size_t row = 0; row < cells.size(); ++row) {
            cells[row] += (cells[row].empty() ? "" : ":") + factor.column + "[" +
                          variable.category.levels[variable.level_of[row]] + "]";
        }
    }
    return cells;
}

void require_no_cell_of_one(const Formula &formula, const Variables &variables)
{
    for (const Term &term : formula.terms) {
        const std::vector<std::string> cells = cells_of(term, variables);
        std::map<std::string, int> counts;
        for (const std::string &cell : cells) {
            ++counts[cell];
        }
        for (const std::string &cell : cells) {
            if (counts[cell] == 1) {
                throw Error("only one subject has " + cell + "; a group needs at least two");
            }
        }
    }
}

} // namespace

Design make_design(const std::string &formula, const Table &table,
                   const std::vector<std::string> &other_columns)
{
    require_rectangular(table);
    const Formula model = read_formula(formula);
    std::set<std::string> needed = columns_in(model);
    needed.insert(other_columns.begin(), other_columns.end());

    Design design;
    find_rows(table, needed, design);
    const Variables variables = variables_of(model, table, design.rows);
    require_no_cell_of_one(model, variables);
    for (const auto &[name, variable] : variables) {
        if (variable.is_category) {
            design.categories.push_back(variable.category);
        }
    }
    const auto rows = static_cast<Index>(design.rows.size());
    const std::vector<DesignColumn> columns = all_columns(model, variables, rows);
    design.matrix.resize(rows, static_cast<Index>(columns.size()));
    for (std::size_t c = 0; c < columns.size(); ++c) {
        design.matrix.col(static_cast<Index>(c)) = columns[c].values;
        design.columns.push_back(columns[c].name);
    }
    return design;
}

} // namespace statistics
