// SPDX-License-Identifier: GPL-3.0-or-later
//
// A long session in random order, and results that are looked at after their record has changed.
// What they prove they prove under the sanitizers: nothing leaks, dangles or reads outside.
#include "engine/connectivity_object.h"
#include "plots/my_label.h"
#include "plots/my_slider.h"
#include "tests/gui_test.h"
#include "tests/support/dataset_fixture.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QHash>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTableView>
#include <QTest>

#include <algorithm>
#include <random>

namespace
{

// A session of two hundred subjects proves no more where memory is not watched.
#ifdef __SANITIZE_ADDRESS__
constexpr int subjects = 200;
#else
constexpr int subjects = 50;
#endif
constexpr int mostDialogs = 10;

/// A session of a user without a plan. It knows what the table and the list should hold.
class RandomDataset : public DatasetFixture
{
protected:
    struct Row {
        QString name;
        bool ready = false;
        bool computed = false;
    };

    int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); }
    int anyRow() { return below(int(rows.size())); }
    int uncomputed() const
    {
        return int(
            std::count_if(rows.begin(), rows.end(), [](const Row &row) { return !row.computed; }));
    }
    bool moreAreWanted() const { return finished.size() + uncomputed() < subjects; }

    void add()
    {
        // Its first name may be that of another row.
        const QString name = QStringLiteral("S%1").arg(++added);
        const int row = addRow();
        rename(row, name);
        rows.push_back({name});
        if (below(4) > 0)
            finish(row);
    }

    void finish(int row)
    {
        chooseFile(row, VtcColumn, vtcs.at(below(int(vtcs.size()))));
        if (fileButton(row, VoiColumn)->isEnabled())
            chooseFile(row, VoiColumn, vois);
        // A run without protocol does not finish a row while one is wanted.
        rows[std::size_t(row)].ready = subject(row).dataLoaded;
    }

    void remove()
    {
        const int row = anyRow();
        rows.erase(rows.begin() + row);
        removeRow(row);
    }

    QVector<int> someVois()
    {
        QVector<int> all = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
        std::shuffle(all.begin(), all.end(), random);
        return all.mid(0, 2 + below(3));
    }

    /// Often the row whose profile is selected already, though others may have gone since then.
    int rowToCompute()
    {
        const auto *const profiles = find<QComboBox>("cBox_connectivityProfile");
        return profiles->currentIndex() > 0 && below(3) == 0 ? profiles->currentData().toInt()
                                                             : anyRow();
    }

    void computeOne()
    {
        const int row = rowToCompute();
        Row &expected = rows[std::size_t(row)];
        if (!expected.ready) {
            finish(row);
            return;
        }
        selectProfile(row);
        const int setting = below(5);
        const char *const settings[] = {"rbtn_Correlation", "rbtn_PartialCorrelation",
                                        "rbtn_PositiveMtx", "rbtn_NegativeMtx",
                                        "chkBox_ComputeMST"};
        click(settings[setting]);
        selectSeeds(someVois());
        find<QCheckBox>("cbox_UseProtocol")->setChecked(below(2) == 0);
        // A computed subject was enabled again by its seeds; its repeat is refused.
        if (expected.computed) {
            computeRefused();
            return;
        }
        // So is a name that a result bears, whether its row is still there or not.
        if (!finished.isEmpty() && below(5) == 0) {
            rename(row, finished.at(below(finished.size())));
            computeRefused();
            rename(row, expected.name);
        }
        compute();
        finished.append(expected.name);
        expected.computed = true;
    }

    void computeRefused()
    {
        modals.expectMessage("Cannot continue...", "Duplicate subject name found. Aborting.");
        compute();
        ASSERT_EQ(modals.remaining(), 0u);
        ++refused;
    }

    /// Opens results until as many are open as there may be.
    void openSome()
    {
        const int wanted = std::min(mostDialogs, finished.size());
        while (resultsDialogs().size() < wanted) {
            const int index = below(finished.size());
            dialog().subjects_OpenSelected(results()->model()->index(index, 0));
        }
    }

    void closeOne()
    {
        const QList<QWidget *> open = resultsDialogs();
        if (open.isEmpty())
            return;
        const QPointer<QWidget> closed = open.at(below(open.size()));
        closed->close();
        QCoreApplication::sendPostedEvents(closed, QEvent::DeferredDelete);
        ASSERT_TRUE(closed.isNull());
    }

    void compareSome()
    {
        if (finished.size() < 2)
            return;
        results()->clearSelection();
        for (int i = 0; i < 3; ++i) {
            const int index = below(finished.size());
            // One without matrices, of an empty protocol, would raise.
            if (!object(index)->matrices().empty())
                results()->item(index)->setSelected(true);
        }
        if (find<QPushButton>("btn_ComputeGraphDistance")->isEnabled()) {
            find<QCheckBox>("cbox_grp_useFilteredMatrix")->setChecked(below(2) == 0);
            click("btn_ComputeGraphDistance");
        }
    }

    void doSomething()
    {
        switch (below(10)) {
        case 0:
        case 1:
        case 2:
            if (moreAreWanted())
                add();
            break;
        case 3:
        case 4:
        case 5:
        case 6:
            if (!rows.empty())
                computeOne();
            break;
        case 7:
            if (!rows.empty())
                remove();
            break;
        case 8:
            closeOne();
            break;
        default:
            compareSome();
        }
    }

    void expectAllInStep()
    {
        ASSERT_EQ(model().rowCount(), int(rows.size()));
        ASSERT_EQ(find<QLabel>("lbl_SubjectsCounter")->text(), QString::number(rows.size()));
        const auto *const profiles = find<QComboBox>("cBox_connectivityProfile");
        QHash<int, QString> profileOfRow;
        for (int item = 1; item < profiles->count(); ++item)
            profileOfRow.insert(profiles->itemData(item).toInt(), profiles->itemText(item));
        int ready = 0;
        for (int row = 0; row < int(rows.size()); ++row) {
            const Row &expected = rows[std::size_t(row)];
            ASSERT_EQ(subject(row).name(), expected.name);
            ASSERT_EQ(subject(row).computed(), expected.computed);
            for (int column = VmrColumn; column <= PrtColumn; ++column)
                ASSERT_EQ(cell(row, column)->property("row"), row);
            ASSERT_EQ(profileOfRow.contains(row), expected.ready);
            if (expected.ready) {
                ASSERT_EQ(profileOfRow.value(row), expected.name);
                ++ready;
            }
        }
        ASSERT_EQ(profiles->count(), ready + 1);
        ASSERT_EQ(results()->count(), finished.size());
        const QList<ConnectivityObject *> all = objects();
        for (int index = 0; index < finished.size(); ++index) {
            ASSERT_EQ(all.at(index)->name(), finished.at(index));
            ASSERT_EQ(all.at(index)->subject()->name(), finished.at(index));
        }
    }

    std::mt19937 random{20210704};
    std::vector<Row> rows;
    QStringList finished; ///< names, in order of completion
    int added = 0;
    int refused = 0;
    QVector<QString> vtcs;
    QString vois;
};

