// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/figure.h"

#include <QObject>
#include <QThreadPool>
#include <atomic>
#include <functional>
#include <memory>

namespace corvane
{

/// What the connectome window shows: a result, what is asked of it, and what was computed of that.
/// All views look at one model. A thread computes, one step after the other; whatever is asked for
/// later ends what is not done yet, and the window never waits.
class ExplorerModel : public QObject
{
    Q_OBJECT

public:
    explicit ExplorerModel(ResultRequest request, std::shared_ptr<const NetworkResult> result,
                           QObject *parent = nullptr);
    ~ExplorerModel() override;

    const NetworkResult &result() const { return *m_result; }
    const ResultRequest &request() const { return m_request; }
    const ViewSettings &settings() const { return m_settings; }
    /// What is known by now; the matrix is always that of the last complete step.
    const ShownMatrix &shown() const { return *m_shown; }
    const DrawnEdges &drawn() const { return m_drawn; }
    const NetworkMeasures &measures() const { return m_measures; } ///< empty until they are there
    const MeasureCurves &curves() const { return m_curves; }       ///< likewise
    const std::array<QPainterPath, 3> &outlines() const { return m_outlines; }
    FigureScene scene() const;
    FigureRequest figureRequest(NetworkView kind, const FigureFormat &format) const;

    /// Position in pictures of a node; -1 for -1.
    int placeOf(int node) const { return node < 0 ? -1 : m_places[std::size_t(node)]; }
    int node() const { return m_node; }
    int other() const { return m_other; }
    /// What is drawn, in words; with "alone" also of the selected node.
    QString drawnText() const { return corvane::drawnText(*m_result, m_drawn, m_settings); }
    /// "Calcarine L - Calcarine R: 0.479", "Calcarine L", or empty.
    QString selectionText() const;

    void setMatrix(const QString &name);
    void setMinus(const QString &name);
    void setOrdering(NodeOrdering ordering);
    void setThreshold(const EdgeThreshold &threshold);
    void setComponents(const std::vector<int> &components);
    void setAlone(bool alone);
    /// Nodes by number, -1 for none; an edge has both.
    void select(int node, int other = -1);
    /// Curves are computed only while someone looks at them.
    void setCurvesWanted(bool wanted);

    bool isBusy() const { return m_isBusy; }

Q_SIGNALS:
    void drawnChanged(); ///< edges, and perhaps matrix and order
    void measuresChanged();
    void curvesChanged();
    void selectionChanged();
    void busyChanged(bool isBusy);
    void failed(const QString &fault);

private:
    /// What one step of the thread starts from.
    struct Step;

    void ask();
    void compute(Step step);
    void post(int number, std::function<void()> take);
    void takePlaces();
    bool hasTree() const { return m_settings.threshold.kind == ThresholdKind::TreeAndDensity; }

    ResultRequest m_request;
    std::shared_ptr<const NetworkResult> m_result;
    ViewSettings m_settings;
    std::shared_ptr<const ShownMatrix> m_shown;
    DrawnEdges m_drawn;
    NetworkMeasures m_measures;
    MeasureCurves m_curves;
    std::array<QPainterPath, 3> m_outlines;
    std::vector<int> m_places;
    int m_node = -1;
    int m_other = -1;
    bool m_curvesWanted = false;
    bool m_curvesHaveTree = false;
    bool m_isBusy = false;
    bool m_matrixIsOld = false;
    std::atomic<int> m_latest{0}; ///< number of the last step; the thread ends others
    QThreadPool m_thread;
};

} // namespace corvane
