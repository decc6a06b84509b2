// SPDX-License-Identifier: GPL-3.0-or-later
// How well each strategy brings back the correlations that a run was made with. The numbers are
// those of the table in docs/cleaning.md.
#include "host/extract/connectome.h"
#include "host/import/example_head.h"
#include "host/import/example_rest.h"
#include "host/import/example_signals.h"
#include "tests/host/support/host_files.h"

#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using Eigen::Index;
using Eigen::MatrixXd;

constexpr int regionCount = example::regionCount;

/// What stands in each place of a list.
double correlation(const std::vector<double> &a, const std::vector<double> &b)
{
    const Eigen::Map<const Eigen::ArrayXd> x(a.data(), Index(a.size()));
    const Eigen::Map<const Eigen::ArrayXd> y(b.data(), Index(b.size()));
    const Eigen::ArrayXd dx = x - x.mean();
    const Eigen::ArrayXd dy = y - y.mean();
    return (dx * dy).sum() / std::sqrt(dx.square().sum() * dy.square().sum());
}

std::vector<double> trueCorrelations()
{
    const auto series = example::restSeries();
    std::vector<double> pairs;
    for (std::size_t a = 0; a < regionCount; ++a)
        for (std::size_t b = 0; b < a; ++b)
            pairs.push_back(example::correlation(series[a], series[b]));
    return pairs;
}

struct Case {
    const char *strategy;
    signals::Order order;
    double fdThreshold; ///< 0 for the strategy's own
    double similarity;  ///< correlation of the pairs found with the true ones
    double error;       ///< root of the mean squared difference
};

void PrintTo(const Case &tested, std::ostream *stream)
{
    *stream << tested.strategy << ", " << signals::name(tested.order) << ", FD "
            << tested.fdThreshold;
}

class KnownTruth : public testing::TestWithParam<Case>
{
protected:
    static void SetUpTestSuite()
    {
        s_folder = new TemporaryFolder;
        OutputFolder output(s_folder->path(), QStringLiteral("test"));
        writeRestingRun(output);
        writeAtlas(output.path(QStringLiteral("atlas.nii.gz")));
        ASSERT_EQ(output.commit(), QStringList());
    }
    static void TearDownTestSuite() { delete s_folder; }

    static void writeAtlas(const QString &path)
    {
        const example::Grid grid{{60, 72, 60}, 3, {-88.5, -124.5, -70.5}};
        std::vector<quint8> labels;
        example::forEachVoxel(grid, [&](double x, double y, double z) {
            labels.push_back(example::labelAt(x, y, z));
        });
        GzipFile file(path);
        example::writeHeader(file, grid, 1, example::Bytes);
        file.write(labels.data(), qint64(labels.size()));
        file.commit();
    }

    static Connectome connectome(const Case &wanted)
    {
        ConnectomeRequest request;
        request.run = s_folder->path(restfiles::run);
        request.atlas = s_folder->path("atlas.nii.gz");
        request.mask = s_folder->path(restfiles::mask);
        request.cleaning.confounds = s_folder->path(restfiles::confounds);
        request.cleaning.strategy.strategy = wanted.strategy;
        request.cleaning.settings.order = wanted.order;
        if (wanted.order == signals::Order::butterworth)
            request.cleaning.settings.high_pass = 0.008;
        if (wanted.fdThreshold > 0)
            request.cleaning.strategy.fd_threshold = wanted.fdThreshold;
        return makeConnectome(request);
    }

    static TemporaryFolder *s_folder;
};

TemporaryFolder *KnownTruth::s_folder = nullptr;

TEST_P(KnownTruth, ComesBackAsWellAsTheGuideSays)
{
    const std::vector<double> truth = trueCorrelations();
    const Connectome found = connectome(GetParam());
    std::vector<double> pairs;
    double squares = 0;
    for (Index a = 0; a < regionCount; ++a)
        for (Index b = 0; b < a; ++b) {
            pairs.push_back(found.matrices[0].matrix.values(a, b));
            squares += std::pow(pairs.back() - truth[pairs.size() - 1], 2);
        }
    const double similarity = correlation(pairs, truth);
    const double error = std::sqrt(squares / double(pairs.size()));
    EXPECT_NEAR(similarity, GetParam().similarity, 0.003);
    EXPECT_NEAR(error, GetParam().error, 0.003);
    for (const double share : found.coverage)
        EXPECT_GT(share, 0.8);
}

constexpr auto joint = signals::Order::joint;
INSTANTIATE_TEST_SUITE_P(
    Strategies, KnownTruth,
    testing::Values(Case{"none", joint, 0, 0.292, 0.575}, Case{"motion6", joint, 0, 0.721, 0.674},
                    Case{"24P", joint, 0, 0.734, 0.483}, Case{"24P", joint, 0.5, 0.763, 0.423},
                    Case{"simple", joint, 0, 0.977, 0.088},
                    Case{"simple-gsr", joint, 0, 0.985, 0.068},
                    Case{"compcor", joint, 0, 0.985, 0.062},
                    Case{"acompcor", joint, 0, 0.990, 0.049}, Case{"36P", joint, 0, 0.979, 0.077},
                    Case{"36P", joint, 0.5, 0.957, 0.113},
                    Case{"scrubbing", joint, 0, 0.955, 0.111},
                    Case{"36P", signals::Order::cosine, 0.5, 0.959, 0.110},
                    Case{"36P", signals::Order::butterworth, 0.5, 0.956, 0.110}));

} // namespace
} // namespace corvane
