// SPDX-License-Identifier: GPL-3.0-or-later
//
// A long session in random order, and results that are looked at after their record has changed.
// What they prove they prove under the sanitizers: nothing leaks, dangles or reads outside.
#include "engine/connectivity_object.h"
#include "tests/gui_test.h"
#include "tests/support/dataset_fixture.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTableView>
#include <QtTest>

#include <algorithm>
#include <random>

namespace
{

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

    void add()
    {
        ++added;
        const QString name = QStringLiteral("S%1").arg(added);
        const int row = addRow();
        rename(row, name);
        if (below(10) > 0)
            finishRow(row, vtcs.at(below(int(vtcs.size()))), vois);
        rows.push_back({name, subject(row).dataLoaded, false});
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

    void computeOne()
    {
        const int row = anyRow();
        Row &expected = rows[std::size_t(row)];
        if (!expected.ready)
            return;
        selectProfile(row);
        const int setting = below(5);
        const char *const settings[] = {"rbtn_Correlation", "rbtn_PartialCorrelation",
                                        "rbtn_PositiveMtx", "rbtn_NegativeMtx",
                                        "chkBox_ComputeMST"};
        click(settings[setting]);
        selectSeeds(someVois());
        find<QCheckBox>("cbox_UseProtocol")->setChecked(below(2) == 0);
        // A computed subject was enabled again by its seeds; its repeat is refused.
        if (expected.computed)
            modals.expectMessage("Cannot continue...", "Duplicate subject name found. Aborting.");
        else
            finished.append(expected.name);
        expected.computed = true;
        compute();
    }

    void openOne()
    {
        if (finished.isEmpty() || resultsDialogs().size() >= 10)
            return;
        const int index = below(int(finished.size()));
        dialog().subjects_OpenSelected(results()->model()->index(index, 0));
    }

    void closeOne()
    {
        const QList<QWidget *> open = resultsDialogs();
        if (!open.isEmpty())
            open.at(below(int(open.size())))->close();
    }

    void compareSome()
    {
        if (finished.size() < 2)
            return;
        results()->clearSelection();
        for (int i = 0; i < 3; ++i) {
            const int index = below(int(finished.size()));
            // One without matrices, of an empty protocol, would raise.
            if (!object(index)->matrices().empty())
                results()->item(index)->setSelected(true);
        }
        if (find<QPushButton>("btn_ComputeGraphDistance")->isEnabled()) {
            find<QCheckBox>("cbox_grp_useFilteredMatrix")->setChecked(below(2) == 0);
            click("btn_ComputeGraphDistance");
        }
    }

    void expectAllInStep()
    {
        ASSERT_EQ(model().rowCount(), int(rows.size()));
        ASSERT_EQ(find<QLabel>("lbl_SubjectsCounter")->text(), QString::number(rows.size()));
        const auto *const profiles = find<QComboBox>("cBox_connectivityProfile");
        int ready = 0;
        for (int row = 0; row < int(rows.size()); ++row) {
            const Row &expected = rows[std::size_t(row)];
            ASSERT_EQ(subject(row).name(), expected.name);
            ASSERT_EQ(subject(row).computed(), expected.computed);
            for (int column = VmrColumn; column <= PrtColumn; ++column)
                ASSERT_EQ(cell(row, column)->property("row"), row);
            const int item = profiles->findData(row);
            ASSERT_EQ(item > 0, expected.ready);
            if (item > 0) {
                ASSERT_EQ(profiles->itemText(item), expected.name);
                ++ready;
            }
        }
        ASSERT_EQ(profiles->count(), ready + 1);
        ASSERT_EQ(results()->count(), finished.size());
        for (int index = 0; index < finished.size(); ++index) {
            ASSERT_EQ(object(index)->name(), finished.at(index));
            ASSERT_EQ(object(index)->subject()->name(), finished.at(index));
        }
    }

    std::mt19937 random{20210704};
    std::vector<Row> rows;
    QStringList finished; ///< names, in order of completion
    int added = 0;
    QVector<QString> vtcs;
    QString vois;
};

TEST_F(RandomDataset, TwoHundredSubjects)
{
    constexpr int subjects = 200;
    vois = addVois("set.voi");
    fake_host::Protocol protocol;
    protocol.conditions = {{"A", {{1, 15}, {31, 45}}}, {"B", {{16, 30}, {46, 46}}}};
    const QString prt = addProtocol("task.prt", protocol);
    fake_host::Vtc linked = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, 50);
    linked.linkProtocol(hostPath(prt));
    vtcs = {addVtc("plain.vtc", 30), addVtc("linked.vtc", linked)};
    find<QCheckBox>("chkBox_ShowResults")->setChecked(false);

    while (added < subjects || !rows.empty()) {
        const int action = below(10);
        if (action < 3 && added < subjects)
            add();
        else if (rows.empty())
            add();
        else if (action < 6)
            computeOne();
        else if (action == 6)
            openOne();
        else if (action == 7)
            closeOne();
        else if (action == 8 && (added == subjects || below(2) == 0))
            remove();
        else
            compareSome();
        ASSERT_NO_FATAL_FAILURE(expectAllInStep()) << "after " << added << " subjects";
        if (added >= subjects && rows.size() == 1)
            while (resultsDialogs().size() < 10)
                openOne();
    }
    EXPECT_GT(finished.size(), 60);
    EXPECT_EQ(resultsDialogs().size(), 10);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
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

    /// Presses every button of the results dialog that can be pressed, and turns every option.
    void openEverything()
    {
        object(0)->showResults();
        QWidget *const shown = resultsDialogs().first();
        auto *const tabs = shown->findChild<QTabWidget *>("tabWidget");
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            for (int round = 0; round < 2; ++round) { // the first makes more buttons
                for (QAbstractButton *button :
                     tabs->widget(tab)->findChildren<QAbstractButton *>()) {
                    if (button->isEnabled() && button->isVisible())
                        button->click();
                }
            }
        }
        for (QDialog *window : shown->findChildren<QDialog *>()) {
            window->show();
            EXPECT_FALSE(window->grab().isNull());
            for (QSlider *slider : window->findChildren<QSlider *>()) {
                for (int value = slider->minimum(); value <= slider->maximum(); ++value)
                    slider->setValue(value);
            }
            EXPECT_FALSE(window->grab().isNull());
        }
        QTest::qWait(0);
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
