// SPDX-License-Identifier: GPL-3.0-or-later
// The pages of a run, a subject and a study, read as XML.
#include "host/extract/node_measures.h"
#include "host/report/atlas_views.h"
#include "host/report/html_page.h"
#include "host/report/node_dvars.h"
#include "host/report/run_page.h"
#include "host/report/study_page.h"
#include "signals/intervals.h"
#include "tests/host/report/example_run.h"
#include "tests/host/report/page_reader.h"

#include <QImage>
#include <QRegularExpression>
#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;
using testing::Not;

std::string utf8(const QString &text)
{
    return text.toStdString();
}

/// A page without the bytes of its pictures.
QByteArray markupOf(QByteArray page)
{
    int at = 0;
    while ((at = page.indexOf("base64,", at)) >= 0) {
        const int end = page.indexOf('"', at);
        page.remove(at, end - at);
    }
    return page;
}

/// What every page must be.
void expectSound(const QByteArray &page)
{
    const PageContents contents = readPage(page);
    EXPECT_EQ(utf8(contents.fault), "");
    const std::string markup = markupOf(page).toStdString();
    for (const char *asking : {"http:", "https:", "url(", "@import", "<script", "<link", "<iframe",
                               "srcset", "onload", "file:"})
        EXPECT_THAT(markup, Not(HasSubstr(asking)));
    // HTML knows no short form but for elements that never hold anything.
    QString shortForms = QString::fromUtf8(markupOf(page));
    shortForms.remove(QRegularExpression(QStringLiteral("<(meta|img)[^>]*/>")));
    EXPECT_THAT(utf8(shortForms), Not(HasSubstr("/>")));
    // A style is read as it stands, so nothing in it may have been escaped.
    const std::string style =
        markup.substr(markup.find("<style>"), markup.find("</style>") - markup.find("<style>"));
    EXPECT_THAT(style, HasSubstr("max-width"));
    EXPECT_THAT(style, Not(HasSubstr("&")));
    for (const QXmlStreamAttributes &picture : contents.pictures) {
        const QString source = picture.value(QLatin1String("src")).toString();
        const QString head = QStringLiteral("data:image/png;base64,");
        ASSERT_TRUE(source.startsWith(head));
        const QImage image =
            QImage::fromData(QByteArray::fromBase64(source.mid(head.size()).toLatin1()), "PNG");
        ASSERT_FALSE(image.isNull());
        const double width = picture.value(QLatin1String("width")).toDouble();
        const double height = picture.value(QLatin1String("height")).toDouble();
        EXPECT_NEAR(image.width() / width, image.height() / height, 0.01);
        EXPECT_GE(image.width(), width);
        EXPECT_GT(picture.value(QLatin1String("alt")).size(), 20);
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                colours.insert(image.pixel(x, y));
        EXPECT_GT(colours.size(), 8)
            << picture.value(QLatin1String("alt")).toString().toStdString();
    }
}

// ---- DVARS of nodes

TEST(NodeDvars, AreChangesFromVolumeToVolumeOfWhatIsKept)
{
    Connectome connectome;
    connectome.nodes.resize(3);
    connectome.cleaned.volumes = {1, 2, 4, 5};
    connectome.cleaned.values.resize(4, 3);
    connectome.cleaned.values << 1, 2, NAN, -2, 6, NAN, 0, 0, NAN, 3, -1, NAN;
    connectome.series.resize(6, 3);
    connectome.series << 40, 60, 1, 50, 50, 1, 45, 55, 1, 70, 30, 1, 50, 50, 1, 50, 50, 1;
    const Eigen::ArrayXd stored = nodeDvars(connectome, {});
    ASSERT_EQ(stored.size(), 6);
    for (const int none : {0, 1, 3, 4}) // nothing is kept there, or before it
        EXPECT_TRUE(std::isnan(stored[none])) << none;
    EXPECT_DOUBLE_EQ(stored[2], std::sqrt((9.0 + 16) / 2));
    EXPECT_DOUBLE_EQ(stored[5], std::sqrt((9.0 + 1) / 2));
    // The median of both nodes that have values is 50.
    const Eigen::ArrayXd scaled = nodeDvars(connectome, 1000);
    EXPECT_DOUBLE_EQ(scaled[2], 20 * stored[2]);
    EXPECT_DOUBLE_EQ(nodeDvars(connectome, 100)[5], 2 * stored[5]);
}

