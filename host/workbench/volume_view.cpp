// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/volume_view.h"

#include "host/files/text_check.h"
#include "host/workbench/voi_overlay.h"
#include "ui_slice_controls.h"

#include <QGridLayout>
#include <QSignalBlocker>
#include <QtConcurrent>
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
    auto *const layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    const SlicePlane planes[] = {SlicePlane::Sagittal, SlicePlane::Coronal, SlicePlane::Axial};
    const QPoint cells[] = {{0, 0}, {1, 0}, {1, 1}};
    for (std::size_t n = 0; n < 3; ++n) {
        auto *const slice = new SliceView(planes[n], m_scene, this);
        connect(slice, &SliceView::picked, this, &VolumeView::setCross);
        connect(slice, &SliceView::pointedAt, this, &VolumeView::tellMouse);
        connect(slice, &SliceView::pointedAway, this, [this] { m_ui->mouse->clear(); });
        connect(slice, &SliceView::windowDragged, this, &VolumeView::setWindow);
        connect(slice, &SliceView::zoomed, this, &VolumeView::zoomBy);
        layout->addWidget(slice, cells[n].y(), cells[n].x());
        m_slices += slice;
    }
    auto *const controls = new QWidget(this);
    m_ui->setupUi(controls);
    // Texts that come and go may not move the slices.
    for (QLabel *text : {m_ui->world, m_ui->intensity, m_ui->mouse}) {
        text->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        text->setMinimumWidth(1);
    }
    layout->addWidget(controls, 1, 0);
    for (int n = 0; n < 2; ++n) {
        layout->setRowStretch(n, 1);
        layout->setColumnStretch(n, 1);
    }
    connectControls();
}

VolumeView::~VolumeView() = default;

void VolumeView::focusSlices()
{
    m_slices.constFirst()->setFocus();
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
    connect(m_ui->automatic, &QPushButton::clicked, this, &VolumeView::setAutomaticWindow);
}

void VolumeView::showVolume(int document, const Vmr &vmr)
{
    if (document == m_document)
        return;
    if (m_document >= 0)
        m_looks[m_document] = {m_scene.cross, m_scene.window, m_scene.zoom};
    m_document = document;
    m_scene.vmr = vmr;
    readAhead(vmr);
    const auto known = m_looks.find(document);
    const Look look = known != m_looks.end() ? known->second
                                             : Look{SliceScene().cross, automaticWindow(vmr), 1.0};
    m_scene.cross = look.cross;
    m_scene.window = look.window;
    m_scene.zoom = look.zoom;
    ++m_scene.revision;
    setQuietly(m_ui->level, look.window.level);
    setQuietly(m_ui->window, look.window.width);
    setQuietly(m_ui->zoom, 100 * look.zoom);
    tellCross();
    follow();
    Q_EMIT crossMoved();
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
    if (!m_scene.vmr.space) {
        m_ui->world->setText(tr("not known"));
        return;
    }
    const std::array<double, 3> world = worldPosition(m_scene.vmr, m_scene.cross);
    const auto side = [](double value, const QString &above, const QString &below) {
        return QStringLiteral("%1 %2").arg(value < 0 ? below : above,
                                           readableNumber(std::abs(value), 1));
    };
    m_ui->world->setText(tr("%1  %2  %3 mm")
                             .arg(side(world[0], QStringLiteral("R"), QStringLiteral("L")),
                                  side(world[1], QStringLiteral("A"), QStringLiteral("P")),
                                  side(world[2], QStringLiteral("S"), QStringLiteral("I"))));
}

void VolumeView::tellMouse(const CubeVoxel &voxel)
{
    m_ui->mouse->setText(tr("%1: %2", "place, intensity").arg(placeText(voxel), describe(voxel)));
}

} // namespace corvane
