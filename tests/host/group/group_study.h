// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/text_check.h"
#include "host/files/tsv_table.h"
#include "tests/host/support/program.h"
#include "tests/statistics/random_data.h"

#include <QDir>
#include <QTemporaryDir>
#include <cmath>

namespace corvane
{

/// A folder with a table of participants and their matrices.
class Group : public testing::Test
{
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QString out(const QString &name) const { return path(QStringLiteral("out/") + name); }

    void write(const QString &name, const QByteArray &text) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    /// Writes a symmetric matrix of ones on its diagonal, "n/a" for NaN. Edges count as in the
    /// library.
    void writeMatrix(const QString &name, const Eigen::RowVectorXd &edges) const
    {
        const int nodes = statistics::node_count(edges.size());
        Eigen::MatrixXd matrix = Eigen::MatrixXd::Identity(nodes, nodes);
        Eigen::Index at = 0;
        for (const auto [first, second] : statistics::node_pairs(nodes))
            matrix(first, second) = matrix(second, first) = edges(at++);
        QByteArray text;
        for (int row = 0; row < nodes; ++row) {
            for (int column = 0; column < nodes; ++column) {
                const double value = matrix(row, column);
                text += (column > 0 ? "\t" : "") +
                        (std::isnan(value) ? QByteArray("n/a") : shortestDecimal(value));
            }
            text += '\n';
        }
        write(name, text);
    }

    /// Ten participants of two groups with matrices of five nodes; edge 0-1 differs by 0.4.
    void writeStudy() const
    {
        RandomNumbers random(4);
        for (int i = 0; i < 10; ++i) {
            Eigen::RowVectorXd edges(10);
            for (double &edge : edges)
                edge = std::tanh(0.2 * random.normal());
            edges(0) += i % 2 == 0 ? 0.2 : -0.2;
            writeMatrix(QStringLiteral("m%1.tsv").arg(i), edges);
        }
        writeTable(tableText());
    }

    static QByteArray tableText()
    {
        QByteArray table = "participant_id\tmatrix\tgroup\tage\tsite\n";
        for (int i = 0; i < 10; ++i)
            table += "sub-" + QByteArray::number(i) + "\tm" + QByteArray::number(i) + ".tsv\t" +
                     (i % 2 == 0 ? "Patient" : "Control") + '\t' + QByteArray::number(20 + i * i) +
                     '\t' + (i < 5 ? "A" : "B") + '\n';
        return table;
    }

    void writeTable(const QByteArray &text) const { write(QStringLiteral("T.tsv"), text); }

    QStringList arguments(const QStringList &more) const
    {
        return QStringList{QStringLiteral("group"), QStringLiteral("--table"),
                           path(QStringLiteral("T.tsv")), QStringLiteral("--out"),
                           path(QStringLiteral("out"))} +
               more;
    }

    ProgramRun run(const QStringList &more) const { return runCorvane(arguments(more)); }

    /// A run that compares the groups.
    ProgramRun compareGroups(const QStringList &more) const
    {
        return run(QStringList{QStringLiteral("--formula"), QStringLiteral("group"),
                               QStringLiteral("--contrast"),
                               QStringLiteral("patients=group[Patient]")} +
                   more);
    }

    static double number(const TsvTable &table, int row, const char *column)
    {
        const QString cell = table.cell(row, table.requiredColumn(QLatin1String(column)));
        EXPECT_TRUE(finiteNumber(cell)) << cell.toStdString();
        return finiteNumber(cell).value_or(0.0);
    }

    QByteArray bytes(const QString &name) const
    {
        QFile file(out(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }

    QTemporaryDir m_folder;
};

} // namespace corvane
