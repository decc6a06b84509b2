// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

/// Declared for a label that is turned upright. Not in use: the browser's names stand in its
/// VerticalHeaderView.
class VerticalLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;
};
