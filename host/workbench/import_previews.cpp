// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/import_previews.h"

#include "host/workbench/condition_colours.h"
#include "host/workbench/import_run_mean.h"
#include "host/workbench/voi_overlay.h"
#include "host/workbench/volume_slices.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPainter>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>

namespace corvane
{

namespace
{

const SlicePlane planes[] = {SlicePlane::Sagittal, SlicePlane::Coronal, SlicePlane::Axial};

int middle(const FunctionalGrid &grid, int axis)
{
    const auto n = static_cast<std::size_t>(axis);
    return std::clamp(grid.start[n] + grid.resolution * (grid.size[n] / 2), 0, Vmr::size - 1);
}

} // namespace

// ---- grids

/// The slices themselves.
class GridPicture : public QWidget
{
public:
    explicit GridPicture(QWidget *parent) : QWidget(parent)
    {
        setObjectName(QStringLiteral("gridPicture"));
    }

    void show(const Vmr &anatomy, const FunctionalGrid &grid, const SliceLayers &layers)
    {
        m_grid = grid;
        m_slices.clear();
        const GreyWindow window = automaticWindow(anatomy);
        for (std::size_t n = 0; n < std::size(planes); ++n) {
            const PlaneAxes axes = axesOf(planes[n]);
            m_slices += sliceImage(anatomy, planes[n], middle(grid, axes.through), window, layers);
            m_ends[n] = {axisEnds(anatomy, axes.across), axisEnds(anatomy, axes.down)};
        }
        update();
    }
    void clear()
    {
        m_slices.clear();
        update();
    }

    QSize sizeHint() const override { return {540, 190}; }
    QSize minimumSizeHint() const override { return {300, 110}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void paintLetters(QPainter &painter, std::size_t plane, double side) const;

    QList<QImage> m_slices;
    std::array<std::pair<AxisEnds, AxisEnds>, 3> m_ends; ///< across and down, of each slice
    FunctionalGrid m_grid;
};

void GridPicture::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (m_slices.isEmpty()) {
        painter.fillRect(rect(), palette().base());
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(rect(), Qt::AlignCenter, tr("No grids yet"));
        return;
    }
    painter.fillRect(rect(), Qt::black);
    const double side = std::min(width() / 3.0, double(height()));
    const double scale = side / Vmr::size;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (int n = 0; n < m_slices.size(); ++n) {
        const QPointF corner(width() / 2.0 + (n - 1.5) * side, (height() - side) / 2);
        painter.drawImage(QRectF(corner, QSizeF(side, side)), m_slices[n]);

        const PlaneAxes axes = axesOf(planes[n]);
        // Samples stand in the middle of what they cover.
        const auto edge = [&](int axis, int index) {
            const auto a = static_cast<std::size_t>(axis);
            return (m_grid.start[a] + m_grid.resolution * (index - 0.5) + 0.5) * scale;
        };
        const auto count = [&](int axis) { return m_grid.size[static_cast<std::size_t>(axis)]; };
        const double left = edge(axes.across, 0);
        const double right = edge(axes.across, count(axes.across));
        const double top = edge(axes.down, 0);
        const double bottom = edge(axes.down, count(axes.down));
        painter.save();
        painter.translate(corner);
        painter.setClipRect(QRectF(0, 0, side, side));
        painter.setPen(QColor(120, 200, 255, 60));
        // Every line where there is room, else every fifth, ...
        int step = 1;
        while (step * m_grid.resolution * scale < 4)
            step *= 5;
        for (int i = 0; i <= count(axes.across); i += step)
            painter.drawLine(QPointF(edge(axes.across, i), top),
                             QPointF(edge(axes.across, i), bottom));
        for (int j = 0; j <= count(axes.down); j += step)
            painter.drawLine(QPointF(left, edge(axes.down, j)), QPointF(right, edge(axes.down, j)));
        painter.setPen(QPen(QColor(120, 200, 255), 1.5));
        painter.drawRect(QRectF(QPointF(left, top), QPointF(right, bottom)));
        paintLetters(painter, static_cast<std::size_t>(n), side);
        painter.restore();
    }
}

void GridPicture::paintLetters(QPainter &painter, std::size_t plane, double side) const
{
    const auto &[across, down] = m_ends[plane];
    const QRectF inner = QRectF(0, 0, side, side).adjusted(3, 1, -3, -1);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(std::clamp(static_cast<int>(side / 10), 8, 14));
    painter.setFont(font);
    const std::pair<Qt::Alignment, QString> letters[] = {
        {Qt::AlignLeft | Qt::AlignVCenter, across.low},
        {Qt::AlignRight | Qt::AlignVCenter, across.high},
        {Qt::AlignHCenter | Qt::AlignTop, down.low},
        {Qt::AlignHCenter | Qt::AlignBottom, down.high}};
    for (const auto &[place, letter] : letters) {
        painter.fillRect(painter.boundingRect(inner, static_cast<int>(place), letter), Qt::black);
        painter.drawText(inner, static_cast<int>(place), letter);
    }
}

GridPreview::GridPreview(QWidget *parent) : QWidget(parent), m_picture(new GridPicture(this))
{
    setAccessibleName(tr("Grid of the run over the anatomy"));
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(m_picture, 1);
    makeControls();
    column->addWidget(m_controls);
    clear();
}

// A mean that is still being read is waited for until its next volume.
GridPreview::~GridPreview() = default;

void GridPreview::makeControls()
{
    m_controls = new QWidget;
    auto *const row = new QHBoxLayout(m_controls);
    row->setContentsMargins(0, 0, 0, 0);
    m_showsVois = new QCheckBox(tr("VOIs"));
    m_showsVois->setObjectName(QStringLiteral("previewVois"));
    m_showsVois->setChecked(true);
    m_showsRun = new QCheckBox(tr("Mean of the run"));
    m_showsRun->setObjectName(QStringLiteral("previewRun"));
    m_opacity = new QSlider(Qt::Horizontal);
    m_opacity->setObjectName(QStringLiteral("previewOpacity"));
    m_opacity->setAccessibleName(tr("Opacity of the mean in percent"));
    m_opacity->setToolTip(tr("How strongly the mean of the run covers the anatomy"));
    m_opacity->setRange(0, 100);
    m_opacity->setValue(60);
    m_colours = new QComboBox;
    m_colours->setObjectName(QStringLiteral("previewColours"));
    m_colours->setAccessibleName(tr("Colours of the mean"));
    m_colours->addItems(colourMapNames());
    for (QWidget *control :
         {static_cast<QWidget *>(m_showsVois), static_cast<QWidget *>(m_showsRun)})
        row->addWidget(control);
    row->addWidget(m_opacity, 1);
    row->addWidget(m_colours);
    connect(m_showsVois, &QCheckBox::toggled, this, &GridPreview::paint);
    connect(m_showsRun, &QCheckBox::toggled, this, &GridPreview::paint);
    connect(m_opacity, &QSlider::valueChanged, this, &GridPreview::paint);
    connect(m_colours, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this] { takeMean(m_mean); });
}

