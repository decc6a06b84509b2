// SPDX-License-Identifier: GPL-3.0-or-later
//
// How a tour is played, on small windows.
#include "host/tour/tour.h"
#include "host/tour/tour_stage.h"
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
#include <QTimer>

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
        theButton.setGeometry(10, 10, 100, 30);
        QObject::connect(&theButton, &QPushButton::clicked, &window, [this] {
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
             [this] { return &theButton; }, [](QWidget *widget) { click(widget); }},
            {{}, {}, {}, line, [](QWidget *widget) { enterText(widget, QStringLiteral("text")); }},
            {QStringLiteral("second"), QStringLiteral("Second"), QStringLiteral("A line."), line,
             [](QWidget *widget) { pressKey(widget, Qt::Key_Return); }},
        };
    }

    static QString label(const char *name)
    {
        return CaptionReader::card()->findChild<QLabel *>(QString::fromLatin1(name))->text();
    }
    static QPushButton *button(const char *name)
    {
        return CaptionReader::card()->findChild<QPushButton *>(QString::fromLatin1(name));
    }
    /// A click on a button of the card, as the system sends it.
    static void press(const char *name)
    {
        const QPoint place =
            button(name)->mapTo(CaptionReader::card(), button(name)->rect().center());
        QTest::mouseClick(CaptionReader::card()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          place);
    }

    QWidget window;
    QPushButton theButton{&window};
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

TEST_F(TourPlayer, ShowsCardsToPeopleWhoEndItWithEscape)
{
    Tour tour(steps());
    tour.playForPeople(QStringLiteral("Bye."));
    QSignalSpy finished(&tour, &Tour::finished);
    tour.start();
    ASSERT_TRUE(QTest::qWaitFor([] { return CaptionReader::card() != nullptr; }));
    EXPECT_EQ(CaptionReader::card()->text(), QStringLiteral("A button."));
    EXPECT_EQ(label("tourStep"), QStringLiteral("Step 1 of 2"));
    // People do not get in the way of the tour ...
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(30, 20));
    EXPECT_EQ(window.findChild<QDialog *>(), nullptr);
    EXPECT_EQ(finished.size(), 0);
    // ... but end it.
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return finished.size() == 1; }));
    EXPECT_EQ(finished.at(0).at(0).toString(), QStringLiteral("The tour was ended."));
    EXPECT_EQ(CaptionReader::card(), nullptr);
    // The click that was to come does not.
    EXPECT_FALSE(QTest::qWaitFor([this] { return window.findChild<QDialog *>() != nullptr; }, 300));
}

TEST_F(TourPlayer, EachCardWaitsForItsReaderAndOneIsAtTheEnd)
{
    std::vector<TourStep> both = steps();
    both.insert(both.begin(), {{},
                               QStringLiteral("Begin"),
                               QStringLiteral("Nothing is done."),
                               [this] { return &window; },
                               {}});
    Tour tour(both);
    tour.playForPeople(QStringLiteral("Bye."));
    QSignalSpy finished(&tour, &Tour::finished);
    QStringList numbers;
    const CaptionReader reader([&] { numbers += label("tourStep"); });
    tour.start();
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(finished.at(0).at(0).toString(), QString());
    EXPECT_EQ(entered, QStringLiteral("text"));
    EXPECT_EQ(reader.captions,
              (QStringList{QStringLiteral("Nothing is done."), QStringLiteral("A button."),
                           QStringLiteral("A line."), QStringLiteral("Bye.")}));
    EXPECT_EQ(numbers, (QStringList{QStringLiteral("Step 1 of 3"), QStringLiteral("Step 2 of 3"),
                                    QStringLiteral("Step 3 of 3"), QStringLiteral("The end")}));
    EXPECT_EQ(CaptionReader::card(), nullptr);
}