// ---- pages as such

TEST(HtmlPage, TextsAreShownAsTheyAre)
{
    const QString odd = QStringLiteral("a <b> & \"c\" ") + QChar(1) + QChar(0xd800) +
                        QChar(0x200b) + QString::fromUtf8(" \xF0\x9F\xA7\xA0");
    HtmlPage page(odd);
    page.paragraph(odd);
    page.openTable({odd});
    page.row({{odd, odd}});
    page.closeTable();
    page.picture("x", {10, 10}, odd, odd);
    const PageContents contents = readPage(page.finish());
    EXPECT_EQ(utf8(contents.fault), "");
    QString shown = odd;
    shown.replace(QChar(1), QChar(0xfffd)).replace(QChar(0xd800), QChar(0xfffd));
    EXPECT_EQ(contents.text.count(shown), 5);
    EXPECT_EQ(contents.targets, QStringList{shown});
    EXPECT_EQ(contents.pictures[0].value(QLatin1String("alt")).toString(), shown);
}

TEST(HtmlPage, WhatIsOpenIsClosedAtTheEnd)
{
    HtmlPage page(QStringLiteral("t"));
    page.openDetails(QStringLiteral("s"), false);
    page.open("div");
    page.element("p", QString());
    const QByteArray bytes = page.finish();
    EXPECT_TRUE(bytes.startsWith("<!DOCTYPE html>\n<html lang=\"en\">"));
    EXPECT_TRUE(bytes.trimmed().endsWith("</html>"));
    EXPECT_TRUE(bytes.contains("<p></p>"));
    expectSound(bytes);
}

// ---- a run

class RunPage : public testing::Test
{
protected:
    RunPage() : m_run(16, 60) { m_run.request().relationships.push_back(Relationship::FisherZ); }

    ConnectomeRequest &request() { return m_run.request(); }
    void make()
    {
        m_connectome = makeConnectome(m_run.request());
        m_page = runPage(m_run.request(), namesOf(m_run.request()), m_connectome);
        m_contents = readPage(m_page);
        expectSound(m_page);
    }
    const Connectome &connectome() const { return m_connectome; }
    const QByteArray &page() const { return m_page; }
    const PageContents &contents() const { return m_contents; }
    QString folder() const { return m_run.folder(); }

private:
    ExampleRun m_run;
    Connectome m_connectome;
    QByteArray m_page;
    PageContents m_contents;
};

TEST_F(RunPage, HasEachNumberOfTheLedger)
{
    make();
    const signals::Ledger &ledger = connectome().cleaning.design.ledger;
    const auto number = [&](const char *name) {
        const QStringList cells = contents().row(QLatin1String(name));
        EXPECT_EQ(cells.size(), 3) << name;
        EXPECT_GT(cells.value(2).size(), 20) << name;
        return utf8(cells.value(1));
    };
    EXPECT_EQ(number("Volumes"), "60");
    EXPECT_EQ(number("Non-steady"), "1");
    EXPECT_EQ(number("Left out"), "1");
    EXPECT_EQ(number("Kept"), "58");
    EXPECT_EQ(number("Rank of the design"), "3");
    EXPECT_EQ(number("Degrees of freedom"), "55");
    EXPECT_EQ(number("Time kept"), "116 s");
    EXPECT_EQ(number("Mean FD before"), "0.1136 mm");
    EXPECT_EQ(number("Mean FD after"), "0.1 mm");
    EXPECT_NEAR(ledger.mean_fd_before, (58 * 0.1 + 0.9) / 59, 1e-9);
}

TEST_F(RunPage, AnEstimateOfTheDegreesOfFreedomIsCalledOne)
{
    request().cleaning.settings.order = signals::Order::butterworth;
    request().cleaning.settings.high_pass = 0.01;
    request().cleaning.settings.low_pass = 0.2;
    make();
    ASSERT_TRUE(connectome().cleaning.design.ledger.about);
    EXPECT_THAT(utf8(contents().row(QStringLiteral("Degrees of freedom"))[1]),
                testing::StartsWith("about 4"));
    // They are already corrected, so there is one interval alone.
    EXPECT_EQ(contents().row(QStringLiteral("0.5")).size(), 2);
}

