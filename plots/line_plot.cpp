// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/line_plot.h"

#include "plots/condition_colors.h"
#include "plots/line_chart.h"
#include "plots/my_label.h"
#include "plots/save_dialog.h"
#include "ui_line_plot.h"

#include <QByteArray>
#include <QCheckBox>
#include <QMenu>
#include <QPen>
#include <QPointer>
#include <QTextStream>
#include <QVariant>
#include <QtCharts/QLegend>
#include <QtCharts/QValueAxis>

using namespace QtCharts;

namespace
{

const char *const rowProperty = "row";
const char *const defaultPenProperty = "default-pen";
const char *const fadeinPenProperty = "fadein-pen";
constexpr double fadedAlpha = 0.25;
constexpr int triggerKind = 1;
const QLatin1String allConditions("All");

QString colorBoxName(int row)
{
    return QStringLiteral("Colorbox%1").arg(row);
}

QColor faded(QColor color)
{
    color.setAlphaF(fadedAlpha);
    return color;
}

QPen linePen(const QColor &color)
{
    QPen pen(color);
    pen.setWidth(2);
    return pen;
}

QPen penProperty(const QLineSeries *line, const char *property)
{
    return line->property(property).value<QPen>();
}

void recolorPenProperty(QLineSeries *line, const char *property, const QColor &color)
{
    QPen pen = penProperty(line, property);
    pen.setColor(color);
    line->setProperty(property, pen);
}

} // namespace

LinePlot::LinePlot(QString plotTitle, QWidget *parent)
    : QMainWindow(parent, Qt::Window | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint),
      ui(std::make_unique<Ui::LinePlot>()), title(std::move(plotTitle))
{
    ui->setupUi(this);
    ui->dw_Sources->hide();
    // The menu of its docks could neither close the one nor show the other.
    setContextMenuPolicy(Qt::NoContextMenu);
}

LinePlot::~LinePlot()
{
    // The base class hides the window, which lets the mouse leave a label of the legend once more.
    for (MyLabel *label : findChildren<MyLabel *>())
        label->disconnect(this);
}

void LinePlot::prepareChart()
{
    chart = makeLineChart(title);
    chartView = makeLineChartView(chart, this);
    ui->horizontalLayout->addWidget(chartView);
}

void LinePlot::addSeries(std::vector<float> values, QString name, int kind)
{
    if (name.isEmpty())
        name = QStringLiteral("Series %1").arg(series.size() + 1);
    QLineSeries *line = makeLine(values, name);
    chart->addSeries(line);
    series.append(line);

    // The chart has just given the line a colour of its theme.
    line->setProperty(defaultPenProperty, linePen(line->color()));
    line->setProperty(fadeinPenProperty, linePen(faded(line->color())));

    addLegendRow(series.size() - 1, *line, kind);
    if (kind == triggerKind)
        line->setVisible(false);
}

void LinePlot::addLegendRow(int row, const QLineSeries &line, int kind)
{
    auto *colorBox = new MyLabel(this);
    colorBox->setProperty(rowProperty, row);
    colorBox->setObjectName(colorBoxName(row));
    colorBox->setStyleSheet(backgroundStyle(line.color()));

    auto *label = new MyLabel(this);
    label->setProperty(rowProperty, row);
    label->setText(kind == triggerKind ? QStringLiteral("Trigger: ") + line.name() : line.name());

    auto *checkBox = new QCheckBox(this);
    checkBox->setProperty(rowProperty, row);
    checkBox->setTristate(false);
    checkBox->setChecked(true);
    checkBox->setAccessibleName(label->text());

    if (kind == triggerKind) {
        colorBox->setClickable(false);
        label->setClickable(false);
        checkBox->hide();
    }

    ui->gridLayoutAll->addWidget(colorBox, row, 0, Qt::AlignVCenter);
    ui->gridLayoutAll->addWidget(label, row, 1, Qt::AlignVCenter | Qt::AlignLeft);
    ui->gridLayoutAll->addWidget(checkBox, row, 2, Qt::AlignVCenter | Qt::AlignRight);
    setTabOrder(checkBox, chartView); // the whole legend comes before the chart

    if (kind == 0) {
        connect(colorBox, &MyLabel::hoverLabel, this, &LinePlot::highlightLineSeries);
        connect(label, &MyLabel::hoverLabel, this, &LinePlot::highlightLineSeries);
        connect(checkBox, &QCheckBox::stateChanged, this, &LinePlot::toggleLineSeries);
    }
}

void LinePlot::finishPlot(QStringList labels, bool conditions)
{
    chart->createDefaultAxes();
    chart->legend()->hide();
    if (labels.isEmpty())
        setVoxelAxis();
    else
        setCategoryAxis(chart, labels, QStringLiteral("VOIs"), true);
    setValueTitle(chart, windowTitle());
    if (conditions)
        colorConditions();
    chartView->update();
}

