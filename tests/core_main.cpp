// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCoreApplication>
#include <QTextCodec>
#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    // Paths are UTF-8, as in the program.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