TEST_F(RunPage, TellsWhatWentIn)
{
    make();
    const auto which = [&](const char *what) {
        return utf8(contents().row(QLatin1String(what)).value(1));
    };
    EXPECT_EQ(which("Run"), "sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz");
    EXPECT_EQ(which("Its grid"), "16 x 1 x 2 voxels, 60 volumes, every 2 s");
    EXPECT_EQ(which("Atlas"), "tpl_atlas-Rows_dseg.nii.gz");
    EXPECT_EQ(which("Names of its labels"), "names & more.tsv");
    EXPECT_EQ(which("Mask"), "sub-01_mask.nii.gz");
    EXPECT_EQ(which("Confounds"), "sub-01_desc-confounds_timeseries.tsv");
    EXPECT_EQ(which("Cleaning"), "columns:trouble, order joint, FD > 0.5 mm left out");
    EXPECT_EQ(which("Regressors"), "1: trouble");
    EXPECT_EQ(which("Least coverage of a node"), "50 %");
    EXPECT_THAT(which("Program"), HasSubstr("Corvane "));
    EXPECT_EQ(contents().headings.first(), QStringLiteral("sub-01_task-rest_space-T1w"));
}

TEST_F(RunPage, NotesStandInFrontAndNoFolderIsTold)
{
    // A confounds table without std_dvars in its JSON's place: the name of a missing label is said.
    putBytes(request().labels, "index\tname\n1\tone\n99\tnowhere\n");
    make();
    const int note = contents().text.indexOf(QStringLiteral("nowhere"));
    EXPECT_GT(note, 0);
    EXPECT_LT(note, contents().text.indexOf(QStringLiteral("Least coverage of a node")));
    EXPECT_THAT(page().toStdString(), Not(HasSubstr(utf8(folder()))));
}

TEST_F(RunPage, InputsOfADatasetAreNamedByTheirPlaceInIt)
{
    ConnectomeNames names = namesOf(request());
    names.datasetRoot = folder();
    const Connectome made = makeConnectome(request());
    const PageContents read = readPage(runPage(request(), names, made));
    EXPECT_EQ(utf8(read.row(QStringLiteral("Run")).value(1)),
              "bids:input:sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz");
}

TEST_F(RunPage, HasARowForEachNodeInTheOrderOfNetworks)
{
    make();
    std::vector<QStringList> rows;
    for (const QStringList &cells : contents().rows)
        if (cells.size() > 8 && cells.first() != QLatin1String("Label"))
            rows.push_back(cells);
    ASSERT_EQ(rows.size(), 16U);
    EXPECT_EQ(rows[0].mid(0, 6),
              (QStringList{QStringLiteral("1"), QStringLiteral("First <b>& \"only\"</b>"),
                           QStringLiteral("Visual & more"), QStringLiteral("L"),
                           QStringLiteral("2"), QStringLiteral("100 %")}));
    EXPECT_EQ(rows[8].mid(0, 3),
              (QStringList{QStringLiteral("2"), QStringLiteral("</td><script>alert(1)</script>"),
                           QStringLiteral("Limbic")}));
    const NodeMeasures measures = nodeMeasures(connectome());
    ASSERT_EQ(measures.perNode, 6);
    ASSERT_EQ(rows[8].size(), 6 + measures.perNode);
    for (int column = 0; column < measures.perNode; ++column)
        EXPECT_NEAR(rows[8][6 + column].toDouble(), measures.values(1, column),
                    1e-3 * std::abs(measures.values(1, column)));
    EXPECT_TRUE(contents().text.contains(
        QStringLiteral("Of the whole network: global efficiency ") +
        QString::number(measures.values(1, 6), 'g', 4) + QLatin1Char('.')));
    // The mask takes the last node.
    EXPECT_EQ(rows[15].mid(4, 3),
              (QStringList{QStringLiteral("0"), QStringLiteral("0 %"), QStringLiteral("n/a")}));
    EXPECT_TRUE(contents().text.contains(QStringLiteral("15 of 16")));
}

TEST_F(RunPage, IntervalsComeFromBothKindsOfDegreesOfFreedom)
{
    make();
    const auto interval = [](double r, double degrees) {
        const double reach = 1.959964 / std::sqrt(degrees - 2);
        return QStringLiteral("%1 to %2")
            .arg(std::tanh(std::atanh(r) - reach), 0, 'f', 2)
            .arg(std::tanh(std::atanh(r) + reach), 0, 'f', 2);
    };
    const Eigen::MatrixXd serial =
        signals::serial_degrees(connectome().cleaned.values.leftCols(15),
                                connectome().cleaned.volumes, connectome().cleaned.degrees);
    std::vector<double> pairs;
    for (int j = 0; j < 15; ++j)
        for (int i = 0; i < j; ++i)
            pairs.push_back(serial(i, j));
    std::sort(pairs.begin(), pairs.end());
    EXPECT_EQ(contents().row(QStringLiteral("0.5")),
              (QStringList{QStringLiteral("0.5"), interval(0.5, 55),
                           interval(0.5, pairs[pairs.size() / 2])}));
}

