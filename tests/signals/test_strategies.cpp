// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/strategies.h"
#include "tests/signals/error_text.h"
#include "tests/signals/near.h"
#include "tests/signals/noise.h"
#include "tests/signals/pipeline_table.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using pipeline_table::Generation;
using pipeline_table::make;
using pipeline_table::with;
using pipeline_table::without;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr Eigen::Index volumes = 240;

StrategyRequest request(const std::string &strategy, Eigen::Index count = volumes)
{
    StrategyRequest result;
    result.strategy = strategy;
    result.volumes = count;
    return result;
}

std::vector<std::string> columns(const StrategyRequest &wanted,
                                 const ConfoundsTable &table = make(volumes))
{
    return select(table, wanted).regressors.names;
}

std::vector<std::string> with_stem(const std::vector<std::string> &names, const std::string &stem)
{
    std::vector<std::string> found;
    std::copy_if(names.begin(), names.end(), std::back_inserter(found),
                 [&](const std::string &name) { return name.rfind(stem, 0) == 0; });
    return found;
}

template <typename Exception>
std::string text(const ConfoundsTable &table, const StrategyRequest &wanted)
{
    return error_text<Exception>([&] { select(table, wanted); });
}

/// Motion parameters of another package.
ConfoundsTable headerless(Eigen::Index columns_there = 6)
{
    ConfoundsTable table;
    for (Eigen::Index i = 1; i <= columns_there; ++i) {
        table.names.push_back("p" + std::to_string(i));
    }
    table.values = 0.01 * Noise(15).serial(50, columns_there, 0.9);
    return table;
}

TEST(Strategies, NumbersOfColumns)
{
    // 7 cosines in this table.
    const std::pair<const char *, std::size_t> wanted[] = {
        {"none", 0},     {"simple", 33},   {"simple-gsr", 34}, {"scrubbing", 39},
        {"compcor", 37}, {"acompcor", 29}, {"motion6", 6},     {"motion24", 24},
        {"24P", 31},     {"27P", 34},      {"36P", 43},        {"columns:csf,cosine*", 8},
    };
    for (const auto &[strategy, count] : wanted) {
        EXPECT_EQ(columns(request(strategy)).size(), count) << strategy;
    }
    EXPECT_EQ(strategies().size(), std::size(wanted)) << "all are tested";
}

TEST(Strategies, ColumnsStandInTheOrderOfTheirNames)
{
    for (const char *strategy : {"36P", "acompcor", "columns:white_matter,csf,white*,csf"}) {
        std::vector<std::string> names = columns(request(strategy));
        EXPECT_TRUE(std::is_sorted(names.begin(), names.end())) << strategy;
        EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end()) << strategy;
    }
}

TEST(Strategies, Names36P)
{
    const std::vector<std::string> names = columns(request("36P"));
    for (const char *base : {"trans_y", "rot_z", "csf", "white_matter", "global_signal"}) {
        for (const char *ending : {"", "_derivative1", "_power2", "_derivative1_power2"}) {
            EXPECT_THAT(names, Contains(std::string(base) + ending));
        }
    }
}

TEST(Strategies, CosinesLeaveSomeStrategiesForTheOrderButterworth)
{
    for (const char *strategy : {"24P", "27P", "36P"}) {
        StrategyRequest wanted = request(strategy);
        for (const Order order : {Order::joint, Order::cosine, Order::bandpass_pad}) {
            wanted.order = order;
            EXPECT_EQ(with_stem(columns(wanted), "cosine").size(), 7U);
        }
        wanted.order = Order::butterworth;
        EXPECT_THAT(with_stem(columns(wanted), "cosine"), IsEmpty()) << strategy;
    }
    StrategyRequest simple = request("simple");
    simple.order = Order::butterworth;
    EXPECT_EQ(with_stem(columns(simple), "cosine").size(), 7U);
}

TEST(Strategies, CompcorTakesRetainedComponentsOfTheCombinedMask)
{
    for (const Generation generation : {Generation::older, Generation::newer}) {
        EXPECT_THAT(with_stem(columns(request("compcor"), make(volumes, generation)), "a_comp"),
                    ElementsAre("a_comp_cor_00", "a_comp_cor_01", "a_comp_cor_02", "a_comp_cor_03",
                                "a_comp_cor_04", "a_comp_cor_05"));
    }
    ConfoundsTable table = make(volumes);
    (*table.components)[1].retained = false;
    EXPECT_THAT(columns(request("compcor"), table), Not(Contains("a_comp_cor_01")));
    EXPECT_THAT(columns(request("compcor"), table), Not(Contains("t_comp_cor_00")));
}

