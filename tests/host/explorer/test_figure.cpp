// SPDX-License-Identifier: GPL-3.0-or-later
// Figures of a result: files, what is in them, and that window and command make the same bytes.
#include "host/explorer/explorer_model.h"
#include "host/explorer/export_dialog.h"
#include "host/painting/svg_picture.h"
#include "tests/gui_test.h"
#include "tests/host/explorer/result_folder.h"
#include "tests/host/support/program.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;

std::unique_ptr<ExplorerModel> modelOf(const QString &path)
{
    ResultRequest request;
    request.path = path;
    return std::make_unique<ExplorerModel>(
        request, std::make_shared<const NetworkResult>(readResult(request)));
}

void waitUntilDone(ExplorerModel &model)
{
    while (model.isBusy())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

FigureRequest requestOf(const ExampleResult &files)
{
    FigureRequest request;
    request.result.path = files.path();
    return request;
}

TEST(FigureArguments, LeaveOutWhatIsUsual)
{
    FigureRequest request;
    request.result.path = QStringLiteral("out");
    EXPECT_EQ(figureArguments(request, QStringLiteral("m.png")).join(QLatin1Char(' ')),
              QStringLiteral("figure out --view matrix --density 0.05 --out m.png"));
    request.view.minus = QStringLiteral("b c");
    request.view.threshold = {ThresholdKind::TreeAndDensity, 0.1, EdgeSigns::Negative};
    request.view.ordering = NodeOrdering::Similarity;
    request.kind = NetworkView::Ring;
    request.format = {90, 7.5, true, 600};
    EXPECT_EQ(commandText(figureArguments(request, QStringLiteral("m.svg"))),
              QStringLiteral("figure out --view ring --minus 'b c' --order similarity --tree 0.1 "
                             "--signs negative --width 90 --point-size 7.5 --dpi 600 --dark --out "
                             "m.svg"));
    EXPECT_EQ(commandText({QStringLiteral("it's"), QStringLiteral("$x")}),
              QStringLiteral("'it'\\''s' '$x'"));
}

TEST(FigureArguments, NameTheFilesTheRunAndTheNode)
{
    FigureRequest request;
    request.result = {QStringLiteral("out"), QStringLiteral("sub-01"), QStringLiteral("l.tsv"),
                      QStringLiteral("c.tsv"), QStringLiteral("a.nii")};
    request.view.matrix = QStringLiteral("m");
    request.view.node = QStringLiteral("x");
    request.view.other = QStringLiteral("y");
    request.view.alone = true;
    request.view.threshold.kind = ThresholdKind::Weight;
    request.view.threshold.value = 0.25;
    EXPECT_EQ(figureArguments(request, QStringLiteral("m.png")).join(QLatin1Char(' ')),
              QStringLiteral("figure out --run sub-01 --labels l.tsv --centroids c.tsv --atlas "
                             "a.nii --view matrix --matrix m --weight 0.25 --node x --other y "
                             "--alone --out m.png"));
    request.view.components = {2, 3}; // take the place of the threshold
    EXPECT_THAT(figureArguments(request, QStringLiteral("m.png")),
                testing::AllOf(testing::Contains(QStringLiteral("2,3")),
                               testing::Not(testing::Contains(QStringLiteral("--weight")))));
}

TEST(Figure, TextsHaveTheirSizeInPointsAtAnyWidth)
{
    for (const double points : {5.0, 8.0, 11.0})
        for (const double width : {60.0, 120.0}) {
            FigureFormat format;
            format.width = width;
            format.pointSize = points;
            // Texts are painted 12 units high.
            const double millimetres = 12 * width / figureSize(NetworkView::Ring, format).width();
            EXPECT_NEAR(millimetres, points * 25.4 / 72, 0.01) << points << ' ' << width;
        }
}

TEST(Figure, PdfHasTheWidthInMillimetresAndNoDate)
{
    const ExampleResult files;
    FigureRequest request = requestOf(files);
    request.kind = NetworkView::Ring;
    request.format.width = 90;
    writeFigure(request, files.path("r.pdf"));
    const QByteArray pdf = bytesOf(files.path("r.pdf"));
    static const QRegularExpression box(
        QStringLiteral("/MediaBox \\[[0-9.]+ [0-9.]+ ([0-9.]+) ([0-9.]+)\\]"));
    const QRegularExpressionMatch match =
        box.match(QString::fromLatin1(pdf.mid(pdf.indexOf("/MediaBox"), 80)));
    ASSERT_TRUE(match.hasMatch());
    EXPECT_NEAR(match.captured(1).toDouble(), 90 / 25.4 * 72, 1); // points
    EXPECT_TRUE(pdf.contains("/CreationDate (D:00000101000000"));
}

TEST(Figure, PngHasTheWidthInMillimetresAndIsDarkOnDarkPaper)
{
    const ExampleResult files;
    FigureRequest request = requestOf(files);
    request.format = {50.8, 6, true, 200};
    writeFigure(request, files.path("m.png"));
    const QImage image(files.path("m.png"));
    EXPECT_EQ(image.width(), 400); // two inches
    EXPECT_NEAR(image.dotsPerMeterX() * 0.0254, 200, 0.1);
    EXPECT_LT(qGray(image.pixel(2, 2)), 60);
}

TEST(Figure, SvgHasItsTextsAsTextAtTheirSize)
{
    const ExampleResult files;
    FigureRequest request = requestOf(files);
    for (const NetworkView kind : {NetworkView::Matrix, NetworkView::Ring, NetworkView::Brain,
                                   NetworkView::Evidence, NetworkView::Measures}) {
        request.kind = kind;
        request.view.node = QStringLiteral("Region 0");
        request.view.other = QStringLiteral("Region 5");
        const QString file = files.path("f.svg");
        writeFigure(request, file);
        const QByteArray svg = bytesOf(file);
        EXPECT_TRUE(svg.contains("width=\"120mm\"")) << int(kind);
        EXPECT_TRUE(svg.contains("Region 0") || svg.contains("Degree") ||
                    svg.contains("from above"))
            << int(kind);
        EXPECT_TRUE(svg.contains("<text ")) << int(kind);
        QProcess check; // well-formed, by another program
        check.start(QStringLiteral("python3"),
                    {QStringLiteral("-c"),
                     QStringLiteral("import sys,xml.dom.minidom as d; d.parse(sys.argv[1])"),
                     file});
        ASSERT_TRUE(check.waitForFinished()) << check.errorString().toStdString();
        EXPECT_EQ(check.exitCode(), 0) << check.readAllStandardError().toStdString();
    }
}

TEST(Figure, SvgKeepsPathsGradientsAndTexts)
{
    const QByteArray svg = svgPicture(QSizeF(100, 50), 80, [](QPainter &painter) {
        QFont font(QStringLiteral("Liberation Sans"));
        font.setPixelSize(11);
        painter.setFont(font);
        painter.setPen(QPen(QColor(1, 2, 3), 2, Qt::DashLine));
        painter.drawLine(10, 20, 30, 40);
        painter.setPen(Qt::black);
        painter.translate(5, 6);
        painter.drawText(QPointF(1, 2), QStringLiteral("a < b & c"));
        QLinearGradient gradient(0, 0, 10, 0);
        gradient.setColorAt(0, Qt::red);
        gradient.setColorAt(1, Qt::blue);
        painter.fillRect(QRectF(0, 0, 10, 10), gradient);
    });
    EXPECT_TRUE(svg.contains("width=\"80mm\" height=\"40mm\" viewBox=\"0 0 100 50\""));
    EXPECT_TRUE(svg.contains(">a &lt; b &amp; c</text>"));
    EXPECT_TRUE(svg.contains("font-size=\"11\""));
    EXPECT_TRUE(svg.contains("matrix(1 0 0 1 5 6)"));
    EXPECT_TRUE(svg.contains("stroke=\"#010203\" stroke-width=\"2\" stroke-dasharray="));
    EXPECT_TRUE(svg.contains("<linearGradient id=\"d0\""));
    EXPECT_TRUE(svg.contains("fill=\"url(#d0)\""));
}

TEST(Figure, TableHasTheDrawnEdges)
{
    const ExampleResult files;
    FigureRequest request = requestOf(files);
    request.view.threshold = {ThresholdKind::Weight, 0.85};
    writeFigure(request, files.path("t.tsv"));
    QList<QByteArray> lines = bytesOf(files.path("t.tsv")).trimmed().split('\n');
    EXPECT_EQ(lines.takeFirst(), QByteArray("node_1\tnode_2\tvalue"));
    int expected = 0;
    for (int a = 0; a < ExampleResult::nodes; ++a)
        for (int b = a + 1; b < ExampleResult::nodes; ++b)
            expected += std::abs(exampleValue(a, b)) >= 0.85 ? 1 : 0;
    EXPECT_EQ(lines.size(), expected);
    for (const QByteArray &line : lines)
        EXPECT_GE(std::abs(line.split('\t')[2].toDouble()), 0.85);
}

TEST(Figure, DifferencesShareOneScale)
{
    const ExampleResult files;
    const auto model = modelOf(files.path());
    ViewSettings settings;
    settings.minus = model->result().matrices[1].name;
    const auto difference = shownMatrix(model->result(), settings);
    EXPECT_NEAR(difference->values(0, 1), 1.5 * exampleValue(0, 1), 1e-12);
    double largest = 0;
    for (int a = 0; a < ExampleResult::nodes; ++a)
        for (int b = a + 1; b < ExampleResult::nodes; ++b)
            largest = std::max(largest, 1.5 * std::abs(exampleValue(a, b)));
    EXPECT_NEAR(difference->limit, largest, 1e-12);
    settings.matrix = model->result().matrices[1].name; // nothing is left, on the same scale
    EXPECT_NEAR(shownMatrix(model->result(), settings)->limit, largest, 1e-12);
}

TEST(Figure, ADifferencesScaleIsThatOfItsLargestValueOfAnySign)
{
    NetworkResult result;
    result.nodes = {{QStringLiteral("a")}, {QStringLiteral("b")}, {QStringLiteral("c")}};
    for (const double value : {0.1, 0.8}) {
        ResultMatrix matrix;
        matrix.name = QString::number(value);
        matrix.values = Eigen::MatrixXd::Constant(3, 3, value);
        result.matrices.push_back(matrix);
    }
    ViewSettings settings;
    settings.minus = QStringLiteral("0.8"); // all differences are negative
    EXPECT_NEAR(shownMatrix(result, settings)->limit, 0.7, 1e-12);
}

TEST(Figure, AMatrixWithoutValuesSaysSo)
{
    NetworkResult result;
    result.nodes = {{QStringLiteral("a")}, {QStringLiteral("b")}};
    result.matrices.resize(1);
    result.matrices[0].values =
        Eigen::MatrixXd::Constant(2, 2, std::numeric_limits<double>::quiet_NaN());
    const ViewSettings settings;
    EXPECT_EQ(drawnEdges(result, *shownMatrix(result, settings), settings).text,
              QStringLiteral("no edges, since this matrix has no values"));
}

TEST(Figure, TheStrongestEdgesArePaintedLast)
{
    const ExampleResult files;
    const auto model = modelOf(files.path());
    ViewSettings settings;
    settings.threshold.value = 0.5;
    const auto shown = shownMatrix(model->result(), settings);
    const DrawnEdges drawn = drawnEdges(model->result(), *shown, settings);
    const NetworkPicture picture =
        networkPicture(model->result(), *shown, drawn, settings, NetworkView::Ring);
    ASSERT_EQ(picture.edges->size(), 33U);
    for (std::size_t n = 1; n < picture.edges->size(); ++n)
        EXPECT_LE(std::abs((*picture.edges)[n - 1].value), std::abs((*picture.edges)[n].value));
}

TEST(Figure, CoursesHaveTheVolumesLeftOutAndTheBandsOfConditions)
{
    const ExampleResult files;
    const auto model = modelOf(files.path());
    ViewSettings settings;
    settings.node = QStringLiteral("Region 2");
    settings.other = QStringLiteral("Region 5");
    const CoursePicture picture =
        coursePicture(model->result(), *shownMatrix(model->result(), settings), settings);
    ASSERT_EQ(picture.leftOut.size(), 40U);
    for (std::size_t volume = 0; volume < 40; ++volume) {
        EXPECT_EQ(picture.leftOut[volume], volume == 20) << volume;
        if (volume == 20)
            continue;
        const double expected = std::sin(0.37 * double(volume) * 6 + 5); // of Region 5
        EXPECT_NEAR(picture.second[Eigen::Index(volume)], expected, 1e-12) << volume;
    }
    EXPECT_TRUE(std::isnan(picture.first[20]));
    ASSERT_EQ(picture.bands.size(), 1U);
    EXPECT_EQ(picture.bands[0].name, QStringLiteral("faces"));
    EXPECT_EQ(picture.bands[0].first, 5);
    EXPECT_EQ(picture.bands[0].last, 9);
}

TEST(Figure, RefusesOtherEndingsAndNames)
{
    const ExampleResult files;
    FigureRequest request = requestOf(files);
    EXPECT_THAT(errorOf([&] { writeFigure(request, files.path("f.bmp")); }),
                HasSubstr("expected .png, .svg, .pdf or .tsv"));
    request.kind = NetworkView::Nodes;
    EXPECT_THAT(errorOf([&] { writeFigure(request, files.path("f.png")); }),
                HasSubstr("a table is no picture"));
    request.kind = NetworkView::Matrix;
    request.view.matrix = QStringLiteral("x");
    EXPECT_THAT(
        errorOf([&] { writeFigure(request, files.path("f.png")); }),
        HasSubstr("matrix: found \"x\", expected one of: Pearson correlation, whole run; "));
    EXPECT_FALSE(QFileInfo::exists(files.path("f.png")));
}

/// A command line as a shell of this system takes it apart.
QStringList wordsOf(const QString &command)
{
    QProcess shell;
    shell.start(QStringLiteral("/bin/sh"),
                {QStringLiteral("-c"), QStringLiteral("printf '%s\\0' ") + command});
    EXPECT_TRUE(shell.waitForFinished());
    QStringList words;
    for (const QByteArray &word : shell.readAllStandardOutput().split('\0'))
        words += QString::fromUtf8(word);
    words.removeLast();
    return words;
}

/// The dialog writes a file; the command that it tells writes another, of the same bytes.
TEST(Figure, WindowAndCommandMakeTheSameBytes)
{
    const ExampleResult files;
    const auto model = modelOf(files.path());
    waitUntilDone(*model);
    model->setMinus(model->result().matrices[1].name);
    model->setOrdering(NodeOrdering::Similarity);
    model->setThreshold({ThresholdKind::TreeAndDensity, 0.35, EdgeSigns::Both});
    model->select(2, 7);
    waitUntilDone(*model);
    int dark = 0;
    for (const NamedValue<NetworkView> &view : networkViewNames)
        for (const char *const ending : {"png", "svg", "pdf", "tsv"}) {
            if (view.value == NetworkView::Nodes && QByteArray(ending) != "tsv")
                continue;
            const QString file =
                files.path(("it's " + QByteArray(view.name) + '.' + ending).constData());
            ExportDialog dialog(*model, view.value, ++dark % 2 == 0);
            dialog.findChild<QLineEdit *>(QStringLiteral("fileEdit"))->setText(file);
            dialog.findChild<QPushButton *>(QStringLiteral("copyButton"))->click();
            dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save)->click();
            const QByteArray ofWindow = bytesOf(file);
            ASSERT_FALSE(ofWindow.isEmpty()) << file.toStdString();
            EXPECT_TRUE(QFile::remove(file));

            QStringList words = wordsOf(QApplication::clipboard()->text());
            EXPECT_EQ(words.takeFirst(), QStringLiteral("Corvane"));
            const ProgramRun ran = runCorvane(words);
            ASSERT_EQ(ran.status, 0) << ran.errors.constData();
            EXPECT_TRUE(bytesOf(file) == ofWindow) << file.toStdString();
        }
}

