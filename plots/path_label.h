// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

/// A label with a path, which it cuts in the middle where it has no room for all of it: the folders
/// at the beginning and the name at the end tell more. Its text stays whole.
class PathLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent *event) override;
};
