// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/volume_view.h"

#include "engine/run_aside.h"
#include "host/workbench/run_overlay.h"
#include "host/workbench/voi_overlay.h"
#include "host/workbench/world_place.h"
#include "ui_slice_controls.h"

#include <QGridLayout>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QStatusTipEvent>
#include <QTimer>
#include <cmath>

namespace corvane
{

namespace
{

constexpr double mostZoom = 16;

void setQuietly(QSpinBox *box, double value)
{
    const QSignalBlocker blocker(box);
    box->setValue(static_cast<int>(std::lround(value)));
}

QString placeText(const CubeVoxel &voxel)
{
    return QStringLiteral("%1, %2, %3").arg(voxel[0]).arg(voxel[1]).arg(voxel[2]);
}

/// Reads a volume that is mapped from end to end, in the background: no later move of the
/// cross-hair waits for the disk.
void readAhead(const Vmr &vmr)
{
    if (!systemStartsThreads())
        return;
    QtConcurrent::run([vmr] {
        constexpr qint64 page = 4096;
        const auto *const data = static_cast<const volatile uchar *>(vmr.voxels.get());
        for (qint64 n = 0; n < vmr.byteCount(); n += page)
            static_cast<void>(data[n]);
    });
}

} // namespace

VolumeView::VolumeView(QWidget *parent)
    : QWidget(parent), m_ui(std::make_unique<Ui::SliceControls>())
{
    setObjectName(QStringLiteral("volumeView"));
    m_layout = new QGridLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(2);
    const SlicePlane planes[] = {SlicePlane::Sagittal, SlicePlane::Coronal, SlicePlane::Axial};
    const QPoint cells[] = {{0, 0}, {1, 0}, {1, 1}};
    for (std::size_t n = 0; n < 3; ++n) {
        auto *const slice = new SliceView(planes[n], m_scene, this);
        connect(slice, &SliceView::picked, this, &VolumeView::setCross);
        connect(slice, &SliceView::pointedAt, this, &VolumeView::tellMouse);
        connect(slice, &SliceView::pointedAway, this, [this] { m_ui->mouse->clear(); });
        connect(slice, &SliceView::windowDragged, this, &VolumeView::setWindow);
        connect(slice, &SliceView::zoomed, this, &VolumeView::zoomBy);
        connect(slice, &SliceView::fillAsked, this, [this, plane = planes[n]] {
            showAlone(m_alone ? std::nullopt : std::optional(plane));
        });
        m_layout->addWidget(slice, cells[n].y(), cells[n].x());
        m_slices += slice;
    }
    auto *const controls = new QWidget;
    m_ui->setupUi(controls);
    // On a small screen they are no reason for a window that does not fit it.
    auto *const area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(controls);
    area->setMinimumWidth(controls->minimumSizeHint().width());
    m_controls = area;
    // Texts that come and go may not move the slices.
    for (QLabel *text : {m_ui->intensity, m_ui->mouse}) {
        text->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        text->setMinimumWidth(1);
    }
    m_layout->addWidget(m_controls, 1, 0);
    showAlone(std::nullopt);
    connectControls();
}

VolumeView::~VolumeView() = default;

void VolumeView::focusSlices()
{
    for (SliceView *slice : qAsConst(m_slices))
        if (slice->isVisibleTo(this))
            return slice->setFocus();
}

void VolumeView::showAlone(std::optional<SlicePlane> plane)
{
    m_alone = plane;
    const bool hadFocus = focusWidget() != nullptr && focusWidget()->hasFocus();
    for (SliceView *slice : qAsConst(m_slices))
        slice->setVisible(!plane || slice->plane() == *plane);
    m_controls->setVisible(!plane);
    // A row or column of hidden slices still takes its share.
    for (int n = 0; n < 2; ++n) {
        const auto stretch = [&](auto cellAt) {
            for (int other = 0; other < 2; ++other) {
                const QLayoutItem *const item = cellAt(other);
                if (item != nullptr && !item->isEmpty())
                    return 1;
            }
            return 0;
        };
        m_layout->setRowStretch(
            n, stretch([&](int column) { return m_layout->itemAtPosition(n, column); }));
        m_layout->setColumnStretch(
            n, stretch([&](int row) { return m_layout->itemAtPosition(row, n); }));
    }
    if (hadFocus)
        focusSlices();
    fitAgain();
    Q_EMIT aloneChanged();
}

void VolumeView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fitAgain();
}