TEST_F(RunPage, HasAPictureOfEachKind)
{
    make();
    QStringList texts;
    for (const QXmlStreamAttributes &picture : contents().pictures)
        texts += picture.value(QLatin1String("alt")).toString().section(QLatin1Char(' '), 0, 2);
    EXPECT_EQ(texts,
              (QStringList{QStringLiteral("Curves over the"), QStringLiteral("The series of"),
                           QStringLiteral("The design matrix:"), QStringLiteral("The atlas from"),
                           QStringLiteral("The matrix of"), QStringLiteral("The strongest pairs"),
                           QStringLiteral("How often which")}));
}

TEST_F(RunPage, EachLinkLeadsToAPlaceOnThePage)
{
    make();
    EXPECT_GT(contents().targets.size(), 5);
    for (const QString &target : contents().targets) {
        ASSERT_TRUE(target.startsWith(QLatin1Char('#'))) << utf8(target);
        EXPECT_EQ(page().count("id=\"" + target.mid(1).toUtf8() + '"'), 1) << utf8(target);
    }
}

TEST_F(RunPage, IsTheSameEachTime)
{
    make();
    const QByteArray first = page();
    make();
    EXPECT_EQ(page(), first);
}

TEST_F(RunPage, WithoutConfoundsAndNamesThereIsStillAPage)
{
    request().cleaning = CleaningRequest();
    request().cleaning.strategy.strategy = "none";
    request().labels.clear();
    request().mask.clear();
    make();
    EXPECT_EQ(utf8(contents().row(QStringLiteral("Mean FD before"))[1]), "n/a");
    EXPECT_EQ(utf8(contents().row(QStringLiteral("Regressors"))[1]), "none");
    EXPECT_EQ(utf8(contents().row(QStringLiteral("Confounds"))[1]), "none");
    EXPECT_EQ(contents().row(QStringLiteral("Label")).contains(QStringLiteral("Network")), false);
}

TEST_F(RunPage, WindowsAreListed)
{
    request().parts.window = 40;
    request().parts.step = 40;
    make();
    const QStringList cells = contents().row(QStringLiteral("window-1"));
    ASSERT_EQ(cells.size(), 5);
    EXPECT_EQ(utf8(cells[1]), "Pearson correlation");
    EXPECT_EQ(utf8(cells[2]), "19");
    EXPECT_EQ(utf8(cells[4]), "made");
}

TEST_F(RunPage, FourHundredNodesAndTwelveHundredVolumesStayBelowThreeMegabytes)
{
    const ExampleRun large(400, 1200);
    const Connectome made = makeConnectome(large.request());
    const QByteArray page = runPage(large.request(), namesOf(large.request()), made);
    EXPECT_LT(page.size(), 3000000);
    EXPECT_EQ(utf8(readPage(page).fault), "");
}

TEST(RunPageName, IsThatOfTheOtherFiles)
{
    EXPECT_EQ(runPageName({QStringLiteral("sub-01"), QStringLiteral("A"), {}}),
              QStringLiteral("sub-01_atlas-A_report.html"));
}

// ---- the atlas from three sides

TEST(AtlasViews, RightIsRightWhicheverWayTheFileRuns)
{
    // Two nodes of a voxel each: right, front and up is covered, left, back and down is not.
    Connectome connectome;
    connectome.grid.size = {2, 3, 4};
    connectome.coverage = {1, 0.25};
    for (const bool reversed : {false, true}) {
        connectome.grid.toWorld = Eigen::Affine3d::Identity();
        if (reversed)
            connectome.grid.toWorld.linear() *= -2;
        connectome.stretches = {{23, 1, reversed ? 1 : 0}};
        connectome.outside = {{0, 1, reversed ? 0 : 1}};
        const auto views = atlasViews(connectome);
        const AtlasView &above = views[0];
        ASSERT_EQ(above.values.rows(), 3);
        ASSERT_EQ(above.values.cols(), 2);
        EXPECT_EQ(above.values(0, 1), 1);
        EXPECT_EQ(above.values(2, 0), 0.25);
        EXPECT_TRUE(std::isnan(above.values(0, 0)));
        EXPECT_EQ(above.width, reversed ? 4 : 2);
        const AtlasView &front = views[1];
        EXPECT_EQ(front.values(0, 0), 1); // who looks at a face sees its right at the left
        EXPECT_EQ(front.values(3, 1), 0.25);
        const AtlasView &left = views[2];
        EXPECT_EQ(left.values(0, 0), 1);
        EXPECT_EQ(left.values(3, 2), 0.25);
    }
}

