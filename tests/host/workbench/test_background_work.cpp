// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/background_work.h"
#include "tests/support/modal_driver.h"
#include "tests/support/no_further_thread.h"

#include <QLabel>
#include <QPushButton>
#include <QSemaphore>
#include <QTest>

#include <gtest/gtest.h>
#include <thread>

namespace corvane
{

/// Whatever a user does to end it, the windows behind stay out of reach until the work has ended.
TEST(BehindProgress, TheDialogStaysUntilACancelledWorkHasEnded)
{
    const std::function<void(QProgressDialog &)> ways[] = {
        [](QProgressDialog &dialog) {
            QTest::mouseClick(dialog.findChild<QPushButton *>(), Qt::LeftButton);
        },
        [](QProgressDialog &dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); },
        [](QProgressDialog &dialog) { dialog.close(); },
    };
    for (const auto &cancel : ways) {
        QWidget window;
        window.show();
        QSemaphore mayEnd;
        ModalDriver driver;
        driver.expect<QProgressDialog>([&](QProgressDialog &dialog) {
            cancel(dialog);
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
            EXPECT_EQ(dialog.findChild<QLabel *>()->text(), QStringLiteral("Stopping..."));
            mayEnd.release();
        });
        const WorkOutcome outcome = runBehindProgress(&window, QStringLiteral("Work"),
                                                      [&mayEnd](const ProgressWatch &watch) {
                                                          mayEnd.acquire();
                                                          tellProgress(watch, 1, 2);
                                                      });
        EXPECT_EQ(driver.remaining(), 0U);
        EXPECT_TRUE(outcome.stopped);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
}

TEST(BehindProgress, WithoutAFurtherThreadTheWorkIsDoneAllTheSame)
{
    const NoFurtherThread refused;
    QWidget window;
    window.show();
    bool isDone = false;
    const WorkOutcome done =
        runBehindProgress(&window, QStringLiteral("Work"), [&isDone](const ProgressWatch &watch) {
            tellProgress(watch, 1, 2);
            isDone = true;
        });
    EXPECT_TRUE(isDone);
    EXPECT_EQ(done.fault, QString());
    EXPECT_FALSE(done.stopped);
    const WorkOutcome failed = runBehindProgress(
        &window, QStringLiteral("Work"), [](const ProgressWatch &) { std::thread([] {}).join(); });
    EXPECT_EQ(failed.fault, QStringLiteral("The system gives no further thread for this."));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

} // namespace corvane