/// What was fitted stays so when the slices have more or less room, once that is known.
void VolumeView::fitAgain()
{
    if (m_fit)
        QTimer::singleShot(0, this, [this] {
            if (m_fit)
                showBox(CubeBox(*m_fit));
        });
}

void VolumeView::connectControls()
{
    const auto moved = QOverload<int>::of(&QSpinBox::valueChanged);
    QSpinBox *const boxes[] = {m_ui->crossX, m_ui->crossY, m_ui->crossZ};
    for (std::size_t axis = 0; axis < 3; ++axis)
        connect(boxes[axis], moved, this, [this, axis](int value) {
            CubeVoxel voxel = m_scene.cross;
            voxel[axis] = value;
            setCross(voxel);
        });
    connect(m_ui->level, moved, this, [this](int value) {
        setWindow({double(value), m_scene.window.width});
    });
    connect(m_ui->window, moved, this, [this](int value) {
        setWindow({m_scene.window.level, double(value)});
    });
    connect(m_ui->zoom, moved, this, [this](int value) { setZoom(value / 100.0); });
    connect(m_ui->world, &QLineEdit::returnPressed, this, &VolumeView::goToTyped);
    connect(m_ui->world, &QLineEdit::editingFinished, this, &VolumeView::tellCross);
    connect(m_ui->automatic, &QPushButton::clicked, this, &VolumeView::setAutomaticWindow);
}

void VolumeView::showVolume(int document, const Vmr &vmr)
{
    if (document == m_document)
        return;
    if (m_document >= 0)
        m_looks[m_document] = {m_scene.cross, m_scene.window, m_scene.zoom, m_fit};
    m_fitReader.forget();
    m_document = document;
    m_scene.vmr = vmr;
    readAhead(vmr);
    const auto known = m_looks.find(document);
    const Look look = known != m_looks.end()
                          ? known->second
                          : Look{SliceScene().cross, automaticWindow(vmr), 1.0, {}};
    m_scene.cross = look.cross;
    m_scene.window = look.window;
    m_scene.zoom = look.zoom;
    ++m_scene.revision;
    setQuietly(m_ui->level, look.window.level);
    setQuietly(m_ui->window, look.window.width);
    setQuietly(m_ui->zoom, 100 * look.zoom);
    tellCross();
    m_fit.reset();
    follow();
    if (look.fit)
        showBox(*look.fit);
    Q_EMIT crossMoved();
}

void VolumeView::setRun(std::shared_ptr<const RunOverlay> run, double opacity)
{
    m_scene.run = std::move(run);
    m_scene.runOpacity = opacity;
    ++m_scene.revision;
    tellCross();
    follow();
}

void VolumeView::setNeurological(bool neurological)
{
    m_scene.neurological = neurological;
    ++m_scene.revision;
    follow();
}

void VolumeView::fitToHead()
{
    if (m_scene.vmr.voxels == nullptr)
        return;
    // The reader hands on numbers: the corners of the box, none for a volume that is black.
    const auto read = [vmr = m_scene.vmr](const std::atomic<bool> &) {
        std::vector<double> corners;
        if (const std::optional<CubeBox> box = headBox(vmr))
            for (const CubeVoxel &corner : {box->low, box->high})
                corners.insert(corners.end(), corner.begin(), corner.end());
        return corners;
    };
    m_fitReader.ask(read, [this](const TimeCourseReader::Samples &corners) {
        if (corners.empty())
            return;
        CubeBox box{};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            box.low[axis] = static_cast<int>(corners[axis]);
            box.high[axis] = static_cast<int>(corners[axis + 3]);
        }
        showBox(box);
    });
}

