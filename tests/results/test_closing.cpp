// SPDX-License-Identifier: GPL-3.0-or-later
//
// The results dialog goes at any moment, with any windows open, in any order. Run with the
// sanitizers these tests show that nothing leaks or dangles.
#include "tests/results/results_fixture.h"

#include "dataset/tessera.h"
#include "plots/circular_plot.h"
#include "plots/circular_plot_widget.h"
#include "plots/line_plot.h"
#include "plots/span_slider.h"
#include "plots/timeseries_line_plot.h"
#include "plots/view_matrix.h"

#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QTableWidget>
#include <QTest>

#include <algorithm>
#include <bitset>

namespace
{

constexpr int kinds = 4; // of plot windows

enum class End { CloseButton, Escape, ResultGoes, MainDialogGoes, EverythingCloses };
enum class Order { PlotsStay, FirstToLast, LastToFirst };

void PrintTo(End end, std::ostream *out)
{
    *out << QStringList{"CloseButton", "Escape", "ResultGoes", "MainDialogGoes",
                        "EverythingCloses"}[int(end)]
                .toStdString();
}

void PrintTo(Order order, std::ostream *out)
{
    *out << QStringList{"PlotsStay", "FirstToLast", "LastToFirst"}[int(order)].toStdString();
}

class Closing : public ResultsFixture
{
protected:
    Closing() { setIntervals({{1, "rest"}, {11, "task"}, {21, "cue", 1}}); }

    QList<QPointer<QWidget>> openPlots(std::bitset<kinds> which)
    {
        if (which[0])
            click("btn_CircularPlotConnMtx");
        if (which[1])
            click("btn_PlotConnMtx");
        if (which[2]) {
            compute("strength");
            inspect("strength");
        }
        if (which[3]) {
            compute("global_efficiency");
            inspect("global_efficiency");
        }
        QList<QPointer<QWidget>> plots;
        for (QWidget *const child : windows<QWidget>()) {
            if (child->isWindow())
                plots += child;
        }
        EXPECT_EQ(plots.size(), int(which.count()));
        return plots;
    }

    void waitUntilGone()
    {
        EXPECT_TRUE(QTest::qWaitFor([this] { return openDialog().isNull(); }));
    }

