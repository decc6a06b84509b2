// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/world_place.h"

#include "host/files/text_check.h"

#include <Eigen/LU>
#include <QCoreApplication>
#include <QRegularExpression>
#include <cmath>

namespace corvane
{

namespace
{

/// Of each axis, first the one of numbers above 0.
constexpr const char *letters[] = {"RL", "AP", "SI"};

QString axisText(double value, const char *ends)
{
    return QString(QLatin1Char(value < 0 ? ends[1] : ends[0])) + QLatin1Char(' ') +
           readableNumber(std::abs(value), 1);
}

} // namespace

WorldPlace worldPosition(const Vmr &vmr, const CubeVoxel &voxel)
{
    WorldPlace world = vmr.space->origin;
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t n = 0; n < 3; ++n)
            world[n] += vmr.space->directions[axis][n] * voxel[axis];
    return world;
}

CubeVoxel voxelAtWorld(const Vmr &vmr, const WorldPlace &place)
{
    Eigen::Matrix3d steps;
    Eigen::Vector3d fromOrigin;
    for (int n = 0; n < 3; ++n) {
        const auto row = static_cast<std::size_t>(n);
        for (int axis = 0; axis < 3; ++axis)
            steps(n, axis) = vmr.space->directions[static_cast<std::size_t>(axis)][row];
        fromOrigin[n] = place[row] - vmr.space->origin[row];
    }
    const Eigen::Vector3d voxel = steps.inverse() * fromOrigin;
    // Far beyond the cube it does not matter how far.
    const auto whole = [&voxel](int axis) {
        return static_cast<int>(std::floor(std::clamp(voxel[axis], -1e6, 1e6) + 0.5));
    };
    return {whole(0), whole(1), whole(2)};
}

QString worldText(const WorldPlace &place)
{
    return QCoreApplication::translate("corvane::WorldPlace", "%1  %2  %3 mm")
        .arg(axisText(place[0], letters[0]), axisText(place[1], letters[1]),
             axisText(place[2], letters[2]));
}

std::optional<WorldPlace> worldPlaceOf(const QString &text)
{
    const QString number = QStringLiteral("([RLAPSI]?)\\s*([-+]?\\d+(?:\\.\\d*)?)");
    const QString gap = QStringLiteral("[\\s,;]+");
    static const QRegularExpression form(QStringLiteral("^\\s*%1(?:\\s*mm)?\\s*$")
                                             .arg(QStringList{number, number, number}.join(gap)),
                                         QRegularExpression::CaseInsensitiveOption);
    // A minus as papers print it.
    const QRegularExpressionMatch match =
        form.match(QString(text).replace(QChar(0x2212), QLatin1Char('-')));
    if (!match.hasMatch())
        return std::nullopt;
    WorldPlace place{};
    std::array<bool, 3> isGiven{};
    for (int part = 0; part < 3; ++part) {
        const QString letter = match.captured(2 * part + 1).toUpper();
        const double value = match.captured(2 * part + 2).toDouble();
        if (letter.isEmpty() != match.captured(1).isEmpty())
            return std::nullopt; // letters for some of them only
        auto axis = static_cast<std::size_t>(part);
        if (!letter.isEmpty())
            axis = static_cast<std::size_t>(QStringLiteral("RLAPSI").indexOf(letter) / 2);
        if (isGiven[axis])
            return std::nullopt;
        isGiven[axis] = true;
        const bool isBelow = !letter.isEmpty() && QStringLiteral("LPI").contains(letter);
        place[axis] = isBelow ? -value : value;
    }
    return place;
}

} // namespace corvane
