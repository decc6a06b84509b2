// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/line_chart.h"

#include "plots/plain_text.h"

#include <QFont>
#include <QFontMetrics>
#include <QFontMetricsF>
#include <QMainWindow>
#include <QSet>
#include <QtCharts/QBarCategoryAxis>

#include <algorithm>
#include <cmath>

using namespace QtCharts;

namespace
{

/// The names, the first of them filled up with spaces while none is as long as a line is high. The
/// axis takes an upright name to be no shorter than that, and cuts its own title where they all
/// are.
QStringList filledUp(QStringList names, const QFont &font)
{
    const QFontMetricsF metrics(font);
    const bool allAreShort =
        std::all_of(names.begin(), names.end(), [&metrics](const QString &name) {
            return metrics.horizontalAdvance(name) < metrics.height();
        });
    if (!allAreShort || names.isEmpty())
        return names;
    const QChar space(QChar::Nbsp);
    const qreal missing = metrics.height() - metrics.horizontalAdvance(names.first());
    names.first() += QString(int(std::ceil(missing / metrics.horizontalAdvance(space))), space);
    return names;
}

/// The names as the axis takes them, which is as rich text, with a zero-width space behind each
/// repetition: the axis drops names that it has.
QStringList distinctCategories(const QStringList &names)
{
    const QChar zeroWidthSpace(0x200b);
    QSet<QString> taken;
    QStringList categories;
    for (const QString &name : names) {
        QString category = name.isNull() ? QLatin1String("") : asRichText(name); // nor null texts
        while (taken.contains(category))
            category += zeroWidthSpace;
        taken.insert(category);
        categories += category;
    }
    return categories;
}

} // namespace

QChart *makeLineChart(const QString &title)
{
    auto *chart = new QChart;
    chart->createDefaultAxes();
    chart->setTitle(QStringLiteral("<b>%1</b>").arg(title));
    QFont font = chart->titleFont();
    font.setPixelSize(18);
    font.setWeight(QFont::Bold);
    chart->setTitleFont(font);
    return chart;
}

QChartView *makeLineChartView(QChart *chart, QMainWindow *window)
{
    auto *view = new QChartView(chart);
    view->setAccessibleName(QChartView::tr("Lines"));
    view->setRenderHint(QPainter::Antialiasing);
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(view, SIGNAL(customContextMenuRequested(const QPoint &)), window,
                     SLOT(showContextMenu(const QPoint &)));
    return view;
}

QLineSeries *makeLine(const std::vector<float> &values, const QString &name)
{
    QVector<QPointF> points;
    points.reserve(int(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isfinite(values[i]))
            points.append(QPointF(double(i), double(values[i])));
    }
    auto *line = new QLineSeries;
    line->replace(points);
    line->setName(name);
    line->setPointsVisible(true);
    return line;
}

void setCategoryAxis(QChart *chart, const QStringList &names, const QString &title, bool wholeRange)
{
    for (QAbstractAxis *old : chart->axes(Qt::Horizontal)) {
        chart->removeAxis(old);
        delete old;
    }
    auto *axis = new QBarCategoryAxis;
    chart->addAxis(axis, Qt::AlignBottom); // which gives it its font
    const QStringList categories = distinctCategories(filledUp(names, axis->labelsFont()));
    axis->append(categories);
    axis->setTitleText(title);
    if (wholeRange)
        axis->setRange(categories.first(), categories.last());
    axis->setLabelsAngle(90);
    for (QAbstractSeries *line : chart->series())
        line->attachAxis(axis);
}

void makeRoomForNames(QMainWindow *window, const QChart &chart, int widest)
{
    for (const QAbstractAxis *axis : chart.axes(Qt::Horizontal)) {
        const auto *const names = qobject_cast<const QBarCategoryAxis *>(axis);
        if (!names)
            continue;
        // The names stand upright, with a margin that the chart gives to each text.
        const int perName = QFontMetrics(names->labelsFont()).height() + 16;
        const int missing = names->count() * perName - int(chart.plotArea().width());
        if (missing > 0)
            window->resize(qMin(window->width() + missing, widest), window->height());
    }
}

void setValueTitle(QChart *chart, const QString &title)
{
    for (QAbstractAxis *axis : chart->axes(Qt::Vertical))
        axis->setTitleText(title);
}
