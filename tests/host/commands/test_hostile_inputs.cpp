// SPDX-License-Identifier: GPL-3.0-or-later
//
// Names that are code elsewhere, links in folders, and files that are large or deep beyond reason.
#include "host/files/graph_table.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/left_behind.h"
#include "tests/host/support/program.h"
#include "tests/host/support/small_study.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gmock/gmock.h>

#include <sys/stat.h>

namespace corvane
{
namespace
{

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const QStringList hostileNames{
    QStringLiteral("<script>alert(1)</script>"), QStringLiteral("=cmd|' /C calc'!A0"),
    QStringLiteral("\"><img src=x onerror=alert(1)>"), QStringLiteral("]]>-->&amp;&lt;")};

class Hostile : public testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.path(name); }

    QByteArray shown(const char *file) const { return bytesOf(path(file)); }

    /// A command that has to refuse something in one line.
    std::string refusal(const QStringList &arguments) const
    {
        const ProgramRun run = runCorvane(arguments);
        EXPECT_EQ(run.status, 1) << run.errors.toStdString();
        EXPECT_EQ(run.errorLines(), 1) << run.errors.toStdString();
        return run.errors.toStdString();
    }

    void succeed(const QStringList &arguments) const
    {
        const ProgramRun run = runCorvane(arguments);
        EXPECT_EQ(run.status, 0) << run.errors.toStdString();
    }

    TemporaryFolder m_folder;
};

// ---- names

/// Courses of four nodes with those names, others for each number.
QByteArray hostileSeries(int number = 0)
{
    QByteArray text;
    for (const QString &name : hostileNames)
        text += (text.isEmpty() ? "\"" : "\t\"") +
                QString(name).replace(QLatin1Char('"'), QLatin1String("\"\"")).toUtf8() + '"';
    text += '\n';
    for (int t = 0; t < 30; ++t)
        for (int node = 0; node < 4; ++node)
            text += QByteArray::number((t * (7 + 4 * node) + (1 + number) * t * t) % 31) +
                    (node < 3 ? '\t' : '\n');
    return text;
}

TEST_F(Hostile, NamesReadBackFromTablesAsTheyWereWritten)
{
    putBytes(path("series.tsv"), hostileSeries());
    succeed({QStringLiteral("compute"), QStringLiteral("--timeseries"), path("series.tsv"),
             QStringLiteral("--names"), QStringLiteral("--out"), path("out")});
    EXPECT_EQ(readGraphTable(path("out/connectivity.csv")).names, hostileNames);
    EXPECT_EQ(readGraphTable(path("out/mst.csv")).names, hostileNames);
    const QJsonArray nodes = QJsonDocument::fromJson(shown("out/summary.json"))
                                 .object()[QStringLiteral("nodes")]
                                 .toArray();
    for (int node = 0; node < 4; ++node)
        EXPECT_EQ(nodes[node].toObject()[QStringLiteral("name")].toString(), hostileNames[node]);
    succeed({QStringLiteral("graph"), path("out/connectivity.csv"), QStringLiteral("--out"),
             path("graph")});
    EXPECT_THAT(shown("graph/features.csv").toStdString(), HasSubstr("\n1,=cmd|' /C calc'!A0,"));
}

TEST_F(Hostile, NamesAreTextInFiguresAndPages)
{
    putBytes(path("series.tsv"), hostileSeries());
    succeed({QStringLiteral("compute"), QStringLiteral("--timeseries"), path("series.tsv"),
             QStringLiteral("--names"), QStringLiteral("--out"), path("out")});
    succeed({QStringLiteral("figure"), path("out"), QStringLiteral("--view"),
             QStringLiteral("matrix"), QStringLiteral("--width"), QStringLiteral("600"),
             QStringLiteral("--out"), path("figure.svg")});

    QByteArray table = "participant_id\tmatrix\tgroup\n";
    for (int i = 0; i < 8; ++i) {
        const QByteArray number = QByteArray::number(i);
        putBytes(path("series.tsv"), hostileSeries(i));
        succeed({QStringLiteral("compute"), QStringLiteral("--timeseries"), path("series.tsv"),
                 QStringLiteral("--names"), QStringLiteral("--out"),
                 path(("out" + number).constData())});
        table += "\"><script>alert(" + number + ")</script>\tout" + number + "/connectivity.csv\t" +
                 (i % 2 == 0 ? "<script>" : "=cmd()") + '\n';
    }
    putBytes(path("table.tsv"), table);
    succeed({QStringLiteral("group"), QStringLiteral("--table"), path("table.tsv"),
             QStringLiteral("--test"), QStringLiteral("distance"), QStringLiteral("--formula"),
             QStringLiteral("group"), QStringLiteral("--contrast"),
             QStringLiteral("<script>=group[=cmd()]"), QStringLiteral("--permutations"),
             QStringLiteral("9"), QStringLiteral("--page"), QStringLiteral("--out"),
             path("group")});
    for (const char *file : {"figure.svg", "group/group.html"})
        EXPECT_THAT(shown(file).toStdString(),
                    AllOf(HasSubstr("&lt;script&gt;"), Not(HasSubstr("<script>alert")),
                          Not(HasSubstr("<img src=x")), Not(HasSubstr("]]>--"))))
            << file;
}

