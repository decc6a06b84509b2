// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/events_table.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"
#include "tests/host/support/recordings.h"

#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

template <typename Case>
std::string caseName(const testing::TestParamInfo<Case> &info)
{
    return info.param.name;
}

using Intervals = std::vector<std::pair<int, int>>;

QStringList lines(std::initializer_list<const char *> texts)
{
    QStringList result;
    for (const char *text : texts)
        result += QString::fromUtf8(text);
    return result;
}

// ---- one event

struct EventCase {
    const char *name;
    double onset;
    double duration;
    double repetitionTime;
    int from;
    int to;
};

void PrintTo(const EventCase &event, std::ostream *stream)
{
    *stream << event.name;
}

class VolumesOfEvent : public testing::TestWithParam<EventCase>
{
};

TEST_P(VolumesOfEvent, AreCountedFromOneWithBothEnds)
{
    const EventCase &event = GetParam();
    const VolumeInterval found = volumesOfEvent(event.onset, event.duration, event.repetitionTime);
    EXPECT_EQ(found.from, event.from);
    EXPECT_EQ(found.to, event.to);
}

INSTANTIATE_TEST_SUITE_P(Table, VolumesOfEvent,
                         testing::Values(EventCase{"FirstVolume", 0, 2, 2, 1, 1},
                                         EventCase{"TwoWholeVolumes", 2, 4, 2, 2, 3},
                                         EventCase{"PartsOfVolumesCount", 1, 2, 2, 1, 2},
                                         EventCase{"NoDurationAtABorder", 4, 0, 2, 3, 3},
                                         EventCase{"NoDurationInsideAVolume", 5, 0, 2, 3, 3},
                                         EventCase{"NoDurationAtTheStart", 0, 0, 2, 1, 1},
                                         EventCase{"ShorterThanAVolume", 4.5, 0.1, 2, 3, 3},
                                         EventCase{"BlockOfTheRecording", 15, 22.5, 2.5, 7, 15},
                                         // 35 * 0.72 / 0.72 is not 35 in binary numbers.
                                         EventCase{"SnapsUp", 25.2, 7.2, 0.72, 36, 45},
                                         EventCase{"SnapsWithin", 2 * 0.9995, 2, 2, 2, 2},
                                         EventCase{"SnapsBeyond", 2 * 1.0005, 2, 2, 2, 2},
                                         EventCase{"SnapsToTheStart", -2 * 0.0005, 2, 2, 1, 1},
                                         EventCase{"DoesNotSnapToTheStart", -2 * 0.002, 2, 2, 0, 1},
                                         EventCase{"DoesNotSnapFarther", 2 * 0.998, 2, 2, 1, 2}),
                         caseName<EventCase>);

/// A time as a table holds it: rounded to the digits that the repetition time has.
double decimal(double value)
{
    return std::round(value * 1000) / 1000;
}

TEST(VolumesOfEvent, StayOnTheBordersOfVolumesForFourHundredOnsets)
{
    for (const double repetitionTime : {0.72, 0.8, 1.35, 1.6, 2.2}) {
        // As it comes out of a header, where it is a float.
        const double stored = double(static_cast<float>(repetitionTime));
        for (int volume = 0; volume < 400; ++volume) {
            for (const double time : {repetitionTime, stored}) {
                const VolumeInterval one =
                    volumesOfEvent(decimal(volume * repetitionTime), decimal(repetitionTime), time);
                EXPECT_EQ(one.from, volume + 1) << "TR " << time;
                EXPECT_EQ(one.to, volume + 1) << "TR " << time;
                const VolumeInterval ten = volumesOfEvent(decimal(volume * repetitionTime),
                                                          decimal(10 * repetitionTime), time);
                EXPECT_EQ(ten.from, volume + 1) << "TR " << time;
                EXPECT_EQ(ten.to, volume + 10) << "TR " << time;
            }
        }
    }
}

// ---- tables

struct Table {
    const char *name;
    QByteArray text;
    double repetitionTime;
    int volumes;
    std::vector<std::pair<const char *, Intervals>> conditions;
    QStringList notes; ///< the file's path in them is F
};

void PrintTo(const Table &table, std::ostream *stream)
{
    *stream << table.name;
}

class EventsToProtocol : public testing::TestWithParam<Table>
{
};

