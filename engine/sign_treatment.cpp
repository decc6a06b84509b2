// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/sign_treatment.h"

void treatSigns(Eigen::MatrixXf &matrix, int matrixValues)
{
    switch (matrixValues) {
    case 0:
        matrix = matrix.cwiseAbs();
        break;
    case 1:
        matrix = matrix.unaryExpr([](float x) { return x >= 0.0f ? x : 0.0f; });
        break;
    case 2:
        matrix = matrix.unaryExpr([](float x) { return 0.0f > x ? x : 0.0f; }).cwiseAbs();
        break;
    default:
        break;
    }
}
