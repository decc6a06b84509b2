// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/plugin_settings.h"
#include "engine/dumps.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace
{

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll()
                                          : QByteArray("missing: ") + path.toUtf8();
}

class Dumps : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        PluginSettings::instance()->dumpAll = true;
        PluginSettings::instance()->dumpFolder = folder.path();
    }
    void TearDown() override { PluginSettings::instance()->dumpAll = false; }

    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }

    QTemporaryDir folder;
    Eigen::MatrixXf matrix = (Eigen::MatrixXf(2, 2) << 0.0f, 0.5f, 0.25f, 0.0f).finished();
};

TEST_F(Dumps, WriteTheNodeMatrix)
{
    dumpTimeseries(matrix);
    EXPECT_EQ(files(), QStringList{"connectivity_ts.csv"});
    EXPECT_EQ(contents(folder.filePath("connectivity_ts.csv")), "0,0.5\n0.25,0\n");
}

TEST_F(Dumps, WriteOneFilePerSliceNumberedFromZero)
{
    const std::vector<Eigen::MatrixXf> matrices(11, matrix);
    dumpMatrices(dump_names::connectivity, matrices);
    EXPECT_EQ(files().size(), 11);
    EXPECT_TRUE(files().contains("correlation_mtx_0.csv"));
    EXPECT_TRUE(files().contains("correlation_mtx_10.csv"));
    EXPECT_EQ(contents(folder.filePath("correlation_mtx_10.csv")), "0,0.5\n0.25,0\n");
}

TEST_F(Dumps, NameThePassesAndTheTrees)
{
    dumpMatrices(dump_names::treatmentPass1, {matrix});
    dumpMatrices(dump_names::treatmentPass2, {matrix});
    dumpMatrices(dump_names::minimumSpanningTrees, {matrix});
    EXPECT_EQ(files(),
              (QStringList{"correlation_mtx_0_mst.csv", "correlation_mtx_0_treatment_pass_1.csv",
                           "correlation_mtx_0_treatment_pass_2.csv"}));
}

TEST_F(Dumps, WriteNothingWhileDumpingIsOff)
{
    PluginSettings::instance()->dumpAll = false;
    dumpTimeseries(matrix);
    dumpMatrices(dump_names::connectivity, {matrix});
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(Dumps, AreLeftOutSilentlyWhereNothingCanBeWritten)
{
    PluginSettings::instance()->dumpFolder = folder.filePath("no such folder");
    dumpTimeseries(matrix);
    dumpMatrices(dump_names::connectivity, {matrix});
    EXPECT_TRUE(files().isEmpty());
}

} // namespace
