// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog in which the VOIs of a subject are chosen.
#include "dataset/plugin_settings.h"
#include "tests/gui_test.h"
#include "tests/support/dataset_fixture.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QTest>
#include <QVBoxLayout>

namespace
{

/// The open dialog.
struct Selection {
    explicit Selection(QDialog &selection)
        : dialog(selection), list(selection.findChild<QListWidget *>()),
          buttons(selection.findChild<QDialogButtonBox *>()),
          ok(buttons->button(QDialogButtonBox::Ok)),
          cancel(buttons->button(QDialogButtonBox::Cancel))
    {
        for (QAbstractButton *button : buttons->buttons()) {
            if (buttons->buttonRole(button) == QDialogButtonBox::ResetRole)
                none = qobject_cast<QPushButton *>(button);
        }
    }

    QPoint place(int voi) const
    {
        list->scrollToItem(list->item(voi));
        return list->visualItemRect(list->item(voi)).center();
    }
    void click(int voi) const
    {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place(voi));
    }
    void press(int voi) const
    {
        QTest::mousePress(list->viewport(), Qt::LeftButton, {}, place(voi));
    }
    void release(int voi) const
    {
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, place(voi));
    }
    static void click(QPushButton *button) { QTest::mouseClick(button, Qt::LeftButton); }
    QVector<int> selected() const
    {
        QVector<int> vois;
        for (const QListWidgetItem *item : list->selectedItems())
            vois.append(item->data(Qt::UserRole).toInt());
        return vois;
    }
    bool isFrozen() const { return list->selectionMode() == QAbstractItemView::NoSelection; }

    QDialog &dialog;
    QListWidget *list;
    QDialogButtonBox *buttons;
    QPushButton *ok;
    QPushButton *cancel;
    QPushButton *none = nullptr;
};

class VoiSelection : public DatasetFixture
{
protected:
    /// Opens the dialog for the one subject, and acts on it.
    void open(std::function<void(const Selection &)> action)
    {
        if (!dialog().isVisible() || model().rowCount() == 0)
            selectProfile(addReadyRow());
        modals.expect<QDialog>([action = std::move(action)](QDialog &selection) {
            const QPointer<QDialog> guard = &selection;
            action(Selection(selection));
            if (!guard.isNull() && guard->isVisible())
                guard->reject();
        });
        DatasetFixture::click("btn_ConfigureVOIs");
        EXPECT_EQ(modals.remaining(), 0u);
    }
    void setSeeds(const QVector<int> &seeds)
    {
        ConnectivityScheme scheme = subject(0).scheme();
        scheme.seedVois = seeds;
        subject(0).setScheme(scheme);
    }
    QVector<int> seeds() { return subject(0).scheme().seedVois; }
    bool canCompute() { return find<QPushButton>("btn_Compute")->isEnabled(); }
};

TEST_F(VoiSelection, IsAsDescribed)
{
    open([this](const Selection &selection) {
        EXPECT_EQ(selection.dialog.windowTitle(), "Select VOIs");
        EXPECT_EQ(selection.dialog.parentWidget(), &dialog());
        EXPECT_EQ(selection.dialog.sizePolicy(),
                  QSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum));
        EXPECT_TRUE(selection.dialog.isModal());

        auto *const layout = qobject_cast<QVBoxLayout *>(selection.dialog.layout());
        ASSERT_NE(layout, nullptr);
        ASSERT_EQ(layout->count(), 3);
        const auto *const label = qobject_cast<QLabel *>(layout->itemAt(0)->widget());
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text(), "Select the VOIs (max 10) to include to your analysis.");
        EXPECT_EQ(layout->itemAt(1)->widget(), selection.list);
        EXPECT_EQ(layout->itemAt(2)->widget(), selection.buttons);

        EXPECT_EQ(selection.list->selectionMode(), QAbstractItemView::MultiSelection);
        EXPECT_EQ(selection.list->accessibleName(), "VOIs");
        ASSERT_EQ(selection.list->count(), 12);
        for (int voi = 0; voi < 12; ++voi) {
            EXPECT_EQ(selection.list->item(voi)->text(), "V" + QString::number(voi));
            EXPECT_EQ(selection.list->item(voi)->data(Qt::UserRole), voi);
        }
        EXPECT_FALSE(selection.ok->isEnabled());
        EXPECT_TRUE(selection.cancel->isEnabled());
        ASSERT_NE(selection.none, nullptr);
        EXPECT_EQ(selection.none->text(), "Select None");
        EXPECT_TRUE(selection.none->isFlat());
        EXPECT_EQ(selection.buttons->buttons().size(), 3);
        EXPECT_EQ(selection.dialog.findChildren<QPushButton *>().size(), 3);
    });
}

TEST_F(VoiSelection, OkWantsTwoToTen)
{
    open([](const Selection &selection) {
        for (int n = 1; n <= 11; ++n) {
            selection.click(n - 1);
            EXPECT_EQ(selection.selected().size(), n);
            EXPECT_EQ(selection.ok->isEnabled(), n >= 2 && n <= 10) << n;
        }
        selection.click(4);
        EXPECT_EQ(selection.selected().size(), 10);
        EXPECT_TRUE(selection.ok->isEnabled());
    });
}

