// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/tsv_text.h"

#include "host/files/text_check.h"

#include <cmath>

namespace corvane
{

QByteArray cell(double number)
{
    return std::isnan(number) ? QByteArray("n/a") : shortestDecimal(number);
}

QByteArray line(const QByteArrayList &cells)
{
    return cells.join('\t') + '\n';
}

} // namespace corvane
