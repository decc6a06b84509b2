// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSlider>
#include <QStringList>

/// A horizontal slider that prints a name under each of its ticks, turned downwards. Its value is
/// the number of a name, counted from 1, once the minimum is set to 1.
class MySlider : public QSlider
{
    Q_OBJECT

public:
    explicit MySlider(QWidget *parent = nullptr);
    ~MySlider() override;

    /// Sets the names and the maximum to their number. The minimum stays.
    void setLabels(QStringList names);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QStringList labels;
};
