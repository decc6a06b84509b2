// SPDX-License-Identifier: GPL-3.0-or-later
// The page of a group, from data made here.
#include "host/report/group_methods.h"
#include "host/report/group_page.h"
#include "tests/host/report/page_reader.h"
#include "tests/statistics/random_data.h"

#include <gmock/gmock.h>

namespace corvane
{
namespace
{

constexpr int subjects = 24;
constexpr int nodes = 6;

/// Two groups of which edge 0-1 and 1-2 differ a lot, in two sessions.
GroupData someData()
{
    RandomNumbers random(3);
    GroupData data;
    data.edges = 0.2 * random.data(subjects, nodes * (nodes - 1) / 2);
    data.isFisherZ = true;
    statistics::Table table;
    table.columns = {{"group", {}}, {"mean_fd", {}}};
    data.motion.meanFd.resize(subjects);
    for (int i = 0; i < subjects; ++i) {
        const bool isPatient = i % 4 > 1;
        data.participants.push_back("sub-" + std::to_string(i / 2));
        data.sessions.push_back(i % 2 == 0 ? "a" : "b");
        table.columns[0].values.push_back(isPatient ? "P" : "C");
        table.columns[1].values.push_back(std::to_string(0.1 + 0.01 * ((7 * i) % 11)));
        data.motion.meanFd(i) = 0.1 + 0.01 * ((7 * i) % 11);
        data.edges(i, 0) += isPatient ? 0.8 : -0.8; // 0-1
        data.edges(i, 5) += isPatient ? 0.8 : -0.8; // 1-2
    }
    data.design = statistics::make_design("group + mean_fd", table);
    for (int node = 0; node < nodes; ++node)
        data.nodes.push_back("<node " + std::to_string(node) + ">");
    data.motion.covariates = data.design.matrix.leftCols(2);
    data.motion.columns = {"(Intercept)", "group[P]"};
    data.motion.uncleaned = data.edges;
    data.motion.uncleaned.col(3) += data.motion.meanFd;
    data.motion.distances = Eigen::ArrayXd::LinSpaced(data.edges.cols(), 10, 90);
    data.left = QStringList{QStringLiteral("sub-99 is left out: no group")};
    return data;
}

GroupRequest someRequest()
{
    GroupRequest request;
    request.tests = {GroupTest::Glm, GroupTest::Nbs, GroupTest::Icc, GroupTest::Fingerprint,
                     GroupTest::QcFc};
    request.formula = QStringLiteral("group + mean_fd");
    request.contrasts = QStringList{QStringLiteral("patients=group[P]")};
    request.thresholds = {1.5, 3.1}; // above the lower one lie edges of noise, too
    request.permutations = 199;
    request.seed = 17;
    return request;
}

TEST(GroupPage, TellsOfExclusionsMotionTestsAndMethods)
{
    const GroupData data = someData();
    const GroupRequest request = someRequest();
    const GroupResults results = testGroup(data, request, {});
    const QByteArray bytes = groupPage(request, data, results);
    const PageContents page = readPage(bytes);
    EXPECT_EQ(page.fault, QString());
    EXPECT_EQ(page.headings,
              QStringList({QStringLiteral("Group of 24 matrices"),
                           QStringLiteral("Who was left out"), QStringLiteral("Motion (QC-FC)"),
                           QStringLiteral("Contrast patients"), QStringLiteral("Reliability"),
                           QStringLiteral("Methods"), QStringLiteral("References")}));
    EXPECT_EQ(page.pictures.size(), 6U) << "two clouds, the matrix, edges, two of networks";
    EXPECT_TRUE(page.text.contains(QStringLiteral("sub-99 is left out: no group")));
    EXPECT_TRUE(page.text.contains(
        QStringLiteral("It is a network that is significant, not any of its edges.")));
    const QStringList network = page.row(QStringLiteral("3.1"));
    ASSERT_EQ(network.size(), 6);
    EXPECT_EQ(network[2], QStringLiteral("2"));
    EXPECT_EQ(network[4], QStringLiteral("0.005")) << "(0 + 1) / (199 + 1)";
    EXPECT_EQ(page.row(QStringLiteral("<node 0>"))[1], QStringLiteral("<node 1>"));
    QStringList captions;
    for (const QXmlStreamAttributes &picture : page.pictures)
        captions += picture.value(QStringLiteral("alt")).toString();
    EXPECT_THAT(captions, testing::Contains(testing::Truly([](const QString &caption) {
                    return caption.startsWith(QStringLiteral("patients: 1 network at t > 3.1"));
                })));
    EXPECT_THAT(captions, testing::Contains(testing::Truly([](const QString &caption) {
                    return caption.startsWith(QStringLiteral("2 edges with p_fwe < 0.05"));
                })));
    EXPECT_GT(results.contrasts[0].test.networks[0].components.size(), 1U);
    EXPECT_THAT(captions, testing::Contains(testing::Truly([](const QString &caption) {
                    return caption.startsWith(QStringLiteral("patients: 1 network at t > 1.5"));
                })));
    EXPECT_LT(bytes.size(), 3000000);
    EXPECT_EQ(groupPage(request, data, results), bytes);
}

QString joined(const GroupMethods &methods)
{
    return methods.paragraphs.join(QLatin1Char('\n'));
}

TEST(GroupPage, MethodsTellWhatWasDoneAndNothingElse)
{
    const GroupData data = someData();
    GroupRequest request = someRequest();
    const GroupMethods all = groupMethods(request, data, testGroup(data, request, {}));
    for (const char *said :
         {"24 matrices with 6 nodes and 15 edges each", "Fisher's z", "199 random permutations",
          "seed 17", "Freedman and Lane", "with 21 degrees of freedom", "above 1.5, 3.1",
          "the component that is significant, not any of its edges", "12 participants",
          "given (Intercept), group[P]"})
        EXPECT_TRUE(joined(all).contains(QLatin1String(said))) << said;
    EXPECT_TRUE(all.references.join(QLatin1Char(' ')).contains(QStringLiteral("Zalesky")));

    request.tests = {GroupTest::Icc};
    const GroupMethods one = groupMethods(request, data, testGroup(data, request, {}));
    for (const char *unsaid : {"permutations", "max-T", "QC-FC", "Networks", "identified"})
        EXPECT_FALSE(joined(one).contains(QLatin1String(unsaid))) << unsaid;
    EXPECT_EQ(one.references.size(), 2) << "Fisher, and Shrout and Fleiss";

    request = someRequest();
    request.tests = {GroupTest::Glm};
    request.thresholds.clear();
    request.contrasts = QStringList{QStringLiteral("any=group[P];mean_fd")};
    const QString f = joined(groupMethods(request, data, testGroup(data, request, {})));
    EXPECT_TRUE(f.contains(QStringLiteral("tested at every edge by F")));
    EXPECT_FALSE(f.contains(QStringLiteral("sided")));
    EXPECT_FALSE(f.contains(QStringLiteral("Freedman")));
}

} // namespace
} // namespace corvane
