// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/connectivity_object.h"
#include "tests/gui_test.h"
#include "tests/support/dataset_fixture.h"
#include "tests/support/no_further_thread.h"

#include <QListWidget>
#include <QProgressDialog>

#include <gtest/gtest.h>

namespace
{

using ComputeWithoutThreads = DatasetFixture;

TEST_F(ComputeWithoutThreads, MakesTheResultOfOneWithThem)
{
    for (int row = 0; row < 2; ++row) {
        addReadyRow();
        selectProfile(row);
        selectSeeds({0, 3, 5, 8});
    }
    {
        const NoFurtherThread refused; // nor has the pool one yet
        selectProfile(0);
        compute();
    }
    selectProfile(1);
    compute();
    ASSERT_EQ(objects().size(), 2);
    ASSERT_EQ(object(0)->matrices().size(), 1U);
    EXPECT_EQ(object(0)->matrices()[0].rows(), 4);
    EXPECT_EQ(object(0)->matrices()[0], object(1)->matrices()[0]);
    EXPECT_EQ(results()->count(), 2);
    EXPECT_TRUE(dialog().findChildren<QProgressDialog *>().isEmpty());
}

} // namespace
