// SPDX-License-Identifier: GPL-3.0-or-later
//
// "compute --seeds NAMES": connectivity of seeds with all nodes.
#include "tests/host/compute/compute_fixture.h"

#include <QJsonArray>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

class ComputeSeeds : public ComputeCommand
{
protected:
    /// Runs the command, which must succeed, into "out".
    void compute(const QStringList &more, const char *vtc = "run.vtc")
    {
        const ProgramRun run = runCorvane(arguments(more, vtc));
        ASSERT_EQ(run.status, 0) << run.errors.constData();
    }
    QByteArray output(const char *name) const
    {
        return bytesOf(folder.path(QStringLiteral("out/") + QLatin1String(name)));
    }
};

TEST_F(ComputeSeeds, AreATableOfTheirRowsBesideTheWholeMatrix)
{
    compute({});
    const QStringList plain = outputs();
    const QByteArray matrix = output("connectivity.csv");
    compute({"--seeds", "three,\"V, one\""});
    EXPECT_EQ(output("connectivity.csv"), matrix) << "all VOIs are nodes";
    const QByteArrayList lines = matrix.split('\n');
    EXPECT_EQ(output("seeds.csv"),
              ",\"V, one\",two,three,none\nthree," + lines[2] + "\n\"V, one\"," + lines[0] + "\n");
    QStringList files = outputs();
    files.removeOne("seeds.csv");
    EXPECT_EQ(files, plain);
    EXPECT_EQ(summary()["settings"].toObject()["seeds"], (QJsonArray{"three", "V, one"}));
    EXPECT_EQ(summary()["slices"].toArray()[0].toObject()["seeds"], "seeds.csv");
}

TEST_F(ComputeSeeds, HaveATableForEachInterval)
{
    compute({"--seeds", "two", "--use-protocol", "--values", "signed", "--names"}, "linked.vtc");
    EXPECT_THAT(outputs(), testing::IsSupersetOf({"seeds_0_left_right.csv", "seeds_3_cue.csv"}));
    const QByteArrayList lines = output("connectivity_2_left_right.csv").split('\n');
    EXPECT_EQ(output("seeds_2_left_right.csv"), lines[0] + '\n' + lines[2] + '\n');
    EXPECT_TRUE(lines[2].startsWith("two,"));
}

TEST_F(ComputeSeeds, OfANameThatSeveralNodesHaveAreAllOfThem)
{
    VoiSet set = vois();
    set.vois[2].name = QStringLiteral("two");
    writeVoiFile(folder.path("set.voi"), set);
    compute({"--seeds", "two, two"});
    const QByteArrayList lines = output("connectivity.csv").split('\n');
    EXPECT_EQ(output("seeds.csv"),
              ",\"V, one\",two,two,none\ntwo," + lines[1] + "\ntwo," + lines[2] + "\n");
}

TEST_F(ComputeSeeds, ThatAreUnknownAreToldWithThoseThereAre)
{
    const ProgramRun run = runCorvane(arguments({"--seeds", "two,Calcarine L"}));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors,
              "Corvane: " + folder.path("set.voi").toUtf8() +
                  ": seed \"Calcarine L\": found no node of that name, expected of these: "
                  "\"V, one\", two, three, none\n");
    EXPECT_FALSE(QDir(folder.path("out")).exists());
}

TEST_F(ComputeSeeds, AreNumbersOrNamesButNotBoth)
{
    for (const char *mixed : {"two,1", "1,two", "two,", ",two", "-1", "two,,three"}) {
        const ProgramRun run = runCorvane(arguments({"--seeds", QString::fromUtf8(mixed)}));
        EXPECT_EQ(run.status, 2) << mixed;
        EXPECT_THAT(run.errors.toStdString(),
                    testing::HasSubstr("expected all, or VOI numbers from 0, or names, with "
                                       "commas between them"));
        EXPECT_FALSE(QDir(folder.path("out")).exists());
    }
}

} // namespace

} // namespace corvane
