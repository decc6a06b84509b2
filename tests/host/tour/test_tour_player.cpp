// SPDX-License-Identifier: GPL-3.0-or-later
//
// How a tour is played, on small windows.
#include "host/tour/tour.h"
#include "host/tour/user_input.h"
#include "tests/host/support/host_files.h"
#include "tests/host/tour/caption_reader.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

namespace corvane
{

namespace
{

class TourPlayer : public testing::Test
{
protected:
    TourPlayer()
    {
        window.resize(300, 200);
        button.setGeometry(10, 10, 100, 30);
        QObject::connect(&button, &QPushButton::clicked, &window, [this] {
            QDialog dialog(&window);
            dialog.setObjectName(QStringLiteral("inner"));
            QLineEdit line(&dialog);
            QObject::connect(&line, &QLineEdit::returnPressed, &dialog, &QDialog::accept);
            accepted = dialog.exec() == QDialog::Accepted;
            entered = line.text();
        });
        window.show();
    }

    std::vector<TourStep> steps()
    {
        const auto line = [this]() -> QWidget * { return window.findChild<QLineEdit *>(); };
        return {
            {QStringLiteral("first"), QStringLiteral("First"), QStringLiteral("A button."),
             [this] { return &button; }, [](QWidget *widget) { click(widget); }},
            {{}, {}, {}, line, [](QWidget *widget) { enterText(widget, QStringLiteral("text")); }},
            {QStringLiteral("second"), QStringLiteral("Second"), QStringLiteral("A line."), line,
             [](QWidget *widget) { pressKey(widget, Qt::Key_Return); }},
        };
    }

    QWidget window;
    QPushButton button{&window};
    bool accepted = false;
    QString entered;
};

} // namespace

TEST_F(TourPlayer, GoesOnInsideModalDialogsAndKeepsPicturesAndCaptions)
{
    const TemporaryFolder folder;
    Tour tour(steps());
    tour.setFolder(folder.path());
    QSignalSpy finished(&tour, &Tour::finished);
    tour.start();
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(finished.at(0).at(0).toString(), QString());
    EXPECT_TRUE(accepted);
    EXPECT_EQ(entered, QStringLiteral("text"));
    EXPECT_EQ(folder.entries(),
              (QStringList{QStringLiteral("01-first.png"), QStringLiteral("02-second.png"),
                           QStringLiteral("captions.md")}));
    EXPECT_EQ(bytesOf(folder.path("captions.md")),
              "## First\n\n![First](01-first.png)\n\nA button.\n\n"
              "## Second\n\n![Second](02-second.png)\n\nA line.\n\n");
}

TEST_F(TourPlayer, ShowsCaptionsToPeopleWhoEndItWithEscape)
{
    Tour tour(steps());
    tour.setSpeed(1000);
    QSignalSpy finished(&tour, &Tour::finished);
    tour.start();
    ASSERT_TRUE(QTest::qWaitFor([] { return CaptionReader::caption() != nullptr; }));
    EXPECT_TRUE(CaptionReader::caption()->text().contains(QStringLiteral("A button.")));
    // People do not get in the way of the tour ...
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(30, 20));
    EXPECT_EQ(window.findChild<QDialog *>(), nullptr);
    EXPECT_EQ(finished.size(), 0);
    // ... but end it.
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished.at(0).at(0).toString(), QStringLiteral("The tour was ended."));
    EXPECT_EQ(CaptionReader::caption(), nullptr);
    // The click that was to come does not.
    EXPECT_FALSE(
        QTest::qWaitFor([this] { return window.findChild<QDialog *>() != nullptr; }, 1500));
}

TEST_F(TourPlayer, LeavesTimeForEachCaptionAndGoesOnWithSpace)
{
    constexpr int longTime = 1000000; // ms
    std::vector<TourStep> both = steps();
    both.insert(both.begin(), {{},
                               QStringLiteral("Begin"),
                               QStringLiteral("Nothing is done."),
                               [this] { return &window; },
                               {}});
    Tour tour(both);
    tour.setSpeed(longTime);
    QSignalSpy finished(&tour, &Tour::finished);
    const CaptionReader reader;
    tour.start();
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(finished.at(0).at(0).toString(), QString());
    EXPECT_EQ(entered, QStringLiteral("text"));
    ASSERT_EQ(reader.captions.size(), 3);
    const std::size_t places[] = {0, 1, 3}; // of the steps with a caption
    for (int n = 0; n < 3; ++n)
        EXPECT_TRUE(reader.captions[n].contains(both[places[n]].caption));
}

TEST_F(TourPlayer, TheCaptionOfAMenuStandsBelowItsWindow)
{
    window.move(100, 100);
    QMenu menu(&window);
    menu.addAction(QStringLiteral("An entry"));
    menu.popup(window.mapToGlobal(QPoint(0, 0)));
    Tour tour({{{},
                QStringLiteral("Menu"),
                QStringLiteral("A menu."),
                [&menu] { return &menu; },
                [](QWidget *widget) { widget->close(); }}});
    tour.setSpeed(100);
    int bottom = 0;
    QObject::connect(&menu, &QMenu::aboutToHide,
                     [&] { bottom = CaptionReader::caption()->geometry().bottom(); });
    QSignalSpy finished(&tour, &Tour::finished);
    tour.start();
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_GT(bottom, window.frameGeometry().bottom());
    EXPECT_LE(bottom, window.screen()->availableGeometry().bottom());
}

TEST_F(TourPlayer, AFolderThatCannotBeWrittenIsTold)
{
    Tour tour(steps());
    tour.setFolder(QStringLiteral("/dev/null/nowhere"));
    QSignalSpy finished(&tour, &Tour::finished);
    tour.start();
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(finished.at(0).at(0).toString(),
              QStringLiteral("/dev/null/nowhere/01-first.png: writing: found Not a directory, "
                             "expected a place where a file can be written"));
}

} // namespace corvane
