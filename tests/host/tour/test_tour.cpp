// SPDX-License-Identifier: GPL-3.0-or-later
//
// The whole workflow in the real program with the real plugin.
#include "tests/host/support/host_files.h"
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
    EXPECT_EQ(pictures.size(), 15);
    EXPECT_EQ(captions.count("\n!["), pictures.size());
    EXPECT_EQ(run.output, out.toUtf8() + ": 15 pictures, captions.md\n");
    for (const QString &picture : pictures) {
        const QImage image(QDir(out).filePath(picture));
        EXPECT_GT(image.width(), 300) << picture.toStdString();
        EXPECT_THAT(captions.toStdString(), HasSubstr("(" + picture.toStdString() + ")"));
    }
    for (const char *step : {"workbench", "dataset", "voi-selection", "results", "ring", "browser",
                             "line-plot", "exports", "distance"})
        EXPECT_EQ(pictures.filter(QString::fromLatin1(step)).size(), 1) << step;
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