// ---- links

/// The files of a folder, with what is in them.
QMap<QString, QByteArray> filesOf(const QString &folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator all(folder, QDir::Files | QDir::Hidden);
    while (all.hasNext()) {
        const QString file = all.next();
        files[file] = bytesOf(file);
    }
    return files;
}

class HostileLinks : public Hostile
{
protected:
    HostileLinks()
    {
        putBytes(path("m.csv"), "0,1\n1,0\n");
        EXPECT_TRUE(QDir().mkpath(path("outside")) && QDir().mkpath(path("out")));
        putBytes(path("outside/features.csv"), "mine");
        putBytes(path("outside/mine"), "mine");
        m_outside = filesOf(path("outside"));
    }

    void expectWritten(const char *place) const
    {
        succeed({QStringLiteral("graph"), path("m.csv"), QStringLiteral("--out"), path("out")});
        EXPECT_FALSE(QFileInfo(path(place)).isSymLink());
        EXPECT_TRUE(shown("out/features.csv").startsWith("node,name,"));
        EXPECT_EQ(filesOf(path("outside")), m_outside);
    }

    QMap<QString, QByteArray> m_outside;
};

TEST_F(HostileLinks, AFileTakesThePlaceOfALinkAndLeavesWhatItPointsTo)
{
    ASSERT_TRUE(QFile::link(path("outside/features.csv"), path("out/features.csv")));
    expectWritten("out/features.csv");
}

TEST_F(HostileLinks, NoFileIsMadeWhereALinkPointsTo)
{
    ASSERT_TRUE(QFile::link(path("outside/new.csv"), path("out/features.csv")));
    expectWritten("out/features.csv");
}

TEST_F(HostileLinks, HiddenFoldersThatAreLinksAreNotFollowed)
{
    for (const char *hidden : {"out/.corvane-unfinished", "out/.corvane-outputs.json"}) {
        QFile::remove(path(hidden));
        ASSERT_TRUE(QFile::link(path("outside"), path(hidden)));
        expectWritten("out/features.csv");
    }
    // As a process has left it that is gone.
    const QString left = path("out/") + HiddenName{goneProcess(), 1}.text();
    ASSERT_TRUE(QFile::link(path("outside"), left));
    expectWritten("out/features.csv");
    EXPECT_FALSE(QFileInfo(left).isSymLink());
}

TEST_F(HostileLinks, AFigureTakesThePlaceOfALink)
{
    ASSERT_TRUE(QFile::link(path("outside/mine"), path("figure.tsv")));
    succeed({QStringLiteral("figure"), path("m.csv"), QStringLiteral("--out"), path("figure.tsv")});
    EXPECT_FALSE(QFileInfo(path("figure.tsv")).isSymLink());
    EXPECT_EQ(filesOf(path("outside")), m_outside);
}

/// A user may keep the folder elsewhere.
TEST_F(HostileLinks, AFolderMayBeALink)
{
    ASSERT_TRUE(QDir(path("out")).removeRecursively());
    ASSERT_TRUE(QFile::link(path("outside"), path("out")));
    succeed({QStringLiteral("graph"), path("m.csv"), QStringLiteral("--out"), path("out")});
    EXPECT_TRUE(QFileInfo(path("out")).isSymLink());
    EXPECT_TRUE(shown("outside/features.csv").startsWith("node,name,"));
    EXPECT_EQ(shown("outside/mine"), "mine");
}

