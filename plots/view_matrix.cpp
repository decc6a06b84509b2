// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/view_matrix.h"

#include "engine/connectivity_object.h"
#include "plots/color_map.h"
#include "plots/condition_colors.h"
#include "plots/connectivity_matrix_widget_rect.h"
#include "plots/my_label.h"
#include "plots/plot_source.h"
#include "plots/vertical_header_view.h"
#include "ui_view_matrix.h"

#include <QAbstractItemDelegate>
#include <QGraphicsScene>
#include <QPainter>
#include <QTableWidgetItem>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace
{

constexpr int cellLength = 15;
constexpr int squareLength = 10;                      // of a cell in the overview's scene
constexpr double sceneLength = 1160.0;                // room for 116 squares
constexpr double overviewScale = 0.21120689655172414; // 245 pixels for the whole scene
constexpr int legendBoxes = 10;
constexpr int conditionWidth = 40; // at most, of the colour and of the time

const char *const rowProperty = "row";

QString fillStyle(const QColor &color)
{
    return QStringLiteral("background: rgb(%1, %2, %3);")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue());
}

/// A cell is its colour, whatever has the focus and wherever the mouse is.
class CellDelegate : public QAbstractItemDelegate
{
public:
    using QAbstractItemDelegate::QAbstractItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        painter->fillRect(option.rect, index.data(Qt::BackgroundRole).value<QBrush>());
    }
    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return {cellLength, cellLength};
    }
};

/// The labels of n rows or columns.
QStringList namesOf(const QStringList &labels, Eigen::Index n)
{
    QStringList names;
    for (int i = 0; i < n; ++i)
        names += nameAt(labels, i);
    return names;
}

void sizeHeader(QHeaderView *header)
{
    header->setMinimumSectionSize(cellLength); // or the font would make the cells larger
    header->setDefaultSectionSize(cellLength);
    header->setSectionResizeMode(QHeaderView::Fixed);
    header->setStyleSheet(QStringLiteral("QHeaderView { font-family: arial; font-size: 10px;}"));
    header->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

QSpacerItem *legendSpacer()
{
    return new QSpacerItem(1, 1, QSizePolicy::Expanding, QSizePolicy::Fixed);
}

} // namespace

ValueRange valueRange(const std::vector<Eigen::MatrixXf> &matrices)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    ValueRange range{nan, nan};
    for (const Eigen::MatrixXf &matrix : matrices) {
        for (const float value : matrix.reshaped()) {
            // These two take the other argument where one is NaN.
            range.minimum = std::fmin(range.minimum, double(value));
            range.maximum = std::fmax(range.maximum, double(value));
        }
    }
    return range;
}

ViewMatrix::ViewMatrix(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::ViewMatrix>()),
      minimum(std::numeric_limits<double>::quiet_NaN()), maximum(minimum)
{
    ui->setupUi(this);
    ui->tableMatrix->setAttribute(Qt::WA_MouseTracking);
    ui->groupBox_Histogram->hide();
    ui->groupBox_Visualization->hide();
    connect(ui->tableMatrix, &QTableWidget::cellEntered, this, &ViewMatrix::pickValue);
    connect(ui->tableMatrix, &ViewMatrixTable::mouseLeave, this, &ViewMatrix::clearPickValue);
    ui->tableMatrix->setItemDelegate(new CellDelegate(ui->tableMatrix));
    ui->tableMatrix->setHorizontalHeader(new VerticalHeaderView(ui->tableMatrix));
    clearTable();
    updateGeometry();
}

ViewMatrix::~ViewMatrix()
{
    // The base class hides the window, which lets the mouse leave the table once more.
    ui->tableMatrix->disconnect(this);
}

void ViewMatrix::setConditionNames(QStringList names)
{
    conditionNames = std::move(names);
}

void ViewMatrix::setConditionTimes(QList<int> times)
{
    conditionTimes = std::move(times);
}

void ViewMatrix::setLabels(QStringList names)
{
    labels = std::move(names);
}