TEST(Strategies, ComponentsAreLimited)
{
    StrategyRequest wanted = request("compcor");
    wanted.components = 2;
    EXPECT_THAT(with_stem(columns(wanted), "a_comp"),
                ElementsAre("a_comp_cor_00", "a_comp_cor_01"));
    wanted.strategy = "acompcor";
    EXPECT_EQ(with_stem(columns(wanted), "c_comp").size(), 2U);
    EXPECT_EQ(with_stem(columns(wanted), "w_comp").size(), 2U);
    wanted.components = 20;
    EXPECT_EQ(with_stem(columns(wanted), "w_comp").size(), 5U) << "five of each at most";
    wanted.components = 0;
    EXPECT_THAT(text<UsageError>(make(volumes), wanted),
                HasSubstr("at most 0 components: expected 1 or more"));
}

TEST(Strategies, ComponentsOfOlderTablesAreFoundInTheJson)
{
    // 06 to 11 are those of csf, 12 to 17 those of white matter.
    EXPECT_THAT(with_stem(columns(request("acompcor"), make(volumes, Generation::older)), "a_comp"),
                ElementsAre("a_comp_cor_06", "a_comp_cor_07", "a_comp_cor_08", "a_comp_cor_09",
                            "a_comp_cor_10", "a_comp_cor_12", "a_comp_cor_13", "a_comp_cor_14",
                            "a_comp_cor_15", "a_comp_cor_16"));
}

TEST(Strategies, ComponentsThatAreMissing)
{
    ConfoundsTable table = make(volumes);
    const auto lacking = [&](std::vector<std::string> names) { return without(table, names); };
    const Selection few = select(lacking({"c_comp_cor_01", "c_comp_cor_04"}), request("acompcor"));
    EXPECT_THAT(with_stem(few.regressors.names, "c_comp"),
                ElementsAre("c_comp_cor_00", "c_comp_cor_02", "c_comp_cor_03", "c_comp_cor_05"));
    EXPECT_THAT(few.notes, ElementsAre(HasSubstr("mask CSF there are only 4 components")));

    EXPECT_THAT(text<Error>(lacking({"w_comp_cor_00", "w_comp_cor_01", "w_comp_cor_02",
                                     "w_comp_cor_03", "w_comp_cor_04", "w_comp_cor_05"}),
                            request("acompcor")),
                HasSubstr("no anatomical components of the mask WM"));
    EXPECT_THAT(text<Error>(lacking({"c_comp_cor_00", "c_comp_cor_01", "c_comp_cor_02",
                                     "c_comp_cor_03", "c_comp_cor_04", "c_comp_cor_05"}),
                            request("acompcor")),
                HasSubstr("no anatomical components of the mask CSF"))
        << "those of white matter tell that it is a newer table";
    // The JSON tells of a component that the table lacks.
    EXPECT_THAT(text<Error>(lacking({"a_comp_cor_03"}), request("compcor")),
                HasSubstr("compcor needs columns that the table lacks: a_comp_cor_03"));
}

TEST(Strategies, ComponentsWithoutTheJson)
{
    ConfoundsTable newer = make(volumes);
    newer.components.reset();
    EXPECT_THAT(text<Error>(newer, request("compcor")), HasSubstr("JSON is missing"));
    EXPECT_EQ(columns(request("acompcor"), newer).size(), 29U) << "their names tell";
    ConfoundsTable older = make(volumes, Generation::older);
    older.components.reset();
    EXPECT_THAT(text<Error>(older, request("acompcor")), HasSubstr("JSON is missing"));
    EXPECT_EQ(columns(request("36P"), older).size(), 43U);
}

TEST(Strategies, ShortRunsHaveNoCosines)
{
    const ConfoundsTable table = make(50);
    ASSERT_EQ(with_stem(table.names, "cosine").size(), 1U);
    const ConfoundsTable none = without(table, {"cosine00"});
    EXPECT_EQ(columns(request("simple", 50), none).size(), 26U);
    for (const char *strategy : {"compcor", "acompcor"}) {
        EXPECT_THAT(text<Error>(none, request(strategy, 50)), HasSubstr("no columns cosine00"));
    }
}

