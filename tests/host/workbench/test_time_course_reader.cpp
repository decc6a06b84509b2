// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/time_course_reader.h"
#include "tests/host/support/host_files.h"
#include "tests/support/no_further_thread.h"

#include <QTest>
#include <gmock/gmock.h>
#include <optional>

namespace corvane
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class TimeCourseReaderTest : public testing::Test
{
protected:
    TimeCourseReaderTest()
    {
        const VtcInfo info = smallVtcInfo();
        putBytes(folder.path("a.vtc"), vtcBytes(info, numberedSamples<short>(info)));
        vtc.emplace(folder.path("a.vtc"));
    }

    void ask(const CubeVoxel &voxel)
    {
        reader.ask(*vtc, voxel, [this](const TimeCourseReader::Samples &samples) {
            received.push_back(samples);
        });
    }
    void waitForSamples()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !received.empty(); }));
    }

    const TemporaryFolder folder;
    std::optional<VtcFile> vtc;
    TimeCourseReader reader;
    std::vector<TimeCourseReader::Samples> received;
};

} // namespace

TEST_F(TimeCourseReaderTest, NeverMakesTheAskerWait)
{
    ask({60, 52, 62});
    EXPECT_THAT(received, IsEmpty());
    waitForSamples();
    EXPECT_THAT(received, ElementsAre(ElementsAre(8, 9, 10, 11)));
}

TEST_F(TimeCourseReaderTest, WithoutAFurtherThreadReadsAtOnce)
{
    const NoFurtherThread refused;
    ask({57, 52, 59});
    ask({60, 52, 62});
    EXPECT_THAT(received, IsEmpty());
    waitForSamples();
    EXPECT_THAT(received, ElementsAre(ElementsAre(8, 9, 10, 11)));
}

TEST_F(TimeCourseReaderTest, ReadsZerosOfARunThatBecameShorter)
{
    ASSERT_TRUE(QFile::resize(folder.path("a.vtc"), 0));
    ask({60, 52, 62});
    waitForSamples();
    EXPECT_THAT(received, ElementsAre(ElementsAre(0, 0, 0, 0)));
    EXPECT_FALSE(vtc->isIntact());
}

TEST_F(TimeCourseReaderTest, OfManyVoxelsOnlyTheLastCounts)
{
    for (int i = 0; i < 100; ++i)
        ask({57, 52, 59});
    ask({60, 52, 62});
    waitForSamples();
    EXPECT_THAT(received, ElementsAre(ElementsAre(8, 9, 10, 11)));
}

TEST_F(TimeCourseReaderTest, GivesNothingThatWasForgotten)
{
    ask({57, 52, 59});
    reader.forget();
    ask({0, 0, 0});
    waitForSamples();
    EXPECT_THAT(received, ElementsAre(IsEmpty()));
}

TEST_F(TimeCourseReaderTest, ReadsARunThatIsClosedInTheMeantime)
{
    ask({57, 52, 59});
    ask({60, 52, 62});
    vtc.reset();
    waitForSamples();
    EXPECT_THAT(received, ElementsAre(ElementsAre(8, 9, 10, 11)));
}

TEST(TimeCourseReader, MayGoWhileItReads)
{
    const TemporaryFolder folder;
    const VtcInfo info = smallVtcInfo();
    putBytes(folder.path("a.vtc"), vtcBytes(info, numberedSamples<short>(info)));
    bool isReceived = false;
    {
        TimeCourseReader reader;
        reader.ask(VtcFile(folder.path("a.vtc")), {57, 52, 59},
                   [&isReceived](const TimeCourseReader::Samples &) { isReceived = true; });
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(isReceived);
}

} // namespace corvane