void VolumeView::showBox(const CubeBox &box)
{
    // The zoom that all slices have room for, with a narrow edge.
    double zoom = mostZoom;
    std::array<double, 3> middle{};
    for (std::size_t axis = 0; axis < 3; ++axis)
        middle[axis] = (box.low[axis] + box.high[axis] + 1) / 2.0;
    for (const SliceView *slice : qAsConst(m_slices)) {
        if (!slice->isVisibleTo(this))
            continue;
        const PlaneAxes axes = axesOf(slice->plane());
        const auto extent = [&box](int axis) {
            const auto n = static_cast<std::size_t>(axis);
            return 1.06 * (box.high[n] - box.low[n] + 1);
        };
        zoom = std::min({zoom, slice->width() / extent(axes.across) / slice->pixelsAtOne(),
                         slice->height() / extent(axes.down) / slice->pixelsAtOne()});
    }
    setZoom(zoom);
    m_fit = box;
    for (SliceView *slice : qAsConst(m_slices))
        slice->showMiddle(middle);
}

void VolumeView::setVois(std::shared_ptr<const VoiOverlay> vois, const QStringList &names,
                         double opacity)
{
    m_voiNames = names;
    m_scene.vois = std::move(vois);
    m_scene.voiOpacity = opacity;
    ++m_scene.revision;
    tellCross();
    follow();
}

void VolumeView::setCross(const CubeVoxel &voxel)
{
    if (voxel == m_scene.cross || !isInCube(voxel))
        return;
    m_scene.cross = voxel;
    tellCross();
    follow();
    Q_EMIT crossMoved();
}

void VolumeView::setCrossShown(bool shown)
{
    m_scene.crossShown = shown;
    follow();
}

void VolumeView::setWindow(const GreyWindow &window)
{
    m_scene.window = window;
    ++m_scene.revision;
    setQuietly(m_ui->level, window.level);
    setQuietly(m_ui->window, window.width);
    follow();
}

void VolumeView::setAutomaticWindow()
{
    if (m_scene.vmr.voxels != nullptr)
        setWindow(automaticWindow(m_scene.vmr));
}

void VolumeView::setZoom(double zoom)
{
    // Not quite 1 after zooming in and out again would leave the slices off the middle.
    zoom = zoom < 1.01 ? 1 : std::min(zoom, mostZoom);
    m_fit.reset();
    m_scene.zoom = zoom;
    setQuietly(m_ui->zoom, 100 * zoom);
    follow();
}

void VolumeView::follow()
{
    for (SliceView *slice : qAsConst(m_slices))
        slice->follow();
}

QString VolumeView::describe(const CubeVoxel &voxel) const
{
    QString text = QString::number(intensityAt(m_scene.vmr, voxel));
    const quint16 label = m_scene.vois != nullptr ? m_scene.vois->labelAt(voxel) : quint16(0);
    if (label > 0)
        text += QStringLiteral(" (%1)").arg(m_voiNames.value(label - 1));
    if (m_scene.run != nullptr)
        if (const std::optional<double> run = m_scene.run->valueAt(voxel))
            text += tr(", run %1").arg(QString::number(*run, 'g', 5));
    return text;
}

void VolumeView::tellCross()
{
    setQuietly(m_ui->crossX, m_scene.cross[0]);
    setQuietly(m_ui->crossY, m_scene.cross[1]);
    setQuietly(m_ui->crossZ, m_scene.cross[2]);
    if (m_scene.vmr.voxels == nullptr)
        return;
    m_ui->intensity->setText(describe(m_scene.cross));
    m_ui->world->setEnabled(true);
    if (!m_scene.vmr.space) {
        m_ui->world->setText(tr("not known"));
        m_ui->world->setEnabled(false);
        return;
    }
    m_ui->world->setText(worldText(worldPosition(m_scene.vmr, m_scene.cross)));
    m_ui->world->setCursorPosition(0);
}

void VolumeView::goToTyped()
{
    QString said;
    const std::optional<WorldPlace> place = worldPlaceOf(m_ui->world->text());
    if (!m_scene.vmr.space || !place) {
        said = tr("A place is three numbers in millimetres, such as -42 -22 54 or L 42 P 22 S 54.");
    } else {
        const CubeVoxel voxel = voxelAtWorld(m_scene.vmr, *place);
        if (isInCube(voxel))
            setCross(voxel);
        else
            said = tr("%1 lies outside the volume.").arg(worldText(*place));
    }
    QStatusTipEvent tip(said);
    QCoreApplication::sendEvent(this, &tip);
}

void VolumeView::tellMouse(const CubeVoxel &voxel)
{
    m_ui->mouse->setText(tr("%1: %2", "place, intensity").arg(placeText(voxel), describe(voxel)));
}

} // namespace corvane
