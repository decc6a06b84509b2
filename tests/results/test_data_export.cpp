// SPDX-License-Identifier: GPL-3.0-or-later
//
// The page of exports: which files are written, under which names, with which numbers.
#include "tests/results/export_check.h"
#include "tests/results/results_fixture.h"
#include "tests/support/other_user.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>

#include <limits>

namespace
{

constexpr const char *matrixButton = "btn_exportConnectivityMatrix";
constexpr const char *seriesButton = "btn_exportFMRITS";

class DataExport : public ResultsFixture
{
protected:
    QString at(const QString &name) const { return folder.filePath(name); }

    void exportTo(const char *button, const QString &path)
    {
        ::exportTo(path, modals, [this, button] { click(button); });
    }
    QStringList files() const { return filesBelow(folder.path()); }
    Eigen::MatrixXf read(const QString &name) const { return readCsv(at(name)); }
};

// The dialog

class ExportButton : public DataExport, public testing::WithParamInterface<const char *>
{
};

TEST_P(ExportButton, AsksForACsvFile)
{
    setNodes(2);
    addTimeseries(2);
    find<QWidget>("btn_exportMSTMatrix")->setEnabled(true);
    QFileDialog(nullptr, QString(), folder.path());
    modals.expect<QFileDialog>([this](QFileDialog &dialog) {
        EXPECT_EQ(dialog.parent(), openDialog());
        EXPECT_EQ(dialog.windowTitle(), "Save as...");
        EXPECT_EQ(dialog.nameFilters(), QStringList("Comma-separated values (*.csv)"));
        EXPECT_EQ(dialog.fileMode(), QFileDialog::AnyFile);
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(dialog.defaultSuffix(), "csv");
        EXPECT_EQ(dialog.directory(), QDir(folder.path())) << "where the dialog before was";
        dialog.reject();
    });
    click(GetParam());
    EXPECT_EQ(files(), QStringList());
}

TEST_P(ExportButton, WritesNothingIntoAFolderThatIsNotThere)
{
    setNodes(2);
    addTimeseries(2);
    find<QWidget>("btn_exportMSTMatrix")->setEnabled(true);
    QFile blocker(at("file"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    exportTo(GetParam(), at("file/below.csv"));
    EXPECT_EQ(files(), QStringList("file"));
    EXPECT_EQ(blocker.size(), 0);
}

TEST_P(ExportButton, WritesNothingIntoALockedFolder)
{
    setNodes(2);
    addTimeseries(2);
    find<QWidget>("btn_exportMSTMatrix")->setEnabled(true);
    const QString locked = at("locked");
    ASSERT_TRUE(QDir().mkdir(locked));
    const QFile::Permissions readable = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                        QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    ASSERT_TRUE(QFile::setPermissions(locked, readable));
    ASSERT_TRUE(QFile::setPermissions(folder.path(), readable | QFile::WriteOwner));
    {
        const OtherUser nobody;
        exportTo(GetParam(), at("locked/net.csv"));
    }
    EXPECT_EQ(files(), QStringList());
    EXPECT_TRUE(dialog().isVisible());
}

TEST_P(ExportButton, OutlivesItsDialog)
{
    find<QWidget>("btn_exportMSTMatrix")->setEnabled(true);
    modals.expect<QFileDialog>([this](QFileDialog &) { object.reset(); });
    click(GetParam());
    EXPECT_TRUE(openDialog().isNull());
    EXPECT_EQ(files(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Buttons, ExportButton,
                         testing::Values(matrixButton, seriesButton, "btn_exportMSTMatrix"),
                         [](const auto &button) { return std::string(button.param); });

TEST_F(DataExport, TheTreesAreNotWritten)
{
    object->computeMinimumSpanningTrees();
    EXPECT_FALSE(find<QPushButton>("btn_exportMSTMatrix")->isEnabled());
    find<QPushButton>("btn_exportMSTMatrix")->setEnabled(true);
    exportTo("btn_exportMSTMatrix", at("tree.csv"));
    EXPECT_EQ(files(), QStringList());
}

// Names

struct NameRule {
    const char *typed;
    QStringList single;    ///< files of a result with one matrix
    QStringList intervals; ///< files of a result with the intervals "rest" and "task"
    QStringList series;    ///< files of the VOIs "V0" and "V1"
};

class ExportNames : public DataExport, public testing::WithParamInterface<NameRule>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir(folder.path()).mkpath("sub.csv"));
        ASSERT_TRUE(QDir(folder.path()).mkpath("sub"));
        setNodes(2);
        addTimeseries(2);
    }
};

TEST_P(ExportNames, OfOneMatrix)
{
    exportTo(matrixButton, at(GetParam().typed));
    EXPECT_EQ(files(), GetParam().single);
    for (const QString &file : files())
        expectSameBits(read(file), weights(6, 0));
}

TEST_P(ExportNames, OfAMatrixPerInterval)
{
    setIntervals({{1, "rest"}, {11, "task"}});
    exportTo(matrixButton, at(GetParam().typed));
    ASSERT_EQ(files(), GetParam().intervals);
    for (int slice = 0; slice < files().size(); ++slice)
        expectSameBits(read(files()[slice]), object->matrices()[std::size_t(slice)]);
}

TEST_P(ExportNames, OfTimeseries)
{
    exportTo(seriesButton, at(GetParam().typed));
    ASSERT_EQ(files(), GetParam().series);
    for (int voi = 0; voi < files().size(); ++voi)
        expectSameBits(read(files()[voi]), subject->timeseries()[std::size_t(voi)]);
}

const NameRule nameRules[] = {
    {"net.csv", {"net.csv"}, {"net_0_rest.csv", "net_1_task.csv"}, {"net_V0.csv", "net_V1.csv"}},
    {"net", {"net.csv"}, {"net_0_rest.csv", "net_1_task.csv"}, {"net_V0.csv", "net_V1.csv"}},
    // Wherever the ending stands it goes,
    {"a.csv.b", {"a.b.csv"}, {"a.b_0_rest.csv", "a.b_1_task.csv"}, {"a.b_V0.csv", "a.b_V1.csv"}},
    {"a.csv.csv", {"a.csv"}, {"a_0_rest.csv", "a_1_task.csv"}, {"a_V0.csv", "a_V1.csv"}},
    {"a.csvb.csv", {"ab.csv"}, {"ab_0_rest.csv", "ab_1_task.csv"}, {"ab_V0.csv", "ab_V1.csv"}},
    {"a.c.csvsv",
     {"a.csv"},
     {"a.csv_0_rest.csv", "a.csv_1_task.csv"},
     {"a.csv_V0.csv", "a.csv_V1.csv"}}, // once
    // also in the name of a folder,
    {"sub.csv/net.csv",
     {"sub/net.csv"},
     {"sub/net_0_rest.csv", "sub/net_1_task.csv"},
     {"sub/net_V0.csv", "sub/net_V1.csv"}},
    // but not in capitals.
    {"net.CSV",
     {"net.CSV"},
     {"net.CSV_0_rest.csv", "net.CSV_1_task.csv"},
     {"net.CSV_V0.csv", "net.CSV_V1.csv"}},
    {"net.txt",
     {"net.txt.csv"},
     {"net.txt_0_rest.csv", "net.txt_1_task.csv"},
     {"net.txt_V0.csv", "net.txt_V1.csv"}},
    {"n\xc3\xa9t.csv",
     {QStringLiteral(u"n\u00e9t.csv")},
     {QStringLiteral(u"n\u00e9t_0_rest.csv"), QStringLiteral(u"n\u00e9t_1_task.csv")},
     {QStringLiteral(u"n\u00e9t_V0.csv"), QStringLiteral(u"n\u00e9t_V1.csv")}},
};

INSTANTIATE_TEST_SUITE_P(Typed, ExportNames, testing::ValuesIn(nameRules));

TEST_F(DataExport, AnExistingFileIsReplaced)
{
    exportTo(matrixButton, at("net.csv"));
    setMatrices({weights(3, 4)});
    exportTo(matrixButton, at("net.csv"));
    EXPECT_EQ(files(), QStringList("net.csv"));
    expectSameBits(read("net.csv"), weights(3, 4));
}

TEST_F(DataExport, AFolderThatHoldsTheEndingInItsNameOnlyIsMissed)
{
    ASSERT_TRUE(QDir(folder.path()).mkpath("only.csv"));
    exportTo(matrixButton, at("only.csv/net.csv"));
    exportTo(seriesButton, at("only.csv/net.csv"));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(DataExport, IntervalsOfOneConditionAreKeptApart)
{
    setIntervals({{1, "rest"}, {11, "rest"}, {21, "rest"}});
    exportTo(matrixButton, at("net.csv"));
    ASSERT_EQ(files(), QStringList({"net_0_rest.csv", "net_1_rest.csv", "net_2_rest.csv"}));
    for (int slice = 0; slice < 3; ++slice)
        expectSameBits(read(files()[slice]), object->matrices()[std::size_t(slice)]);
}

// A host asks before it quits while this is told of a result.
TEST_F(DataExport, OnlyAMatrixThatWasWrittenIsSaved)
{
    object->setUnsaved(true);
    const auto unsaved = [this] { return object->property("unsavedResults").toString(); };
    ASSERT_EQ(unsaved(), object->name());
    exportTo(seriesButton, at("net.csv"));
    ASSERT_TRUE(QDir(folder.path()).mkpath("only.csv"));
    exportTo(matrixButton, at("only.csv/net.csv"));
    EXPECT_EQ(unsaved(), object->name());
    exportTo(matrixButton, at("net.csv"));
    EXPECT_EQ(unsaved(), QString());

    setIntervals({{1, "left"}, {11, "no/where"}});
    object->setUnsaved(true);
    exportTo(matrixButton, at("net.csv"));
    EXPECT_EQ(unsaved(), object->name());
    setIntervals({{1, "left"}, {11, "right"}});
    exportTo(matrixButton, at("net.csv"));
    EXPECT_EQ(unsaved(), QString());
}

TEST_F(DataExport, TriggersAreWrittenToo)
{
    setIntervals({{1, "rest"}, {11, "cue", 1}});
    exportTo(matrixButton, at("net.csv"));
    EXPECT_EQ(files(), QStringList({"net_0_rest.csv", "net_1_cue.csv"}));
}

TEST_F(DataExport, AConditionWithASeparatorLeadsIntoAFolder)
{
    setIntervals({{1, "face/house"}, {11, "gone/house"}});
    ASSERT_TRUE(QDir(folder.path()).mkpath("net_0_face"));
    exportTo(matrixButton, at("net.csv"));
    EXPECT_EQ(files(), QStringList("net_0_face/house.csv"));
}

TEST_F(DataExport, AVoiWithASeparatorLeadsIntoAFolder)
{
    setNodes(2);
    addTimeseries(2);
    subject->voiNames = QStringList{"L/V1", "R/V1"};
    ASSERT_TRUE(QDir(folder.path()).mkpath("ts_R"));
    exportTo(seriesButton, at("ts.csv"));
    EXPECT_EQ(files(), QStringList("ts_R/V1.csv"));
    expectSameBits(read("ts_R/V1.csv"), subject->timeseries()[1]);
}

TEST_F(DataExport, EqualNamesOfVoisOverwriteOneAnother)
{
    setNodes(3);
    addTimeseries(3);
    subject->voiNames = QStringList{"V1", "V2", "V1"};
    exportTo(seriesButton, at("ts.csv"));
    EXPECT_EQ(files(), QStringList({"ts_V1.csv", "ts_V2.csv"}));
    expectSameBits(read("ts_V1.csv"), subject->timeseries()[2]);
}

TEST_F(DataExport, EveryVoiIsWrittenWhateverTheSeedsAndTheProtocol)
{
    addTimeseries(6);
    setIntervals({{1, "rest"}, {11, "task"}});
    ConnectivityScheme scheme;
    scheme.seedVois = {4, 2};
    subject->setScheme(scheme);
    exportTo(seriesButton, at("ts.csv"));
    ASSERT_EQ(files().size(), 6);
    for (int voi = 0; voi < 6; ++voi)
        expectSameBits(read(QStringLiteral("ts_V%1.csv").arg(voi)),
                       subject->timeseries()[std::size_t(voi)]);
}

TEST_F(DataExport, AVoiWithoutVoxelsHasItsNameAndItsZeros)
{
    setNodes(1);
    subject->voiNames = QStringList("V0 (empty)");
    subject->appendTimeseries(Eigen::MatrixXf::Zero(1, 5));
    exportTo(seriesButton, at("ts.csv"));
    EXPECT_EQ(files(), QStringList("ts_V0 (empty).csv"));
    expectSameBits(read("ts_V0 (empty).csv"), Eigen::MatrixXf::Zero(1, 5));
}

/// One that was skipped at load leaves fewer series than names.
TEST_F(DataExport, SeriesAndNamesEndWithTheShorterOfTheTwo)
{
    setNodes(3);
    addTimeseries(2);
    exportTo(seriesButton, at("ts.csv"));
    EXPECT_EQ(files(), QStringList({"ts_V0.csv", "ts_V1.csv"}));
    addTimeseries(2);
    exportTo(seriesButton, at("more.csv"));
    EXPECT_EQ(files().filter("more"), QStringList({"more_V0.csv", "more_V1.csv", "more_V2.csv"}));
}

TEST_F(DataExport, NumbersSurviveToTheLastBit)
{
    Eigen::MatrixXf odd(2, 6);
    odd << 0.1f, 1.0f / 3.0f, std::numeric_limits<float>::denorm_min(), -0.0f, 3.4028235e38f,
        1.17549435e-38f, -1e-10f, 16777217.0f, 0.99999994f, -std::numeric_limits<float>::infinity(),
        std::numeric_limits<float>::infinity(), 123456.79f;
    setMatrices({odd});
    exportTo(matrixButton, at("odd.csv"));
    expectSameBits(read("odd.csv"), odd);
}

TEST_F(DataExport, ARecordWhoseRowIsGoneIsExportedAllTheSame)
{
    setNodes(2);
    addTimeseries(2);
    dialog();
    subject.reset(); // the table's share; the result keeps its own
    exportTo(seriesButton, at("ts.csv"));
    exportTo(matrixButton, at("net.csv"));
    EXPECT_EQ(files(), QStringList({"net.csv", "ts_V0.csv", "ts_V1.csv"}));
    expectSameBits(read("net.csv"), weights(6, 0));
}

TEST_F(DataExport, WithoutMatricesNothingIsWritten)
{
    for (const std::vector<Eigen::MatrixXf> &matrices :
         {std::vector<Eigen::MatrixXf>(), {Eigen::MatrixXf()}}) {
        setMatrices(matrices);
        for (const bool useProtocol : {false, true}) {
            subject->setUseProtocol(useProtocol);
            exportTo(matrixButton, at("net.csv"));
        }
    }
    exportTo(seriesButton, at("ts.csv"));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(DataExport, AnIntervalWithoutANameHasItsNumber)
{
    setIntervals({{1, "rest"}, {11, "task"}});
    SubjectProtocol shorter = subject->protocol();
    shorter.volumeNames.remove(11);
    subject->setProtocol(shorter);
    exportTo(matrixButton, at("net.csv"));
    EXPECT_EQ(files(), QStringList({"net_0_rest.csv", "net_1_1.csv"}));
}

TEST_F(DataExport, OnlyTheFirstMatrixIsWrittenWithoutTheProtocol)
{
    setMatrices({weights(4, 1), weights(4, 2)});
    exportTo(matrixButton, at("net.csv"));
    EXPECT_EQ(files(), QStringList("net.csv"));
    expectSameBits(read("net.csv"), weights(4, 1));
}

} // namespace
