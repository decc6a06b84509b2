// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

/// A label that can be clicked and that reports hovering, with a pointing hand as cursor. Its text
/// is shown as it is written.
class MyLabel : public QLabel
{
    Q_OBJECT

public:
    explicit MyLabel(QWidget *parent = nullptr);
    ~MyLabel() override;

    /// Whether the label reacts at all. Turned off while hovered, it keeps its cursor.
    void setClickable(bool on);

signals:
    /// Any mouse button was pressed on the label.
    void clicked();
    /// The mouse came (true) or went (false).
    void hoverLabel(bool state);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    bool hovering = false;
    bool clickable = true;
};
