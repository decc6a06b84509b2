// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHeaderView>

/// A horizontal header with its texts turned by 90 degrees, for columns narrower than their names.
class VerticalHeaderView : public QHeaderView
{
    Q_OBJECT

public:
    explicit VerticalHeaderView(QWidget *parent = nullptr);
    ~VerticalHeaderView() override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const override;
};
