// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/group_page.h"

#include "dataset/counted.h"
#include "host/group/group_pictures.h"
#include "host/report/group_methods.h"
#include "host/report/html_page.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace corvane
{

namespace
{

using statistics::Index;

/// Edges in the table of a contrast; all of them are in edges.tsv.
constexpr int mostEdges = 20;

PageCell number(double value, int digits = 4)
{
    return {std::isnan(value) ? QStringLiteral("n/a") : QString::number(value, 'g', digits),
            "number"};
}

PageCell number(Index value)
{
    return {QString::number(value), "number"};
}

void addPictures(HtmlPage &page, const std::vector<GroupPicture> &pictures)
{
    for (const GroupPicture &picture : pictures)
        page.picture(picture.picture.png, picture.picture.size, picture.caption, picture.caption);
}

void addExclusions(HtmlPage &page, const GroupData &data, const GroupResults &results)
{
    page.section(QStringLiteral("Who was left out"), QStringLiteral("left"));
    if (data.left.isEmpty())
        page.paragraph(QStringLiteral("Nobody, and no node."));
    else
        page.list(data.left);
    if (!results.notes.isEmpty()) {
        page.paragraph(QStringLiteral("To be known:"));
        page.list(results.notes);
    }
}

void addMotion(HtmlPage &page, const GroupData &data, const std::vector<QcFcResult> &results)
{
    if (results.empty())
        return;
    page.section(QStringLiteral("Motion (QC-FC)"), QStringLiteral("motion"));
    page.openTable({QStringLiteral("Data"), QStringLiteral("Edges with p < 0.05"),
                    QStringLiteral("with q < 0.05"), QStringLiteral("Median |r|"),
                    QStringLiteral("Spearman with distance")});
    for (const QcFcResult &result : results)
        page.row({QString::fromLatin1(result.data), number(result.qcfc.share_p_below_05),
                  number(result.qcfc.share_q_below_05), number(result.qcfc.median_absolute_r),
                  number(result.qcfc.distance_dependence)});
    page.closeTable();
    page.paragraph(QStringLiteral("A share of 0.05 with p < 0.05 is expected where no edge follows "
                                  "motion."));
    addPictures(page, motionPictures(data, results));
}

std::vector<Index> strongest(const ContrastResult &result)
{
    const Eigen::ArrayXd &p = result.test.p_fwe;
    std::vector<Index> edges(static_cast<std::size_t>(p.size()));
    std::iota(edges.begin(), edges.end(), 0);
    std::stable_sort(edges.begin(), edges.end(), [&](Index a, Index b) {
        return std::abs(result.test.model.statistic(a)) > std::abs(result.test.model.statistic(b));
    });
    edges.resize(std::min<std::size_t>(edges.size(), mostEdges));
    return edges;
}

void addEdges(HtmlPage &page, const GroupData &data, const ContrastResult &result)
{
    const auto pairs = statistics::node_pairs(static_cast<int>(data.nodes.size()));
    const std::vector<Index> edges = strongest(result);
    page.openDetails(QStringLiteral("The %1 largest of %2 edges")
                         .arg(edges.size())
                         .arg(result.test.p_fwe.size()),
                     false);
    page.openTable({QStringLiteral("Node"), QStringLiteral("Node"),
                    result.hypothesis.is_f() ? QStringLiteral("F") : QStringLiteral("t"),
                    QStringLiteral("p"), QStringLiteral("p_fwe"), QStringLiteral("q")});
    for (const Index edge : edges)
        page.row({QString::fromStdString(data.nodes[pairs[edge].first]),
                  QString::fromStdString(data.nodes[pairs[edge].second]),
                  number(result.test.model.statistic(edge)), number(result.test.model.p(edge)),
                  number(result.test.p_fwe(edge)), number(result.test.q(edge))});
    page.closeTable();
    page.close();
}

QString sideName(statistics::Side side)
{
    switch (side) {
    case statistics::Side::greater:
        break;
    case statistics::Side::less:
        return QStringLiteral("less");
    case statistics::Side::both:
        return QStringLiteral("both");
    }
    return QStringLiteral("greater");
}

void addNetworks(HtmlPage &page, const ContrastResult &result)
{
    if (result.test.networks.empty())
        return;
    page.paragraph(QStringLiteral("It is a network that is significant, not any of its edges. "
                                  "Networks of more than one edge, or with p < %1:")
                       .arg(significantP));
    page.openTable({QStringLiteral("Threshold"), QStringLiteral("Side"), QStringLiteral("Edges"),
                    QStringLiteral("Intensity"), QStringLiteral("p of the extent"),
                    QStringLiteral("p of the intensity")});
    for (const statistics::NetworkResult &network : result.test.networks)
        for (const statistics::Component &component : network.components)
            if (component.edges.size() > 1 ||
                std::min(component.p_extent, component.p_intensity) < significantP)
                page.row({number(network.threshold), sideName(component.side),
                          number(Index(component.edges.size())), number(component.intensity),
                          number(component.p_extent), number(component.p_intensity)});
    page.closeTable();
}

void addContrasts(HtmlPage &page, const GroupData &data, const GroupResults &results)
{
    int count = 0;
    for (const ContrastResult &result : results.contrasts) {
        ++count;
        page.section(QStringLiteral("Contrast ") + QString::fromStdString(result.hypothesis.name),
                     QStringLiteral("contrast-%1").arg(count));
        addNetworks(page, result);
        addPictures(page, contrastPictures(data, result, count));
        addEdges(page, data, result);
    }
}

void addDistances(HtmlPage &page, const DistanceResult &result)
{
    page.section(QStringLiteral("Distances"), QStringLiteral("distances"));
    if (!result.contrasts.empty()) {
        page.openTable({QStringLiteral("Contrast"), QStringLiteral("F"), QStringLiteral("df"),
                        QStringLiteral("R squared"), QStringLiteral("p")});
        for (const DistanceContrast &contrast : result.contrasts)
            page.row({QString::fromStdString(contrast.name), number(contrast.anova.f),
                      QStringLiteral("%1, %2")
                          .arg(contrast.anova.df_tested)
                          .arg(contrast.anova.df_residual),
                      number(contrast.anova.r_squared), number(contrast.anova.p)});
        page.closeTable();
    }
    if (result.dbicc)
        page.paragraph(QStringLiteral("dbICC %1, from %2 pairs within participants and %3 between.")
                           .arg(result.dbicc->value, 0, 'f', 3)
                           .arg(result.dbicc->within)
                           .arg(result.dbicc->between));
}

double median(Eigen::ArrayXd values)
{
    std::vector<double> known;
    for (const double value : values)
        if (!std::isnan(value))
            known.push_back(value);
    if (known.empty())
        return std::numeric_limits<double>::quiet_NaN();
    std::sort(known.begin(), known.end());
    return (known[(known.size() - 1) / 2] + known[known.size() / 2]) / 2;
}

void addReliability(HtmlPage &page, const GroupResults &results)
{
    if (!results.icc && results.fingerprints.empty())
        return;
    page.section(QStringLiteral("Reliability"), QStringLiteral("reliability"));
    if (results.icc)
        page.paragraph(QStringLiteral("Median over the edges: ICC(1,1) %1, ICC(2,1) %2, ICC(3,1) "
                                      "%3.")
                           .arg(median(results.icc->icc.icc_1_1), 0, 'f', 3)
                           .arg(median(results.icc->icc.icc_2_1), 0, 'f', 3)
                           .arg(median(results.icc->icc.icc_3_1), 0, 'f', 3));
    if (results.fingerprints.empty())
        return;
    page.openTable({QStringLiteral("Sessions"), QStringLiteral("Participants"),
                    QStringLiteral("Known again"), QStringLiteral("p"),
                    QStringLiteral("the other way"), QStringLiteral("p"), QStringLiteral("Idiff")});
    for (const FingerprintResult &result : results.fingerprints)
        page.row({QString::fromStdString(result.first + " and " + result.second),
                  number(Index(result.participants.size())), number(result.fingerprint.rate_1_to_2),
                  number(result.fingerprint.p_1_to_2), number(result.fingerprint.rate_2_to_1),
                  number(result.fingerprint.p_2_to_1), number(result.fingerprint.idiff)});
    page.closeTable();
}

void addMethods(HtmlPage &page, const GroupMethods &methods)
{
    page.section(QStringLiteral("Methods"), QStringLiteral("methods"));
    for (const QString &paragraph : methods.paragraphs)
        page.paragraph(paragraph);
    page.section(QStringLiteral("References"), QStringLiteral("references"));
    page.list(methods.references);
}

} // namespace

QByteArray groupPage(const GroupRequest &request, const GroupData &data,
                     const GroupResults &results)
{
    const QString title = QStringLiteral("Group of %1")
                              .arg(counted(qint64(data.participants.size()), "matrix", "matrices"));
    HtmlPage page(title);
    page.element("h1", title);
    addExclusions(page, data, results);
    addMotion(page, data, results.qcfc);
    addContrasts(page, data, results);
    if (results.distance)
        addDistances(page, *results.distance);
    addReliability(page, results);
    addMethods(page, groupMethods(request, data, results));
    return page.finish();
}

} // namespace corvane
