// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/circular_plot.h"

#include "engine/connectivity_object.h"
#include "plots/circular_plot_widget.h"
#include "plots/picture_export.h"
#include "plots/plot_source.h"
#include "ui_circular_plot.h"

#include <QCloseEvent>
#include <QMenu>
#include <QMutexLocker>
#include <QPointer>

namespace
{

/// The subject's protocol, or an empty one.
SubjectProtocol protocolOf(const ConnectivityObject &object)
{
    return object.subject() ? object.subject()->protocol() : SubjectProtocol();
}

/// The elements of a matrix in the order in which they are stored.
std::vector<int> elementsOf(const Eigen::MatrixXi &tree)
{
    return {tree.data(), tree.data() + tree.size()};
}

} // namespace

QVariantHash sliceDescription(const ConnectivityObject &object, int slice)
{
    const SubjectProtocol protocol = protocolOf(object);
    const QList<int> types = protocol.volumeEvents.values();
    QVariantHash description = {{QStringLiteral("slice"), slice}};
    std::vector<int> tree;
    if (!types.isEmpty()) {
        description.insert(QStringLiteral("condition_str"),
                           nameAt(protocol.volumeNames.values(), slice));
        description.insert(QStringLiteral("condition_type"), types.value(slice));
        if (object.mstComputed())
            tree = elementsOf(object.mstTrees().at(std::size_t(slice)));
    }
    description.insert(QStringLiteral("mst"), QVariant::fromValue(tree));
    return description;
}

CircularPlot::CircularPlot(QWidget *parent)
    : QMainWindow(parent), ui(std::make_unique<Ui::CircularPlotWindow>()),
      widget(new CircularPlotWidget(this))
{
    ui->setupUi(this);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, &CircularPlot::showContextMenu);
    ui->mainVLayout->insertWidget(0, widget, 0);
    setupConditionSlider();
}

CircularPlot::~CircularPlot() = default;

CircularPlotWidget *CircularPlot::plotWidget() const
{
    return widget;
}

void CircularPlot::setupConditionSlider()
{
    const ConnectivityObject *const object = connectivityObjectOf(this);
    if (!object)
        return;
    const QStringList names = object->volumeNames().values();
    if (object->subject() && object->subject()->useProtocol() && !names.isEmpty()) {
        ui->hSlider_Conditions->setLabels(names);
        return;
    }
    ui->hSlider_Conditions->hide();
    ui->horizontalSpacer->changeSize(0, 0, QSizePolicy::Minimum, QSizePolicy::Minimum);
    ui->horizontalSpacer_2->changeSize(0, 0, QSizePolicy::Minimum, QSizePolicy::Minimum);
    ui->hLayout_Conditions->invalidate();
}

void CircularPlot::updateLabels()
{
    const ConnectivityObject *const object = connectivityObjectOf(this);
    if (object && object->subject())
        widget->setLabels(object->subject()->voiLabels(false));
}

void CircularPlot::plotFirstSlice()
{
    if (const ConnectivityObject *const object = connectivityObjectOf(this))
        plotSlice(*object, 0);
}

void CircularPlot::valueChanged()
{
    const QMutexLocker lock(&mutex);
    const auto *const slider = qobject_cast<MySlider *>(sender());
    const ConnectivityObject *const object = connectivityObjectOf(this);
    if (slider && object)
        plotSlice(*object, slider->value() - 1);
}

void CircularPlot::plotSlice(const ConnectivityObject &object, int slice)
{
    const std::vector<Eigen::MatrixXf> matrices = object.matrices();
    const auto position = std::size_t(slice);
    if (position >= matrices.size())
        return;

    const QVariantHash description = sliceDescription(object, slice);
    const int type = description.value(QStringLiteral("condition_type")).toInt();
    widget->plotSlice(matrices[position], type, description);
}

void CircularPlot::displayRangeChanged(int l, int u)
{
    const QMutexLocker lock(&mutex);
    widget->setDisplayRange(l / 1000.0, u / 1000.0);
    widget->update();
}

void CircularPlot::showContextMenu(QPoint pos)
{
    QPointer<QMenu> menu = new QMenu(this);
    menu->setStyleSheet(neutralStyleSheet());
    menu->addAction(tr("Export to image..."), this, &CircularPlot::saveImage);
    menu->exec(mapToGlobal(pos));
    delete menu;
}

void CircularPlot::saveImage()
{
    exportPicture(this, widget);
}

void CircularPlot::closeEvent(QCloseEvent *event)
{
    QWidget::closeEvent(event);
    emit closingWindow();
}