TEST_P(EventsToProtocol, GivesConditionsAndSaysWhatItLeavesOut)
{
    const Table &table = GetParam();
    const TemporaryFolder folder;
    const QString path = folder.path("sub-01_task-x_events.tsv");
    putBytes(path, table.text);

    QStringList notes;
    const EventsTable events = readEvents(path, notes);
    const Prt prt = protocolFromEvents(events, QStringLiteral("run"), table.repetitionTime,
                                       table.volumes, notes);
    EXPECT_EQ(prt.name, QStringLiteral("run"));
    EXPECT_EQ(prt.timeUnit, 1);
    ASSERT_EQ(prt.conditions.size(), table.conditions.size());
    for (std::size_t c = 0; c < prt.conditions.size(); ++c) {
        EXPECT_EQ(prt.conditions[c].name, QString::fromUtf8(table.conditions[c].first));
        EXPECT_EQ(prt.conditions[c].intervals, table.conditions[c].second);
    }
    notes.replaceInStrings(path, QStringLiteral("F"));
    EXPECT_EQ(joined(notes), joined(table.notes));
}

std::vector<Table> tables()
{
    return {
        {"Plain",
         "onset\tduration\ttrial_type\n0\t4\trest\n4\t4\ttask\n8\t4\trest\n",
         2,
         10,
         {{"rest", {{1, 2}, {5, 6}}}, {"task", {{3, 4}}}},
         {}},
        {"ColumnsInAnyOrderWithOthersBetween",
         "trial_type\tx\tduration\tonset\na\t1\t2\t0\n",
         2,
         10,
         {{"a", {{1, 1}}}},
         {}},
        {"CarriageReturnsAndMarkAtTheStart",
         "\xef\xbb\xbfonset\tduration\ttrial_type\r\n 0 \t2\ta\r\n\r\n",
         2,
         10,
         {{"a", {{1, 1}}}},
         {}},
        {"FileNameWithoutTrialType",
         "onset\tduration\n2\t2\n",
         2,
         10,
         {{"sub-01_task-x_events", {{2, 2}}}},
         {}},
        {"NotAvailable",
         "onset\tduration\ttrial_type\nn/a\t2\ta\n0\tn/a\ta\n0\t2\tn/a\n4\t2\ta\n",
         2,
         10,
         {{"a", {{3, 3}}}},
         lines({"F: 1 event is skipped, no onset (n/a): line 2",
                "F: 1 event is skipped, no duration (n/a): line 3",
                "F: 1 event is skipped, no trial_type (n/a): line 4"})},
        {"ManyForOneReason",
         "onset\tduration\ttrial_type\nn/a\t2\ta\n-1\t2\ta\nn/a\t2\ta\nn/a\t2\ta\n4\t2\ta\n"
         "n/a\t2\ta\nn/a\t2\ta\n-7\t2\ta\n",
         2,
         10,
         {{"a", {{3, 3}}}},
         lines({"F: 5 events are skipped, no onset (n/a): line 2, line 4, line 5 and 2 more",
                "F: 2 events are skipped, before the first volume: line 3 (onset -1 s), line 9 "
                "(onset -7 s)"})},
        {"AThousandthOfAVolumeBeforeTheFirst",
         "onset\tduration\ttrial_type\n-0.0015\t4\ta\n-0.0025\t4\tb\n",
         2,
         10,
         {{"a", {{1, 2}}}, {"b", {}}},
         lines({"F: 1 event is skipped, before the first volume: line 3 (onset -0.0025 s)",
                "protocol: condition \"b\" has no interval"})},
        {"BeforeTheFirstVolume",
         "onset\tduration\ttrial_type\n-2.5\t10\ta\n",
         2,
         10,
         {{"a", {}}},
         lines({"F: 1 event is skipped, before the first volume: line 2 (onset -2.5 s)",
                "protocol: condition \"a\" has no interval"})},
        {"PastTheEnd",
         "onset\tduration\ttrial_type\n16\t10\ta\n20\t2\tb\n1e300\t1\tb\n18\t2\tb\n",
         2,
         10,
         {{"a", {{9, 10}}}, {"b", {{10, 10}}}},
         lines({"F: 2 events are skipped, behind the last of 10 volumes: line 3 (onset 20 s), line "
                "4 (onset 1e+300 s)",
                "F: 1 event is cut at the last of 10 volumes: line 2 (\"a\" 9-13)",
                "protocol: 1 interval begins before an earlier one has ended, first \"a\" 9-10 "
                "and \"b\" 10-10"})},
        {"FarPastTheEnd",
         "onset\tduration\ttrial_type\n16\t1e30\ta\n",
         2,
         10,
         {{"a", {{9, 10}}}},
         lines({"F: 1 event is cut at the last of 10 volumes: line 2 (\"a\" 9-5e29)"})},
        {"ManyPastTheEnd",
         "onset\tduration\ttrial_type\n2\t30\ta\n4\t30\tb\n6\t30\tc\n8\t30\td\n",
         2,
         10,
         {{"a", {{2, 10}}}, {"b", {{3, 10}}}, {"c", {{4, 10}}}, {"d", {{5, 10}}}},
         lines({"F: 4 events are cut at the last of 10 volumes: line 2 (\"a\" 2-16), "
                "line 3 (\"b\" 3-17), line 4 (\"c\" 4-18) and 1 more",
                "protocol: 3 intervals begin before an earlier one has ended, first \"a\" 2-10 "
                "and \"b\" 3-10"})},
        {"QuotationMarks",
         "\"onset\"\t\"duration\"\t\"trial_type\"\n\"0\"\t\"4\"\t\"left hand\"\n",
         2,
         10,
         {{"left hand", {{1, 2}}}},
         {}},
        {"CommentAboveTheColumns",
         "# from the scanner's log\nonset\tduration\ttrial_type\n0\t4\ta\n",
         2,
         10,
         {{"a", {{1, 2}}}},
         lines({"F: 1 comment line above the names of the columns skipped"})},
        {"NoEvent", "onset\tduration\n", 2, 10, {}, {}},
        {"Overlap",
         "onset\tduration\ttrial_type\n0\t6\ta\n4\t4\tb\n5\t1\tc\n",
         2,
         10,
         {{"a", {{1, 3}}}, {"b", {{3, 4}}}, {"c", {{3, 3}}}},
         lines({"protocol: 2 intervals begin before an earlier one has ended, first \"a\" 1-3 and "
                "\"b\" 3-4",
                "protocol: 1 interval gets no slice, since another begins at the same volume: "
                "\"b\" 3-4 beside \"c\" 3-3"})},
        {"EqualStartInOneCondition",
         "onset\tduration\ttrial_type\n0\t4\ta\n1\t6\ta\n",
         2,
         10,
         {{"a", {{1, 2}, {1, 4}}}},
         lines({"protocol: 1 interval gets no slice, since another begins at the same volume: "
                "\"a\" 1-4 beside \"a\" 1-2"})},
        {"ManyEqualStarts",
         "onset\tduration\ttrial_type\n0\t2\ta\n0\t2\tb\n2\t2\ta\n2\t2\tb\n4\t2\ta\n4\t2\tb\n"
         "6\t2\ta\n6\t2\tb\n8\t2\ta\n8\t2\tb\n",
         2,
         10,
         {{"a", {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}}},
          {"b", {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}}}},
         lines({"protocol: 5 intervals get no slice, since another begins at the same volume: "
                "\"a\" 1-1 beside \"b\" 1-1, \"a\" 2-2 beside \"b\" 2-2, \"a\" 3-3 beside \"b\" "
                "3-3 and 2 more"})},
        {"EarlierConditionLosesWhereverItStands",
         "onset\tduration\ttrial_type\n0\t4\ta\n8\t4\tb\n8\t2\ta\n",
         2,
         10,
         {{"a", {{1, 2}, {5, 5}}}, {"b", {{5, 6}}}},
         lines({"protocol: 1 interval gets no slice, since another begins at the same volume: "
                "\"a\" 5-5 beside \"b\" 5-6",
                "protocol: condition \"a\" mixes 1 one-volume and 1 longer intervals: all its "
                "slices count as events"})},
        {"EqualNamesForPlugins",
         "onset\tduration\ttrial_type\n0\t4\t\xce\xb1\n4\t4\t\xce\xb2\n",
         2,
         10,
         {{"\xce\xb1", {{1, 2}}}, {"\xce\xb2", {{3, 4}}}},
         lines({"protocol: 2 conditions have the same name for plugins, \"?\": \"\xce\xb1\", "
                "\"\xce\xb2\""})},
        {"Mix",
         "onset\tduration\ttrial_type\n0\t0\ta\n4\t4\ta\n8\t0\ta\n",
         2,
         10,
         {{"a", {{1, 1}, {3, 4}, {5, 5}}}},
         lines({"protocol: condition \"a\" mixes 2 one-volume and 1 longer intervals: all its "
                "slices count as events"})},
    };
}

