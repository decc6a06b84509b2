// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/formula.h"

#include <algorithm>
#include <map>
#include <set>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

bool is_letter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '.' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

/// What one summand stands for: terms, or the intercept's presence.
struct Summand {
    std::vector<Term> terms;
    std::optional<bool> intercept;
};

/// Reads from left to right; each function takes what it is named after.
class Reader
{
public:
    explicit Reader(const std::string &text) : m_text(text) {}

    Formula formula()
    {
        Formula read;
        if (at_end()) {
            throw Error("the formula is empty");
        }
        bool negative = take('-');
        if (!negative) {
            take('+');
        }
        while (true) {
            add(summand(), negative, read);
            if (at_end()) {
                break;
            }
            negative = peek() == '-';
            if (!take('+') && !take('-')) {
                fail("'+', '-', '*', ':' or the end");
            }
        }
        std::stable_sort(read.terms.begin(), read.terms.end(),
                         [](const Term &a, const Term &b) { return a.size() < b.size(); });
        if (!read.intercept && read.terms.empty()) {
            throw Error("the formula leaves no column: it has no term and no intercept");
        }
        return read;
    }

private:
    void add(const Summand &part, bool negative, Formula &formula)
    {
        if (part.intercept) {
            formula.intercept = *part.intercept != negative;
            return;
        }
        if (negative) {
            throw Error("the formula subtracts a term; only - 1 can be subtracted");
        }
        for (const Term &term : part.terms) {
            if (m_seen.insert(columns_of(term)).second) {
                formula.terms.push_back(term);
            }
        }
    }

    /// a * b:c is a + b:c + a:b:c: each further factor joins the empty product and all before.
    Summand summand()
    {
        if (peek() == '0' || peek() == '1') {
            const bool one = peek() == '1';
            ++m_at;
            if (!at_end() && peek() != '+' && peek() != '-') {
                fail("'+', '-' or the end");
            }
            return {{}, one};
        }
        std::vector<Term> products = {Term()};
        do {
            const Term right = interaction();
            const std::size_t before = products.size();
            for (std::size_t i = 0; i < before; ++i) {
                products.push_back(combined(products[i], right));
            }
        } while (take('*'));
        products.erase(products.begin());
        return {products, std::nullopt};
    }

    Term interaction()
    {
        Term term;
        do {
            const Factor read = factor();
            if (columns_of(term).count(read.column) > 0) {
                throw Error("the formula has " + read.column + " twice in one term");
            }
            term.push_back(read);
        } while (take(':'));
        return term;
    }

    Factor factor()
    {
        const bool quoted = peek() == '`';
        Factor read;
        read.column = name();
        if (!quoted && peek() == '(') {
            read = function(read.column);
        }
        require_one_way(read);
        return read;
    }

    Factor function(const std::string &called)
    {
        if (called != "C" && called != "center") {
            throw Error("the formula has " + called +
                        "(...); it can have C(column), "
                        "C(column, ref=level) and center(column)");
        }
        expect('(');
        Factor read;
        read.kind = called == "C" ? Factor::Kind::category : Factor::Kind::centred;
        read.column = name();
        if (read.kind == Factor::Kind::category && take(',')) {
            if (name() != "ref") {
                throw Error("after the comma of C(" + read.column + ", ...) stands ref=level");
            }
            expect('=');
            read.reference = level();
        }
        expect(')');
        return read;
    }

    std::string name()
    {
        if (take('`')) {
            return up_to('`');
        }
        if (at_end() || !is_letter(peek())) {
            fail("the name of a column");
        }
        const std::size_t first = m_at;
        while (m_at < m_text.size() && (is_letter(m_text[m_at]) || is_digit(m_text[m_at]))) {
            ++m_at;
        }
        return m_text.substr(first, m_at - first);
    }

    std::string level()
    {
        for (const char quote : {'"', '\''}) {
            if (take(quote)) {
                return up_to(quote);
            }
        }
        std::string read = trimmed(up_to(')'));
        --m_at;
        if (read.empty()) {
            fail("a level");
        }
        return read;
    }

    /// What stands before the next such character; goes behind it.
    std::string up_to(char end)
    {
        const std::size_t first = m_at;
        const std::size_t found = m_text.find(end, first);
        if (found == std::string::npos) {
            m_at = m_text.size();
            fail(std::string("'") + end + "'");
        }
        m_at = found + 1;
        return m_text.substr(first, found - first);
    }

    void require_one_way(const Factor &factor)
    {
        const auto [known, added] = m_ways.emplace(factor.column, factor);
        if (!added &&
            (known->second.kind != factor.kind || known->second.reference != factor.reference)) {
            throw Error("the formula has the column " + factor.column + " in two ways");
        }
    }

    static std::set<std::string> columns_of(const Term &term)
    {
        std::set<std::string> columns;
        for (const Factor &factor : term) {
            columns.insert(factor.column);
        }
        return columns;
    }

    static Term combined(const Term &left, const Term &right)
    {
        Term both = left;
        const std::set<std::string> known = columns_of(left);
        for (const Factor &factor : right) {
            if (known.count(factor.column) > 0) {
                throw Error("the formula has " + factor.column + " twice in one term");
            }
            both.push_back(factor);
        }
        return both;
    }

    void skip_blanks()
    {
        while (m_at < m_text.size() && (m_text[m_at] == ' ' || m_text[m_at] == '\t')) {
            ++m_at;
        }
    }

    bool at_end()
    {
        skip_blanks();
        return m_at == m_text.size();
    }

    char peek() { return at_end() ? '\0' : m_text[m_at]; }

    bool take(char wanted)
    {
        if (at_end() || m_text[m_at] != wanted) {
            return false;
        }
        ++m_at;
        return true;
    }

    void expect(char wanted)
    {
        if (!take(wanted)) {
            fail(std::string("'") + wanted + "'");
        }
    }

    [[noreturn]] void fail(const std::string &expected)
    {
        const std::string found = at_end() ? "its end" : "'" + m_text.substr(m_at, 1) + "'";
        throw Error("the formula has " + found + " at character " + std::to_string(m_at + 1) +
                    " where " + expected + " is expected");
    }

    const std::string &m_text;
    std::size_t m_at = 0;
    std::set<std::set<std::string>> m_seen;
    std::map<std::string, Factor> m_ways;
};

} // namespace

Formula read_formula(const std::string &text)
{
    return Reader(text).formula();
}

} // namespace statistics
