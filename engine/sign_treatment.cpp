// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/sign_treatment.h"

void treatSigns(Eigen::MatrixXf &matrix, MatrixValues values)
{
    switch (values) {
    case MatrixValues::Absolute:
        matrix = matrix.cwiseAbs();
        break;
    case MatrixValues::Positive:
        matrix = matrix.unaryExpr([](float x) { return x >= 0.0f ? x : 0.0f; });
        break;
    case MatrixValues::Negative:
        matrix = matrix.unaryExpr([](float x) { return 0.0f > x ? x : 0.0f; }).cwiseAbs();
        break;
    case MatrixValues::Signed:
        break;
    }
}