INSTANTIATE_TEST_SUITE_P(Tables, EventsToProtocol, testing::ValuesIn(tables()), caseName<Table>);

class BadEvents : public testing::TestWithParam<BadFile>
{
};

TEST_P(BadEvents, AreRefusedInOneLine)
{
    const TemporaryFolder folder;
    const QString path = folder.path("events.tsv");
    putBytes(path, GetParam().bytes);
    QStringList notes;
    EXPECT_EQ(errorOf([&] { readEvents(path, notes); }),
              path.toStdString() + ": " + GetParam().says);
}

INSTANTIATE_TEST_SUITE_P(
    Files, BadEvents,
    testing::Values(
        BadFile{"Empty", "",
                "content: found no line, expected a line with the names of the columns"},
        BadFile{"NoOnset", "time\tduration\n",
                "first line: found the columns \"time, duration\", expected a column \"onset\""},
        BadFile{"NoDuration", "onset\ttrial_type\n",
                "first line: found the columns \"onset, trial_type\", expected a column "
                "\"duration\""},
        BadFile{"CellMissing", "onset\tduration\n0\t1\n2\n",
                "line 3: found 1 cell, expected 2, one for each column, with tabs between them"},
        BadFile{"NoNumber", "onset\tduration\n0\t1,5\n",
                "line 2, duration: found \"1,5\", expected seconds or \"n/a\""},
        BadFile{"EmptyCell", "onset\tduration\n\t1\n",
                "line 2, onset: found \"\", expected seconds or \"n/a\""},
        BadFile{"Infinite", "onset\tduration\ninf\t1\n",
                "line 2, onset: found \"inf\", expected seconds or \"n/a\""},
        BadFile{"NegativeDuration", "onset\tduration\n0\t-1\n",
                "line 2, duration: found -1 s, expected 0 or more"},
        BadFile{"NoUtf8", QByteArray("onset\tduration\ttrial_type\n0\t1\t\xff\n"),
                "line 2: found \"0\\t1\\t\\xff\", expected text in UTF-8"},
        BadFile{"ControlCharacter", QByteArray("onset\tduration\ttrial_type\n0\t1\ta\x01z\n"),
                "line 2, trial_type: found a control character (01), expected the name "
                "of a condition"}),
    nameOf);