TEST_F(TourPlayer, GoesBackWithAPictureAndOnByTheButtonsOfItsCard)
{
    std::vector<TourStep> twice = steps();
    twice.insert(twice.begin(), {{},
                                 QStringLiteral("Begin"),
                                 QStringLiteral("Nothing is done."),
                                 [this] { return &window; },
                                 {}});
    Tour tour(twice);
    tour.playForPeople(QStringLiteral("Bye."));
    QSignalSpy finished(&tour, &Tour::finished);
    const auto picture = [] {
        return CaptionReader::card()->findChild<QLabel *>(QStringLiteral("tourPicture"));
    };
    const auto typeKey = [](Qt::Key key) { QTest::keyClick(CaptionReader::windowWithKeys(), key); };
    const struct {
        const char *caption;
        std::function<void()> answer;
    } script[] = {{"Nothing is done.",
                   [&] {
                       EXPECT_FALSE(button("tourBack")->isEnabled());
                       press("tourNext");
                   }},
                  {"A button.",
                   [&] {
                       EXPECT_FALSE(picture()->isVisible());
                       press("tourBack");
                   }},
                  {"Nothing is done.",
                   [&] {
                       EXPECT_EQ(label("tourStep"), QStringLiteral("Step 1 of 3"));
                       EXPECT_TRUE(picture()->isVisible());
                       EXPECT_GT(picture()->pixmap(Qt::ReturnByValue).width(), 100);
                       press("tourNext");
                   }},
                  // What was done is not done a second time.
                  {"A button.",
                   [&] {
                       EXPECT_EQ(window.findChild<QDialog *>(), nullptr);
                       press("tourNext");
                   }},
                  // Inside a modal dialog.
                  {"A line.", [&] { press("tourNext"); }},
                  {"Bye.", [&] { typeKey(Qt::Key_Backspace); }},
                  {"A line.", [&] { typeKey(Qt::Key_Space); }},
                  {"Bye.", [&] { press("tourEnd"); }}};
    std::size_t next = 0;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        const TourCard *const card = CaptionReader::card();
        if (next == std::size(script) || card == nullptr ||
            card->text() != QLatin1String(script[next].caption))
            return;
        // Not from here: a timer does not fire again while its own slot is in another event loop.
        QTimer::singleShot(0, &look, script[next++].answer);
    });
    look.start(1);
    tour.start();
    ASSERT_TRUE(finished.wait(20000)) << next;
    EXPECT_EQ(finished.at(0).at(0).toString(), QString());
    EXPECT_EQ(next, std::size(script));
    EXPECT_EQ(entered, QStringLiteral("text"));
}

TEST_F(TourPlayer, TheCardIsPressedAlsoOverAMenuWhichStays)
{
    QMenu menu(&window);
    menu.addAction(QStringLiteral("An entry"));
    menu.popup(window.mapToGlobal(QPoint(0, 0)));
    Tour tour({{{},
                QStringLiteral("Menu"),
                QStringLiteral("A menu."),
                [&menu] { return &menu; },
                [](QWidget *widget) { widget->close(); }}});
    tour.playForPeople(QStringLiteral("Bye."));
    tour.start();
    ASSERT_TRUE(QTest::qWaitFor([] { return CaptionReader::card() != nullptr; }));
    EXPECT_TRUE(menu.isVisible());
    EXPECT_FALSE(CaptionReader::card()->geometry().intersects(window.frameGeometry()));
    // A menu takes all of the mouse.
    const QPoint place = button("tourNext")->mapToGlobal(button("tourNext")->rect().center());
    QTest::mouseClick(menu.windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      menu.mapFromGlobal(place));
    ASSERT_TRUE(QTest::qWaitFor([&menu] { return !menu.isVisible(); }));
    EXPECT_EQ(CaptionReader::card()->text(), QStringLiteral("A menu."));
    ASSERT_TRUE(
        QTest::qWaitFor([] { return CaptionReader::card()->text() == QStringLiteral("Bye."); }));
}

TEST(TourStage, PutsWindowsSideBySideAndThoseWithoutRoomAway)
{
    const QMargins frame(1, 20, 1, 5);
    const QRect screen(0, 0, 1600, 1000);
    const Stage stage = stageOf(screen);
    EXPECT_EQ(stage.windows.united(stage.card), screen);
    EXPECT_FALSE(stage.windows.intersects(stage.card));
    const StageWindow dialog{{533, 740}, {400, 700}, frame};
    const StageWindow plot{{641, 640}, {300, 300}, frame};
    const StageWindow workbench{{1100, 850}, {600, 500}, frame};
    const auto frames = [&](const std::vector<StageWindow> &windows) {
        QList<QRect> all;
        const auto places = placesOn(stage.windows, windows);
        for (std::size_t n = 0; n < windows.size(); ++n)
            all += places[n] ? places[n]->marginsAdded(windows[n].frame) : QRect();
        return all;
    };
    // Two that fit, and none is left for the third.
    const QList<QRect> three = frames({plot, dialog, workbench});
    EXPECT_EQ(three[0].size(), QSize(643, 665));
    EXPECT_EQ(three[1].size(), QSize(535, 765));
    EXPECT_TRUE(three[2].isNull());
    // The last one takes what is left.
    const QList<QRect> two = frames({dialog, workbench});
    EXPECT_EQ(two[1].width(), stage.windows.width() - 535);
    for (const QList<QRect> &all : {three, two}) {
        for (int n = 0; n < all.size(); ++n) {
            if (all[n].isNull())
                continue;
            EXPECT_TRUE(stage.windows.contains(all[n])) << n;
            for (int other = 0; other < n; ++other)
                EXPECT_FALSE(all[n].intersects(all[other])) << n << ' ' << other;
        }
    }
    // One that is larger than the stage is made smaller, as far as it goes.
    const QList<QRect> large = frames({{{2000, 2000}, {500, 600}, frame}});
    EXPECT_EQ(large[0], stage.windows);
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
