// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/run_filter.h"

#include "tests/host/support/host_files.h"

namespace corvane
{
namespace
{

const char run1[] = "sub-01_task-rest_acq-fast_run-01_space-T1w_desc-preproc_bold.nii.gz";
const char run2[] = "sub-01_task-nback_run-02_space-T1w_desc-preproc_bold.nii.gz";

class FilterFileTest : public testing::Test
{
protected:
    QString write(const QByteArray &json)
    {
        putBytes(m_folder.path("filter.json"), json);
        return m_folder.path("filter.json");
    }

    /// "1", "2", "12" or nothing: which of the two runs are accepted.
    std::string accepted(const QByteArray &bold)
    {
        const FilterFile filter(write("{\"t1w\": {\"odd\": 1}, \"bold\": " + bold + "}"));
        std::string which;
        if (filter.accepts(bidsName(QLatin1String(run1))))
            which += '1';
        if (filter.accepts(bidsName(QLatin1String(run2))))
            which += '2';
        return which;
    }

    std::string refused(const QByteArray &json)
    {
        const QString path = write(json);
        std::string error = errorOf([&] { FilterFile filter(path); });
        const std::size_t at = error.find(path.toStdString());
        return at == 0 ? error.substr(std::size_t(path.size()) + 2) : error;
    }

private:
    TemporaryFolder m_folder;
};

TEST_F(FilterFileTest, ComparesEntitiesByTheirLongAndShortNames)
{
    EXPECT_EQ(accepted("{}"), "12");
    EXPECT_EQ(accepted(R"({"task": "rest"})"), "1");
    EXPECT_EQ(accepted(R"({"task": ["rest", "nback"]})"), "12");
    EXPECT_EQ(accepted(R"({"acquisition": "fast"})"), "1");
    EXPECT_EQ(accepted(R"({"acq": "fast"})"), "1");
    EXPECT_EQ(accepted(R"({"task": "rest", "run": 2})"), "");
    EXPECT_EQ(accepted(R"({"task": []})"), "");
}

TEST_F(FilterFileTest, TakesNumbersWithAndWithoutZerosInFront)
{
    EXPECT_EQ(accepted(R"({"run": 1})"), "1");
    EXPECT_EQ(accepted(R"({"run": "2"})"), "2");
    EXPECT_EQ(accepted(R"({"run": "01"})"), "1");
}

TEST_F(FilterFileTest, TakesNullForNoneAndAStarForAny)
{
    EXPECT_EQ(accepted(R"({"acquisition": null})"), "2");
    EXPECT_EQ(accepted(R"({"acquisition": "*"})"), "1");
    EXPECT_EQ(accepted(R"({"acquisition": ["slow", null]})"), "2");
    EXPECT_EQ(accepted(R"({"echo": null})"), "12");
}

TEST_F(FilterFileTest, KnowsWhatEveryRunIs)
{
    EXPECT_EQ(accepted(R"({"datatype": "func", "suffix": "bold", "extension": ".nii.gz",
                           "desc": "preproc", "subject": "01"})"),
              "12");
    EXPECT_EQ(accepted(R"({"suffix": "sbref"})"), "");
}

TEST_F(FilterFileTest, RefusesWhatItCannotMeet)
{
    EXPECT_EQ(refused("{\"bold\": "), "byte 9: found unterminated object, expected a JSON object");
    EXPECT_EQ(refused("{\"t1w\": {}}"), "content: found no object \"bold\", expected {\"bold\": "
                                        "{\"task\": \"rest\"}} or the like");
    EXPECT_EQ(refused("[]"), "content: found no object \"bold\", expected {\"bold\": "
                             "{\"task\": \"rest\"}} or the like");
    EXPECT_EQ(refused(R"({"bold": {"tusk": "rest"}})"),
              "bold: found \"tusk\", expected one of: subject, session, task, acquisition, "
              "ceagent, reconstruction, direction, run, echo, part, space, resolution, density, "
              "desc, datatype, suffix, extension");
    EXPECT_EQ(refused(R"({"bold": {"task": {"a": 1}}})"),
              "bold, task: found something else, expected a label, a number, null, \"*\" or a "
              "list of them");
    EXPECT_EQ(refused(R"({"bold": {"task": [true]}})"),
              "bold, task: found something else, expected a label, a number, null, \"*\" or a "
              "list of them");
}

TEST_F(FilterFileTest, MustBeThere)
{
    EXPECT_NE(errorOf([] { FilterFile filter(QStringLiteral("/none/filter.json")); }), "no error");
}

} // namespace
} // namespace corvane