void ViewMatrix::loadRange()
{
    const ConnectivityObject *const object = connectivityObjectOf(this);
    if (!object)
        return;
    const std::vector<Eigen::MatrixXf> matrices = object->matrices();
    if (matrices.empty())
        return;
    matrix = matrices.front();
    const ValueRange range = valueRange(matrices);
    minimum = range.minimum;
    maximum = range.maximum;
}

void ViewMatrix::fillTable()
{
    QTableWidget *const table = ui->tableMatrix;
    table->setProperty("previous-selected-row", -1);
    table->setProperty("previous-selected-col", -1);
    table->setRowCount(int(matrix.rows()));
    table->setColumnCount(int(matrix.cols()));
    table->setHorizontalHeaderLabels(namesOf(labels, matrix.cols()));
    table->setVerticalHeaderLabels(namesOf(labels, matrix.rows()));

    cells.fill(QVector<MatrixCell>(int(matrix.cols())), int(matrix.rows()));
    for (int r = 0; r < matrix.rows(); ++r) {
        for (int c = 0; c < matrix.cols(); ++c) {
            const double value = double(matrix(r, c));
            table->setItem(r, c, new QTableWidgetItem);
            cells[r][c] = {value, QString::number(value, 'g', 6), valueToColor(value)};
            cellBrush = QBrush(cells[r][c].color, Qt::SolidPattern);
        }
    }
    sizeTable();
}

void ViewMatrix::sizeTable()
{
    ui->tableMatrix->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
    sizeHeader(ui->tableMatrix->horizontalHeader());
    sizeHeader(ui->tableMatrix->verticalHeader());
}

void ViewMatrix::paintTable()
{
    for (int r = 0; r < cells.size(); ++r) {
        for (int c = 0; c < cells[r].size(); ++c) {
            QTableWidgetItem *const item = ui->tableMatrix->item(r, c);
            item->setText(QString());
            item->setBackground(QBrush(cells[r][c].color, Qt::SolidPattern));
        }
    }
}

void ViewMatrix::clearTable()
{
    ui->tableMatrix->clearContents(); // deletes all items
    cells.clear();
}

void ViewMatrix::drawOverview()
{
    const QRectF whole(0, 0, sceneLength, sceneLength);
    delete ui->graphicsView->scene();
    auto *const scene = new QGraphicsScene(whole, ui->graphicsView);
    ui->graphicsView->setSceneRect(whole);
    // A square shows the entry that mirrors the one it leads to.
    for (int o = 0; o < matrix.rows(); ++o) {
        for (int i = 0; i < matrix.cols(); ++i) {
            auto *const square = new ConnectivityMatrixWidgetRect;
            square->setTable(ui->tableMatrix);
            square->setRow(i);
            square->setColumn(o);
            square->setBrush(QBrush(valueToColor(double(matrix(o, i))), Qt::SolidPattern));
            square->setPen(QPen(Qt::NoPen));
            square->setRect(o * squareLength, i * squareLength, squareLength, squareLength);
            scene->addItem(square);
        }
    }
    ui->graphicsView->setScene(scene);
    ui->graphicsView->show();
    ui->graphicsView->setTransform(QTransform::fromScale(overviewScale, overviewScale));
}

void ViewMatrix::buildLegend()
{
    ui->groupbox_Legend->setStyleSheet(QStringLiteral("border: 0px;"));
    const double step = (maximum - minimum) / legendBoxes;
    ui->horizontalLayout_4->addSpacerItem(legendSpacer());
    for (int k = 0; k < legendBoxes; ++k) {
        const double value = maximum - k * step;
        auto *const box = new QLabel(ui->groupbox_Legend);
        box->setFixedSize(cellLength, cellLength);
        box->setStyleSheet(fillStyle(valueToColor(value)));
        auto *const text = new QLabel(ui->groupbox_Legend);
        if (k == 0 || k == legendBoxes - 1) {
            text->setText(QString::number(std::round(value), 'g', 6));
            text->setStyleSheet(QStringLiteral("font-size: 8px;"));
        }

        auto *const column = new QVBoxLayout;
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(0);
        column->addWidget(box);
        column->addWidget(text);
        ui->horizontalLayout_4->addLayout(column);
    }
    ui->horizontalLayout_4->addSpacerItem(legendSpacer());
}