TEST(AtlasViews, ThePoorestNodeIsSeenAndEmptyBordersAreNot)
{
    Connectome connectome;
    connectome.grid.size = {5, 5, 5};
    connectome.coverage = {1, 0.1};
    connectome.stretches = {{2 + 5 * 2 + 25 * 1, 1, 1}, {2 + 5 * 2 + 25 * 3, 1, 0}};
    const auto views = atlasViews(connectome);
    ASSERT_EQ(views[0].values.size(), 1);
    EXPECT_EQ(views[0].values(0, 0), 0.1);
    ASSERT_EQ(views[1].values.rows(), 3);
    EXPECT_EQ(views[1].height, 3);
    EXPECT_EQ(views[1].values(0, 0), 1);
    EXPECT_EQ(views[1].values(2, 0), 0.1);
}

// ---- a subject and a study

ReportedRun reportedRun(const QString &name, const QString &status, double fd)
{
    ReportedRun run;
    run.name = name;
    run.atlas = QStringLiteral("A");
    run.status = status;
    if (status == QLatin1String("done"))
        run.page = name + QStringLiteral("_report.html");
    else
        run.reason = QStringLiteral("because of <") + name + QLatin1Char('>');
    if (fd > 0)
        run.ledger = {{QStringLiteral("Volumes"), 200},
                      {QStringLiteral("Kept"), 190},
                      {QStringLiteral("DegreesOfFreedom"), 93.456},
                      {QStringLiteral("DegreesOfFreedomAreEstimate"), true},
                      {QStringLiteral("SecondsKept"), 380.5},
                      {QStringLiteral("MeanFDBefore"), fd},
                      {QStringLiteral("MeanFDAfter"), QJsonValue(QJsonValue::Null)}};
    return run;
}

TEST(SubjectPage, HasARowForEachRunWithItsLedger)
{
    const QByteArray page =
        subjectPage(QStringLiteral("sub-<1>"),
                    {reportedRun(QStringLiteral("task-rest"), QStringLiteral("done"), 0.25),
                     reportedRun(QStringLiteral("task-two"), QStringLiteral("missing"), 0),
                     reportedRun(QStringLiteral("task-six"), QStringLiteral("open"), 0)});
    expectSound(page);
    const PageContents contents = readPage(page);
    EXPECT_EQ(contents.headings.first(), QStringLiteral("sub-<1>"));
    EXPECT_EQ(
        contents.row(QStringLiteral("task-rest")),
        (QStringList{QStringLiteral("task-rest"), QStringLiteral("A"), QStringLiteral("done"),
                     QStringLiteral("200"), QStringLiteral("n/a"), QStringLiteral("n/a"),
                     QStringLiteral("190"), QStringLiteral("n/a"), QStringLiteral("about 93.46"),
                     QStringLiteral("380.5"), QStringLiteral("0.25"), QStringLiteral("n/a")}));
    EXPECT_EQ(contents.targets, QStringList{QStringLiteral("task-rest_report.html")});
    EXPECT_TRUE(contents.text.contains(QStringLiteral("1 done, 1 missing, 1 open")));
    EXPECT_TRUE(contents.text.contains(
        QStringLiteral("task-two, atlas A, is missing: because of <task-two>")));
}

StudySummary study(int subjects)
{
    StudySummary summary;
    summary.title = QStringLiteral("A <study>");
    summary.settings = {{QStringLiteral("--clean"), QStringLiteral("36P")}};
    summary.table = QStringLiteral("participants_connectome.tsv");
    for (int n = 0; n < subjects; ++n) {
        const QString participant = QStringLiteral("sub-%1").arg(n);
        const char *status = n % 10 == 3 ? "excluded" : n % 10 == 4 ? "failed" : "done";
        summary.rows.push_back({participant, participant + QStringLiteral(".html"),
                                reportedRun(QStringLiteral("task-rest"), QLatin1String(status),
                                            n % 10 == 4 ? 0 : 0.1 * (n + 1))});
    }
    return summary;
}