TEST_F(RandomDataset, StaysInStepThroughALongSession)
{
    vois = addVois("set.voi");
    fake_host::Protocol protocol;
    protocol.conditions = {{"A", {{1, 15}, {31, 45}}}, {"B", {{16, 30}, {46, 46}}}};
    const QString prt = addProtocol("task.prt", protocol);
    fake_host::Vtc linked = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, 50);
    linked.linkProtocol(hostPath(prt));
    vtcs = {addVtc("plain.vtc", 30), addVtc("linked.vtc", linked)};
    find<QCheckBox>("chkBox_ShowResults")->setChecked(false);

    while (finished.size() < subjects || !rows.empty()) {
        ASSERT_NO_FATAL_FAILURE(doSomething());
        ASSERT_NO_FATAL_FAILURE(openSome());
        ASSERT_NO_FATAL_FAILURE(expectAllInStep()) << "after " << added << " subjects";
    }
    EXPECT_EQ(finished.size(), subjects);
    EXPECT_GE(added, subjects);
    EXPECT_GT(refused, subjects / 4);
    EXPECT_EQ(resultsDialogs().size(), mostDialogs);
    closeDialog();
    EXPECT_TRUE(resultsDialogs().isEmpty());
}

/// One finished subject whose record changes before anybody looks at the result.
class ChangedRecord : public DatasetFixture
{
protected:
    /// Saves under a name of its own and leaves other boxes as they suggest.
    ChangedRecord()
    {
        modals.setFallback([this](QDialog &dialog) {
            auto *const files = qobject_cast<QFileDialog *>(&dialog);
            if (files != nullptr)
                ModalDriver::enterFile(*files, folder.filePath(QString("export%1").arg(++exports)));
            else
                dialog.accept();
        });
    }

