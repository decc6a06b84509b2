// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/condition_colors.h"
#include "tests/support/qt_printers.h"

#include <gtest/gtest.h>

namespace
{

QStringList numbered(int count)
{
    QStringList names;
    for (int i = 0; i < count; ++i)
        names += QString::number(i);
    return names;
}

TEST(ConditionColors, cut_the_hue_of_each_name_to_a_whole_number)
{
    // So many that the constant is seen to five digits behind the point.
    for (int n = 1; n <= 200; ++n) {
        const QHash<QString, QColor> colors = conditionColors(numbered(n));
        ASSERT_EQ(colors.size(), n);
        for (int i = 0; i < n; ++i) {
            const int hue = int(i * (222.4922359499622 / n));
            const QColor color = colors.value(QString::number(i));
            ASSERT_EQ(color, QColor::fromHsv(hue, 127, 242, 255)) << i << " of " << n;
            ASSERT_EQ(color.hsvHue(), hue);
        }
    }
}

TEST(ConditionColors, count_a_name_once_where_it_appears_first)
{
    const QHash<QString, QColor> colors =
        conditionColors({"Rest", "Faces", "Rest", "rest", "Faces"});
    ASSERT_EQ(colors.size(), 3);
    EXPECT_EQ(colors.value("Rest").hsvHue(), 0);
    EXPECT_EQ(colors.value("Faces").hsvHue(), 74);
    EXPECT_EQ(colors.value("rest").hsvHue(), 148);
}

TEST(ConditionColors, of_no_name_are_none)
{
    EXPECT_TRUE(conditionColors({}).isEmpty());
}

TEST(BackgroundStyle, names_the_three_channels)
{
    EXPECT_EQ(backgroundStyle(QColor(1, 20, 255, 30)),
              QStringLiteral("background-color: rgb(1, 20, 255);"));
}

} // namespace
