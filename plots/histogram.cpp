// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/histogram.h"

#include <QFont>
#include <QGraphicsLayout>
#include <QtCharts/QLegend>

using namespace QtCharts;

Histogram::Histogram(QWidget *parent)
    : QChartView(parent), m_chart(new QChart), barSet(new QBarSet(QString(), this)),
      barSeries(new QBarSeries(this))
{
    qRegisterMetaType<QBarSet *>("QBarSet*");

    setAccessibleName(tr("Histogram"));
    setRenderHint(QPainter::Antialiasing);
    setAutoFillBackground(true);

    m_chart->legend()->hide();
    m_chart->createDefaultAxes();
    m_chart->setBackgroundRoundness(0.0);
    m_chart->layout()->setContentsMargins(0.0, 0.0, 0.0, 0.0);
    m_chart->setMargins(QMargins(2, 2, 2, 2));
    m_chart->setFont(QFont(QStringLiteral("Arial"), 6));
    m_chart->createDefaultAxes();

    for (int i = 0; i < bins; ++i)
        barSet->insert(i, 0.0);

    const QChart *const placeholder = chart();
    setChart(m_chart);
    delete placeholder;
}

Histogram::~Histogram() = default;

void Histogram::barHovered(bool status, int /*index*/, QBarSet * /*barSet*/)
{
    if (!status)
        return;
    // The sending set is what a bar's value will be read from.
    static_cast<void>(qobject_cast<QBarSet *>(sender()));
}