    /// Lets everything happen that was put off.
    static void settle()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
};

class AnyOrder : public Closing, public testing::WithParamInterface<std::tuple<End, Order>>
{
};

TEST_P(AnyOrder, OfAnySetOfPlots)
{
    const auto [end, order] = GetParam();
    for (unsigned long set = 0; set < 1u << kinds; ++set) {
        SCOPED_TRACE(set);
        QPointer<Tessera> mainDialog;
        if (end == End::MainDialogGoes) {
            mainDialog = new Tessera(nullptr);
            mainDialog->setAttribute(Qt::WA_DeleteOnClose, true);
            mainDialog->show();
            object->setParent(mainDialog);
        }
        QList<QPointer<QWidget>> plots = openPlots(set);
        if (order == Order::LastToFirst)
            std::reverse(plots.begin(), plots.end());
        if (order != Order::PlotsStay) {
            for (const QPointer<QWidget> &plot : plots)
                plot->close();
            settle();
            for (const QPointer<QWidget> &plot : plots)
                EXPECT_FALSE(plot.isNull()) << "closed plots stay with their dialog";
        }

        switch (end) {
        case End::CloseButton:
            click("pushButton");
            break;
        case End::Escape:
            QTest::keyClick(&dialog(), Qt::Key_Escape);
            break;
        case End::ResultGoes:
            object.reset();
            break;
        case End::MainDialogGoes:
            object.release(); // its parent's
            mainDialog->close();
            EXPECT_TRUE(QTest::qWaitFor([&mainDialog] { return mainDialog.isNull(); }));
            break;
        case End::EverythingCloses:
            QApplication::closeAllWindows();
            break;
        }
        waitUntilGone();
        settle();
        for (const QPointer<QWidget> &plot : plots)
            EXPECT_TRUE(plot.isNull());
        if (!object) {
            object = std::make_unique<ConnectivityObject>("Subject 1", nullptr);
            object->setSubject(subject);
            object->setMatrices({weights(6, 1), weights(6, 11), weights(6, 21)});
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Ends, AnyOrder,
    testing::Combine(testing::Values(End::CloseButton, End::Escape, End::ResultGoes,
                                     End::MainDialogGoes, End::EverythingCloses),
                     testing::Values(Order::PlotsStay, Order::FirstToLast, Order::LastToFirst)),
    [](const auto &tested) {
        return testing::PrintToString(std::get<0>(tested.param)) +
               testing::PrintToString(std::get<1>(tested.param));
    });

/// Something modal is open when the result goes: its slot still has to return.
class WhileModal : public Closing
{
protected:
    void goUnder(std::function<void()> open)
    {
        modals.expect<QDialog>([this](QDialog &) { object.reset(); });
        open();
        settle();
        EXPECT_TRUE(openDialog().isNull());
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
};

TEST_F(WhileModal, AnExportAsks)
{
    goUnder([this] { click("btn_exportConnectivityMatrix"); });
}

TEST_F(WhileModal, AMeasureAsks)
{
    setMatrices({weights(51, 1)});
    goUnder([this] { compute("nodal_ge"); });
}

TEST_F(WhileModal, TheAnswerComesAfterTheDialogWent)
{
    setMatrices({weights(51, 1)});
    modals.expect<QMessageBox>([this](QMessageBox &question) {
        const QPointer<QMessageBox> asked = &question;
        closeDialog();
        if (asked)
            asked->button(QMessageBox::Yes)->click();
    });
    compute("nodal_ge");
    EXPECT_TRUE(openDialog().isNull());
}

TEST_F(WhileModal, ALinePlotAsksForAFile)
{
    openPlots(4);
    goUnder([this] { window<LinePlot>()->saveCSV(); });
}

TEST_F(WhileModal, TheRingAsksForAFile)
{
    openPlots(1);
    goUnder([this] { window<CircularPlot>()->saveImage(); });
}

TEST_F(WhileModal, AMenuIsOpen)
{
    openPlots(15);
    const auto goUnderMenu = [this] {
        QTimer::singleShot(0, [this] {
            EXPECT_NE(qobject_cast<QMenu *>(QApplication::activePopupWidget()), nullptr);
            object.reset();
        });
    };
    goUnderMenu();
    window<CircularPlot>()->showContextMenu({});
    EXPECT_TRUE(openDialog().isNull());
}

// Widgets that are being worked with

TEST_F(Closing, ASpinBoxWithHalfANumber)
{
    openPlots(1);
    for (const char *const name :
         {"dsBox_CircPlot_EdgesThickness", "sBox_CircPlot_ThicknessMultiplier"}) {
        auto *const box = find<QDoubleSpinBox>(name);
        dialog().activateWindow();
        box->setFocus();
        EXPECT_TRUE(QTest::qWaitFor([box] { return box->hasFocus(); }));
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Backspace);
        EXPECT_TRUE(box->cleanText().isEmpty());
    }
    object.reset();
    EXPECT_TRUE(openDialog().isNull());
}

TEST_F(Closing, ASliderWhoseHandleIsHeld)
{
    openPlots(1);
    auto *const slider = find<QxtSpanSlider>("widget_CircPlot_Spanner");
    QTest::mousePress(slider, Qt::LeftButton, {}, {3, slider->height() / 2});
    QTest::mouseMove(slider, {slider->width() / 2, slider->height() / 2});
    object.reset();
    EXPECT_TRUE(openDialog().isNull());
}

TEST_F(Closing, TheMouseOverAnEdgeAndOverACell)
{
    openPlots(3);
    auto *const ring = window<CircularPlot>();
    QTest::mouseMove(ring->plotWidget()->viewport(), {300, 300});
    auto *const table = window<ViewMatrix>()->findChild<QTableWidget *>("tableMatrix");
    QTest::mouseMove(table->viewport(), {20, 20});
    object.reset();
    EXPECT_TRUE(openDialog().isNull());
}

/// Nothing of the closed dialog is left in the result, which can be shown again.
TEST_F(Closing, AndOpeningAgainAndAgain)
{
    for (int round = 0; round < 3; ++round) {
        openPlots(15);
        closeDialog();
    }
    EXPECT_EQ(object->matrices().size(), 3u);
}

} // namespace
