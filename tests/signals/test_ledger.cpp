// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/ledger.h"
#include "tests/signals/error_text.h"

#include <gmock/gmock.h>

namespace
{

using namespace signals;
using testing::HasSubstr;

/// 10 volumes: 0 and 1 non-steady, 1, 4 and 5 censored.
Volumes ten_volumes()
{
    Volumes volumes = Volumes::all_of(10);
    volumes.non_steady.head(2).setConstant(true);
    for (const int volume : {1, 4, 5}) {
        volumes.censored[volume] = true;
    }
    volumes.fd.resize(10);
    volumes.fd << NAN, 8, 0.1, 0.2, 0.9, 0.7, 0.3, 0.4, 0.1, 0.1;
    return volumes;
}

TEST(LedgerOfRun, CountsAddUp)
{
    const Ledger ledger = count_volumes(ten_volumes(), 2.5);
    EXPECT_EQ(ledger.volumes, 10);
    EXPECT_EQ(ledger.non_steady, 2);
    EXPECT_EQ(ledger.censored, 2) << "a non-steady volume is not counted twice";
    EXPECT_EQ(ledger.kept, 6);
    EXPECT_EQ(ledger.seconds, 15);
}

TEST(LedgerOfRun, MeanDisplacement)
{
    const Ledger ledger = count_volumes(ten_volumes(), 2.5);
    EXPECT_NEAR(ledger.mean_fd_before, (0.1 + 0.2 + 0.9 + 0.7 + 0.3 + 0.4 + 0.1 + 0.1) / 8, 1e-15);
    EXPECT_NEAR(ledger.mean_fd_after, (0.1 + 0.2 + 0.3 + 0.4 + 0.1 + 0.1) / 6, 1e-15);
}

TEST(LedgerOfRun, MeanDisplacementOfNoVolumeIsNotKnown)
{
    Volumes volumes = ten_volumes();
    volumes.censored.setConstant(true);
    const Ledger ledger = count_volumes(volumes, 2.5);
    EXPECT_FALSE(std::isnan(ledger.mean_fd_before));
    EXPECT_TRUE(std::isnan(ledger.mean_fd_after));
    EXPECT_THAT(text(ledger), HasSubstr("n/a mm after"));
    // The only volume is the first, which has no displacement.
    Volumes one = Volumes::all_of(1);
    one.fd.setConstant(1, NAN);
    EXPECT_TRUE(std::isnan(count_volumes(one, 2.5).mean_fd_before));
    EXPECT_TRUE(std::isnan(count_volumes(one, 2.5).mean_fd_after));
}

TEST(LedgerOfRun, RowZeroHasNoDisplacement)
{
    Volumes volumes = Volumes::all_of(3);
    volumes.fd.resize(3);
    volumes.fd << 99, 1, 2;
    EXPECT_EQ(count_volumes(volumes, 2).mean_fd_before, 1.5) << "whatever the table says there";
    volumes.fd[0] = NAN;
    EXPECT_EQ(count_volumes(volumes, 2).mean_fd_after, 1.5);
    volumes.fd.resize(0);
    EXPECT_TRUE(std::isnan(count_volumes(volumes, 2).mean_fd_before));
    EXPECT_TRUE(std::isnan(count_volumes(volumes, 2).mean_fd_after));
}

TEST(LedgerOfRun, SizesMustAgree)
{
    Volumes volumes = ten_volumes();
    volumes.fd.conservativeResize(9);
    EXPECT_THAT(error_text<Error>([&] { count_volumes(volumes, 2); }),
                HasSubstr("FD of 9 volumes: expected 10"));
    volumes.censored.conservativeResize(11);
    EXPECT_THAT(error_text<Error>([&] { count_volumes(volumes, 2); }),
                HasSubstr("censored volumes of 11 volumes: expected 10"));
}

Ledger enough()
{
    Ledger ledger = count_volumes(ten_volumes(), 2.5);
    ledger.rank = 3;
    ledger.degrees = 3;
    return ledger;
}

TEST(LedgerOfRun, Limits)
{
    EXPECT_NO_THROW(require_enough(enough()));
    EXPECT_NO_THROW(require_enough(enough(), {6, 15}));
    const auto text = [](const Ledger &ledger, const Limits &limits) {
        return error_text<Refused>([&] { require_enough(ledger, limits); });
    };
    EXPECT_THAT(text(enough(), {7, 0}), HasSubstr("6 volumes, expected at least 7"));
    EXPECT_THAT(text(enough(), {0, 15.5}), HasSubstr("15 s, expected at least 15.5 s"));
    Ledger few = enough();
    few.degrees = 2.9;
    EXPECT_THAT(text(few, {}), HasSubstr("2.9 degrees of freedom, expected at least 3"));
    few.degrees = NAN;
    EXPECT_THAT(text(few, {}), HasSubstr("n/a degrees of freedom"));
}

TEST(LedgerOfRun, RefusalHasAllNumbersAndTheLedger)
{
    Ledger few = enough();
    few.rank = 4;
    few.degrees = 2;
    try {
        require_enough(few);
        FAIL();
    } catch (const Refused &refused) {
        EXPECT_THAT(
            refused.what(),
            HasSubstr("10 volumes in the file, 2 non-steady, 2 censored, 6 kept, 15 s; "
                      "design of rank 4, 2 degrees of freedom left; mean FD 0.35 mm before, "
                      "0.2 mm after"));
        EXPECT_EQ(refused.ledger().kept, 6);
    }
}

TEST(LedgerOfRun, Text)
{
    Ledger ledger;
    ledger.volumes = 1;
    ledger.degrees = 41.25;
    ledger.about = true;
    EXPECT_EQ(text(ledger),
              "1 volume in the file, 0 non-steady, 0 censored, 0 kept, 0 s; design of "
              "rank 0, about 41.25 degrees of freedom left; mean FD n/a mm before, "
              "n/a mm after");
}

} // namespace