TEST(FigureCommand, SaysWhatIsDrawnAndRefusesNonsense)
{
    const ExampleResult files;
    const auto run = [&](const QStringList &more) {
        return runCorvane(QStringList{QStringLiteral("figure"), files.path()} + more);
    };
    const QString out = files.path("x.tsv");
    EXPECT_THAT(
        run({QStringLiteral("--density"), QStringLiteral("0.5"), QStringLiteral("--out"), out})
            .output.toStdString(),
        HasSubstr("x.tsv: strongest 50 % of 66 edges, 33"));
    const ProgramRun both =
        run({QStringLiteral("--density"), QStringLiteral("0.5"), QStringLiteral("--weight"),
             QStringLiteral("0.5"), QStringLiteral("--out"), out});
    EXPECT_EQ(both.status, 2);
    EXPECT_THAT(both.errors.toStdString(), HasSubstr("exclude each other"));
    EXPECT_EQ(run({QStringLiteral("--density"), QStringLiteral("5"), QStringLiteral("--out"), out})
                  .status,
              2);
    EXPECT_EQ(run({QStringLiteral("--node"), QStringLiteral("nobody"), QStringLiteral("--view"),
                   QStringLiteral("evidence"), QStringLiteral("--out"), out})
                  .status,
              1);
}

TEST(FigureCommand, DrawsNetworksOfAGroup)
{
    const ExampleGroup files;
    const TemporaryFolder out;
    const ProgramRun ran =
        runCorvane({QStringLiteral("figure"), files.path(), QStringLiteral("--components"),
                    QStringLiteral("1,2"), QStringLiteral("--out"), out.path("c.tsv")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_THAT(ran.output.toStdString(),
                HasSubstr("network 1 of old (greater, threshold 2.5, p 0.04"));
    EXPECT_THAT(ran.output.toStdString(),
                HasSubstr("3 edges. It is the network that is significant"));
    QList<QByteArray> lines = bytesOf(out.path("c.tsv")).trimmed().split('\n');
    lines.removeFirst();
    QByteArrayList pairs;
    for (const QByteArray &line : lines)
        pairs += line.left(line.lastIndexOf('\t'));
    std::sort(pairs.begin(), pairs.end());
    EXPECT_EQ(pairs,
              QByteArrayList({"Region 0\tRegion 1", "Region 1\tRegion 2", "Region 3\tRegion 4"}));
}

} // namespace
} // namespace corvane
