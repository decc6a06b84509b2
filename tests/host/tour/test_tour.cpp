// SPDX-License-Identifier: GPL-3.0-or-later
//
// The whole workflow in the real program with the real plugin.
#include "tests/host/support/host_files.h"
#include "tests/host/support/interrupted_program.h"
#include "tests/host/support/program.h"

#include <QImage>
#include <gmock/gmock.h>

namespace corvane
{

using testing::HasSubstr;

TEST(Tour, GoesThroughTheWholeWorkflowAndKeepsAPictureOfEachStep)
{
    const TemporaryFolder folder;
    const QString out = folder.path("pictures");
    const ProgramRun run = runCorvane({QStringLiteral("tour"), QStringLiteral("--out"), out});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(run.errors.toStdString(), "");

    const QByteArray captions = bytesOf(out + QStringLiteral("/captions.md"));
    const QStringList pictures =
        QDir(out).entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name);
    EXPECT_EQ(pictures.size(), 23);
    EXPECT_EQ(captions.count("\n!["), pictures.size());
    EXPECT_EQ(run.output, out.toUtf8() + ": 23 pictures, captions.md\n");
    for (const QString &picture : pictures) {
        const QImage image(QDir(out).filePath(picture));
        EXPECT_GT(image.width(), 300) << picture.toStdString();
        EXPECT_THAT(captions.toStdString(), HasSubstr("(" + picture.toStdString() + ")"));
    }
    for (const char *step : {"workbench", "dataset", "voi-selection", "results", "ring", "browser",
                             "line-plot", "exports", "distance", "connectome-run", "connectome",
                             "connectome-node", "connectome-threshold", "connectome-evidence",
                             "connectome-measures", "connectome-difference", "connectome-export"})
        EXPECT_EQ(pictures.filter(QStringLiteral("-%1.png").arg(QLatin1String(step))).size(), 1)
            << step;
}

TEST(Tour, LeavesNothingWhenASignalEndsIt)
{
    const TemporaryFolder temporary;
    const TemporaryFolder folder;
    qputenv("TMPDIR", temporary.path().toUtf8());
    const QStringList arguments{QStringLiteral("tour"), QStringLiteral("--out"),
                                folder.path("pictures")};
    const auto datasetIsThere = [&] {
        return isInWork(temporary.path(), QStringLiteral("example.vtc"));
    };
    const InterruptedRun run =
        runInterrupted(QStringLiteral(CORVANE_PROGRAM), arguments, {{SIGTERM, datasetIsThere}});
    EXPECT_EQ(run.signal, SIGTERM);
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(hiddenIn(temporary.path()).isEmpty());
    EXPECT_TRUE(folder.entries().isEmpty());

    // What a killed tour has left goes with the next.
    runInterrupted(QStringLiteral(CORVANE_PROGRAM), arguments, {{SIGKILL, datasetIsThere}});
    const QStringList left = hiddenIn(temporary.path());
    EXPECT_EQ(left.size(), 3); // settings, dataset, exports
    const auto leftIsGone = [&] {
        const QStringList now = hiddenIn(temporary.path());
        return std::none_of(left.begin(), left.end(),
                            [&](const QString &name) { return now.contains(name); });
    };
    runInterrupted(QStringLiteral(CORVANE_PROGRAM), arguments, {{SIGTERM, leftIsGone}});
    EXPECT_TRUE(hiddenIn(temporary.path()).isEmpty());
    qunsetenv("TMPDIR");
}

TEST(Tour, SaysThatItsPluginIsMissing)
{
    const TemporaryFolder folder;
    const ProgramRun run =
        runCorvane({QStringLiteral("tour"), QStringLiteral("--out"), folder.path("pictures"),
                    QStringLiteral("--plugins"), folder.path()});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors.toStdString(), HasSubstr("expected \"Tessera Analysis\"\n"));
}

} // namespace corvane