void GridPreview::show(const ImportPlan &plan)
{
    m_anatomy = plan.anatomy;
    m_grid = plan.grid;
    m_vois = std::make_shared<const VoiOverlay>(plan.vois,
                                                std::vector<bool>(plan.vois.vois.size(), true));
    m_controls->setEnabled(true);
    m_mean.clear();
    takeMean({});
    m_reader.ask(
        [path = plan.request.functional, grid = plan.grid](const std::atomic<bool> &isOutdated) {
            try {
                return meanBeforeImport(path, grid, isOutdated);
            } catch (const std::exception &) {
                return std::vector<double>(); // the import tells what is wrong
            }
        },
        [this](const TimeCourseReader::Samples &mean) { takeMean(mean); });
}

void GridPreview::takeMean(const std::vector<double> &mean)
{
    m_mean = mean;
    m_run.reset();
    if (!mean.empty())
        m_run = std::make_shared<const RunOverlay>(
            RunLattice{m_grid.start, m_grid.size, m_grid.resolution}, mean,
            static_cast<ColourMap>(m_colours->currentIndex()));
    m_showsRun->setEnabled(m_run != nullptr);
    m_showsRun->setToolTip(m_run != nullptr ? QString() : tr("The run is being read."));
    paint();
}

void GridPreview::clear()
{
    m_reader.forget();
    m_mean.clear();
    m_run.reset();
    m_vois.reset();
    m_anatomy = Vmr();
    m_controls->setEnabled(false);
    m_picture->clear();
}

void GridPreview::paint()
{
    const bool showsRun = m_showsRun->isChecked() && m_run != nullptr;
    m_opacity->setEnabled(showsRun);
    m_colours->setEnabled(showsRun);
    if (m_anatomy.voxels == nullptr)
        return;
    SliceLayers layers;
    layers.vois = m_showsVois->isChecked() ? m_vois.get() : nullptr;
    layers.voiOpacity = 0.6;
    layers.run = showsRun ? m_run.get() : nullptr;
    layers.runOpacity = m_opacity->value() / 100.0;
    m_picture->show(m_anatomy, m_grid, layers);
}

// ---- conditions

ConditionTimeline::ConditionTimeline(QWidget *parent) : QWidget(parent)
{
    setAccessibleName(tr("Conditions over the volumes"));
}