TEST_F(VoiSelection, TenthFreezesAtThePressAndRearmsAtTheRelease)
{
    open([](const Selection &selection) {
        for (int voi = 0; voi < 9; ++voi)
            selection.click(voi);
        EXPECT_FALSE(selection.isFrozen());
        selection.press(9);
        EXPECT_TRUE(selection.isFrozen());
        EXPECT_EQ(selection.selected().size(), 10);
        selection.release(9);
        EXPECT_FALSE(selection.isFrozen());
        selection.press(10);
        EXPECT_TRUE(selection.isFrozen());
        EXPECT_EQ(selection.selected().size(), 11);
        EXPECT_FALSE(selection.ok->isEnabled());
        selection.release(10);
        EXPECT_FALSE(selection.isFrozen());
    });
}

TEST_F(VoiSelection, KeyboardSelectsFreezesAndIsFreed)
{
    open([](const Selection &selection) {
        selection.list->setFocus();
        selection.list->setCurrentRow(0, QItemSelectionModel::NoUpdate);
        for (int voi = 0; voi < 12; ++voi) {
            QTest::keyClick(selection.list, Qt::Key_Space);
            QTest::keyClick(selection.list, Qt::Key_Down);
        }
        EXPECT_EQ(selection.selected().size(), 10);
        EXPECT_TRUE(selection.isFrozen());
        EXPECT_TRUE(selection.ok->isEnabled());
        QTest::keyClick(selection.none, Qt::Key_Space);
        EXPECT_EQ(selection.selected().size(), 0);
        EXPECT_FALSE(selection.isFrozen());
        EXPECT_FALSE(selection.ok->isEnabled());
        EXPECT_TRUE(selection.dialog.isVisible());
    });
}

TEST_F(VoiSelection, ClickThawsWhatTheKeyboardFroze)
{
    open([](const Selection &selection) {
        selection.list->setFocus();
        selection.list->setCurrentRow(0, QItemSelectionModel::NoUpdate);
        for (int voi = 0; voi < 10; ++voi) {
            QTest::keyClick(selection.list, Qt::Key_Space);
            QTest::keyClick(selection.list, Qt::Key_Down);
        }
        ASSERT_TRUE(selection.isFrozen());
        selection.click(11);
        EXPECT_FALSE(selection.isFrozen());
        EXPECT_EQ(selection.selected().size(), 10) << "the click only thaws";
        selection.click(0);
        EXPECT_EQ(selection.selected().size(), 9);
    });
}

TEST_F(VoiSelection, MovingTheCurrentItemChangesNothing)
{
    open([](const Selection &selection) {
        selection.click(0);
        selection.click(1);
        selection.list->setCurrentRow(5, QItemSelectionModel::NoUpdate);
        EXPECT_EQ(selection.selected(), (QVector<int>{0, 1}));
        EXPECT_TRUE(selection.ok->isEnabled());
        EXPECT_FALSE(selection.isFrozen());
        EXPECT_TRUE(
            QObject::disconnect(selection.list, &QListWidget::currentItemChanged, nullptr, nullptr))
            << "the selection is read all the same";
    });
}

TEST_F(VoiSelection, EveryInputIsAStopOfTab)
{
    open([](const Selection &selection) {
        selection.click(0);
        selection.click(1); // Ok is enabled now
        selection.dialog.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&selection.dialog));
        selection.list->setFocus();
        for (QWidget *next :
             {static_cast<QWidget *>(selection.none), static_cast<QWidget *>(selection.ok),
              static_cast<QWidget *>(selection.cancel), static_cast<QWidget *>(selection.list)}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            EXPECT_EQ(QApplication::focusWidget(), next);
        }
    });
}

TEST_F(VoiSelection, EarlierSeedsAreSelectedAndOkWaitsForAChange)
{
    selectProfile(addReadyRow());
    setSeeds({7, 2, 5});
    open([](const Selection &selection) {
        EXPECT_EQ(selection.selected().size(), 3);
        EXPECT_TRUE(selection.list->item(2)->isSelected());
        EXPECT_TRUE(selection.list->item(5)->isSelected());
        EXPECT_TRUE(selection.list->item(7)->isSelected());
        EXPECT_FALSE(selection.ok->isEnabled());
        selection.click(0);
        EXPECT_TRUE(selection.ok->isEnabled());
    });
    EXPECT_EQ(seeds(), (QVector<int>{7, 2, 5}));
}

TEST_F(VoiSelection, AcceptingStoresTheOrderOfTheSelection)
{
    QVector<int> order;
    open([&order](const Selection &selection) {
        for (const int voi : {5, 1, 3})
            selection.click(voi);
        order = selection.selected();
        Selection::click(selection.ok);
        EXPECT_FALSE(selection.dialog.isVisible());
    });
    EXPECT_EQ(order.size(), 3);
    EXPECT_EQ(seeds(), order);
    EXPECT_EQ(subject(0).scheme().kind, 1);
    EXPECT_TRUE(canCompute());
}

