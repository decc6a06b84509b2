// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/report/group_methods.h"

#include "dataset/counted.h"

namespace corvane
{

namespace
{

/// Text with the references that it gives, each once.
class Methods
{
public:
    void add(const QString &paragraph) { m_methods.paragraphs += paragraph; }
    void refer(const char *reference)
    {
        const QString text = QString::fromUtf8(reference);
        if (!m_methods.references.contains(text))
            m_methods.references += text;
    }
    GroupMethods take()
    {
        m_methods.references.sort();
        return std::move(m_methods);
    }

private:
    GroupMethods m_methods;
};

QString listed(const std::vector<std::string> &names)
{
    QStringList list;
    for (const std::string &name : names)
        list += QString::fromStdString(name);
    return list.join(QStringLiteral(", "));
}

QString edgesText(const GroupData &data)
{
    if (data.tangentMean.size() > 0)
        return QStringLiteral("in tangent space at the geometric mean of all matrices (Varoquaux "
                              "2010), so that no row is independent of the others");
    return data.isFisherZ ? QStringLiteral("as Fisher's z") : QStringLiteral("as they are");
}

void addData(Methods &methods, const GroupRequest &request, const GroupData &data)
{
    methods.add(QStringLiteral("%1 with %2 and %3 each were analysed; edges were taken %4. Nodes "
                               "that fewer than %5 % of the rows had were left out, and then rows "
                               "that still lacked one.")
                    .arg(counted(qint64(data.participants.size()), "matrix", "matrices"),
                         counted(qint64(data.nodes.size()), "node"),
                         counted(qint64(data.edges.cols()), "edge"), edgesText(data))
                    .arg(100 * request.neededNodes()));
    if (data.tangentMean.size() > 0) {
        methods.refer("Varoquaux G et al. (2010). Detection of brain functional-connectivity "
                      "difference in post-stroke patients using group-level covariance modeling. "
                      "MICCAI 2010. doi:10.1007/978-3-642-15705-9_25");
        methods.refer("Fletcher PT, Joshi S (2007). Riemannian geometry for the statistical "
                      "analysis of diffusion tensor data. Signal Process 87:250. "
                      "doi:10.1016/j.sigpro.2005.12.018");
    } else if (data.isFisherZ) {
        if (data.clipped > 0)
            methods.add(QStringLiteral("%1 beyond 1 - 1e-7 were clipped.")
                            .arg(counted(data.clipped, "correlation")));
        methods.refer("Fisher RA (1915). Frequency distribution of the values of the correlation "
                      "coefficient in samples from an indefinitely large population. Biometrika "
                      "10:507. doi:10.2307/2331838");
    }
}

/// Behind a comma; nothing for F, which has no sides.
QString sidesText(const ContrastResult &result, statistics::Sides sides)
{
    if (result.hypothesis.is_f())
        return {};
    switch (sides) {
    case statistics::Sides::each:
        break;
    case statistics::Sides::both:
        return QStringLiteral(", two-sided, networks of |t|, which mix directions");
    case statistics::Sides::greater:
        return QStringLiteral(", one-sided, for effects above 0");
    case statistics::Sides::less:
        return QStringLiteral(", one-sided, for effects below 0");
    }
    return QStringLiteral(", two-sided, networks of t and of -t apart, with the larger of both in "
                          "their null distribution");
}

QString rearrangedText(const ContrastResult &result, const GroupRequest &request)
{
    const QString what =
        result.bySigns ? QStringLiteral("sign changes") : QStringLiteral("permutations");
    const QString count = QString::number(result.test.rearrangements);
    const QString which =
        result.test.is_exhaustive ? QStringLiteral("all %1 distinct %2 (p = b/M)").arg(count, what)
        : request.permutationFile.isEmpty()
            ? QStringLiteral("%1 random %2 (seed %3, p = (b + 1)/(m + 1); Phipson 2010)")
                  .arg(count, what)
                  .arg(request.seed)
            : QStringLiteral("%1 given %2 (p = (b + 1)/(m + 1); Phipson 2010)").arg(count, what);
    return request.blocks.isEmpty()
               ? which
               : which + QStringLiteral(" within equal values of ") + request.blocks;
}

void addModel(Methods &methods, const GroupRequest &request, const GroupResults &results)
{
    for (const ContrastResult &result : results.contrasts) {
        const bool hasCovariates = result.hypothesis.nuisance.cols() > 1;
        methods.add(
            QStringLiteral("Contrast %1 was tested at every edge by %2 with %3 degrees of freedom "
                           "in a linear model (columns: %4)%5%6. %7 were rearranged by %8. p "
                           "values of single edges were corrected for all edges by the largest "
                           "statistic (max-T; Nichols and Holmes 2002); q is Benjamini and "
                           "Hochberg's (1995) of the parametric p.")
                .arg(QString::fromStdString(result.hypothesis.name),
                     result.hypothesis.is_f() ? QStringLiteral("F") : QStringLiteral("t"))
                .arg(result.hypothesis.df)
                .arg(listed(result.hypothesis.columns),
                     request.paired ? QStringLiteral(" of differences of pairs") : QString(),
                     sidesText(result, request.sides),
                     hasCovariates ? QStringLiteral("Residuals of the model without the contrast "
                                                    "(Freedman and Lane 1983)")
                                   : QStringLiteral("Data"),
                     rearrangedText(result, request)));
        if (hasCovariates)
            methods.refer("Freedman D, Lane D (1983). A nonstochastic interpretation of reported "
                          "significance levels. J Bus Econ Stat 1:292. doi:10.2307/1391660");
        if (!result.test.is_exhaustive)
            methods.refer("Phipson B, Smyth GK (2010). Permutation p-values should never be zero. "
                          "Stat Appl Genet Mol Biol 9:39. doi:10.2202/1544-6115.1585");
        methods.refer("Nichols TE, Holmes AP (2002). Nonparametric permutation tests for "
                      "functional neuroimaging. Hum Brain Mapp 15:1. doi:10.1002/hbm.1058");
        methods.refer("Benjamini Y, Hochberg Y (1995). Controlling the false discovery rate. J R "
                      "Stat Soc B 57:289. doi:10.1111/j.2517-6161.1995.tb02031.x");
    }
    if (results.contrasts.empty() || request.thresholds.empty())
        return;
    QStringList thresholds;
    for (const double threshold : request.thresholds)
        thresholds += QString::number(threshold);
    methods.add(QStringLiteral("Networks are connected components of the edges above %1 (network-"
                               "based statistic; Zalesky 2010); their extent and intensity were "
                               "compared with the largest of each rearrangement. It is the "
                               "component that is significant, not any of its edges.%2")
                    .arg(thresholds.join(QStringLiteral(", ")),
                         thresholds.size() > 1
                             ? QStringLiteral(" p values are not corrected for there being several "
                                              "thresholds.")
                             : QString()));
    methods.refer("Zalesky A, Fornito A, Bullmore ET (2010). Network-based statistic: identifying "
                  "differences in brain networks. NeuroImage 53:1197. "
                  "doi:10.1016/j.neuroimage.2010.06.041");
}

void addDistance(Methods &methods, const GroupRequest &request, const DistanceResult &result)
{
    methods.add(QStringLiteral("Matrices were compared by their spectral distance, the norm of the "
                               "difference of their sorted eigenvalues (Wilson and Zhu 2008)."));
    methods.refer("Wilson RC, Zhu P (2008). A study of graph spectra for comparing graphs and "
                  "trees. Pattern Recognit 41:2833. doi:10.1016/j.patcog.2008.03.011");
    for (const DistanceContrast &contrast : result.contrasts) {
        methods.add(QStringLiteral("Whether distances follow contrast %1 was tested by a distance-"
                                   "based analysis of variance (Anderson 2001) with %2 "
                                   "permutations, seed %3. Groups of unequal spread alone can "
                                   "reject.")
                        .arg(QString::fromStdString(contrast.name))
                        .arg(contrast.rearrangements)
                        .arg(request.seed));
        methods.refer("Anderson MJ (2001). A new method for non-parametric multivariate analysis "
                      "of variance. Austral Ecol 26:32. "
                      "doi:10.1111/j.1442-9993.2001.01070.pp.x");
    }
    if (result.dbicc) {
        methods.add(QStringLiteral("The dbICC (Xu 2021) is 1 less the mean squared distance within "
                                   "participants over that between them."));
        methods.refer("Xu M, Reiss PT, Cribben I (2021). Generalized reliability based on "
                      "distances. Biometrics 77:258. doi:10.1111/biom.13287");
    }
}

void addSessions(Methods &methods, const GroupRequest &request, const GroupResults &results)
{
    if (results.icc) {
        methods.add(QStringLiteral("Intraclass correlations (1,1), (2,1) and (3,1) of each edge "
                                   "(Shrout and Fleiss 1979) are over %1 with the sessions %2.")
                        .arg(counted(qint64(results.icc->participants.size()), "participant"),
                             listed(results.icc->sessions)));
        methods.refer("Shrout PE, Fleiss JL (1979). Intraclass correlations: uses in assessing "
                      "rater reliability. Psychol Bull 86:420. doi:10.1037/0033-2909.86.2.420");
    }
    if (results.fingerprints.empty())
        return;
    methods.add(QStringLiteral("Participants were identified by the correlation of their edges in "
                               "two sessions (Finn 2015); p from %1 shuffles of the labels, seed "
                               "%2. Idiff after Amico and Goñi (2018).")
                    .arg(results.fingerprints.front().fingerprint.null_1_to_2.size())
                    .arg(request.seed));
    methods.refer("Finn ES et al. (2015). Functional connectome fingerprinting. Nat Neurosci "
                  "18:1664. doi:10.1038/nn.4135");
    methods.refer("Amico E, Goñi J (2018). The quest for identifiability in human functional "
                  "connectomes. Sci Rep 8:8254. doi:10.1038/s41598-018-25089-1");
}

void addMotion(Methods &methods, const GroupData &data, const GroupResults &results)
{
    if (results.qcfc.empty())
        return;
    methods.add(QStringLiteral("QC-FC (Ciric 2017) is the partial correlation of each edge with "
                               "mean framewise displacement before censoring, given %1.")
                    .arg(data.motion.columns.empty() ? QStringLiteral("a constant")
                                                     : listed(data.motion.columns)));
    methods.refer("Ciric R et al. (2017). Benchmarking of participant-level confound regression "
                  "strategies for the control of motion artifact in studies of functional "
                  "connectivity. NeuroImage 154:174. doi:10.1016/j.neuroimage.2017.03.020");
}

} // namespace

GroupMethods groupMethods(const GroupRequest &request, const GroupData &data,
                          const GroupResults &results)
{
    Methods methods;
    addData(methods, request, data);
    addModel(methods, request, results);
    if (results.distance)
        addDistance(methods, request, *results.distance);
    addSessions(methods, request, results);
    addMotion(methods, data, results);
    return methods.take();
}

} // namespace corvane
