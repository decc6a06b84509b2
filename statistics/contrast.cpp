// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/contrast.h"

#include <algorithm>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

const char *const blanks = " \t";

class Reader
{
public:
    Reader(std::string name, std::string text, const std::vector<std::string> &columns)
        : m_name(std::move(name)), m_text(std::move(text)), m_columns(columns)
    {
    }

    std::vector<Eigen::RowVectorXd> rows()
    {
        std::vector<Eigen::RowVectorXd> read;
        do {
            read.push_back(row());
        } while (take(';'));
        return read;
    }

private:
    Eigen::RowVectorXd row()
    {
        Eigen::RowVectorXd weights =
            Eigen::RowVectorXd::Zero(static_cast<Eigen::Index>(m_columns.size()));
        double sign = take('-') ? -1.0 : 1.0;
        if (sign > 0.0) {
            take('+');
        }
        while (true) {
            add_summand(sign, weights);
            if (peek() == '\0' || peek() == ';') {
                break;
            }
            sign = peek() == '-' ? -1.0 : 1.0;
            ++m_at; // a name ends before '+', '-', ';' or the end only
        }
        if (weights.isZero(0.0)) {
            throw Error("contrast " + m_name + ": all weights of a row are 0");
        }
        return weights;
    }

    void add_summand(double sign, Eigen::RowVectorXd &weights)
    {
        skip_blanks();
        std::size_t column = column_at(m_at);
        double weight = 1.0;
        if (column == m_columns.size()) {
            const std::size_t star = m_text.find('*', m_at);
            const auto factor = star == std::string::npos
                                    ? std::nullopt
                                    : number_in(m_text.substr(m_at, star - m_at));
            const std::size_t behind = star == std::string::npos
                                           ? std::string::npos
                                           : m_text.find_first_not_of(blanks, star + 1);
            if (!factor || behind == std::string::npos) {
                fail(m_at);
            }
            weight = *factor;
            column = column_at(behind);
            if (column == m_columns.size()) {
                fail(behind);
            }
            m_at = behind;
        }
        m_at += m_columns[column].size();
        weights(static_cast<Eigen::Index>(column)) += sign * weight;
    }

    /// The column with the longest name that stands there, followed by what can follow a name.
    std::size_t column_at(std::size_t at) const
    {
        std::size_t found = m_columns.size();
        for (std::size_t c = 0; c < m_columns.size(); ++c) {
            const std::string &name = m_columns[c];
            if (m_text.compare(at, name.size(), name) != 0 ||
                (found < m_columns.size() && m_columns[found].size() >= name.size())) {
                continue;
            }
            const std::size_t next = m_text.find_first_not_of(blanks, at + name.size());
            if (next == std::string::npos ||
                std::string("+-;").find(m_text[next]) != std::string::npos) {
                found = c;
            }
        }
        return found;
    }

    void skip_blanks() { m_at = std::min(m_text.find_first_not_of(blanks, m_at), m_text.size()); }

    char peek()
    {
        skip_blanks();
        return m_at == m_text.size() ? '\0' : m_text[m_at];
    }

    bool take(char wanted)
    {
        if (peek() != wanted) {
            return false;
        }
        ++m_at;
        return true;
    }

    [[noreturn]] void fail(std::size_t at) const
    {
        const std::string rest = trimmed(m_text.substr(at, m_text.find(';', at) - at));
        throw Error("contrast " + m_name + ": " + (rest.empty() ? "a row is empty" : rest) +
                    (rest.empty() ? "" : " names no column of the design") + "; its columns are " +
                    joined(m_columns));
    }

    std::string m_name;
    std::string m_text;
    const std::vector<std::string> &m_columns;
    std::size_t m_at = 0;
};

} // namespace

Contrast read_contrast(const std::string &text, const std::vector<std::string> &columns)
{
    const std::size_t equals = text.find('=');
    const std::string name = trimmed(text.substr(0, equals));
    if (equals == std::string::npos || name.empty()) {
        throw Error("the contrast " + text + " has no name; it is written NAME=column");
    }
    const std::vector<Eigen::RowVectorXd> rows =
        Reader(name, text.substr(equals + 1), columns).rows();
    Contrast contrast{name, Eigen::MatrixXd(rows.size(), columns.size())};
    for (std::size_t r = 0; r < rows.size(); ++r) {
        contrast.weights.row(static_cast<Eigen::Index>(r)) = rows[r];
    }
    return contrast;
}

} // namespace statistics