TEST(Strategies, MissingColumnsAreAllNamed)
{
    const ConfoundsTable table =
        without(make(volumes), {"csf", "rot_x_derivative1", "framewise_displacement", "std_dvars",
                                "trans_z", "white_matter_power2"});
    EXPECT_THAT(text<Error>(table, request("scrubbing")),
                HasSubstr("scrubbing needs columns that the table lacks: csf, rot_x_derivative1, "
                          "trans_z, white_matter_power2, framewise_displacement, std_dvars"));
    EXPECT_THAT(text<Error>(table, request("simple")),
                HasSubstr("simple needs columns that the table lacks: csf, rot_x_derivative1, "
                          "trans_z"));
}

TEST(Strategies, NoneTakesNothing)
{
    const Selection found = select(make(volumes), request("none"));
    EXPECT_TRUE(found.regressors.filter_only);
    EXPECT_EQ(found.regressors.values.cols(), 0);
    EXPECT_EQ(found.volumes.kept().count(), volumes - 2) << "non-steady volumes always go";
    EXPECT_FALSE(select(make(volumes), request("motion6")).regressors.filter_only);
}

TEST(Strategies, ColumnsByPattern)
{
    EXPECT_THAT(columns(request("columns:csf,rot_x*,cosine00")),
                ElementsAre("cosine00", "csf", "rot_x", "rot_x_derivative1",
                            "rot_x_derivative1_power2", "rot_x_power2"));
    EXPECT_THAT(columns(request("columns:csf*,csf")),
                ElementsAre("csf", "csf_derivative1", "csf_derivative1_power2", "csf_power2"));
}

TEST(Strategies, PatternsThatMatchNothing)
{
    const ConfoundsTable table = make(volumes);
    EXPECT_THAT(text<Error>(table, request("columns:csf,vent,rot_*_derivative1,x*")),
                HasSubstr("the table lacks the columns vent, rot_*_derivative1, x*"))
        << "a * inside a name is no pattern";
    for (const char *empty : {"columns:", "columns:csf,", "columns:,csf", "columns:a,,b"}) {
        EXPECT_THAT(text<UsageError>(table, request(empty)), HasSubstr("an empty name")) << empty;
    }
}

TEST(Strategies, UnknownNames)
{
    EXPECT_THAT(text<UsageError>(make(volumes), request("simpel")),
                HasSubstr("no strategy \"simpel\": expected one of none, simple, simple-gsr"));
    EXPECT_THAT(text<UsageError>(make(volumes), request("")), HasSubstr("no strategy \"\""));
    EXPECT_THAT(text<UsageError>(make(volumes), request("36p")), HasSubstr("no strategy \"36p\""));
}

TEST(Strategies, RowZeroTakesTheValueOfRowOne)
{
    const ConfoundsTable table = make(volumes);
    const Selection found = select(table, request("columns:csf_derivative1"));
    const Eigen::VectorXd values = table.values.col(*column_named(table, "csf_derivative1"));
    ASSERT_TRUE(std::isnan(values[0]));
    EXPECT_EQ(found.regressors.values(0, 0), values[1]);
    EXPECT_EQ(found.regressors.values.bottomRows(volumes - 1), values.tail(volumes - 1));
}

TEST(Strategies, OtherMissingValuesAreRefusedWithColumnAndRow)
{
    const ConfoundsTable table = make(volumes);
    EXPECT_THAT(text<Error>(with(table, "csf", 17, NAN), request("simple")),
                HasSubstr("column csf, row 17 (from 0) is n/a: expected a finite number"));
    EXPECT_THAT(text<Error>(with(table, "csf_derivative1", 1, NAN), request("36P")),
                HasSubstr("column csf_derivative1, row 0 (from 0) is n/a"));
    EXPECT_THAT(text<Error>(with(table, "rot_x", 3, INFINITY), request("motion6")),
                HasSubstr("column rot_x, row 3 (from 0) is inf"));
    EXPECT_EQ(columns(request("motion6"), with(table, "csf", 17, NAN)).size(), 6U)
        << "what is not taken may lack values";
}