TEST(StudyPage, ReasonsComeFirstThenDistributionsThenAllRuns)
{
    const QByteArray page = studyPage(study(20));
    expectSound(page);
    const PageContents contents = readPage(page);
    EXPECT_EQ(contents.headings,
              (QStringList{QStringLiteral("A <study>"), QStringLiteral("Not done, and why"),
                           QStringLiteral("Motion and what is left"),
                           QStringLiteral("What was asked for"), QStringLiteral("All runs"),
                           QStringLiteral("What the columns mean")}));
    EXPECT_TRUE(contents.text.contains(
        QStringLiteral("20 participants. Runs by atlases: 16 done, 2 excluded, 2 failed.")));
    EXPECT_EQ(
        contents.row(QStringLiteral("sub-3")),
        (QStringList{QStringLiteral("sub-3"), QStringLiteral("task-rest"), QStringLiteral("A"),
                     QStringLiteral("excluded"), QStringLiteral("because of <task-rest>")}));
    EXPECT_EQ(contents.row(QStringLiteral("--clean")),
              (QStringList{QStringLiteral("--clean"), QStringLiteral("36P")}));
    EXPECT_EQ(contents.row(QStringLiteral("sub-5")).value(4), QStringLiteral("200"));
    EXPECT_EQ(contents.targets.count(QStringLiteral("sub-3.html")), 2);
    EXPECT_EQ(contents.targets.count(QStringLiteral("sub-5.html")), 1);
    EXPECT_TRUE(contents.targets.contains(QStringLiteral("task-rest_report.html")));
    EXPECT_TRUE(contents.targets.contains(QStringLiteral("participants_connectome.tsv")));
}

TEST(StudyPage, RunsThatAreNotDoneHaveDotsOfTheirOwnColour)
{
    const auto dots = [](const StudySummary &summary, QRgb colour) {
        const QString source =
            readPage(studyPage(summary)).pictures.front().value(QLatin1String("src")).toString();
        const QImage image = QImage::fromData(
            QByteArray::fromBase64(source.section(QLatin1Char(','), 1).toLatin1()), "PNG");
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                count += image.pixel(x, y) == colour ? 1 : 0;
        return count;
    };
    constexpr QRgb blue = qRgb(0, 90, 160);
    constexpr QRgb orange = qRgb(215, 120, 0);
    StudySummary summary = study(20); // 16 done, and two others of which motion is known
    ASSERT_GT(dots(summary, orange), 20);
    EXPECT_NEAR(double(dots(summary, blue)) / dots(summary, orange), 8, 0.5);
    for (StudySummary::Row &row : summary.rows)
        row.run.status = QStringLiteral("done");
    EXPECT_EQ(dots(summary, orange), 0);
}

TEST(StudyPage, DistributionsHaveTheirMedians)
{
    const PageContents contents = readPage(studyPage(study(20)));
    ASSERT_EQ(contents.pictures.size(), 4U);
    // Of the runs done: 0.1 to 2.0 without 0.4, 0.5, 1.4, 1.5.
    EXPECT_EQ(utf8(contents.pictures[0].value(QLatin1String("alt")).toString()),
              "A dot for each run: mean FD before cleaning [mm]; of those done median 1.05, from "
              "0.1 to 2.");
}

TEST(StudyPage, ThousandsOfRunsAreLeftToTheTable)
{
    const QByteArray page = studyPage(study(9000));
    expectSound(page);
    EXPECT_LT(page.size(), 3000000);
    const PageContents contents = readPage(page);
    EXPECT_TRUE(contents.row(QStringLiteral("sub-5")).isEmpty());
    EXPECT_EQ(contents.row(QStringLiteral("sub-4")).value(3), QStringLiteral("failed"));
    EXPECT_TRUE(contents.text.contains(QStringLiteral("9000 runs are too many for a page.")));
}

TEST(StudyPage, AnEmptyStudyIsAPageToo)
{
    const QByteArray page = studyPage({});
    expectSound(page);
    EXPECT_TRUE(readPage(page).text.contains(QStringLiteral("no runs")));
}

} // namespace
} // namespace corvane
