// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/run_pane.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

namespace corvane
{

namespace
{

/// Whether both are one open file: copies share its samples.
bool isSameFile(const VtcFile &one, const VtcFile &other)
{
    return one.shortSamples() == other.shortSamples() && one.floatSamples() == other.floatSamples();
}

} // namespace

RunPane::RunPane(QWidget *parent) : QDockWidget(tr("Functional Run"), parent)
{
    setObjectName(QStringLiteral("runPane"));
    auto *const content = new QWidget(this);
    auto *const column = new QVBoxLayout(content);
    m_hint = new QLabel(tr("No functional run is linked. Open a .vtc file."));
    m_hint->setWordWrap(true);
    column->addWidget(m_hint);
    m_controls = new QWidget;
    column->addWidget(m_controls);
    column->addStretch();
    makeControls();
    // On a small screen it is no reason for a window that does not fit it.
    auto *const area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    area->setMinimumWidth(content->minimumSizeHint().width());
    setWidget(area);
    setRun(nullptr);
}

void RunPane::makeControls()
{
    auto *const form = new QFormLayout(m_controls);
    form->setContentsMargins(0, 0, 0, 0);
    m_isShown = new QCheckBox(tr("Show the &run over the slices"));
    m_isShown->setObjectName(QStringLiteral("runShown"));
    form->addRow(m_isShown);
    m_isMean = new QCheckBox(tr("Mea&n of all volumes"));
    m_isMean->setObjectName(QStringLiteral("runMean"));
    m_isMean->setChecked(true);
    form->addRow(m_isMean);

    auto *const time = new QWidget;
    auto *const row = new QHBoxLayout(time);
    row->setContentsMargins(0, 0, 0, 0);
    m_time = new QSlider(Qt::Horizontal);
    m_time->setObjectName(QStringLiteral("runTime"));
    m_time->setAccessibleName(tr("Volume of the run"));
    m_volume = new QSpinBox;
    m_volume->setObjectName(QStringLiteral("runVolume"));
    m_volume->setAccessibleName(tr("Number of the volume"));
    m_seconds = new QLabel;
    m_seconds->setObjectName(QStringLiteral("runSeconds"));
    row->addWidget(m_time, 1);
    row->addWidget(m_volume);
    row->addWidget(m_seconds);
    auto *const volume = new QLabel(tr("Vol&ume"));
    volume->setBuddy(m_volume);
    form->addRow(volume, time);

    m_colours = new QComboBox;
    m_colours->setObjectName(QStringLiteral("runColours"));
    m_colours->addItems(colourMapNames());
    m_colours->setAccessibleName(tr("Colours of the run"));
    auto *const colours = new QLabel(tr("C&olours"));
    colours->setBuddy(m_colours);
    form->addRow(colours, m_colours);

    m_opacity = new QSlider(Qt::Horizontal);
    m_opacity->setObjectName(QStringLiteral("runOpacity"));
    m_opacity->setAccessibleName(tr("Opacity of the run in percent"));
    m_opacity->setRange(0, 100);
    m_opacity->setValue(50);
    auto *const opacity = new QLabel(tr("Opacit&y"));
    opacity->setBuddy(m_opacity);
    form->addRow(opacity, m_opacity);

    connect(m_isShown, &QCheckBox::toggled, this, &RunPane::choose);
    connect(m_isMean, &QCheckBox::toggled, this, &RunPane::choose);
    connect(m_time, &QSlider::valueChanged, m_volume, &QSpinBox::setValue);
    connect(m_volume, QOverload<int>::of(&QSpinBox::valueChanged), m_time, &QSlider::setValue);
    connect(m_time, &QSlider::valueChanged, this, &RunPane::choose);
    connect(m_colours, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &RunPane::makeOverlay);
    connect(m_opacity, &QSlider::valueChanged, this, &RunPane::overlayChanged);
}

double RunPane::opacity() const
{
    return m_opacity->value() / 100.0;
}

void RunPane::setRun(const VtcFile *vtc)
{
    const bool isSame = vtc != nullptr ? m_vtc && isSameFile(*m_vtc, *vtc) : !m_vtc.has_value();
    m_hint->setVisible(vtc == nullptr);
    m_controls->setVisible(vtc != nullptr);
    if (isSame)
        return;
    m_vtc.reset();
    if (vtc != nullptr)
        m_vtc.emplace(*vtc);
    {
        const QSignalBlocker slider(m_time);
        const QSignalBlocker box(m_volume);
        const int volumes = vtc != nullptr ? vtc->info().nrOfVolumes : 1;
        m_time->setRange(1, volumes);
        m_volume->setRange(1, volumes);
        m_time->setValue(1);
        m_volume->setValue(1);
    }
    m_values.clear();
    makeOverlay();
    choose();
}

/// Reads what is chosen; what is shown stays until it is there.
void RunPane::choose()
{
    const bool isShown = m_isShown->isChecked();
    const bool isMean = m_isMean->isChecked();
    m_time->setEnabled(!isMean);
    m_volume->setEnabled(!isMean);
    tellTime();
    if (!isShown || !m_vtc) {
        m_reader.forget();
        m_values.clear();
        makeOverlay();
        return;
    }
    m_reader.ask(
        [vtc = *m_vtc, isMean, volume = m_time->value()](const std::atomic<bool> &isOutdated) {
            return isMean ? meanOfRun(vtc, isOutdated) : volumeOfRun(vtc, volume, isOutdated);
        },
        [this](const TimeCourseReader::Samples &values) {
            m_values = values;
            makeOverlay();
        });
}

void RunPane::tellTime()
{
    const double seconds = m_vtc ? (m_time->value() - 1) * m_vtc->info().repetitionTime : 0;
    m_seconds->setText(tr("%1 s").arg(QString::number(seconds, 'g', 5)));
}

void RunPane::makeOverlay()
{
    m_overlay.reset();
    if (m_vtc && !m_values.empty())
        m_overlay = std::make_shared<const RunOverlay>(
            latticeOf(m_vtc->info()), m_values, static_cast<ColourMap>(m_colours->currentIndex()));
    Q_EMIT overlayChanged();
}

} // namespace corvane