TEST(Strategies, CensoringByTheStrategysThresholds)
{
    ConfoundsTable table = with(make(volumes), "framewise_displacement", 100, 0.51);
    table = with(table, "std_dvars", 104, 1.51);
    table = with(table, "framewise_displacement", 50, 0.5);
    const auto censored = [&](const StrategyRequest &wanted) {
        return positions(select(table, wanted).volumes.censored);
    };
    EXPECT_THAT(censored(request("scrubbing")), ElementsAre(100, 101, 102, 103, 104));
    EXPECT_THAT(censored(request("simple")), IsEmpty());

    StrategyRequest other = request("scrubbing");
    other.min_segment = 0;
    EXPECT_THAT(censored(other), ElementsAre(100, 104));
    other.dvars_threshold = 0;
    EXPECT_THAT(censored(other), ElementsAre(100));
    other.fd_threshold = 0.49;
    EXPECT_THAT(censored(other), ElementsAre(50, 100));

    StrategyRequest by_columns = request("columns:csf");
    by_columns.fd_threshold = 0.5;
    EXPECT_THAT(censored(by_columns), ElementsAre(100));
}

TEST(Strategies, NonSteadyAndNamedVolumesShortenNoSegment)
{
    // Volumes 0 and 1 are non-steady; 10 to 15 are few enough to go, were 9 an outlier.
    const ConfoundsTable table = with(make(volumes), "framewise_displacement", 14, 0.6);
    StrategyRequest wanted = request("scrubbing");
    wanted.censor = Flags::Constant(volumes, false);
    wanted.censor[9] = true;
    const Selection found = select(table, wanted);
    EXPECT_THAT(positions(found.volumes.censored), ElementsAre(9, 14));
    EXPECT_THAT(positions(found.volumes.non_steady), ElementsAre(0, 1));
    EXPECT_EQ(found.volumes.kept().count(), volumes - 4);
}

TEST(Strategies, DummyScans)
{
    const auto non_steady = [](std::optional<Eigen::Index> dummies) {
        StrategyRequest wanted = request("simple");
        wanted.dummy_scans = dummies;
        return positions(select(make(volumes), wanted).volumes.non_steady);
    };
    EXPECT_THAT(non_steady({}), ElementsAre(0, 1));
    EXPECT_THAT(non_steady(0), IsEmpty());
    EXPECT_THAT(non_steady(4), ElementsAre(0, 1, 2, 3));
    StrategyRequest too_many = request("simple");
    too_many.dummy_scans = volumes + 1;
    EXPECT_THAT(text<UsageError>(make(volumes), too_many),
                HasSubstr("241 volumes at the start are to go: expected 0 to 240"));
    too_many.dummy_scans = -1;
    EXPECT_THAT(text<UsageError>(make(volumes), too_many), HasSubstr("-1 volumes"));
}

TEST(Strategies, OnlyNumberedColumnsTellOfNonSteadyVolumes)
{
    ConfoundsTable table = make(volumes);
    for (const char *name : {"non_steady_state_outlier", "non_steady_state_outlier_sum"}) {
        table.names.emplace_back(name);
        table.values.conservativeResize(Eigen::NoChange, table.values.cols() + 1);
        table.values.rightCols(1).setOnes();
    }
    EXPECT_THAT(positions(select(table, request("simple")).volumes.non_steady), ElementsAre(0, 1));
}

TEST(Strategies, TablesThatDoNotFitTheRun)
{
    ConfoundsTable empty;
    empty.values.resize(3, 0);
    EXPECT_EQ(text<Error>(empty, request("none", 4)),
              "the table has 3 rows: expected 4, one for each volume of the run");
    EXPECT_THAT(text<Error>(make(volumes), request("simple", 250)),
                HasSubstr("ends before row 240 (from 0): the table has 240 rows: expected 250"));
    EXPECT_EQ(text<Error>(make(volumes), request("simple", 230)),
              "the table has 240 rows: expected 230, one for each volume of the run");
    StrategyRequest wanted = request("simple");
    wanted.censor = Flags::Constant(239, false);
    EXPECT_THAT(text<Error>(make(volumes), wanted),
                HasSubstr("leave out has 239 rows: expected 240"));
    ConfoundsTable twice = make(volumes);
    twice.names[1] = "csf";
    EXPECT_THAT(text<Error>(twice, request("simple")), HasSubstr("two columns are called csf"));
    twice.names.pop_back();
    EXPECT_THAT(text<Error>(twice, request("simple")), HasSubstr("expected as many"));
}

TEST(Strategies, DisplacementWithoutItsColumnIsComputed)
{
    const ConfoundsTable table = make(volumes);
    const ConfoundsTable lacking = without(table, {"framewise_displacement"});
    EXPECT_TRUE(near(select(lacking, request("simple")).volumes.fd,
                     select(table, request("simple")).volumes.fd, 1e-12));
    EXPECT_EQ(select(without(lacking, {"rot_x"}), request("columns:csf")).volumes.fd.size(), 0);
}

