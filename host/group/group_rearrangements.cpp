// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/group_rearrangements.h"

#include "host/files/input_error.h"
#include "host/files/text_lines.h"

#include <QRegularExpression>

namespace corvane
{

namespace
{

using statistics::Index;

/// Rows of whole numbers with tabs, commas or blanks between them.
Eigen::MatrixXi readPermutations(const QString &path)
{
    static const QRegularExpression between(QStringLiteral("[\\s,;]+"));
    const std::vector<TextLine> lines = readTextLines(path);
    Eigen::MatrixXi permutations;
    for (std::size_t row = 0; row < lines.size(); ++row) {
        const QStringList cells = lines[row].text.split(between, Qt::SkipEmptyParts);
        if (row == 0)
            permutations.resize(static_cast<Index>(lines.size()), cells.size());
        const QString place = QStringLiteral("line %1").arg(lines[row].number);
        if (cells.size() != permutations.cols())
            throw InputError(path, place, QStringLiteral("%1 numbers").arg(cells.size()),
                             QStringLiteral("%1 as in the first line").arg(permutations.cols()));
        for (int column = 0; column < cells.size(); ++column) {
            bool isNumber = false;
            permutations(static_cast<Index>(row), column) = cells[column].toInt(&isNumber);
            if (!isNumber)
                throw InputError(path, place, quoted(cells[column]),
                                 QStringLiteral("the number of a participant, from 0"));
        }
    }
    if (lines.empty())
        throw InputError(path, QStringLiteral("content"), QStringLiteral("no line"),
                         QStringLiteral("a permutation in each line"));
    return permutations;
}

} // namespace

statistics::RearrangementOptions rearrangementOptions(const GroupData &data,
                                                      const GroupRequest &request)
{
    statistics::RearrangementOptions options;
    options.count = request.permutations;
    options.seed = request.seed;
    options.blocks = data.blocks;
    if (!request.permutationFile.isEmpty())
        options.given = readPermutations(request.permutationFile);
    return options;
}

} // namespace corvane
