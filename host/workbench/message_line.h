// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace corvane
{

/// A line below a field that tells what was found there, or what is wrong. It is as high without a
/// text, so that nothing moves; a text without room ends in dots and stands in the tool tip.
class MessageLine : public QWidget
{
    Q_OBJECT

public:
    explicit MessageLine(QWidget *parent = nullptr);

    QString text() const { return m_text; }
    void show(const QString &text, bool isFault);
    using QWidget::show;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_text;
    bool m_isFault = false;
};

/// Readable on light and on dark palettes.
QColor faultColour(const QPalette &palette);

} // namespace corvane
