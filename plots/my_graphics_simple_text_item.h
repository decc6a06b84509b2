// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGraphicsTextItem>

/// A black text in a graphics scene that reports hovering, with a pointing hand as cursor.
class MyGraphicsSimpleTextItem : public QGraphicsTextItem
{
    Q_OBJECT

public:
    enum { Type = UserType + 1 };

    explicit MyGraphicsSimpleTextItem(QGraphicsItem *parent = nullptr);
    ~MyGraphicsSimpleTextItem() override;

    int type() const override { return Type; }

signals:
    /// The mouse came (true) or went (false).
    void hovering(bool state);

protected:
    void hoverEnterEvent(QGraphicsSceneHoverEvent *event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent *event) override;

private:
    bool hovered = false;
};
