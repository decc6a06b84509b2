// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/table_cells.h"

#include "host/files/text_check.h"

#include <cmath>

namespace corvane
{

using Eigen::Index;

QByteArray cell(double number)
{
    return std::isnan(number) ? QByteArray("n/a") : shortestDecimal(number);
}

QByteArray cell(const std::string &text)
{
    return QByteArray::fromStdString(text);
}

QByteArray cell(Index number)
{
    return QByteArray::number(qlonglong(number));
}

QByteArray line(const QByteArrayList &cells)
{
    return cells.join('\t') + '\n';
}

QByteArray namedMatrix(const std::vector<std::string> &names, const Eigen::MatrixXd &values)
{
    QByteArrayList head{QByteArray()};
    for (const std::string &name : names)
        head += cell(name);
    QByteArray table = line(head);
    for (Index row = 0; row < values.rows(); ++row) {
        QByteArrayList cells{cell(names[row])};
        for (Index column = 0; column < values.cols(); ++column)
            cells += cell(values(row, column));
        table += line(cells);
    }
    return table;
}

} // namespace corvane