    /// Presses every button of the results dialog that can be pressed, turns every option, and does
    /// the same in the windows that come of it.
    void openEverything()
    {
        object(0)->showResults();
        QWidget *const shown = resultsDialogs().first();
        auto *const tabs = shown->findChild<QTabWidget *>("tabWidget");
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            for (int round = 0; round < 2; ++round) // the first makes more buttons
                pressAll(tabs->widget(tab));
        }
        int plots = 0;
        for (QWidget *window :
             shown->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
            if (!window->isWindow())
                continue;
            ++plots;
            window->show();
            EXPECT_FALSE(window->grab().isNull());
            for (MySlider *slider : window->findChildren<MySlider *>())
                goThrough(slider);
            for (MyLabel *label : window->findChildren<MyLabel *>())
                QTest::mouseClick(label, Qt::LeftButton);
            pressAll(window);
            EXPECT_FALSE(window->grab().isNull());
        }
        EXPECT_GT(plots, 2);
        QTest::qWait(0);
    }

    static void pressAll(const QWidget *page)
    {
        for (QAbstractButton *button : page->findChildren<QAbstractButton *>())
            if (button->isEnabled() && button->isVisible())
                button->click();
    }

    /// Lets the handle go at each value.
    static void goThrough(QAbstractSlider *slider)
    {
        for (int value = slider->minimum(); value <= slider->maximum(); ++value) {
            slider->setSliderDown(true);
            slider->setValue(value);
            slider->setSliderDown(false);
        }
    }

    int exports = 0;
};

TEST_F(ChangedRecord, StaysWithinItsMatrices)
{
    fake_host::Protocol protocol;
    protocol.conditions = {{"A", {{1, 15}, {31, 45}}}, {"B", {{16, 30}, {46, 46}}}};
    const QString prt = addProtocol("task.prt", protocol);
    fake_host::Vtc linked = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, 50);
    linked.linkProtocol(hostPath(prt));
    const QString vtc = addVtc("linked.vtc", linked);
    const QString vois = addVois("set.voi");
    find<QCheckBox>("chkBox_ShowResults")->setChecked(false);

    for (const bool computedWithProtocol : {true, false}) {
        for (const auto &[before, after] :
             {std::pair{QVector<int>{0, 1, 2}, QVector<int>{3, 4, 5, 6, 7, 8}},
              std::pair{QVector<int>{3, 4, 5, 6, 7, 8}, QVector<int>{0, 1}}}) {
            find<QCheckBox>("cbox_UseProtocol")->setChecked(computedWithProtocol);
            finishRow(addRow(), vtc, vois);
            computeRow(0, before);
            // Other seeds, the other protocol box, and a second compute, which is refused.
            selectSeeds(after);
            find<QCheckBox>("cbox_UseProtocol")->setChecked(!computedWithProtocol);
            modals.expectMessage("Cannot continue...", "Duplicate subject name found. Aborting.");
            compute();
            EXPECT_EQ(subject(0).useProtocol(), !computedWithProtocol);
            openEverything();
            // Fewer names than nodes, and the row gone.
            addVois("set.voi", 1);
            selectProfile(-1);
            selectProfile(0);
            removeRow(0);
            openEverything();
            addVois("set.voi");
            EXPECT_EQ(objects().size(), 1);
            closeDialog();
            find<QCheckBox>("chkBox_ShowResults")->setChecked(false);
        }
    }
    EXPECT_GT(exports, 4);
}

} // namespace
