// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/my_slider.h"

#include "dataset/plugin_settings.h"

#include <QDebug>
#include <QFontMetrics>
#include <QPainter>

namespace
{

void logLabels(const QStringList &labels)
{
    const auto emptyLines = [] {
        for (int i = 0; i < 3; ++i)
            qDebug();
    };
    emptyLines();
    qDebug() << labels;
    emptyLines();
}

} // namespace

MySlider::MySlider(QWidget *parent) : QSlider(Qt::Horizontal, parent) {}

MySlider::~MySlider() = default;

void MySlider::setLabels(QStringList names)
{
    labels = std::move(names);
    if (PluginSettings::instance()->verboseLogging)
        logLabels(labels);
    setMaximum(labels.size());
}

void MySlider::paintEvent(QPaintEvent *event)
{
    QSlider::paintEvent(event);
    if (labels.isEmpty() || orientation() != Qt::Horizontal)
        return;

    QPainter painter(this);
    painter.setPen(Qt::black);
    const QFontMetrics metrics(font());
    const int numTicks = tickInterval() > 0 ? (maximum() - minimum()) / tickInterval() : 0;
    const int lastLabel = qMin(numTicks, labels.size() - 1);
    for (int i = 0; i <= lastLabel; ++i) {
        // The width of the tick's number, not of its label, is what shifts the label to the left.
        const QString number = QString::number(tickInterval() * i + minimum());
        const int x =
            numTicks > 0 ? geometry().width() / numTicks * i - metrics.horizontalAdvance(number) / 2
                         : 0;
        painter.save();
        painter.translate(x, 0);
        painter.rotate(90);
        painter.drawText(0, 0, labels[i]);
        painter.restore();
    }
}
