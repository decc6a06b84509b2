// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/motion.h"

#include <limits>

#include "signals/text.h"

namespace signals
{

namespace
{

constexpr double pi = 3.141592653589793238462643383279502884;
constexpr double radius = 50;

void require_six(const Eigen::MatrixXd &motion)
{
    if (motion.cols() != 6) {
        throw Error("motion parameters of " + counted(motion.cols(), "column") +
                    ": expected 6, three translations and three rotations");
    }
}

} // namespace

Eigen::MatrixXd motion_parameters(const Eigen::MatrixXd &motion, MotionOrder order)
{
    require_six(motion);
    if (order == MotionOrder::spm) {
        return motion;
    }
    const double unit = order == MotionOrder::afni ? pi / 180 : 1;
    Eigen::MatrixXd parameters(motion.rows(), 6);
    parameters << motion.rightCols(3), unit * motion.leftCols(3);
    return parameters;
}

Eigen::ArrayXd framewise_displacement(const Eigen::MatrixXd &parameters)
{
    require_six(parameters);
    const Eigen::Index volumes = parameters.rows();
    Eigen::ArrayXd displacement =
        Eigen::ArrayXd::Constant(volumes, std::numeric_limits<double>::quiet_NaN());
    if (volumes > 1) {
        const Eigen::ArrayXXd moved =
            (parameters.bottomRows(volumes - 1) - parameters.topRows(volumes - 1)).array().abs();
        displacement.tail(volumes - 1) =
            moved.leftCols(3).rowwise().sum() + radius * moved.rightCols(3).rowwise().sum();
    }
    return displacement;
}

} // namespace signals
