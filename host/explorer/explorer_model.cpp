// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/explorer_model.h"

#include "engine/run_aside.h"

#include <cmath>

namespace corvane
{

struct ExplorerModel::Step {
    int number;
    ViewSettings settings;
    std::shared_ptr<const NetworkResult> result;
    std::shared_ptr<const ShownMatrix> shown; ///< null when it is to be made anew
    bool withCurves;
};

ExplorerModel::ExplorerModel(ResultRequest request, std::shared_ptr<const NetworkResult> result,
                             QObject *parent)
    : QObject(parent), m_request(std::move(request)), m_result(std::move(result))
{
    m_thread.setMaxThreadCount(1);
    m_request.run = m_result->run;
    m_settings.matrix = m_result->matrices.front().name;
    m_shown = shownMatrix(*m_result, m_settings);
    m_drawn = drawnEdges(*m_result, *m_shown, m_settings);
    takePlaces();
    const std::shared_ptr<const NetworkResult> shared = m_result;
    // The outline is read aside: an atlas may be large, or gone.
    runAside(&m_thread, [this, shared] {
        std::array<QPainterPath, 3> outlines;
        QString fault;
        try {
            outlines = outlinesOf(*shared);
        } catch (const std::exception &error) {
            fault = QString::fromUtf8(error.what());
        }
        QMetaObject::invokeMethod(
            this,
            [this, outlines, fault] {
                m_outlines = outlines;
                Q_EMIT drawnChanged();
                if (!fault.isEmpty())
                    Q_EMIT failed(fault);
            },
            Qt::QueuedConnection);
    });
    ask();
}

ExplorerModel::~ExplorerModel()
{
    ++m_latest;
    m_thread.clear();
    m_thread.waitForDone();
}

FigureScene ExplorerModel::scene() const
{
    return {*m_result, *m_shown, m_settings, m_outlines, m_curves};
}

FigureRequest ExplorerModel::figureRequest(NetworkView kind, const FigureFormat &format) const
{
    return {m_request, m_settings, kind, format};
}

QString ExplorerModel::selectionText() const
{
    if (m_node < 0)
        return {};
    const QString &first = m_result->nodes[std::size_t(m_node)].name;
    if (m_other < 0)
        return first;
    const double value = m_shown->values(m_node, m_other);
    return QStringLiteral("%1 - %2: %3")
        .arg(first, m_result->nodes[std::size_t(m_other)].name,
             std::isnan(value) ? QStringLiteral("n/a") : QString::number(value, 'f', 3));
}

void ExplorerModel::setMatrix(const QString &name)
{
    m_settings.matrix = name;
    m_matrixIsOld = true;
    ask();
}

void ExplorerModel::setMinus(const QString &name)
{
    m_settings.minus = name;
    m_matrixIsOld = true;
    ask();
}

void ExplorerModel::setOrdering(NodeOrdering ordering)
{
    m_settings.ordering = ordering;
    m_matrixIsOld = true;
    ask();
}

void ExplorerModel::setThreshold(const EdgeThreshold &threshold)
{
    m_matrixIsOld = m_matrixIsOld || threshold.signs != m_settings.threshold.signs;
    m_settings.threshold = threshold;
    ask();
}

void ExplorerModel::setComponents(const std::vector<int> &components)
{
    m_settings.components = components;
    ask();
}

void ExplorerModel::setAlone(bool alone)
{
    m_settings.alone = alone;
    Q_EMIT drawnChanged();
}

void ExplorerModel::select(int node, int other)
{
    if (node == other)
        other = -1;
    if (node == m_node && other == m_other)
        return;
    m_node = node;
    m_other = other;
    m_settings.node = node < 0 ? QString() : m_result->nodes[std::size_t(node)].name;
    m_settings.other = other < 0 ? QString() : m_result->nodes[std::size_t(other)].name;
    Q_EMIT selectionChanged();
    if (m_settings.alone)
        Q_EMIT drawnChanged();
}

void ExplorerModel::setCurvesWanted(bool wanted)
{
    if (wanted == m_curvesWanted)
        return;
    m_curvesWanted = wanted;
    if (wanted && m_curves.steps.empty())
        ask();
}

void ExplorerModel::takePlaces()
{
    m_places.resize(m_shown->order.nodes.size());
    for (std::size_t place = 0; place < m_places.size(); ++place)
        m_places[std::size_t(m_shown->order.nodes[place])] = int(place);
}

void ExplorerModel::ask()
{
    // Curves stay as they are when only the threshold moves.
    if (m_matrixIsOld || m_curvesHaveTree != hasTree())
        m_curves = {};
    Step step{++m_latest, m_settings, m_result, m_matrixIsOld ? nullptr : m_shown,
              m_curvesWanted && m_curves.steps.empty()};
    m_isBusy = true;
    Q_EMIT busyChanged(true);
    runAside(&m_thread, [this, step = std::move(step)] { compute(step); });
}

void ExplorerModel::post(int number, std::function<void()> take)
{
    QMetaObject::invokeMethod(
        this,
        [this, number, take = std::move(take)] {
            if (number == m_latest)
                take();
        },
        Qt::QueuedConnection);
}

/// On the thread. Each part is shown as soon as it is there.
void ExplorerModel::compute(Step step)
{
    const int number = step.number;
    const GoOn goOn = [this, number] { return number == m_latest; };
    const auto done = [this] {
        m_isBusy = false;
        Q_EMIT busyChanged(false);
    };
    if (!goOn())
        return;
    try {
        const bool isNew = step.shown == nullptr;
        if (isNew)
            step.shown = shownMatrix(*step.result, step.settings);
        const DrawnEdges drawn = drawnEdges(*step.result, *step.shown, step.settings);
        post(number, [this, shown = step.shown, drawn] {
            m_shown = shown;
            m_drawn = drawn;
            m_matrixIsOld = false;
            takePlaces();
            Q_EMIT drawnChanged();
        });
        const NetworkMeasures measures = measuresOf(drawn.edges, step.shown->isKnown, goOn);
        post(number, [this, measures] {
            m_measures = measures;
            Q_EMIT measuresChanged();
        });
        if (step.withCurves) {
            const MeasureCurves curves =
                measureCurves(step.shown->ranked, step.shown->isKnown, step.settings.threshold,
                              usualDensities(), goOn);
            post(number, [this, curves] {
                m_curves = curves;
                m_curvesHaveTree = hasTree();
                Q_EMIT curvesChanged();
            });
        }
        post(number, done);
    } catch (const std::exception &error) {
        const QString fault = QString::fromUtf8(error.what());
        post(number, [this, fault, done] {
            done();
            Q_EMIT failed(fault);
        });
    }
}

} // namespace corvane
