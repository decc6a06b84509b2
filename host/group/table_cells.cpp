// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/table_cells.h"

namespace corvane
{

using Eigen::Index;

QByteArray cell(const std::string &text)
{
    return QByteArray::fromStdString(text);
}

QByteArray cell(Index number)
{
    return QByteArray::number(qlonglong(number));
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

QJsonArray texts(const std::vector<std::string> &values)
{
    QJsonArray array;
    for (const std::string &value : values)
        array += QString::fromStdString(value);
    return array;
}

} // namespace corvane
