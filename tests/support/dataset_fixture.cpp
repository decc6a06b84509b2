// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/dataset_fixture.h"

#include "engine/connectivity_object.h"
#include "results/connectivity_object_ui.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QListWidget>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

DatasetFixture::DatasetFixture()
{
    host.addVmr("/data/brain.vmr");
}

DatasetFixture::~DatasetFixture()
{
    closeDialog();
    EXPECT_TRUE(resultsDialogs().isEmpty()) << "results dialogs outlive the main dialog";
}

QString DatasetFixture::addFile(const QString &name)
{
    const QString path = folder.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    return path;
}

QString DatasetFixture::addVtc(const QString &name, const fake_host::Vtc &vtc)
{
    const QString path = addFile(name);
    host.vtcs[hostPath(path)] = vtc;
    return path;
}

QString DatasetFixture::addVtc(const QString &name, int volumes)
{
    return addVtc(name, fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, volumes));
}

QString DatasetFixture::addVois(const QString &name, const fake_host::VoiSet &set)
{
    const QString path = addFile(name);
    host.voiSets[hostPath(path)] = set;
    return path;
}

QString DatasetFixture::addVois(const QString &name, int count)
{
    fake_host::VoiSet set;
    for (int voi = 0; voi < count; ++voi) {
        const int x = 50 + voi % 8;
        const int y = 60 + voi / 8 % 8;
        set.vois.push_back(
            {"V" + std::to_string(voi), {{x, y, 70}, {x, y, 71}, {x, y, 72 + voi / 64 % 6}}});
    }
    return addVois(name, set);
}

QString DatasetFixture::addProtocol(const QString &name, const fake_host::Protocol &protocol)
{
    const QString path = addFile(name);
    host.protocols[hostPath(path)] = protocol;
    return path;
}

Tessera &DatasetFixture::dialog()
{
    if (m_dialog.isNull()) {
        m_dialog = new Tessera(nullptr);
        m_dialog->setAttribute(Qt::WA_DeleteOnClose, true);
        m_dialog->show();
    }
    return *m_dialog;
}

void DatasetFixture::closeDialog()
{
    delete m_dialog;
}

void DatasetFixture::showTab(QWidget *widget)
{
    auto *const tabs = find<QTabWidget>("tabWidget");
    for (int tab = 0; tab < tabs->count(); ++tab) {
        if (tabs->widget(tab)->isAncestorOf(widget))
            tabs->setCurrentIndex(tab);
    }
}

void DatasetFixture::click(const char *buttonName)
{
    auto *const button = find<QAbstractButton>(buttonName);
    showTab(button);
    ASSERT_TRUE(button->isVisible()) << buttonName;
    const QPoint text(button->height() / 2, button->height() / 2);
    QTest::mouseClick(button, Qt::LeftButton, {}, text);
}

SubjectsModel &DatasetFixture::model()
{
    return *qobject_cast<SubjectsModel *>(find<QTableView>("tbl_Subjects")->model());
}

int DatasetFixture::addRow()
{
    click("btn_AddSubject");
    return model().rowCount() - 1;
}

void DatasetFixture::removeRow(int row)
{
    find<QTableView>("tbl_Subjects")->setCurrentIndex(model().index(row, NameColumn));
    click("btn_RemoveSubject");
}

QWidget *DatasetFixture::cell(int row, int column)
{
    return find<QTableView>("tbl_Subjects")->indexWidget(model().index(row, column));
}

QComboBox *DatasetFixture::vmrBox(int row)
{
    return qobject_cast<QComboBox *>(cell(row, VmrColumn));
}

QPushButton *DatasetFixture::fileButton(int row, int column)
{
    return qobject_cast<QPushButton *>(cell(row, column));
}

void DatasetFixture::chooseFile(int row, int column, const QString &path)
{
    showTab(find<QTableView>("tbl_Subjects"));
    modals.expectFile(path);
    QTest::mouseClick(fileButton(row, column), Qt::LeftButton);
}

void DatasetFixture::finishRow(int row, const QString &vtc, const QString &vois)
{
    chooseFile(row, VtcColumn, vtc);
    chooseFile(row, VoiColumn, vois);
}

int DatasetFixture::addReadyRow()
{
    const int row = addRow();
    finishRow(row, addVtc(QStringLiteral("run.vtc")), addVois(QStringLiteral("set.voi")));
    return row;
}

void DatasetFixture::rename(int row, const QString &name)
{
    model().setData(model().index(row, NameColumn), name);
}

void DatasetFixture::selectProfile(int row)
{
    auto *const profiles = find<QComboBox>("cBox_connectivityProfile");
    showTab(profiles);
    const int item = profiles->findData(row);
    ASSERT_GE(item, 0) << "row " << row << " is no profile";
    profiles->setCurrentIndex(item);
}

void DatasetFixture::selectSeeds(const QVector<int> &vois)
{
    modals.expect<QDialog>([vois](QDialog &selection) {
        auto *const list = selection.findChild<QListWidget *>();
        list->clearSelection();
        for (const int voi : vois) {
            list->scrollToItem(list->item(voi));
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                              list->visualItemRect(list->item(voi)).center());
        }
        auto *const buttons = selection.findChild<QDialogButtonBox *>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        if (selection.isVisible()) // Ok is disabled
            selection.reject();
    });
    click("btn_ConfigureVOIs");
}

void DatasetFixture::compute()
{
    click("btn_Compute");
}

void DatasetFixture::computeRow(int row, const QVector<int> &vois)
{
    selectProfile(row);
    selectSeeds(vois);
    compute();
}

QListWidget *DatasetFixture::results()
{
    return find<QListWidget>("list_ConnObjs");
}

QList<ConnectivityObject *> DatasetFixture::objects()
{
    return dialog().findChildren<ConnectivityObject *>(QString(), Qt::FindDirectChildrenOnly);
}

ConnectivityObject *DatasetFixture::object(int index)
{
    return objects().at(index);
}

QList<QWidget *> DatasetFixture::resultsDialogs()
{
    QList<QWidget *> open;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (qobject_cast<ConnectivityObjectUI *>(window) != nullptr)
            open.append(window);
    }
    return open;
}

QStringList DatasetFixture::hostLog() const
{
    QStringList lines;
    for (const std::string &line : host.log)
        lines.append(QString::fromStdString(line));
    return lines;
}