/// Pipes, devices, files of the system and loops in a pipeline's folder stop no other run.
TEST_F(Hostile, PipesDevicesAndLoopsInAStudyFailAlone)
{
    const SmallStudy study(path("study"));
    const auto file = [&](const char *participant, const char *rest) {
        return study.path(QStringLiteral("sub-%1/func/sub-%1_task-rest%2")
                              .arg(QLatin1String(participant), QLatin1String(rest)));
    };
    const char *const image = "_space-T1w_desc-preproc_bold.nii.gz";
    for (const char *participant : {"01", "02", "03", "04", "05"})
        study.addRun(QStringLiteral("sub-%1/func").arg(QLatin1String(participant)),
                     QStringLiteral("sub-%1_task-rest").arg(QLatin1String(participant)),
                     QStringLiteral("space-T1w"));
    ASSERT_TRUE(QFile::remove(file("01", image)));
    ASSERT_EQ(mkfifo(file("01", image).toUtf8().constData(), 0600), 0);
    const QString confounds = file("02", "_desc-confounds_timeseries.tsv");
    ASSERT_TRUE(QFile::remove(confounds));
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/zero"), confounds));
    ASSERT_TRUE(QFile::remove(file("03", image)));
    ASSERT_TRUE(QFile::link(QStringLiteral("/etc/passwd"), file("03", image)));
    putBytes(file("04", "_space-T1w_desc-preproc_bold.json"),
             "{\"RepetitionTime\":" + QByteArray(100000, '[') + QByteArray(100000, ']') + '}');
    ASSERT_TRUE(QFile::link(QStringLiteral(".."), study.path(QStringLiteral("sub-05/func/up"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("."), study.path(QStringLiteral("sub-05/loop"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("self"), study.path(QStringLiteral("sub-05/self"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("/"), study.path(QStringLiteral("sub-06"))));

    const ProgramRun run = runCorvane({QStringLiteral("cohort"), study.path(), path("out"),
                                       QStringLiteral("participant"), QStringLiteral("--atlas"),
                                       study.addAtlas(), QStringLiteral("--clean"),
                                       QStringLiteral("motion6"), QStringLiteral("--min-seconds"),
                                       QStringLiteral("10"), QStringLiteral("--no-pages")});
    EXPECT_EQ(run.status, 1);
    const std::string said = run.output.toStdString();
    EXPECT_THAT(said, HasSubstr("_bold.nii.gz: opening: found something that is no plain file"));
    EXPECT_THAT(said, HasSubstr("_timeseries.tsv: opening: found something that is no plain file"));
    EXPECT_THAT(said, HasSubstr("expected a NIfTI file"));
    EXPECT_THAT(said, HasSubstr("found too deeply nested document, expected a JSON object"));
    EXPECT_THAT(said, HasSubstr("sub-05_task-rest_space-T1w_atlas-Four: done"));
    EXPECT_THAT(said, HasSubstr("sub-06_atlas-Four: missing"));
}

// ---- sizes

TEST_F(Hostile, SummariesThatAreDeepLargeOrEmptyAreRefused)
{
    ASSERT_TRUE(QDir().mkpath(path("result")));
    const auto refused = [&](const QByteArray &json) {
        putBytes(path("result/summary.json"), json);
        return refusal({QStringLiteral("figure"), path("result"), QStringLiteral("--out"),
                        path("figure.svg")});
    };
    EXPECT_THAT(refused("{}"), HasSubstr("its files: found no matrix, expected one or more"));
    EXPECT_THAT(refused("{\"slices\":[]}"), HasSubstr("found no matrix"));
    EXPECT_THAT(refused("{\"slices\":" + QByteArray(200000, '[') + QByteArray(200000, ']') + '}'),
                HasSubstr("found too deeply nested document"));
    QFile large(path("result/summary.json"));
    ASSERT_TRUE(large.resize((qint64(1) << 28) + 1)); // a hole
    EXPECT_THAT(refusal({QStringLiteral("figure"), path("result"), QStringLiteral("--out"),
                         path("figure.svg")}),
                HasSubstr("expected at most 268435456"));
}

TEST_F(Hostile, TablesOfMoreColumnsRowsOrCellsThanAnybodyHasAreRefused)
{
    putBytes(path("wide.csv"), QByteArray("1,").repeated(100001));
    for (const QStringList &command :
         {QStringList{QStringLiteral("graph"), path("wide.csv")},
          QStringList{QStringLiteral("compute"), QStringLiteral("--timeseries"), path("wide.csv")}})
        EXPECT_THAT(refusal(command + QStringList{QStringLiteral("--out"), path("out")}),
                    HasSubstr("row 1: found 100001 columns or more, expected at most 100000"));
    putBytes(path("long.csv"), QByteArray("1\n").repeated(10000001));
    EXPECT_THAT(
        refusal({QStringLiteral("graph"), path("long.csv"), QStringLiteral("--out"), path("out")}),
        HasSubstr("found 10000001 rows or more, expected at most 10000000"));
}

TEST_F(Hostile, ControlCharactersInNamesAreRefused)
{
    for (const char *name : {"a\tb", "a\nb", "a\x01b", "a\x7f"}) {
        putBytes(path("m.csv"), QByteArray("\"") + name + "\",\"b\"\n0,1\n1,0\n");
        EXPECT_THAT(
            refusal({QStringLiteral("graph"), path("m.csv"), QStringLiteral("--out"), path("out")}),
            HasSubstr("found a control character"));
    }
    EXPECT_FALSE(QFileInfo::exists(path("out")));
}

} // namespace
} // namespace corvane