void ViewMatrix::buildConditionList()
{
    if (conditionNames.isEmpty()) {
        ui->gridLayout_Conditions->addWidget(new QLabel(tr("No protocol loaded.")), 0, 0);
        return;
    }
    const QHash<QString, QColor> colors = conditionColors(conditionNames);
    const ConnectivityObject *const object = connectivityObjectOf(this);
    const QList<int> events = object && object->subject()
                                  ? object->subject()->protocol().volumeEvents.values()
                                  : QList<int>();
    for (int entry = 0; entry < conditionNames.size(); ++entry)
        addCondition(entry, colors.value(conditionNames[entry]), events.value(entry) != 0);
}

void ViewMatrix::addCondition(int entry, const QColor &color, bool isEvent)
{
    auto *const colorLabel = new MyLabel(this);
    colorLabel->setProperty(rowProperty, entry);
    colorLabel->setStyleSheet(backgroundStyle(color));
    colorLabel->setMaximumWidth(conditionWidth);

    const QString &name = conditionNames[entry];
    auto *const nameLabel = new MyLabel(this);
    nameLabel->setProperty(rowProperty, entry);
    nameLabel->setText(isEvent ? QStringLiteral("Trigger: %1").arg(name) : name);

    auto *const timeLabel = new QLabel(QString::number(conditionTimes.value(entry), 10), this);
    timeLabel->setToolTip(QStringLiteral("in TR"));
    timeLabel->setMaximumWidth(conditionWidth);

    QGridLayout *const grid = ui->gridLayout_Conditions;
    grid->addWidget(colorLabel, entry, 0, Qt::AlignVCenter);
    grid->addWidget(nameLabel, entry, 1, Qt::AlignLeft | Qt::AlignVCenter);
    grid->addWidget(timeLabel, entry, 2, Qt::AlignRight | Qt::AlignVCenter);

    for (MyLabel *const label : {colorLabel, nameLabel}) {
        if (isEvent)
            label->setClickable(false); // there is no matrix worth a look
        else
            connect(label, &MyLabel::clicked, this, &ViewMatrix::browseMatrix);
    }
}

void ViewMatrix::browseMatrix()
{
    if (const auto *const label = qobject_cast<MyLabel *>(sender()))
        showSlice(label->property(rowProperty).toInt());
}

void ViewMatrix::showSlice(int slice)
{
    clearTable();
    if (QGraphicsScene *const scene = ui->graphicsView->scene())
        scene->clear();
    ui->graphicsView->viewport()->update();

    const ConnectivityObject *const object = connectivityObjectOf(this);
    if (!object)
        return;
    const std::vector<Eigen::MatrixXf> matrices = object->matrices();
    const auto position = std::size_t(slice);
    if (position >= matrices.size())
        return;
    matrix = matrices[position];
    fillTable();
    paintTable();
    drawOverview();
}

QPixmap ViewMatrix::tablePicture()
{
    QTableWidget *const table = ui->tableMatrix;
    const QHeaderView *const rowNames = table->verticalHeader();
    const QHeaderView *const columnNames = table->horizontalHeader();
    const QSize cellArea(columnNames->length(), rowNames->length());
    resize(size() + (cellArea - table->viewport()->size()).expandedTo(QSize(0, 0)));
    return table->grab(
        QRect(QPoint(0, 0), cellArea + QSize(rowNames->width(), columnNames->height())));
}

QPixmap ViewMatrix::overviewPicture()
{
    return ui->graphicsView->grab();
}

void ViewMatrix::pickValue(int x, int y)
{
    if (x >= cells.size() || y >= cells[x].size())
        return; // the table was cleared
    const MatrixCell &cell = cells[x][y];
    ui->lbl_Color->setStyleSheet(fillStyle(cell.color));
    ui->lbl_Value->setText(cell.text);
}

void ViewMatrix::clearPickValue()
{
    ui->lbl_Color->setStyleSheet(QString());
    ui->lbl_Value->setText(QString());
}
