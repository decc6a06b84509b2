// SPDX-License-Identifier: GPL-3.0-or-later
// Two tables as a pipeline wrote them, before and since its version 20.2, and what the usual Python
// tool takes of them.
#include "signals/strategies.h"
#include "tests/signals/near.h"
#include "tests/signals/reference_data.h"

#include <QJsonArray>

namespace
{

using namespace signals;

struct Case {
    const char *name;
    const char *table;
    const char *strategy;
};

const char *const older = "confounds/fmriprep14_desc-confounds_regressors";
const char *const newer = "confounds/fmriprep21_desc-confounds_timeseries";
const char *const three_of_each_mask =
    "columns:cosine*,trans_*,rot_*,a_comp_cor_57,a_comp_cor_58,a_comp_cor_59,a_comp_cor_70,"
    "a_comp_cor_71,a_comp_cor_72";

const Case cases[] = {
    {"fmriprep14_simple", older, "simple"},
    {"fmriprep14_simple_global_signal-basic", older, "simple-gsr"},
    {"fmriprep14_scrubbing", older, "scrubbing"},
    {"fmriprep14_compcor", older, "compcor"},
    {"fmriprep14_compcor_n_compcor-3_compcor-anat_separated", older, three_of_each_mask},
    {"fmriprep21_simple", newer, "simple"},
    {"fmriprep21_simple_global_signal-basic", newer, "simple-gsr"},
    {"fmriprep21_scrubbing", newer, "scrubbing"},
    {"fmriprep21_compcor", newer, "compcor"},
};

void PrintTo(const Case &tested, std::ostream *stream)
{
    *stream << tested.name;
}

class ReferenceConfounds : public testing::TestWithParam<Case>
{
protected:
    void SetUp() override
    {
        if (!reference_data::is_there()) {
            GTEST_SKIP() << "the folder of reference numbers is missing";
        }
    }
    static Selection selection()
    {
        StrategyRequest request;
        request.strategy = GetParam().strategy;
        request.volumes = 30;
        return select(reference_data::confounds(GetParam().table), request);
    }
};

TEST_P(ReferenceConfounds, ColumnsAndKeptVolumes)
{
    const QJsonObject wanted =
        reference_data::object("confounds/expected.json")[GetParam().name].toObject();
    const Selection found = selection();

    std::vector<std::string> columns;
    for (const QJsonValue &column : wanted["columns"].toArray()) {
        columns.push_back(column.toString().toStdString());
    }
    ASSERT_FALSE(columns.empty());
    EXPECT_EQ(found.regressors.names, columns);

    std::vector<Eigen::Index> kept;
    for (const QJsonValue &volume : wanted["sample_mask"].toArray()) {
        kept.push_back(volume.toInt());
    }
    EXPECT_EQ(positions(found.volumes.kept()), kept);
}

TEST_P(ReferenceConfounds, Values)
{
    // The tool gives them centred on the kept volumes, so none at all where none is kept.
    const ConfoundsTable wanted =
        reference_data::table("confounds/" + std::string(GetParam().name) + ".csv", ',');
    const Selection found = selection();
    const Eigen::MatrixXd &values = found.regressors.values;
    if (!found.volumes.kept().any()) {
        EXPECT_TRUE(wanted.values.array().isNaN().all());
        return;
    }
    const Eigen::RowVectorXd means =
        values(positions(found.volumes.kept()), Eigen::all).colwise().mean();
    for (Eigen::Index column = 0; column < values.cols(); ++column) {
        const auto of_tool = column_named(wanted, found.regressors.names[column]);
        ASSERT_TRUE(of_tool);
        EXPECT_TRUE(near(values.col(column).array() - means[column], wanted.values.col(*of_tool),
                         1e-12 * values.col(column).cwiseAbs().maxCoeff()))
            << found.regressors.names[column];
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, ReferenceConfounds, testing::ValuesIn(cases),
                         [](const auto &instance) {
                             std::string name = instance.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

class ReferenceComponents : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!reference_data::is_there()) {
            GTEST_SKIP() << "the folder of reference numbers is missing";
        }
    }
    static std::vector<std::string> components(const char *table, Selection &selection)
    {
        StrategyRequest request;
        request.strategy = "acompcor";
        request.volumes = 30;
        selection = select(reference_data::confounds(table), request);
        std::vector<std::string> found;
        for (const std::string &name : selection.regressors.names) {
            if (name.find("comp_cor") != std::string::npos) {
                found.push_back(name);
            }
        }
        return found;
    }
};

TEST_F(ReferenceComponents, OlderTablesTellTheMasksInTheJsonAlone)
{
    // a_comp_cor_70 to 125 are those of white matter: as text, 100 would come before 70.
    Selection selection;
    EXPECT_EQ(components(older, selection),
              (std::vector<std::string>{"a_comp_cor_57", "a_comp_cor_58", "a_comp_cor_59",
                                        "a_comp_cor_60", "a_comp_cor_61", "a_comp_cor_70",
                                        "a_comp_cor_71", "a_comp_cor_72", "a_comp_cor_73",
                                        "a_comp_cor_74"}));
    EXPECT_TRUE(selection.notes.empty());
}

TEST_F(ReferenceComponents, NewerTablesTellThemInTheNames)
{
    Selection selection;
    EXPECT_EQ(components(newer, selection),
              (std::vector<std::string>{"c_comp_cor_00", "c_comp_cor_01", "c_comp_cor_02",
                                        "w_comp_cor_00", "w_comp_cor_01", "w_comp_cor_02",
                                        "w_comp_cor_03"}));
    EXPECT_EQ(selection.notes.size(), 2U) << "fewer than five are said";
}

} // namespace