TEST(Strategies, MotionParametersWithoutAHeader)
{
    const ConfoundsTable table = headerless();
    const Selection found = select(table, request("motion24", 50));
    ASSERT_EQ(found.regressors.names.size(), 24U);
    EXPECT_THAT(found.regressors.names,
                testing::IsSupersetOf(
                    {"p1", "p6", "p3_derivative1", "p3_power2", "p3_derivative1_power2"}));
    const auto column = [&](const std::string &name) -> Eigen::VectorXd {
        const auto &names = found.regressors.names;
        return found.regressors.values.col(std::find(names.begin(), names.end(), name) -
                                           names.begin());
    };
    const Eigen::VectorXd change = column("p3_derivative1");
    EXPECT_EQ(change[7], table.values(7, 2) - table.values(6, 2));
    EXPECT_EQ(change[0], change[1]);
    EXPECT_EQ(column("p3_power2")[5], table.values(5, 2) * table.values(5, 2));
    EXPECT_EQ(column("p3_derivative1_power2")[0], change[1] * change[1]);
    EXPECT_THAT(columns(request("motion6", 50), table),
                ElementsAre("p1", "p2", "p3", "p4", "p5", "p6"));
    EXPECT_THAT(columns(request("columns:p2,p5", 50), table), ElementsAre("p2", "p5"));
}

TEST(Strategies, DisplacementOfMotionParametersNeedsTheirOrder)
{
    StrategyRequest wanted = request("motion6", 50);
    const Selection unknown = select(headerless(), wanted);
    EXPECT_EQ(unknown.volumes.fd.size(), 0);
    EXPECT_THAT(unknown.notes, ElementsAre(HasSubstr("FD is not known")));
    wanted.fd_threshold = 0.5;
    EXPECT_THAT(text<UsageError>(headerless(), wanted), HasSubstr("fsl, spm or afni"));

    wanted.motion_order = MotionOrder::spm;
    const Selection known = select(headerless(), wanted);
    EXPECT_TRUE(near(known.volumes.fd, framewise_displacement(headerless().values), 0));
    EXPECT_THAT(known.notes, IsEmpty());
}

TEST(Strategies, OtherTablesWithoutAHeader)
{
    EXPECT_THAT(text<Error>(headerless(9), request("motion6", 50)),
                HasSubstr("9 columns: expected the 6 motion parameters"));
    EXPECT_THAT(text<Error>(headerless(), request("simple", 50)),
                HasSubstr("simple needs columns that the table lacks: csf, white_matter"));
    EXPECT_THAT(columns(request("columns:p9", 50), headerless(9)), ElementsAre("p9"));
}

TEST(Strategies, TextsForPeople)
{
    for (const Strategy &strategy : strategies()) {
        EXPECT_FALSE(strategy.regressors.empty()) << strategy.name;
    }
    EXPECT_EQ(strategies().front().name, "none");
    EXPECT_EQ(strategies().back().name, "columns:a,b,c*");
}

TEST(Confounds, NamesOfCosines)
{
    EXPECT_TRUE(is_cosine("cosine00"));
    EXPECT_TRUE(is_cosine("cosine123"));
    for (const char *name : {"cosine", "cosine_00", "cosine0x", "cosines00", "own cosine 3", ""}) {
        EXPECT_FALSE(is_cosine(name)) << name;
    }
}

TEST(Confounds, ColumnsThatAreNotThereOrHaveNoValueAtAll)
{
    EXPECT_EQ(error_text<Error>([] { complete_column(make(20), "pulse"); }),
              "there is no column pulse");
    // With one volume there is no row 1 whose value row 0 could take.
    const ConfoundsTable one = {{"csf"}, Eigen::MatrixXd::Constant(1, 1, NAN), {}};
    EXPECT_THAT(error_text<Error>([&] { complete_column(one, "csf"); }),
                HasSubstr("column csf, row 0 (from 0) is n/a"));
}

TEST(Confounds, HeaderlessTables)
{
    EXPECT_TRUE(is_headerless({{"p1", "p2"}, {}, {}}));
    EXPECT_FALSE(is_headerless({{"p1", "p3"}, {}, {}}));
    EXPECT_FALSE(is_headerless({{}, {}, {}}));
    EXPECT_FALSE(is_headerless(make(20)));
}

} // namespace
