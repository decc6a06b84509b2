// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QString>
#include <QStringList>

#include <functional>

class ModalDriver;

/// A file of an export, with the bits of every number. Fails where it is not there or not a table.
Eigen::MatrixXf readCsv(const QString &path);

/// Equal size and equal bits.
void expectSameBits(const Eigen::MatrixXf &found, const Eigen::MatrixXf &expected);

/// The paths of all files below a folder, relative to it, in alphabetical order.
QStringList filesBelow(const QString &folder);

/// Types a path into the dialog of the export that `start` opens, and confirms that a file which is
/// there is to be replaced.
void exportTo(const QString &path, ModalDriver &modals, const std::function<void()> &start);
