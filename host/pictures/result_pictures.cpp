// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/pictures/result_pictures.h"

#include "plots/circular_plot_widget.h"
#include "plots/line_plot.h"
#include "plots/timeseries_line_plot.h"
#include "results/feature_plots.h"

#include <QCoreApplication>
#include <QVariantHash>

#include <cmath>
#include <memory>

namespace corvane
{

namespace
{

/// What the ring is to know of a slice besides its matrix: where its tree has edges.
QVariantHash descriptionOf(const ComputedSlice &slice)
{
    const std::vector<int> tree(slice.tree.data(), slice.tree.data() + slice.tree.size());
    return {{QStringLiteral("mst"), QVariant::fromValue(tree)}};
}

/// Takes a picture of a line plot and deletes it.
template <typename Plot>
QPixmap pictureOf(Plot *window)
{
    const std::unique_ptr<Plot> owned(window);
    window->showWhole();
    QCoreApplication::processEvents(); // layouts follow the new size
    return window->picture();
}

} // namespace

ResultPictures::ResultPictures(const ComputeResult &result)
    : m_result(result), m_object(result.subject->name(), nullptr), m_dialog(&m_object, nullptr),
      m_browser(&m_dialog)
{
    std::vector<Eigen::MatrixXf> matrices;
    for (const ComputedSlice &slice : result.slices)
        matrices.push_back(slice.connectivity);
    m_object.setSubject(result.subject);
    m_object.setMatrices(matrices);
    m_browser.setLabels(result.subject->voiLabels(false));
    m_browser.show();
}

QPixmap ResultPictures::ring(std::size_t slice)
{
    const ComputedSlice &drawn = m_result.slices[slice];
    const Eigen::Index nodes = drawn.connectivity.rows();
    CircularPlotWidget ring;
    ring.setLabels(m_result.subject->voiLabels(false));
    ring.show();
    // How much room its names need, a ring without edges tells too. A resize adds to the labels
    // that there are, so that it comes before the slice.
    constexpr int margin = 10;
    ring.plotSlice(Eigen::MatrixXf::Zero(nodes, nodes), 0, QVariantHash());
    ring.resize(ring.sceneRect().size().toSize() + 2 * QSize(margin, margin));
    ring.plotSlice(drawn.connectivity, 0, descriptionOf(drawn));
    return ring.grab();
}

void ResultPictures::browse(std::size_t slice)
{
    if (m_browsed == static_cast<int>(slice))
        return;
    m_browsed = static_cast<int>(slice);
    m_browser.showSlice(m_browsed);
}

QPixmap ResultPictures::map(std::size_t slice)
{
    browse(slice);
    return m_browser.tablePicture();
}

QPixmap ResultPictures::overview(std::size_t slice)
{
    browse(slice);
    return m_browser.overviewPicture();
}

QPixmap ResultPictures::measure(const GraphMeasure &measure) const
{
    const QString title = QLatin1String(measure.title);
    const Subject &subject = *m_result.subject;
    if (measure.perNode != nullptr) {
        const FeatureValues values = valuesPerNode(measure, m_object.matrices());
        return pictureOf(plotPerNode(title, values, subject, nullptr));
    }
    std::vector<float> perSlice;
    for (const ComputedSlice &slice : m_result.slices) // what is no number is left out
        perSlice.push_back(slice.event ? std::nanf("") : measure.perMatrix(slice.connectivity));
    return pictureOf(plotPerSlice(title, perSlice, subject, nullptr));
}

} // namespace corvane