void ConditionTimeline::show(const Prt &protocol, int volumes)
{
    m_protocol = protocol;
    m_volumes = volumes;
    QStringList texts;
    for (const PrtCondition &condition : protocol.conditions)
        texts += tr("%1: %n interval(s)", nullptr, static_cast<int>(condition.intervals.size()))
                     .arg(condition.name);
    setAccessibleDescription(texts.join(QStringLiteral(", ")));
    updateGeometry();
    update();
}

QSize ConditionTimeline::sizeHint() const
{
    // Below that a short interval can't be told from the next one.
    constexpr double leastPerVolume = 1.5;
    const int rows = static_cast<int>(m_protocol.conditions.size());
    return {std::max(200, static_cast<int>(namesWidth() + leastPerVolume * m_volumes)),
            (rows + 1) * (fontMetrics().height() + 2)};
}

/// The longest name, within reason, and what stands around it.
int ConditionTimeline::namesWidth() const
{
    int names = 0;
    for (const PrtCondition &condition : m_protocol.conditions)
        names = std::max(names, fontMetrics().horizontalAdvance(condition.name));
    return std::min(names, 20 * fontMetrics().averageCharWidth()) + 14;
}

void ConditionTimeline::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    const int line = fontMetrics().height() + 2;
    painter.setPen(palette().color(QPalette::Text));
    if (m_protocol.conditions.empty()) {
        painter.drawText(rect(), Qt::AlignCenter, tr("No conditions"));
        return;
    }
    const double left = namesWidth();
    const double perVolume = (width() - left - 6) / std::max(m_volumes, 1);
    int y = 0;
    for (std::size_t n = 0; n < m_protocol.conditions.size(); ++n, y += line) {
        const PrtCondition &condition = m_protocol.conditions[n];
        painter.drawText(
            QRectF(4, y, left - 10, line), Qt::AlignVCenter,
            fontMetrics().elidedText(condition.name, Qt::ElideRight, static_cast<int>(left - 10)));
        for (const auto &[from, to] : condition.intervals)
            painter.fillRect(QRectF(left + (from - 1) * perVolume, y + 2,
                                    std::max(1.0, (to - from + 1) * perVolume), line - 4),
                             conditionColour(condition.name));
    }
    painter.drawText(QRectF(left, y, width() - left - 6, line), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("1"));
    painter.drawText(QRectF(left, y, width() - left - 6, line), Qt::AlignCenter, tr("Volume"));
    painter.drawText(QRectF(left, y, width() - left - 6, line), Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(m_volumes));
}

// ---- motion

MotionPreview::MotionPreview(QWidget *parent) : QWidget(parent)
{
    setAccessibleName(tr("Framewise displacement and volumes that are left out"));
}

void MotionPreview::show(const VolumeChoice &choice)
{
    m_choice = choice;
    const auto gone = std::count(choice.leftOut.begin(), choice.leftOut.end(), true);
    setAccessibleDescription(
        tr("%1 of %2 volumes are left out").arg(gone).arg(choice.leftOut.size()));
    update();
}

void MotionPreview::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    double largest = m_choice.fdThreshold;
    for (const double value : m_choice.displacement)
        largest = std::max(largest, std::isfinite(value) ? value : 0);
    painter.setPen(palette().color(QPalette::Text));
    if (!(largest > 0)) {
        painter.drawText(rect(), Qt::AlignCenter, tr("Framewise displacement is not known"));
        return;
    }
    const QString scale = tr("FD, up to %1 mm").arg(largest, 0, 'f', 2);
    const double margin = fontMetrics().horizontalAdvance(scale) + 12;
    painter.drawText(QRectF(4, 0, margin, height()), Qt::AlignVCenter, scale);
    const QRectF plot(margin, 4, width() - margin - 4, height() - 8);
    const double step = plot.width() / double(m_choice.displacement.size());
    for (std::size_t volume = 0; volume < m_choice.displacement.size(); ++volume) {
        const QRectF slot(plot.left() + double(volume) * step, plot.top(), step, plot.height());
        if (m_choice.leftOut[volume])
            painter.fillRect(slot, QColor(213, 94, 0, 110));
        const double value = m_choice.displacement[volume];
        if (std::isfinite(value))
            painter.fillRect(QRectF(slot.left(), plot.bottom() - value / largest * plot.height(),
                                    std::max(1.0, step - 1), value / largest * plot.height()),
                             palette().color(QPalette::Text));
    }
    if (m_choice.fdThreshold > 0) {
        const double y = plot.bottom() - m_choice.fdThreshold / largest * plot.height();
        painter.setPen(QPen(QColor(0, 114, 178), 1, Qt::DashLine));
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    }
}

} // namespace corvane