// ---- recordings

TEST(EventsOfARecording, GiveTheBlocksOfTheRun)
{
    const QString path = recording("haxby2001/run001_events.tsv");
    if (!QFile::exists(path))
        GTEST_SKIP() << "no recordings in " << referenceFolder();
    QStringList notes;
    const Prt prt =
        protocolFromEvents(readEvents(path, notes), QStringLiteral("run001"), 2.5, 121, notes);
    const std::vector<std::pair<QString, Intervals>> expected{
        {QStringLiteral("scissors"), {{7, 15}}}, {QStringLiteral("face"), {{22, 30}}},
        {QStringLiteral("cat"), {{36, 44}}},     {QStringLiteral("shoe"), {{50, 58}}},
        {QStringLiteral("house"), {{64, 72}}},   {QStringLiteral("scrambledpix"), {{79, 87}}},
        {QStringLiteral("bottle"), {{93, 101}}}, {QStringLiteral("chair"), {{107, 115}}},
    };
    ASSERT_EQ(prt.conditions.size(), expected.size());
    for (std::size_t c = 0; c < expected.size(); ++c) {
        EXPECT_EQ(prt.conditions[c].name, expected[c].first);
        EXPECT_EQ(prt.conditions[c].intervals, expected[c].second);
    }
    EXPECT_TRUE(notes.isEmpty()) << notes.join(QLatin1Char('\n')).toStdString();
}

TEST(EventsOfRecordings, AreAllUnderstood)
{
    const QDir folder(recording("events"));
    const QStringList names = folder.entryList({QStringLiteral("*.tsv")});
    if (names.isEmpty())
        GTEST_SKIP() << "no recordings in " << referenceFolder();
    for (const QString &name : names) {
        QStringList notes;
        const QString path = folder.filePath(name);
        const EventsTable table = readEvents(path, notes);
        const Prt prt = protocolFromEvents(table, name, 2, 100000, notes);
        // Every row is an interval or a note.
        std::size_t intervals = 0;
        for (const PrtCondition &condition : prt.conditions)
            intervals += condition.intervals.size();
        int skipped = 0;
        for (const QString &note : notes.filter(QStringLiteral("skipped")))
            skipped +=
                note.section(QStringLiteral(": "), 1).section(QLatin1Char(' '), 0, 0).toInt();
        const auto rows = bytesOf(path).trimmed().count('\n');
        EXPECT_EQ(static_cast<int>(intervals) + skipped, rows) << name.toStdString();
        EXPECT_GT(intervals, 0U) << name.toStdString();
        // And a file that holds it can be written and read.
        const TemporaryFolder output;
        writePrtFile(output.path("a.prt"), prt);
        EXPECT_EQ(readPrtFile(output.path("a.prt")), prt) << name.toStdString();
    }
}

} // namespace

} // namespace corvane
