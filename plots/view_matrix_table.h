// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTableWidget>

/// A table that says when the mouse leaves it.
class ViewMatrixTable : public QTableWidget
{
    Q_OBJECT

public:
    explicit ViewMatrixTable(QWidget *parent = nullptr);
    ~ViewMatrixTable() override;

signals:
    void mouseLeave();

protected:
    void leaveEvent(QEvent *event) override;
};