TEST_F(VoiSelection, ReturnAccepts)
{
    open([](const Selection &selection) {
        selection.click(0);
        QTest::keyClick(&selection.dialog, Qt::Key_Return);
        EXPECT_TRUE(selection.dialog.isVisible()) << "one is too few";
        selection.click(1);
        QTest::keyClick(&selection.dialog, Qt::Key_Return);
        EXPECT_FALSE(selection.dialog.isVisible());
    });
    EXPECT_EQ(seeds(), (QVector<int>{0, 1}));
}

TEST_F(VoiSelection, SelectNoneDoesNotClose)
{
    open([](const Selection &selection) {
        selection.click(0);
        selection.click(1);
        Selection::click(selection.none);
        EXPECT_TRUE(selection.selected().isEmpty());
        EXPECT_FALSE(selection.ok->isEnabled());
        EXPECT_TRUE(selection.dialog.isVisible());
    });
    EXPECT_TRUE(seeds().isEmpty());
}

TEST_F(VoiSelection, CancelWithoutSeedsDisablesCompute)
{
    selectProfile(addReadyRow());
    EXPECT_TRUE(canCompute());
    open([](const Selection &selection) {
        selection.click(0);
        selection.click(1);
        Selection::click(selection.cancel);
    });
    EXPECT_TRUE(seeds().isEmpty());
    EXPECT_FALSE(canCompute());
}

TEST_F(VoiSelection, EscapeWithSeedsKeepsThemAndEnablesCompute)
{
    selectProfile(addReadyRow());
    setSeeds({4, 2});
    find<QPushButton>("btn_Compute")->setEnabled(false);
    open([](const Selection &selection) { QTest::keyClick(&selection.dialog, Qt::Key_Escape); });
    EXPECT_EQ(seeds(), (QVector<int>{4, 2}));
    EXPECT_TRUE(canCompute());
}

TEST_F(VoiSelection, WithoutASubjectNothingOpens)
{
    addReadyRow();
    selectProfile(-1);
    const bool before = canCompute();
    click("btn_ConfigureVOIs"); // an unexpected dialog would fail
    EXPECT_EQ(canCompute(), before);
}

TEST_F(VoiSelection, FileWithoutVoisHasNothingToChoose)
{
    const int row = addRow();
    finishRow(row, addVtc("run.vtc"), addVois("none.voi", 0));
    EXPECT_TRUE(subject(row).dataLoaded);
    selectProfile(row);
    open([](const Selection &selection) {
        EXPECT_EQ(selection.list->count(), 0);
        EXPECT_FALSE(selection.ok->isEnabled());
    });
    EXPECT_FALSE(canCompute());
}

TEST_F(VoiSelection, FileThatTheHostRefusesHasNothingToChoose)
{
    selectProfile(addReadyRow());
    host.voiSets.clear();
    host.log.clear();
    open([](const Selection &selection) { EXPECT_EQ(selection.list->count(), 0); });
    EXPECT_EQ(hostLog(), QStringList{"Plugin> Could not load VOI file. Please retry."});
}

TEST_F(VoiSelection, FileReplacedByAShorterOneDropsSeedsBeyondIt)
{
    selectProfile(addReadyRow());
    setSeeds({11, 1});
    addVois("set.voi", 3);
    open([](const Selection &selection) {
        EXPECT_EQ(selection.list->count(), 3);
        EXPECT_EQ(selection.selected(), QVector<int>{1});
        selection.click(2);
        Selection::click(selection.ok);
    });
    EXPECT_EQ(seeds(), (QVector<int>{1, 2}));
}

TEST_F(VoiSelection, VoiWithoutVoxelsIsOfferedToo)
{
    fake_host::VoiSet set;
    set.vois = {{"V1", {{50, 60, 70}}}, {"V2", {}}, {"", {{51, 60, 70}}}};
    const int row = addRow();
    finishRow(row, addVtc("run.vtc"), addVois("set.voi", set));
    selectProfile(row);
    open([](const Selection &selection) {
        EXPECT_EQ(selection.list->item(1)->text(), "V2 (empty)");
        EXPECT_EQ(selection.list->item(2)->text(), "");
    });
}

TEST_F(VoiSelection, MainDialogClosedUnderItEndsTheSlot)
{
    selectProfile(addReadyRow());
    modals.expect<QDialog>([this](QDialog &) { closeDialog(); });
    click("btn_ConfigureVOIs");
    EXPECT_EQ(modals.remaining(), 0u);
}

TEST_F(VoiSelection, LogsItsSignature)
{
    selectProfile(addReadyRow());
    PluginSettings::instance()->verboseLogging = true;
    takeMessages();
    open([](const Selection &) {});
    PluginSettings::instance()->verboseLogging = false;
    QStringList texts;
    for (const LoggedMessage &message : takeMessages()) {
        if (message.type == QtDebugMsg)
            texts.append(message.text);
    }
    EXPECT_EQ(texts, QStringList{"void __cdecl Tessera::configurationSeedToSeedVOIs(bool)"});
}

} // namespace