void LinePlot::setVoxelAxis()
{
    const int points = series.isEmpty() ? 0 : series.first()->count();
    for (QAbstractAxis *axis : chart->axes(Qt::Horizontal)) {
        auto *values = qobject_cast<QValueAxis *>(axis);
        values->setTickCount(points > 50 ? 10 : points);
        values->setLabelFormat(QStringLiteral("%i"));
        values->setTitleText(QStringLiteral("Voxels"));
    }
}

void LinePlot::colorConditions()
{
    QStringList names;
    for (const QLineSeries *line : qAsConst(series))
        names += line->name();
    const QHash<QString, QColor> colors = conditionColors(names);

    names.removeDuplicates();
    names.sort(Qt::CaseSensitive);
    ui->cbox_Conditions->addItem(allConditions, allConditions);
    for (const QString &name : qAsConst(names))
        ui->cbox_Conditions->addItem(name, name);

    for (int row = 0; row < series.size(); ++row) {
        QLineSeries *line = series[row];
        const QColor color = colors.value(line->name());
        line->setColor(color);
        if (auto *colorBox = findChild<MyLabel *>(colorBoxName(row)))
            colorBox->setStyleSheet(backgroundStyle(color));
        recolorPenProperty(line, defaultPenProperty, color);
        recolorPenProperty(line, fadeinPenProperty, faded(color));
    }
}

void LinePlot::disableConditions()
{
    ui->cbox_Conditions->setEnabled(false);
    ui->btn_Show->setEnabled(false);
    ui->btn_Hide->setEnabled(false);
}

void LinePlot::showWhole()
{
    ui->scrollArea->setMinimumHeight(ui->scrollAreaWidgetContents->sizeHint().height());
    show();
    // The dock has a size of its own, so that the window does not follow its contents.
    const QMargins margins = ui->verticalLayout->contentsMargins();
    const int needed = height() - ui->dockWidgetContents->height() + margins.top() +
                       ui->groupBox->minimumSizeHint().height() + ui->verticalLayout->spacing() +
                       margins.bottom();
    resize(width(), qMax(height(), needed));
    makeRoomForNames(this, *chart, widestPicture);
}

QPixmap LinePlot::picture()
{
    return ui->cbox_Conditions->isEnabled() ? grab() : chartView->grab();
}

int LinePlot::senderRow() const
{
    const QVariant row = sender() ? sender()->property(rowProperty) : QVariant();
    return row.isValid() && row.toInt() < series.size() ? row.toInt() : -1;
}

void LinePlot::highlightLineSeries(bool state)
{
    const int row = senderRow();
    if (row < 0 || !series[row]->isVisible())
        return;
    for (QLineSeries *line : qAsConst(series))
        line->setPen(penProperty(line, state ? fadeinPenProperty : defaultPenProperty));
    if (state)
        series[row]->setPen(penProperty(series[row], defaultPenProperty));
}

void LinePlot::toggleLineSeries(int state)
{
    const int row = senderRow();
    if (row >= 0)
        series[row]->setVisible(state != 0);
}

void LinePlot::conditionsShow()
{
    setConditionVisible(true);
}

void LinePlot::conditionsHide()
{
    setConditionVisible(false);
}

void LinePlot::setConditionVisible(bool visible)
{
    const QString condition = ui->cbox_Conditions->currentData(Qt::UserRole).toString();
    for (QLineSeries *line : qAsConst(series)) {
        if (condition == allConditions || condition == line->name())
            line->setVisible(visible);
    }
}

void LinePlot::showContextMenu(QPoint pos)
{
    QPointer<QMenu> menu = new QMenu(this);
    menu->addAction(QStringLiteral("Export to image..."), this, &LinePlot::saveImage);
    menu->addAction(QStringLiteral("Export to CSV..."), this, &LinePlot::saveCSV);
    menu->exec(mapToGlobal(pos));
    delete menu;
}

void LinePlot::saveImage()
{
    const QString path = askForTarget(this, QStringLiteral("PNG (*.png)"), QStringLiteral(".png"));
    if (!path.isEmpty())
        savePicture(chartView->grab(), path);
}

void LinePlot::saveCSV()
{
    const QString path = askForTarget(this, QStringLiteral("Comma-separated values (*.csv)"),
                                      QStringLiteral(".csv"));
    if (path.isEmpty())
        return;
    QByteArray text;
    QTextStream stream(&text);
    if (!series.isEmpty()) {
        const QVector<QPointF> points = series.first()->pointsVector();
        for (int i = 0; i < points.size(); ++i)
            stream << (i > 0 ? "," : "") << points[i].y();
    }
    stream.flush();
    saveFile(text, path);
}
